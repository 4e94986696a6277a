// Conversions: quaternion <-> matrix against Eigen and round trips, composition, the four
// matrix-to-quaternion forms with their ties, and the pose helpers.
#include "quaternion_cases.h"

namespace {

using namespace qztest;
using RowMat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

TEST(QuaternionMatrix, RoundTripsAndComposesLikeEigen) {
    auto rng = Rng();
    for (int n = 0; n < 2000; ++n) {
        double q[4], b[4], r[9], rb[9], qb[4], rqb[9], back[4], r4[16];
        RandomUnitQuat(rng, q);
        RandomUnitQuat(rng, b);
        QZ_Quaternion2Matrix3(q, r);
        QZ_Quaternion2Matrix4(q, r4);
        const RowMat3 e = ToEigen(q).toRotationMatrix();
        for (int i = 0; i < 9; ++i) {
            EXPECT_NEAR(r[i], e(i / 3, i % 3), 4 * kEps) << "case " << n;
            EXPECT_TRUE(SameBits(r4[4 * (i / 3) + i % 3], r[i]));
        }
        // Back up to sign; a positive trace always comes back with w > 0.
        QZ_Matrix2Quaternion3(r, back);
        EXPECT_TRUE(SameUpToSign(back, q, 8 * kEps)) << "case " << n;
        if (r[0] + r[4] + r[8] > 0.0) EXPECT_GT(back[3], 0.0);
        const Eigen::Quaterniond eq(e);
        const double ref[4] = {eq.x(), eq.y(), eq.z(), eq.w()};
        EXPECT_TRUE(SameUpToSign(back, ref, 8 * kEps)) << "case " << n;
        // The matrix of a product is the product of the matrices.
        QZ_QuatMult(q, b, qb);
        QZ_Quaternion2Matrix3(b, rb);
        QZ_Quaternion2Matrix3(qb, rqb);
        const RowMat3 prod = Eigen::Map<RowMat3>(r) * Eigen::Map<RowMat3>(rb);
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(rqb[i], prod(i / 3, i % 3), 16 * kEps);
    }
}

// Which form ran shows in the component set to 0.25 S. The tie matrices are not rotations, so
// that the forms give different results; with S = 2 sqrt(3) that component is sqrt(3) / 2.
TEST(Matrix2Quaternion, TakesTheFourFormsWithTiesToTheLater) {
    double q[4];
    const double diag[3][9] = {{1, 0, 0, 0, -1, 0, 0, 0, -1}, {-1, 0, 0, 0, 1, 0, 0, 0, -1},
                               {-1, 0, 0, 0, -1, 0, 0, 0, 1}};
    for (int axis = 0; axis < 3; ++axis) {
        QZ_Matrix2Quaternion3(diag[axis], q);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(q[i], i == axis ? 1.0 : 0.0) << axis << " " << i;
    }
    const double cyc[9] = {0, 0, 1, 1, 0, 0, 0, 1, 0};  // trace 0, equal diagonal: last form
    QZ_Matrix2Quaternion3(cyc, q);
    for (double v : q) EXPECT_EQ(v, 0.5);

    const double h = std::sqrt(3.0) / 2;
    const double t01[9] = {0.5, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, -2};  // r00 = r11 > r22
    const double t02[9] = {0.5, 0.1, 0.2, 0.3, -2, 0.6, -0.4, 0.7, 0.5};  // r00 = r22 > r11
    const double t12[9] = {-2, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, 0.5};  // r11 = r22 > r00
    QZ_Matrix2Quaternion3(t01, q);
    EXPECT_EQ(q[1], h);
    QZ_Matrix2Quaternion3(t02, q);
    EXPECT_EQ(q[2], h);
    QZ_Matrix2Quaternion3(t12, q);
    EXPECT_EQ(q[2], h);

    // The trace test is strict: one ulp above zero takes the first form, zero and below do not.
    double t[16] = {0.5, 0, 0, 9, 0, 0.5, 0, 9, 0, 0, NextUp(-1.0), 9, 9, 9, 9, 9};
    QZ_Matrix2Quaternion4(t, q);
    EXPECT_EQ(q[3], 0.5);
    for (double r22 : {-1.0, NextDown(-1.0)}) {
        t[10] = r22;
        QZ_Matrix2Quaternion4(t, q);
        EXPECT_EQ(q[1], std::sqrt(2.0) / 2) << r22;
    }
}

TEST(PosQuat, TransformsRoundTripAndTheNormalisingFormRewritesThePose) {
    double m[16], pose[7], back[16];
    const double q[4] = {0.2, -0.4, 0.4, 0.8};
    QZ_Quaternion2Matrix4(q, m);
    EXPECT_EQ(m[15], 0.0);
    m[3] = 1.5, m[7] = -2, m[11] = 0.25, m[15] = 1.0;
    QZ_Matrix2PosQuat(m, pose);
    QZ_PosQuat2Matrix(pose, back);
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(back[i], m[i], i % 4 == 3 || i > 11 ? 0.0 : 8 * kEps);

    double scaled[7] = {1, 2, 3, 0, 0, 0, 2}, zero[7] = {1, 2, 3, 0, 0, 0, 0};
    const double expect[16] = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(scaled, m), 1u);
    EXPECT_EQ(scaled[6], 1.0);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], expect[i]) << i;
    // Too short to normalise: the pose stays, and the zero quaternion still gives the identity.
    EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(zero, m), 1u);
    EXPECT_EQ(zero[6], 0.0);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], expect[i]) << i;
}

TEST(XYZABC2XYZQ, MatchesEigensElementaryRotationsInPlace) {
    double b0[8] = {1, 2, 3, 0, 0, 0, 9, 9};
    EXPECT_EQ(QZ_XYZABC2XYZQ(b0), 1u);
    const double e0[8] = {1, 2, 3, 0, 0, 0, 1, 0};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(b0[i], e0[i]) << i;

    auto rng = Rng();
    const double d2r = 0.017453292519943295;
    for (int n = 0; n < 1000; ++n) {
        double buf[8] = {0.5, -1, 2, 0, 0, 0, 9, 9};
        for (int i = 3; i < 6; ++i) buf[i] = n == 0 ? (i == 3 ? 90.0 : 0.0) : Uniform(rng, -180, 180);
        const Eigen::Quaterniond e(Eigen::AngleAxisd(buf[5] * d2r, Eigen::Vector3d::UnitZ()) *
                                   Eigen::AngleAxisd(buf[4] * d2r, Eigen::Vector3d::UnitY()) *
                                   Eigen::AngleAxisd(buf[3] * d2r, Eigen::Vector3d::UnitX()));
        ASSERT_EQ(QZ_XYZABC2XYZQ(buf), 1u);
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        EXPECT_TRUE(SameUpToSign(buf + 3, ref, 16 * kEps)) << "case " << n;
        EXPECT_EQ(buf[7], 0.0);
    }
}

}  // namespace
