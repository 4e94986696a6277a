// Multi-stage tracker: stage limits, mode 0 against the plain tracker, and the cascade (the
// stage positions summing to the output, the blend rising and decaying, settling).
#include <gtest/gtest.h>

#include <cmath>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

TEST(TrackerMultistage, InitSetsStageLimitsAndBandButNotMode) {
    QZVDTMState s{};
    s.mode = 77;
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 1), 1);
    EXPECT_EQ(s.mode, 77);
    const double vel[4] = {69, 15, 5, 1}, acc[4] = {50, 100, 100, 50};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(s.stage[k].velLmt, vel[k]) << k;
        EXPECT_EQ(s.stage[k].accLmt, acc[k]) << k;
        EXPECT_EQ(s.stage[k].resetPending, 1);
    }
    EXPECT_EQ(s.corrScale, 1.0);  // 2.5 lowered
    EXPECT_EQ(s.blend, 0.0);
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 2), 1);
    EXPECT_EQ(s.stage[0].velLmt, 90);
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 1.8, 600.0, 2), 1);
    EXPECT_EQ(s.corrScale, 0.1);  // 0.05 raised
    EXPECT_EQ(s.stage[3].velLmt, 0.1);  // each stage clamps its own copy
    EXPECT_EQ(s.stage[1].accLmt, 1000.0);
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 18.0, 10.0, 2), 1);
    EXPECT_EQ(s.corrScale, 0.5);
}

TEST(TrackerMultistage, UninitialisedRecordIsRefusedOnlyByTheStep) {
    QZVDTMState s{};
    double out = -3.0;
    EXPECT_EQ(QZVDT_OnDT_BM(&s, 1.0, &out), 0);
    EXPECT_EQ(out, -3.0);
    EXPECT_EQ(QZVDT_OnEmptyM(&s), 1);
    EXPECT_EQ(QZVDT_OnSetRunTimeLmtM(&s, 10.0, 10.0, 1), 1);
    EXPECT_EQ(s.stage[0].isInit, 0);
    EXPECT_EQ(s.stage[1].velLmt, 0.0);
}

// Mode 0 is the plain tracker, bit for bit, through limit changes and emptying.
TEST(TrackerMultistage, ModeZeroIsThePlainTracker) {
    auto rng = qztest::Rng();
    for (int run = 0; run < 20; ++run) {
        const double v = qztest::Uniform(rng, 0.05, 250), a = qztest::Uniform(rng, 0.5, 1200);
        const double cycleMs = qztest::Uniform(rng, 0.5, 10);
        QZVDTState plain{};
        QZVDTMState m{};
        QZVDT_OnInit(&plain, cycleMs, v, a);
        QZVDT_OnInitM(&m, cycleMs, v, a, 0);
        m.mode = 0;
        double t = 0;
        for (int k = 0; k < 3000; ++k) {
            if (k % 400 == 0) t = qztest::Uniform(rng, -500, 500);
            if (k % 700 == 350) {
                const double nv = qztest::Uniform(rng, 1, 200), na = qztest::Uniform(rng, 1, 900);
                QZVDT_OnSetRunTimeLmt(&plain, nv, na);
                QZVDT_OnSetRunTimeLmtM(&m, nv, na, 0);
            }
            if (k == 2000) {
                QZVDT_OnEmpty(&plain);
                QZVDT_OnEmptyM(&m);
            }
            double yp, ym;
            ASSERT_EQ(QZVDT_OnDT(&plain, t, &yp), 1);
            ASSERT_EQ(QZVDT_OnDT_BM(&m, t, &ym), 1);
            ASSERT_TRUE(SameBits(yp, ym)) << run << " " << k;
        }
    }
}

// Cascade: every step's output is the sum of the four stage positions; the blend follows
// 0.93 g + 0.035 while stage 0 is outside stage 1's band and 0.97 g once inside; the output
// settles on the target.
TEST(TrackerMultistage, CascadeStagesSumToOutputAndBlendFollowsMainError) {
    auto rng = qztest::Rng();
    for (int mode : {1, 2, -4}) {
        const double v = qztest::Uniform(rng, 30, 120), a = qztest::Uniform(rng, 50, 600);
        QZVDTMState s{};
        QZVDT_OnInitM(&s, 4.0, v, a, mode);
        s.mode = mode;
        const double k10 = 10 * s.corrScale;
        double t = qztest::Uniform(rng, -20, 20), out;
        ASSERT_EQ(QZVDT_OnDT_BM(&s, t, &out), 1);
        EXPECT_EQ(out, t);
        int rising = 0, decaying = 0;
        for (int k = 1; k <= 8000; ++k) {
            if (k == 1 || k == 4000) t = qztest::Uniform(rng, -40, 40);
            if (k == 3000) QZVDT_OnSetRunTimeLmtM(&s, 0.5 * v, 0.8 * a, mode);
            QZVDTState stage0 = s.stage[0];
            double y0;
            QZVDT_OnDT(&stage0, t, &y0);
            const double g = s.blend;
            ASSERT_EQ(QZVDT_OnDT_BM(&s, t, &out), 1);
            if (std::fabs(t - y0) > k10) {
                ASSERT_TRUE(SameBits(s.blend, 0.93 * g + 0.035)) << k;
                ++rising;
            } else {
                ASSERT_TRUE(SameBits(s.blend, 0.97 * g)) << k;
                ++decaying;
            }
            ASSERT_GE(s.blend, 0.0);
            ASSERT_LT(s.blend, 0.5);
            const double sum = ((s.stage[0].pos + s.stage[1].pos) + s.stage[2].pos) + s.stage[3].pos;
            ASSERT_NEAR(sum, out, 1e-12 * (1 + std::fabs(out))) << k;
            ASSERT_LE(std::fabs(s.stage[1].pos), k10 * (1 + 1e-12)) << k;
        }
        EXPECT_GT(rising, 10);
        EXPECT_GT(decaying, 1000);
        EXPECT_NEAR(out, t, 1e-9) << mode;
        EXPECT_LT(s.blend, 1e-20);
    }
}

TEST(TrackerMultistage, RunTimeLimitsGiveCorrectionStagesHundredfoldAcceleration) {
    QZVDTMState s{};
    QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 1);
    const double k = s.corrScale;
    double out;
    QZVDT_OnDT_BM(&s, 0.0, &out);
    ASSERT_EQ(QZVDT_OnSetRunTimeLmtM(&s, 180.0, 4.0, 1), 1);
    const double vel[4] = {138, 30, 10, 2}, acc[4] = {4, 400, 400, 400};
    for (int j = 0; j < 4; ++j) {
        EXPECT_EQ(s.stage[j].velLmtTarget, vel[j]) << j;
        EXPECT_EQ(s.stage[j].accLmt, acc[j]) << j;
    }
    EXPECT_EQ(s.corrScale, k);
    ASSERT_EQ(QZVDT_OnSetRunTimeLmtM(&s, 180.0, 4.0, 2), 1);
    EXPECT_EQ(s.stage[0].velLmtTarget, 180);
}

// After emptying, the next step snaps stage 0 to the target and the correction stages to 0.
TEST(TrackerMultistage, EmptyClearsBlendAndSnapsToTarget) {
    QZVDTMState s{};
    QZVDT_OnInitM(&s, 4.0, 60.0, 200.0, 2);
    s.mode = 2;
    double out;
    QZVDT_OnDT_BM(&s, 0.0, &out);
    for (int k = 0; k < 100; ++k) QZVDT_OnDT_BM(&s, 50.0, &out);
    ASSERT_GT(s.blend, 0.1);
    ASSERT_EQ(QZVDT_OnEmptyM(&s), 1);
    EXPECT_EQ(s.blend, 0.0);
    ASSERT_EQ(QZVDT_OnDT_BM(&s, -12.5, &out), 1);
    EXPECT_EQ(out, -12.5);
    EXPECT_EQ(s.stage[0].pos, -12.5);
    for (int j = 1; j < 4; ++j) EXPECT_EQ(s.stage[j].pos, 0.0);
}

}  // namespace
