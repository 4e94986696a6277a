/*
 * Example 08: turning a tool from one orientation to another with slerp.
 *
 * Two flange orientations are given as XYZ angles in degrees (R = Rz(C) Ry(B) Rx(A)) and turned
 * into quaternions (x, y, z, w). Spherical linear interpolation between them turns the tool about
 * one fixed axis at a constant rate: the angle from the start grows linearly with t. Slerp takes
 * the shorter way, negating the end quaternion in the caller's array when the two point into
 * opposite half-spaces (q and -q are the same orientation). Over a move, the cached form keeps
 * the pair's angle in a QZSlerpFactorState, so each cycle costs no arc cosine.
 *
 * Usage: 08_slerp   (prints its results; writes nothing)
 */
#include <stdio.h>

#include "QZMatrix.h"
#include "QZQuaternions.h"

#define RAD2DEG 57.295779513082323

/* Quaternion of the XYZ angles abc (degrees). */
static void quat_of_abc(const double abc[3], double q[4]) {
    double r[9];
    QZ_ABC2Matrix3DEG(abc, r);
    QZ_Matrix2Quaternion3(r, q);
    QZ_QuaternionNorm(q);
}

/* XYZ angles (degrees) of the unit quaternion q; residues below 1e-9 degree print as 0. */
static void abc_of_quat(const double q[4], double abc[3]) {
    double r[9];
    QZ_Quaternion2Matrix3(q, r);
    QZ_Matrix2XYZ(r, abc);
    for (int k = 0; k < 3; ++k) {
        abc[k] *= RAD2DEG;
        if (abc[k] < 1e-9 && abc[k] > -1e-9) abc[k] = 0.0;
    }
}

int main(void) {
    const double startAbc[3] = {180.0, 0.0, 0.0}, endAbc[3] = {-110.0, 15.0, 30.0};
    double q1[4], q2[4], q[4], abc[3];
    quat_of_abc(startAbc, q1);
    quat_of_abc(endAbc, q2);
    const double dot = q1[0] * q2[0] + q1[1] * q2[1] + q1[2] * q2[2] + q1[3] * q2[3];
    const double total = QZ_QuaternionAngleDeg(q1, q2);
    printf("start q = (%.6f, %.6f, %.6f, %.6f), end q = (%.6f, %.6f, %.6f, %.6f), dot %.6f\n",
           q1[0], q1[1], q1[2], q1[3], q2[0], q2[1], q2[2], q2[3], dot);
    printf("turn from start to end: %.4f deg\n", total);

    /* A 1 s move at a 4 ms cycle: 250 steps, the pair's angle worked out on the first. */
    QZSlerpFactorState cache = {0}; /* initialized = 0: the next call takes in a new pair */
    const int steps = 250;
    double worst = 0.0;
    printf("     t      A        B        C      from start [deg]\n");
    for (int k = 0; k <= steps; ++k) {
        const double t = (double)k / steps;
        QZ_QuatSlerpFactor(q1, q2, t, q, &cache); /* may negate q2 in place on the first call */
        const double angle = k == 0 ? 0.0 : QZ_QuaternionAngleDeg(q1, q);
        const double off = angle - t * total < 0.0 ? t * total - angle : angle - t * total;
        if (k > 0 && off > worst) worst = off;
        if (k % 50 == 0) {
            abc_of_quat(q, abc);
            printf("  %4.2f %8.3f %8.3f %8.3f   %8.4f\n", t, abc[0], abc[1], abc[2], angle);
        }
    }
    printf("end quaternion after the first step: (%.6f, %.6f, %.6f, %.6f)%s\n", q2[0], q2[1], q2[2],
           q2[3], dot < 0.0 ? ", negated for the shorter way" : "");
    printf("angle from start vs t * %.4f deg over the move: largest difference %.1e deg\n", total,
           worst);

    /* The longer way round passes the opposite side: halfway it is 180 deg from the shorter way's
     * halfway orientation. */
    double longWay[4], shortWay[4];
    QZ_QuatSlerpL(q1, q2, 0.5, longWay);
    QZ_QuatSlerp(q1, q2, 0.5, shortWay);
    printf("halfway, longer way vs shorter way: %.4f deg apart\n",
           QZ_QuaternionAngleDeg(longWay, shortWay));
    return 0;
}
