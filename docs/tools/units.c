/*
 * Prints the tables of docs/units-and-limits.md that check its recipe: limits clamped at
 * initialisation, and scaling the unit so that a fast joint or a fast Cartesian axis fits the
 * accepted ranges. Checked against the page by scripts/check-docs.sh.
 */
#include <math.h>
#include <stdio.h>

#include "QZDT.h"

/* A move from 0 to dist (tracker units) at a 1 ms cycle; positions are multiplied by `unit` to
 * give the caller's unit, in which the peak speed and acceleration and the arrival time are
 * reported. Run-time limits (tracker units) are applied after the first step when rtV > 0. One
 * row of the page's table: a limit the initialisation clamped, and what it caps, in bold. */
static void move(const char *in, const char *per, double unit, double dist, double v, double a,
                 double rtV, double rtA, double *trace) {
    QZVDTState s = {0};
    double out = 0.0, prev = 0.0, prevVel = 0.0, peakV = 0.0, peakA = 0.0, arrive = -1.0;
    QZVDT_OnInit(&s, 1.0, v, a);
    QZVDT_OnDT(&s, 0.0, &out);
    const int cutV = s.velLmt != v, cutA = s.accLmt != a;
    if (rtV > 0.0) QZVDT_OnSetRunTimeLmt(&s, rtV, rtA);
    for (int k = 1; k <= 5000; ++k) {
        QZVDT_OnDT(&s, dist, &out);
        const double p = out * unit, vel = (p - prev) / 0.001, acc = (vel - prevVel) / 0.001;
        if (trace) trace[k] = p;
        if (fabs(vel) > peakV) peakV = fabs(vel);
        if (fabs(acc) > peakA) peakA = fabs(acc);
        if (arrive < 0.0 && fabs(dist - out) * unit < 1e-9) arrive = 0.001 * k;
        prev = p;
        prevVel = vel;
    }
    const char *bv = cutV && rtV <= 0.0 ? "**" : "", *ba = cutA && rtV <= 0.0 ? "**" : "";
    printf(
        "| %s | V %.5g, A %.5g | %s%.5g%s, %s%.5g%s | %s%.2f %s/s%s | %s%.1f %s/s²%s | %.3f s |\n",
        in, v, a, bv, s.velLmt, bv, ba, s.accLmt, ba, bv, peakV, per, bv, ba, peakA, per, ba,
        arrive);
}

int main(void) {
    static double inCm[5001], inMm[5001];
    const char *head =
        "| Initialised in | with | limits kept | peak speed | peak acceleration | "
        "arrives |\n|---|---|---|---|---|---|\n";
    printf("**A joint at 150 deg/s and 1146 deg/s²** (20 rad/s²), 90° from rest, 1 ms cycle:\n\n%s",
           head);
    move("degrees", "deg", 1.0, 90.0, 150.0, 1146.0, 0, 0, NULL);
    move("radians", "deg", 57.29577951308232, 90.0 / 57.29577951308232, 150.0 / 57.29577951308232,
         1146.0 / 57.29577951308232, 0, 0, NULL);
    move("units of 2° (k = 2)", "deg", 2.0, 45.0, 75.0, 573.0, 0, 0, NULL);

    printf(
        "\n**A Cartesian axis at 500 mm/s** (and 2500 mm/s²), 400 mm from rest, 1 ms cycle:\n\n%s",
        head);
    move("millimetres", "mm", 1.0, 400.0, 500.0, 2500.0, 0, 0, NULL);
    move("centimetres (k = 10)", "mm", 10.0, 40.0, 50.0, 250.0, 0, 0, inCm);
    move("millimetres, then run-time V 500, A 2500", "mm", 1.0, 400.0, 200.0, 1000.0, 500.0, 2500.0,
         inMm);
    double diff = 0.0;
    for (int k = 1; k <= 5000; ++k)
        if (fabs(inCm[k] - inMm[k]) > diff) diff = fabs(inCm[k] - inMm[k]);
    printf("\nThe last two runs agree within %.2g mm.\n", diff);
    return 0;
}
