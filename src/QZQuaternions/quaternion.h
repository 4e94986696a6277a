// Internal quaternion kernels shared by the quaternion module: dot product, length and
// normalisation, and the two directions between a quaternion and the rotation block of a matrix.
// The rotation block is addressed through a row stride so that one kernel serves 3x3 matrices
// (stride 3) and the rotation of a homogeneous transform (stride 4).
//
// Quaternions are (x, y, z, w) with the scalar last.
#ifndef QZ_QUATERNIONS_QUATERNION_H
#define QZ_QUATERNIONS_QUATERNION_H

#include <cstddef>
#include <cstdint>

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// Dot product of two quaternions as four-vectors, the products summed x, y, z, w in that order:
// the cosine of half the rotation between two unit quaternions.
inline double QuatDot(const double *a, const double *b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// Euclidean length: the square root of the quaternion's dot product with itself.
inline double QuatLength(const double *q) { return Sqrt(QuatDot(q, q)); }

// Divides q by its length in place. A length at or below 1e-16 is too short to give a direction:
// q is left as it was and 0 returned. A NaN length fails the test and spreads into q.
inline std::uint32_t QuatNormalize(double *q) {
    const double n = QuatLength(q);
    if (n <= kZeroTol) return 0;
    q[0] = q[0] / n;
    q[1] = q[1] / n;
    q[2] = q[2] / n;
    q[3] = q[3] / n;
    return 1;
}

// Quaternion of the rotation block whose element (i, j) is m[Stride * i + j].
//
// Of the four algebraically equal forms, the one whose square root is taken of the largest
// quantity is chosen, so that the divisor S never comes near zero: the trace when it is positive,
// otherwise the largest diagonal element. The comparisons are strict, so ties go to the later
// form, and the result keeps the sign the chosen form gives it (w > 0 in the first form, the
// component carrying 0.25 S positive in the others). The result is not normalised.
template <std::ptrdiff_t Stride>
inline void RotationToQuat(const double *m, double *q) {
    const double r00 = m[0], r01 = m[1], r02 = m[2];
    const double r10 = m[Stride], r11 = m[Stride + 1], r12 = m[Stride + 2];
    const double r20 = m[2 * Stride], r21 = m[2 * Stride + 1], r22 = m[2 * Stride + 2];
    const double t = r00 + r11 + r22;
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
    if (t > 0.0) {
        const double s = 2.0 * Sqrt(t + 1.0);
        w = 0.25 * s;
        x = (r21 - r12) / s;
        y = (r02 - r20) / s;
        z = (r10 - r01) / s;
    } else if (r00 > r11 && r00 > r22) {
        const double s = 2.0 * Sqrt(r00 + 1.0 - r11 - r22);
        w = (r21 - r12) / s;
        x = 0.25 * s;
        y = (r01 + r10) / s;
        z = (r02 + r20) / s;
    } else if (r11 > r22) {
        const double s = 2.0 * Sqrt(r11 + 1.0 - r00 - r22);
        w = (r02 - r20) / s;
        x = (r01 + r10) / s;
        y = 0.25 * s;
        z = (r12 + r21) / s;
    } else {
        const double s = 2.0 * Sqrt(r22 + 1.0 - r00 - r11);
        w = (r10 - r01) / s;
        x = (r02 + r20) / s;
        y = (r12 + r21) / s;
        z = 0.25 * s;
    }
    q[0] = x;
    q[1] = y;
    q[2] = z;
    q[3] = w;
}

// Rotation block of the quaternion q, taken to be of unit length, into m[Stride * i + j]. Every
// doubled term is the term added to itself.
template <std::ptrdiff_t Stride>
inline void QuatToRotation(const double *q, double *m) {
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    const double xx = x * x, yy = y * y, zz = z * z;
    const double xy_m_wz = x * y - w * z, xy_p_wz = x * y + w * z;
    const double xz_p_wy = x * z + w * y, xz_m_wy = x * z - w * y;
    const double yz_m_wx = y * z - w * x, yz_p_wx = y * z + w * x;
    m[0] = 1.0 - (yy + yy) - (zz + zz);
    m[1] = xy_m_wz + xy_m_wz;
    m[2] = xz_p_wy + xz_p_wy;
    m[Stride] = xy_p_wz + xy_p_wz;
    m[Stride + 1] = 1.0 - (xx + xx) - (zz + zz);
    m[Stride + 2] = yz_m_wx + yz_m_wx;
    m[2 * Stride] = xz_m_wy + xz_m_wy;
    m[2 * Stride + 1] = yz_p_wx + yz_p_wx;
    m[2 * Stride + 2] = 1.0 - (xx + xx) - (yy + yy);
}

}  // namespace qz::detail

#endif
