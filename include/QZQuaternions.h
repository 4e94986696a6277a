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

/* ---- Quaternion, matrix and pose conversions -------------------------------------------- */

/* ---- Quaternion interpolation ----------------------------------------------------------- */

/* ---- Axis-angle rotations --------------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* QZ_QUATERNIONS_H */
