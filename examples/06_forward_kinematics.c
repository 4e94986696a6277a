/*
 * Example 06: frames and Denavit-Hartenberg forward kinematics of a seven-joint arm.
 *
 * Each joint contributes one modified Denavit-Hartenberg link transform
 * T = RotX(alpha) TransX(a) RotZ(theta) TransZ(d); the product of the seven, and of a fixed flange
 * offset, from the base outwards is the flange frame in the base frame. The example prints it as
 * a 4x4 transform, as an XYZABC pose and as a PosQuat pose, takes the pose back to a transform,
 * and expresses a point given in the base frame in the flange frame with the rigid inverse.
 *
 * Usage: 06_forward_kinematics   (prints its results; writes nothing)
 */
#include <stdio.h>

#include "QZMatrix.h"
#include "QZQuaternions.h"

#define JOINTS 7
#define HALF_PI 1.5707963267948966
#define DEG 0.017453292519943295

/* One link: twist alpha (rad) and length a (mm) along the previous x axis, offset d (mm) along
 * the joint's z axis. */
typedef struct {
    double alpha, a, d;
} Link;

/* An anthropomorphic arm: shoulder (joints 1-3), elbow (4), wrist (5-7), with small elbow and
 * wrist offsets, then a flange 107 mm beyond the last joint. Lengths in millimetres. */
static const Link kArm[JOINTS] = {
    {0.0, 0.0, 333.0},        {-HALF_PI, 0.0, 0.0}, {HALF_PI, 0.0, 316.0}, {HALF_PI, 82.5, 0.0},
    {-HALF_PI, -82.5, 384.0}, {HALF_PI, 0.0, 0.0},  {HALF_PI, 88.0, 0.0},
};
static const Link kFlange = {0.0, 0.0, 107.0};

/* Flange transform t (16) for joint angles q (radians). */
static void flange_transform(const double q[JOINTS], double t[16]) {
    double link[16], next[16];
    QZ_DH2Matrix(kArm[0].alpha, kArm[0].a, kArm[0].d, q[0], t);
    for (int i = 1; i <= JOINTS; ++i) {
        const Link *l = i < JOINTS ? &kArm[i] : &kFlange;
        QZ_DH2Matrix(l->alpha, l->a, l->d, i < JOINTS ? q[i] : 0.0, link);
        QZ_MMM44(t, link, next); /* the product must not be written over an input */
        QZ_MatrixCpy4(next, t);
    }
}

static void print_matrix4(const double *t) {
    for (int i = 0; i < 4; ++i)
        printf("  %10.6f %10.6f %10.6f %10.3f\n", t[4 * i], t[4 * i + 1], t[4 * i + 2],
               t[4 * i + 3]);
}

int main(void) {
    const double qDeg[JOINTS] = {20, -30, 10, -110, 15, 95, 40};
    double q[JOINTS], t[16], pose[6], posQuat[7], back[16], inv[16];
    for (int i = 0; i < JOINTS; ++i) q[i] = DEG * qDeg[i];

    flange_transform(q, t);
    printf("joints [deg]: %g %g %g %g %g %g %g\n", qDeg[0], qDeg[1], qDeg[2], qDeg[3], qDeg[4],
           qDeg[5], qDeg[6]);
    printf("flange transform (row-major, position in the last column, mm):\n");
    print_matrix4(t);

    /* XYZ angles, R = Rz(C) Ry(B) Rx(A). The ARC-named extraction is the one that answers in
     * degrees; its DEG-named twin answers in radians. */
    QZ_Matrix2XYZABC4ARC_XYZ(t, pose);
    printf("flange XYZABC: %.3f %.3f %.3f mm, A %.3f B %.3f C %.3f deg\n", pose[0], pose[1],
           pose[2], pose[3], pose[4], pose[5]);

    /* Quaternion x, y, z, w with the scalar last. */
    QZ_Matrix2PosQuat(t, posQuat);
    printf("flange PosQuat: %.3f %.3f %.3f mm, q = (%.6f, %.6f, %.6f, %.6f)\n", posQuat[0],
           posQuat[1], posQuat[2], posQuat[3], posQuat[4], posQuat[5], posQuat[6]);

    /* Back from the pose (degrees) to a transform: the same frame to rounding. */
    QZ_XYZABC2Matrix4DEG(pose, back);
    double maxDiff = 0.0;
    for (int k = 0; k < 16; ++k) {
        const double d = back[k] - t[k] < 0.0 ? t[k] - back[k] : back[k] - t[k];
        if (d > maxDiff) maxDiff = d;
    }
    printf("pose -> transform round trip: largest difference %.1e\n", maxDiff);

    /* A point in the base frame, seen from the flange: p_flange = T^-1 p_base. */
    const double pBase[4] = {600.0, 0.0, 300.0, 1.0};
    double pFlange[4];
    QZ_PGMatrixInv(t, inv);
    QZ_MatrixMultVect4(inv, pBase, pFlange);
    printf("base point (600, 0, 300) mm in the flange frame: (%.3f, %.3f, %.3f) mm\n", pFlange[0],
           pFlange[1], pFlange[2]);
    return 0;
}
