/*
 * Seven-joint control cycle of the demo: the arm moves from a start pose towards a target pose,
 * one tracker step per 4 ms cycle, with per-joint velocity, acceleration and jerk limits. At
 * cycle 250 the velocity limits are lowered to 60% (joints faster than that ramp down first), and
 * at cycle 600 the target pose changes. The joints are tracked in degrees.
 *
 *   --multistage  step the arm with the N-axis multi-stage tracker (cascade mode 1) instead of
 *                 the N-axis smoothed tracker
 *   --csv PATH    write the profile: time, then position, velocity and acceleration per joint
 */
#include <stdio.h>
#include <string.h>

#include "QZDT.h"
#include "demo.h"

#define JOINTS 7

static const double kCycleMs = 4.0, kDt = 0.004;
static const int kCycles = 2000, kLimitAt = 250, kRetargetAt = 600;
static const double kSettleTol = 1e-6; /* degrees */
static const double kDegToRad = 0.017453292519943295;

static const double kVel[JOINTS] = {98, 98, 100, 130, 140, 180, 180};           /* deg/s */
static const double kAcc[JOINTS] = {300, 300, 350, 450, 500, 600, 600};         /* deg/s^2 */
static const double kJerk[JOINTS] = {3000, 3000, 3500, 5000, 6000, 8000, 8000}; /* deg/s^3 */
static const double kStart[JOINTS] = {0, -30, 0, 60, 0, 45, 0};
static const double kTarget1[JOINTS] = {90, 20, -45, 100, 60, -30, 120};
static const double kTarget2[JOINTS] = {45, 10, 30, 80, -30, 10, 60};

static double absd(double x) { return x < 0.0 ? -x : x; }

/* The two trackers behind one step: targets in, smoothed position, velocity, acceleration out. */
typedef struct Arm {
    int multistage;
    QZNSyncDTSState plain;
    QZNSyncDTSMState multi;
} Arm;

static int arm_init(Arm *arm) {
    double jerk[JOINTS];
    memcpy(jerk, kJerk, sizeof jerk);
    if (arm->multistage)
        return QZNSyncDTS_OnInitM(&arm->multi, JOINTS, kCycleMs, kVel, kAcc, jerk, 1);
    return QZNSyncDTS_OnInit(&arm->plain, JOINTS, kCycleMs, kVel, kAcc, jerk);
}

static int arm_step(Arm *arm, const double *target, double *pos, double *vel, double *acc) {
    if (!arm->multistage) return QZNSyncDTS_OnDT2(&arm->plain, target, pos, vel, acc);
    double t[JOINTS];
    if (!QZNSyncDTS_OnDTM(&arm->multi, target, pos)) return 0;
    return QZNSyncDTS_OnGetCurPVAM(&arm->multi, t, pos, vel, acc);
}

static int arm_set_limits(Arm *arm, const double *vel) {
    if (arm->multistage) return QZNSyncDTS_OnSetRunTimeLmtM(&arm->multi, vel, kAcc);
    return QZNSyncDTS_OnSetRunTimeLmt(&arm->plain, vel, kAcc);
}

static void print_pose(const char *label, const double *qDeg) {
    double q[JOINTS], p[6];
    for (int i = 0; i < JOINTS; ++i) q[i] = kDegToRad * qDeg[i];
    demo_flange_pose(q, p);
    printf("flange %s: %9.2f %9.2f %9.2f [mm] %8.2f %8.2f %8.2f [deg]\n", label, p[0], p[1], p[2],
           p[3], p[4], p[5]);
}

int demo_arm(int argc, char **argv) {
    static Arm arm; /* large record: kept off the stack, zeroed as every new record must be */
    const char *csvPath = NULL;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--multistage") == 0) {
            arm.multistage = 1;
        } else if (strcmp(argv[i], "--csv") == 0 && i + 1 < argc) {
            csvPath = argv[++i];
        } else {
            fprintf(stderr, "usage: %s [--multistage] [--csv PATH]\n", argv[0]);
            return 2;
        }
    }
    FILE *csv = NULL;
    if (csvPath) {
        csv = fopen(csvPath, "w");
        if (!csv) {
            fprintf(stderr, "cannot write %s\n", csvPath);
            return 1;
        }
        fprintf(csv, "t");
        for (int i = 1; i <= JOINTS; ++i) fprintf(csv, ",q%d,v%d,a%d", i, i, i);
        fprintf(csv, "\n");
    }

    double pos[JOINTS], vel[JOINTS], acc[JOINTS], prevAcc[JOINTS] = {0};
    double peakV[JOINTS] = {0}, peakA[JOINTS] = {0}, peakJ[JOINTS] = {0}, lowered[JOINTS];
    int settled[JOINTS];
    const double *target = kStart;
    if (!arm_init(&arm) || !arm_step(&arm, target, pos, vel, acc)) { /* first step: at rest */
        if (csv) fclose(csv);
        return 1;
    }
    for (int i = 0; i < JOINTS; ++i) {
        settled[i] = -1;
        lowered[i] = 0.6 * kVel[i];
    }
    for (int k = 0; k <= kCycles; ++k) {
        if (k > 0) {
            if (k == kLimitAt) arm_set_limits(&arm, lowered);
            target = k < kRetargetAt ? kTarget1 : kTarget2;
            arm_step(&arm, target, pos, vel, acc);
        }
        for (int i = 0; i < JOINTS; ++i) {
            const double jerk = k > 1 ? (acc[i] - prevAcc[i]) / kDt : 0.0;
            if (absd(vel[i]) > peakV[i]) peakV[i] = absd(vel[i]);
            if (absd(acc[i]) > peakA[i]) peakA[i] = absd(acc[i]);
            if (absd(jerk) > peakJ[i]) peakJ[i] = absd(jerk);
            prevAcc[i] = acc[i];
            /* Settled: from this cycle on within tolerance of the final target. */
            if (absd(target[i] - pos[i]) >= kSettleTol || k < kRetargetAt) {
                settled[i] = -1;
            } else if (settled[i] < 0) {
                settled[i] = k;
            }
        }
        if (csv) {
            fprintf(csv, "%.3f", k * kDt);
            for (int i = 0; i < JOINTS; ++i)
                fprintf(csv, ",%.9g,%.9g,%.9g", pos[i], vel[i], acc[i]);
            fprintf(csv, "\n");
        }
    }
    if (csv && fclose(csv) != 0) {
        fprintf(stderr, "cannot write %s\n", csvPath);
        return 1;
    }

    printf(
        "seven-joint arm, %s tracker, %.0f ms cycle: v limits to 60%% at cycle %d, new target at "
        "cycle %d%s%s\n",
        arm.multistage ? "multi-stage" : "smoothed", kCycleMs, kLimitAt, kRetargetAt,
        csvPath ? ", profile in " : "", csvPath ? csvPath : "");
    printf(
        "joint  v peak/limit [deg/s]  a peak/limit [deg/s^2]  j peak/limit [deg/s^3]  settled  "
        "final error\n");
    for (int i = 0; i < JOINTS; ++i) {
        printf("%5d  %9.2f / %-9.0f  %10.2f / %-9.0f  %10.0f / %-9.0f  %7d  %11.2e\n", i + 1,
               peakV[i], kVel[i], peakA[i], kAcc[i], peakJ[i], kJerk[i], settled[i],
               target[i] - pos[i]);
    }
    print_pose("start", kStart);
    print_pose("end", pos);
    return 0;
}
