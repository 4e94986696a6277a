/*
 * Example 03: the multi-stage tracker, in its N-axis smoothed form, on one axis.
 *
 * The same motion as examples 01 and 02 (joint 1): 0 -> 120 degrees at 100 deg/s and
 * 300 deg/s^2, jerk 3000 deg/s^3, a 4 ms cycle, the velocity limit halved at 0.8 s and the
 * target changed to 40 degrees at 1.6 s. In mode 1 the axis runs a cascade of four trackers: the
 * main stage at 69/90 of the velocity limit and three correction stages at 1/6, 1/18 and 1/90 of
 * it, each taking up what the stages before it leave; their velocity limits add up to the
 * axis's limit. The output is averaged over 5 cycles.
 *
 * The stages' accelerations add up too (A + 2A + 2A + A at initialisation), and a run-time limit
 * change gives the correction stages 100 times the acceleration limit: the short dip in velocity
 * right after 0.8 s is the correction stages ramping down at 30000 deg/s^2.
 *
 * Usage: 03_multistage [CSV]   (default: 03_multistage.csv in the build directory)
 * CSV columns as in example 01.
 */
#include <stdio.h>

#include "QZDT.h"

#ifndef QZ_EXAMPLE_DIR
#define QZ_EXAMPLE_DIR "."
#endif

static double absd(double x) { return x < 0.0 ? -x : x; }

int main(int argc, char **argv) {
    const char *csvPath = argc > 1 ? argv[1] : QZ_EXAMPLE_DIR "/03_multistage.csv";
    const double cycleMs = 4.0, dt = 0.004;
    const int cycles = 1000, lowerAt = 200, retargetAt = 400, mode = 1;
    double velLmt[1] = {100.0}, accLmt[1] = {300.0}, jerkLmt[1] = {3000.0}, half[1] = {50.0};
    static QZNSyncDTSMState axis; /* static storage starts zeroed */

    /* Jerk limits are clamped in place to [1000, 1e7]; 3000 stays. */
    if (!QZNSyncDTS_OnInitM(&axis, 1, cycleMs, velLmt, accLmt, jerkLmt, mode)) return 1;

    FILE *csv = fopen(csvPath, "w");
    if (!csv) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }
    fprintf(csv, "t,target1,pos1,vel1,acc1,jerk1,vlim1,alim1,jlim1\n");

    double target = 0.0, pos = 0.0, vel = 0.0, acc = 0.0, prevAcc = 0.0, lastTarget = 0.0,
           vlim = velLmt[0];
    double peakVel = 0.0, peakAcc = 0.0, peakJerk = 0.0, peakAccBefore = 0.0, lowest = 1e300;
    int settled = -1;
    for (int k = 0; k <= cycles; ++k) {
        if (k == lowerAt) {
            QZNSyncDTS_OnSetRunTimeLmtM(&axis, half, accLmt);
            vlim = half[0];
        }
        target = k == 0 ? 0.0 : (k < retargetAt ? 120.0 : 40.0);
        if (!QZNSyncDTS_OnDTM(&axis, &target, &pos)) return 1;
        /* The smoothed velocity and acceleration are kept in the record; read them back. */
        if (!QZNSyncDTS_OnGetCurPVAM(&axis, &lastTarget, &pos, &vel, &acc)) return 1;
        const double jerk = k > 1 ? (acc - prevAcc) / dt : 0.0;
        prevAcc = acc;
        if (absd(vel) > peakVel) peakVel = absd(vel);
        if (absd(acc) > peakAcc) peakAcc = absd(acc);
        if (k < lowerAt && absd(acc) > peakAccBefore) peakAccBefore = absd(acc);
        if (absd(jerk) > peakJerk) peakJerk = absd(jerk);
        if (k >= retargetAt && pos < lowest) lowest = pos;
        if (absd(target - pos) >= 1e-9 || k < retargetAt)
            settled = -1;
        else if (settled < 0)
            settled = k;
        fprintf(csv, "%.3f,%.17g,%.17g,%.17g,%.17g,%.17g,%g,%g,%g\n", k * dt, target, pos, vel, acc,
                jerk, vlim, accLmt[0], jerkLmt[0]);
    }
    if (fclose(csv) != 0) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }

    const QZVDTMState *m = &axis.axis[0];
    printf(
        "multi-stage tracker, mode %d, span %d cycles: stage velocity limits %.2f %.2f %.2f %.2f "
        "deg/s, correction band %.1f deg\n",
        mode, axis.avgLen[0], m->stage[0].velLmt, m->stage[1].velLmt, m->stage[2].velLmt,
        m->stage[3].velLmt, m->corrScale);
    printf("settled on 40 deg at %.3f s (cycle %d), lowest %.6f deg, target jump seen %d\n",
           settled * dt, settled, lowest, m->targetJump);
    printf(
        "peak speed %.2f deg/s; peak acceleration %.1f deg/s^2 before the limit change, %.1f "
        "overall; "
        "peak jerk %.0f deg/s^3\n",
        peakVel, peakAccBefore, peakAcc, peakJerk);
    printf("profile in %s\n", csvPath);
    return 0;
}
