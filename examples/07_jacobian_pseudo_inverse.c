/*
 * Example 07: joint velocities for a flange velocity through the Jacobian pseudo-inverse.
 *
 * The seven-joint arm of example 06 has a 6x7 geometric Jacobian: column i is the flange twist
 * (linear velocity in mm/s over angular velocity in rad/s, base frame) for a unit speed of joint i,
 * (z_i x (p_flange - p_i), z_i), with z_i and p_i the axis and origin of joint i's frame. With one
 * joint more than the six flange coordinates, the right pseudo-inverse J^T (J J^T)^-1 gives the
 * joint velocities of least norm that produce a wanted flange twist.
 *
 * The example asks for 100 mm/s along the base x axis, checks J qdot against it, expresses the
 * Jacobian in the flange frame, and shows the failure result at a singular configuration.
 *
 * Usage: 07_jacobian_pseudo_inverse   (prints its results; writes nothing)
 */
#include <stdio.h>

#include "QZMatrix.h"
#include "arm7.h" /* the arm of example 06 and its Jacobian, in millimetres */

#define DEG 0.017453292519943295

int main(void) {
    const double qDeg[ARM7_JOINTS] = {20, -30, 10, -110, 15, 95, 40};
    const double twist[6] = {100.0, 0.0, 0.0, 0.0, 0.0, 0.0}; /* mm/s, then rad/s */
    double q[ARM7_JOINTS], j[42], jPinv[42], t[16], qdot[ARM7_JOINTS], achieved[6];
    for (int i = 0; i < ARM7_JOINTS; ++i) q[i] = DEG * qDeg[i];

    arm7_jacobian(q, 1.0, j, t); /* scale 1.0: millimetres */

    if (!QZ_RightPsoInv67(j, jPinv)) { /* 0: J J^T singular, jPinv not written */
        printf("singular configuration\n");
        return 1;
    }
    QZ_Matrix76MultVect6(jPinv, twist, qdot);
    QZ_Matrix67MultVect7(j, qdot, achieved);
    printf("flange twist wanted: 100 mm/s along base x\n");
    printf("joint velocities [deg/s]:");
    for (int i = 0; i < ARM7_JOINTS; ++i) printf(" %.4f", qdot[i] / DEG);
    printf("\n");
    double residual = 0.0;
    for (int k = 0; k < 6; ++k) {
        const double d = achieved[k] - twist[k];
        residual += d * d;
    }
    printf("J qdot - twist: residual %.1e, joint speed norm %.4f rad/s\n", QZ_Sqrt(residual),
           QZ_VectLength(qdot, ARM7_JOINTS));

    /* The same Jacobian in the flange frame: both three-row blocks turned by R^T. */
    double rT[9], jFlange[42], twistFlange[6];
    Mat4433Transpose(t, rT);
    QZ_JACOB_TRAN_T67(j, rT, jFlange);
    QZ_Matrix67MultVect7(jFlange, qdot, twistFlange);
    printf("the same motion seen from the flange: (%.3f, %.3f, %.3f) mm/s\n", twistFlange[0],
           twistFlange[1], twistFlange[2]);

    /* With every joint at 0 the axes of joints 1, 3 and 5 lie on one vertical line: three
     * columns span only two directions, the Jacobian loses rank and J J^T is singular. */
    const double qZero[ARM7_JOINTS] = {0};
    double jZero[42], tZero[16], out[42];
    arm7_jacobian(qZero, 1.0, jZero, tZero);
    const unsigned rc = QZ_RightPsoInv67(jZero, out);
    printf("all joints at 0: flange %.1f mm out and %.1f mm up, QZ_RightPsoInv67 returns %u\n",
           tZero[3], tZero[11], rc);
    return 0;
}
