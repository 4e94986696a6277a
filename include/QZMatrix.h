/**
 * @file
 * @brief QZMatrix: vectors, matrices, decompositions, Euler angles, frames and Jacobians of
 * QZMath.
 *
 * Matrices are row-major arrays of double: element [i][j] of an m-by-n matrix is at i*n + j.
 * Sizes 2 to 8 are carried in the names (QZ_VectNorm3, QZ_MatrixInv6). Row-pointer matrices
 * (names ending in X or XX, and the LUP functions) are arrays of row pointers with signed counts.
 * Element-wise operations may write over an input; products, transposes and cross products must
 * not share storage with an input unless stated. Layouts, Euler conventions and aliasing with
 * examples: docs/conventions.md; Jacobians: docs/orientation-and-jacobians.md.
 *
 * Families:
 * @verbatim
   vector operations             QZ_Vect*
   matrix operations             QZ_Matrix*
   inversion and determinant     QZ_MatrixInv* QZ_MatrixDeterminant
   LUP decomposition             QZ_MatLUP*
   pseudo-inverses               QZ_LeftPsoInv76 QZ_RightPsoInv67
   Cholesky and eigen            Cholesky Cholesky7 VMV eig eig7 generalized_eig generalized_eig7
   Euler angles and rotations    QZ_XYZABC* QZ_*ZYZ QZ_Rot*
   frame geometry                QZ_DH2Matrix QZ_Skew* ...
   Jacobian frame transforms     QZ_Jacob*
   @endverbatim
 */
#ifndef QZ_MATRIX_H
#define QZ_MATRIX_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Vector operations ------------------------------------------------------------------ */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* Fixed sizes n = 2..8 (the suffix is n). Outputs may be the same array as an input. */

/** @name QZ_VectNorm2 .. QZ_VectNorm8 */
/** @{ */
/**
 * @brief Normalises a vector of n = 2..8 (the suffix) in place.
 *
 * |v| is the root of the sum of squares in index order.
 * @param[in,out] v  Vector (n); divided by |v|, unchanged on failure.
 * @retval 1 normalised.
 * @retval 0 QZ_IsZero(|v|); v unchanged.
 */
QZ_API int32_t QZ_VectNorm2(double *v);
QZ_API int32_t QZ_VectNorm3(double *v);
QZ_API int32_t QZ_VectNorm4(double *v);
QZ_API int32_t QZ_VectNorm5(double *v);
QZ_API int32_t QZ_VectNorm6(double *v);
QZ_API int32_t QZ_VectNorm7(double *v);
QZ_API int32_t QZ_VectNorm8(double *v);
/** @} */
/** @name QZ_VectCpy2 .. QZ_VectCpy8 */
/** @{ */
/**
 * @brief Copies a vector of n = 2..8 (the suffix) bit for bit; the source comes first.
 * @param[in]  src  Vector (n).
 * @param[out] dst  Vector (n), dst = src.
 * @par Aliasing
 * dst may be src.
 */
QZ_API void QZ_VectCpy2(const double *src, double *dst);
QZ_API void QZ_VectCpy3(const double *src, double *dst);
QZ_API void QZ_VectCpy4(const double *src, double *dst);
QZ_API void QZ_VectCpy5(const double *src, double *dst);
QZ_API void QZ_VectCpy6(const double *src, double *dst);
QZ_API void QZ_VectCpy7(const double *src, double *dst);
QZ_API void QZ_VectCpy8(const double *src, double *dst);
/** @} */
/** @name QZ_VectAdd2 .. QZ_VectAdd8 */
/** @{ */
/**
 * @brief Sum of two vectors of n = 2..8 (the suffix), out = a + b.
 * @param[in]  a    Vector (n).
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectAdd2(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd3(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd4(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd5(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd6(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd7(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd8(const double *a, const double *b, double *out);
/** @} */
/** @name QZ_VectSA2 .. QZ_VectSA8 */
/** @{ */
/**
 * @brief Scaled sum of two vectors of n = 2..8 (the suffix), out = b*s + a, the product formed
 * first.
 * @param[in]  a    Vector (n).
 * @param[in]  s    Scale of b.
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectSA2(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA3(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA4(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA5(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA6(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA7(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA8(const double *a, double s, const double *b, double *out);
/** @} */

/* Counted vectors: n is the length; n <= 0 is an empty vector (nothing read or written, sums 0).
   Outputs may be the same array as an input. */
/**
 * @brief Difference of two counted vectors, out = a - b.
 * @param[in]  a    Vector (n).
 * @param[in]  n    Length; n <= 0 reads and writes nothing.
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectSub(const double *a, int32_t n, const double *b, double *out);
/**
 * @brief Sum of two counted vectors, out = a + b.
 * @param[in]  a    Vector (n).
 * @param[in]  n    Length; n <= 0 reads and writes nothing.
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectAddX(const double *a, int32_t n, const double *b, double *out);
/**
 * @brief Element-by-element product of two counted vectors, out = a * b.
 * @param[in]  a    Vector (n).
 * @param[in]  n    Length; n <= 0 reads and writes nothing.
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectDotMult(const double *a, int32_t n, const double *b, double *out);
/**
 * @brief Scaled sum of two counted vectors, out = b*s + a, the product formed first.
 * @param[in]  a    Vector (n).
 * @param[in]  n    Length; n <= 0 reads and writes nothing.
 * @param[in]  s    Scale of b.
 * @param[in]  b    Vector (n).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void QZ_VectSAX(const double *a, int32_t n, double s, const double *b, double *out);
/**
 * @brief Scaled counted vector, out = v*s; with s exactly 1 (QZ_IsZero(s - 1)) a plain copy.
 * @param[in]  v    Vector (n).
 * @param[in]  n    Length; n <= 0 reads and writes nothing.
 * @param[in]  s    Scale.
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be v.
 */
QZ_API void QZ_VectScale(const double *v, int32_t n, double s, double *out);
/**
 * @brief Dot product: the sum of a[i]*b[i] from 0.0 in index order.
 * @param[in] a  Vector (n).
 * @param[in] b  Vector (n).
 * @param[in] n  Length.
 * @return The sum; 0.0 for n <= 0.
 */
QZ_API double QZ_VectDot(const double *a, const double *b, int32_t n);
/**
 * @brief Euclidean length: the square root of the sum of squares, no overflow scaling.
 * @param[in] v  Vector (n).
 * @param[in] n  Length.
 * @return The length; 0.0 for n <= 0.
 */
QZ_API double QZ_VectLength(const double *v, int32_t n);
/**
 * @brief Normalises a counted vector in place, v /= QZ_VectLength(v, n).
 * @param[in,out] v  Vector (n); unchanged on failure.
 * @param[in]     n  Length.
 * @retval 1 normalised.
 * @retval 0 QZ_IsZero(length), always for n <= 0; v unchanged.
 */
QZ_API int32_t QZ_VectNorm(double *v, int32_t n);
/**
 * @brief Angle between two vectors in DEGREES, in [0, 180].
 *
 * The cosine is clamped to [-1, 1]; a NaN passes through.
 * @param[in] a  Vector (n).
 * @param[in] b  Vector (n).
 * @param[in] n  Length.
 * @return The angle (degrees); 0.0 when QZ_IsZero of either length or n <= 0.
 */
QZ_API double QZ_VectAngle(const double *a, const double *b, int32_t n);
/**
 * @brief Unit vector out = v / |v|, or all zeros when |v| < 1e-6 (no flag).
 * @param[in]  v    Vector (n).
 * @param[in]  n    Length; n <= 0 writes nothing.
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out may be v.
 */
QZ_API void VectNormalized(const double *v, int32_t n, double *out);
/**
 * @brief Projection of a on the direction of b, (a.u)u with u = VectNormalized(b).
 * @param[in]  a    Vector (n).
 * @param[in]  b    Vector (n), the direction; |b| < 1e-6 gives zero.
 * @param[out] out  Vector (n), the projection.
 * @param[in]  n    Length, 1..3; any other n writes nothing.
 * @par Aliasing
 * out may be a or b.
 */
QZ_API void CalShadowVector(const double *a, const double *b, double *out, int32_t n);

/* 3-vectors (points or directions in space). */
/**
 * @brief Cross product of two 3-vectors, out = a x b.
 * @param[in]  a    Vector (3).
 * @param[in]  b    Vector (3).
 * @param[out] out  Vector (3).
 * @par Aliasing
 * out must not be a or b.
 */
QZ_API void QZ_VectCross(const double *a, const double *b, double *out);
/**
 * @brief Distance from point a to point b.
 * @param[in] a  Point (3).
 * @param[in] b  Point (3).
 * @return |b - a|.
 */
QZ_API double QZ_GetVectLenA2B(const double *a, const double *b);
/**
 * @brief Unit vector from point a towards point b.
 * @param[in]  a    Point (3).
 * @param[in]  b    Point (3).
 * @param[out] out  Vector (3): the unit vector, or on failure the unnormalised b - a.
 * @par Aliasing
 * out may be a or b.
 * @retval 1 done.
 * @retval 0 |b - a|^2 < 1e-9 (points closer than about 3.2e-5); out holds b - a.
 */
QZ_API int32_t QZ_GetVectNormA2B(const double *a, const double *b, double *out);
/**
 * @brief As QZ_GetVectNormA2B, also giving the distance.
 * @param[in]  a    Point (3).
 * @param[in]  b    Point (3).
 * @param[out] out  Vector (3): the unit vector, or on failure the unnormalised b - a.
 * @param[out] len  |b - a| on success; not written on failure.
 * @par Aliasing
 * out may be a or b.
 * @retval 1 done.
 * @retval 0 |b - a|^2 < 1e-9; out holds b - a, *len unwritten.
 */
QZ_API int32_t QZ_GetVectNormLenA2B(const double *a, const double *b, double *out, double *len);

/* ---- Fixed-size matrix operations ------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* Row-major n-by-n matrices, n = 2..8 (the suffix is n). A product's element [i][j] is the
   running sum over k = 0..n-1 in increasing order, starting with the k = 0 product. Products
   and transposes must not share storage with an input; copies and sums may. */
/** @name QZ_MatrixMult2 .. QZ_MatrixMult8 */
/** @{ */
/**
 * @brief Product of two n-by-n matrices, n = 2..8 (the suffix), Out = A . B.
 *
 * Element [i][j] is the running sum over k = 0..n-1 in increasing order, starting with the k = 0
 * product.
 * @param[in]  A    Matrix (n*n).
 * @param[in]  B    Matrix (n*n).
 * @param[out] Out  Matrix (n*n).
 * @par Aliasing
 * Out must not share storage with A or B.
 */
QZ_API void QZ_MatrixMult2(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult3(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult4(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult5(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult6(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult7(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult8(const double *A, const double *B, double *Out);
/** @} */
/** @name QZ_MatrixCpy2 .. QZ_MatrixCpy8 */
/** @{ */
/**
 * @brief Copies an n-by-n matrix, n = 2..8 (the suffix), bit for bit; the source comes first.
 *
 * All n*n elements are copied.
 * @param[in]  src  Matrix (n*n).
 * @param[out] dst  Matrix (n*n), dst = src.
 * @par Aliasing
 * dst may be src.
 */
QZ_API void QZ_MatrixCpy2(const double *src, double *dst);
QZ_API void QZ_MatrixCpy3(const double *src, double *dst);
QZ_API void QZ_MatrixCpy4(const double *src, double *dst);
QZ_API void QZ_MatrixCpy5(const double *src, double *dst);
QZ_API void QZ_MatrixCpy6(const double *src, double *dst);
QZ_API void QZ_MatrixCpy7(const double *src, double *dst);
QZ_API void QZ_MatrixCpy8(const double *src, double *dst);
/** @} */
/** @name QZ_MatrixIdentity2 .. QZ_MatrixIdentity8 */
/** @{ */
/**
 * @brief Sets an n-by-n matrix, n = 2..8 (the suffix), to the identity.
 *
 * Each row is set to 0.0, then its diagonal element to 1.0.
 * @param[out] M  Matrix (n*n).
 */
QZ_API void QZ_MatrixIdentity2(double *M);
QZ_API void QZ_MatrixIdentity3(double *M);
QZ_API void QZ_MatrixIdentity4(double *M);
QZ_API void QZ_MatrixIdentity5(double *M);
QZ_API void QZ_MatrixIdentity6(double *M);
QZ_API void QZ_MatrixIdentity7(double *M);
QZ_API void QZ_MatrixIdentity8(double *M);
/** @} */
/** @name QZ_MatrixAdd2 .. QZ_MatrixAdd8 */
/** @{ */
/**
 * @brief Sum of two n-by-n matrices, n = 2..8 (the suffix), Out = A + B, all n*n elements.
 * @param[in]  A    Matrix (n*n).
 * @param[in]  B    Matrix (n*n).
 * @param[out] Out  Matrix (n*n).
 * @par Aliasing
 * Out may be A or B.
 */
QZ_API void QZ_MatrixAdd2(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd3(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd4(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd5(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd6(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd7(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd8(const double *A, const double *B, double *Out);
/** @} */
/** @name QZ_MatrixTranspose2 .. QZ_MatrixTranspose8 */
/** @{ */
/**
 * @brief Transpose of an n-by-n matrix, n = 2..8 (the suffix), bit for bit.
 * @param[in]  A  Matrix (n*n).
 * @param[out] B  Matrix (n*n), the transpose of A.
 * @par Aliasing
 * B must not share storage with A.
 */
QZ_API void QZ_MatrixTranspose2(const double *A, double *B);
QZ_API void QZ_MatrixTranspose3(const double *A, double *B);
QZ_API void QZ_MatrixTranspose4(const double *A, double *B);
QZ_API void QZ_MatrixTranspose5(const double *A, double *B);
QZ_API void QZ_MatrixTranspose6(const double *A, double *B);
QZ_API void QZ_MatrixTranspose7(const double *A, double *B);
QZ_API void QZ_MatrixTranspose8(const double *A, double *B);
/** @} */

/* Single shapes. Their product sums start from 0.0 (so a -0.0 lone product gives +0.0), except
   QZ_MatrixMult3m4, which starts with its k = 0 product like the square family. T is a 4-by-4
   transform of which only the upper-left 3-by-3 rotation block is read. */
/**
 * @brief Product Out (6x7) = A (6x7) . B (7x7), sums from 0.0.
 * @param[in]  A    Matrix (6x7, 42).
 * @param[in]  B    Matrix (7x7, 49).
 * @param[out] Out  Matrix (6x7, 42).
 * @par Aliasing
 * Out must not share storage with A or B.
 */
QZ_API void QZ_MatrixMult6777(const double *A, const double *B, double *Out);
/**
 * @brief Product Out (6x6) = A (6x7) . B (7x6), sums from 0.0.
 * @param[in]  A    Matrix (6x7, 42).
 * @param[in]  B    Matrix (7x6, 42).
 * @param[out] Out  Matrix (6x6, 36).
 * @par Aliasing
 * Out must not share storage with A or B.
 */
QZ_API void QZ_MatrixMult6776(const double *A, const double *B, double *Out);
/**
 * @brief Product Out = A . B of 4x4 matrices; equal in value to QZ_MatrixMult4 (sums from 0.0).
 * @param[in]  A    Matrix (4x4, 16).
 * @param[in]  B    Matrix (4x4, 16).
 * @param[out] Out  Matrix (4x4, 16).
 * @par Aliasing
 * Out must not share storage with A or B.
 */
QZ_API void QZ_MMM44(const double *A, const double *B, double *Out);
/**
 * @brief Product Out (3x3) = A (3x3) . rotation block of T, sums starting with the k = 0 product.
 * @param[in]  A    Matrix (3x3, 9).
 * @param[in]  T    Transform (4x4, 16); only its upper-left 3-by-3 block is read.
 * @param[out] Out  Matrix (3x3, 9).
 * @par Aliasing
 * Out must not share storage with A or T.
 */
QZ_API void QZ_MatrixMult3m4(const double *A, const double *T, double *Out);
/**
 * @brief Difference Out = A - B of 6x7 matrices.
 * @param[in]  A    Matrix (6x7, 42).
 * @param[in]  B    Matrix (6x7, 42).
 * @param[out] Out  Matrix (6x7, 42).
 * @par Aliasing
 * Out may be A or B.
 */
QZ_API void QZ_MatrixSub67(const double *A, const double *B, double *Out);
/**
 * @brief Out = A . diag(d) for a 6x6 A: column j of A times d[j].
 * @param[in]  A    Matrix (6x6, 36).
 * @param[in]  d    Diagonal (6).
 * @param[out] Out  Matrix (6x6, 36).
 * @par Aliasing
 * Out may be A.
 */
QZ_API void QZ_MmultDiagM66(const double *A, const double *d, double *Out);
/**
 * @brief Transpose B (7x6) of A (6x7).
 * @param[in]  A  Matrix (6x7, 42).
 * @param[out] B  Matrix (7x6, 42).
 * @par Aliasing
 * B must not share storage with A.
 */
QZ_API void QZ_Mat67Transpose(const double *A, double *B);
/**
 * @brief Transpose B (3x3) of the rotation block of T.
 * @param[in]  T  Transform (4x4, 16); only its upper-left 3-by-3 block is read.
 * @param[out] B  Matrix (3x3, 9).
 * @par Aliasing
 * B must not share storage with T.
 */
QZ_API void Mat4433Transpose(const double *T, double *B);
/**
 * @brief Transpose of a 3x3 matrix (same as QZ_MatrixTranspose3).
 * @param[in]  A  Matrix (3x3, 9).
 * @param[out] B  Matrix (3x3, 9).
 * @par Aliasing
 * B must not share storage with A.
 */
QZ_API void MatTr33(const double *A, double *B);
/**
 * @brief Transpose of a 4x4 matrix (same as QZ_MatrixTranspose4).
 * @param[in]  A  Matrix (4x4, 16).
 * @param[out] B  Matrix (4x4, 16).
 * @par Aliasing
 * B must not share storage with A.
 */
QZ_API void MatTr44(const double *A, double *B);

/* Matrix times vector and row vector times matrix; out must not be an input. Sums from 0.0,
   except QZ_MatrixMultVect3, which starts with the k = 0 product. */
/**
 * @brief out (3) = M (3x3) . v, sums starting with the k = 0 product.
 * @param[in]  M    Matrix (3x3, 9).
 * @param[in]  v    Vector (3).
 * @param[out] out  Vector (3).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MatrixMultVect3(const double *M, const double *v, double *out);
/**
 * @brief out (4) = M (4x4) . v, sums from 0.0.
 * @param[in]  M    Matrix (4x4, 16).
 * @param[in]  v    Vector (4).
 * @param[out] out  Vector (4).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MatrixMultVect4(const double *M, const double *v, double *out);
/**
 * @brief out (6) = M (6x6) . v, sums from 0.0.
 * @param[in]  M    Matrix (6x6, 36).
 * @param[in]  v    Vector (6).
 * @param[out] out  Vector (6).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MatrixMultVect6(const double *M, const double *v, double *out);
/**
 * @brief out (7) = M (7x7) . v, sums from 0.0.
 * @param[in]  M    Matrix (7x7, 49).
 * @param[in]  v    Vector (7).
 * @param[out] out  Vector (7).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MatrixMultVect7(const double *M, const double *v, double *out);
/**
 * @brief out (6) = M (6x7) . v (7), sums from 0.0.
 * @param[in]  M    Matrix (6x7, 42).
 * @param[in]  v    Vector (7).
 * @param[out] out  Vector (6).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_Matrix67MultVect7(const double *M, const double *v, double *out);
/**
 * @brief out (7) = M (7x6) . v (6), sums from 0.0.
 * @param[in]  M    Matrix (7x6, 42).
 * @param[in]  v    Vector (6).
 * @param[out] out  Vector (7).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_Matrix76MultVect6(const double *M, const double *v, double *out);
/**
 * @brief out (3) = rotation block of T (4x4) . v (3), sums from 0.0.
 * @param[in]  T    Transform (4x4, 16); only its upper-left 3-by-3 block is read.
 * @param[in]  v    Vector (3).
 * @param[out] out  Vector (3).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MVmult43(const double *T, const double *v, double *out);
/**
 * @brief Row vector times matrix, out (6) = v (1x6) . M (6x6), sums from 0.0.
 * @param[in]  v    Vector (6).
 * @param[in]  M    Matrix (6x6, 36).
 * @param[out] out  Vector (6).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_VMmult1666(const double *v, const double *M, double *out);
/**
 * @brief Row vector times matrix, out (7) = v (1x7) . M (7x7), sums from 0.0.
 * @param[in]  v    Vector (7).
 * @param[in]  M    Matrix (7x7, 49).
 * @param[out] out  Vector (7).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_VMmult1777(const double *v, const double *M, double *out);

/* Row-pointer matrices: arrays of row pointers with signed counts; a count of 0 or less is an
   empty dimension. Input matrices are only read. */
/**
 * @brief Sum Out = A + B of row-pointer matrices over rows x cols.
 * @param[in]  A     Row pointers (rows), each to cols elements; only read.
 * @param[in]  rows  Row count; <= 0 writes nothing.
 * @param[in]  cols  Column count; <= 0 writes nothing.
 * @param[in]  B     Row pointers (rows), each to cols elements; only read.
 * @param[out] Out   Row pointers (rows), each to cols elements, which receive the sum.
 * @par Aliasing
 * Out may be A or B.
 */
QZ_API void QZ_MatrixAddX(double *const *A, int32_t rows, int32_t cols, double *const *B,
                          double *const *Out);
/**
 * @brief Transpose B (cols x rows) of the row-pointer matrix A (rows x cols).
 * @param[in]  A     Row pointers (rows), each to cols elements; only read.
 * @param[in]  rows  Row count of A; <= 0 writes nothing.
 * @param[in]  cols  Column count of A; <= 0 writes nothing.
 * @param[out] B     Row pointers (cols), each to rows elements, which receive the transpose.
 * @par Aliasing
 * B must not share storage with A.
 */
QZ_API void QZ_MatrixTransposeXX(double *const *A, int32_t rows, int32_t cols, double *const *B);
/**
 * @brief Product Out (n x p) = A (n x m) . B (m x p) of row-pointer matrices, sums from 0.0.
 * @param[in]  A    Row pointers (n), each to m elements; only read.
 * @param[in]  n    Rows of A and Out; n <= 0 writes nothing.
 * @param[in]  m    Columns of A, rows of B; m <= 0 gives zeros.
 * @param[in]  B    Row pointers (m), each to p elements; only read.
 * @param[in]  p    Columns of B and Out; p <= 0 writes nothing.
 * @param[out] Out  Row pointers (n), each to p elements, which receive the product.
 * @par Aliasing
 * Out must not share storage with A or B.
 */
QZ_API void QZ_MatrixMultXmX(double *const *A, int32_t n, int32_t m, double *const *B, int32_t p,
                             double *const *Out);
/**
 * @brief out (n) = M (n x m) . v (m) for a row-pointer matrix, sums from 0.0.
 * @param[in]  M    Row pointers (n), each to m elements; only read.
 * @param[in]  n    Rows of M; n <= 0 writes nothing.
 * @param[in]  m    Columns of M; m <= 0 gives zeros.
 * @param[in]  v    Vector (m).
 * @param[out] out  Vector (n).
 * @par Aliasing
 * out must not be an input.
 */
QZ_API void QZ_MatrixMultVectX(double *const *M, int32_t n, int32_t m, const double *v,
                               double *out);

/* ---- Matrix inversion and determinant --------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/** @name QZ_MatrixInv2 .. QZ_MatrixInv8 */
/** @{ */
/**
 * @brief Inverse of an n-by-n matrix, n = 2..8 (the suffix), by LU factorisation with partial
 * pivoting.
 * @param[in]  A     Matrix (n*n); never written.
 * @param[out] Ainv  Matrix (n*n), the inverse; unwritten on failure.
 * @par Aliasing
 * Ainv may be A.
 * @retval 1 inverted.
 * @retval 0 a pivot column's largest |value| is at most 1e-16 (absolute, not scaled); Ainv
 * unwritten.
 */
QZ_API uint8_t QZ_MatrixInv2(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv3(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv4(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv5(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv6(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv7(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv8(const double *A, double *Ainv);
/** @} */
/**
 * @brief Inverse of a rigid 4-by-4 homogeneous transform in closed form.
 *
 * Rotation transposed, position -R^T p. No check that R is a rotation.
 * @param[in]  T     Transform (16); its last row is not read.
 * @param[out] Tinv  Transform (16), the inverse; last row (0, 0, 0, 1) whatever T's last row
 *                   holds.
 * @par Aliasing
 * Tinv must not share storage with T.
 * @return 1, always.
 */
QZ_API uint8_t QZ_PGMatrixInv(const double *T, double *Tinv);
/**
 * @brief Determinant of the leading n-by-n block of an 8-by-8 row-major array.
 *
 * By cofactor expansion along the first row.
 * @param[in] A  Array (8x8, 64), row stride 8 whatever n is.
 * @param[in] n  Block size, 1..8.
 * @return The determinant; A[0] for n = 1; 0.0 for n < 1; 0.0 also for n > 8, without reading A
 * (the array holds no larger block).
 */
QZ_API double QZ_MatrixDeterminant(const double *A, int32_t n);

/* ---- LUP decomposition ------------------------------------------------------------------ */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief LU decomposition with partial pivoting, in place, of an m-by-n row-pointer matrix.
 *
 * The strict lower triangle of the leading len = min(m, n) rows receives the multipliers of a
 * unit lower-triangular L, the rest U; only those rows are searched for pivots, rows below them
 * are left as they are. Rows are exchanged by moving their contents (the row pointers stay put),
 * in blocks through a fixed scratch row, so rows of any length are accepted.
 * @param[in,out] A  Row pointers (m), each to n elements: the matrix, replaced by L and U.
 * @param[in]     m  Row count; negative counts as 0.
 * @param[in]     n  Column count; negative counts as 0.
 * @param[out]    P  Array of len + 1: P[i] the input row now in row i, P[len] the number of
 *                   exchanges.
 * @retval 0 success (also for a negative m or n, with P[0] = 0).
 * @retval 1 a pivot column's largest |value| is below 1e-16; A is left partly reduced, P as far
 * as it got.
 */
QZ_API int32_t QZ_MatLUPD(double *const *A, int32_t m, int32_t n, int32_t *P);
/**
 * @brief Solves A x = b for the n-by-n matrix that QZ_MatLUPD decomposed.
 * @param[in]  LU  Row pointers (n), each to n elements: L and U from QZ_MatLUPD; not modified.
 * @param[in]  n   Size; n <= 0 writes nothing.
 * @param[in]  P   Array of n + 1: the permutation from QZ_MatLUPD; not modified.
 * @param[in]  b   Vector (n), the right-hand side.
 * @param[out] x   Vector (n), the solution.
 * @par Aliasing
 * x must not share storage with b.
 */
QZ_API void QZ_LUPSolveEq(double *const *LU, int32_t n, const int32_t *P, const double *b,
                          double *x);
/**
 * @brief Determinant of the n-by-n matrix that QZ_MatLUPD decomposed.
 *
 * The product of U's diagonal, negated for an odd number of exchanges.
 * @param[in] LU  Row pointers (n), each to n elements: L and U from QZ_MatLUPD.
 * @param[in] n   Size.
 * @param[in] P   Array of n + 1: the permutation from QZ_MatLUPD.
 * @return The determinant; 0.0 for n <= 0, without reading LU or P.
 */
QZ_API double QZ_MatLUPDet(double *const *LU, int32_t n, const int32_t *P);
/**
 * @brief Inverse of the n-by-n matrix decomposed into LU and P.
 *
 * No singularity test: a zero pivot gives inf or NaN.
 * @param[in]  LU   Row pointers (n), each to n elements: L and U from QZ_MatLUPD.
 * @param[in]  n    Size; n <= 0 writes nothing.
 * @param[in]  P    Array of n + 1: the permutation from QZ_MatLUPD.
 * @param[out] Inv  Row pointers (n), each to n elements, which receive the inverse.
 * @par Aliasing
 * the rows of Inv must not share storage with the rows of LU.
 */
QZ_API void QZ_MatLUPInv(double *const *LU, int32_t n, const int32_t *P, double *const *Inv);

/* ---- Pseudo-inverses -------------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* Moore-Penrose pseudo-inverses of a seven-joint Jacobian's two shapes by the normal equations:
   the 6-by-6 Gram matrix is inverted as QZ_MatrixInv6 does, with no damping, so it fails once a
   pivot column's largest |value| is <= 1e-16 (absolute: entries near 1e-9 already fail). The input
   is read before the output is written, so Apinv may be A. */
/**
 * @brief Left pseudo-inverse Apinv (6x7) = (A^T A)^-1 A^T of A (7x6), by the normal equations.
 *
 * Apinv . A = I for full column rank. The 6-by-6 Gram matrix is inverted as QZ_MatrixInv6 does,
 * with no damping, so it fails once a pivot column's largest |value| is <= 1e-16 (absolute:
 * entries near 1e-9 already fail).
 * @param[in]  A      Matrix (7x6, 42).
 * @param[out] Apinv  Matrix (6x7, 42); not written on failure.
 * @par Aliasing
 * Apinv may be A (the input is read before the output is written).
 * @retval 1 done.
 * @retval 0 A^T A is singular; Apinv not written.
 */
QZ_API uint8_t QZ_LeftPsoInv76(const double *A, double *Apinv);
/**
 * @brief Right pseudo-inverse Apinv (7x6) = A^T (A A^T)^-1 of A (6x7), by the normal equations.
 *
 * A . Apinv = I for full row rank. The 6-by-6 Gram matrix is inverted as QZ_MatrixInv6 does,
 * with no damping, so it fails once a pivot column's largest |value| is <= 1e-16 (absolute:
 * entries near 1e-9 already fail).
 * @param[in]  A      Matrix (6x7, 42).
 * @param[out] Apinv  Matrix (7x6, 42); not written on failure.
 * @par Aliasing
 * Apinv may be A (the input is read before the output is written).
 * @retval 1 done.
 * @retval 0 A A^T is singular; Apinv not written.
 */
QZ_API uint8_t QZ_RightPsoInv67(const double *A, double *Apinv);

/* ---- Cholesky and eigen decomposition --------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Lower Cholesky factor of a symmetric positive definite matrix in 6-by-6 storage.
 *
 * Factorises the leading n-by-n block.
 * @param[in]  A  Matrix (6x6, 36), row stride 6; only its lower triangle is read.
 * @param[out] L  Matrix (6x6, 36), row stride 6: the factor, positive diagonal, zeros written
 *                above it.
 * @param[in]  n  Block size, 1..6.
 * @par Aliasing
 * L may be A (column j of A is read before column j of L is written).
 * @retval 0 factorized; also, writing nothing, for n < 1.
 * @retval -1 at the first column whose reduced diagonal is <= 0, the earlier columns of L
 * complete and the rest not written; also for n above 6 (outside the storage), nothing written.
 */
QZ_API int32_t Cholesky(const double *A, double *L, int32_t n);
/**
 * @brief As Cholesky, in 7-by-7 storage (row stride 7, n <= 7).
 * @param[in]  A  Matrix (7x7, 49), row stride 7; only its lower triangle is read.
 * @param[out] L  Matrix (7x7, 49), row stride 7: the factor, positive diagonal, zeros written
 *                above it.
 * @param[in]  n  Block size, 1..7.
 * @par Aliasing
 * L may be A.
 * @retval 0 factorized; also, writing nothing, for n < 1.
 * @retval -1 at the first column whose reduced diagonal is <= 0, the earlier columns of L
 * complete and the rest not written; also for n above 7, nothing written.
 */
QZ_API int32_t Cholesky7(const double *A, double *L, int32_t n);
/**
 * @brief Quadratic form v^T M v over the leading n-by-n block of M held in 7-by-7 storage.
 *
 * The row v^T M is formed first (sums in index order from 0.0), then its product with v.
 * @param[in] v  Vector (n).
 * @param[in] M  Matrix (7x7, 49), row stride 7.
 * @param[in] n  Block size, 1..7.
 * @return v^T M v; 0.0 for n < 1; NaN for n above 7.
 */
QZ_API double VMV(const double *v, const double *M, int32_t n);

/**
 * @brief Eigen decomposition of a symmetric n-by-n matrix by the threshold Jacobi method.
 *
 * The threshold starts at sqrt(2 * sum of squares of the strict lower triangle) and is divided by
 * n before each pass; a pass rotates at the first lower-triangle element above the threshold and
 * rescans from the top after every rotation, and the method stops after the first pass whose
 * threshold is below eps. On success the pairs are not sorted.
 *
 * Failures (result 0):
 * - rejected, nothing written: n < 1 or n > 8, eps not > 0 (0, negative or NaN), or an entry of A
 *   that is NaN, infinite or beyond 1e150 in magnitude (past about 1e154 the squares overflow);
 * - a rotation undefined, A and V left partly rotated: two equal diagonal entries with an
 *   off-diagonal entry below about 1e-162 (x^2 + y^2 underflows to 0). This happens only for
 *   matrices whose entries are all that small, or for eps below about 1e-160;
 * - cap reached, A and V left partly rotated: more than 1000 * n * n rotations. The cap bounds the
 *   time of every call, and no convergent case measured comes near it: over 10.8 million calls
 *   (sizes 1 to 8; uniform, integer, nearly diagonal, all-equal off-diagonal and spread-spectrum
 *   matrices, eigenvalues clustered to 1e-14 or repeated; entries scaled from 1e-300 to 1e149;
 *   eps from 1e-3 to 4.9e-324) the largest counts were 1 (n = 2), 1932 (3), 2673 (4), 4966 (5),
 *   7437 (6), 10818 (7) and 17243 (8), under 270 * n * n. Counts grow with the decades between
 *   the entries and eps when eigenvalues repeat or cluster; at unit scale with eps = 1e-15 a
 *   7-by-7 needs about 150.
 *
 * The two half-angle radicands 1 - w^2 and 1 - sn^2, never negative in exact arithmetic, are
 * clamped at 0.0 when an underflowing x^2 + y^2 makes them negative; a value that is zero or
 * positive is never changed. Where two diagonal entries nearly agree, the cosine of twice the
 * angle, taken as sqrt(1 - w^2), keeps only half the digits: eigenvectors and eigenvalues can then
 * be off by up to about 1e-8 relative to |A|.
 * @param[in]     n    Size, 1..8.
 * @param[in,out] A    Matrix (n*n, contiguous, row stride n), symmetric; on success holds the
 *                     eigenvalues on its diagonal (small residues off it).
 * @param[out]    V    Matrix (n*n): column k is the unit eigenvector of A[k][k].
 * @param[in]     eps  Stopping threshold, > 0.
 * @par Aliasing
 * V must not share storage with A.
 * @retval 1 done.
 * @retval 0 rejected, a rotation undefined, or the rotation cap reached (see above).
 */
QZ_API uint8_t eig(int32_t n, double *A, double *V, double eps);
/**
 * @brief eig with n = 7 on 7-by-7 arrays.
 * @param[in,out] A    Matrix (7x7, 49), symmetric; on success holds the eigenvalues on its
 *                     diagonal.
 * @param[out]    V    Matrix (7x7, 49): column k is the unit eigenvector of A[k][k].
 * @param[in]     eps  Stopping threshold, > 0.
 * @par Aliasing
 * V must not share storage with A.
 * @retval 1 done.
 * @retval 0 as for eig.
 */
QZ_API uint8_t eig7(double *A, double *V, double eps);
/**
 * @brief Generalized symmetric eigenproblem A x = lambda B x (6-by-6, B symmetric positive
 * definite).
 *
 * With B = L L^T (Cholesky), eig(6) of K = L^-1 A L^-T gives lambda, and the vectors X = L^-T W
 * satisfy X^T B X = I. lambda = (K22, K11, K00, K33, K55, K44) and V's columns are X's columns
 * 2, 1, 0, 3, 5, 4, negated in V's columns 1, 2 and 4; column k belongs to lambda[k].
 * @param[in]  eps     Stopping threshold of eig, > 0.
 * @param[in]  A       Matrix (6x6, 36), symmetric; not written.
 * @param[in]  B       Matrix (6x6, 36), symmetric positive definite; not written.
 * @param[out] V       Matrix (6x6, 36): the eigenvectors as columns; not written on failure.
 * @param[out] lambda  Vector (6): the eigenvalues; not written on failure.
 * @par Aliasing
 * V and lambda must not share storage with A, B or each other.
 * @retval 1 done.
 * @retval 0 B is not positive definite, its factor is singular (pivot <= 1e-16) or eig of K
 * fails (eps not > 0, an entry not finite or beyond 1e150, an undefined rotation, the rotation
 * cap); V and lambda not written.
 */
QZ_API uint8_t generalized_eig(double eps, const double *A, const double *B, double *V,
                               double *lambda);
/**
 * @brief As generalized_eig on 7-by-7 arrays, in eig7's order.
 *
 * lambda[i] = K[i][i] and V = L^-T W in eig7's order, no sign change. Reentrant, like every
 * other function here: its work arrays live on the stack.
 * @param[in]  eps     Stopping threshold of eig7, > 0.
 * @param[in]  A       Matrix (7x7, 49), symmetric; not written.
 * @param[in]  B       Matrix (7x7, 49), symmetric positive definite; not written.
 * @param[out] V       Matrix (7x7, 49): the eigenvectors as columns; not written on failure.
 * @param[out] lambda  Vector (7): the eigenvalues; not written on failure.
 * @par Aliasing
 * V and lambda must not share storage with A, B or each other.
 * @retval 1 done.
 * @retval 0 as for generalized_eig.
 */
QZ_API uint8_t generalized_eig7(double eps, const double *A, const double *B, double *V,
                                double *lambda);

/* ---- Elementary rotations and Euler angles ---------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* XYZ (ABC) convention: R = Rz(C) * Ry(B) * Rx(A); extracted A, C in [-pi, pi], B in [-pi/2, pi/2].
 * ZYZ convention: R = Rz(a) * Ry(b) * Rz(c); extracted a, c in [-pi, pi], b in [0, pi].
 * The angles come from atan2, so a half turn reads -pi where its sine term is -0.0 (XYZ of
 * (0, 120, 0) degrees gives (-180, 60, -180)).
 * Rotation matrices are 3x3 (9), transforms 4x4 (16), row-major; XYZABC poses hold x, y, z, A, B,
 * C (the _ZYZ functions put a, b, c into A, B, C). No output may overlap an input. */

/**
 * @brief Rotation matrix of an angle about x.
 * @param[in]  angle  Angle (rad).
 * @param[out] r      Rotation matrix (9).
 */
QZ_API void QZ_RotXARC(double angle, double *r);
/**
 * @brief Rotation matrix of an angle about y.
 * @param[in]  angle  Angle (rad).
 * @param[out] r      Rotation matrix (9).
 */
QZ_API void QZ_RotYARC(double angle, double *r);
/**
 * @brief Rotation matrix of an angle about z.
 * @param[in]  angle  Angle (rad).
 * @param[out] r      Rotation matrix (9).
 */
QZ_API void QZ_RotZARC(double angle, double *r);
/**
 * @brief Rotation matrix of ZYZ angles, R = Rz(a) * Ry(b) * Rz(c).
 * @param[in]  a  First angle, about z (rad).
 * @param[in]  b  Second angle, about y (rad).
 * @param[in]  c  Third angle, about z (rad).
 * @param[out] r  Rotation matrix (9).
 */
QZ_API void QZ_ZYZ2Matrix(double a, double b, double c, double *r);
/**
 * @brief ZYZ angles of a rotation matrix: a, c in [-pi, pi], b in [0, pi].
 *
 * b near pi is singular too (only a - c is defined) but NOT flagged: it returns 1 with a and c
 * split by rounding, and for an exact half turn about y ({-1,0,0, 0,1,0, 0,0,-1}) with angles
 * (0, pi, pi) whose matrix is not r. Test b > pi - 0.5 degree yourself.
 * @param[in]  r    Rotation matrix (9).
 * @param[out] abc  Angles (3): a, b, c (rad).
 * @par Aliasing
 * abc must not overlap r.
 * @retval 1 done.
 * @retval 0 |b| < 0.5 degree: a = 0, c = atan2(-r01, r00) (the whole z turn), b written.
 */
QZ_API uint32_t QZ_Matrix2ZYZ(const double *r, double *abc);
/**
 * @brief As QZ_Matrix2ZYZ for the rotation block of a transform.
 * @param[in]  t    Transform (16).
 * @param[out] abc  Angles (3): a, b, c (rad).
 * @par Aliasing
 * abc must not overlap t.
 * @retval 1 done.
 * @retval 0 |b| < 0.5 degree, as for QZ_Matrix2ZYZ.
 */
QZ_API uint32_t QZ_Matrix42ZYZ(const double *t, double *abc);
/**
 * @brief XYZ angles of a rotation matrix: A, C in [-pi, pi], B in [-pi/2, pi/2].
 *
 * At cos B = 0 (to 1e-16) C = 0 and A = A - C (B = pi/2) or A + C (B = -pi/2).
 * @param[in]  r    Rotation matrix (9).
 * @param[out] abc  Angles (3): A, B, C (rad).
 * @par Aliasing
 * abc must not overlap r.
 * @return 1, always.
 */
QZ_API uint32_t QZ_Matrix2XYZ(const double *r, double *abc);
/**
 * @brief As QZ_Matrix2XYZ for the rotation block of a transform.
 * @param[in]  t    Transform (16).
 * @param[out] abc  Angles (3): A, B, C (rad).
 * @par Aliasing
 * abc must not overlap t.
 * @return 1, always.
 */
QZ_API uint32_t QZ_Matrix42XYZ(const double *t, double *abc);
/**
 * @brief Transform of an XYZABC pose with angles in radians; bottom row 0, 0, 0, 1.
 * @param[in]  pose  XYZABC pose (6): x, y, z, A, B, C (rad).
 * @param[out] t     Transform (16).
 * @par Aliasing
 * t must not overlap pose.
 */
QZ_API void QZ_XYZABC2Matrix4ARC(const double *pose, double *t);
/**
 * @brief Transform of an XYZABC pose with angles in degrees; bottom row 0, 0, 0, 1.
 * @param[in]  pose  XYZABC pose (6): x, y, z, A, B, C (degrees).
 * @param[out] t     Transform (16).
 * @par Aliasing
 * t must not overlap pose.
 */
QZ_API void QZ_XYZABC2Matrix4DEG(const double *pose, double *t);
/**
 * @brief Pose of a transform: position and ZYZ angles in radians.
 * @param[in]  t     Transform (16).
 * @param[out] pose  Pose (6): x, y, z, a, b, c (rad).
 * @par Aliasing
 * pose must not overlap t.
 * @retval 1 done.
 * @retval 0 the singular ZYZ branch: only pose[3..5] written (a = 0), pose[0..2] left as they
 * were.
 */
QZ_API uint32_t QZ_Matrix2XYZABC4ARC_ZYZ(const double *t, double *pose);
/**
 * @brief As QZ_Matrix2XYZABC4ARC_ZYZ with the angles in degrees.
 * @param[in]  t     Transform (16).
 * @param[out] pose  Pose (6): x, y, z, a, b, c (degrees).
 * @par Aliasing
 * pose must not overlap t.
 * @retval 1 done.
 * @retval 0 the singular branch: pose[4..5] stay in radians and pose[0..2] are left as they
 * were.
 */
QZ_API uint32_t QZ_Matrix2XYZABC4DEG_ZYZ(const double *t, double *pose);
/**
 * @brief Pose of a transform: position and XYZ angles in DEGREES (despite the name).
 * @param[in]  t     Transform (16).
 * @param[out] pose  Pose (6): x, y, z, A, B, C (degrees).
 * @par Aliasing
 * pose must not overlap t.
 * @return 1, always.
 */
QZ_API uint32_t QZ_Matrix2XYZABC4ARC_XYZ(const double *t, double *pose);
/**
 * @brief Pose of a transform: position and XYZ angles in RADIANS (despite the name).
 * @param[in]  t     Transform (16).
 * @param[out] pose  Pose (6): x, y, z, A, B, C (rad).
 * @par Aliasing
 * pose must not overlap t.
 * @return 1, always.
 */
QZ_API uint32_t QZ_Matrix2XYZABC4DEG_XYZ(const double *t, double *pose);
/**
 * @brief Rotation matrix of XYZ angles in radians.
 * @param[in]  abc  Angles (3): A, B, C (rad).
 * @param[out] r    Rotation matrix (9).
 * @par Aliasing
 * r must not overlap abc.
 * @return 1, always.
 */
QZ_API uint32_t QZ_ABC2Matrix3ARC(const double *abc, double *r);
/**
 * @brief Rotation matrix of XYZ angles in degrees.
 * @param[in]  abc  Angles (3): A, B, C (degrees).
 * @param[out] r    Rotation matrix (9).
 * @par Aliasing
 * r must not overlap abc.
 * @return 1, always.
 */
QZ_API uint32_t QZ_ABC2Matrix3DEG(const double *abc, double *r);
/**
 * @brief Transform turned about its own z axis by the angle whose cosine and sine are given.
 * @param[in]  t    Transform (16).
 * @param[in]  c    Cosine of the angle (not normalised with s).
 * @param[in]  s    Sine of the angle.
 * @param[out] out  Transform (16): the position kept, the bottom row set to 0, 0, 0, 1.
 * @par Aliasing
 * out must not overlap t.
 */
QZ_API void QZ_XYZMRot(const double *t, double c, double s, double *out);
/**
 * @brief Rotation matrix of XYZ angles in degrees; the same matrix as QZ_ABC2Matrix3DEG.
 * @param[in]  abc  Angles (3): A, B, C (degrees).
 * @param[out] r    Rotation matrix (9).
 * @par Aliasing
 * r must not overlap abc.
 */
QZ_API void QZ_CALC_TRANS_FROM_Rotxyz(const double *abc, double *r);

/* ---- Frame geometry --------------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Modified Denavit-Hartenberg link transform, RotX(alpha) * TransX(a) * RotZ(theta) *
 * TransZ(d).
 * @param[in]  alpha  Link twist (rad).
 * @param[in]  a      Link length (caller's length unit).
 * @param[in]  d      Link offset (caller's length unit).
 * @param[in]  theta  Joint angle (rad).
 * @param[out] t      Transform (16).
 */
QZ_API void QZ_DH2Matrix(double alpha, double a, double d, double theta, double *t);
/**
 * @brief Cross-product matrix of a 3-vector: s * x = v x x.
 * @param[in]  v  Vector (3).
 * @param[out] s  Matrix (3x3, 9).
 * @par Aliasing
 * s must not overlap v.
 */
QZ_API void QZ_Skew(const double *v, double *s);
/**
 * @brief Matrix l (3x6) with l * (Ixx, Ixy, Ixz, Iyy, Iyz, Izz) = I * v for a symmetric I.
 * @param[in]  v  Vector (3).
 * @param[out] l  Matrix (3x6, 18).
 * @par Aliasing
 * l must not overlap v.
 */
QZ_API void QZ_LOperator(const double *v, double *l);
/**
 * @brief Crossing of two lines, or the midpoint of their common perpendicular when they do not
 * meet.
 * @param[in]     p1  Point (3) on the first line.
 * @param[in,out] d1  Direction (3) of the first line; normalised in place (a zero one is left as
 *                    it was).
 * @param[in]     p2  Point (3) on the second line.
 * @param[in,out] d2  Direction (3) of the second line; normalised in place (a zero one is left
 *                    as it was).
 * @param[out]    x   Point (3): the crossing; unwritten on failure.
 * @par Aliasing
 * x must not overlap an input.
 * @retval 1 done.
 * @retval 0 parallel lines (same way within about 2e-4 rad, opposite within about 1e-8 rad) or a
 * zero direction; x unwritten.
 */
QZ_API uint32_t QZ_LineCross(const double *p1, double *d1, const double *p2, double *d2, double *x);
/**
 * @brief out = v + m * x, m given by row pointers.
 * @param[in]  v     Vector (n).
 * @param[in]  m     Row pointers (n), each to cols elements.
 * @param[in]  n     Rows; n < 1 writes nothing.
 * @param[in]  cols  Columns; cols < 1 copies v.
 * @param[in]  x     Vector (cols).
 * @param[out] out   Vector (n).
 * @par Aliasing
 * out may be v.
 */
QZ_API void QZ_VectAddMV(const double *v, double *const *m, int32_t n, int32_t cols,
                         const double *x, double *out);

/* ---- Jacobian frame transforms ---------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* A Jacobian is 6 rows by one column per joint, row-major: two stacked 3-vectors, by convention
 * the linear velocity of a reference point (rows 0-2) over the angular velocity (rows 3-5), both
 * in one frame's axes. diag(R, R) turns the axes of both and keeps the reference point. */

/**
 * @brief Jacobian in new axes, out = diag(R, R) * J, for a 6x6 Jacobian.
 * @param[in]  J    Jacobian (6x6, 36).
 * @param[in]  R    Rotation matrix (9).
 * @param[out] out  Jacobian (6x6, 36).
 * @par Aliasing
 * out may be J.
 */
QZ_API void QZ_JACOB_TRAN_T66(const double *J, const double *R, double *out);
/**
 * @brief Jacobian in new axes, out = diag(R, R) * J, for a 6x7 Jacobian.
 * @param[in]  J    Jacobian (6x7, 42).
 * @param[in]  R    Rotation matrix (9).
 * @param[out] out  Jacobian (6x7, 42).
 * @par Aliasing
 * out may be J.
 */
QZ_API void QZ_JACOB_TRAN_T67(const double *J, const double *R, double *out);
/**
 * @brief As QZ_JACOB_TRAN_T67 (same values), but out must not overlap J.
 * @param[in]  J    Jacobian (6x7, 42).
 * @param[in]  R    Rotation matrix (9).
 * @param[out] out  Jacobian (6x7, 42).
 * @par Aliasing
 * out must not overlap J.
 */
QZ_API void QZ_JACOBI_TRANS_T67(const double *J, const double *R, double *out);
/**
 * @brief Transpose B (7x6) of A (6x7).
 * @param[in]  A  Matrix (6x7, 42).
 * @param[out] B  Matrix (7x6, 42).
 * @par Aliasing
 * B must not overlap A.
 */
QZ_API void Mat67Transpose(const double *A, double *B);
/**
 * @brief y (6) = M (6x7) * x (7), each sum from 0.0.
 * @param[in]  M  Matrix (6x7, 42).
 * @param[in]  x  Vector (7).
 * @param[out] y  Vector (6).
 * @par Aliasing
 * y must not overlap M or x.
 */
QZ_API void MVmult677(const double *M, const double *x, double *y);

#ifdef __cplusplus
}
#endif

#endif /* QZ_MATRIX_H */
