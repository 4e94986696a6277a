// Eigenvalues and eigenvectors of a symmetric matrix by the threshold Jacobi method (eigen.h).
//
// The method as such only ends for a positive tolerance, a size of at least 1 and finite entries;
// these are checked before anything is written, so that a real-time caller always gets an answer
// in bounded time: 1 with the decomposition, or 0.
#include "QZMatrix/eigen.h"

#include "QZMatrix.h"

namespace qz::detail {
namespace {

// False for an entry that is NaN, infinite or beyond kEigMaxEntry.
bool AllInRange(const double *a, int count) {
    for (int i = 0; i < count; ++i) {
        if (!(Fabs(a[i]) <= kEigMaxEntry)) return false;
    }
    return true;
}

}  // namespace

std::uint8_t Eig(int n, double *A, double *V, double eps) {
    if (n < 1 || n > kEigMaxSize || !(eps > 0.0) || !AllInRange(A, n * n)) return 0;
    return JacobiEig(n, A, V, eps, EigMaxRotations(n)) >= 0 ? 1 : 0;
}

}  // namespace qz::detail

extern "C" {

QZ_API uint8_t eig(int32_t n, double *A, double *V, double eps) {
    return qz::detail::Eig(n, A, V, eps);
}

QZ_API uint8_t eig7(double *A, double *V, double eps) { return qz::detail::Eig(7, A, V, eps); }

}  // extern "C"
