// Matrix operations on row-pointer arrays whose sizes are given as signed counts. A count of 0
// or less is an empty dimension; an empty inner dimension of a product gives zero sums.
#include "QZMatrix.h"

extern "C" {

QZ_API void QZ_MatrixAddX(double *const *A, int32_t rows, int32_t cols, double *const *B,
                          double *const *Out) {
    for (int32_t i = 0; i < rows; ++i) {
        for (int32_t j = 0; j < cols; ++j) Out[i][j] = A[i][j] + B[i][j];
    }
}

QZ_API void QZ_MatrixTransposeXX(double *const *A, int32_t rows, int32_t cols, double *const *B) {
    for (int32_t i = 0; i < rows; ++i) {
        for (int32_t j = 0; j < cols; ++j) B[j][i] = A[i][j];
    }
}

QZ_API void QZ_MatrixMultXmX(double *const *A, int32_t n, int32_t m, double *const *B, int32_t p,
                             double *const *Out) {
    for (int32_t i = 0; i < n; ++i) {
        for (int32_t j = 0; j < p; ++j) {
            double s = 0.0;
            for (int32_t k = 0; k < m; ++k) s = s + A[i][k] * B[k][j];
            Out[i][j] = s;
        }
    }
}

QZ_API void QZ_MatrixMultVectX(double *const *M, int32_t n, int32_t m, const double *v,
                               double *out) {
    for (int32_t i = 0; i < n; ++i) {
        double s = 0.0;
        for (int32_t k = 0; k < m; ++k) s = s + M[i][k] * v[k];
        out[i] = s;
    }
}

}  // extern "C"
