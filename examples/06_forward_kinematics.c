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
#include "arm7.h" /* the arm: an anthropomorphic seven-joint arm, lengths in millimetres */

#define DEG 0.017453292519943295

static void print_matrix4(const double *t) {
    for (int i = 0; i < 4; ++i)
        printf("  %10.6f %10.6f %10.6f %10.3f\n", t[4 * i], t[4 * i + 1], t[4 * i + 2],
               t[4 * i + 3]);
}

int main(void) {
    const double qDeg[ARM7_JOINTS] = {20, -30, 10, -110, 15, 95, 40};
    double q[ARM7_JOINTS], t[16], pose[6], posQuat[7], back[16], inv[16];
    for (int i = 0; i < ARM7_JOINTS; ++i) q[i] = DEG * qDeg[i];

    arm7_fk(q, 1.0, t); /* 1.0: millimetres */
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
