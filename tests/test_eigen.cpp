// Jacobi eigen decomposition: eigenpairs and orthonormality as residual ratios against Eigen, what
// is left alone, and the guards that make every call end.
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

// Inputs on which the method would never end are refused before anything is written: a size
// outside 1..8, eps not positive, an entry NaN, infinite or beyond 1e150 (where no square can
// overflow; 1e150 itself is accepted).
TEST(Eig, RefusesInputsOnWhichTheMethodNeverEndsWritingNothing) {
    const double inf = std::numeric_limits<double>::infinity();
    const struct { int n; double eps, poke; uint8_t ok; } cases[] = {
        {3, 1e-12, 0.5, 1},     {3, 0.0, 0.5, 0},       {3, -1e-12, 0.5, 0}, {3, kNaN, 0.5, 0},
        {0, 1e-12, 0.5, 0},     {-1, 1e-12, 0.5, 0},    {9, 1e-12, 0.5, 0},  {3, 1e-12, kNaN, 0},
        {3, 1e-12, inf, 0},     {3, 1e-12, -1e150, 1},  {3, 1e-12, NextUp(1e150), 0}};
    for (const auto &c : cases) {
        double A[81], V[81], A0[81];
        for (int i = 0; i < 81; ++i) A[i] = V[i] = 0.25 * i;
        A[1] = A[3] = c.poke;  // the 3-by-3 case, made symmetric
        A[2] = A[6];
        A[5] = A[7];
        std::copy(A, A + 81, A0);
        EXPECT_EQ(eig(c.n, A, V, c.eps), c.ok) << c.n << " eps " << c.eps << " poke " << c.poke;
        if (c.ok) continue;
        for (int i = 0; i < 81; ++i) ASSERT_TRUE(SameBits(A[i], A0[i]) && V[i] == 0.25 * i);
    }
    double A7[49] = {}, V7[49] = {};
    A7[48] = kNaN;
    EXPECT_EQ(eig7(A7, V7, 1e-12) + eig7(V7, A7, 0.0), 0);
}

// Entries near 1e150, repeated or clustered eigenvalues and a tolerance far below the spacing of
// the doubles there: every call ends well within the rotation cap.
TEST(Eig, ConvergesWithinTheRotationCapOverTheWholeExponentRange) {
    auto rng = Rng();
    for (int n = 2; n <= 8; ++n) {
        for (int t = 0; t < 30; ++t) {
            const Mat A0 = RandomSymmetric(rng, n, 2 + t % 2) * 3e149;
            std::vector<double> A = Stored(A0, n, 0.0), V(n * n);
            ASSERT_EQ(eig(n, A.data(), V.data(), 1e-160), 1) << n << " case " << t;
            EXPECT_LT(Check(A0, A, V).eigen, 100 * n * kEps) << n << " case " << t;
        }
    }
}

// Equal diagonal entries and an off-diagonal near 2.3e-162: x^2 + y^2 is a subnormal whose root
// falls short of |x|, and the clamped radicands keep the 45-degree rotation finite. Below about
// 1e-162 the sum is zero, the rotation undefined, and the call reports failure.
TEST(Eig, RotationsWhoseSquaresUnderflow) {
    const double t = 2.3103354286815239e-162;
    double A[4] = {1.0, t, t, 1.0}, V[4];
    ASSERT_EQ(eig(2, A, V, 1e-300), 1);
    EXPECT_TRUE(A[0] == 1.0 && A[3] == 1.0);
    const Mat Vm = Unstored(V, 2, 2);
    EXPECT_LT(MaxAbs(Vm.transpose() * Vm - Mat::Identity(2, 2)), 4 * kEps);
    double B[4] = {1.0, 1e-170, 1e-170, 1.0};
    EXPECT_EQ(eig(2, B, V, 1e-300), 0);
}
