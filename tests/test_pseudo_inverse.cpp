// Pseudo-inverses of 6-by-7 and 7-by-6 Jacobians: the Penrose conditions and Eigen's
// complete orthogonal decomposition on random full-rank inputs, the absolute singularity
// threshold, and in-place calls.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

using PsoInv = uint8_t (*)(const double *, double *);

Mat RandomJacobian(std::mt19937_64 &rng, int rows, int cols) {
    Mat J(rows, cols);
    for (int i = 0; i < rows * cols; ++i) J.data()[i] = Uniform(rng, -1.0, 1.0);
    return J;
}

// The four Penrose conditions and the one-sided identity, as ratios to eps * cond^2 (the normal
// equations square the condition number).
void ExpectPseudoInverse(const Mat &A, const Mat &P, bool left) {
    const int r = static_cast<int>(A.rows()), c = static_cast<int>(A.cols());
    Eigen::JacobiSVD<Mat> svd(A);
    const double cond = svd.singularValues()(0) / svd.singularValues()(std::min(r, c) - 1);
    const double unit = 50 * kEps * cond * cond;
    const Mat AP = A * P, PA = P * A;
    const Mat one = left ? PA : AP;
    EXPECT_LT((one - Mat::Identity(6, 6)).cwiseAbs().maxCoeff(), unit);
    EXPECT_LT((A * P * A - A).cwiseAbs().maxCoeff(), unit * A.cwiseAbs().maxCoeff());
    EXPECT_LT((P * A * P - P).cwiseAbs().maxCoeff(), unit * P.cwiseAbs().maxCoeff());
    EXPECT_LT((AP - AP.transpose()).cwiseAbs().maxCoeff(), unit);
    EXPECT_LT((PA - PA.transpose()).cwiseAbs().maxCoeff(), unit);
    const Mat peer = Eigen::CompleteOrthogonalDecomposition<Mat>(A).pseudoInverse();
    EXPECT_LT((P - peer).cwiseAbs().maxCoeff(), unit * peer.cwiseAbs().maxCoeff());
}

}  // namespace

TEST(PseudoInverse, RandomFullRankJacobiansSatisfyPenroseAndMatchEigen) {
    auto rng = Rng();
    for (int t = 0; t < 500; ++t) {
        const Mat A67 = RandomJacobian(rng, 6, 7) * std::pow(10.0, Uniform(rng, -3.0, 3.0));
        const Mat A76 = A67.transpose();
        std::vector<double> buf(42);
        Mat P(7, 6);
        ASSERT_EQ(QZ_RightPsoInv67(A67.data(), P.data()), 1);
        ExpectPseudoInverse(A67, P, false);
        // In place: the input is gone once the output is written, and the bits agree.
        std::copy(A67.data(), A67.data() + 42, buf.begin());
        ASSERT_EQ(QZ_RightPsoInv67(buf.data(), buf.data()), 1);
        for (int i = 0; i < 42; ++i) ASSERT_TRUE(SameBits(buf[i], P.data()[i]));

        Mat Q(6, 7);
        ASSERT_EQ(QZ_LeftPsoInv76(A76.data(), Q.data()), 1);
        ExpectPseudoInverse(A76, Q, true);
        std::copy(A76.data(), A76.data() + 42, buf.begin());
        ASSERT_EQ(QZ_LeftPsoInv76(buf.data(), buf.data()), 1);
        for (int i = 0; i < 42; ++i) ASSERT_TRUE(SameBits(buf[i], Q.data()[i]));
    }
}

// Rank-deficient inputs fail and leave the output as it was.
TEST(PseudoInverse, RankDeficientJacobiansLeaveTheOutputUnwritten) {
    auto rng = Rng();
    Mat A76 = RandomJacobian(rng, 7, 6);
    A76.col(4).setZero();
    Mat A67 = RandomJacobian(rng, 6, 7);
    A67.row(5) = A67.row(2);
    std::vector<double> out(42, -7.0);
    EXPECT_EQ(QZ_LeftPsoInv76(A76.data(), out.data()), 0);
    EXPECT_EQ(QZ_RightPsoInv67(A67.data(), out.data()), 0);
    for (double v : out) ASSERT_EQ(v, -7.0);
}

// For A = [D | 0] with D diagonal the Gram matrix is D^2 exactly, so its pivots are the squares
// d*d: the singularity test is absolute, failing at d*d <= 1e-16 however well conditioned A is,
// and passing one ulp above; the result is then [D^-1 ; 0].
TEST(PseudoInverse, AbsoluteThresholdOnTheGramPivots) {
    double d = 1e-8;
    while (d * d > 1e-16) d = NextDown(d);
    while (!(d * d > 1e-16)) d = NextUp(d);  // the smallest d whose square passes
    const struct {
        double d;
        uint8_t expect;
    } cases[] = {{1.0, 1}, {d, 1}, {NextDown(d), 0}, {1e-9, 0}};
    for (const auto &c : cases) {
        Mat A67 = Mat::Zero(6, 7);
        for (int i = 0; i < 6; ++i) A67(i, i) = i == 3 ? c.d : 1.0;
        const Mat A76 = A67.transpose();
        Mat P = Mat::Constant(7, 6, -7.0), Q = Mat::Constant(6, 7, -7.0);
        EXPECT_EQ(QZ_RightPsoInv67(A67.data(), P.data()), c.expect) << c.d;
        EXPECT_EQ(QZ_LeftPsoInv76(A76.data(), Q.data()), c.expect) << c.d;
        if (!c.expect) {
            EXPECT_EQ(P, Mat::Constant(7, 6, -7.0));
            continue;
        }
        Mat expected = Mat::Zero(7, 6);
        for (int i = 0; i < 6; ++i) expected(i, i) = 1.0 / A67(i, i);
        EXPECT_LT((P - expected).cwiseAbs().maxCoeff(), 2 * kEps * expected.maxCoeff());
        EXPECT_LT((Q - expected.transpose()).cwiseAbs().maxCoeff(), 2 * kEps * expected.maxCoeff());
        if (c.d == 1.0) EXPECT_EQ(P, expected);
    }
}
