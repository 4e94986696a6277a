// Control error comparator: dead band, output clamp, aliasing.
#include "QZDT.h"
#include "test_util.h"

using qztest::SameBits;

static const double kZero[7] = {0, 0, 0, 0, 0, 0, 0};

// Errors up to 0.15 count as none; beyond, the band is taken off before any gain.
TEST(ErrorCompare, DeadBandSwallowsSmallErrorsAndShiftsLargeOnes) {
    QZDCTRLErrorState s;
    ASSERT_EQ(QZ_DCTRL_ErrorCompare_Init(0, &s), 1);
    const double up = qztest::NextUp(0.15);
    const double second[7] = {0.1, 0.15, -0.15, up, -0.5, 0.5, 1.15};
    const double err[7] = {0, 0, 0, up - 0.15, -0.5 + 0.15, 0.5 - 0.15, 1.15 - 0.15};
    double corr[7];
    ASSERT_EQ(QZ_DCTRL_ErrorCompare(123, kZero, second, &s, corr), 1);
    for (int j = 0; j < 7; ++j)
        EXPECT_ALL(SameBits(s.err[j], err[j]), SameBits(s.integ[j], err[j]),
                   SameBits(corr[j], s.kInteg[j] * err[j] + 0.0 * err[j]))
            << j;
}

// A caller-raised gain drives the output clamp on both sides; Init restores the defaults; the
// corrections may overwrite either input.
TEST(ErrorCompare, OutputClampInitRestoresAndAliasing) {
    QZDCTRLErrorState s, ref;
    QZ_DCTRL_ErrorCompare_Init(0, &ref);
    QZ_DCTRL_ErrorCompare_Init(0, &s);
    for (double &k : s.kProp) k = 10.0;
    double a[7] = {1, -1, 1, -1, 1, -1, 1}, b[7] = {0.3, 0.3, 0.3, 0.3, 0.3, 0.3, 0.3}, c[7];
    QZ_DCTRL_ErrorCompare(0, kZero, a, &s, c);
    for (int j = 0; j < 7; ++j) EXPECT_EQ(c[j], a[j] * (j < 4 ? 0.9 : 0.6)) << j;
    QZ_DCTRL_ErrorCompare_Init(0, &s);
    EXPECT_EQ(std::memcmp(&s, &ref, sizeof s), 0);
    QZ_DCTRL_ErrorCompare(0, kZero, b, &ref, c);
    QZ_DCTRL_ErrorCompare(0, kZero, b, &s, b);
    for (int j = 0; j < 7; ++j) EXPECT_TRUE(SameBits(b[j], c[j])) << j;
    QZ_DCTRL_ErrorCompare(0, a, kZero, &ref, c);
    QZ_DCTRL_ErrorCompare(0, a, kZero, &s, a);
    for (int j = 0; j < 7; ++j) EXPECT_TRUE(SameBits(a[j], c[j])) << j;
}
