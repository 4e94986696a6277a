/*
 * Example 02: seven joints with the N-axis smoothed tracker.
 *
 * Seven joints of an arm are stepped together at a 4 ms control cycle, each by its own tracker
 * with its own velocity, acceleration and jerk limit (degrees, seconds). Each joint's output is
 * the moving average of its tracker over the time its acceleration limit takes to build up at
 * its jerk limit (joint 1: 300 / 3000 s = 25 cycles), so the acceleration ramps instead of
 * jumping. At 0.8 s every velocity limit is lowered to half; at 1.6 s the target pose changes.
 *
 * The joints are not synchronised: each arrives when its own limits let it, so the path between
 * two poses is not a straight line in joint space. Joint 1 runs the same motion as example 01.
 *
 * Usage: 02_seven_joints [CSV]   (default: 02_seven_joints.csv in the build directory)
 * The CSV has one row per cycle: t, then per joint i target<i>, pos<i>, vel<i>, acc<i>, jerk<i>,
 * vlim<i>, alim<i>, jlim<i>; vel, acc and jerk are the differences of the smoothed position.
 */
#include <stdio.h>

#include "QZDT.h"

#ifndef QZ_EXAMPLE_DIR
#define QZ_EXAMPLE_DIR "."
#endif

#define JOINTS 7

static const double kVel[JOINTS] = {100, 100, 110, 130, 150, 180, 180};         /* deg/s */
static const double kAcc[JOINTS] = {300, 300, 350, 450, 500, 600, 600};         /* deg/s^2 */
static const double kJerk[JOINTS] = {3000, 3000, 3500, 5000, 6000, 8000, 8000}; /* deg/s^3 */
static const double kStart[JOINTS] = {0, -30, 0, 60, 0, 45, 0};
static const double kTarget1[JOINTS] = {120, 20, -45, 100, 60, -30, 120};
static const double kTarget2[JOINTS] = {40, 10, 30, 80, -30, 10, 60};

static double absd(double x) { return x < 0.0 ? -x : x; }

int main(int argc, char **argv) {
    const char *csvPath = argc > 1 ? argv[1] : QZ_EXAMPLE_DIR "/02_seven_joints.csv";
    const double cycleMs = 4.0, dt = 0.004;
    const int cycles = 1000, lowerAt = 200, retargetAt = 400;
    static QZNSyncDTSState arm; /* large record kept off the stack; static storage starts zeroed */

    if (!QZNSyncDTS_OnInit(&arm, JOINTS, cycleMs, kVel, kAcc, kJerk)) return 1;

    FILE *csv = fopen(csvPath, "w");
    if (!csv) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }
    fprintf(csv, "t");
    for (int i = 1; i <= JOINTS; ++i)
        fprintf(csv, ",target%d,pos%d,vel%d,acc%d,jerk%d,vlim%d,alim%d,jlim%d", i, i, i, i, i, i, i,
                i);
    fprintf(csv, "\n");

    double pos[JOINTS], vel[JOINTS], acc[JOINTS], prevAcc[JOINTS] = {0}, vlim[JOINTS], half[JOINTS];
    double peakV[JOINTS] = {0}, peakA[JOINTS] = {0}, peakJ[JOINTS] = {0};
    int settled[JOINTS];
    for (int i = 0; i < JOINTS; ++i) {
        vlim[i] = kVel[i];
        half[i] = 0.5 * kVel[i];
        settled[i] = -1;
    }
    const double *target = kStart;
    for (int k = 0; k <= cycles; ++k) {
        if (k == lowerAt) {
            QZNSyncDTS_OnSetRunTimeVel(&arm, half); /* faster joints ramp down first */
            for (int i = 0; i < JOINTS; ++i) vlim[i] = half[i];
        }
        target = k == 0 ? kStart : (k < retargetAt ? kTarget1 : kTarget2);
        /* One cycle: smoothed positions, and their first and second differences. The first step
         * outputs the targets themselves, with zero velocity and acceleration. */
        if (!QZNSyncDTS_OnDT2(&arm, target, pos, vel, acc)) return 1;

        fprintf(csv, "%.3f", k * dt);
        for (int i = 0; i < JOINTS; ++i) {
            const double jerk = k > 1 ? (acc[i] - prevAcc[i]) / dt : 0.0;
            prevAcc[i] = acc[i];
            if (absd(vel[i]) > peakV[i]) peakV[i] = absd(vel[i]);
            if (absd(acc[i]) > peakA[i]) peakA[i] = absd(acc[i]);
            if (absd(jerk) > peakJ[i]) peakJ[i] = absd(jerk);
            if (absd(target[i] - pos[i]) >= 1e-9 || k < retargetAt)
                settled[i] = -1;
            else if (settled[i] < 0)
                settled[i] = k;
            fprintf(csv, ",%.17g,%.17g,%.17g,%.17g,%.17g,%g,%g,%g", target[i], pos[i], vel[i],
                    acc[i], jerk, vlim[i], kAcc[i], kJerk[i]);
        }
        fprintf(csv, "\n");
    }
    if (fclose(csv) != 0) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }

    printf(
        "seven joints, smoothed tracker, %.0f ms cycle: velocity limits halved at %.1f s, new "
        "target "
        "at %.1f s\n",
        cycleMs, lowerAt * dt, retargetAt * dt);
    printf("joint span  v peak / limit   a peak / limit    j peak / limit   settled [s]\n");
    for (int i = 0; i < JOINTS; ++i) {
        printf("%5d %4d  %6.2f / %-6.0f  %6.2f / %-6.0f  %7.1f / %-6.0f  %6.3f\n", i + 1,
               arm.avgLen[i], peakV[i], kVel[i], peakA[i], kAcc[i], peakJ[i], kJerk[i],
               settled[i] * dt);
    }
    printf("profile in %s\n", csvPath);
    return 0;
}
