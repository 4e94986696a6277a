// Pseudo-inverses of 6-by-7 and 7-by-6 Jacobians: the Penrose conditions and Eigen's answer on
// random full-rank inputs, and in-place calls.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

using PsoInv = uint8_t (*)(const double *, double *);

// The largest of the four Penrose residuals, the one-sided identity and the distance to Eigen's
// pseudo-inverse, each relative, in units of eps cond^2 (the normal equations square cond).
double PenroseRatio(const Mat &A, const Mat &P, bool left) {
    const Eigen::VectorXd sv = Eigen::JacobiSVD<Mat>(A).singularValues();
    const double unit = kEps * std::pow(sv(0) / sv(5), 2);
    const Mat AP = A * P, PA = P * A;
    const Mat peer = Eigen::CompleteOrthogonalDecomposition<Mat>(A).pseudoInverse();
    return std::max({MaxAbs((left ? PA : AP) - Mat::Identity(6, 6)),
                     MaxAbs(A * P * A - A) / MaxAbs(A), MaxAbs(P * A * P - P) / MaxAbs(P),
                     MaxAbs(AP - AP.transpose()), MaxAbs(PA - PA.transpose()),
                     MaxAbs(P - peer) / MaxAbs(peer)}) /
           unit;
}

}  // namespace

TEST(PseudoInverse, RandomFullRankJacobiansSatisfyPenroseMatchEigenAndWorkInPlace) {
    auto rng = Rng();
    for (int t = 0; t < 500; ++t) {
        const Mat A67 = RandomMat(rng, 6, 7) * std::pow(10.0, Uniform(rng, -3.0, 3.0));
        // clang-format off
        const struct { Mat A; PsoInv f; bool left; } cases[] = {
            {A67, QZ_RightPsoInv67, false}, {A67.transpose(), QZ_LeftPsoInv76, true}};
        // clang-format on
        for (const auto &c : cases) {
            Mat P(c.A.cols(), c.A.rows()), inPlace = c.A;
            ASSERT_EQ(c.f(c.A.data(), P.data()), 1);
            EXPECT_LT(PenroseRatio(c.A, P, c.left), 50.0) << t;
            ASSERT_EQ(c.f(inPlace.data(), inPlace.data()), 1);
            ASSERT_TRUE(SameBlock(inPlace.data(), P.data(), 42)) << t;
        }
    }
}
