/*
 * Prints the table of docs/singularities.md: the largest entry of QZ_RightPsoInv67's result as
 * joint 4 of the arm of examples/arm7.h bends by d away from the stretch, with lengths in mm and
 * in m, the smallest singular value and the determinant of the normalised J J^T that announce the
 * approach, and the damped pseudo-inverse that keeps the entries bounded. Checked against the page
 * by scripts/check-docs.sh.
 */
#include <stdio.h>

#include "stretch.h"

/* Below this bend (deg) the reach lost, the smallest singular value and the determinant are below
 * what double precision resolves for this arm (about 1e-12 mm and 1e-16): shown as rounding. */
#define ROUNDING_BELOW 5e-6

int main(void) {
    double q[7] = {20 * DEG, -30 * DEG, 10 * DEG, 0.0, 0.0, 95 * DEG, 40 * DEG};
    const double stretch = stretch_pose(q), reach = shoulder_wrist(q);
    const double eps = 0.01, lambdaMax = 0.01;
    printf(
        "| d (joint 4) | reach lost | lengths in mm: rc, largest | lengths in m: rc, largest | "
        "σ_min | det(Jn·Jnᵀ) | damped, mm |\n|---:|---:|---|---|---:|---:|---:|\n");
    const double ds[] = {10, 3, 1, 0.3, 0.1, 0.01, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 0};
    for (unsigned i = 0; i < sizeof ds / sizeof ds[0]; ++i) {
        const double d = ds[i];
        q[3] = stretch - d * DEG; /* bending the elbow shortens the reach */
        double jmm[42], jm[42], t[16], pmm[42] = {0}, pm[42] = {0}, jn[42], g[36];
        arm7_jacobian(q, 1.0, jmm, t);
        arm7_jacobian(q, 0.001, jm, t);
        const unsigned rmm = QZ_RightPsoInv67(jmm, pmm), rm = QZ_RightPsoInv67(jm, pm);
        normalised_gram(jmm, jn, g);
        const double s = sigma_min(g);
        const int noise = d < ROUNDING_BELOW;
        if (d == 0.0)
            printf("| 0 | 0 |");
        else if (noise)
            printf("| %g° | rounding |", d);
        else
            printf("| %g° | %.4g mm |", d, reach - shoulder_wrist(q));
        printf(" %u, %.4g | %u, %.4g |", rmm, rmm ? largest(pmm, 42) : 0.0, rm,
               rm ? largest(pm, 42) : 0.0);
        if (noise)
            printf(" rounding | rounding |");
        else
            printf(" %.3e | %.3e |", s, gram_det(g));
        printf(" %.4g |\n", damped_largest(jmm, s, eps, lambdaMax));
    }
    return 0;
}
