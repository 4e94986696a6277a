// Single-axis tracker: initialisation clamps, lifecycle, and the motion properties the control
// law promises over long runs (limits held, settling without overshoot, the lowered-limit ramp).
#include "QZDT.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "test_util.h"

namespace {

QZVDTState Fresh(double cycleMs, double vel, double acc) {
    QZVDTState s;
    std::memset(&s, 0, sizeof s);
    EXPECT_EQ(QZVDT_OnInit(&s, cycleMs, vel, acc), 1);
    return s;
}

// Steps once and returns the new position.
double Step(QZVDTState &s, double target) {
    double out = std::nan("");
    EXPECT_EQ(QZVDT_OnDT(&s, target, &out), 1);
    EXPECT_EQ(out, s.pos);
    return out;
}

TEST(TrackerInit, ClampsLimitsAndCycleTime) {
    struct Case { double cycleMs, vel, acc, dt, velLmt, accLmt; };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {4.0, 50.0, 100.0, 0.004, 50.0, 100.0},   {0.5, 0.05, 0.5, 0.001, 0.1, 1.0},
        {1000.0, 300.0, 5000.0, 1.0, 200.0, 1000.0}, {2000.0, 200.0, 1000.0, 1.0, 200.0, 1000.0},
        {1.0, 0.1, 1.0, 0.001, 0.1, 1.0},           {4.0, nan, nan, 0.004, 200.0, 1000.0},
        {-5.0, -1.0, -1.0, 0.001, 0.1, 1.0},
    };
    for (const Case &c : cases) {
        const QZVDTState s = Fresh(c.cycleMs, c.vel, c.acc);
        EXPECT_EQ(s.dt, c.dt);
        EXPECT_EQ(s.baseDt, c.dt);
        EXPECT_EQ(s.velLmt, c.velLmt);
        EXPECT_EQ(s.velLmtTarget, c.velLmt);
        EXPECT_EQ(s.accLmt, c.accLmt);
        EXPECT_EQ(s.accStep2, (c.accLmt * c.dt) * c.dt);
        EXPECT_EQ(s.lawStep, 0.01);
        EXPECT_EQ(s.isInit, 1);
        EXPECT_EQ(s.resetPending, 1);
        EXPECT_EQ(s.velLmtPending, 0);
        EXPECT_EQ(s.pos, 0.0);
        EXPECT_EQ(s.vel, 0.0);
    }
}

TEST(TrackerLifecycle, EverythingIsRefusedBeforeInitialisation) {
    QZVDTState s;
    std::memset(&s, 0, sizeof s);
    s.pos = 7.0;
    const QZVDTState before = s;
    double out = -3.0;
    EXPECT_EQ(QZVDT_OnDT(&s, 1.0, &out), 0);
    EXPECT_EQ(QZVDT_OnEmpty(&s), 0);
    EXPECT_EQ(QZVDT_OnSetRunTimeLmt(&s, 10.0, 10.0), 0);
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 10.0), 0);
    EXPECT_EQ(QZVDT_OnSetRunTimeAcc(&s, 10.0), 0);
    EXPECT_EQ(out, -3.0);
    EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0);
}

TEST(TrackerLifecycle, FirstStepAfterInitOrEmptySnapsToTheTarget) {
    QZVDTState s = Fresh(4.0, 50.0, 100.0);
    EXPECT_EQ(Step(s, 12.5), 12.5);
    EXPECT_EQ(s.vel, 0.0);
    EXPECT_EQ(s.resetPending, 0);
    for (int k = 0; k < 10; ++k) Step(s, 100.0);
    EXPECT_GT(s.vel, 0.0);
    EXPECT_EQ(QZVDT_OnEmpty(&s), 1);
    EXPECT_EQ(s.resetPending, 1);
    EXPECT_EQ(Step(s, -4.0), -4.0);
    EXPECT_EQ(s.vel, 0.0);
    EXPECT_NE(Step(s, 100.0), 100.0);  // tracking again
}

// Drives the axis and checks on every normal cycle: speed within the active limit, velocity
// change within accLmt * dt, and (for a fixed target) no crossing of the target.
struct Watch {
    int steps = 0;
    double maxSpeedExcess = -1.0, maxDvExcess = -1.0;
    bool crossed = false;
};

void Drive(QZVDTState &s, double target, int cycles, Watch &w) {
    const double side = s.pos - target;
    for (int k = 0; k < cycles; ++k) {
        const double v0 = s.vel;
        const bool ramp = s.velLmtPending;
        Step(s, target);
        ++w.steps;
        if (!ramp) {
            w.maxSpeedExcess = std::fmax(w.maxSpeedExcess, std::fabs(s.vel) - s.velLmt);
            w.maxDvExcess = std::fmax(w.maxDvExcess, std::fabs(s.vel - v0) - s.accLmt * s.dt * (1 + 1e-12));
        }
        if (side != 0.0 && (s.pos - target) * side < 0.0) w.crossed = true;
    }
}

TEST(TrackerMotion, ReachesAFixedTargetWithinLimitsAndWithoutOvershoot) {
    QZVDTState s = Fresh(4.0, 50.0, 100.0);
    Step(s, 0.0);
    Watch w;
    double prevVel = 0.0;
    for (int k = 0; k < 125; ++k) {  // the speed rises by exactly accLmt * dt until clipped
        Step(s, 100.0);
        EXPECT_NEAR(s.vel - prevVel, 0.4, 1e-12) << k;
        prevVel = s.vel;
    }
    Drive(s, 100.0, 3000, w);
    EXPECT_LE(w.maxSpeedExcess, 0.0);
    EXPECT_LE(w.maxDvExcess, 0.0);
    EXPECT_FALSE(w.crossed);
    EXPECT_NEAR(s.pos, 100.0, 1e-13);
}

// The law looks one fixed 10 ms step ahead; for control cycles up to 7 ms that is at least one
// cycle ahead and the axis settles without passing the target (longer cycles can overshoot).
TEST(TrackerMotion, RandomLimitsAndTargetsKeepTheLimitsAndSettle) {
    auto rng = qztest::Rng();
    for (int trial = 0; trial < 300; ++trial) {
        const double cycleMs = qztest::Uniform(rng, 1.0, 7.0);
        QZVDTState s = Fresh(cycleMs, qztest::Uniform(rng, 0.5, 200.0), qztest::Uniform(rng, 1.0, 1000.0));
        Step(s, qztest::Uniform(rng, -100.0, 100.0));
        Watch w;
        // Fixed targets, then jumps mid-motion, then a target ramping below the speed limit.
        const double fixedTarget = qztest::Uniform(rng, -500.0, 500.0);
        const double travel = std::fabs(fixedTarget - s.pos) / s.velLmt + 2.0 * s.velLmt / s.accLmt;
        Drive(s, fixedTarget, static_cast<int>(2.0 * (travel + 1.0) / s.dt), w);
        EXPECT_NEAR(s.pos, fixedTarget, 1e-9) << "trial " << trial << " seed " << qztest::Seed();
        EXPECT_FALSE(w.crossed) << "trial " << trial;
        for (int j = 0; j < 5; ++j) Drive(s, qztest::Uniform(rng, -500.0, 500.0), 37, w);
        const double rate = qztest::Uniform(rng, -0.5, 0.5) * s.velLmt;
        double t = s.pos;
        const int rampSteps = static_cast<int>((4.0 * s.velLmt / s.accLmt + 2.0) / s.dt);
        for (int k = 0; k < rampSteps; ++k) {
            t += rate * s.dt;
            Drive(s, t, 1, w);
        }
        EXPECT_NEAR(s.vel, rate, 1e-3 * s.velLmt) << "follows a ramp, trial " << trial;
        EXPECT_LE(w.maxSpeedExcess, 0.0) << "trial " << trial;
        EXPECT_LE(w.maxDvExcess, 0.0) << "trial " << trial;
    }
}

// Cruising at 100 units/s with accLmt 100 and a 4 ms cycle, the limit is lowered to 50: the
// speed falls by 0.4 a step whatever the target, and the 125th step adopts the new limit.
TEST(TrackerVelocityLimit, LoweredLimitRampsDownAtTheAccelerationLimit) {
    QZVDTState s = Fresh(4.0, 100.0, 100.0);
    Step(s, 0.0);
    for (int k = 0; k < 400; ++k) Step(s, 1e4);
    ASSERT_EQ(s.vel, 100.0);
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 50.0), 1);
    EXPECT_EQ(s.velLmtPending, 1);
    EXPECT_EQ(s.velLmt, 100.0);
    EXPECT_EQ(s.velLmtTarget, 50.0);
    for (int k = 1; k <= 125; ++k) {
        const double v0 = s.vel, p0 = s.pos;
        Step(s, k % 2 ? -1e4 : 1e4);  // the target is ignored during the ramp
        EXPECT_EQ(s.vel, v0 - 100.0 * 0.004);
        EXPECT_EQ(s.pos, p0 + s.vel * 0.004);
        EXPECT_EQ(s.velLmtPending, k < 125 ? 1 : 0) << k;
    }
    EXPECT_EQ(s.velLmt, 50.0);
    Watch w;
    Drive(s, 1e4, 100, w);
    EXPECT_LE(std::fabs(s.vel), 50.0);
}

TEST(TrackerVelocityLimit, RaisedLimitOrOneAboveTheSpeedAppliesAtOnce) {
    QZVDTState s = Fresh(4.0, 100.0, 100.0);
    Step(s, 0.0);
    for (int k = 0; k < 50; ++k) Step(s, 1e4);  // speed 20
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 30.0), 1);  // below the active limit, above the speed
    EXPECT_EQ(s.velLmtPending, 0);
    EXPECT_EQ(s.velLmt, 30.0);
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 500.0), 1);  // run-time limits are not clamped
    EXPECT_EQ(s.velLmt, 500.0);
    EXPECT_EQ(s.velLmtPending, 0);
}

TEST(TrackerSetters, DeadBandIsMeasuredAgainstTheRequestedLimit) {
    QZVDTState s = Fresh(4.0, 100.0, 100.0);
    Step(s, 0.0);
    for (int k = 0; k < 400; ++k) Step(s, 1e4);  // cruising at 100
    QZVDT_OnSetRunTimeVel(&s, 60.0);  // pending: active 100, requested 60
    ASSERT_EQ(s.velLmtPending, 1);
    QZVDTState before = s;
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 60.05), 1);
    EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0);
    EXPECT_EQ(QZVDT_OnSetRunTimeVel(&s, 60.5), 1);
    EXPECT_EQ(s.velLmtTarget, 60.5);
    EXPECT_EQ(s.velLmtPending, 1);

    before = s;
    EXPECT_EQ(QZVDT_OnSetRunTimeAcc(&s, 100.09), 1);
    EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0);
    EXPECT_EQ(QZVDT_OnSetRunTimeAcc(&s, 150.0), 1);
    EXPECT_EQ(s.accLmt, 150.0);
    EXPECT_EQ(s.accStep2, 150.0 * 0.004 * 0.004);

    before = s;
    EXPECT_EQ(QZVDT_OnSetRunTimeLmt(&s, 60.55, 150.05), 1);  // both inside: nothing
    EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0);
    // Acceleration outside the band re-applies the velocity rule even for a close velocity.
    EXPECT_EQ(QZVDT_OnSetRunTimeLmt(&s, 60.55, 150.5), 1);
    EXPECT_EQ(s.accLmt, 150.5);
    EXPECT_EQ(s.velLmtTarget, 60.55);
    EXPECT_EQ(s.velLmtPending, 1);
}

TEST(TrackerSetters, EmptyKeepsAPendingRampForTheStepAfterTheSnap) {
    QZVDTState s = Fresh(4.0, 100.0, 100.0);
    Step(s, 0.0);
    for (int k = 0; k < 400; ++k) Step(s, 1e4);
    QZVDT_OnSetRunTimeVel(&s, 50.0);
    QZVDT_OnEmpty(&s);
    EXPECT_EQ(Step(s, 3.0), 3.0);
    EXPECT_EQ(s.velLmtPending, 1);
    Step(s, -1e4);  // ramp branch with v = 0: moves forward by accLmt * dt whatever the target
    EXPECT_EQ(s.vel, 100.0 * 0.004);
    EXPECT_EQ(s.pos, 3.0 + s.vel * 0.004);
    EXPECT_EQ(s.velLmtPending, 0);
    EXPECT_EQ(s.velLmt, 50.0);
}

}  // namespace
