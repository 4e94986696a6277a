/*
 * QZMatrix: vectors, matrices, decompositions, Euler angles, frames and Jacobians of QZMath.
 *
 * Matrices are row-major arrays of double: element [i][j] of an m-by-n matrix is at i*n + j.
 * Sizes 2 to 8 are carried in the names (QZ_VectNorm3, QZ_MatrixInv6). Row-pointer matrices
 * (names ending in X or XX, and the LUP functions) are arrays of row pointers with signed counts.
 * Element-wise operations may write over an input; products, transposes and cross products must
 * not share storage with an input unless stated.
 *
 * Families:
 *   vector operations             QZ_Vect*
 *   matrix operations             QZ_Matrix*
 *   inversion and determinant     QZ_MatrixInv* QZ_MatrixDeterminant
 *   LUP decomposition             QZ_MatLUP*
 *   pseudo-inverses               QZ_LeftPsoInv76 QZ_RightPsoInv67
 *   Cholesky and eigen            Cholesky Cholesky7 VMV eig eig7 generalized_eig generalized_eig7
 *   Euler angles and rotations    QZ_XYZABC* QZ_*ZYZ QZ_Rot*
 *   frame geometry                QZ_DH2Matrix QZ_Skew* ...
 *   Jacobian frame transforms     QZ_Jacob*
 */
#ifndef QZ_MATRIX_H
#define QZ_MATRIX_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Vector operations ------------------------------------------------------------------ */

/* ---- Fixed-size matrix operations ------------------------------------------------------- */

/* ---- Matrix inversion and determinant --------------------------------------------------- */

/* ---- LUP decomposition ------------------------------------------------------------------ */

/* ---- Pseudo-inverses -------------------------------------------------------------------- */

/* ---- Cholesky and eigen decomposition --------------------------------------------------- */

/* ---- Elementary rotations and Euler angles ---------------------------------------------- */

/* ---- Frame geometry --------------------------------------------------------------------- */

/* ---- Jacobian frame transforms ---------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* QZ_MATRIX_H */
