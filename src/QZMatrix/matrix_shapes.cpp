// Single-shape matrix operations of the kinematics: 6-by-7 Jacobian shapes, the rotation block
// of a 4-by-4 transform, and the 4-by-4 and 3-by-3 forms kept under their own names.
#include "QZMatrix.h"

#include "QZMatrix/matrix.h"

using namespace qz::detail;

extern "C" {

QZ_API void QZ_MatrixMult6777(const double *A, const double *B, double *Out) {
    MatMul<6, 7, 7, Start::kZero>(A, B, Out);
}
QZ_API void QZ_MatrixMult6776(const double *A, const double *B, double *Out) {
    MatMul<6, 7, 6, Start::kZero>(A, B, Out);
}
// The 4-by-4 product with its sums started from 0.0: equal in value to QZ_MatrixMult4, but a
// zero that QZ_MatrixMult4 gives as -0.0 comes out as +0.0 here.
QZ_API void QZ_MMM44(const double *A, const double *B, double *Out) {
    MatMul<4, 4, 4, Start::kZero>(A, B, Out);
}
// A (3x3) times the rotation block of T (4x4, row stride 4).
QZ_API void QZ_MatrixMult3m4(const double *A, const double *T, double *Out) {
    MatMul<3, 3, 3, Start::kFirstProduct, 3, 4>(A, T, Out);
}

QZ_API void QZ_MatrixSub67(const double *A, const double *B, double *Out) {
    for (int i = 0; i < 6 * 7; ++i) Out[i] = A[i] - B[i];
}
// Column j of A scaled by d[j]; element by element, so Out may be A.
QZ_API void QZ_MmultDiagM66(const double *A, const double *d, double *Out) {
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 6; ++j) Out[i * 6 + j] = A[i * 6 + j] * d[j];
    }
}

QZ_API void QZ_Mat67Transpose(const double *A, double *B) { MatTranspose<6, 7>(A, B); }
QZ_API void Mat4433Transpose(const double *T, double *B) { MatTranspose<3, 3, 4>(T, B); }
QZ_API void MatTr33(const double *A, double *B) { MatTranspose<3, 3>(A, B); }
QZ_API void MatTr44(const double *A, double *B) { MatTranspose<4, 4>(A, B); }

}  // extern "C"
