// Control error comparator: dead band, error clamp, integrator saturation on base and wrist
// joints, mirror symmetry, aliasing.
#include "QZDT.h"
#include "test_util.h"

using qztest::NextUp;
using qztest::SameBits;

static const double kZero[7] = {0, 0, 0, 0, 0, 0, 0};

TEST(ErrorCompare, DeadBandSwallowsSmallErrorsAndShiftsLargeOnes) {
    QZDCTRLErrorState s;
    ASSERT_EQ(QZ_DCTRL_ErrorCompare_Init(0, &s), 1);
    const double second[7] = {0.1, 0.15, -0.15, NextUp(0.15), -0.5, 0.5, 1.15};
    double corr[7];
    ASSERT_EQ(QZ_DCTRL_ErrorCompare(123, kZero, second, &s, corr), 1);
    const double err[7] = {0, 0, 0, NextUp(0.15) - 0.15, -0.35, 0.35, 1.15 - 0.15};
    for (int j = 0; j < 7; ++j) {
        EXPECT_TRUE(SameBits(s.err[j], err[j]) && SameBits(s.integ[j], err[j])) << j;
        EXPECT_TRUE(SameBits(corr[j], s.kInteg[j] * err[j] + 0.0 * err[j])) << j;
    }
}

// A constant error of 2: clamped to 1.5 (base) or 1.0 (wrist), integrated up to 30 and held,
// with the correction settling at 0.03 * 30 and 0.02 * 30 inside the output limits. Reversing
// the error unwinds the integrator at once, and a negated error mirrors everything.
TEST(ErrorCompare, IntegratorSaturatesAndUnwindsOnBaseAndWrist) {
    for (double sign : {1.0, -1.0}) {
        QZDCTRLErrorState s;
        QZ_DCTRL_ErrorCompare_Init(0, &s);
        const double e[7] = {2 * sign, 2 * sign, 2 * sign, 2 * sign, 2 * sign, 2 * sign, 2 * sign};
        double corr[7];
        for (int k = 1; k <= 40; ++k) {
            QZ_DCTRL_ErrorCompare(0, kZero, e, &s, corr);
            EXPECT_EQ(s.integ[0], sign * std::min(1.5 * k, 30.0));
            EXPECT_EQ(s.integ[5], sign * std::min(1.0 * k, 30.0));
        }
        EXPECT_TRUE(s.err[3] == 1.5 * sign && s.err[4] == sign);
        EXPECT_TRUE(SameBits(corr[0], sign * (0.03 * 30)) && SameBits(corr[6], sign * (0.02 * 30)));
        QZ_DCTRL_ErrorCompare(0, e, kZero, &s, corr);
        EXPECT_TRUE(s.integ[0] == sign * 28.5 && s.integ[6] == sign * 29.0);
    }
}

// Gains and limits written by the caller are used (output clamp on both sides), Init restores
// them, and the corrections may overwrite either input.
TEST(ErrorCompare, CallerTunedGainsClampAndInitRestores) {
    QZDCTRLErrorState s, ref;
    QZ_DCTRL_ErrorCompare_Init(0, &ref);
    QZ_DCTRL_ErrorCompare_Init(0, &s);
    for (int j = 0; j < 7; ++j) s.kProp[j] = 10.0;
    const double b0[7] = {1, -1, 0.3, -0.3, 1, -1, 0.16};
    double a[7] = {0, 0, 0, 0, 0, 0, 0}, b[7], corr[7];
    std::memcpy(b, b0, sizeof b);
    QZ_DCTRL_ErrorCompare(0, a, b, &s, corr);
    const double want[7] = {0.9, -0.9, 0.9, -0.9, 0.6, -0.6, 0.01 * 0.02 + 10.0 * (0.16 - 0.15)};
    for (int j = 0; j < 7; ++j) EXPECT_NEAR(corr[j], want[j], 1e-15) << j;
    QZ_DCTRL_ErrorCompare_Init(0, &s);
    EXPECT_EQ(std::memcmp(&s, &ref, sizeof s), 0);
    QZ_DCTRL_ErrorCompare(0, a, b, &s, a);
    QZ_DCTRL_ErrorCompare(0, kZero, b, &ref, corr);
    for (int j = 0; j < 7; ++j) EXPECT_TRUE(SameBits(a[j], corr[j]));
    QZ_DCTRL_ErrorCompare(0, kZero, b, &s, b);
    QZ_DCTRL_ErrorCompare(0, kZero, b0, &ref, corr);
    for (int j = 0; j < 7; ++j) EXPECT_TRUE(SameBits(b[j], corr[j]));
}
