// Rotation vectors (unit axis times angle in radians) to rotation matrices and back, and the
// composition and relative rotation of orientations given either way.
//
// Method: the matrix is Rodrigues' formula R = c I + (1 - c) k k^T + s [k]x. Back from a matrix,
// the angle comes from the trace, c = cos(theta) = (trace - 1) / 2, and the axis from the
// antisymmetric part, k = (r21 - r12, r02 - r20, r10 - r01) / (2 sin(theta)).
//
// That quotient degrades towards a half turn: theta = pi - d is the arc cosine of a value close
// to -1, so it carries an error of about 1e-16 / d, which the division by sin(theta) turns into a
// relative error of about 5e-16 / d^2 in the length of the axis; at a half turn itself the
// antisymmetric part is rounding residue only. Within kHalfTurnBand of pi the axis is therefore read from the symmetric part
// instead, where nothing cancels: r_ii = c + (1 - c) k_i^2 gives the component of the largest
// diagonal element (at least 1/sqrt(3) in size), and r_ij + r_ji = 2 (1 - c) k_i k_j the other
// two. Its sign is that of r_kj - r_jk = 2 sin(theta) k_i, which stays above rounding down to
// turns about 1e-15 short of pi, even where the trace no longer tells them from pi; closer than
// that, k and -k are the same rotation to within rounding, and a zero difference counts as
// positive.
#include "QZQuaternions.h"

#include <cstddef>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/matrix.h"
#include "QZMatrix/vector.h"

namespace qz::detail {
namespace {

// Below this angle a rotation vector is taken as no rotation.
constexpr double kAngleFloor = 1e-10;
// Angles above pi - kHalfTurnBand take their axis from the symmetric part of the matrix.
constexpr double kHalfTurnBand = 1e-5;
constexpr double kHalfTurnStart = kPi - kHalfTurnBand;

void AxisAngleToRotmat(const double *r, double *R) {
    const double theta = VectLength(r, 3);
    if (theta < kAngleFloor) {
        MatrixIdentity<3>(R);
        return;
    }
    double k[3];
    VectScale(r, 3, 1.0 / theta, k);
    const double s = SinArc(theta);
    const double c = CosArc(theta);
    const double v = 1.0 - c;
    const double kx = k[0], ky = k[1], kz = k[2];
    R[0] = kx * kx * v + c;
    R[1] = kx * ky * v - kz * s;
    R[2] = kx * kz * v + ky * s;
    R[3] = kx * ky * v + kz * s;
    R[4] = ky * ky * v + c;
    R[5] = ky * kz * v - kx * s;
    R[6] = kx * kz * v - ky * s;
    R[7] = ky * kz * v + kx * s;
    R[8] = kz * kz * v + c;
}

// Axis of a rotation within kHalfTurnBand of a half turn from the symmetric part of R, times the
// angle. x is the cosine (trace - 1) / 2 as computed for the angle; the largest diagonal element
// (the first of equals) gives the leading component.
void NearHalfTurn(const double *R, double x, double theta, const double *anti, double *r) {
    std::ptrdiff_t i = 0;
    if (R[4] > R[0]) i = 1;
    if (R[8] > R[4 * i]) i = 2;
    const double ki = Sqrt((R[4 * i] - x) / (1.0 - x));
    const double sign = anti[i] < 0.0 ? -1.0 : 1.0;
    for (std::ptrdiff_t j = 0; j < 3; ++j) {
        const double kj = j == i ? ki : (R[3 * i + j] + R[3 * j + i]) / (2.0 * (1.0 - x) * ki);
        r[j] = theta * (sign * kj);
    }
}

void RotmatToAxisAngle(const double *R, double *r) {
    const double x = (R[0] + R[4] + R[8] - 1.0) * 0.5;
    const double theta = ACos(x);
    const double s = SinArc(theta);
    if (theta < kAngleFloor) {
        r[0] = 0.0;
        r[1] = 0.0;
        r[2] = 0.0;
        return;
    }
    const double anti[3] = {R[7] - R[5], R[2] - R[6], R[3] - R[1]};
    if (theta > kHalfTurnStart) {
        NearHalfTurn(R, x, theta, anti, r);
        return;
    }
    r[0] = theta * anti[0] / (2.0 * s);
    r[1] = theta * anti[1] / (2.0 * s);
    r[2] = theta * anti[2] / (2.0 * s);
}

void RelativeRotation(const double *Ra, const double *Rb, double *out) {
    double RaT[9];
    MatrixTranspose<3>(Ra, RaT);
    MatrixMult<3>(RaT, Rb, out);
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void axis_angle_to_rotmat(const double *r, double *R) { AxisAngleToRotmat(r, R); }

QZ_API void rotmat_to_axis_angle(const double *R, double *r) { RotmatToAxisAngle(R, r); }

// r2 is applied first, r1 second, both in the fixed frame.
QZ_API void AngleMult(const double *r1, const double *r2, double *out) {
    double R1[9], R2[9], R[9];
    AxisAngleToRotmat(r1, R1);
    AxisAngleToRotmat(r2, R2);
    MatrixMult<3>(R1, R2, R);
    RotmatToAxisAngle(R, out);
}

QZ_API void relative_rotation(const double *Ra, const double *Rb, double *out) {
    RelativeRotation(Ra, Rb, out);
}

QZ_API void relative_Angle(const double *r1, const double *r2, double *out) {
    double R1[9], R2[9], Rrel[9];
    AxisAngleToRotmat(r1, R1);
    AxisAngleToRotmat(r2, R2);
    RelativeRotation(R1, R2, Rrel);
    RotmatToAxisAngle(Rrel, out);
}

}  // extern "C"
