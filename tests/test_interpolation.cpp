// Slerp: agreement with Eigen and exact end points, the shorter and the longer way, the linear
// band on both sides of its threshold, the cached factor state against the single-call forms,
// and the direction test.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

void AboutZ(double angle, double *q) {
    q[0] = q[1] = 0.0;
    q[2] = std::sin(angle / 2);
    q[3] = std::cos(angle / 2);
}

TEST(QuatSlerp, AgreesWithEigenTakesTheShorterWayAndHitsItsEndsExactly) {
    auto rng = Rng();
    for (int n = 0; n < 2000; ++n) {
        double q1[4], q2[4], b[4], out[4];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        if (1.0 - std::fabs(Dot4(q1, q2)) <= 0.01) continue;
        const double t = Uniform(rng, -0.2, 1.2);
        for (int i = 0; i < 4; ++i) b[i] = q2[i];
        QZ_QuatSlerp(q1, b, t, out);
        const Eigen::Quaterniond e = ToEigen(q1).slerp(t, ToEigen(q2));
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(out[i], ref[i], 8 * kEps) << "case " << n;
            EXPECT_TRUE(SameBits(b[i], Dot4(q1, q2) < 0 ? -q2[i] : q2[i]));  // negated in place
        }
        QZ_QuatSlerp(q1, b, 0.0, out);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], q1[i]);
        QZ_QuatSlerp(q1, b, 1.0, out);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], b[i]);
    }
}

TEST(QuatSlerp, MidpointsOfTheShorterAndTheLongerWay) {
    const double id[4] = {0, 0, 0, 1}, q[4] = {0.5, -0.5, 0.5, 0.5};
    double z90[4], z45[4], out[4];
    AboutZ(M_PI / 2, z90);
    AboutZ(M_PI / 4, z45);
    QZ_QuatSlerp(id, z90, 0.5, out);
    EXPECT_TRUE(SameUpToSign(out, z45, 2 * kEps));
    // The longer way from 0 to 90 degrees about z passes -135 degrees; q2 is left alone.
    double z225[4];
    AboutZ(225 * M_PI / 180, z225);
    QZ_QuatSlerpL(id, z90, 0.5, out);
    EXPECT_TRUE(SameUpToSign(out, z225, 4 * kEps));
    EXPECT_EQ(z90[3], std::cos(M_PI / 4));
    // Equal ends: the longer way runs through the negated copy and the origin.
    QZ_QuatSlerpL(q, q, 0.5, out);
    for (double v : out) EXPECT_EQ(v, 0.0);
    // Rotations 180 degrees apart (d = 0): q2 is not negated and the path runs through pi/2.
    double x180[4] = {1, 0, 0, 0};
    QZ_QuatSlerp(id, x180, 0.5, out);
    EXPECT_EQ(x180[0], 1.0);
    EXPECT_NEAR(out[0], std::sqrt(0.5), kEps);
}

// Midpoint length between the identity and (0, 0, sqrt(1 - d^2), d): spherical weights keep
// unit length, linear weights cut the chord.
double MidLength(double d, bool longer, bool factor) {
    const double q1[4] = {0, 0, 0, 1};
    double q2[4] = {0, 0, std::sqrt(1 - d * d), d}, out[4];
    QZSlerpFactorState st{};
    if (factor) {
        (longer ? QZ_QuatSlerpFactorL : QZ_QuatSlerpFactor)(q1, q2, 0.5, out, &st);
    } else if (longer) {
        QZ_QuatSlerpL(q1, q2, 0.5, out);
    } else {
        QZ_QuatSlerp(q1, q2, 0.5, out);
    }
    return QZ_QuaternionSqrtNorm(out);
}

TEST(QuatSlerp, LinearBandStartsAtTheThresholdForAllForms) {
    double dl = NextDown(NextDown(0.999)), dL = NextUp(NextUp(-0.999));
    while (1.0 - dl > 0.001) dl = NextUp(dl);    // first d of the shorter way's band
    while (1.0 + dL > 0.001) dL = NextDown(dL);  // and of the longer way's
    for (bool factor : {false, true}) {
        EXPECT_NEAR(MidLength(NextDown(dl), false, factor), 1.0, 1e-12);
        EXPECT_LT(MidLength(dl, false, factor), 1.0 - 1e-5);
        EXPECT_NEAR(MidLength(NextUp(dL), true, factor), 1.0, 1e-12);
        EXPECT_LT(MidLength(dL, true, factor), 1.0 - 1e-5);
    }
}

TEST(QuatSlerpFactor, MatchesTheSingleCallFormsAndCachesThePair) {
    auto rng = Rng();
    for (int n = 0; n < 500; ++n) {
        double q1[4], q2[4];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        if (n % 10 == 0)  // pairs inside the linear band, either sign
            for (int i = 0; i < 4; ++i) q2[i] = (n % 20 ? 1 : -1) * (q1[i] + 1e-3 * q2[i]);
        for (bool longer : {false, true}) {
            double a[4] = {q2[0], q2[1], q2[2], q2[3]}, b[4] = {q2[0], q2[1], q2[2], q2[3]};
            QZSlerpFactorState st{};
            for (double t : {0.0, 0.25, 0.9, 1.1}) {
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
            const bool neg = longer ? Dot4(q1, q2) > 0 : Dot4(q1, q2) < 0;
            for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(b[i], neg ? -q2[i] : q2[i]));
        }
    }
    // Later calls neither re-read the pair nor negate again; a mode other than 1 is linear.
    const double id[4] = {0, 0, 0, 1};
    double z120[4], q2[4], first[4], out[4];
    AboutZ(2 * M_PI / 3, z120);
    for (int i = 0; i < 4; ++i) q2[i] = -z120[i];
    QZSlerpFactorState st{};
    QZ_QuatSlerpFactor(id, q2, 0.5, first, &st);
    for (int i = 0; i < 4; ++i) q2[i] = -z120[i];
    QZ_QuatSlerpFactor(id, q2, 0.5, out, &st);
    EXPECT_EQ(q2[3], -z120[3]);
    EXPECT_NE(out[3], first[3]);
    for (uint8_t mode : {0, 2, 255}) {
        QZSlerpFactorState lin{1, 1.0, 0.5, mode};
        QZ_QuatSlerpFactor(id, z120, 0.25, out, &lin);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], id[i] * 0.75 + z120[i] * 0.25);
    }
}

TEST(QuatSlerpDir, GivesTheSenseOfTurnAboutTheAxis) {
    const double id[4] = {0, 0, 0, 1}, up[3] = {0, 0, 7}, down[3] = {0, 0, -1};
    double z30[4];
    AboutZ(M_PI / 6, z30);
    EXPECT_EQ(QZ_QuatSlerpDir(id, z30, up), 1);
    EXPECT_EQ(QZ_QuatSlerpDir(id, z30, down), -1);
    EXPECT_EQ(QZ_QuatSlerpDir(z30, id, up), -1);
    EXPECT_EQ(QZ_QuatSlerpDir(id, id, up), 1);

    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double q1[4], q2[4], axis[3];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        for (double &v : axis) v = Uniform(rng, -2, 2);
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
