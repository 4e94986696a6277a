// Multi-stage tracker: stage limits at initialisation and at run time, mode 0 against the plain
// tracker, and the cascade (stage positions summing to the output, the blend, settling).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

void ExpectStages(const QZVDTMState &s, const double (&vel)[4], const double (&acc)[4]) {
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(s.stage[k].velLmtTarget, vel[k]) << "stage " << k;
        EXPECT_EQ(s.stage[k].accLmt, acc[k]) << "stage " << k;
    }
}

// Initialisation does not store the mode; the correction stages get 2A, 2A, A there but 100A at
// run time; each stage clamps its own copy at initialisation only.
TEST(TrackerMultistage, StageLimitsAtInitAndRunTime) {
    QZVDTMState s{};
    double out = -3.0;
    EXPECT_EQ(QZVDT_OnDT_BM(&s, 1.0, &out), 0);
    EXPECT_EQ(out, -3.0);
    s.mode = 77;
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 1), 1);
    EXPECT_EQ(s.mode, 77);
    EXPECT_EQ(s.corrScale, 1.0);  // 2.5 lowered
    ExpectStages(s, {69, 15, 5, 1}, {50, 100, 100, 50});
    ASSERT_EQ(QZVDT_OnSetRunTimeLmtM(&s, 180.0, 4.0, 1), 1);
    ExpectStages(s, {138, 30, 10, 2}, {4, 400, 400, 400});
    EXPECT_EQ(s.corrScale, 1.0);
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 1.8, 600.0, 2), 1);
    EXPECT_EQ(s.corrScale, 0.1);  // 0.05 raised
    ExpectStages(s, {1.8, 1.8 / 6, std::max(1.8 / 18, 0.1), 0.1}, {600, 1000, 1000, 600});
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
        double t = 0, yp, ym;
        for (int k = 0; k < 3000; ++k) {
            if (k % 400 == 0) t = qztest::Uniform(rng, -500, 500);
            if (k % 700 == 350) {
                const double nv = qztest::Uniform(rng, 1, 200), na = qztest::Uniform(rng, 1, 900);
                QZVDT_OnSetRunTimeLmt(&plain, nv, na);
                QZVDT_OnSetRunTimeLmtM(&m, nv, na, 0);
            }
            if (k == 2000) QZVDT_OnEmpty(&plain), QZVDT_OnEmptyM(&m);
            ASSERT_EQ(QZVDT_OnDT(&plain, t, &yp), 1);
            ASSERT_EQ(QZVDT_OnDT_BM(&m, t, &ym), 1);
            ASSERT_TRUE(SameBits(yp, ym)) << run << " " << k;
        }
    }
}

// Cascade: the stage positions sum to every step's output; the blend follows 0.93 g + 0.035
// while stage 0's own output is outside stage 1's band and 0.97 g inside it; after emptying the
// output snaps to the target with the correction stages at 0; the output settles on the target.
TEST(TrackerMultistage, CascadeStagesSumToOutputAndBlendFollowsMainError) {
    auto rng = qztest::Rng();
    for (int mode : {1, 2, -4}) {
        // A slow main stage in mode 2 keeps a residual beyond stage 2's band while stage 2 nears it.
        const double v = qztest::Uniform(rng, 30, 120), a = mode == 2 ? 3.0 : qztest::Uniform(rng, 50, 600);
        QZVDTMState s{};
        QZVDT_OnInitM(&s, 4.0, v, a, mode);
        s.mode = mode;
        const double band = s.corrScale, k10 = 10 * band;
        double t = 0, out;
        int rising = 0, decaying = 0, band2 = 0;
        for (int k = 0; k <= 8000; ++k) {
            if (k == 1 || k == 4000) t = qztest::Uniform(rng, -40, 40);
            if (k == 2000) t = 0.0, QZVDT_OnEmptyM(&s);
            if (k == 3000) QZVDT_OnSetRunTimeLmtM(&s, 0.5 * v, 0.8 * a, mode);
            // Each correction stage chases what the stages before it leave, within its band.
            QZVDTState c[4];
            std::memcpy(c, s.stage, sizeof c);
            double y[4];
            QZVDT_OnDT(&c[0], t, &y[0]);
            QZVDT_OnDT(&c[1], std::clamp(t - y[0], -k10, k10), &y[1]);
            band2 += std::fabs(t - (y[0] + y[1])) > 3 * band;
            QZVDT_OnDT(&c[2], std::clamp(t - (y[0] + y[1]), -3 * band, 3 * band), &y[2]);
            QZVDT_OnDT(&c[3], std::clamp(t - ((y[0] + y[1]) + y[2]), -band, band), &y[3]);
            const double g = s.blend;
            ASSERT_EQ(QZVDT_OnDT_BM(&s, t, &out), 1);
            ASSERT_TRUE(SameBits(out, ((y[0] + y[1]) + y[2]) + y[3])) << k;
            const bool far = std::fabs(t - y[0]) > k10;
            ASSERT_TRUE(SameBits(s.blend, far ? 0.93 * g + 0.035 : 0.97 * g)) << k;
            (far ? rising : decaying)++;
            ASSERT_LT(s.blend, 0.5);
            const double sum = ((s.stage[0].pos + s.stage[1].pos) + s.stage[2].pos) + s.stage[3].pos;
            ASSERT_NEAR(sum, out, 1e-12 * (1 + std::fabs(out))) << k;
            if (k == 0 || k == 2000)
                ASSERT_TRUE(out == t && s.blend == 0 && s.stage[1].pos == 0 && s.stage[3].pos == 0);
        }
        EXPECT_GT(rising, 10);
        EXPECT_TRUE(decaying > 1000 && band2 > 10) << band2;
        EXPECT_NEAR(out, t, 1e-9) << mode;
        EXPECT_LT(s.blend, 1e-20);
    }
}

}  // namespace
