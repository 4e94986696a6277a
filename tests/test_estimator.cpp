// N-axis estimator: sample-and-hold, velocity measurement and smoothing, the near-limit
// hysteresis, the clamps, stamp wrap and the jitter score, over irregular sample arrivals.
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

struct Est {
    QZNEstState s;
    double out[8], ref[8] = {};
    int stamp = 0;
    Est(int n, double cycleMs, double vmax, double vcur) {
        std::memset(&s, 0, sizeof s);
        double mx[8], cu[8];
        for (int i = 0; i < 8; ++i) mx[i] = vmax, cu[i] = vcur;
        QZOnInitEst(&s, n, cycleMs, mx, cu);
    }
    void Step(int st, double x0) {
        const double x[8] = {x0, -x0};
        ASSERT_EQ(QZNEst_OnDT(&s, st, x, out, ref), 1);
    }
    void Arrive(int calls) {  // a new sample after calls - 1 held calls
        for (int k = 1; k < calls; ++k) Step(stamp, 0.0);
        Step(++stamp, 0.0);
    }
};

TEST(Estimator, InitDerivesPeriodAndHoldLimit) {
    const double rows[][4] = {{4, 4, 20, 4}, {20, 20, 50, 20}, {2.7, 2.7, 13, 2}, {NAN, NAN, 50, 0}};
    for (const auto &r : rows) {  // cycleMs -> dt (ms), holdLimit (lowered to 50), whole ms
        Est e(2, r[0], 100, 50);
        EXPECT_TRUE((std::isnan(r[1]) || e.s.dt == r[1] * 0.001) && e.s.holdLimit == r[2] &&
                    e.s.cycleMsInt == r[3] && e.s.axisNum == 2 && e.s.resetPending == 1) << r[0];
    }
}

// The first step hands the samples out; held calls repeat the last sample until the next stamp,
// whose velocity is the position change over the stamp difference times dt. The estimate moves
// towards a constant measured velocity by 0.8 per sample and lands on it exactly; held calls step
// by 1.5 when the measurement is below 1 in size.
TEST(Estimator, SampleAndHoldMeasuredVelocityAndConvergingEstimate) {
    Est e(2, 4, 1000, 1000);
    e.Step(100, 1.0);
    EXPECT_TRUE(e.out[0] == 1.0 && e.out[1] == -1.0 && e.s.resetPending == 0);
    for (int k = 0; k < 3; ++k) e.Step(100, 55.0);
    EXPECT_TRUE(e.out[0] == 1.0 && e.out[1] == -1.0 && e.s.ticksSinceSample == 3);
    e.Step(102, 1.2);
    EXPECT_TRUE(e.out[0] == 1.2 && e.s.ticksSinceSample == 0 && e.s.velMeas[0] == e.s.velRaw[0]);
    EXPECT_TRUE(SameBits(e.s.velRaw[0], (1.2 - 1.0) / (2 * (4 * 0.001))));
    EXPECT_TRUE(SameBits(e.s.velRaw[1], (-1.2 - -1.0) / (2 * (4 * 0.001))));

    Est c(1, 4, 1000, 1000);
    c.Step(0, 0.0);
    double x = 0;
    for (int k = 1; k <= 14; ++k) {
        c.Step(k, x += 10 * 0.004);  // 10 units/s
        if (k <= 12) EXPECT_NEAR(c.s.velEst[0], 0.8 * k, 1e-12) << k;
        else EXPECT_EQ(c.s.velEst[0], c.s.velMeas[0]) << k;
    }
    Est h(1, 4, 1000, 1000);
    h.Step(0, 0.0);
    h.Step(1, 0.1 * 0.004);
    EXPECT_EQ(h.s.velEst[0], 0.1);
    h.s.velEst[0] = -5;
    h.Step(1, 0.0);
    EXPECT_EQ(h.s.velEst[0], -3.5);
}

// After holdLimit calls without a sample the estimate is dropped (the count capped) until
// samples return; emptying restarts from the next call but keeps the jitter score.
TEST(Estimator, HoldLimitDropsTheEstimateAndEmptyRestarts) {
    Est e(2, 4, 1000, 1000);
    e.Step(0, 0.0);
    e.Step(1, 0.2);
    for (int k = 1; k < 50; ++k) {
        e.Step(1, 9.0);
        EXPECT_EQ(e.s.velEst[0] == 0.0 && e.s.velEst[1] == 0.0, k >= 20) << k;
        EXPECT_TRUE(e.out[0] == 0.2 && e.s.ticksSinceSample == std::min(k, 20)) << k;
    }
    e.Step(2, 0.4);
    EXPECT_NEAR(e.s.velEst[0], 0.8, 1e-15);
    e.s.jitterScore = 7;
    EXPECT_EQ(QZNEst_OnEmpty(&e.s), 1);
    EXPECT_TRUE(e.s.heldPos[0] == 0.0 && e.s.velEst[0] == 0.0);
    e.Step(2, 5.0);  // same stamp, but reset pending: a fresh start
    EXPECT_TRUE(e.out[0] == 5.0 && e.s.velMeas[0] == 0.0 && e.s.jitterScore == 7.0);
}

// The measured velocity is cut while the reference is above 0.97 of the maximum (strictly) and
// until it falls strictly below 0.85; otherwise clamped to 0.4 of the maximum and to the current
// limit, which is itself capped at the maximum.
TEST(Estimator, NearLimitHysteresisAndClamps) {
    Est e(1, 1, 100, 100);
    e.Step(0, 0.0);
    const double refs[] = {96, -98, 90, 85, 84.9, 96, 97};
    const bool cut[] = {false, true, true, true, false, false, false};
    for (int k = 0; k < 7; ++k) {
        e.ref[0] = refs[k];
        e.Step(k + 1, (k + 1) * 0.01);  // 10 units/s
        EXPECT_NEAR(e.s.velRaw[0], 10, 1e-9);
        EXPECT_NEAR(e.s.velMeas[0], cut[k] ? 0.0 : 10.0, 1e-9) << refs[k];
    }
    Est c(1, 1, 60, 50);
    const double lower[8] = {10}, higher[8] = {500};
    const double xs[] = {0.0, 0.1, 0.0, 0.1}, want[] = {0.0, 0.4 * 60, -(0.4 * 60), 10.0};
    for (int k = 0; k < 4; ++k) {
        if (k == 3) EXPECT_EQ(QZNEst_OnSetRunTimeLmt(&c.s, lower), 1);
        c.Step(k, xs[k]);
        EXPECT_EQ(c.s.velMeas[0], want[k]) << k;
    }
    QZNEst_OnSetRunTimeLmt(&c.s, higher);
    EXPECT_EQ(c.s.velLmtCur[0], 60.0);
}

TEST(Estimator, StampsWrapModulo9993AndFarStampsStayFinite) {
    Est e(1, 4, 1000, 1000);
    e.Step(9990, 0.0);
    e.Step(3, 0.24);  // 6 periods of 4 ms
    EXPECT_NEAR(e.s.velRaw[0], 0.24 / 0.024, 1e-12);
    e.Step(-2147483647 - 1, 0.24);
    EXPECT_TRUE(std::isfinite(e.s.velRaw[0]));
}

// With a 4 ms period, 4 calls per sample cost nothing, 5 cost 10, 7 cost 90, 3 cost 10, 6
// nothing; the score is the sum over 200 samples / 200, capped at 100. A 10 ms period has its
// lower threshold at 2: a deviation of 1 costs 1, 2 nothing, 4 costs 40.
TEST(Estimator, JitterPenaltiesAndScoreEvery200Samples) {
    Est e(1, 4, 1000, 1000);
    e.Step(0, 0.0);
    const int calls[] = {4, 5, 7, 3, 6}, sum[] = {0, 10, 100, 110, 110};
    for (int k = 0; k < 5; ++k) {
        e.Arrive(calls[k]);
        EXPECT_EQ(e.s.jitterSum, sum[k]) << calls[k];
    }
    for (int k = 5; k < 199; ++k) e.Arrive(4);
    EXPECT_TRUE(e.s.sampleCount == 199 && e.s.jitterScore == 0.0);
    e.Arrive(5);
    EXPECT_TRUE(e.s.jitterScore == 120.0 / 200.0 && e.s.sampleCount == 0 && e.s.jitterSum == 0);
    for (int k = 0; k < 200; ++k) e.Arrive(12);
    EXPECT_EQ(e.s.jitterScore, 100.0);
    Est f(1, 10, 1000, 1000);
    f.Step(0, 0.0);
    const int callsF[] = {11, 12, 6}, sumF[] = {1, 1, 41};
    for (int k = 0; k < 3; ++k) {
        f.Arrive(callsF[k]);
        EXPECT_EQ(f.s.jitterSum, sumF[k]) << callsF[k];
    }
}

// Output in place of the samples; axis counts beyond 8 never leave the record.
TEST(Estimator, OutputMayAliasSamplesAndAxisCountIsBounded) {
    Est e(3, 4, 1000, 1000);
    double x[8] = {1, 2, 3}, y[8] = {1.5, 2.5, 3.5};
    QZNEst_OnDT(&e.s, 0, x, x, e.ref);
    QZNEst_OnDT(&e.s, 1, y, y, e.ref);
    EXPECT_TRUE(y[2] == 3.5 && std::fabs(e.s.velRaw[2] - 0.5 / 0.004) < 1e-9);
    Est big(1000, 4, 1000, 1000);
    const double s[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    double o[8];
    EXPECT_TRUE(QZNEst_OnDT(&big.s, 0, s, o, big.ref) == 1 && o[7] == 1.0);
}

}  // namespace
