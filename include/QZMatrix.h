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

/* Fixed sizes n = 2..8 (the suffix is n). Outputs may be the same array as an input. */
/* v /= |v| in place, |v| the root of the sum of squares in index order; returns 1, or 0 with
   v unchanged when QZ_IsZero(|v|). */
QZ_API int32_t QZ_VectNorm2(double *v);
QZ_API int32_t QZ_VectNorm3(double *v);
QZ_API int32_t QZ_VectNorm4(double *v);
QZ_API int32_t QZ_VectNorm5(double *v);
QZ_API int32_t QZ_VectNorm6(double *v);
QZ_API int32_t QZ_VectNorm7(double *v);
QZ_API int32_t QZ_VectNorm8(double *v);
/* dst = src, all n elements bit for bit (the source comes first). */
QZ_API void QZ_VectCpy2(const double *src, double *dst);
QZ_API void QZ_VectCpy3(const double *src, double *dst);
QZ_API void QZ_VectCpy4(const double *src, double *dst);
QZ_API void QZ_VectCpy5(const double *src, double *dst);
QZ_API void QZ_VectCpy6(const double *src, double *dst);
QZ_API void QZ_VectCpy7(const double *src, double *dst);
QZ_API void QZ_VectCpy8(const double *src, double *dst);
/* out = a + b. */
QZ_API void QZ_VectAdd2(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd3(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd4(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd5(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd6(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd7(const double *a, const double *b, double *out);
QZ_API void QZ_VectAdd8(const double *a, const double *b, double *out);
/* out = b*s + a, the product formed first. */
QZ_API void QZ_VectSA2(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA3(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA4(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA5(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA6(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA7(const double *a, double s, const double *b, double *out);
QZ_API void QZ_VectSA8(const double *a, double s, const double *b, double *out);

/* Counted vectors: n is the length; n <= 0 is an empty vector (nothing read or written, sums 0).
   Outputs may be the same array as an input. */
/* out = a - b. */
QZ_API void QZ_VectSub(const double *a, int32_t n, const double *b, double *out);
/* out = a + b. */
QZ_API void QZ_VectAddX(const double *a, int32_t n, const double *b, double *out);
/* out = a * b element by element. */
QZ_API void QZ_VectDotMult(const double *a, int32_t n, const double *b, double *out);
/* out = b*s + a, the product formed first. */
QZ_API void QZ_VectSAX(const double *a, int32_t n, double s, const double *b, double *out);
/* out = v*s; with s exactly 1 (QZ_IsZero(s - 1)) a plain copy. */
QZ_API void QZ_VectScale(const double *v, int32_t n, double s, double *out);
/* Sum of a[i]*b[i] from 0.0 in index order; 0.0 for n <= 0. */
QZ_API double QZ_VectDot(const double *a, const double *b, int32_t n);
/* Square root of the sum of squares, no overflow scaling; 0.0 for n <= 0. */
QZ_API double QZ_VectLength(const double *v, int32_t n);
/* v /= QZ_VectLength(v, n) in place; returns 1, or 0 with v unchanged when QZ_IsZero(length)
   (always for n <= 0). */
QZ_API int32_t QZ_VectNorm(double *v, int32_t n);
/* Angle between a and b in DEGREES, in [0, 180]; 0.0 when QZ_IsZero of either length or n <= 0.
   The cosine is clamped to [-1, 1]; a NaN passes through. */
QZ_API double QZ_VectAngle(const double *a, const double *b, int32_t n);
/* out = v / |v|, or all zeros when |v| < 1e-6 (no flag); nothing written for n <= 0. */
QZ_API void VectNormalized(const double *v, int32_t n, double *out);
/* out = projection of a on the direction of b, (a.u)u with u = VectNormalized(b): zero when
   |b| < 1e-6. n must be 1..3; any other n writes nothing. */
QZ_API void CalShadowVector(const double *a, const double *b, double *out, int32_t n);

/* 3-vectors (points or directions in space). */
/* out = a x b; out must not be a or b. */
QZ_API void QZ_VectCross(const double *a, const double *b, double *out);
/* Distance from point a to point b. */
QZ_API double QZ_GetVectLenA2B(const double *a, const double *b);
/* out = unit vector from a towards b; returns 1, or 0 when |b - a|^2 < 1e-9 (points closer than
   about 3.2e-5), out then holding the unnormalised b - a. out may be a or b. */
QZ_API int32_t QZ_GetVectNormA2B(const double *a, const double *b, double *out);
/* As QZ_GetVectNormA2B, and *len = |b - a| on success; *len is not written on failure. */
QZ_API int32_t QZ_GetVectNormLenA2B(const double *a, const double *b, double *out, double *len);


/* ---- Fixed-size matrix operations ------------------------------------------------------- */

/* Row-major n-by-n matrices, n = 2..8 (the suffix is n). A product's element [i][j] is the
   running sum over k = 0..n-1 in increasing order, starting with the k = 0 product. Products
   and transposes must not share storage with an input; copies and sums may. */
/* Out = A . B. */
QZ_API void QZ_MatrixMult2(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult3(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult4(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult5(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult6(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult7(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixMult8(const double *A, const double *B, double *Out);
/* dst = src, all n*n elements bit for bit (the source comes first). */
QZ_API void QZ_MatrixCpy2(const double *src, double *dst);
QZ_API void QZ_MatrixCpy3(const double *src, double *dst);
QZ_API void QZ_MatrixCpy4(const double *src, double *dst);
QZ_API void QZ_MatrixCpy5(const double *src, double *dst);
QZ_API void QZ_MatrixCpy6(const double *src, double *dst);
QZ_API void QZ_MatrixCpy7(const double *src, double *dst);
QZ_API void QZ_MatrixCpy8(const double *src, double *dst);
/* M = identity: each row set to 0.0, then its diagonal element to 1.0. */
QZ_API void QZ_MatrixIdentity2(double *M);
QZ_API void QZ_MatrixIdentity3(double *M);
QZ_API void QZ_MatrixIdentity4(double *M);
QZ_API void QZ_MatrixIdentity5(double *M);
QZ_API void QZ_MatrixIdentity6(double *M);
QZ_API void QZ_MatrixIdentity7(double *M);
QZ_API void QZ_MatrixIdentity8(double *M);
/* Out = A + B, all n*n elements. */
QZ_API void QZ_MatrixAdd2(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd3(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd4(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd5(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd6(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd7(const double *A, const double *B, double *Out);
QZ_API void QZ_MatrixAdd8(const double *A, const double *B, double *Out);
/* B = transpose of A, bit for bit. */
QZ_API void QZ_MatrixTranspose2(const double *A, double *B);
QZ_API void QZ_MatrixTranspose3(const double *A, double *B);
QZ_API void QZ_MatrixTranspose4(const double *A, double *B);
QZ_API void QZ_MatrixTranspose5(const double *A, double *B);
QZ_API void QZ_MatrixTranspose6(const double *A, double *B);
QZ_API void QZ_MatrixTranspose7(const double *A, double *B);
QZ_API void QZ_MatrixTranspose8(const double *A, double *B);

/* Single shapes. Their product sums start from 0.0 (so a -0.0 lone product gives +0.0), except
   QZ_MatrixMult3m4, which starts with its k = 0 product like the square family. T is a 4-by-4
   transform of which only the upper-left 3-by-3 rotation block is read. */
/* Out (6x7) = A (6x7) . B (7x7). */
QZ_API void QZ_MatrixMult6777(const double *A, const double *B, double *Out);
/* Out (6x6) = A (6x7) . B (7x6). */
QZ_API void QZ_MatrixMult6776(const double *A, const double *B, double *Out);
/* Out = A . B, 4x4; equal in value to QZ_MatrixMult4 (sums from 0.0). */
QZ_API void QZ_MMM44(const double *A, const double *B, double *Out);
/* Out (3x3) = A (3x3) . rotation block of T. */
QZ_API void QZ_MatrixMult3m4(const double *A, const double *T, double *Out);
/* Out = A - B, 6x7; Out may be A or B. */
QZ_API void QZ_MatrixSub67(const double *A, const double *B, double *Out);
/* Out = A . diag(d), 6x6: column j of A times d[j]; Out may be A. */
QZ_API void QZ_MmultDiagM66(const double *A, const double *d, double *Out);
/* B (7x6) = transpose of A (6x7). */
QZ_API void QZ_Mat67Transpose(const double *A, double *B);
/* B (3x3) = transpose of the rotation block of T. */
QZ_API void Mat4433Transpose(const double *T, double *B);
/* B = transpose of A, 3x3 (same as QZ_MatrixTranspose3). */
QZ_API void MatTr33(const double *A, double *B);
/* B = transpose of A, 4x4 (same as QZ_MatrixTranspose4). */
QZ_API void MatTr44(const double *A, double *B);

/* Matrix times vector and row vector times matrix; out must not be an input. Sums from 0.0,
   except QZ_MatrixMultVect3, which starts with the k = 0 product. */
/* out (3) = M (3x3) . v. */
QZ_API void QZ_MatrixMultVect3(const double *M, const double *v, double *out);
/* out (4) = M (4x4) . v. */
QZ_API void QZ_MatrixMultVect4(const double *M, const double *v, double *out);
/* out (6) = M (6x6) . v. */
QZ_API void QZ_MatrixMultVect6(const double *M, const double *v, double *out);
/* out (7) = M (7x7) . v. */
QZ_API void QZ_MatrixMultVect7(const double *M, const double *v, double *out);
/* out (6) = M (6x7) . v (7). */
QZ_API void QZ_Matrix67MultVect7(const double *M, const double *v, double *out);
/* out (7) = M (7x6) . v (6). */
QZ_API void QZ_Matrix76MultVect6(const double *M, const double *v, double *out);
/* out (3) = rotation block of T (4x4) . v (3). */
QZ_API void QZ_MVmult43(const double *T, const double *v, double *out);
/* out (6) = v (1x6) . M (6x6). */
QZ_API void QZ_VMmult1666(const double *v, const double *M, double *out);
/* out (7) = v (1x7) . M (7x7). */
QZ_API void QZ_VMmult1777(const double *v, const double *M, double *out);

/* Row-pointer matrices: arrays of row pointers with signed counts; a count of 0 or less is an
   empty dimension. Input matrices are only read. */
/* Out = A + B over rows x cols; nothing written for an empty dimension. Out may be A or B. */
QZ_API void QZ_MatrixAddX(double *const *A, int32_t rows, int32_t cols, double *const *B,
                          double *const *Out);
/* B (cols x rows) = transpose of A (rows x cols); nothing written for an empty dimension. */
QZ_API void QZ_MatrixTransposeXX(double *const *A, int32_t rows, int32_t cols, double *const *B);
/* Out (n x p) = A (n x m) . B (m x p), sums from 0.0; nothing written for n <= 0 or p <= 0, and
   zeros for m <= 0. Out must not share storage with A or B. */
QZ_API void QZ_MatrixMultXmX(double *const *A, int32_t n, int32_t m, double *const *B, int32_t p,
                             double *const *Out);
/* out (n) = M (n x m) . v (m), sums from 0.0; nothing written for n <= 0, zeros for m <= 0. */
QZ_API void QZ_MatrixMultVectX(double *const *M, int32_t n, int32_t m, const double *v,
                               double *out);


/* ---- Matrix inversion and determinant --------------------------------------------------- */

/* Inverse of an n-by-n matrix (n = 2..8, the suffix) by LU factorisation with partial pivoting.
 * Returns 1 with the inverse in Ainv; returns 0 when a pivot column's largest |value| is at most
 * 1e-16 (absolute, not scaled), leaving Ainv unwritten. A is never written; Ainv may be A. */
QZ_API uint8_t QZ_MatrixInv2(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv3(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv4(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv5(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv6(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv7(const double *A, double *Ainv);
QZ_API uint8_t QZ_MatrixInv8(const double *A, double *Ainv);
/* Inverse of a rigid 4-by-4 homogeneous transform in closed form: rotation transposed, position
 * -R^T p, last row (0, 0, 0, 1) whatever T's last row holds (it is not read). No check that R is
 * a rotation. Tinv must not share storage with T. Always returns 1. */
QZ_API uint8_t QZ_PGMatrixInv(const double *T, double *Tinv);
/* Determinant of the leading n-by-n block of an 8-by-8 row-major array (row stride 8 whatever n
 * is), by cofactor expansion along the first row. n = 1 gives A[0]; n < 1 gives 0.0; n > 8 also
 * gives 0.0 without reading A (the array holds no larger block). */
QZ_API double QZ_MatrixDeterminant(const double *A, int32_t n);

/* ---- LUP decomposition ------------------------------------------------------------------ */

/* LU decomposition with partial pivoting, in place, of the m-by-n row-pointer matrix A: the
 * strict lower triangle of the leading len = min(m, n) rows receives the multipliers of a unit
 * lower-triangular L, the rest U; only those rows are searched for pivots, rows below them are
 * left as they are. Rows are exchanged by moving their contents (the row pointers
 * stay put), in blocks through a fixed scratch row, so rows of any length are accepted.
 * P (len + 1 entries) receives in P[i] the input row now in row i and in P[len] the number of
 * exchanges. Returns 0 on success; 1 when a pivot column's largest |value| is below 1e-16 (A is
 * left partly reduced, P as far as it got). A negative m or n counts as 0: P[0] = 0, returns 0. */
QZ_API int32_t QZ_MatLUPD(double *const *A, int32_t m, int32_t n, int32_t *P);
/* Solves A x = b for the n-by-n matrix A that QZ_MatLUPD decomposed into LU and P (neither is
 * modified). x must not share storage with b. n <= 0 writes nothing. */
QZ_API void QZ_LUPSolveEq(double *const *LU, int32_t n, const int32_t *P, const double *b, double *x);
/* Determinant of the n-by-n matrix decomposed into LU and P: the product of U's diagonal, negated
 * for an odd number of exchanges. n <= 0 gives 0.0 without reading LU or P. */
QZ_API double QZ_MatLUPDet(double *const *LU, int32_t n, const int32_t *P);
/* Inverse of the n-by-n matrix decomposed into LU and P, into the rows of Inv, which must not
 * share storage with the rows of LU. No singularity test: a zero pivot gives inf or NaN.
 * n <= 0 writes nothing. */
QZ_API void QZ_MatLUPInv(double *const *LU, int32_t n, const int32_t *P, double *const *Inv);

/* ---- Pseudo-inverses -------------------------------------------------------------------- */

/* Moore-Penrose pseudo-inverses of a seven-joint Jacobian's two shapes by the normal equations:
   the 6-by-6 Gram matrix is inverted as QZ_MatrixInv6 does, with no damping, so it fails once a
   pivot column's largest |value| is <= 1e-16 (absolute: entries near 1e-9 already fail). The input
   is read before the output is written, so Apinv may be A. */
/* Apinv (6x7) = (A^T A)^-1 A^T for A (7x6): Apinv . A = I for full column rank. Returns 1, or 0
   with Apinv not written when A^T A is singular. */
QZ_API uint8_t QZ_LeftPsoInv76(const double *A, double *Apinv);
/* Apinv (7x6) = A^T (A A^T)^-1 for A (6x7): A . Apinv = I for full row rank. Returns 1, or 0 with
   Apinv not written when A A^T is singular. */
QZ_API uint8_t QZ_RightPsoInv67(const double *A, double *Apinv);

/* ---- Cholesky and eigen decomposition --------------------------------------------------- */

/* L = lower Cholesky factor (positive diagonal, zeros written above it) of the leading n-by-n
   block of a symmetric positive definite A held in 6-by-6 storage (row stride 6). Only A's lower
   triangle is read, and column j of A is read before column j of L is written, so L may be A.
   Returns 0 when factorized (and, writing nothing, for n < 1); -1 at the first column whose
   reduced diagonal is <= 0, the earlier columns of L complete and the rest not written. n above 6
   lies outside the storage: -1, nothing written. */
QZ_API int32_t Cholesky(const double *A, double *L, int32_t n);
/* As Cholesky, in 7-by-7 storage (row stride 7, n <= 7). */
QZ_API int32_t Cholesky7(const double *A, double *L, int32_t n);
/* v^T M v over the leading n-by-n block of M held in 7-by-7 storage (row stride 7): the row
   v^T M is formed first (sums in index order from 0.0), then its product with v. 0.0 for n < 1;
   NaN for n above 7. */
QZ_API double VMV(const double *v, const double *M, int32_t n);

/* Eigen decomposition of the symmetric n-by-n A (contiguous, row stride n) by the threshold Jacobi
   method: the threshold starts at sqrt(2 * sum of squares of the strict lower triangle) and is
   divided by n before each pass; a pass rotates at the first lower-triangle element above the
   threshold and rescans from the top after every rotation, and the method stops after the first
   pass whose threshold is below eps. On success A holds the eigenvalues on its diagonal (small
   residues off it) and V's column k is the unit eigenvector of A[k][k]; the pairs are not sorted.
   Returns 1 when done, 0 otherwise:
   - rejected, nothing written: n < 1 or n > 8, eps not > 0 (0, negative or NaN), or an entry of A
     that is NaN, infinite or beyond 1e150 in magnitude (past about 1e154 the squares overflow);
   - a rotation undefined, A and V left partly rotated: two equal diagonal entries with an
     off-diagonal entry below about 1e-162 (x^2 + y^2 underflows to 0). This happens only for
     matrices whose entries are all that small, or for eps below about 1e-160;
   - cap reached, A and V left partly rotated: more than 1000 * n * n rotations. The cap bounds the
     time of every call, and no convergent case measured comes near it: over 10.8 million calls
     (sizes 1 to 8; uniform, integer, nearly diagonal, all-equal off-diagonal and spread-spectrum
     matrices, eigenvalues clustered to 1e-14 or repeated; entries scaled from 1e-300 to 1e149;
     eps from 1e-3 to 4.9e-324) the largest counts were 1 (n = 2), 1932 (3), 2673 (4), 4966 (5),
     7437 (6), 10818 (7) and 17243 (8), under 270 * n * n. Counts grow with the decades between
     the entries and eps when eigenvalues repeat or cluster; at unit scale with eps = 1e-15 a
     7-by-7 needs about 150.
   The two half-angle radicands 1 - w^2 and 1 - sn^2, never negative in exact arithmetic, are
   clamped at 0.0 when an underflowing x^2 + y^2 makes them negative; a value that is zero or
   positive is never changed. Where two diagonal entries nearly agree, the cosine of twice the
   angle, taken as sqrt(1 - w^2), keeps only half the digits: eigenvectors and eigenvalues can then
   be off by up to about 1e-8 relative to |A|. */
QZ_API uint8_t eig(int32_t n, double *A, double *V, double eps);
/* eig with n = 7 on 7-by-7 arrays. */
QZ_API uint8_t eig7(double *A, double *V, double eps);
/* Generalized symmetric eigenproblem A x = lambda B x (6-by-6, B symmetric positive definite):
   with B = L L^T (Cholesky), eig(6) of K = L^-1 A L^-T gives lambda, and the vectors X = L^-T W
   satisfy X^T B X = I. lambda = (K22, K11, K00, K33, K55, K44) and V's columns are X's columns
   2, 1, 0, 3, 5, 4, negated in V's columns 1, 2 and 4; column k belongs to lambda[k]. Returns 1,
   or 0 with V and lambda not written when B is not positive definite, its factor is singular
   (pivot <= 1e-16) or eig of K fails (eps not > 0, an entry not finite or beyond 1e150, an
   undefined rotation, the rotation cap). A and B are not written. */
QZ_API uint8_t generalized_eig(double eps, const double *A, const double *B, double *V,
                               double *lambda);
/* As generalized_eig on 7-by-7 arrays, lambda[i] = K[i][i] and V = L^-T W in eig7's order, no
   sign change. Reentrant, like every other function here: its work arrays live on the stack. */
QZ_API uint8_t generalized_eig7(double eps, const double *A, const double *B, double *V,
                                double *lambda);

/* ---- Elementary rotations and Euler angles ---------------------------------------------- */

/* XYZ (ABC) convention: R = Rz(C) * Ry(B) * Rx(A); extracted A, C in [-pi, pi], B in [-pi/2, pi/2].
 * ZYZ convention: R = Rz(a) * Ry(b) * Rz(c); extracted a, c in [-pi, pi], b in [0, pi].
 * The angles come from atan2, so a half turn reads -pi where its sine term is -0.0 (XYZ of
 * (0, 120, 0) degrees gives (-180, 60, -180)).
 * Rotation matrices are 3x3 (9), transforms 4x4 (16), row-major; XYZABC poses hold x, y, z, A, B,
 * C (the _ZYZ functions put a, b, c into A, B, C). No output may overlap an input. */

/* Rotation matrix r (9) of an angle (radians) about x. */
QZ_API void QZ_RotXARC(double angle, double *r);
/* Rotation matrix r (9) of an angle (radians) about y. */
QZ_API void QZ_RotYARC(double angle, double *r);
/* Rotation matrix r (9) of an angle (radians) about z. */
QZ_API void QZ_RotZARC(double angle, double *r);
/* Rotation matrix r (9) of the ZYZ angles a, b, c (radians). */
QZ_API void QZ_ZYZ2Matrix(double a, double b, double c, double *r);
/* ZYZ angles (a, b, c) in radians of rotation r (9) into abc (3). Returns 1; returns 0 when
 * |b| < 0.5 degree, with a = 0, c = atan2(-r01, r00) (the whole z turn) and b written.
 * b near pi is singular too (only a - c is defined) but NOT flagged: it returns 1 with a and c
 * split by rounding, and for an exact half turn about y ({-1,0,0, 0,1,0, 0,0,-1}) with angles
 * (0, pi, pi) whose matrix is not r. Test b > pi - 0.5 degree yourself. */
QZ_API uint32_t QZ_Matrix2ZYZ(const double *r, double *abc);
/* As QZ_Matrix2ZYZ for the rotation block of transform t (16). */
QZ_API uint32_t QZ_Matrix42ZYZ(const double *t, double *abc);
/* XYZ angles (A, B, C) in radians of rotation r (9) into abc (3); always returns 1. At cos B = 0
 * (to 1e-16) C = 0 and A = A - C (B = pi/2) or A + C (B = -pi/2). */
QZ_API uint32_t QZ_Matrix2XYZ(const double *r, double *abc);
/* As QZ_Matrix2XYZ for the rotation block of transform t (16); always returns 1. */
QZ_API uint32_t QZ_Matrix42XYZ(const double *t, double *abc);
/* Transform t (16) of an XYZABC pose (6) with angles in radians; bottom row 0, 0, 0, 1. */
QZ_API void QZ_XYZABC2Matrix4ARC(const double *pose, double *t);
/* Transform t (16) of an XYZABC pose (6) with angles in degrees; bottom row 0, 0, 0, 1. */
QZ_API void QZ_XYZABC2Matrix4DEG(const double *pose, double *t);
/* Pose (6) of transform t (16): position and ZYZ angles in radians. Returns 1; on the singular
 * ZYZ branch returns 0 with only pose[3..5] written (a = 0) and pose[0..2] left as they were. */
QZ_API uint32_t QZ_Matrix2XYZABC4ARC_ZYZ(const double *t, double *pose);
/* As QZ_Matrix2XYZABC4ARC_ZYZ with the angles in degrees; on the singular branch (result 0)
 * pose[4..5] stay in radians and pose[0..2] are left as they were. */
QZ_API uint32_t QZ_Matrix2XYZABC4DEG_ZYZ(const double *t, double *pose);
/* Pose (6) of transform t (16): position and XYZ angles in DEGREES (despite the name); always
 * returns 1. */
QZ_API uint32_t QZ_Matrix2XYZABC4ARC_XYZ(const double *t, double *pose);
/* Pose (6) of transform t (16): position and XYZ angles in RADIANS (despite the name); always
 * returns 1. */
QZ_API uint32_t QZ_Matrix2XYZABC4DEG_XYZ(const double *t, double *pose);
/* Rotation r (9) of the XYZ angles abc (3) in radians; always returns 1. */
QZ_API uint32_t QZ_ABC2Matrix3ARC(const double *abc, double *r);
/* Rotation r (9) of the XYZ angles abc (3) in degrees; always returns 1. */
QZ_API uint32_t QZ_ABC2Matrix3DEG(const double *abc, double *r);
/* out (16) = t (16) turned about its own z axis by the angle whose cosine c and sine s are given
 * (not normalised); the position is kept and the bottom row set to 0, 0, 0, 1. */
QZ_API void QZ_XYZMRot(const double *t, double c, double s, double *out);
/* Rotation r (9) of the XYZ angles abc (3) in degrees; the same matrix as QZ_ABC2Matrix3DEG. */
QZ_API void QZ_CALC_TRANS_FROM_Rotxyz(const double *abc, double *r);


/* ---- Frame geometry --------------------------------------------------------------------- */

/* Modified Denavit-Hartenberg link transform t (16) = RotX(alpha) * TransX(a) * RotZ(theta) *
 * TransZ(d); angles in radians, lengths in the caller's unit. */
QZ_API void QZ_DH2Matrix(double alpha, double a, double d, double theta, double *t);
/* Cross-product matrix s (9) of v (3): s * x = v x x. Returns nothing. */
QZ_API void QZ_Skew(const double *v, double *s);
/* 3x6 matrix l (18) with l * (Ixx, Ixy, Ixz, Iyy, Iyz, Izz) = I * v for a symmetric I. Returns
 * nothing. */
QZ_API void QZ_LOperator(const double *v, double *l);
/* Crossing x (3) of the line through p1 along d1 and the line through p2 along d2, or the
 * midpoint of their common perpendicular when they do not meet. d1 and d2 are normalised in
 * place (a zero one is left as it was). Returns 0, x unwritten, for parallel lines (same way
 * within about 2e-4 rad, opposite within about 1e-8 rad) or a zero direction; else 1. */
QZ_API uint32_t QZ_LineCross(const double *p1, double *d1, const double *p2, double *d2,
                             double *x);
/* out (n) = v (n) + m * x, m given by n row pointers to cols elements each; out may be v.
 * n < 1 writes nothing; cols < 1 copies v. */
QZ_API void QZ_VectAddMV(const double *v, double *const *m, int32_t n, int32_t cols,
                         const double *x, double *out);


/* ---- Jacobian frame transforms ---------------------------------------------------------- */

/* A Jacobian is 6 rows by one column per joint, row-major: two stacked 3-vectors, by convention
 * the linear velocity of a reference point (rows 0-2) over the angular velocity (rows 3-5), both
 * in one frame's axes. diag(R, R) turns the axes of both and keeps the reference point. */

/* out = diag(R, R) * J for a 6x6 Jacobian J (36) and rotation R (9); out may be J. */
QZ_API void QZ_JACOB_TRAN_T66(const double *J, const double *R, double *out);
/* out = diag(R, R) * J for a 6x7 Jacobian J (42) and rotation R (9); out may be J. */
QZ_API void QZ_JACOB_TRAN_T67(const double *J, const double *R, double *out);
/* As QZ_JACOB_TRAN_T67 (same values), but out must not overlap J. */
QZ_API void QZ_JACOBI_TRANS_T67(const double *J, const double *R, double *out);
/* B (7x6, 42) = transpose of A (6x7, 42); B must not overlap A. */
QZ_API void Mat67Transpose(const double *A, double *B);
/* y (6) = M (6x7) * x (7), each sum from 0.0; y must not overlap M or x. */
QZ_API void MVmult677(const double *M, const double *x, double *y);


#ifdef __cplusplus
}
#endif

#endif /* QZ_MATRIX_H */
