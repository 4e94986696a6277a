// Jacobi eigen decomposition: eigenpairs over random symmetric matrices against Eigen, the exact
// worked cases, and the guards that make every call end.
#include "QZMatrix.h"

#include <limits>
#include <string>

#include "decomposition_cases.h"

using namespace qztest;

namespace {

// Residual ratios of one decomposition: |A0 V - V diag(A)| and |V^T V - I| in units of n eps |A0|.
struct Residuals {
    double eigen, orthonormal, offDiagonal;
};

Residuals Check(const Mat &A0, const std::vector<double> &A, const std::vector<double> &V) {
    const int n = static_cast<int>(A0.rows());
    const Mat Af = Unstored(A.data(), n, n), Vm = Unstored(V.data(), n, n);
    const double scale = n * kEps * std::max(A0.cwiseAbs().maxCoeff(), 1e-300);
    Mat D = Af.diagonal().asDiagonal();
    Mat off = Af - D;
    return {(A0 * Vm - Vm * D).cwiseAbs().maxCoeff() / scale,
            (Vm.transpose() * Vm - Mat::Identity(n, n)).cwiseAbs().maxCoeff() / (n * kEps),
            off.cwiseAbs().maxCoeff() / scale};
}

}  // namespace

// Each rotation takes the cosine of twice its angle as sqrt(1 - sin^2): when two diagonal entries
// nearly agree that cosine keeps only half the digits, and so can the eigenvectors (relative
// residuals up to about 1.3e-8 for a 2-by-2 with diagonals 3.6e-8 apart), and the element a
// rotation sets to zero is then as far from zero, which moves the eigenvalues as much. The
// orthonormality of V does not suffer. Typical ratios stay in the tens.
TEST(Eig, RandomSymmetricMatricesGiveOrthonormalEigenpairsMatchingEigen) {
    auto rng = Rng();
    double worstResidual = 0.0, worstValue = 0.0;
    for (int n = 1; n <= 8; ++n) {
        for (int t = 0; t < 400; ++t) {
            const Mat A0 = RandomSymmetric(rng, n, t % 4);
            const double norm = A0.cwiseAbs().maxCoeff();
            std::vector<double> A = Stored(A0, n, 0.0), V(n * n);
            ASSERT_EQ(eig(n, A.data(), V.data(), kEps * norm), 1) << "n " << n << " case " << t;
            const Residuals r = Check(A0, A, V);
            EXPECT_LT(r.eigen * n * kEps, 3e-8) << "n " << n << " case " << t;
            EXPECT_LT(r.orthonormal, 10.0) << "n " << n << " case " << t;
            EXPECT_LT(r.offDiagonal, 1.0) << "n " << n << " case " << t;
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < i; ++j) ASSERT_TRUE(SameBits(A[i * n + j], A[j * n + i]));

            const Eigen::VectorXd ours = Sorted(Unstored(A.data(), n, n).diagonal());
            const Eigen::VectorXd peer = Eigen::SelfAdjointEigenSolver<Mat>(A0).eigenvalues();
            const double value = (ours - peer).cwiseAbs().maxCoeff() / (n * kEps * norm);
            EXPECT_LT(value * n * kEps, 3e-8) << "n " << n << " case " << t;
            worstResidual = std::max(worstResidual, r.eigen);
            worstValue = std::max(worstValue, value);
        }
    }
    RecordProperty("worst_residual_ratio", std::to_string(worstResidual));
    RecordProperty("worst_eigenvalue_ratio", std::to_string(worstValue));
}

TEST(Eig, Eig7IsEigOfSizeSeven) {
    auto rng = Rng();
    for (int t = 0; t < 50; ++t) {
        const Mat A0 = RandomSymmetric(rng, 7, t % 4);
        std::vector<double> A1 = Stored(A0, 7, 0.0), A2 = A1, V1(49), V2(49);
        ASSERT_EQ(eig(7, A1.data(), V1.data(), 1e-12), 1);
        ASSERT_EQ(eig7(A2.data(), V2.data(), 1e-12), 1);
        for (int i = 0; i < 49; ++i) {
            ASSERT_TRUE(SameBits(A1[i], A2[i]));
            ASSERT_TRUE(SameBits(V1[i], V2[i]));
        }
    }
}

TEST(Eig, OneRotationDiagonalisesTheTwoByTwoExample) {
    double A[4] = {2.0, 1.0, 1.0, 2.0}, V[4];
    ASSERT_EQ(eig(2, A, V, 1e-10), 1);
    const double h = std::sqrt(0.5);
    EXPECT_EQ(A[0], 3.0);
    EXPECT_EQ(A[3], 1.0);
    EXPECT_TRUE(SameBits(A[1], 0.0) && SameBits(A[2], 0.0));
    EXPECT_NEAR(V[0], h, 2e-16);
    EXPECT_NEAR(V[1], -h, 2e-16);
    EXPECT_NEAR(V[2], h, 2e-16);
    EXPECT_NEAR(V[3], h, 2e-16);
}

TEST(Eig, DiagonalAndOneByOneMatricesAreLeftAloneWithIdentityVectors) {
    double D[9] = {3.0, 0.0, -0.0, 0.0, -1.0, 0.0, -0.0, 0.0, 2.0}, V[9];
    const std::vector<double> before(D, D + 9);
    ASSERT_EQ(eig(3, D, V, 1e-12), 1);
    for (int i = 0; i < 9; ++i) {
        EXPECT_TRUE(SameBits(D[i], before[i]));
        EXPECT_EQ(V[i], i % 4 == 0 ? 1.0 : 0.0);
    }
    double a = -5.0, v = 7.0;
    ASSERT_EQ(eig(1, &a, &v, 1e-12), 1);
    EXPECT_EQ(a, -5.0);
    EXPECT_EQ(v, 1.0);
}

// Inputs on which the method would never end are refused before anything is written.
TEST(Eig, RefusesInputsOnWhichTheMethodNeverEnds) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        int n;
        double eps, poke;
    } cases[] = {{3, 0.0, 0.5},  {3, -1e-12, 0.5}, {3, nan, 0.5}, {0, 1e-12, 0.5},
                 {-1, 1e-12, 0.5}, {9, 1e-12, 0.5}, {3, 1e-12, nan}, {3, 1e-12, inf},
                 {3, 1e-12, 1e200}};
    for (const Case &c : cases) {
        double A[81], V[81];
        for (int i = 0; i < 81; ++i) A[i] = V[i] = 0.25 * i;
        A[1] = A[3] = c.poke;  // an off-diagonal pair of the 3-by-3 case
        double A0[81];
        std::copy(A, A + 81, A0);
        EXPECT_EQ(eig(c.n, A, V, c.eps), 0) << "n " << c.n << " eps " << c.eps << " poke " << c.poke;
        for (int i = 0; i < 81; ++i) {
            ASSERT_TRUE(SameBits(A[i], A0[i]));
            ASSERT_EQ(V[i], 0.25 * i);
        }
    }
    double A7[49] = {}, V7[49] = {};
    A7[48] = nan;
    EXPECT_EQ(eig7(A7, V7, 1e-12), 0);
    EXPECT_EQ(eig7(A7, V7, 0.0), 0);
}

// The widest dynamic range accepted: entries up to 1e150, repeated or clustered eigenvalues and
// the smallest tolerance at which such matrices still converge. Every call ends within the
// rotation cap.
TEST(Eig, ConvergesWithinTheRotationCapOverTheWholeExponentRange) {
    auto rng = Rng();
    for (int n = 2; n <= 8; ++n) {
        for (int t = 0; t < 30; ++t) {
            const Mat A0 = RandomSymmetric(rng, n, 2 + t % 2) * 3e149;
            std::vector<double> A = Stored(A0, n, 0.0), V(n * n);
            ASSERT_EQ(eig(n, A.data(), V.data(), 1e-160), 1) << "n " << n << " case " << t;
            EXPECT_LT(Check(A0, A, V).eigen, 50.0) << "n " << n << " case " << t;
        }
    }
}

// Entries are accepted up to 1e150 in magnitude, where no square can overflow.
TEST(Eig, AcceptsEntriesUpToTheOverflowSafeBound) {
    double A[4] = {1e150, -1e150, -1e150, 1e150}, V[4];
    EXPECT_EQ(eig(2, A, V, 1e-3), 1);
    EXPECT_NEAR(A[0] + A[3], 2e150, 1e136);
    double B[4] = {1.0, NextUp(1e150), NextUp(1e150), 1.0}, W[4] = {};
    EXPECT_EQ(eig(2, B, W, 1e-3), 0);
    EXPECT_EQ(W[0], 0.0);
}

// With equal diagonal entries and an off-diagonal near 2.3e-162, x^2 + y^2 is a subnormal whose
// root falls short of |x|: the sine of twice the angle exceeds 1 in magnitude, and the clamped
// radicand keeps the 45-degree rotation finite. Below about 1e-162 the sum is zero, the rotation
// undefined, and the call reports failure.
TEST(Eig, RotationsWhoseSquaresUnderflow) {
    const double t = 2.3103354286815239e-162;
    double A[4] = {1.0, t, t, 1.0}, V[4];
    ASSERT_EQ(eig(2, A, V, 1e-300), 1);
    EXPECT_EQ(A[0], 1.0);
    EXPECT_EQ(A[3], 1.0);
    EXPECT_NEAR(V[0] * V[0] + V[2] * V[2], 1.0, 4 * kEps);
    EXPECT_NEAR(V[1] * V[1] + V[3] * V[3], 1.0, 4 * kEps);
    EXPECT_NEAR(V[0] * V[1] + V[2] * V[3], 0.0, 4 * kEps);

    double B[4] = {1.0, 1e-170, 1e-170, 1.0}, W[4];
    EXPECT_EQ(eig(2, B, W, 1e-300), 0);
}
