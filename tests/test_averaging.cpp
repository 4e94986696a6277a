// Averaging filter: refusal, priming and restart. Long runs against a fresh window sum are the
// soak's business.
#include <cstring>

#include "QZFLT.h"
#include "test_util.h"

using qztest::SameBits;

// A refused initialisation leaves the record untouched and unusable. Priming fills the window (no
// ramp from zero, its sum by repeated addition); 4s then walk the mean up a quarter per sample;
// OnEmpty restarts from the next input.
TEST(Averaging, RefusedInitThenPrimesWithoutRampAndRestarts) {
    static QZAVGFState s, zero;
    for (auto b : {std::pair{0, 4}, {9, 4}, {1, 0}, {1, 101}})
        EXPECT_EQ(QZAVGF_OnInit(&s, b.first, b.second, 1), 0);
    EXPECT_EQ(std::memcmp(&s, &zero, sizeof s), 0);
    double in = 1.0, out = -7.0, rate = -7.0;
    EXPECT_EQ(QZAVGF_OnFilt(&s, &in, &out, &rate) + QZAVGF_OnEmpty(&s), 0);
    EXPECT_ALL(out == -7.0, rate == -7.0);
    double x = 0.1, avg, d, sum = 0.0;
    ASSERT_EQ(QZAVGF_OnInit(&s, 1, 100, 1.0), 1);
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    for (int k = 0; k < 100; ++k) sum += 0.1;  // differs from 100 * 0.1 in the last bits
    EXPECT_ALL(SameBits(s.avgSum[0], sum), SameBits(s.avgResum[0], sum), SameBits(avg, 0.1));
    QZAVGF_OnInit(&s, 1, 4, 0.5);
    for (int k = 0; k <= 6; ++k) {
        x = k == 0 ? 0.0 : 4.0;
        QZAVGF_OnFilt(&s, &x, &avg, &d);
        const double dWant = k >= 1 && k <= 4 ? 2.0 : 0.0;
        EXPECT_ALL(SameBits(avg, k < 4 ? k : 4.0), SameBits(d, dWant)) << k;
    }
    ASSERT_EQ(QZAVGF_OnEmpty(&s), 1);
    x = 5.0;
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    EXPECT_ALL(SameBits(avg, 5.0), SameBits(d, 0.0));
}
