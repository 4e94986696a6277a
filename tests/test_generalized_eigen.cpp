// Generalized symmetric eigenproblems A x = lambda B x: eigenpairs and V^T B V = I against Eigen,
// the order and signs of the solvers' output, and failures that leave the outputs unwritten.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

const struct {
    uint8_t (*solve)(double, const double *, const double *, double *, double *);
    int n;
} kSolvers[] = {{generalized_eig, 6}, {generalized_eig7, 7}};

}  // namespace

// Residuals relative to |A| (|B| <= 10, cond(B) <= 10); the eigenvector bound is eig's. The
// inputs are left as they were.
TEST(GeneralizedEig, RandomPairsSatisfyTheEquationAreBOrthonormalAndMatchEigen) {
    auto rng = Rng();
    for (const auto &s : kSolvers) {
        const int n = s.n;
        for (int t = 0; t < 300; ++t) {
            const Mat A = RandomSymmetric(rng, n, t % 4), B = RandomSpd(rng, n);
            const double norm = MaxAbs(A);
            const std::vector<double> a = Stored(A, n, 0.0), b = Stored(B, n, 0.0);
            std::vector<double> V(n * n), lambda(n), a2 = a, b2 = b;
            ASSERT_EQ(s.solve(kEps * norm, a2.data(), b2.data(), V.data(), lambda.data()), 1);
            ASSERT_TRUE(a2 == a && b2 == b);
            const Mat Vm = Unstored(V.data(), n, n);
            const Eigen::Map<const Eigen::VectorXd> l(lambda.data(), n);
            EXPECT_LT(MaxAbs(A * Vm - B * Vm * l.asDiagonal()), 3e-7 * norm) << t;
            EXPECT_LT(MaxAbs(Vm.transpose() * B * Vm - Mat::Identity(n, n)), 100 * n * kEps) << t;
            const Eigen::GeneralizedSelfAdjointEigenSolver<Mat> peer(A, B);
            EXPECT_LT(MaxAbs(Sorted(l) - peer.eigenvalues()), 3e-7 * norm) << t;
        }
    }
}

// With B = I the reduction is exact, so the solvers hand out eig's own results: the 7-by-7 one
// as they are, the 6-by-6 one in the order 2, 1, 0, 3, 5, 4 with vectors 1, 2 and 4 negated.
TEST(GeneralizedEig, IdentityMetricGivesEigsPairsInTheSolversOrder) {
    auto rng = Rng();
    for (const auto &s : kSolvers) {
        const int n = s.n;
        const Mat A = RandomSymmetric(rng, n, 0);
        std::vector<double> K = Stored(A, n, 0.0), W(n * n), V(n * n), lambda(n);
        ASSERT_EQ(eig(n, K.data(), W.data(), 1e-14), 1);
        const std::vector<double> I = Stored(Mat::Identity(n, n), n, 0.0);
        ASSERT_EQ(s.solve(1e-14, Stored(A, n, 0.0).data(), I.data(), V.data(), lambda.data()), 1);
        const int order6[6] = {2, 1, 0, 3, 5, 4};
        const double sign6[6] = {1, -1, -1, 1, -1, 1};
        for (int k = 0; k < n; ++k) {
            const int from = n == 6 ? order6[k] : k;
            const double sign = n == 6 ? sign6[k] : 1.0;
            EXPECT_TRUE(SameBits(lambda[k], K[from * n + from])) << k;
            for (int r = 0; r < n; ++r) EXPECT_TRUE(SameBits(V[r * n + k], sign * W[r * n + from]));
        }
    }
}

// Every failure, including those after a successful call of the 7-by-7 solver has filled its
// static arrays, leaves V and lambda as they were: B not positive definite, B's factor with
// pivots below 1e-16, and eig's refusals (eps = 0, a NaN entry).
TEST(GeneralizedEig, FailuresLeaveTheOutputsUnwritten) {
    auto rng = Rng();
    for (const auto &s : kSolvers) {
        const int n = s.n;
        const std::vector<double> A = Stored(RandomSymmetric(rng, n, 0), n, 0.0);
        const std::vector<double> B = Stored(RandomSpd(rng, n), n, 0.0);
        std::vector<double> V(n * n), lambda(n), notPd = B, nanA = A;
        const std::vector<double> tiny = Stored(Mat::Identity(n, n) * 1e-40, n, 0.0);
        ASSERT_EQ(s.solve(1e-12, A.data(), B.data(), V.data(), lambda.data()), 1);
        notPd[2 * n + 2] = -1.0;
        nanA[n + 2] = nanA[2 * n + 1] = kNaN;
        const struct { double eps; const double *a, *b; } cases[] = {
            {1e-12, A.data(), notPd.data()}, {1e-12, A.data(), tiny.data()},
            {0.0, A.data(), B.data()}, {1e-12, nanA.data(), B.data()}};
        for (const auto &c : cases) {
            std::vector<double> v2(n * n, -7.0), l2(n, -7.0);
            EXPECT_EQ(s.solve(c.eps, c.a, c.b, v2.data(), l2.data()), 0) << n;
            EXPECT_TRUE(v2 == std::vector<double>(n * n, -7.0) && l2 == std::vector<double>(n, -7.0));
        }
    }
}
