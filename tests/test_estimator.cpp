// N-axis estimator: sample-and-hold, velocity measurement and smoothing, the near-limit
// hysteresis, the clamps, stamp wrap and the jitter score, over irregular sample arrivals. Long
// runs are the soak's business.
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

// An estimator on n axes with one maximum and current limit; axis 1 sees the negated samples.
struct Est {
    QZNEstState s{};
    double out[8], ref[8] = {};
    int stamp = 0;
    Est(int n, double cycleMs, double vmax = 1000, double vcur = 1000) {
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

// Held calls repeat the last sample until the next stamp, whose velocity is the position change
// over the stamp difference times dt (stamps wrap modulo 9993). The estimate moves towards a
// constant measurement by 0.8 per sample and lands on it; held calls step by 1.5 when the
// measurement is below 1 in size. Output may be the sample array.
TEST(Estimator, SampleAndHoldMeasuredVelocityAndConvergingEstimate) {
    Est e(2, 4);
    e.Step(9990, 1.0);
    EXPECT_EQ(e.out[1], -1.0);
    for (int k = 0; k < 3; ++k) e.Step(9990, 55.0);
    EXPECT_ALL(e.out[0] == 1.0, e.s.ticksSinceSample == 3);  // held
    e.Step(9992, 1.2);
    EXPECT_ALL(e.out[0] == 1.2, e.s.ticksSinceSample == 0, e.s.velMeas[0] == e.s.velRaw[0]);
    EXPECT_TRUE(SameBits(e.s.velRaw[0], (1.2 - 1.0) / (2 * (4 * 0.001))));
    EXPECT_TRUE(SameBits(e.s.velRaw[1], (-1.2 - -1.0) / (2 * (4 * 0.001))));
    e.Step(5, 1.48);  // 6 periods across the wrap
    EXPECT_NEAR(e.s.velRaw[0], 0.28 / 0.024, 1e-12);
    e.Step(-2147483647 - 1, 0.24);
    EXPECT_TRUE(std::isfinite(e.s.velRaw[0]));

    Est c(1, 4);
    double x = 0;
    c.Step(0, x);
    for (int k = 1; k <= 14; ++k) {
        c.Step(k, x += 10 * 0.004);  // 10 units/s
        EXPECT_TRUE(k <= 12 ? std::fabs(c.s.velEst[0] - 0.8 * k) < 1e-12
                            : c.s.velEst[0] == c.s.velMeas[0])
            << k;
    }
    Est h(3, 4);
    double xs[8] = {0.0, 2, 3}, ys[8] = {0.1 * 0.004, 2.5, 3.5};
    QZNEst_OnDT(&h.s, 0, xs, xs, h.ref);
    QZNEst_OnDT(&h.s, 1, ys, ys, h.ref);
    EXPECT_EQ(h.s.velEst[0], 0.1);  // within one step of the measurement: taken as it is
    EXPECT_EQ(ys[2], 3.5);
    EXPECT_NEAR(h.s.velRaw[2], 0.5 / 0.004, 1e-9);
    h.s.velEst[0] = -5;
    h.Step(1, 0.0);
    EXPECT_EQ(h.s.velEst[0], -3.5);
}

// The measured velocity is cut while the reference is above 0.97 of the maximum (strictly) and
// until it falls strictly below 0.85; otherwise clamped to 0.4 of the maximum and to the current
// limit, which is itself capped at the maximum. Axis counts beyond 8 never leave the record.
TEST(Estimator, NearLimitHysteresisAndClamps) {
    Est e(1, 1, 100, 100);
    e.Step(0, 0.0);
    const double refs[] = {96, -98, 90, 85, 84.9, 96, 97}, cut[] = {0, 1, 1, 1, 0, 0, 0};
    for (int k = 0; k < 7; ++k) {
        e.ref[0] = refs[k];
        e.Step(k + 1, (k + 1) * 0.01);  // 10 units/s
        EXPECT_ALL(std::fabs(e.s.velRaw[0] - 10) < 1e-9,
                   std::fabs(e.s.velMeas[0] - 10 * (1 - cut[k])) < 1e-9)
            << refs[k];
    }
    Est c(1, 1, 60, 50);
    const double lower[8] = {10}, higher[8] = {500}, xs[] = {0.0, 0.1, 0.0, 0.1},
                 want[] = {0.0, 24, -24, 10.0};
    for (int k = 0; k < 4; ++k) {
        if (k == 3) EXPECT_EQ(QZNEst_OnSetRunTimeLmt(&c.s, lower), 1);
        c.Step(k, xs[k]);
        EXPECT_EQ(c.s.velMeas[0], want[k]) << k;
    }
    QZNEst_OnSetRunTimeLmt(&c.s, higher);
    EXPECT_EQ(c.s.velLmtCur[0], 60.0);
    Est big(1000, 4);
    const double s[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(QZNEst_OnDT(&big.s, 0, s, big.out, big.ref), 1);
    EXPECT_EQ(big.out[7], 1.0);
}

// With a 4 ms period, 4 calls per sample cost nothing, 5 cost 10, 7 cost 90, 3 cost 10, 6
// nothing; the score is the sum over 200 samples / 200, capped at 100. A 10 ms period has its
// lower threshold at 2: a deviation of 1 costs 1, 2 nothing, 4 costs 40.
TEST(Estimator, JitterPenaltiesAndScoreEvery200Samples) {
    // clang-format off
    const struct { double ms; int calls, sum; } rows[] = {
        {4, 4, 0}, {4, 5, 10}, {4, 7, 100}, {4, 3, 110}, {4, 6, 110}, {10, 11, 1}, {10, 12, 1}, {10, 6, 41}};
    // clang-format on
    Est e4(1, 4), e10(1, 10);
    e4.Step(0, 0.0), e10.Step(0, 0.0);
    for (const auto &r : rows) {
        Est &e = r.ms == 4 ? e4 : e10;
        e.Arrive(r.calls);
        EXPECT_EQ(e.s.jitterSum, r.sum) << r.ms << " " << r.calls;
    }
    for (int k = 5; k < 199; ++k) e4.Arrive(4);
    EXPECT_EQ(e4.s.jitterScore, 0.0);  // 199 samples: not yet scored
    e4.Arrive(5);
    EXPECT_EQ(e4.s.jitterScore, 120.0 / 200.0);
    EXPECT_EQ(e4.s.jitterSum, 0);
    for (int k = 0; k < 200; ++k) e4.Arrive(12);
    EXPECT_EQ(e4.s.jitterScore, 100.0);
}

}  // namespace
