// Jacobian frame transforms, the 6x7 transpose and matrix-vector product.
#include <Eigen/Dense>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::SameBits;
using Mat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
using Mat66 = Eigen::Matrix<double, 6, 6, Eigen::RowMajor>;
using Mat67 = Eigen::Matrix<double, 6, 7, Eigen::RowMajor>;
using Mat76 = Eigen::Matrix<double, 7, 6, Eigen::RowMajor>;

template <class M>
bool SameMat(const M &a, const M &b) {
    for (int i = 0; i < a.size(); ++i)
        if (!SameBits(a.data()[i], b.data()[i])) return false;
    return true;
}

template <class M>
M Random(std::mt19937_64 &rng) {
    M m;
    for (int i = 0; i < m.size(); ++i) m.data()[i] = qztest::Uniform(rng, -2, 2);
    return m;
}

// All three transforms give diag(R, R) J, bit for bit alike, in place or into a separate output.
TEST(Jacobian, TransformsRotateBothHalvesInPlaceOrNot) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 300; ++n) {
        const double abc[3] = {qztest::Uniform(rng, -3, 3), qztest::Uniform(rng, -1.5, 1.5),
                               qztest::Uniform(rng, -3, 3)};
        Mat3 r;
        QZ_ABC2Matrix3ARC(abc, r.data());
        Mat66 d = Mat66::Zero();
        d.topLeftCorner<3, 3>() = d.bottomRightCorner<3, 3>() = r;
        const Mat67 j7 = Random<Mat67>(rng);
        const Mat66 j6 = Random<Mat66>(rng);
        Mat67 a, b, in7 = j7;
        Mat66 c, in6 = j6;
        QZ_JACOB_TRAN_T67(j7.data(), r.data(), a.data());
        QZ_JACOBI_TRANS_T67(j7.data(), r.data(), b.data());
        QZ_JACOB_TRAN_T67(in7.data(), r.data(), in7.data());
        QZ_JACOB_TRAN_T66(j6.data(), r.data(), c.data());
        QZ_JACOB_TRAN_T66(in6.data(), r.data(), in6.data());
        EXPECT_LT((a - d * j7).cwiseAbs().maxCoeff(), 1e-14);
        EXPECT_LT((c - d * j6).cwiseAbs().maxCoeff(), 1e-14);
        EXPECT_TRUE(SameMat(a, b) && SameMat(a, in7) && SameMat(c, in6)) << n;
    }
    // A quarter turn about z: column (1, 0, 0, 0, 1, 0) becomes (0, 1, 0, -1, 0, 0).
    const Mat3 rz = (Mat3() << 0, -1, 0, 1, 0, 0, 0, 0, 1).finished();
    Mat67 j = Mat67::Zero(), out;
    j.col(2) << 1, 0, 0, 0, 1, 0;
    QZ_JACOB_TRAN_T67(j.data(), rz.data(), out.data());
    EXPECT_TRUE(out(1, 2) == 1 && out(3, 2) == -1 && out.col(2).cwiseAbs().sum() == 2);
}

TEST(Jacobian, SixBySevenTransposeAndProduct) {
    auto rng = qztest::Rng();
    const Mat67 a = Random<Mat67>(rng);
    Mat76 b;
    Mat67Transpose(a.data(), b.data());
    EXPECT_TRUE(SameMat(b, Mat76(a.transpose())));
    const Eigen::Matrix<double, 7, 1> x = Random<Eigen::Matrix<double, 7, 1>>(rng);
    Eigen::Matrix<double, 6, 1> y;
    MVmult677(a.data(), x.data(), y.data());
    EXPECT_LT((y - a * x).cwiseAbs().maxCoeff(), 1e-15);
    // Every sum starts from +0: a row of -0 products gives +0, not -0.
    const Mat67 neg = Mat67::Constant(-1.0);
    MVmult677(neg.data(), Eigen::Matrix<double, 7, 1>::Zero().eval().data(), y.data());
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(SameBits(y(i), 0.0)) << i;
}

}  // namespace
