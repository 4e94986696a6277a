// Elementary rotations, the XYZ (ABC) and ZYZ Euler conventions, XYZABC poses and the rotation
// of a transform about its own z axis.
//
// XYZ: R = Rz(C) * Ry(B) * Rx(A). ZYZ: R = Rz(a) * Ry(b) * Rz(c). Rotation matrices are 3x3
// row-major; homogeneous transforms are 4x4 row-major with the position in elements 3, 7, 11.
// The extractions are written once over the row stride (3 for a rotation matrix, 4 for a
// transform), so a rotation and a transform holding the same block give the same angles.
//
// Both extractions use atan2 throughout, so the angles land in the principal ranges:
//   XYZ: A, C in (-pi, pi], B in [-pi/2, pi/2];  ZYZ: a, c in (-pi, pi], b in [0, pi].
// Their singular branches:
//   ZYZ, |b| < half a degree: the two z turns cannot be told apart; a is set to 0 and the whole
//     turn goes into c, read from the upper-left block. Only b near 0 counts as singular: b near
//     pi is divided through by its (small) sine like any regular case.
//   XYZ, cos B exactly 0 (to 1e-16): C is set to 0 and A carries A - C (B = +pi/2) or A + C
//     (B = -pi/2), the only combination the matrix still defines.
#include "QZMatrix.h"

#include <cstddef>
#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/euler.h"

namespace qz::detail {
namespace {

// Half a degree in radians: below this b the ZYZ decomposition is treated as singular.
constexpr double kZyzSingular = 0.008726646259971648;
// Below this cos B the XYZ decomposition is treated as singular.
constexpr double kXyzSingular = 1e-16;

// Rotation block element (i, j) of a matrix with the given row stride.
template <int Stride>
inline double El(const double *m, int i, int j) {
    return m[Stride * i + j];
}

// Position and bottom row of a transform whose rotation block is already written.
void PoseFrame(const double *xyz, double *t) {
    t[3] = xyz[0];
    t[7] = xyz[1];
    t[11] = xyz[2];
    t[12] = 0.0;
    t[13] = 0.0;
    t[14] = 0.0;
    t[15] = 1.0;
}

// ZYZ angles (a, b, c) of the rotation block into abc[0..2]. b is written first and on every
// path; returns 0 on the singular branch (a = 0, c the whole z turn), 1 otherwise.
template <int Stride>
std::uint32_t ZyzAngles(const double *m, double *abc) {
    const double r20 = El<Stride>(m, 2, 0);
    const double r21 = El<Stride>(m, 2, 1);
    const double b = ATan2(Sqrt(r20 * r20 + r21 * r21), El<Stride>(m, 2, 2));
    abc[1] = b;
    const double s = SinArc(b);
    if (Fabs(b) < kZyzSingular) {
        abc[0] = 0.0;
        abc[2] = ATan2(-El<Stride>(m, 0, 1), El<Stride>(m, 0, 0));
        return 0;
    }
    abc[0] = ATan2(El<Stride>(m, 1, 2) / s, El<Stride>(m, 0, 2) / s);
    abc[2] = ATan2(r21 / s, -r20 / s);
    return 1;
}

// XYZ angles (A, B, C) of the rotation block into abc[0..2]; always succeeds.
template <int Stride>
void XyzAngles(const double *m, double *abc) {
    const double r00 = El<Stride>(m, 0, 0);
    const double r10 = El<Stride>(m, 1, 0);
    const double k = Sqrt(r00 * r00 + r10 * r10);  // |cos B|
    const double B = ATan2(-El<Stride>(m, 2, 0), k);
    abc[1] = B;
    if (k > kXyzSingular || k < -kXyzSingular) {
        abc[2] = ATan2(r10, r00);
        abc[0] = ATan2(El<Stride>(m, 2, 1), El<Stride>(m, 2, 2));
    } else {
        abc[2] = 0.0;
        if (B > 0.0) {
            abc[0] = ATan2(El<Stride>(m, 0, 1), El<Stride>(m, 1, 1));
        } else {
            abc[0] = -ATan2(El<Stride>(m, 0, 1), El<Stride>(m, 1, 1));
        }
    }
}

// Pose from a transform whose angles are already in pose[3..5] (radians): the position, then the
// angles turned into degrees when asked.
void PoseTail(const double *t, double *pose, bool degrees) {
    pose[0] = t[3];
    pose[1] = t[7];
    pose[2] = t[11];
    if (degrees) {
        pose[3] = pose[3] * kRadToDeg;
        pose[4] = pose[4] * kRadToDeg;
        pose[5] = pose[5] * kRadToDeg;
    }
}

// Transform to pose with ZYZ angles; the singular branch returns before the position is copied
// and before any unit conversion.
std::uint32_t PoseZyz(const double *t, double *pose, bool degrees) {
    if (ZyzAngles<4>(t, pose + 3) == 0) return 0;
    PoseTail(t, pose, degrees);
    return 1;
}

std::uint32_t PoseXyz(const double *t, double *pose, bool degrees) {
    XyzAngles<4>(t, pose + 3);
    PoseTail(t, pose, degrees);
    return 1;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void QZ_RotXARC(double angle, double *r) {
    double s = 0.0, c = 0.0;
    SinCosArc(angle, &s, &c);
    r[0] = 1.0;
    r[1] = 0.0;
    r[2] = 0.0;
    r[3] = 0.0;
    r[4] = c;
    r[5] = -s;
    r[6] = 0.0;
    r[7] = s;
    r[8] = c;
}

QZ_API void QZ_RotYARC(double angle, double *r) {
    double s = 0.0, c = 0.0;
    SinCosArc(angle, &s, &c);
    r[0] = c;
    r[1] = 0.0;
    r[2] = s;
    r[3] = 0.0;
    r[4] = 1.0;
    r[5] = 0.0;
    r[6] = -s;
    r[7] = 0.0;
    r[8] = c;
}

QZ_API void QZ_RotZARC(double angle, double *r) {
    double s = 0.0, c = 0.0;
    SinCosArc(angle, &s, &c);
    r[0] = c;
    r[1] = -s;
    r[2] = 0.0;
    r[3] = s;
    r[4] = c;
    r[5] = 0.0;
    r[6] = 0.0;
    r[7] = 0.0;
    r[8] = 1.0;
}

QZ_API void QZ_ZYZ2Matrix(double a, double b, double c, double *r) {
    const double sa = SinArc(a), ca = CosArc(a);
    const double sb = SinArc(b), cb = CosArc(b);
    const double sc = SinArc(c), cc = CosArc(c);
    r[0] = ca * cb * cc - sa * sc;
    r[1] = -ca * cb * sc - cc * sa;
    r[2] = ca * sb;
    r[3] = cb * sa * cc + ca * sc;
    r[4] = -sa * cb * sc + ca * cc;
    r[5] = sa * sb;
    r[6] = -cc * sb;
    r[7] = sb * sc;
    r[8] = cb;
}

QZ_API uint32_t QZ_Matrix2ZYZ(const double *r, double *abc) { return ZyzAngles<3>(r, abc); }

QZ_API uint32_t QZ_Matrix42ZYZ(const double *t, double *abc) { return ZyzAngles<4>(t, abc); }

QZ_API uint32_t QZ_Matrix2XYZ(const double *r, double *abc) {
    XyzAngles<3>(r, abc);
    return 1;
}

QZ_API uint32_t QZ_Matrix42XYZ(const double *t, double *abc) {
    XyzAngles<4>(t, abc);
    return 1;
}

QZ_API void QZ_XYZABC2Matrix4ARC(const double *pose, double *t) {
    XyzFromAngles<4, false>(pose + 3, t);
    PoseFrame(pose, t);
}

QZ_API void QZ_XYZABC2Matrix4DEG(const double *pose, double *t) {
    XyzFromAngles<4, true>(pose + 3, t);
    PoseFrame(pose, t);
}

QZ_API uint32_t QZ_Matrix2XYZABC4ARC_ZYZ(const double *t, double *pose) {
    return PoseZyz(t, pose, false);
}

QZ_API uint32_t QZ_Matrix2XYZABC4DEG_ZYZ(const double *t, double *pose) {
    return PoseZyz(t, pose, true);
}

// The XYZ pair is named the other way round: the ARC name answers in degrees, the DEG name in
// radians. Callers depend on these units, so the names keep them.
QZ_API uint32_t QZ_Matrix2XYZABC4ARC_XYZ(const double *t, double *pose) {
    return PoseXyz(t, pose, true);
}

QZ_API uint32_t QZ_Matrix2XYZABC4DEG_XYZ(const double *t, double *pose) {
    return PoseXyz(t, pose, false);
}

QZ_API uint32_t QZ_ABC2Matrix3ARC(const double *abc, double *r) {
    XyzFromAngles<3, false>(abc, r);
    return 1;
}

QZ_API uint32_t QZ_ABC2Matrix3DEG(const double *abc, double *r) {
    XyzFromAngles<3, true>(abc, r);
    return 1;
}

QZ_API void QZ_CALC_TRANS_FROM_Rotxyz(const double *abc, double *r) {
    XyzFromAngles<3, true>(abc, r);
}

// out = T * Rz, Rz given by (c, s) as used (not normalised); the origin column is kept.
QZ_API void QZ_XYZMRot(const double *t, double c, double s, double *out) {
    for (std::ptrdiff_t i = 0; i < 3; ++i) {
        const double *ti = t + 4 * i;
        double *oi = out + 4 * i;
        oi[0] = ti[0] * c + ti[1] * s;
        oi[1] = ti[1] * c - ti[0] * s;
        oi[2] = ti[2];
        oi[3] = ti[3];
    }
    out[12] = 0.0;
    out[13] = 0.0;
    out[14] = 0.0;
    out[15] = 1.0;
}

}  // extern "C"
