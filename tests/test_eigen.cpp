// Jacobi eigen decomposition: what is left alone and the half-quarter turn of equal diagonals.
// Eigenpairs against Eigen are checked through the generalized solvers, which call it.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

// Diagonal and 1-by-1 matrices keep their bits (signed zeros too) with identity vectors; equal
// diagonal entries take the 45-degree rotation that turns (1, 1) into the first vector.
TEST(Eig, LeavesDiagonalMatricesAloneAndRotatesEqualDiagonalsByHalfAQuarterTurn) {
    double D[9] = {3.0, 0.0, -0.0, 0.0, -1.0, 0.0, -0.0, 0.0, 2.0}, D0[9], V[9], a = -5.0, v = 7.0;
    std::copy(D, D + 9, D0);
    ASSERT_EQ(eig(3, D, V, 1e-12) + eig(1, &a, &v, 1e-12), 2);
    EXPECT_ALL(SameBlock(D, D0, 9), Unstored(V, 3, 3) == Mat::Identity(3, 3), a == -5, v == 1);
    double A[4] = {2.0, 1.0, 1.0, 2.0}, W[4];
    ASSERT_EQ(eig(2, A, W, 1e-10), 1);
    EXPECT_ALL(A[0] == 3.0, A[3] == 1.0, SameBits(A[1], 0.0), SameBits(A[2], 0.0));
    EXPECT_LT(MaxAbs(Unstored(W, 2, 2) - std::sqrt(0.5) * (Mat(2, 2) << 1, -1, 1, 1).finished()),
              2e-16);
}
