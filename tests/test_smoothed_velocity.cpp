// Smoothed velocity: exact targets and the flag bands. Arrival from anywhere with any accepted
// parameters is the soak's business.
#include <cmath>

#include "QZFLT.h"
#include "test_util.h"

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

// Targets within stepMin are taken bit for bit (-0.0 included); the flag bands are open.
TEST(SmoothedVelocity, ExactTargetsAndOpenFlagBands) {
    // clang-format off
    const struct { double w; int zero, one; } cases[] = {
        {-0.0, 1, 0}, {1e-8, 0, 0}, {NextDown(1e-8), 1, 0}, {-1e-8, 0, 0}, {0.5, 0, 0},
        {1.0 - std::ldexp(1.0, -27), 0, 1}, {1.0 + std::ldexp(1.0, -26), 0, 0}};
    // clang-format on
    for (const auto &c : cases) {
        QZSMVState s{};
        double v;
        QZSMV_OnInit(&s, c.w == 0.0 ? 0.0 : c.w - 0.005, 0.5, 0.1, 0.01);
        QZSMV_OnUpdateV(&s, c.w, &v);
        EXPECT_ALL(SameBits(v, c.w), s.isZero == c.zero, s.isOne == c.one) << c.w;
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
