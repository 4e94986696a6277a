// Averaging filter: refusal, priming and restart, exact window sums over long runs, aliasing.
#include <cstring>
#include <deque>

#include "QZFLT.h"
#include "test_util.h"

using qztest::SameBits;

TEST(Averaging, RefusedInitLeavesRecordUntouchedAndUnusable) {
    static QZAVGFState s, before;
    const int32_t bad[][2] = {{0, 4}, {9, 4}, {1, 0}, {1, 101}, {-1, -1}};
    for (const auto &b : bad) EXPECT_EQ(QZAVGF_OnInit(&s, b[0], b[1], 0.01), 0);
    EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0);
    double x[1] = {1.0}, avg[1] = {-7.0}, d[1] = {-7.0};
    EXPECT_EQ(QZAVGF_OnFilt(&s, x, avg, d), 0);
    EXPECT_EQ(QZAVGF_OnEmpty(&s), 0);
    EXPECT_EQ(avg[0], -7.0);
    EXPECT_EQ(d[0], -7.0);
    EXPECT_EQ(QZAVGF_OnInit(&s, 8, 100, 0.01), 1);
}

// Priming fills the window (no ramp from zero); a ramp of 4s then walks the mean up one
// quarter per sample; OnEmpty and a fresh OnInit both restart from the next input.
TEST(Averaging, PrimesWithoutRampAndRestarts) {
    static QZAVGFState s;
    ASSERT_EQ(QZAVGF_OnInit(&s, 1, 4, 0.5), 1);
    double x = 0.0, avg, d;
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    EXPECT_TRUE(SameBits(avg, 0.0) && SameBits(d, 0.0));
    for (int k = 1; k <= 6; ++k) {
        x = 4.0;
        QZAVGF_OnFilt(&s, &x, &avg, &d);
        EXPECT_EQ(avg, k < 4 ? k : 4.0);
        EXPECT_EQ(d, k <= 4 ? 2.0 : 0.0);
    }
    ASSERT_EQ(QZAVGF_OnEmpty(&s), 1);
    x = 5.0;
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    EXPECT_TRUE(SameBits(avg, 5.0) && SameBits(d, 0.0));
    ASSERT_EQ(QZAVGF_OnInit(&s, 1, 100, 1.0), 1);
    x = 0.1;  // 100 * 0.1 and a sum of a hundred 0.1s differ in the last bits
    QZAVGF_OnFilt(&s, &x, &avg, &d);
    double sum = 0.0;
    for (int k = 0; k < 100; ++k) sum += 0.1;
    EXPECT_TRUE(SameBits(s.avgSum[0], sum) && SameBits(s.avgResum[0], sum));
    EXPECT_TRUE(SameBits(avg, 0.1));
}

// Over a long run of a large offset plus noise the output is the mean of the last L inputs;
// at every wrap the re-accumulated sum is bit for bit the fresh sum of the window, and the
// sliding sum never drifts further than one pass of the ring allows.
TEST(Averaging, LongRunsKeepTheWindowSumFresh) {
    auto rng = qztest::Rng();
    for (int32_t len : {1, 7, 100}) {
        static QZAVGFState s;
        ASSERT_EQ(QZAVGF_OnInit(&s, 3, len, 0.004), 1);
        std::deque<double> window;
        double maxRel = 0.0;
        for (int k = 0; k < 200000; ++k) {
            double x[3], avg[3], d[3];
            for (double &v : x) v = 1e6 + qztest::Uniform(rng, -1.0, 1.0);
            const double prev = s.prevAvg[2];
            QZAVGF_OnFilt(&s, x, avg, d);
            if (k == 0) window.assign(len, x[2]);
            else { window.pop_front(); window.push_back(x[2]); }
            double fresh = 0.0;
            for (int32_t i = 0; i < len; ++i) fresh += s.ringBuf[2][i];
            if (s.ringIdx == 0) ASSERT_TRUE(SameBits(s.avgResum[2], fresh)) << "k " << k;
            maxRel = std::max(maxRel, std::fabs(s.avgSum[2] - fresh) / fresh);
            double mean = 0.0;
            for (double v : window) mean += v;
            ASSERT_NEAR(avg[2], mean / len, 1e-9 * 1e6) << "len " << len << " k " << k;
            ASSERT_TRUE(SameBits(d[2], k == 0 ? 0.0 : (avg[2] - prev) / 0.004));
        }
        EXPECT_LT(maxRel, 4.0 * len * 2.3e-16) << "len " << len;
    }
}

// The input may double as the average output; channels beyond chNum are left alone.
TEST(Averaging, InPlaceMatchesSeparateArrays) {
    static QZAVGFState a, b;
    QZAVGF_OnInit(&a, 5, 3, 0.01);
    QZAVGF_OnInit(&b, 5, 3, 0.01);
    auto rng = qztest::Rng();
    for (int k = 0; k < 20; ++k) {
        double x[8], io[8], avg[8], da[8], db[8];
        for (int i = 0; i < 8; ++i) io[i] = x[i] = qztest::Uniform(rng, -5.0, 5.0);
        QZAVGF_OnFilt(&a, x, avg, da);
        QZAVGF_OnFilt(&b, io, io, db);
        for (int i = 0; i < 5; ++i) EXPECT_TRUE(SameBits(avg[i], io[i]) && SameBits(da[i], db[i]));
        for (int i = 5; i < 8; ++i) EXPECT_TRUE(SameBits(io[i], x[i]));
    }
}
