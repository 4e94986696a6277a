// The Cholesky factorization in strided storage, shared by the exported Cholesky and Cholesky7
// and by the generalized eigenproblem, which calls it here rather than through an exported name.
#ifndef QZ_MATRIX_CHOLESKY_H
#define QZ_MATRIX_CHOLESKY_H

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// S is the row stride of the storage, and so the largest n it can hold.
template <int S>
std::int32_t CholeskyStrided(const double *A, double *L, std::int32_t n) {
    if (n < 1) return 0;
    if (n > S) return -1;
    double s = 0.0;
    for (int j = 0; j < n; ++j) {
        const double d = A[j * S + j] - s;
        if (d <= 0.0) return -1;
        L[j * S + j] = Sqrt(d);
        for (int i = j + 1; i < n; ++i) {
            double t = 0.0;
            for (int k = 0; k < j; ++k) t = t + L[i * S + k] * L[j * S + k];
            L[i * S + j] = (A[i * S + j] - t) / L[j * S + j];
        }
        for (int i = 0; i < j; ++i) L[i * S + j] = 0.0;
        if (j + 1 == n) return 0;
        s = 0.0;
        for (int k = 0; k <= j; ++k) s = s + L[(j + 1) * S + k] * L[(j + 1) * S + k];
    }
    return 0;
}

}  // namespace qz::detail

#endif
