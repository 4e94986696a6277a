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
    double out[8];
    double ref[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    Est(int n, double cycleMs, double vmax, double vcur) {
        std::memset(&s, 0, sizeof s);
        double mx[8], cu[8];
        for (int i = 0; i < 8; ++i) {
            mx[i] = vmax;
            cu[i] = vcur;
        }
        QZOnInitEst(&s, n, cycleMs, mx, cu);
    }
    void Step(int stamp, const double *x) { ASSERT_EQ(QZNEst_OnDT(&s, stamp, x, out, ref), 1); }
    void Step(int stamp, double x0) {
        double x[8] = {x0, -x0, 0, 0, 0, 0, 0, 0};
        Step(stamp, x);
    }
};

TEST(Estimator, InitDerivesPeriodHoldLimitAndLeavesResetPending) {
    Est e(2, 4, 100, 50);
    EXPECT_EQ(e.s.axisNum, 2);
    EXPECT_EQ(e.s.dt, 4 * 0.001);
    EXPECT_EQ(e.s.holdLimit, 20);
    EXPECT_EQ(e.s.cycleMsInt, 4);
    EXPECT_EQ(e.s.resetPending, 1);
    Est f(1, 20, 100, 50);
    EXPECT_EQ(f.s.holdLimit, 50);  // 100 lowered
    Est g(1, 2.7, 100, 50);
    EXPECT_EQ(g.s.holdLimit, 13);
    EXPECT_EQ(g.s.cycleMsInt, 2);
    Est h(1, NAN, 100, 50);  // no undefined conversion for a NaN period
    EXPECT_EQ(h.s.holdLimit, 50);
    EXPECT_EQ(h.s.cycleMsInt, 0);
}

// The first step hands the samples straight out; held calls repeat the last sample until the
// next stamp, whose velocity is the position change over the stamp difference times dt.
TEST(Estimator, SampleAndHoldAndMeasuredVelocity) {
    Est e(2, 4, 1000, 1000);
    e.Step(100, 1.0);
    EXPECT_EQ(e.out[0], 1.0);
    EXPECT_EQ(e.out[1], -1.0);
    EXPECT_EQ(e.s.resetPending, 0);
    for (int k = 0; k < 3; ++k) {
        e.Step(100, 55.0);  // same stamp: the new values are not samples
        EXPECT_EQ(e.out[0], 1.0);
        EXPECT_EQ(e.out[1], -1.0);
    }
    EXPECT_EQ(e.s.ticksSinceSample, 3);
    e.Step(102, 1.2);  // two periods of 4 ms: 0.2 / 0.008 = 25 units/s
    EXPECT_EQ(e.out[0], 1.2);
    EXPECT_TRUE(SameBits(e.s.velRaw[0], (1.2 - 1.0) / (2 * (4 * 0.001))));
    EXPECT_TRUE(SameBits(e.s.velRaw[1], (-1.2 - -1.0) / (2 * (4 * 0.001))));
    EXPECT_EQ(e.s.velMeas[0], e.s.velRaw[0]);
    EXPECT_EQ(e.s.ticksSinceSample, 0);
}

// The estimate moves towards a constant measured velocity by 0.8 per new sample, and (1.5 when
// the measurement is below 1 in size, else 0.8) per held call.
TEST(Estimator, EstimateConvergesInSteps) {
    Est e(1, 4, 1000, 1000);
    e.Step(0, 0.0);
    double x = 0;
    for (int k = 1; k <= 14; ++k) {
        x += 10 * 0.004;  // 10 units/s
        e.Step(k, x);
        if (k <= 12) {
            EXPECT_NEAR(e.s.velEst[0], 0.8 * k, 1e-12) << k;
        } else {
            EXPECT_EQ(e.s.velEst[0], e.s.velMeas[0]) << k;  // lands on the measurement exactly
        }
    }
    // Held calls keep stepping towards the measured velocity.
    Est h(1, 4, 1000, 1000);
    h.Step(0, 0.0);
    h.Step(1, 0.1 * 0.004);  // measured 0.1: below 1, so held steps are 1.5
    EXPECT_EQ(h.s.velEst[0], 0.1);
    h.s.velEst[0] = -5;
    h.Step(1, 0.0);
    EXPECT_EQ(h.s.velEst[0], -3.5);
}

TEST(Estimator, EstimateDroppedAfterHoldLimitUntilSamplesReturn) {
    Est e(2, 4, 1000, 1000);
    e.Step(0, 0.0);
    e.Step(1, 0.2);  // 50 units/s measured, estimate 0.8 after one sample
    ASSERT_GT(e.s.velEst[0], 0.0);
    for (int k = 1; k < 20; ++k) {
        e.Step(1, 9.0);
        EXPECT_NE(e.s.velEst[0], 0.0) << k;
    }
    for (int k = 0; k < 30; ++k) {
        e.Step(1, 9.0);
        EXPECT_EQ(e.s.velEst[0], 0.0);
        EXPECT_EQ(e.s.velEst[1], 0.0);
        EXPECT_EQ(e.out[0], 0.2);
        EXPECT_EQ(e.s.ticksSinceSample, 20);  // capped, not counting on
    }
    e.Step(2, 0.4);  // a sample returns: stepping resumes from zero
    EXPECT_NEAR(e.s.velEst[0], 0.8, 1e-15);
}

// Cut on above 0.97 of the maximum, off only below 0.85.
TEST(Estimator, NearLimitHysteresisCutsMeasuredVelocity) {
    Est e(1, 1, 100, 100);
    e.Step(0, 0.0);
    double x = 0;
    int stamp = 0;
    auto sample = [&](double r) {
        e.ref[0] = r;
        x += 0.01;  // 10 units/s
        e.Step(++stamp, x);
    };
    sample(96);
    EXPECT_NEAR(e.s.velMeas[0], 10, 1e-9);
    sample(-98);  // above 0.97 in size
    EXPECT_EQ(e.s.velMeas[0], 0.0);
    EXPECT_NEAR(e.s.velRaw[0], 10, 1e-9);
    sample(90);   // between: stays cut
    EXPECT_EQ(e.s.velMeas[0], 0.0);
    sample(85);   // exactly 0.85 is not below
    EXPECT_EQ(e.s.velMeas[0], 0.0);
    sample(84.9);
    EXPECT_NEAR(e.s.velMeas[0], 10, 1e-9);
    sample(96);   // between, flag off: not cut
    EXPECT_NEAR(e.s.velMeas[0], 10, 1e-9);
    sample(97);   // exactly 0.97 does not set it
    EXPECT_NEAR(e.s.velMeas[0], 10, 1e-9);
}

TEST(Estimator, MeasuredVelocityClampedToCurrentLimitAndFractionOfMaximum) {
    Est e(1, 1, 60, 50);
    e.Step(0, 0.0);
    e.Step(1, 0.1);  // 100 units/s
    EXPECT_NEAR(e.s.velRaw[0], 100, 1e-9);
    EXPECT_EQ(e.s.velMeas[0], 0.4 * 60);
    e.Step(2, 0.0);
    EXPECT_EQ(e.s.velMeas[0], -(0.4 * 60));
    const double lower[8] = {10};
    EXPECT_EQ(QZNEst_OnSetRunTimeLmt(&e.s, lower), 1);
    e.Step(3, 0.1);
    EXPECT_EQ(e.s.velMeas[0], 10.0);
    const double higher[8] = {500};
    QZNEst_OnSetRunTimeLmt(&e.s, higher);
    EXPECT_EQ(e.s.velLmtCur[0], 60.0);  // capped at the maximum
}

TEST(Estimator, StampsWrapModulo9993) {
    Est e(1, 4, 1000, 1000);
    e.Step(9990, 0.0);
    e.Step(3, 0.24);  // 6 periods of 4 ms
    EXPECT_NEAR(e.s.velRaw[0], 0.24 / 0.024, 1e-12);
    e.Step(-2147483647 - 1, 0.24);  // far stamps: no overflow, a finite velocity
    EXPECT_TRUE(std::isfinite(e.s.velRaw[0]));
}

// With a 4 ms period: 4 calls per sample costs nothing, 5 costs 10, 7 costs 90; the score is the
// sum over 200 samples / 200, capped at 100.
TEST(Estimator, JitterPenaltiesAndScoreEvery200Samples) {
    Est e(1, 4, 1000, 1000);
    int stamp = 0;
    e.Step(stamp, 0.0);
    auto arrive = [&](int calls) {
        for (int k = 1; k < calls; ++k) e.Step(stamp, 0.0);
        e.Step(++stamp, 0.0);
    };
    arrive(4);
    EXPECT_EQ(e.s.jitterSum, 0);
    arrive(5);
    EXPECT_EQ(e.s.jitterSum, 10);
    arrive(7);
    EXPECT_EQ(e.s.jitterSum, 100);
    arrive(3);  // one early: dev 1 lies in (t20 = 0, t50 = 2)
    EXPECT_EQ(e.s.jitterSum, 110);
    arrive(6);  // dev 2 = t50: nothing
    EXPECT_EQ(e.s.jitterSum, 110);
    EXPECT_EQ(e.s.sampleCount, 5);
    EXPECT_EQ(e.s.jitterScore, 0.0);
    for (int k = 5; k < 199; ++k) arrive(4);
    EXPECT_EQ(e.s.sampleCount, 199);
    arrive(5);
    EXPECT_EQ(e.s.jitterScore, 120.0 / 200.0);
    EXPECT_EQ(e.s.sampleCount, 0);
    EXPECT_EQ(e.s.jitterSum, 0);
    for (int k = 0; k < 200; ++k) arrive(12);  // 30 * 8 each: capped at 100
    EXPECT_EQ(e.s.jitterScore, 100.0);

    // A 10 ms period has t20 = 2: a deviation of 1 costs 1, 2 costs nothing, 4 costs 40.
    Est f(1, 10, 1000, 1000);
    stamp = 0;
    f.Step(0, 0.0);
    auto arriveF = [&](int calls) {
        for (int k = 1; k < calls; ++k) f.Step(stamp, 0.0);
        f.Step(++stamp, 0.0);
    };
    arriveF(11);
    EXPECT_EQ(f.s.jitterSum, 1);
    arriveF(12);
    EXPECT_EQ(f.s.jitterSum, 1);
    arriveF(6);
    EXPECT_EQ(f.s.jitterSum, 41);
}

TEST(Estimator, EmptyRestartsButKeepsJitterScore) {
    Est e(1, 4, 1000, 1000);
    e.Step(0, 0.0);
    e.Step(1, 1.0);
    e.s.jitterScore = 7;
    EXPECT_EQ(QZNEst_OnEmpty(&e.s), 1);
    EXPECT_EQ(e.s.heldPos[0], 0.0);
    EXPECT_EQ(e.s.velEst[0], 0.0);
    e.Step(1, 5.0);  // same stamp, but reset pending: taken as a fresh start
    EXPECT_EQ(e.out[0], 5.0);
    EXPECT_EQ(e.s.velMeas[0], 0.0);
    EXPECT_EQ(e.s.jitterScore, 7.0);
}

// Output in place of the samples; axis counts beyond 8 never leave the record.
TEST(Estimator, OutputMayAliasSamplesAndAxisCountIsBounded) {
    Est e(3, 4, 1000, 1000);
    double x[8] = {1, 2, 3};
    QZNEst_OnDT(&e.s, 0, x, x, e.ref);
    double y[8] = {1.5, 2.5, 3.5};
    QZNEst_OnDT(&e.s, 1, y, y, e.ref);
    EXPECT_EQ(y[2], 3.5);
    EXPECT_NEAR(e.s.velRaw[2], 0.5 / 0.004, 1e-9);

    Est big(1000, 4, 1000, 1000);  // 1000 requested; only 8 exist
    double s[8] = {1, 1, 1, 1, 1, 1, 1, 1}, o[8];
    EXPECT_EQ(QZNEst_OnDT(&big.s, 0, s, o, big.ref), 1);
    EXPECT_EQ(o[7], 1.0);
}

}  // namespace
