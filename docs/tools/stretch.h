/*
 * The stretched arm of examples/arm7.h and the measures of its 6x7 pseudo-inverse near it, shared
 * by the programs of docs/singularities.md (singularities.c and singularities_table.c).
 */
#ifndef QZ_DOCS_STRETCH_H
#define QZ_DOCS_STRETCH_H

#include <math.h>

#include "QZMatrix.h"
#include "arm7.h"

#define DEG 0.017453292519943295
#define REACH 1000.0 /* characteristic length (mm) that makes the linear rows unitless */

/* Distance (mm) from the shoulder (joint 2's origin) to the wrist (joint 5's origin, where the
 * axes of joints 5 and 6 meet): only joint 4 changes it. */
static inline double shoulder_wrist(const double q[7]) {
    double frames[7][16], t[16];
    arm7_frames(q, 1.0, frames, t);
    const double d[3] = {frames[4][3] - frames[1][3], frames[4][7] - frames[1][7],
                         frames[4][11] - frames[1][11]};
    return sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
}

/* Speed of the flange's point at the wrist along the shoulder-wrist line for a unit speed of
 * joint 7, with joint 5 at q5. */
static inline double joint7_radial(double q[7], double q5) {
    double frames[7][16], t[16];
    const double keep = q[4];
    q[4] = q5;
    arm7_frames(q, 1.0, frames, t);
    q[4] = keep;
    double u[3], r[3], v[3];
    for (int k = 0; k < 3; ++k) {
        u[k] = frames[4][4 * k + 3] - frames[1][4 * k + 3];
        r[k] = frames[4][4 * k + 3] - frames[6][4 * k + 3];
    }
    const double z[3] = {frames[6][2], frames[6][6], frames[6][10]};
    QZ_VectCross(z, r, v);
    return QZ_VectDot(v, u, 3);
}

static inline double largest(const double *m, int n) {
    double big = 0.0;
    for (int i = 0; i < n; ++i)
        if (fabs(m[i]) > big) big = fabs(m[i]);
    return big;
}

/* Jn: J with its linear rows divided by REACH (mm); g = Jn Jn^T (6x6). */
static inline void normalised_gram(const double j[42], double jn[42], double g[36]) {
    double jt[42];
    for (int i = 0; i < 42; ++i) jn[i] = i < 21 ? j[i] / REACH : j[i];
    QZ_Mat67Transpose(jn, jt);
    QZ_MatrixMult6776(jn, jt, g);
}

/* Smallest singular value of Jn: the square root of the least eigenvalue of Jn Jn^T. */
static inline double sigma_min(const double g[36]) {
    double a[36], v[36];
    for (int i = 0; i < 36; ++i) a[i] = g[i];
    if (!eig(6, a, v, 1e-15)) return NAN;
    double least = a[0];
    for (int k = 1; k < 6; ++k)
        if (a[7 * k] < least) least = a[7 * k];
    return sqrt(least > 0.0 ? least : 0.0);
}

/* det(Jn Jn^T) through QZ_MatrixDeterminant, which reads 8x8 storage. */
static inline double gram_det(const double g[36]) {
    double g8[64] = {0};
    for (int r = 0; r < 6; ++r)
        for (int c = 0; c < 6; ++c) g8[8 * r + c] = g[6 * r + c];
    return QZ_MatrixDeterminant(g8, 6);
}

/* Damped pseudo-inverse in mm units, p = J^T (J J^T + lambda^2 I)^-1 formed on the normalised
 * Jacobian and scaled back. lambda^2 = (1 - (s/eps)^2) lambdaMax^2 below eps, else 0. */
static inline double damped_largest(const double j[42], double s, double eps, double lambdaMax) {
    double jn[42], g[36], gi[36], jt[42], p[42];
    normalised_gram(j, jn, g);
    const double l2 = s < eps ? (1.0 - (s / eps) * (s / eps)) * lambdaMax * lambdaMax : 0.0;
    for (int k = 0; k < 6; ++k) g[7 * k] += l2;
    if (!QZ_MatrixInv6(g, gi)) return NAN;
    QZ_Mat67Transpose(jn, jt);
    for (int r = 0; r < 7; ++r)
        for (int c = 0; c < 6; ++c) {
            double sum = 0.0;
            for (int k = 0; k < 6; ++k) sum += jt[6 * r + k] * gi[6 * k + c];
            p[6 * r + c] = c < 3 ? sum / REACH : sum; /* linear columns back to rad per mm */
        }
    return largest(p, 42);
}

/* Puts q into the stretched, singular configuration: joint 4 at the stretch (returned, rad) and
 * joint 5 where joint 7 can no longer move the flange along the shoulder-wrist line. */
static inline double stretch_pose(double q[7]) {
    /* Stretched: the shoulder (joint 2's origin), the elbow (joint 4's) and the wrist (joint 5's)
     * in one line, where the two offsets of 82.5 mm tilt the upper arm (316 mm) and the forearm
     * (384 mm) by equal and opposite amounts. */
    const double stretch = -(atan2(82.5, 316.0) + atan2(82.5, 384.0));
    /* Stretched, the wrist point cannot move along the shoulder-wrist line through joints 1 to 6;
     * joint 7, offset from the wrist along joint 6's axis, still moves the flange that way unless
     * joint 6's axis is square to that line. The joint 5 angle that brings it there makes the arm
     * singular. */
    q[3] = stretch;
    double a5 = 0.0, fa5 = joint7_radial(q, a5);
    for (int k = 1; k <= 360; ++k) {
        const double b5 = k * DEG, fb5 = joint7_radial(q, b5);
        if ((fa5 < 0.0) != (fb5 < 0.0)) {
            double l5 = a5, h5 = b5;
            for (int it = 0; it < 200; ++it) {
                const double m5 = 0.5 * (l5 + h5);
                if ((joint7_radial(q, m5) < 0.0) == (fa5 < 0.0))
                    l5 = m5;
                else
                    h5 = m5;
            }
            q[4] = 0.5 * (l5 + h5);
            break;
        }
        a5 = b5;
        fa5 = fb5;
    }
    return stretch;
}

#endif
