// Smoothed velocity: parameter refusal, exact arrival, the flags. Arrival from anywhere with any
// accepted parameters is the soak's business.
#include <cmath>

#include "QZFLT.h"
#include "test_util.h"

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

// Out-of-range parameters are refused; the bounds themselves and stepMin == stepMax are accepted.
TEST(SmoothedVelocity, RefusesParametersOutsideTheirRanges) {
    const double refused[][3] = {{0.0, 0.1, 0.01}, {1.0, 0.1, 0.01}, {NextDown(1e-9), 0.1, 0.01},
                                 {NextUp(0.9999999999), 0.1, 0.01}, {0.5, 1e-6, 1e-6},
                                 {0.5, 0.1, NextDown(1e-5)}, {0.5, 0.1, 0.2}};
    QZSMVState s{};
    for (const auto &p : refused) EXPECT_EQ(QZSMV_OnInit(&s, 0.25, p[0], p[1], p[2]), 0) << p[0] << " " << p[2];
    EXPECT_EQ(QZSMV_OnInit(&s, 0, 1e-9, 1e-5, 1e-5), 1);
    EXPECT_EQ(QZSMV_OnInit(&s, 0, 0.9999999999, 1, 1), 1);
}

// 0 -> 1 at stepMax 0.1: nine clamped steps, four halvings, then exactly 1.0 on the 14th update;
// back to 0 ends exactly at 0.0. The three update functions are mixed on the one record.
TEST(SmoothedVelocity, RampLandsExactlyAndSetsFlags) {
    QZSMVState s{};
    ASSERT_EQ(QZSMV_OnInit(&s, 0.0, 0.5, 0.1, 0.01), 1);
    const double tail[] = {0.95, 0.975, 0.9875, 0.9975, 1.0};
    double v = -1.0;
    uint8_t z = 9, o = 9;
    for (int k = 1; k <= 14; ++k) {
        QZSMV_OnUpdateVZO(&s, 1.0, &v, &z, &o);
        EXPECT_NEAR(v, k <= 9 ? 0.1 * k : tail[k - 10], 1e-12) << k;
        EXPECT_TRUE(o == (k == 14) && z == 0) << k;
    }
    QZSMV_OnUpdateZO(&s, 1.0, &z, &o);
    EXPECT_TRUE(SameBits(v, 1.0) && SameBits(s.value, 1.0) && o == 1);
    for (int k = 0; k < 14; ++k) QZSMV_OnUpdateV(&s, 0.0, &v);
    EXPECT_TRUE(SameBits(v, 0.0) && s.isZero == 1 && s.isOne == 0);
}

// Targets within stepMin are taken bit for bit (-0.0 included); the flag bands are open.
TEST(SmoothedVelocity, ExactTargetsAndOpenFlagBands) {
    const struct { double w; int zero, one; } cases[] = {
        {-0.0, 1, 0}, {1e-8, 0, 0}, {NextDown(1e-8), 1, 0}, {-1e-8, 0, 0}, {0.5, 0, 0},
        {1.0 - std::ldexp(1.0, -27), 0, 1}, {1.0 + std::ldexp(1.0, -26), 0, 0}};
    for (const auto &c : cases) {
        QZSMVState s{};
        double v;
        QZSMV_OnInit(&s, c.w == 0.0 ? 0.0 : c.w - 0.005, 0.5, 0.1, 0.01);
        QZSMV_OnUpdateV(&s, c.w, &v);
        EXPECT_TRUE(SameBits(v, c.w) && s.isZero == c.zero && s.isOne == c.one) << c.w;
    }
    // A target exactly stepMin away (the difference rounds to 0.5) is outside the open band: the
    // value moves by stepMin to 0.5 and does not jump to the target one ulp beyond.
    for (double sg : {1.0, -1.0}) {
        QZSMVState s{};
        double v;
        ASSERT_EQ(QZSMV_OnInit(&s, sg * 0x1p-54, 0.5, 1.0, 0.5), 1);
        QZSMV_OnUpdateV(&s, sg * NextUp(0.5), &v);
        EXPECT_TRUE(SameBits(v, sg * 0.5)) << v;
    }
}
