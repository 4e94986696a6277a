/*
 * Prints the table of docs/orientation-and-jacobians.md that compares three ways of measuring a
 * small orientation error: the quaternion recipe (orientation_error.h), QZ_QuaternionAngleDeg and
 * the matrix route (relative_rotation, then rotmat_to_axis_angle). Checked against the page by
 * scripts/check-docs.sh.
 */
#include <math.h>
#include <stdio.h>

#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "orientation_error.h"

int main(void) {
    /* A measured orientation and commanded ones turned from it by phi about a fixed axis. */
    double rm[9], qm[4];
    const double abc[3] = {30, -20, 100}, k[3] = {0.48, -0.6, 0.64};
    QZ_ABC2Matrix3DEG(abc, rm);
    QZ_Matrix2Quaternion3(rm, qm);
    printf(
        "| φ (rad) | recipe: \\|r\\|/φ − 1 | largest axis error | `QZ_QuaternionAngleDeg` | "
        "matrix route \\|r\\| (rad) |\n|---:|---:|---:|---:|---:|\n");
    const double phis[] = {1.0, 1e-2, 1e-4, 2.8e-5, 1e-6, 1e-8, 1e-10, 1e-12};
    for (unsigned i = 0; i < sizeof phis / sizeof phis[0]; ++i) {
        const double phi = phis[i];
        double turn[4] = {k[0] * sin(phi / 2), k[1] * sin(phi / 2), k[2] * sin(phi / 2),
                          cos(phi / 2)};
        double qc[4], r[3], rc[9], rel[9], rv[3];
        QZ_QuatMult(turn, qm, qc);
        orientation_error(qc, qm, r);
        const double len = QZ_VectLength(r, 3);
        double axisErr = 0.0;
        for (int j = 0; j < 3; ++j) axisErr = fmax(axisErr, fabs(r[j] / len - k[j]));
        QZ_Quaternion2Matrix3(qc, rc);
        relative_rotation(rm, rc, rel); /* the same error in the measured frame's axes */
        rotmat_to_axis_angle(rel, rv);
        const double m = QZ_VectLength(rv, 3);
        printf("| %g | %.1e | %.1e | %.10f° | ", phi, len / phi - 1.0, axisErr,
               QZ_QuaternionAngleDeg(qc, qm));
        if (m == 0.0)
            printf("0 |\n");
        else
            printf("%.3e |\n", m);
    }
    return 0;
}
