/*
 * Prints the lag table of docs/streaming.md: the lag of each tracker behind a ramp of constant
 * speed after 6 s, A = 7.5 units/s^2 (V = 10), measured, against the formula. Checked against the
 * page by scripts/check-docs.sh.
 */
#include <stdio.h>

#include "lag.h"

int main(void) {
    const double speeds[] = {0.05, 0.075, 0.1, 0.3, 0.5, 1.0, 2.0};
    printf(
        "| speed (units/s) | single-axis, 1 ms | formula | single-axis, 4 ms | formula | N-axis, "
        "span 3 | N-axis, span 20 | formula | multi-stage mode 1 | multi-stage mode 0, span 7 "
        "|\n|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (unsigned i = 0; i < sizeof speeds / sizeof speeds[0]; ++i) {
        const double v = speeds[i];
        printf("| %g | %.2f%s | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", v,
               measure_lag(PLAIN, v, 7.5, 3750, 1.0, 6.0), i == 0 ? " ms" : "",
               1000 * lag_formula(v, 7.5, 0.001, 1), measure_lag(PLAIN, v, 7.5, 3750, 4.0, 6.0),
               1000 * lag_formula(v, 7.5, 0.004, 1), measure_lag(NAXIS, v, 7.5, 3750, 1.0, 6.0),
               measure_lag(NAXIS, v, 7.5, 375, 1.0, 6.0), 1000 * lag_formula(v, 7.5, 0.001, 20),
               measure_lag(NAXIS_M1, v, 7.5, 3750, 1.0, 6.0),
               measure_lag(NAXIS_M0, v, 7.5, 375, 1.0, 6.0));
    }
    return 0;
}
