/*
 * Measures the stretched configuration of the arm of examples/arm7.h for docs/singularities.md,
 * and how often QZ_RightPsoInv67 fails at all within a hair of it. Built and run by
 * scripts/docs-figures.sh; the page's table of the pseudo-inverse against the distance from the
 * stretch is printed by singularities_table.c.
 */
#include <math.h>
#include <stdio.h>

#include "QZMatrix.h"
#include "stretch.h"

int main(void) {
    double q[7] = {20 * DEG, -30 * DEG, 10 * DEG, 0.0, 0.0, 95 * DEG, 40 * DEG};

    const double stretch = stretch_pose(q);
    const double reach = shoulder_wrist(q);
    printf(
        "stretched at joint 4 = %.10f deg, shoulder-wrist %.4f mm; singular with joint 5 at %.6f "
        "deg\n",
        stretch / DEG, reach, q[4] / DEG);

    /* How often the call fails at all: 1000 angles spread over the last 1e-5 degrees. */
    for (int range = 0; range < 3; ++range) {
        const double span = range == 0 ? 1e-5 : range == 1 ? 1e-6 : 1e-7;
        int failMm = 0, failM = 0;
        for (int k = 1; k <= 1000; ++k) {
            double j[42], t[16], p[42];
            q[3] = stretch - span * DEG * k / 1000.0;
            arm7_jacobian(q, 1.0, j, t);
            failMm += !QZ_RightPsoInv67(j, p);
            arm7_jacobian(q, 0.001, j, t);
            failM += !QZ_RightPsoInv67(j, p);
        }
        printf(
            "d in (0, %.0e] deg, 1000 angles: QZ_RightPsoInv67 returns 0 for %d in mm, %d in m\n",
            span, failMm, failM);
    }
    return 0;
}
