// Slerp: agreement with Eigen and exact end points, the shorter and the longer way, the cached
// factor state against the single-call forms, and the direction test. The linear band's threshold
// is pinned by the golden vectors.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

// Either way in one call, or through a factor state; only the shorter single call and the
// factor forms may negate q2.
void Slerp(bool longer, bool factor, const double *q1, double *q2, double t, double *out,
           QZSlerpFactorState *st) {
    if (factor)
        (longer ? QZ_QuatSlerpFactorL : QZ_QuatSlerpFactor)(q1, q2, t, out, st);
    else
        longer ? QZ_QuatSlerpL(q1, q2, t, out) : QZ_QuatSlerp(q1, q2, t, out);
}

// One state per pair and way over a run of t: the factor forms give the single-call bits, both
// hit their ends exactly, the shorter way agrees with Eigen, and q2 is negated in the caller's
// array when its way asks for it. One pair in ten lies in the linear band, of either sign.
TEST(QuatSlerp, FactorFormsMatchTheSingleCallsAndTheShorterWayMatchesEigen) {
    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double q1[4], q2[4];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        if (n % 10 == 0)
            for (int i = 0; i < 4; ++i) q2[i] = (n % 20 ? 1 : -1) * (q1[i] + 1e-3 * q2[i]);
        const bool far = 1.0 - std::fabs(Dot4(q1, q2)) > 0.01;
        for (bool longer : {false, true}) {
            double a[4], b[4], ref[4], got[4];
            std::copy(q2, q2 + 4, a);
            std::copy(q2, q2 + 4, b);
            QZSlerpFactorState st{};
            for (double t : {0.0, 1.0, 0.25, 0.9, -0.2, 1.1}) {
                Slerp(longer, false, q1, a, t, ref, nullptr);
                Slerp(longer, true, q1, b, t, got, &st);
                ASSERT_TRUE(Near(got, ref, 4, 0.0)) << n << " t " << t;
                if (t == 0.0 || t == 1.0) ASSERT_TRUE(Near(got, t == 0.0 ? q1 : b, 4, 0.0)) << n;
                if (!longer && far)
                    ASSERT_TRUE(
                        Near(got, ToEigen(q1).slerp(t, ToEigen(q2)).coeffs().data(), 4, 8 * kEps))
                        << n << " t " << t;
            }
            const bool neg = longer ? Dot4(q1, q2) > 0 : Dot4(q1, q2) < 0;
            ASSERT_TRUE(Near(a, q2, 4, 0.0, neg && !longer ? -1.0 : 1.0)) << n;
            ASSERT_TRUE(Near(b, q2, 4, 0.0, neg ? -1.0 : 1.0)) << n;
        }
    }
}

// Against the signed angle between the frames' x axes projected onto the plane normal to the
// axis, whose length does not matter; no turn at all counts as positive.
TEST(QuatSlerpDir, GivesTheSenseOfTurnAboutTheAxis) {
    const double id[4] = {0, 0, 0, 1}, up[3] = {0, 0, 7};
    EXPECT_EQ(QZ_QuatSlerpDir(id, id, up), 1);
    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double q1[4], q2[4], axis[3];
        RandomUnitQuat(rng, q1);
        RandomUnitQuat(rng, q2);
        for (double &v : axis) v = Uniform(rng, -2, 2);
        const Eigen::Vector3d k = Eigen::Vector3d::Map(axis).normalized();
        const Eigen::Vector3d u1 = ToEigen(q1) * Eigen::Vector3d::UnitX();
        const Eigen::Vector3d u2 = ToEigen(q2) * Eigen::Vector3d::UnitX();
        const Eigen::Vector3d p1 = u1 - k * k.dot(u1), p2 = u2 - k * k.dot(u2);
        const double angle = std::atan2(p1.cross(p2).dot(k), p1.dot(p2));
        if (std::fabs(angle) < 1e-9 || M_PI - std::fabs(angle) < 1e-9) continue;
        EXPECT_EQ(QZ_QuatSlerpDir(q1, q2, axis), angle < 0 ? -1 : 1) << n;
    }
}

}  // namespace
