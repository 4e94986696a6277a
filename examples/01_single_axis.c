/*
 * Example 01: one axis with the single-axis tracker.
 *
 * A joint is driven at a 4 ms control cycle from rest at 0 towards 120 degrees with a velocity
 * limit of 100 deg/s and an acceleration limit of 300 deg/s^2. At 0.8 s, while it cruises at
 * 100 deg/s, the velocity limit is lowered to 50 deg/s: the tracker ramps down at its
 * acceleration limit before adopting the new limit. At 1.6 s the target changes to 40 degrees,
 * behind the axis: it decelerates, turns and settles on the new target without passing it.
 *
 * The plain tracker limits velocity and acceleration only: its acceleration jumps between
 * -300, 0 and +300 within one cycle, so its jerk reaches 300 / 0.004 = 75000 deg/s^3.
 *
 * Usage: 01_single_axis [CSV]   (default: 01_single_axis.csv in the build directory)
 * The CSV has one row per cycle: t, target1, pos1, vel1, acc1, jerk1, vlim1, alim1, jlim1, where
 * vel, acc and jerk are the differences of the commanded position (what a drive sees).
 */
#include <stdio.h>

#include "QZDT.h"

#ifndef QZ_EXAMPLE_DIR
#define QZ_EXAMPLE_DIR "."
#endif

static double absd(double x) { return x < 0.0 ? -x : x; }

int main(int argc, char **argv) {
    const char *csvPath = argc > 1 ? argv[1] : QZ_EXAMPLE_DIR "/01_single_axis.csv";
    const double cycleMs = 4.0, dt = 0.004;      /* ms at the interface, s for the maths */
    const double velLmt = 100.0, accLmt = 300.0; /* deg/s, deg/s^2 */
    const int cycles = 1000, lowerAt = 200, retargetAt = 400; /* 4 s; changes at 0.8 s and 1.6 s */

    FILE *csv = fopen(csvPath, "w");
    if (!csv) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }
    fprintf(csv, "t,target1,pos1,vel1,acc1,jerk1,vlim1,alim1,jlim1\n");

    QZVDTState axis = {
        0}; /* zeroed: every operation but QZVDT_OnInit refuses a record with isInit 0 */
    QZVDT_OnInit(&axis, cycleMs, velLmt, accLmt);

    double target = 0.0, pos = 0.0, prevPos = 0.0, vel = 0.0, prevVel = 0.0, acc = 0.0,
           prevAcc = 0.0;
    double vlim = velLmt, peakVel = 0.0, peakAcc = 0.0, peakJerk = 0.0, maxPos = 0.0,
           minAfter = 1e300;
    int settled = -1;
    for (int k = 0; k <= cycles; ++k) {
        if (k == lowerAt) {
            vlim = 50.0;
            QZVDT_OnSetRunTimeVel(&axis, vlim); /* 50 < current speed: ramps down first */
        }
        target = k == 0 ? 0.0 : (k < retargetAt ? 120.0 : 40.0);
        if (!QZVDT_OnDT(&axis, target,
                        &pos)) { /* the first step outputs the target: start at rest */
            fclose(csv);
            return 1;
        }
        vel = k > 0 ? (pos - prevPos) / dt : 0.0;
        acc = k > 1 ? (vel - prevVel) / dt : 0.0;
        const double jerk = k > 2 ? (acc - prevAcc) / dt : 0.0;
        if (absd(vel) > peakVel) peakVel = absd(vel);
        if (absd(acc) > peakAcc) peakAcc = absd(acc);
        if (absd(jerk) > peakJerk) peakJerk = absd(jerk);
        if (pos > maxPos) maxPos = pos;
        if (k >= retargetAt && pos < minAfter) minAfter = pos;
        if (absd(target - pos) >= 1e-9 || k < retargetAt)
            settled = -1;
        else if (settled < 0)
            settled = k;
        fprintf(csv, "%.3f,%.17g,%.17g,%.17g,%.17g,%.17g,%g,%g,nan\n", k * dt, target, pos, vel,
                acc, jerk, vlim, accLmt);
        prevPos = pos;
        prevVel = vel;
        prevAcc = acc;
    }
    if (fclose(csv) != 0) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }

    printf(
        "single axis, %.0f ms cycle: 0 -> 120 deg at %.0f deg/s and %.0f deg/s^2; limit 50 deg/s "
        "at "
        "%.1f s; target 40 deg at %.1f s\n",
        cycleMs, velLmt, accLmt, lowerAt * dt, retargetAt * dt);
    printf("turned back at %.4f deg, settled on 40 deg at %.3f s (cycle %d), lowest %.12g deg\n",
           maxPos, settled * dt, settled, minAfter);
    printf("peak speed %.2f deg/s, peak acceleration %.2f deg/s^2, peak jerk %.0f deg/s^3\n",
           peakVel, peakAcc, peakJerk);
    printf("profile in %s\n", csvPath);
    return 0;
}
