/*
 * QZQuaternions: quaternions and rotation vectors of QZMath.
 *
 * A quaternion is four doubles x, y, z, w with the scalar last; a rotation by phi about the unit
 * axis k is (k sin(phi/2), cos(phi/2)). Products are Hamilton products. Rotation matrices are
 * 3x3 row-major, homogeneous transforms 4x4 row-major with the position at elements 3, 7, 11.
 *
 * Families:
 *   quaternion algebra         QZ_Quat*
 *   conversions and poses      QZ_Matrix2Quaternion* QZ_Quaternion2Matrix* ...
 *   interpolation              QZ_QuatSlerp* QZSlerpFactorState
 *   rotation vectors           axis_angle_to_rotmat rotmat_to_axis_angle relative_rotation ...
 */
#ifndef QZ_QUATERNIONS_H
#define QZ_QUATERNIONS_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Quaternion algebra ----------------------------------------------------------------- */

/* Hamilton product out = a (x) b; the matrix of a (x) b is the matrix of a times that of b. Not
 * normalised. out may be a or b. */
QZ_API void QZ_QuatMult(const double *a, const double *b, double *out);
/* Divides q by its length in place and returns 1; a length <= 1e-16 returns 0, q unchanged. */
QZ_API uint32_t QZ_QuaternionNorm(double *q);
/* Euclidean length of q. */
QZ_API double QZ_QuaternionSqrtNorm(const double *q);
/* out = (-x, -y, -z, w). out may be q. */
QZ_API void QZ_QuaternionConjugate(const double *q, double *out);
/* out = conjugate of q divided by |q| (the unit inverse rotation, not q^-1 unless |q| = 1),
 * returns 1; a length not above 1e-9 (or NaN) returns 0 with out unwritten. out may be q. */
QZ_API uint32_t QZ_QuaternionInverse(const double *q, double *out);
/* Angle in degrees of the shorter rotation between unit quaternions q1 and q2 (q and -q are the
 * same orientation), in [0.0016205694361395497, 180]: |q1 . q2| is clamped to 0.9999999999, so
 * equal orientations give the minimum, not 0, and every angle below 2.83e-5 rad reads as that
 * minimum: not a fine convergence test (the vector part of q1 (x) q2^-1 resolves ~1e-16 rad).
 * Inputs are not normalised. */
QZ_API double QZ_QuaternionAngleDeg(const double *q1, const double *q2);
/* QZ_QuaternionAngleDeg converted to radians (minimum 2.8284272417823128e-05). */
QZ_API double QZ_QuaternionAngleArc(const double *q1, const double *q2);

/* ---- Quaternion, matrix and pose conversions -------------------------------------------- */

/* In this section no output may overlap an input. */

/* Quaternion of a 3x3 rotation matrix. Of four forms, the first with t = r00 + r11 + r22 > 0,
 * else r00 largest, else r11 > r22, else r22 (strict tests, ties to the later form); w > 0 in
 * the first, the largest axis component > 0 in the others. Not normalised; a matrix that is not
 * a rotation may give NaN. */
QZ_API void QZ_Matrix2Quaternion3(const double *r, double *q);
/* As QZ_Matrix2Quaternion3 for the rotation block of a 4x4 transform (nothing else is read). */
QZ_API void QZ_Matrix2Quaternion4(const double *m, double *q);
/* 3x3 rotation matrix of a quaternion taken to be of unit length. */
QZ_API void QZ_Quaternion2Matrix3(const double *q, double *r);
/* 4x4 matrix with the rotation of q (unit length) and zeros elsewhere, element 15 included. */
QZ_API void QZ_Quaternion2Matrix4(const double *q, double *m);
/* PosQuat pose (7) of a 4x4 transform: its position, then QZ_Matrix2Quaternion4 of it. */
QZ_API void QZ_Matrix2PosQuat(const double *m, double *pose);
/* Normalises the pose's quaternion in place (left as it was when its length is <= 1e-16), then
 * builds the transform as QZ_PosQuat2Matrix does. Returns 1. */
QZ_API uint32_t QZ_PosQuat2Matrix_UnNorm(double *pose, double *m);
/* 4x4 transform of a PosQuat pose (quaternion taken as unit length), bottom row 0, 0, 0, 1. */
QZ_API void QZ_PosQuat2Matrix(const double *pose, double *m);
/* In place on 8 doubles: x, y, z, A, B, C (degrees, R = Rz(C) Ry(B) Rx(A)) becomes x, y, z,
 * qx, qy, qz, qw, 0. The quaternion is normalised; returns 1, or 0 if it was too short to
 * normalise (it is written unnormalised then). */
QZ_API uint32_t QZ_XYZABC2XYZQ(double *buf);

/* ---- Quaternion interpolation ----------------------------------------------------------- */

/* Cached angle of one pair of end quaternions for QZ_QuatSlerpFactor / QZ_QuatSlerpFactorL.
 * Set initialized to 0 before the first call for a new pair; the first call fills the rest. */
typedef struct QZSlerpFactorState {
    uint8_t initialized;  /* 0: the next call works out the pair's angle */
    double theta;         /* angle between the pair in four dimensions, radians */
    double sinTheta;      /* sine of theta */
    uint8_t useSpherical; /* 1: spherical weights; any other value: linear weights */
} QZSlerpFactorState;

/* In this section the end quaternions are taken as unit length; neither they nor the result are
 * normalised. t = 0 gives q1, t = 1 gives q2 (as possibly negated); t outside [0, 1]
 * extrapolates. out must not overlap q1 or q2. Where 1 - |q1 . q2| is not above 0.001 the
 * weights are linear, 1 - t and t. */

/* Slerp along the shorter way: if q1 . q2 < 0, q2 is negated in the caller's array first. */
QZ_API void QZ_QuatSlerp(const double *q1, double *q2, double t, double *out);
/* Slerp along the longer way (180 degrees or more), through a negated copy of q2 when
 * q1 . q2 > 0; q2 is never written. With q1 = q2 the result passes through zero at t = 0.5. */
QZ_API void QZ_QuatSlerpL(const double *q1, const double *q2, double t, double *out);
/* QZ_QuatSlerp with the pair's angle kept in *state: the first call (initialized == 0) may
 * negate q2 in place and fills the state; later calls must pass the same q1 and q2 arrays. */
QZ_API void QZ_QuatSlerpFactor(const double *q1, double *q2, double t, double *out,
                               QZSlerpFactorState *state);
/* As QZ_QuatSlerpFactor along the longer way: the first call negates q2 in place if
 * q1 . q2 > 0. */
QZ_API void QZ_QuatSlerpFactorL(const double *q1, double *q2, double t, double *out,
                                QZSlerpFactorState *state);
/* Sense in which the frame's x axis turns about axis (any length) from q1 to q2: -1 when the
 * signed angle of its projections is negative, else +1 (also for no turn and for a half turn). */
QZ_API int32_t QZ_QuatSlerpDir(const double *q1, const double *q2, const double *axis);

/* ---- Axis-angle rotations --------------------------------------------------------------- */

/* A rotation vector is the unit axis times the angle in radians. No output may overlap an
 * input. */

/* Rotation matrix of a rotation vector (Rodrigues); a vector shorter than 1e-10 gives the
 * identity. */
QZ_API void axis_angle_to_rotmat(const double *r, double *R);
/* Rotation vector of a rotation matrix, angle in [0, pi]: angle = acos((trace - 1) / 2), axis
 * (r21 - r12, r02 - r20, r10 - r01) / (2 sin(angle)). Angles below 1e-10 give (0, 0, 0); as
 * the trace rounds to 3 below about 1.5e-8, so do those. Towards a half turn the length of that
 * quotient is off by about 5e-16 / (pi - angle)^2 relative (2e-8 at pi - 1e-4). Angles above
 * pi - 1e-5, half turns included, take the axis from the symmetric part instead: with
 * c = (trace - 1) / 2 and r_ii the largest diagonal element (the first of equals),
 * k_i = sqrt((r_ii - c) / (1 - c)), k_j = (r_ij + r_ji) / (2 (1 - c) k_i), the sign of k_i that
 * of the matching antisymmetric difference (r21 - r12 for i = 0 ...), positive when it is zero;
 * k is not renormalised. A symmetric half-turn matrix thus gives pi * k, not the zero vector. */
QZ_API void rotmat_to_axis_angle(const double *R, double *r);
/* Rotation vector of the composition: r2 applied first, then r1, both in the fixed frame
 * (matrix R(r1) R(r2)). */
QZ_API void AngleMult(const double *r1, const double *r2, double *out);
/* out = Ra^T Rb: the rotation from orientation a to orientation b, expressed in frame a. */
QZ_API void relative_rotation(const double *Ra, const double *Rb, double *out);
/* Rotation vector of relative_rotation(R(r1), R(r2)). */
QZ_API void relative_Angle(const double *r1, const double *r2, double *out);

#ifdef __cplusplus
}
#endif

#endif /* QZ_QUATERNIONS_H */
