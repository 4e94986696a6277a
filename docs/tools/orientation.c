/*
 * Checks the statements of docs/orientation-and-jacobians.md: the Euler extraction ranges at their
 * edges, and the reference point and axes of a geometric Jacobian under QZ_JACOB_TRAN_T67. Built
 * and run by scripts/docs-figures.sh. The page's table of the orientation error is printed by
 * orientation_table.c.
 */
#include <math.h>
#include <stdio.h>

#include "QZMatrix.h"
#include "arm7.h"

#define DEG 0.017453292519943295

int main(void) {
    /* Euler extraction at the edges of its ranges. */
    double r[9], a[3];
    const double t1[3] = {0, 120, 0};
    QZ_ABC2Matrix3DEG(t1, r);
    QZ_Matrix2XYZ(r, a);
    printf("XYZ (0, 120, 0) deg -> (%.6f, %.6f, %.6f) deg\n", a[0] / DEG, a[1] / DEG, a[2] / DEG);
    const double t2[3] = {180, 0, 0};
    QZ_ABC2Matrix3DEG(t2, r);
    QZ_Matrix2XYZ(r, a);
    printf("XYZ (180, 0, 0) deg -> (%.6f, %.6f, %.6f) deg\n", a[0] / DEG, a[1] / DEG, a[2] / DEG);
    const double zyz[][3] = {{30, 180, 40},   {30, 179.8, 40}, {30, 179.5, 40}, {30, 179, 40},
                             {-170, 180, 80}, {180, 40, 0},    {0, 40, -180}};
    for (unsigned i = 0; i < sizeof zyz / sizeof zyz[0]; ++i) {
        double back[9];
        QZ_ZYZ2Matrix(zyz[i][0] * DEG, zyz[i][1] * DEG, zyz[i][2] * DEG, r);
        const unsigned rc = QZ_Matrix2ZYZ(r, a);
        QZ_ZYZ2Matrix(a[0], a[1], a[2], back);
        double d = 0.0;
        for (int j = 0; j < 9; ++j) d = fmax(d, fabs(back[j] - r[j]));
        printf(
            "ZYZ (%g, %g, %g) deg -> %u, (%.6f, %.6f, %.6f) deg, a - c %.6f, a + c %.6f, matrix "
            "back within %.1e\n",
            zyz[i][0], zyz[i][1], zyz[i][2], rc, a[0] / DEG, a[1] / DEG, a[2] / DEG,
            (a[0] - a[2]) / DEG, (a[0] + a[2]) / DEG, d);
    }

    /* The same half turns of b built another way (a tool flipped about x by XYZ angles): only
     * a - c is defined, and the split that the extraction makes must still give the matrix back. */
    const double flips[][3] = {
        {180, 0, 70}, {180, 0.2, 70}, {179.9, 0, 70}, {179.5, 0, 70}, {178, 0, 70}};
    for (unsigned i = 0; i < sizeof flips / sizeof flips[0]; ++i) {
        double back[9];
        QZ_ABC2Matrix3DEG(flips[i], r);
        const unsigned rc = QZ_Matrix2ZYZ(r, a);
        QZ_ZYZ2Matrix(a[0], a[1], a[2], back);
        double d = 0.0;
        for (int j = 0; j < 9; ++j) d = fmax(d, fabs(back[j] - r[j]));
        printf(
            "XYZ (%g, %g, %g) deg as ZYZ -> %u, (%.6f, %.6f, %.6f) deg, matrix back within %.1e\n",
            flips[i][0], flips[i][1], flips[i][2], rc, a[0] / DEG, a[1] / DEG, a[2] / DEG, d);
    }

    /* Exact half turns about y and about x, written out: sin b rounds to 1.2e-16 while the entries
     * it divides are exact zeros. */
    const double halfTurns[2][9] = {{-1, 0, 0, 0, 1, 0, 0, 0, -1}, {1, 0, 0, 0, -1, 0, 0, 0, -1}};
    for (int i = 0; i < 2; ++i) {
        double back[9];
        const unsigned rc = QZ_Matrix2ZYZ(halfTurns[i], a);
        QZ_ZYZ2Matrix(a[0], a[1], a[2], back);
        double d = 0.0;
        for (int j = 0; j < 9; ++j) d = fmax(d, fabs(back[j] - halfTurns[i][j]));
        printf("half turn about %s as ZYZ -> %u, (%.6f, %.6f, %.6f) deg, matrix back within %.1e\n",
               i ? "x" : "y", rc, a[0] / DEG, a[1] / DEG, a[2] / DEG, d);
    }

    /* Jacobian: central differences of the flange pose against the columns. */
    const double q[7] = {20 * DEG, -30 * DEG, 10 * DEG, -110 * DEG, 15 * DEG, 95 * DEG, 40 * DEG};
    double j[42], t[16], rt[9], jf[42], worstLin = 0.0, worstAng = 0.0;
    arm7_jacobian(q, 1.0, j, t);
    for (int c = 0; c < 7; ++c) {
        const double h = 1e-6;
        double qp[7], qn[7], tp[16], tn[16], rp[9], rn[9], rdot[9], rT[9], w[9];
        for (int i = 0; i < 7; ++i) qp[i] = qn[i] = q[i];
        qp[c] += h;
        qn[c] -= h;
        arm7_fk(qp, 1.0, tp);
        arm7_fk(qn, 1.0, tn);
        for (int i = 0; i < 3; ++i)
            worstLin =
                fmax(worstLin, fabs((tp[4 * i + 3] - tn[4 * i + 3]) / (2 * h) - j[7 * i + c]));
        for (int i = 0; i < 3; ++i)
            for (int m = 0; m < 3; ++m) {
                rp[3 * i + m] = tp[4 * i + m];
                rn[3 * i + m] = tn[4 * i + m];
                rdot[3 * i + m] = (rp[3 * i + m] - rn[3 * i + m]) / (2 * h);
            }
        Mat4433Transpose(t, rT);
        QZ_MatrixMult3(rdot, rT, w); /* dR/dq R^T = skew(omega) in base axes */
        const double om[3] = {w[7], w[2], w[3]};
        for (int i = 0; i < 3; ++i) worstAng = fmax(worstAng, fabs(om[i] - j[7 * (i + 3) + c]));
    }
    printf(
        "Jacobian vs central differences: linear rows (flange origin, base axes) within %.1e "
        "mm/rad, "
        "angular rows within %.1e\n",
        worstLin, worstAng);
    Mat4433Transpose(t, rt);
    QZ_JACOB_TRAN_T67(j, rt, jf);
    double qd[7] = {0.1, -0.2, 0.3, 0.1, 0.2, -0.1, 0.3}, tw[6], twf[6], back[3];
    QZ_Matrix67MultVect7(j, qd, tw);
    QZ_Matrix67MultVect7(jf, qd, twf);
    QZ_MVmult43(t, twf, back);
    printf(
        "QZ_JACOB_TRAN_T67(J, R^T): flange-axes linear velocity turned back by R matches within "
        "%.1e mm/s\n",
        fmax(fmax(fabs(back[0] - tw[0]), fabs(back[1] - tw[1])), fabs(back[2] - tw[2])));

    /* A tool point 150 mm beyond the flange along the flange's z axis: J_lin - skew(r) J_ang with r
     * the offset in base axes, against central differences of that point. */
    const double off[3] = {0.0, 0.0, 150.0};
    double r3[3], sk[9], worstTool = 0.0;
    QZ_MVmult43(t, off, r3);
    QZ_Skew(r3, sk);
    for (int c = 0; c < 7; ++c) {
        const double h = 1e-6;
        double qp[7], qn[7], tp[16], tn[16], pp[3], pn[3], ang[3], cross[3];
        for (int i = 0; i < 7; ++i) qp[i] = qn[i] = q[i];
        qp[c] += h;
        qn[c] -= h;
        arm7_fk(qp, 1.0, tp);
        arm7_fk(qn, 1.0, tn);
        QZ_MVmult43(tp, off, pp);
        QZ_MVmult43(tn, off, pn);
        for (int i = 0; i < 3; ++i) ang[i] = j[7 * (i + 3) + c];
        QZ_MatrixMultVect3(sk, ang, cross);
        for (int i = 0; i < 3; ++i) {
            const double fd = ((tp[4 * i + 3] + pp[i]) - (tn[4 * i + 3] + pn[i])) / (2 * h);
            worstTool = fmax(worstTool, fabs(fd - (j[7 * i + c] - cross[i])));
        }
    }
    printf(
        "tool point 150 mm along the flange z: J_lin - skew(r) J_ang matches central differences "
        "within"
        " %.1e mm/rad\n",
        worstTool);
    return 0;
}
