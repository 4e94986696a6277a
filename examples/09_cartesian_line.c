/*
 * Example 09: a straight Cartesian line through the N-axis tracker.
 *
 * The flange of the seven-joint arm of examples/arm7.h (its DH table, as a chain of the
 * kinematics module) moves 300 mm along a straight line while it turns by 30 degrees about the
 * base z axis, in 2 s with a smooth (quintic) time law, at a 1 ms cycle. Each cycle:
 *
 *  1. the path gives the flange's wanted position, orientation (slerp) and twist;
 *  2. the joint reference q moves by the damped least-squares solution (QZKin_DampedLeastSquares,
 *     undamped here, far from any singularity) for the wanted twist plus a correction of the pose
 *     error (position difference, and QZKin_OrientationError's rotation vector), with the
 *     Jacobian and the flange pose from QZKin_Jacobian;
 *  3. the N-axis tracker QZNSyncDTS (the joints' velocity, acceleration and jerk limits, in
 *     radians) receives the absolute joint reference where it will be one steady lag ahead
 *     (QZKin_TrackerLead, docs/streaming.md), and its output is what the drives would get.
 *
 * The example then measures the tracked motion: the flange's largest distance from the line and
 * its largest orientation error against the path's orientation at that point of the line, with
 * the lead and without it, and the cost of one cycle.
 *
 * Usage: 09_cartesian_line   (prints its results; writes nothing)
 */
#define _POSIX_C_SOURCE 199309L /* clock_gettime */
#include <math.h>
#include <stdio.h>
#include <time.h>

#include "QZDT.h"
#include "QZKinematics.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "arm7.h"

#define DEG 0.017453292519943295
#define CYCLE_MS 1.0
#define DT 0.001
#define MOVE_S 2.0   /* duration of the line */
#define SETTLE_S 0.3 /* cycles after it, at rest, while the joints settle */
#define LINE_MM 300.0
#define TURN_RAD (30.0 * DEG)
#define GAIN 50.0         /* pose correction of the joint reference (1/s) */
#define PATH_BOUND_MM 0.1 /* the bound docs/streaming.md states for this feeding */

/* Per-joint limits of a typical 7-joint arm (rad/s, rad/s^2, rad/s^3). */
static const double kVel[7] = {2.175, 2.175, 2.175, 2.175, 2.61, 2.61, 2.61};
static const double kAcc[7] = {15.0, 7.5, 10.0, 12.5, 15.0, 20.0, 20.0};
static const double kJerk[7] = {7500.0, 3750.0, 5000.0, 6250.0, 7500.0, 10000.0, 10000.0};

typedef struct {
    double p0[3], dir[3];      /* start point and unit direction of the line */
    double qStart[4], qEnd[4]; /* flange orientations at its ends */
} Path;

/* Path at time t: position p, orientation q and twist (mm/s, rad/s) of the quintic time law. */
static void path_at(Path *path, double t, double p[3], double q[4], double twist[6]) {
    const double tau = t < 0.0 ? 0.0 : t > MOVE_S ? 1.0 : t / MOVE_S;
    const double s = tau * tau * tau * (10.0 + tau * (-15.0 + 6.0 * tau));
    const double ds = tau >= 1.0 ? 0.0 : 30.0 * tau * tau * (1.0 - tau) * (1.0 - tau) / MOVE_S;
    for (int i = 0; i < 3; ++i) p[i] = path->p0[i] + LINE_MM * s * path->dir[i];
    QZ_QuatSlerp(path->qStart, path->qEnd, s, q);
    for (int i = 0; i < 3; ++i) twist[i] = LINE_MM * ds * path->dir[i];
    twist[3] = twist[4] = 0.0;
    twist[5] = TURN_RAD * ds; /* the turn is about the base z axis */
}

typedef struct {
    double pathMm, turnDeg; /* largest distance from the line, largest orientation error on it */
    double cycleUs;         /* mean cost of steps 1 to 3 per cycle */
    int ok;
} Result;

static Result run(int lead) {
    const double q0Deg[7] = {20, -30, 10, -110, 15, 95, 40};
    double q[7], j[42], t[16];
    for (int i = 0; i < 7; ++i) q[i] = DEG * q0Deg[i];
    QZKinChain arm;
    arm7_chain(1.0, &arm);

    Path path;
    QZKin_Forward(&arm, q, t);
    const double turn[4] = {0.0, 0.0, sin(0.5 * TURN_RAD), cos(0.5 * TURN_RAD)};
    QZ_Matrix2Quaternion4(t, path.qStart);
    QZ_QuatMult(turn, path.qStart, path.qEnd); /* turned about the base z axis */
    path.p0[0] = t[3];
    path.p0[1] = t[7];
    path.p0[2] = t[11];
    path.dir[0] = 0.0;
    path.dir[1] = 0.8;
    path.dir[2] = -0.6;

    QZNSyncDTSState tracker = {0};
    QZNSyncDTS_OnInit(&tracker, 7, CYCLE_MS, kVel, kAcc, kJerk);

    Result res = {0.0, 0.0, 0.0, 1};
    double cost = 0.0;
    const int cycles = (int)((MOVE_S + SETTLE_S) / DT + 0.5);
    double qdotPrev[7] = {0};
    for (int k = 0; k <= cycles; ++k) {
        struct timespec t0, t1;
        clock_gettime(CLOCK_MONOTONIC, &t0);

        /* 1. The path. */
        double pWant[3], qWant[4], twist[6], qHave[4], rot[3], v[6], qdot[7], qddot[7], ahead[7],
            target[7], out[7];
        path_at(&path, k * DT, pWant, qWant, twist);

        /* 2. The joint reference: twist plus pose correction through the damped solver. */
        QZKin_Jacobian(&arm, q, j, t);
        QZ_Matrix2Quaternion4(t, qHave);
        QZKin_OrientationError(qWant, qHave, rot);
        for (int i = 0; i < 3; ++i) {
            v[i] = twist[i] + GAIN * (pWant[i] - t[4 * i + 3]);
            v[i + 3] = twist[i + 3] + GAIN * rot[i];
        }
        if (QZKin_DampedLeastSquares(&arm, j, v, qdot, NULL) != QZ_KIN_OK) {
            res.ok = 0;
            break;
        }
        for (int i = 0; i < 7; ++i) {
            q[i] += qdot[i] * DT;
            qddot[i] = (qdot[i] - qdotPrev[i]) / DT;
            qdotPrev[i] = qdot[i];
        }

        /* 3. The tracker, fed the absolute reference where it will be one lag L ahead:
         *    q + qdot L + qddot L^2 / 2, with L each joint's steady lag at its speed. */
        QZKin_TrackerLead(&tracker, qdot, qddot, ahead, NULL);
        for (int i = 0; i < 7; ++i) target[i] = lead ? q[i] + ahead[i] : q[i];
        QZNSyncDTS_OnDT(&tracker, target, out);

        clock_gettime(CLOCK_MONOTONIC, &t1);
        cost += (double)(t1.tv_sec - t0.tv_sec) * 1e6 + (double)(t1.tv_nsec - t0.tv_nsec) * 1e-3;

        /* Measure the tracked flange: distance from the line and orientation error there. */
        double tOut[16], qOut[4], d[3], qOn[4], pOn[3], tw[6];
        QZKin_Forward(&arm, out, tOut);
        for (int i = 0; i < 3; ++i) d[i] = tOut[4 * i + 3] - path.p0[i];
        double along = QZ_VectDot(d, path.dir, 3), off = 0.0;
        for (int i = 0; i < 3; ++i)
            off += (d[i] - along * path.dir[i]) * (d[i] - along * path.dir[i]);
        if (sqrt(off) > res.pathMm) res.pathMm = sqrt(off);
        /* The path's orientation where the flange is along the line: the time law inverted. */
        along = along < 0.0 ? 0.0 : along > LINE_MM ? LINE_MM : along;
        double lo = 0.0, hi = MOVE_S;
        for (int it = 0; it < 60; ++it) {
            const double mid = 0.5 * (lo + hi);
            path_at(&path, mid, pOn, qOn, tw);
            double a2[3];
            for (int i = 0; i < 3; ++i) a2[i] = pOn[i] - path.p0[i];
            if (QZ_VectDot(a2, path.dir, 3) < along)
                lo = mid;
            else
                hi = mid;
        }
        path_at(&path, 0.5 * (lo + hi), pOn, qOn, tw);
        QZ_Matrix2Quaternion4(tOut, qOut);
        QZKin_OrientationError(qOn, qOut, rot);
        const double turnDeg = QZ_VectLength(rot, 3) / DEG;
        if (turnDeg > res.turnDeg) res.turnDeg = turnDeg;
    }
    res.cycleUs = cost / (cycles + 1);
    return res;
}

int main(void) {
    const Result led = run(1), plain = run(0);
    if (!led.ok || !plain.ok) {
        printf("singular configuration on the way\n");
        return 1;
    }
    printf(
        "flange: 300 mm line with a 30 deg turn in 2 s, 1 ms cycle, N-axis tracker on 7 joints\n");
    printf("targets led by the lag: largest path error %.3f mm, orientation error %.4f deg\n",
           led.pathMm, led.turnDeg);
    printf("absolute targets, no lead: largest path error %.3f mm, orientation error %.4f deg\n",
           plain.pathMm, plain.turnDeg);
    printf("path error within %.1f mm with the lead: %s\n", PATH_BOUND_MM,
           led.pathMm <= PATH_BOUND_MM ? "yes" : "no");
    printf(
        "cost per cycle (kinematics, Jacobian, orientation error, damped solver, lead, tracker): "
        "%.1f "
        "us\n",
        led.cycleUs);
    return led.pathMm <= PATH_BOUND_MM ? 0 : 1;
}
