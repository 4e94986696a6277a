/**
 * @file
 * @brief QZQuaternions: quaternions and rotation vectors of QZMath.
 *
 * A quaternion is four doubles x, y, z, w with the scalar last; a rotation by phi about the unit
 * axis k is (k sin(phi/2), cos(phi/2)). Products are Hamilton products. Rotation matrices are
 * 3x3 row-major, homogeneous transforms 4x4 row-major with the position at elements 3, 7, 11.
 * Signs, layouts and worked examples: docs/conventions.md; the error rotation vector:
 * docs/orientation-and-jacobians.md.
 *
 * Families:
 * @verbatim
   quaternion algebra         QZ_Quat*
   conversions and poses      QZ_Matrix2Quaternion* QZ_Quaternion2Matrix* ...
   interpolation              QZ_QuatSlerp* QZSlerpFactorState
   rotation vectors           axis_angle_to_rotmat rotmat_to_axis_angle relative_rotation ...
   @endverbatim
 */
#ifndef QZ_QUATERNIONS_H
#define QZ_QUATERNIONS_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Quaternion algebra ----------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Hamilton product out = a (x) b, not normalised.
 *
 * The matrix of a (x) b is the matrix of a times that of b.
 * @param[in]  a    Quaternion (4), the left factor.
 * @param[in]  b    Quaternion (4), the right factor.
 * @param[out] out  Quaternion (4), the product.
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_QuatMult(const double *a, const double *b, double *out);
/**
 * @brief Divides a quaternion by its length in place.
 * @param[in,out] q  Quaternion (4).
 * @retval 1 normalised.
 * @retval 0 its length is <= 1e-16; q unchanged.
 */
QZ_API uint32_t QZ_QuaternionNorm(double *q);
/**
 * @brief Euclidean length of a quaternion.
 * @param[in] q  Quaternion (4).
 * @return |q|.
 */
QZ_API double QZ_QuaternionSqrtNorm(const double *q);
/**
 * @brief Conjugate quaternion, out = (-x, -y, -z, w).
 * @param[in]  q    Quaternion (4).
 * @param[out] out  Quaternion (4), the conjugate.
 * @par Aliasing
 * out may be q.
 */
QZ_API void QZ_QuaternionConjugate(const double *q, double *out);
/**
 * @brief Unit inverse rotation: the conjugate of q divided by |q| (not q^-1 unless |q| = 1).
 * @param[in]  q    Quaternion (4).
 * @param[out] out  Quaternion (4); unwritten on failure.
 * @par Aliasing
 * out may be q.
 * @retval 1 done.
 * @retval 0 a length not above 1e-9 (or NaN); out unwritten.
 */
QZ_API uint32_t QZ_QuaternionInverse(const double *q, double *out);
/**
 * @brief Angle in degrees of the shorter rotation between two unit quaternions.
 *
 * q and -q are the same orientation. |q1 . q2| is clamped to 0.9999999999, so equal
 * orientations give the minimum, not 0, and every angle below 2.83e-5 rad reads as that minimum:
 * not a fine convergence test (the vector part of q1 (x) q2^-1 resolves ~1e-16 rad).
 * @param[in] q1  Quaternion (4), taken as unit length (not normalised).
 * @param[in] q2  Quaternion (4), taken as unit length (not normalised).
 * @return The angle (degrees), in [0.0016205694361395497, 180].
 */
QZ_API double QZ_QuaternionAngleDeg(const double *q1, const double *q2);
/**
 * @brief QZ_QuaternionAngleDeg converted to radians.
 * @param[in] q1  Quaternion (4), taken as unit length (not normalised).
 * @param[in] q2  Quaternion (4), taken as unit length (not normalised).
 * @return The angle (rad); minimum 2.8284272417823128e-05.
 */
QZ_API double QZ_QuaternionAngleArc(const double *q1, const double *q2);

/* ---- Quaternion, matrix and pose conversions -------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* In this section no output may overlap an input. */

/**
 * @brief Quaternion of a 3x3 rotation matrix, not normalised.
 *
 * Of four forms, the first with t = r00 + r11 + r22 > 0, else r00 largest, else r11 > r22, else
 * r22 (strict tests, ties to the later form); w > 0 in the first, the largest axis component > 0
 * in the others. A matrix that is not a rotation may give NaN.
 * @param[in]  r  Rotation matrix (9, row-major).
 * @param[out] q  Quaternion (4).
 * @par Aliasing
 * q must not overlap r.
 */
QZ_API void QZ_Matrix2Quaternion3(const double *r, double *q);
/**
 * @brief As QZ_Matrix2Quaternion3 for the rotation block of a 4x4 transform (nothing else is
 * read).
 * @param[in]  m  Transform (16, row-major).
 * @param[out] q  Quaternion (4).
 * @par Aliasing
 * q must not overlap m.
 */
QZ_API void QZ_Matrix2Quaternion4(const double *m, double *q);
/**
 * @brief 3x3 rotation matrix of a quaternion taken to be of unit length.
 * @param[in]  q  Quaternion (4).
 * @param[out] r  Rotation matrix (9, row-major).
 * @par Aliasing
 * r must not overlap q.
 */
QZ_API void QZ_Quaternion2Matrix3(const double *q, double *r);
/**
 * @brief 4x4 matrix with the rotation of a unit quaternion and zeros elsewhere, element 15
 * included.
 * @param[in]  q  Quaternion (4), taken as unit length.
 * @param[out] m  Matrix (16, row-major); element 15 is 0.
 * @par Aliasing
 * m must not overlap q.
 */
QZ_API void QZ_Quaternion2Matrix4(const double *q, double *m);
/**
 * @brief PosQuat pose of a 4x4 transform: its position, then QZ_Matrix2Quaternion4 of it.
 * @param[in]  m     Transform (16, row-major).
 * @param[out] pose  PosQuat pose (7): x, y, z, qx, qy, qz, qw.
 * @par Aliasing
 * pose must not overlap m.
 */
QZ_API void QZ_Matrix2PosQuat(const double *m, double *pose);
/**
 * @brief Normalises a pose's quaternion in place, then builds the transform as
 * QZ_PosQuat2Matrix does.
 * @param[in,out] pose  PosQuat pose (7); its quaternion is normalised in place (left as it was
 *                      when its length is <= 1e-16).
 * @param[out]    m     Transform (16, row-major), bottom row 0, 0, 0, 1.
 * @par Aliasing
 * m must not overlap pose.
 * @return 1.
 */
QZ_API uint32_t QZ_PosQuat2Matrix_UnNorm(double *pose, double *m);
/**
 * @brief 4x4 transform of a PosQuat pose (quaternion taken as unit length), bottom row 0, 0, 0,
 * 1.
 * @param[in]  pose  PosQuat pose (7): x, y, z, qx, qy, qz, qw.
 * @param[out] m     Transform (16, row-major).
 * @par Aliasing
 * m must not overlap pose.
 */
QZ_API void QZ_PosQuat2Matrix(const double *pose, double *m);
/**
 * @brief Converts an XYZABC pose in degrees to position and quaternion, in place.
 * @param[in,out] buf  8 doubles: on entry x, y, z, A, B, C (degrees, R = Rz(C) Ry(B) Rx(A));
 *                     on return x, y, z, qx, qy, qz, qw, 0, the quaternion normalised.
 * @retval 1 done.
 * @retval 0 the quaternion was too short to normalise (it is written unnormalised then).
 */
QZ_API uint32_t QZ_XYZABC2XYZQ(double *buf);

/* ---- Quaternion interpolation ----------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Cached angle of one pair of end quaternions for QZ_QuatSlerpFactor /
 * QZ_QuatSlerpFactorL.
 *
 * Set initialized to 0 before the first call for a new pair; the first call fills the rest.
 */
typedef struct QZSlerpFactorState {
    uint8_t initialized;  /**< 0: the next call works out the pair's angle */
    double theta;         /**< angle between the pair in four dimensions, radians */
    double sinTheta;      /**< sine of theta */
    uint8_t useSpherical; /**< 1: spherical weights; any other value: linear weights */
} QZSlerpFactorState;

/* In this section the end quaternions are taken as unit length; neither they nor the result are
 * normalised. t = 0 gives q1, t = 1 gives q2 (as possibly negated); t outside [0, 1]
 * extrapolates. out must not overlap q1 or q2. Where 1 - |q1 . q2| is not above 0.001 the
 * weights are linear, 1 - t and t. */

/**
 * @brief Slerp along the shorter way.
 *
 * Where 1 - |q1 . q2| is not above 0.001 the weights are linear, 1 - t and t. Neither the ends
 * nor the result are normalised.
 * @param[in]     q1   Quaternion (4), the start, taken as unit length.
 * @param[in,out] q2   Quaternion (4), the end, taken as unit length; negated in the caller's
 *                     array first if q1 . q2 < 0.
 * @param[in]     t    Fraction: 0 gives q1, 1 gives q2 (as possibly negated); outside [0, 1]
 *                     extrapolates.
 * @param[out]    out  Quaternion (4), the interpolated orientation.
 * @par Aliasing
 * out must not overlap q1 or q2.
 */
QZ_API void QZ_QuatSlerp(const double *q1, double *q2, double t, double *out);
/**
 * @brief Slerp along the longer way (180 degrees or more), through a negated copy of q2 when
 * q1 . q2 > 0.
 *
 * With q1 = q2 the result passes through zero at t = 0.5. Where 1 - |q1 . q2| is not above 0.001
 * the weights are linear. Neither the ends nor the result are normalised.
 * @param[in]  q1   Quaternion (4), the start, taken as unit length.
 * @param[in]  q2   Quaternion (4), the end, taken as unit length; never written.
 * @param[in]  t    Fraction: 0 gives q1, 1 gives q2 (as possibly negated); outside [0, 1]
 *                  extrapolates.
 * @param[out] out  Quaternion (4), the interpolated orientation.
 * @par Aliasing
 * out must not overlap q1 or q2.
 */
QZ_API void QZ_QuatSlerpL(const double *q1, const double *q2, double t, double *out);
/**
 * @brief QZ_QuatSlerp with the pair's angle kept in a state record.
 * @param[in]     q1     Quaternion (4), the start, taken as unit length.
 * @param[in,out] q2     Quaternion (4), the end, taken as unit length; the first call
 *                       (initialized == 0) may negate it in place. Later calls must pass the
 *                       same q1 and q2 arrays.
 * @param[in]     t      Fraction: 0 gives q1, 1 gives q2; outside [0, 1] extrapolates.
 * @param[out]    out    Quaternion (4), the interpolated orientation.
 * @param[in,out] state  Cached angle of the pair; filled by the first call.
 * @par Aliasing
 * out must not overlap q1 or q2.
 */
QZ_API void QZ_QuatSlerpFactor(const double *q1, double *q2, double t, double *out,
                               QZSlerpFactorState *state);
/**
 * @brief As QZ_QuatSlerpFactor along the longer way.
 * @param[in]     q1     Quaternion (4), the start, taken as unit length.
 * @param[in,out] q2     Quaternion (4), the end, taken as unit length; the first call negates it
 *                       in place if q1 . q2 > 0. Later calls must pass the same q1 and q2 arrays.
 * @param[in]     t      Fraction: 0 gives q1, 1 gives q2; outside [0, 1] extrapolates.
 * @param[out]    out    Quaternion (4), the interpolated orientation.
 * @param[in,out] state  Cached angle of the pair; filled by the first call.
 * @par Aliasing
 * out must not overlap q1 or q2.
 */
QZ_API void QZ_QuatSlerpFactorL(const double *q1, double *q2, double t, double *out,
                                QZSlerpFactorState *state);
/**
 * @brief Sense in which the frame's x axis turns about an axis from q1 to q2.
 * @param[in] q1    Quaternion (4), the start orientation.
 * @param[in] q2    Quaternion (4), the end orientation.
 * @param[in] axis  Direction (3), any length.
 * @retval -1 the signed angle of the x axis's projections is negative.
 * @retval 1 otherwise, also for no turn and for a half turn.
 */
QZ_API int32_t QZ_QuatSlerpDir(const double *q1, const double *q2, const double *axis);

/* ---- Axis-angle rotations --------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* A rotation vector is the unit axis times the angle in radians. No output may overlap an
 * input. */

/**
 * @brief Rotation matrix of a rotation vector (Rodrigues).
 * @param[in]  r  Rotation vector (3): unit axis times angle (rad); shorter than 1e-10 gives the
 *                identity.
 * @param[out] R  Rotation matrix (9, row-major).
 * @par Aliasing
 * R must not overlap r.
 */
QZ_API void axis_angle_to_rotmat(const double *r, double *R);
/**
 * @brief Rotation vector of a rotation matrix, angle in [0, pi].
 *
 * angle = acos((trace - 1) / 2), axis (r21 - r12, r02 - r20, r10 - r01) / (2 sin(angle)). Angles
 * below 1e-10 give (0, 0, 0); as the trace rounds to 3 below about 1.5e-8, so do those. Towards a
 * half turn the length of that quotient is off by about 5e-16 / (pi - angle)^2 relative (2e-8 at
 * pi - 1e-4). Angles above pi - 1e-5, half turns included, take the axis from the symmetric part
 * instead: with c = (trace - 1) / 2 and r_ii the largest diagonal element (the first of equals),
 * k_i = sqrt((r_ii - c) / (1 - c)), k_j = (r_ij + r_ji) / (2 (1 - c) k_i), the sign of k_i that
 * of the matching antisymmetric difference (r21 - r12 for i = 0 ...), positive when it is zero;
 * k is not renormalised. A symmetric half-turn matrix thus gives pi * k, not the zero vector.
 * @param[in]  R  Rotation matrix (9, row-major).
 * @param[out] r  Rotation vector (3): axis times angle (rad).
 * @par Aliasing
 * r must not overlap R.
 */
QZ_API void rotmat_to_axis_angle(const double *R, double *r);
/**
 * @brief Rotation vector of the composition of two rotation vectors, matrix R(r1) R(r2).
 *
 * r2 is applied first, then r1, both in the fixed frame.
 * @param[in]  r1   Rotation vector (3, rad), applied second.
 * @param[in]  r2   Rotation vector (3, rad), applied first.
 * @param[out] out  Rotation vector (3, rad) of the composition.
 * @par Aliasing
 * out must not overlap r1 or r2.
 */
QZ_API void AngleMult(const double *r1, const double *r2, double *out);
/**
 * @brief Relative rotation out = Ra^T Rb: from orientation a to orientation b, expressed in
 * frame a.
 * @param[in]  Ra   Rotation matrix (9, row-major) of orientation a.
 * @param[in]  Rb   Rotation matrix (9, row-major) of orientation b.
 * @param[out] out  Rotation matrix (9, row-major).
 * @par Aliasing
 * out must not overlap Ra or Rb.
 */
QZ_API void relative_rotation(const double *Ra, const double *Rb, double *out);
/**
 * @brief Rotation vector of relative_rotation(R(r1), R(r2)).
 * @param[in]  r1   Rotation vector (3, rad) of orientation a.
 * @param[in]  r2   Rotation vector (3, rad) of orientation b.
 * @param[out] out  Rotation vector (3, rad) from a to b, in frame a.
 * @par Aliasing
 * out must not overlap r1 or r2.
 */
QZ_API void relative_Angle(const double *r1, const double *r2, double *out);

#ifdef __cplusplus
}
#endif

#endif /* QZ_QUATERNIONS_H */
