// Pseudo-inverses of the two rectangular shapes of a seven-joint arm, by the normal equations:
// the 6-by-6 Gram matrix is formed, inverted by the fixed-size elimination and multiplied back.
// Nothing damps the Gram matrix: near a singular configuration it is inverted unchanged until the
// elimination's absolute pivot test rejects it.
//
// Each function reads its input only while forming the transpose and the Gram matrix, so the
// output may be the input array.
#include "QZMatrix.h"
#include "QZMatrix/inverse.h"
#include "QZMatrix/matrix.h"

namespace qz::detail {
namespace {

// (A^T A)^-1 A^T for a 7-by-6 A of full column rank: a left inverse, Apinv . A = I.
std::uint8_t LeftPsoInv76(const double *A, double *Apinv) {
    double At[42];
    double M[36];
    double Minv[36];
    MatTranspose<7, 6>(A, At);
    MatMul<6, 7, 6, Start::kZero>(At, A, M);
    if (MatrixInv<6>(M, Minv) == 0) return 0;
    MatMul<6, 6, 7, Start::kZero>(Minv, At, Apinv);
    return 1;
}

// A^T (A A^T)^-1 for a 6-by-7 A of full row rank: a right inverse, A . Apinv = I.
std::uint8_t RightPsoInv67(const double *A, double *Apinv) {
    double At[42];
    double M[36];
    double Minv[36];
    MatTranspose<6, 7>(A, At);
    MatMul<6, 7, 6, Start::kZero>(A, At, M);
    if (MatrixInv<6>(M, Minv) == 0) return 0;
    MatMul<7, 6, 6, Start::kZero>(At, Minv, Apinv);
    return 1;
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API uint8_t QZ_LeftPsoInv76(const double *A, double *Apinv) {
    return qz::detail::LeftPsoInv76(A, Apinv);
}

QZ_API uint8_t QZ_RightPsoInv67(const double *A, double *Apinv) {
    return qz::detail::RightPsoInv67(A, Apinv);
}

}  // extern "C"
