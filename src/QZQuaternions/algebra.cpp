// Quaternion algebra: Hamilton product, length and normalisation, conjugate, inverse, and the
// angle between two orientations.
#include "QZQuaternions.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZQuaternions/quaternion.h"

namespace qz::detail {
namespace {

constexpr double kInverseFloor = 1e-9;
// Keeps the arc cosine off its flat end, where a dot product rounded to 1 would read as exactly
// no rotation; two equal orientations therefore come out a hair above zero.
constexpr double kAngleCosClamp = 0.9999999999;

// Rotation angle between two unit quaternions, in degrees. The absolute value of their dot
// product makes q and -q the same orientation and picks the shorter of the two rotations.
double AngleDeg(const double *q1, const double *q2) {
    double m = Fabs(QuatDot(q1, q2));
    if (m > kAngleCosClamp) m = kAngleCosClamp;
    return 2.0 * (ACos(m) * kRadToDeg);
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

// Every input component is read before the first output is stored, so out may be a or b.
QZ_API void QZ_QuatMult(const double *a, const double *b, double *out) {
    const double ax = a[0], ay = a[1], az = a[2], aw = a[3];
    const double bx = b[0], by = b[1], bz = b[2], bw = b[3];
    out[0] = ax * bw + aw * bx + ay * bz - az * by;
    out[1] = ay * bw + aw * by + az * bx - ax * bz;
    out[2] = az * bw + aw * bz + ax * by - ay * bx;
    out[3] = aw * bw - ax * bx - ay * by - az * bz;
}

QZ_API uint32_t QZ_QuaternionNorm(double *q) { return QuatNormalize(q); }

QZ_API double QZ_QuaternionSqrtNorm(const double *q) { return QuatLength(q); }

QZ_API void QZ_QuaternionConjugate(const double *q, double *out) {
    out[0] = -q[0];
    out[1] = -q[1];
    out[2] = -q[2];
    out[3] = q[3];
}

// Divides by the length, not its square: the result is the unit quaternion of the inverse
// rotation. The test is written so that a NaN length is refused as well.
QZ_API uint32_t QZ_QuaternionInverse(const double *q, double *out) {
    const double n = QuatLength(q);
    if (!(n > kInverseFloor)) return 0;
    out[0] = -q[0] / n;
    out[1] = -q[1] / n;
    out[2] = -q[2] / n;
    out[3] = q[3] / n;
    return 1;
}

QZ_API double QZ_QuaternionAngleDeg(const double *q1, const double *q2) { return AngleDeg(q1, q2); }

QZ_API double QZ_QuaternionAngleArc(const double *q1, const double *q2) {
    return AngleDeg(q1, q2) * kDegToRad;
}

}  // extern "C"
