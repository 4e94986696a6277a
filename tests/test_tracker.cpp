// Single-axis tracker: initialisation clamps, lifecycle and the run-time limit rules. Its motion
// over long runs (limits held, ramp-downs, settling without overshoot) is the soak's business.
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

QZVDTState Fresh(double cycleMs, double vel, double acc) {
    QZVDTState s{};
    EXPECT_EQ(QZVDT_OnInit(&s, cycleMs, vel, acc), 1);
    return s;
}

double Step(QZVDTState &s, double target) {
    double out = NAN;
    EXPECT_EQ(QZVDT_OnDT(&s, target, &out), 1);
    EXPECT_EQ(out, s.pos);
    return out;
}

// Cruising at 100 units/s (limits 100 and 100, 4 ms cycle).
QZVDTState Cruising() {
    QZVDTState s = Fresh(4.0, 100.0, 100.0);
    for (int k = 0; k <= 400; ++k) Step(s, k ? 1e4 : 0.0);
    EXPECT_EQ(s.vel, 100.0);
    return s;
}

// Every call but the initialisation is refused before it, touching nothing; the first step after
// initialisation or emptying puts the axis at its target, at rest. The initialisation's clamps
// are pinned bit for bit by the golden vectors.
TEST(Tracker, RefusesBeforeInitAndSnapsFirst) {
    QZVDTState z{}, before{};
    z.pos = before.pos = 7.0;
    double out = -3.0;
    EXPECT_EQ(QZVDT_OnDT(&z, 1.0, &out) + QZVDT_OnEmpty(&z) + QZVDT_OnSetRunTimeLmt(&z, 10, 10) +
                  QZVDT_OnSetRunTimeVel(&z, 10) + QZVDT_OnSetRunTimeAcc(&z, 10),
              0);
    EXPECT_EQ(out, -3.0);
    EXPECT_EQ(std::memcmp(&z, &before, sizeof z), 0);
    QZVDTState s = Fresh(4.0, 50.0, 100.0);
    for (double t : {12.5, -4.0}) {  // after init, then after emptying mid-motion
        EXPECT_EQ(Step(s, t), t);
        EXPECT_EQ(s.vel, 0.0);
        for (int k = 0; k < 10; ++k) Step(s, 100.0);
        EXPECT_GT(s.vel, 0.0);
        EXPECT_EQ(QZVDT_OnEmpty(&s), 1);
    }
}

// Requests closer than 0.1 to the requested limits change nothing; exactly 0.1 away applies. A
// lowered velocity limit waits (pending) while the speed is above it; a raised one, or one above
// the current speed, applies at once, unclamped.
TEST(Tracker, RunTimeLimitsDeadBandAndPending) {
    QZVDTState s = Cruising();
    QZVDT_OnSetRunTimeVel(&s, 60.0);
    EXPECT_ALL(s.velLmtPending == 1, s.velLmt == 100.0, s.velLmtTarget == 60.0);
    const double dead[][2] = {{60.05, 100.09}, {60.05, -1}, {-1, 100.09}};
    for (const auto &d : dead) {
        const QZVDTState before = s;
        EXPECT_EQ(d[0] < 0   ? QZVDT_OnSetRunTimeAcc(&s, d[1])
                  : d[1] < 0 ? QZVDT_OnSetRunTimeVel(&s, d[0])
                             : QZVDT_OnSetRunTimeLmt(&s, d[0], d[1]),
                  1);
        EXPECT_EQ(std::memcmp(&s, &before, sizeof s), 0) << d[0] << " " << d[1];
    }
    QZVDT_OnSetRunTimeLmt(&s, 60.05, 150.0);  // acceleration outside: the velocity rule too
    EXPECT_EQ(s.accLmt, 150.0);
    EXPECT_EQ(s.velLmtTarget, 60.05);
    QZVDT_OnSetRunTimeVel(&s, 0.2);
    QZVDT_OnSetRunTimeAcc(&s, 0.2);
    QZVDT_OnSetRunTimeVel(&s, qztest::NextUp(0.1));
    QZVDT_OnSetRunTimeAcc(&s, qztest::NextUp(0.1));
    EXPECT_ALL(s.velLmtTarget == 0.2, s.accLmt == 0.2);
    QZVDT_OnSetRunTimeVel(&s, 0.1);  // 0.2 - 0.1 is exactly 0.1
    QZVDT_OnSetRunTimeAcc(&s, 0.1);
    EXPECT_ALL(s.velLmtTarget == 0.1, s.accLmt == 0.1);
    QZVDTState r = Fresh(4.0, 100.0, 100.0);
    for (int k = 0; k <= 50; ++k) Step(r, k ? 1e4 : 0.0);  // speed 20
    for (double v : {30.0, 500.0}) {
        QZVDT_OnSetRunTimeVel(&r, v);
        EXPECT_EQ(r.velLmtPending, 0);
        EXPECT_EQ(r.velLmt, v);
    }
}

}  // namespace
