/*
 * arm7.h: the seven-joint arm of the examples: its modified Denavit-Hartenberg table and joint
 * limits, as a chain of the kinematics module (arm7_chain, for examples 09 to 11, the benchmarks
 * and the kinematics test), and its forward kinematics and geometric Jacobian built by hand from
 * the library's DH link transforms (for examples 06 and 07, the measuring programs of docs/,
 * which set the older route beside the module, and the test that checks them against KDL).
 *
 * The arm is an anthropomorphic seven-joint arm with small elbow and wrist offsets, lengths in
 * millimetres. Pass a length scale to work in another unit: 1.0 for millimetres, 0.001 for
 * metres.
 *
 * The Jacobian has the layout the library's Jacobian transforms expect: six rows, one column per
 * joint, row-major (element [i][j] at 7i + j). Rows 0-2 are the linear velocity of the flange
 * origin and rows 3-5 the angular velocity, both in base-frame axes, for a unit joint speed
 * (rad/s): column i is (z_i x (p_flange - p_i), z_i), with z_i and p_i the axis and origin of
 * joint i's frame.
 */
#ifndef QZ_EXAMPLE_ARM7_H
#define QZ_EXAMPLE_ARM7_H

#include "QZKinematics.h"
#include "QZMatrix.h"

#define ARM7_JOINTS 7

/* One link: twist alpha (rad) and length a (mm) along the previous x axis, offset d (mm) along
 * the joint's own z axis; QZ_DH2Matrix adds the joint angle theta. */
typedef struct {
    double alpha, a, d;
} Arm7Link;

static const Arm7Link kArm7Links[ARM7_JOINTS] = {
    {0.0, 0.0, 333.0},
    {-1.5707963267948966, 0.0, 0.0},
    {1.5707963267948966, 0.0, 316.0},
    {1.5707963267948966, 82.5, 0.0},
    {-1.5707963267948966, -82.5, 384.0},
    {1.5707963267948966, 0.0, 0.0},
    {1.5707963267948966, 88.0, 0.0},
};
/* The flange: 107 mm beyond joint 7 along its axis. */
static const Arm7Link kArm7Flange = {0.0, 0.0, 107.0};

/* Joint position limits (rad). */
static const double kArm7Lower[ARM7_JOINTS] = {-2.8973, -1.7628, -2.8973, -3.0718,
                                               -2.8973, -0.0175, -2.8973};
static const double kArm7Upper[ARM7_JOINTS] = {2.8973, 1.7628, 2.8973, -0.0698,
                                               2.8973, 3.7525, 2.8973};

/* The arm as a chain of the kinematics module, lengths times scale (1.0: mm), the flange as its
 * tool, with its joint limits. Returns QZKin_ChainInit's result. */
static inline int32_t arm7_chain(double scale, QZKinChain *c) {
    double dh[4 * ARM7_JOINTS], tool[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (int i = 0; i < ARM7_JOINTS; ++i) {
        dh[4 * i] = kArm7Links[i].alpha;
        dh[4 * i + 1] = scale * kArm7Links[i].a;
        dh[4 * i + 2] = scale * kArm7Links[i].d;
        dh[4 * i + 3] = 0.0;
    }
    tool[11] = scale * kArm7Flange.d;
    return QZKin_ChainInit(c, ARM7_JOINTS, dh, tool, kArm7Lower, kArm7Upper);
}

/* Frames of the seven joints (frames[i]: joint i+1's axis is its z axis) and of the flange, in
 * the base frame, for joint angles q (rad) and a length scale (1.0: mm). */
static inline void arm7_frames(const double q[ARM7_JOINTS], double scale,
                               double frames[ARM7_JOINTS][16], double flange[16]) {
    double link[16];
    const Arm7Link *l = &kArm7Links[0];
    QZ_DH2Matrix(l->alpha, scale * l->a, scale * l->d, q[0], frames[0]);
    for (int i = 1; i < ARM7_JOINTS; ++i) {
        l = &kArm7Links[i];
        QZ_DH2Matrix(l->alpha, scale * l->a, scale * l->d, q[i], link);
        QZ_MMM44(frames[i - 1], link, frames[i]); /* a product never writes over an input */
    }
    QZ_DH2Matrix(kArm7Flange.alpha, scale * kArm7Flange.a, scale * kArm7Flange.d, 0.0, link);
    QZ_MMM44(frames[ARM7_JOINTS - 1], link, flange);
}

/* Flange transform t (16) for joint angles q (rad). */
static inline void arm7_fk(const double q[ARM7_JOINTS], double scale, double t[16]) {
    double frames[ARM7_JOINTS][16];
    arm7_frames(q, scale, frames, t);
}

/* Geometric Jacobian j (6x7, 42) at the flange origin in base axes, and the flange transform t. */
static inline void arm7_jacobian(const double q[ARM7_JOINTS], double scale, double j[42],
                                 double t[16]) {
    double frames[ARM7_JOINTS][16];
    arm7_frames(q, scale, frames, t);
    const double pFlange[3] = {t[3], t[7], t[11]};
    for (int i = 0; i < ARM7_JOINTS; ++i) {
        const double *f = frames[i];
        const double z[3] = {f[2], f[6], f[10]}, p[3] = {f[3], f[7], f[11]};
        double r[3], v[3];
        QZ_VectSub(pFlange, 3, p, r);
        QZ_VectCross(z, r, v);
        for (int k = 0; k < 3; ++k) {
            j[k * ARM7_JOINTS + i] = v[k];
            j[(k + 3) * ARM7_JOINTS + i] = z[k];
        }
    }
}

#endif /* QZ_EXAMPLE_ARM7_H */
