/*
 * The damping table of docs/kinematics.md: the damped solver on the arm of examples/arm7.h as it
 * stretches, with the chain's default damping and with the damping turned off. Prints the
 * Markdown table that the guide quotes between its generated markers.
 */
#include <math.h>
#include <stdio.h>

#include "QZKinematics.h"
#include "arm7.h"

#define DEG 0.017453292519943295

/* Largest joint speed over the six unit twists of the unitless Jacobian (one length scale per
 * second along a base axis, or 1 rad/s about one); the result code of the last solve. */
static int32_t largest_speed(const QZKinChain *c, const double *j, double *speed, double *report) {
    int32_t rc = QZ_KIN_OK;
    *speed = 0.0;
    for (int axis = 0; axis < 6 && rc == QZ_KIN_OK; ++axis) {
        double v[6] = {0, 0, 0, 0, 0, 0}, qdot[7];
        v[axis] = axis < 3 ? c->lengthScale : 1.0;
        rc = QZKin_DampedLeastSquares(c, j, v, qdot, report);
        for (int i = 0; i < 7 && rc == QZ_KIN_OK; ++i)
            if (fabs(qdot[i]) > *speed) *speed = fabs(qdot[i]);
    }
    return rc;
}

int main(void) {
    QZKinChain damped, plain;
    arm7_chain(1.0, &damped);
    plain = damped;
    QZKin_SetDamping(&plain, plain.lengthScale, plain.sigmaThreshold, 0.0);
    const double stretch = -(atan(82.5 / 316.0) + atan(82.5 / 384.0));
    const double ds[] = {10, 3, 1, 0.3, 0.1, 0.01, 1e-4, 0};
    printf(
        "| d (joint 4) | sigma, estimated | lambda | largest joint speed, damped | undamped |\n");
    printf("|---:|---:|---:|---:|---:|\n");
    for (int k = 0; k < (int)(sizeof ds / sizeof ds[0]); ++k) {
        const double q[7] = {20 * DEG, -30 * DEG, 10 * DEG, stretch - ds[k] * DEG,
                             0.0,      95 * DEG,  40 * DEG};
        double j[42], report[2], unused[2], fast, slow;
        QZKin_Jacobian(&damped, q, j, NULL);
        largest_speed(&damped, j, &slow, report);
        const int32_t rc = largest_speed(&plain, j, &fast, unused);
        char undamped[40];
        if (rc == QZ_KIN_OK)
            snprintf(undamped, sizeof undamped, "%.4g", fast);
        else
            snprintf(undamped, sizeof undamped, "refused (%d)", (int)rc);
        printf("| %g° | %.3e | %.5f | %.4g | %s |\n", ds[k], report[0], report[1], slow, undamped);
    }
    return 0;
}
