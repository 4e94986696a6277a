// Jacobi eigen decomposition: eigenpairs and orthonormality as residual ratios against Eigen, and
// what is left alone.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

// |A0 V - V diag(A)| and the off-diagonal residue of A relative to |A0|, and |V^T V - I|.
struct Residuals {
    double eigen, offDiagonal, orthonormal;
};

Residuals Check(const Mat &A0, const std::vector<double> &A, const std::vector<double> &V) {
    const int n = static_cast<int>(A0.rows());
    const Mat Af = Unstored(A.data(), n, n), Vm = Unstored(V.data(), n, n);
    const Mat D = Af.diagonal().asDiagonal();
    const double scale = std::max(MaxAbs(A0), 1e-300);
    return {MaxAbs(A0 * Vm - Vm * D) / scale, MaxAbs(Af - D) / scale,
            MaxAbs(Vm.transpose() * Vm - Mat::Identity(n, n))};
}

}  // namespace

// Each rotation takes the cosine of twice its angle as sqrt(1 - sin^2): when two diagonal entries
// nearly agree that cosine keeps only half the digits, and so can the eigenvectors and values
// (relative residuals up to about 1.3e-8); V's orthonormality does not suffer. eig7 is eig of
// size seven to the bit, and A stays symmetric to the bit.
TEST(Eig, RandomSymmetricMatricesGiveOrthonormalEigenpairsMatchingEigen) {
    auto rng = Rng();
    for (int n = 1; n <= 8; ++n) {
        for (int t = 0; t < 400; ++t) {
            const Mat A0 = RandomSymmetric(rng, n, t % 4);
            std::vector<double> A = Stored(A0, n, 0.0), V(n * n);
            ASSERT_EQ(eig(n, A.data(), V.data(), kEps * MaxAbs(A0)), 1) << n << " case " << t;
            const Residuals r = Check(A0, A, V);
            EXPECT_LT(r.eigen, 3e-8) << n << " case " << t;
            EXPECT_LT(r.offDiagonal, n * kEps) << n << " case " << t;
            EXPECT_LT(r.orthonormal, 10 * n * kEps) << n << " case " << t;
            EXPECT_TRUE(Unstored(A.data(), n, n).transpose() == Unstored(A.data(), n, n));
            const Eigen::VectorXd peer = Eigen::SelfAdjointEigenSolver<Mat>(A0).eigenvalues();
            EXPECT_LT(MaxAbs(Sorted(Unstored(A.data(), n, n).diagonal()) - peer), 3e-8 * MaxAbs(A0));
            if (n != 7) continue;
            std::vector<double> A7 = Stored(A0, 7, 0.0), V7(49);
            ASSERT_EQ(eig7(A7.data(), V7.data(), kEps * MaxAbs(A0)), 1);
            ASSERT_TRUE(SameBlock(A7.data(), A.data(), 49) && SameBlock(V7.data(), V.data(), 49));
        }
    }
}

// Diagonal and 1-by-1 matrices keep their bits (signed zeros too) with identity vectors; equal
// diagonal entries take the 45-degree rotation that turns (1, 1) into the first vector.
TEST(Eig, LeavesDiagonalMatricesAloneAndRotatesEqualDiagonalsByHalfAQuarterTurn) {
    double D[9] = {3.0, 0.0, -0.0, 0.0, -1.0, 0.0, -0.0, 0.0, 2.0}, D0[9], V[9], a = -5.0, v = 7.0;
    std::copy(D, D + 9, D0);
    ASSERT_EQ(eig(3, D, V, 1e-12) + eig(1, &a, &v, 1e-12), 2);
    EXPECT_TRUE(SameBlock(D, D0, 9) && Unstored(V, 3, 3) == Mat::Identity(3, 3) && a == -5 && v == 1);
    double A[4] = {2.0, 1.0, 1.0, 2.0}, W[4];
    ASSERT_EQ(eig(2, A, W, 1e-10), 1);
    EXPECT_TRUE(A[0] == 3.0 && A[3] == 1.0 && SameBits(A[1], 0.0) && SameBits(A[2], 0.0));
    EXPECT_LT(MaxAbs(Unstored(W, 2, 2) - std::sqrt(0.5) * (Mat(2, 2) << 1, -1, 1, 1).finished()), 2e-16);
}
