// Slerp: agreement with Eigen, end points, the shorter and the longer way, the linear band on
// both sides of its threshold, the cached factor state against the single-call forms, and the
// direction test.
#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

constexpr double kEps = 2.220446049250313e-16;

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

double Dot(const double *a, const double *b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

Eigen::Quaterniond ToEigen(const double *q) { return Eigen::Quaterniond(q[3], q[0], q[1], q[2]); }

// Rotation by angle (radians) about z.
void AboutZ(double angle, double *q) {
    q[0] = 0.0;
    q[1] = 0.0;
    q[2] = std::sin(angle / 2);
    q[3] = std::cos(angle / 2);
}

TEST(QuatSlerp, AgreesWithEigenAndHitsItsEndPointsExactly) {
    auto rng = qztest::Rng();
    int flips = 0;
    for (int n = 0; n < 2000; ++n) {
        double q1[4], q2[4], out[4];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        if (1.0 - std::fabs(Dot(q1, q2)) <= 0.01) continue;
        const Eigen::Quaterniond e1 = ToEigen(q1), e2 = ToEigen(q2);
        const bool flip = Dot(q1, q2) < 0;
        flips += flip;
        const double t = qztest::Uniform(rng, -0.2, 1.2);
        double b[4] = {q2[0], q2[1], q2[2], q2[3]};
        QZ_QuatSlerp(q1, b, t, out);
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(b[i], flip ? -q2[i] : q2[i]));
        const Eigen::Quaterniond e = e1.slerp(t, e2);
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(out[i], ref[i], 8 * kEps) << "case " << n;

        QZ_QuatSlerp(q1, b, 0.0, out);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], q1[i]);
        QZ_QuatSlerp(q1, b, 1.0, out);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], b[i]);
    }
    EXPECT_GT(flips, 100);
}

TEST(QuatSlerp, MidpointsTheShorterAndTheLongerWay) {
    const double id[4] = {0, 0, 0, 1};
    double z90[4], z45[4], out[4];
    AboutZ(M_PI / 2, z90);
    AboutZ(M_PI / 4, z45);
    QZ_QuatSlerp(id, z90, 0.5, out);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(out[i], z45[i], 2 * kEps);

    // The longer way round from 0 to 90 degrees passes -135 degrees at its midpoint, and leaves
    // q2 alone.
    const double keep[4] = {z90[0], z90[1], z90[2], z90[3]};
    QZ_QuatSlerpL(id, z90, 0.5, out);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(z90[i], keep[i]));
    const double a = 112.5 * M_PI / 180;  // (0, 0, sin a, cos a) up to sign
    const double sign = out[2] < 0 ? -1.0 : 1.0;
    EXPECT_NEAR(out[2], sign * std::sin(a), 4 * kEps);
    EXPECT_NEAR(out[3], sign * std::cos(a), 4 * kEps);
    EXPECT_NEAR(QZ_QuaternionAngleDeg(out, id), 135.0, 1e-12);

    // Orthogonal pair (180 degrees apart as rotations): d = 0 is not negated, and the path runs
    // through theta = pi/2.
    double x180[4] = {1, 0, 0, 0};
    QZ_QuatSlerp(id, x180, 0.5, out);
    EXPECT_EQ(x180[0], 1.0);
    EXPECT_NEAR(out[0], std::sqrt(0.5), kEps);
    EXPECT_NEAR(out[3], std::sqrt(0.5), kEps);
}

TEST(QuatSlerp, EqualAndOppositeEndsTakeTheLinearWeights) {
    const double q[4] = {0.5, -0.5, 0.5, 0.5};
    for (double t : {0.0, 0.3, 0.5, 1.0}) {
        double same[4] = {q[0], q[1], q[2], q[3]}, out[4];
        QZ_QuatSlerp(q, same, t, out);
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(out[i], q[i], kEps);
        double opp[4] = {-q[0], -q[1], -q[2], -q[3]};
        QZ_QuatSlerp(q, opp, t, out);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(opp[i], q[i]);  // negated in place onto q
            EXPECT_NEAR(out[i], q[i], kEps);
        }
        // The longer way between equal ends runs through the negated copy and the origin.
        QZ_QuatSlerpL(q, q, t, out);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], q[i] * (1.0 - t) + -q[i] * t);
    }
}

// The first d (walking up from below) that falls into the linear band of the shorter way, and of
// the longer way (walking down).
double FirstLinearShort() {
    double d = NextDown(NextDown(1.0 - 0.001));
    while (1.0 - d > 0.001) d = NextUp(d);
    return d;
}
double FirstLinearLong() {
    double d = NextUp(NextUp(0.001 - 1.0));
    while (1.0 + d > 0.001) d = NextDown(d);
    return d;
}

// Interpolating between the identity and (0, 0, sqrt(1 - d^2), d) at t = 0.5: spherical weights
// keep unit length, linear weights cut the chord and fall short of it.
double MidLength(double d, bool longer, bool factor) {
    const double q1[4] = {0, 0, 0, 1};
    double q2[4] = {0, 0, std::sqrt(1 - d * d), d}, out[4];
    if (factor) {
        QZSlerpFactorState st{};
        if (longer) {
            QZ_QuatSlerpFactorL(q1, q2, 0.5, out, &st);
        } else {
            QZ_QuatSlerpFactor(q1, q2, 0.5, out, &st);
        }
    } else if (longer) {
        QZ_QuatSlerpL(q1, q2, 0.5, out);
    } else {
        QZ_QuatSlerp(q1, q2, 0.5, out);
    }
    return QZ_QuaternionSqrtNorm(out);
}

TEST(QuatSlerp, LinearBandStartsAtTheThreshold) {
    const double dl = FirstLinearShort();
    ASSERT_GT(1.0 - NextDown(dl), 0.001);
    const double dL = FirstLinearLong();
    ASSERT_GT(1.0 + NextUp(dL), 0.001);
    for (bool factor : {false, true}) {
        EXPECT_NEAR(MidLength(NextDown(dl), false, factor), 1.0, 1e-12);
        EXPECT_LT(MidLength(dl, false, factor), 1.0 - 1e-5);
        // For the longer way, q2 has d < 0 and is used as it is.
        EXPECT_NEAR(MidLength(NextUp(dL), true, factor), 1.0, 1e-12);
        EXPECT_LT(MidLength(dL, true, factor), 1.0 - 1e-5);
    }
}

TEST(QuatSlerpFactor, MatchesTheSingleCallFormsAndKeepsThePair) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 500; ++n) {
        double q1[4], q2[4];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        if (n % 10 == 0) {  // include pairs inside the linear band
            for (int i = 0; i < 4; ++i) q2[i] = (n % 20 ? 1 : -1) * (q1[i] + 1e-3 * q2[i]);
        }
        for (bool longer : {false, true}) {
            double a[4] = {q2[0], q2[1], q2[2], q2[3]}, b[4] = {q2[0], q2[1], q2[2], q2[3]};
            QZSlerpFactorState st{};
            for (double t : {0.0, 0.25, 0.5, 0.9, 1.0, 1.1}) {
                double ref[4], got[4];
                if (longer) {
                    QZ_QuatSlerpL(q1, q2, t, ref);
                    QZ_QuatSlerpFactorL(q1, b, t, got, &st);
                } else {
                    QZ_QuatSlerp(q1, a, t, ref);
                    QZ_QuatSlerpFactor(q1, b, t, got, &st);
                }
                for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(got[i], ref[i])) << n << " " << t;
            }
            EXPECT_EQ(st.initialized, 1);
            // The factor forms leave q2 negated exactly when the single call would use -q2.
            const double d = Dot(q1, q2);
            const bool neg = longer ? d > 0 : d < 0;
            for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(b[i], neg ? -q2[i] : q2[i]));
        }
    }
}

TEST(QuatSlerpFactor, LaterCallsNeitherRecomputeNorNegate) {
    const double q1[4] = {0, 0, 0, 1};
    double z120[4], q2[4], out[4], first[4];
    AboutZ(2 * M_PI / 3, z120);
    for (int i = 0; i < 4; ++i) q2[i] = -z120[i];
    QZSlerpFactorState st{};
    QZ_QuatSlerpFactor(q1, q2, 0.5, first, &st);
    EXPECT_EQ(q2[3], z120[3]);
    EXPECT_EQ(st.useSpherical, 1);
    EXPECT_NEAR(st.theta, M_PI / 3, 4 * kEps);
    // Hand back the unflipped q2: a recomputing call would negate it again and agree with the
    // first; the cached call interpolates towards it as given.
    for (int i = 0; i < 4; ++i) q2[i] = -z120[i];
    QZ_QuatSlerpFactor(q1, q2, 0.5, out, &st);
    EXPECT_EQ(q2[3], -z120[3]);
    EXPECT_NE(out[3], first[3]);

    // Any useSpherical other than 1 means linear weights, whatever theta holds.
    for (uint8_t mode : {0, 2, 255}) {
        QZSlerpFactorState s2{1, 1.0, 0.5, mode};
        QZ_QuatSlerpFactor(q1, z120, 0.25, out, &s2);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], q1[i] * 0.75 + z120[i] * 0.25);
    }
    // Cleared again, the state starts a new pair.
    st.initialized = 0;
    QZ_QuatSlerpFactor(q1, z120, 0.5, out, &st);
    EXPECT_NEAR(st.theta, M_PI / 3, 4 * kEps);
}

TEST(QuatSlerpDir, GivesTheSenseOfTurnAboutTheAxis) {
    const double id[4] = {0, 0, 0, 1};
    double z30[4];
    AboutZ(M_PI / 6, z30);
    const double up[3] = {0, 0, 1}, down[3] = {0, 0, -1}, longUp[3] = {0, 0, 7};
    EXPECT_EQ(QZ_QuatSlerpDir(id, z30, up), 1);
    EXPECT_EQ(QZ_QuatSlerpDir(id, z30, down), -1);
    EXPECT_EQ(QZ_QuatSlerpDir(z30, id, up), -1);
    EXPECT_EQ(QZ_QuatSlerpDir(id, z30, longUp), 1);
    EXPECT_EQ(QZ_QuatSlerpDir(id, id, up), 1);

    // Random frames and axes: the sign of the turn of the projected x axes about the axis.
    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double q1[4], q2[4], axis[3];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        for (double &v : axis) v = qztest::Uniform(rng, -2, 2);
        const Eigen::Vector3d k = Eigen::Vector3d(axis[0], axis[1], axis[2]).normalized();
        const Eigen::Vector3d u1 = ToEigen(q1).toRotationMatrix().col(0);
        const Eigen::Vector3d u2 = ToEigen(q2).toRotationMatrix().col(0);
        const Eigen::Vector3d p1 = u1 - k * k.dot(u1), p2 = u2 - k * k.dot(u2);
        const double angle = std::atan2(p1.cross(p2).dot(k), p1.dot(p2));
        if (std::fabs(angle) < 1e-9 || M_PI - std::fabs(angle) < 1e-9) continue;
        EXPECT_EQ(QZ_QuatSlerpDir(q1, q2, axis), angle < 0 ? -1 : 1) << "case " << n;
    }
}

}  // namespace
