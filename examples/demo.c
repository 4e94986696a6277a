/*
 * QZMath demo: one axis driven from rest towards a distant target at a 4 ms control cycle.
 * Midway the velocity limit is lowered below the cruising speed: the tracker ramps down at its
 * acceleration limit before adopting the new limit, then settles on the target.
 */
#include <stdio.h>

#include "QZDT.h"
#include "demo.h"

static double absd(double x) { return x < 0.0 ? -x : x; }

void demo_single_axis(void) {
    const double cycleMs = 4.0, dt = 0.004;
    const double velLmt = 100.0, accLmt = 200.0, target = 300.0;
    const int cycles = 1700, lowerAt = 300, printEvery = 50;
    QZVDTState axis = {0};
    double pos = 0.0, prevPos = 0.0, prevVel = 0.0;
    double peakVel = 0.0, peakAcc = 0.0;
    int settled = -1;

    QZVDT_OnInit(&axis, cycleMs, velLmt, accLmt);
    QZVDT_OnDT(&axis, 0.0, &pos); /* first step: start at rest at 0 */
    prevPos = pos;

    printf("single axis: target %.1f, v_max %.1f -> 40.0 at cycle %d, a_max %.1f, cycle %.0f ms\n",
           target, velLmt, lowerAt, accLmt, cycleMs);
    printf("%8s %12s %10s %10s\n", "t [s]", "pos", "vel", "acc");
    for (int k = 1; k <= cycles; ++k) {
        if (k == lowerAt) QZVDT_OnSetRunTimeVel(&axis, 40.0);
        QZVDT_OnDT(&axis, target, &pos);
        const double vel = (pos - prevPos) / dt;
        const double acc = (vel - prevVel) / dt;
        if (absd(vel) > peakVel) peakVel = absd(vel);
        if (k > 1 && absd(acc) > peakAcc) peakAcc = absd(acc);
        if (settled < 0 && absd(target - pos) < 1e-9) settled = k;
        if (settled >= 0 && absd(target - pos) >= 1e-9) settled = -1;
        if (k % printEvery == 0) printf("%8.3f %12.6f %10.4f %10.3f\n", k * dt, pos, vel, acc);
        prevPos = pos;
        prevVel = vel;
    }
    printf(
        "summary: peak speed %.4f, peak acceleration %.3f, settled at %.3f s (cycle %d), "
        "final error %.3g\n",
        peakVel, peakAcc, settled * dt, settled, target - pos);
}

int main(int argc, char **argv) {
    demo_single_axis();
    printf("\n");
    const int rc = demo_arm(argc, argv);
    printf("\n");
    demo_filters();
    return rc;
}
