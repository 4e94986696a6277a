// Averaging filter: refusal, priming and restart, exact window sums over long runs, aliasing.
#include <cstring>

#include "QZFLT.h"
#include "test_util.h"

using qztest::SameBits;

TEST(Averaging, RefusedInitLeavesRecordUntouchedAndUnusable) {
    static QZAVGFState s, zero;
    for (auto b : {std::pair{0, 4}, {9, 4}, {1, 0}, {1, 101}})
        EXPECT_EQ(QZAVGF_OnInit(&s, b.first, b.second, 1), 0);
    EXPECT_EQ(std::memcmp(&s, &zero, sizeof s), 0);
    double x = 1.0, avg = -7.0, d = -7.0;
    EXPECT_EQ(QZAVGF_OnFilt(&s, &x, &avg, &d) + QZAVGF_OnEmpty(&s), 0);
    EXPECT_TRUE(avg == -7.0 && d == -7.0);
    EXPECT_EQ(QZAVGF_OnInit(&s, 8, 100, 0.01), 1);
}

// Priming fills the window (no ramp from zero, its sum by repeated addition); 4s then walk the
// mean up a quarter per sample; OnEmpty restarts from the next input.
TEST(Averaging, PrimesWithoutRampAndRestarts) {
    static QZAVGFState s;
    double x = 0.1, avg, d, sum = 0.0;
    ASSERT_EQ(QZAVGF_OnInit(&s, 1, 100, 1.0), 1);
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    for (int k = 0; k < 100; ++k) sum += 0.1;  // differs from 100 * 0.1 in the last bits
    EXPECT_TRUE(SameBits(s.avgSum[0], sum) && SameBits(s.avgResum[0], sum) && SameBits(avg, 0.1));
    QZAVGF_OnInit(&s, 1, 4, 0.5);
    for (int k = 0; k <= 6; ++k) {
        x = k == 0 ? 0.0 : 4.0;
        QZAVGF_OnFilt(&s, &x, &avg, &d);
        const double dWant = k >= 1 && k <= 4 ? 2.0 : 0.0;
        EXPECT_TRUE(SameBits(avg, k < 4 ? k : 4.0) && SameBits(d, dWant)) << k;
    }
    ASSERT_EQ(QZAVGF_OnEmpty(&s), 1);
    x = 5.0;
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    EXPECT_TRUE(SameBits(avg, 5.0) && SameBits(d, 0.0));
}

// Long runs of a large offset plus noise against a literal re-run of the filter: the window sum
// slides as (sum - oldest) + newest, and at every wrap it is replaced by the window re-summed from
// 0.0 over that pass, so each output and rate matches bit for bit. The input doubles as the output.
TEST(Averaging, LongRunsMatchALiteralSlidingSumReSummedAtEveryWrap) {
    auto rng = qztest::Rng();
    for (int32_t len : {1, 7, 100}) {
        static QZAVGFState s;
        ASSERT_EQ(QZAVGF_OnInit(&s, 3, len, 0.004), 1);
        double ring[100], sum = 0.0, resum = 0.0, prev = 0.0;
        for (int k = 0; k < 100000; ++k) {
            double io[8], d[3];
            for (double &v : io) v = 1e6 + qztest::Uniform(rng, -1.0, 1.0);
            const double x = io[2], untouched = io[3];
            QZAVGF_OnFilt(&s, io, io, d);
            if (k == 0) {
                for (int j = 0; j < len; ++j) ring[j] = x, sum += x;
                resum = sum, prev = x;
                ASSERT_TRUE(SameBits(io[2], x) && d[2] == 0.0);
                continue;
            }
            const int i = (k - 1) % len;
            if (i == 0) sum = resum, resum = 0.0;
            resum += x;
            sum = (sum - ring[i]) + x;
            ring[i] = x;
            const double avg = sum / len;
            ASSERT_TRUE(SameBits(io[2], avg) && SameBits(d[2], (avg - prev) / 0.004)) << len << " " << k;
            ASSERT_TRUE(SameBits(io[3], untouched));
            prev = avg;
        }
    }
}
