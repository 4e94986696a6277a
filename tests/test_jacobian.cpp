// The 6x7 transpose and matrix-vector product of the Jacobian helpers.
#include <Eigen/Dense>

#include "QZMatrix.h"
#include "decomposition_cases.h"

namespace {

using namespace qztest;

// Every row sum of the product starts from +0: a row of -0 products gives +0, not -0.
TEST(Jacobian, SixBySevenTransposeAndProduct) {
    auto rng = Rng();
    const Mat a = RandomMat(rng, 6, 7), x = RandomMat(rng, 7, 1);
    Mat b(7, 6), y(6, 1);
    Mat67Transpose(a.data(), b.data());
    EXPECT_TRUE(b == a.transpose());
    MVmult677(a.data(), x.data(), y.data());
    EXPECT_LT(MaxAbs(y - a * x), 1e-15);
    MVmult677(Mat::Constant(6, 7, -1.0).eval().data(), Mat::Zero(7, 1).eval().data(), y.data());
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(SameBits(y(i), 0.0)) << i;
}

}  // namespace
