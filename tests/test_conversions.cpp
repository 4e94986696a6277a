// Conversions: quaternion <-> matrix against Eigen and round trips, composition, and poses from
// angles. The ties between the four matrix-to-quaternion forms and the position-and-quaternion
// transforms are pinned by the golden vectors.
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
        ASSERT_ALL(Near(buf, head, 3, 0.0), SameBits(buf[7], 0.0)) << n;
        ASSERT_TRUE(SameUpToSign(buf + 3, e.coeffs().data(), 16 * kEps)) << n;
    }
}

}  // namespace
