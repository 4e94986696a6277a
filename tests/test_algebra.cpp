// Quaternion algebra: the product against Eigen, the length floors on both sides, the inverse and
// the clamped angle between orientations.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

TEST(QuatMult, AgreesWithEigenAndMayWriteOverEitherInput) {
    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double a[4], b[4], out[4];
        RandomUnitQuat(rng, a);
        RandomUnitQuat(rng, b);
        QZ_QuatMult(a, b, out);
        const Eigen::Quaterniond e = ToEigen(a) * ToEigen(b);
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        double inA[4] = {a[0], a[1], a[2], a[3]}, inB[4] = {b[0], b[1], b[2], b[3]};
        QZ_QuatMult(inA, b, inA);
        QZ_QuatMult(a, inB, inB);
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(out[i], ref[i], 4 * kEps) << "case " << n;
            EXPECT_TRUE(SameBits(inA[i], out[i]) && SameBits(inB[i], out[i]));
        }
    }
}

TEST(QuaternionNormAndInverse, RefuseLengthsAtTheirFloors) {
    double q[4] = {0, 0, 0, 2}, inv[4] = {7, 7, 7, 7};
    EXPECT_EQ(QZ_QuaternionInverse(q, inv), 1u);
    EXPECT_TRUE(SameBits(inv[0], -0.0));  // the vector part is negated, zeros included
    EXPECT_EQ(inv[3], 1.0);               // divided by the length, not its square
    EXPECT_EQ(QZ_QuaternionNorm(q), 1u);
    EXPECT_EQ(q[3], 1.0);

    // Each floor refuses its own value (and NaN for the inverse) and accepts the next double.
    double atNorm[4] = {0, 0, 0, 1e-16}, aboveNorm[4] = {0, 0, 0, NextUp(1e-16)};
    ASSERT_EQ(QZ_QuaternionSqrtNorm(atNorm), 1e-16);
    EXPECT_EQ(QZ_QuaternionNorm(atNorm), 0u);
    EXPECT_EQ(atNorm[3], 1e-16);
    EXPECT_EQ(QZ_QuaternionNorm(aboveNorm), 1u);
    EXPECT_EQ(aboveNorm[3], 1.0);
    const double atInv[4] = {0, 0, 0, 1e-9}, aboveInv[4] = {0, 0, 0, NextUp(1e-9)};
    const double nan[4] = {NAN, 0, 0, 1};
    double kept[4] = {7, 7, 7, 7};
    EXPECT_EQ(QZ_QuaternionInverse(atInv, kept), 0u);
    EXPECT_EQ(QZ_QuaternionInverse(nan, kept), 0u);
    for (double v : kept) EXPECT_EQ(v, 7.0);
    EXPECT_EQ(QZ_QuaternionInverse(aboveInv, kept), 1u);
    EXPECT_EQ(kept[3], 1.0);

    // q times its inverse is the pure scalar |q|; in place gives the same bits.
    auto rng = Rng();
    for (int n = 0; n < 200; ++n) {
        double r[4], prod[4];
        for (double &v : r) v = Uniform(rng, -2.0, 2.0);
        ASSERT_EQ(QZ_QuaternionInverse(r, inv), 1u);
        QZ_QuatMult(r, inv, prod);
        const double len = QZ_QuaternionSqrtNorm(r);
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(prod[i], i == 3 ? len : 0.0, 8 * kEps * len);
        EXPECT_EQ(QZ_QuaternionInverse(r, r), 1u);
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(r[i], inv[i]));
    }
}

TEST(QuaternionAngle, IsTheShorterRotationClampedAwayFromZero) {
    const double kMinDeg = 0.0016205694361395497;
    const double q[4] = {0.5, -0.5, 0.5, 0.5}, nq[4] = {-0.5, 0.5, -0.5, -0.5};
    const double id[4] = {0, 0, 0, 1}, big[4] = {0, 0, 0, 3}, x180[4] = {1, 0, 0, 0};
    EXPECT_EQ(QZ_QuaternionAngleDeg(q, q), kMinDeg);
    EXPECT_EQ(QZ_QuaternionAngleDeg(q, nq), kMinDeg);
    EXPECT_EQ(QZ_QuaternionAngleDeg(id, big), kMinDeg);  // dot product above 1
    EXPECT_EQ(QZ_QuaternionAngleArc(q, q), 2.8284272417823128e-05);
    EXPECT_EQ(QZ_QuaternionAngleDeg(id, x180), 180.0);
    const double s = std::sqrt(0.5), z270[4] = {0, 0, s, -s};
    EXPECT_NEAR(QZ_QuaternionAngleDeg(id, z270), 90.0, 1e-12);

    auto rng = Rng();
    for (int n = 0; n < 500; ++n) {
        double a[4], b[4];
        RandomUnitQuat(rng, a);
        RandomUnitQuat(rng, b);
        const double ref = ToEigen(a).angularDistance(ToEigen(b));
        if (ref > 1e-3) EXPECT_NEAR(QZ_QuaternionAngleArc(a, b), ref, 1e-12) << "case " << n;
    }
}

}  // namespace
