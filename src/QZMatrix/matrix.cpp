// Square matrix families (sizes 2 to 8) and the matrix-vector products.
#include "QZMatrix.h"

#include "QZMatrix/matrix.h"
#include "internal/family.h"

using namespace qz::detail;

extern "C" {

#define QZ_STAMP_MATRIX(N)                                                                  \
    QZ_API void QZ_MatrixMult##N(const double *A, const double *B, double *Out) {           \
        MatrixMult<N>(A, B, Out);                                                           \
    }                                                                                       \
    QZ_API void QZ_MatrixCpy##N(const double *src, double *dst) { MatrixCpy<N>(src, dst); } \
    QZ_API void QZ_MatrixIdentity##N(double *M) { MatrixIdentity<N>(M); }                   \
    QZ_API void QZ_MatrixAdd##N(const double *A, const double *B, double *Out) {            \
        MatrixAdd<N>(A, B, Out);                                                            \
    }                                                                                       \
    QZ_API void QZ_MatrixTranspose##N(const double *A, double *B) { MatrixTranspose<N>(A, B); }
QZ_SIZES_2_8(QZ_STAMP_MATRIX)
#undef QZ_STAMP_MATRIX

// Matrix times vector. Only the 3-by-3 member starts its sums with the first product; the
// others add every product to 0.0.
QZ_API void QZ_MatrixMultVect3(const double *M, const double *v, double *out) {
    MatrixMultVect3(M, v, out);
}
QZ_API void QZ_MatrixMultVect4(const double *M, const double *v, double *out) {
    MatVec<4, 4, Start::kZero>(M, v, out);
}
QZ_API void QZ_MatrixMultVect6(const double *M, const double *v, double *out) {
    MatVec<6, 6, Start::kZero>(M, v, out);
}
QZ_API void QZ_MatrixMultVect7(const double *M, const double *v, double *out) {
    MatVec<7, 7, Start::kZero>(M, v, out);
}
QZ_API void QZ_Matrix67MultVect7(const double *M, const double *v, double *out) {
    MatVec<6, 7, Start::kZero>(M, v, out);
}
QZ_API void QZ_Matrix76MultVect6(const double *M, const double *v, double *out) {
    MatVec<7, 6, Start::kZero>(M, v, out);
}
// The rotation block of a transform (row stride 4) times a 3-vector.
QZ_API void QZ_MVmult43(const double *T, const double *v, double *out) {
    MatVec<3, 3, Start::kZero, 4>(T, v, out);
}
QZ_API void QZ_VMmult1666(const double *v, const double *M, double *out) {
    VecMat<6, 6>(v, M, out);
}
QZ_API void QZ_VMmult1777(const double *v, const double *M, double *out) {
    VecMat<7, 7>(v, M, out);
}

}  // extern "C"
