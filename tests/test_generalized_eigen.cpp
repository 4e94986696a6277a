// Generalized symmetric eigenproblems A x = lambda B x: eigenpairs and V^T B V = I against Eigen.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

// clang-format off
const struct {
    uint8_t (*solve)(double, const double *, const double *, double *, double *);
    int n;
} kSolvers[] = {{generalized_eig, 6}, {generalized_eig7, 7}};
// clang-format on

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
            ASSERT_ALL(a2 == a, b2 == b);
            const Mat Vm = Unstored(V.data(), n, n);
            const Eigen::Map<const Eigen::VectorXd> l(lambda.data(), n);
            EXPECT_LT(MaxAbs(A * Vm - B * Vm * l.asDiagonal()), 3e-7 * norm) << t;
            EXPECT_LT(MaxAbs(Vm.transpose() * B * Vm - Mat::Identity(n, n)), 100 * n * kEps) << t;
            const Eigen::GeneralizedSelfAdjointEigenSolver<Mat> peer(A, B);
            EXPECT_LT(MaxAbs(Sorted(l) - peer.eigenvalues()), 3e-7 * norm) << t;
        }
    }
}
