// Cholesky factorization of the leading n-by-n block of a symmetric positive definite matrix held
// in 6-by-6 or 7-by-7 storage, and the quadratic form v^T M v.
//
// The factor is built column by column. Column j of A is read (on and below the diagonal) before
// column j of L is written and the part above A's diagonal is never read, so L may be A. The
// reduced diagonal of column j + 1 (the sum of squares of the finished part of its row) is formed
// as soon as column j is complete; the factorization stops at the first column whose reduced
// diagonal is zero or negative, leaving the finished columns in L.
#include "QZMatrix.h"
#include "QZMatrix/cholesky.h"

#include <limits>

namespace qz::detail {
namespace {

// The row vector v^T M is formed first, then its product with v.
double QuadraticForm7(const double *v, const double *M, std::int32_t n) {
    if (n < 1) return 0.0;
    // Beyond the 7-by-7 storage there is no quadratic form to give.
    if (n > 7) return std::numeric_limits<double>::quiet_NaN();
    double w[7];
    for (int j = 0; j < n; ++j) {
        double acc = 0.0;
        for (int i = 0; i < n; ++i) acc = acc + v[i] * M[i * 7 + j];
        w[j] = acc;
    }
    double r = 0.0;
    for (int j = 0; j < n; ++j) r = r + w[j] * v[j];
    return r;
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API int32_t Cholesky(const double *A, double *L, int32_t n) {
    return qz::detail::CholeskyStrided<6>(A, L, n);
}

QZ_API int32_t Cholesky7(const double *A, double *L, int32_t n) {
    return qz::detail::CholeskyStrided<7>(A, L, n);
}

QZ_API double VMV(const double *v, const double *M, int32_t n) {
    return qz::detail::QuadraticForm7(v, M, n);
}

}  // extern "C"
