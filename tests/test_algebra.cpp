// Quaternion algebra: the product against Eigen, the length floors on both sides, the inverse and
// the angle between orientations with its clamp.
#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

constexpr double kEps = 2.220446049250313e-16;

// A random unit quaternion (x, y, z, w) from four normal deviates.
void RandomUnitQuat(std::mt19937_64 &rng, double *q) {
    std::normal_distribution<double> g;
    double n = 0.0;
    for (int i = 0; i < 4; ++i) {
        q[i] = g(rng);
        n += q[i] * q[i];
    }
    n = std::sqrt(n);
    for (int i = 0; i < 4; ++i) q[i] /= n;
}

Eigen::Quaterniond ToEigen(const double *q) { return Eigen::Quaterniond(q[3], q[0], q[1], q[2]); }

TEST(QuatMult, AgreesWithEigenAndMayWriteOverEitherInput) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double a[4], b[4], out[4];
        RandomUnitQuat(rng, a);
        RandomUnitQuat(rng, b);
        QZ_QuatMult(a, b, out);
        const Eigen::Quaterniond e = ToEigen(a) * ToEigen(b);
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(out[i], ref[i], 4 * kEps) << "case " << n;

        double inA[4] = {a[0], a[1], a[2], a[3]}, inB[4] = {b[0], b[1], b[2], b[3]};
        QZ_QuatMult(inA, b, inA);
        QZ_QuatMult(a, inB, inB);
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(SameBits(inA[i], out[i]));
            EXPECT_TRUE(SameBits(inB[i], out[i]));
        }
    }
}

TEST(QuatMult, IdentityAndHalfTurns) {
    const double a[4] = {0.1, -0.7, 0.3, 0.6}, id[4] = {0, 0, 0, 1};
    double out[4];
    QZ_QuatMult(a, id, out);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], a[i]);
    // Two half turns about z make a full turn: -1, the same orientation as the identity.
    const double hz[4] = {0, 0, 1, 0};
    QZ_QuatMult(hz, hz, out);
    EXPECT_EQ(out[0], 0.0);
    EXPECT_EQ(out[1], 0.0);
    EXPECT_EQ(out[2], 0.0);
    EXPECT_EQ(out[3], -1.0);
    // Half turns about x then y give a half turn about z (i j = k).
    const double hx[4] = {1, 0, 0, 0}, hy[4] = {0, 1, 0, 0};
    QZ_QuatMult(hx, hy, out);
    EXPECT_EQ(out[2], 1.0);
    EXPECT_EQ(out[3], 0.0);
}

TEST(QuaternionNorm, NormalisesOnlyAboveTheFloor) {
    double q[4] = {0, 0, 0, 2};
    EXPECT_EQ(QZ_QuaternionNorm(q), 1u);
    EXPECT_EQ(q[3], 1.0);

    double zero[4] = {0, 0, 0, 0};
    EXPECT_EQ(QZ_QuaternionNorm(zero), 0u);
    for (double v : zero) EXPECT_TRUE(SameBits(v, 0.0));

    double atFloor[4] = {0, 0, 0, 1e-16};
    ASSERT_EQ(QZ_QuaternionSqrtNorm(atFloor), 1e-16);
    EXPECT_EQ(QZ_QuaternionNorm(atFloor), 0u);
    EXPECT_EQ(atFloor[3], 1e-16);

    double above[4] = {0, 0, 0, NextUp(1e-16)};
    EXPECT_EQ(QZ_QuaternionNorm(above), 1u);
    EXPECT_EQ(above[3], 1.0);

    auto rng = qztest::Rng();
    for (int n = 0; n < 200; ++n) {
        double r[4];
        for (double &v : r) v = qztest::Uniform(rng, -3.0, 3.0);
        ASSERT_EQ(QZ_QuaternionNorm(r), 1u);
        EXPECT_NEAR(QZ_QuaternionSqrtNorm(r), 1.0, 2 * kEps);
    }
}

TEST(QuaternionInverse, IsTheUnitInverseRotationAboveItsFloor) {
    double q[4] = {0, 0, 0, 2}, out[4] = {7, 7, 7, 7};
    EXPECT_EQ(QZ_QuaternionInverse(q, out), 1u);
    EXPECT_TRUE(SameBits(out[0], -0.0));  // the vector part is negated, zeros included
    EXPECT_EQ(out[3], 1.0);               // divided by the length, not its square

    double atFloor[4] = {0, 0, 0, 1e-9}, kept[4] = {7, 7, 7, 7};
    EXPECT_EQ(QZ_QuaternionInverse(atFloor, kept), 0u);
    for (double v : kept) EXPECT_EQ(v, 7.0);
    double above[4] = {0, 0, 0, NextUp(1e-9)};
    EXPECT_EQ(QZ_QuaternionInverse(above, kept), 1u);
    EXPECT_EQ(kept[3], 1.0);
    double nan[4] = {NAN, 0, 0, 1};
    kept[0] = 7.0;
    EXPECT_EQ(QZ_QuaternionInverse(nan, kept), 0u);
    EXPECT_EQ(kept[0], 7.0);

    // q times its inverse is a pure scalar |q|; in place gives the same bits.
    auto rng = qztest::Rng();
    for (int n = 0; n < 200; ++n) {
        double r[4], inv[4], prod[4];
        for (double &v : r) v = qztest::Uniform(rng, -2.0, 2.0);
        ASSERT_EQ(QZ_QuaternionInverse(r, inv), 1u);
        QZ_QuatMult(r, inv, prod);
        const double len = QZ_QuaternionSqrtNorm(r);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(prod[i], 0.0, 8 * kEps * len);
        EXPECT_NEAR(prod[3], len, 8 * kEps * len);
        double conj[4];
        QZ_QuaternionConjugate(r, conj);
        EXPECT_TRUE(SameBits(conj[3], r[3]));
        EXPECT_EQ(QZ_QuaternionInverse(r, r), 1u);
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(r[i], inv[i]));
    }
}

TEST(QuaternionAngle, IsTheShorterRotationClampedAwayFromZero) {
    const double kMinDeg = 0.0016205694361395497, kMinArc = 2.8284272417823128e-05;
    const double q[4] = {0.5, -0.5, 0.5, 0.5}, nq[4] = {-0.5, 0.5, -0.5, -0.5};
    EXPECT_EQ(QZ_QuaternionAngleDeg(q, q), kMinDeg);
    EXPECT_EQ(QZ_QuaternionAngleDeg(q, nq), kMinDeg);
    EXPECT_EQ(QZ_QuaternionAngleArc(q, q), kMinArc);
    // Longer than unit: the dot product exceeds 1 and is clamped like an equal pair.
    const double big[4] = {0, 0, 0, 3};
    const double id[4] = {0, 0, 0, 1};
    EXPECT_EQ(QZ_QuaternionAngleDeg(id, big), kMinDeg);

    const double s = std::sqrt(0.5);
    const double z90[4] = {0, 0, s, s}, z270[4] = {0, 0, s, -s};
    EXPECT_NEAR(QZ_QuaternionAngleDeg(id, z90), 90.0, 1e-12);
    EXPECT_NEAR(QZ_QuaternionAngleDeg(id, z270), 90.0, 1e-12);
    const double x180[4] = {1, 0, 0, 0};
    EXPECT_EQ(QZ_QuaternionAngleDeg(id, x180), 180.0);

    auto rng = qztest::Rng();
    for (int n = 0; n < 500; ++n) {
        double a[4], b[4];
        RandomUnitQuat(rng, a);
        RandomUnitQuat(rng, b);
        const double ref = ToEigen(a).angularDistance(ToEigen(b));
        if (ref < 1e-3) continue;  // the arc cosine is ill-conditioned there
        EXPECT_NEAR(QZ_QuaternionAngleArc(a, b), ref, 1e-12) << "case " << n;
    }
}

}  // namespace
