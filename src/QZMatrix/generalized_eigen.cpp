// The generalized symmetric eigenproblem A x = lambda B x with B positive definite, reduced to a
// standard one: with B = L L^T, K = L^-1 A L^-T is symmetric, its eigenvalues are the generalized
// ones, and x = L^-T w turns its eigenvectors w into generalized eigenvectors, normalised so that
// X^T B X = I.
//
// The 6-by-6 solver hands its pairs out in a fixed permutation of the Jacobi order, with three of
// the vectors negated; the 7-by-7 solver hands them out as the Jacobi method leaves them.
//
// Both keep all their work arrays on the stack and are reentrant. No element of a work array is
// read before the call has written it: the factorization writes every element of the factor and
// reads only columns it has finished, the inverse reads its input into a local copy and writes
// all of its output or nothing, and a failure returns before anything reaches V or lambda.
#include "QZMatrix.h"

#include <cstddef>

#include "QZMatrix/cholesky.h"
#include "QZMatrix/eigen.h"
#include "QZMatrix/inverse.h"
#include "QZMatrix/matrix.h"

namespace qz::detail {
namespace {

std::uint8_t GeneralizedEig6(double eps, const double *A, const double *B, double *V,
                             double *lambda) {
    double L[36], Li[36], LiT[36], T[36], K[36], W[36];
    if (CholeskyStrided<6>(B, L, 6) != 0) return 0;
    if (MatrixInv<6>(L, Li) == 0) return 0;
    MatrixTranspose<6>(Li, LiT);
    MatrixMult<6>(A, LiT, T);
    MatrixMult<6>(Li, T, K);
    if (Eig(6, K, W, eps) == 0) return 0;

    lambda[0] = K[2 * 6 + 2];
    lambda[1] = K[1 * 6 + 1];
    lambda[2] = K[0 * 6 + 0];
    lambda[3] = K[3 * 6 + 3];
    lambda[4] = K[5 * 6 + 5];
    lambda[5] = K[4 * 6 + 4];
    double *X = T;  // T is free again; X = L^-T W.
    MatrixMult<6>(LiT, W, X);
    for (std::ptrdiff_t r = 0; r < 6; ++r) {
        const double *x = X + r * 6;
        double *v = V + r * 6;
        v[0] = x[2];
        v[1] = -x[1];
        v[2] = -x[0];
        v[3] = x[3];
        v[4] = -x[5];
        v[5] = x[4];
    }
    return 1;
}

std::uint8_t GeneralizedEig7(double eps, const double *A, const double *B, double *V,
                             double *lambda) {
    double G[49], GInv[49], GInvT[49], T[49], K[49], W[49];
    if (CholeskyStrided<7>(B, G, 7) != 0) return 0;
    if (MatrixInv<7>(G, GInv) == 0) return 0;
    MatrixTranspose<7>(GInv, GInvT);
    MatrixMult<7>(A, GInvT, T);
    MatrixMult<7>(GInv, T, K);
    if (Eig(7, K, W, eps) == 0) return 0;

    for (int i = 0; i < 7; ++i) lambda[i] = K[i * 7 + i];
    MatrixMult<7>(GInvT, W, T);
    MatrixCpy<7>(T, V);
    return 1;
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API uint8_t generalized_eig(double eps, const double *A, const double *B, double *V,
                               double *lambda) {
    return qz::detail::GeneralizedEig6(eps, A, B, V, lambda);
}

QZ_API uint8_t generalized_eig7(double eps, const double *A, const double *B, double *V,
                                double *lambda) {
    return qz::detail::GeneralizedEig7(eps, A, B, V, lambda);
}

}  // extern "C"
