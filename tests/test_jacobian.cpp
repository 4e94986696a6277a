// Jacobian frame transforms, the 6x7 transpose and matrix-vector product.
#include <Eigen/Dense>

#include "QZMatrix.h"
#include "decomposition_cases.h"

namespace {

using namespace qztest;

// All three transforms give diag(R, R) J, bit for bit alike, in place or into a separate output.
TEST(Jacobian, TransformsRotateBothHalvesInPlaceOrNot) {
    auto rng = Rng();
    for (int n = 0; n < 300; ++n) {
        const double abc[3] = {Uniform(rng, -3, 3), Uniform(rng, -1.5, 1.5), Uniform(rng, -3, 3)};
        Mat r(3, 3), d = Mat::Zero(6, 6);
        QZ_ABC2Matrix3ARC(abc, r.data());
        d.topLeftCorner(3, 3) = d.bottomRightCorner(3, 3) = r;
        const Mat j7 = RandomMat(rng, 6, 7), j6 = RandomMat(rng, 6, 6);
        Mat a(6, 7), b(6, 7), c(6, 6), in7 = j7, in6 = j6;
        QZ_JACOB_TRAN_T67(j7.data(), r.data(), a.data());
        QZ_JACOBI_TRANS_T67(j7.data(), r.data(), b.data());
        QZ_JACOB_TRAN_T67(in7.data(), r.data(), in7.data());
        QZ_JACOB_TRAN_T66(j6.data(), r.data(), c.data());
        QZ_JACOB_TRAN_T66(in6.data(), r.data(), in6.data());
        EXPECT_LT(MaxAbs(a - d * j7) + MaxAbs(c - d * j6), 1e-14);
        EXPECT_TRUE(SameBlock(a.data(), b.data(), 42) && SameBlock(a.data(), in7.data(), 42) &&
                    SameBlock(c.data(), in6.data(), 36)) << n;
    }
}

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
