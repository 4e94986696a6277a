// Conversions: quaternion <-> matrix against Eigen and round trips, composition, the four
// matrix-to-quaternion forms with their ties, and the pose helpers.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

TEST(QuaternionMatrix, RoundTripsAndComposesLikeEigen) {
    auto rng = Rng();
    for (int n = 0; n < 2000; ++n) {
        double q[4], b[4], qb[4], r[9], rb[9], rqb[9], r4[16], back[4], back4[4];
        RandomUnitQuat(rng, q);
        RandomUnitQuat(rng, b);
        QZ_Quaternion2Matrix3(q, r);
        QZ_Quaternion2Matrix4(q, r4);
        ASSERT_TRUE(Near(r, RowMat3(ToEigen(q).toRotationMatrix()).data(), 9, 4 * kEps)) << n;
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(Near(r4 + 4 * i, r + 3 * i, 3, 0.0)) << n;
        // Back up to sign, alike from either layout; a positive trace comes back with w > 0.
        QZ_Matrix2Quaternion3(r, back);
        QZ_Matrix2Quaternion4(r4, back4);
        ASSERT_TRUE(SameUpToSign(back, q, 8 * kEps)) << n;
        ASSERT_TRUE(Near(back4, back, 4, 0.0)) << n;
        if (r[0] + r[4] + r[8] > 0.0) EXPECT_GT(back[3], 0.0);
        // The matrix of a product is the product of the matrices.
        QZ_QuatMult(q, b, qb);
        QZ_Quaternion2Matrix3(b, rb);
        QZ_Quaternion2Matrix3(qb, rqb);
        const RowMat3 prod = Eigen::Map<RowMat3>(r) * Eigen::Map<RowMat3>(rb);
        ASSERT_TRUE(Near(rqb, prod.data(), 9, 16 * kEps)) << n;
    }
}

// Which form ran shows in the component set to 0.25 S. The tie matrices are not rotations, so
// that the forms give different results; with S = 2 sqrt(3) that component is sqrt(3) / 2.
TEST(Matrix2Quaternion, TakesTheFourFormsWithTiesToTheLater) {
    const double h = std::sqrt(3.0) / 2, s = std::sqrt(0.5);
    // clang-format off
    const struct { double r[9]; int i; double v; } rows[] = {
        {{1, 0, 0, 0, -1, 0, 0, 0, -1}, 0, 1.0},                // half turn about x
        {{0, 0, 1, 1, 0, 0, 0, 1, 0}, 2, 0.5},                  // trace 0, equal diagonal
        {{0.5, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, -2}, 1, h},  // r00 = r11 > r22
        {{0.5, 0.1, 0.2, 0.3, -2, 0.6, -0.4, 0.7, 0.5}, 2, h},  // r00 = r22 > r11
        {{-2, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, 0.5}, 2, h},  // r11 = r22 > r00
        // The trace test is strict: one ulp above zero takes the first form, zero and below not.
        {{0.5, 0, 0, 0, 0.5, 0, 0, 0, NextUp(-1.0)}, 3, 0.5},
        {{0.5, 0, 0, 0, 0.5, 0, 0, 0, -1.0}, 1, s},
        {{0.5, 0, 0, 0, 0.5, 0, 0, 0, NextDown(-1.0)}, 1, s}};
    // clang-format on
    for (const auto &row : rows) {
        double q[4];
        QZ_Matrix2Quaternion3(row.r, q);
        EXPECT_EQ(q[row.i], row.v) << "row " << &row - rows;
    }
}

TEST(PosQuat, TransformsRoundTripAndTheNormalisingFormRewritesThePose) {
    double m[16], pose[7], back[16];
    const double q[4] = {0.2, -0.4, 0.4, 0.8};
    QZ_Quaternion2Matrix4(q, m);
    for (int i : {3, 7, 11, 12, 13, 14, 15}) EXPECT_EQ(m[i], 0.0);  // a padded rotation block
    m[3] = 1.5, m[7] = -2, m[11] = 0.25, m[15] = 1.0;
    QZ_Matrix2PosQuat(m, pose);
    QZ_PosQuat2Matrix(pose, back);
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(back[i], m[i], i % 4 == 3 || i > 11 ? 0.0 : 8 * kEps);
    // Too short to normalise: the pose stays, and the zero quaternion still gives the identity.
    const double expect[16] = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    for (double w : {2.0, 0.0}) {
        double p[7] = {1, 2, 3, 0, 0, 0, w};
        EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(p, m), 1u);
        EXPECT_TRUE(SameBits(p[6], w == 0.0 ? 0.0 : 1.0) && Near(m, expect, 16, 0.0)) << w;
    }
}

// Position kept, quaternion written over the angles and normalised, the last slot cleared.
TEST(XYZABC2XYZQ, MatchesEigensElementaryRotationsInPlace) {
    auto rng = Rng();
    const double d2r = 0.017453292519943295, head[3] = {0.5, -1, 2};
    for (int n = 0; n < 1000; ++n) {
        double buf[8] = {0.5, -1, 2, 0, 0, 0, 9, 9};
        for (int i = 3; i < 6; ++i) buf[i] = n == 0 ? 0.0 : Uniform(rng, -180, 180);
        const Eigen::Quaterniond e(Eigen::AngleAxisd(buf[5] * d2r, Eigen::Vector3d::UnitZ()) *
                                   Eigen::AngleAxisd(buf[4] * d2r, Eigen::Vector3d::UnitY()) *
                                   Eigen::AngleAxisd(buf[3] * d2r, Eigen::Vector3d::UnitX()));
        ASSERT_EQ(QZ_XYZABC2XYZQ(buf), 1u);
        ASSERT_TRUE(Near(buf, head, 3, 0.0) && SameBits(buf[7], 0.0)) << n;
        ASSERT_TRUE(SameUpToSign(buf + 3, e.coeffs().data(), 16 * kEps)) << n;
    }
}

}  // namespace
