/*
 * Checks the recipes of docs/units-and-limits.md: limits clamped at initialisation, the run-time
 * dead band, and scaling the unit so that a fast joint or a fast Cartesian axis fits the accepted
 * ranges. Built and run by scripts/docs-figures.sh.
 */
#include <math.h>
#include <stdio.h>

#include "QZDT.h"

/* A move from 0 to dist (tracker units) at a 1 ms cycle; positions are multiplied by `unit` to
 * give the caller's unit, in which the peak speed and acceleration and the arrival time are
 * reported. Run-time limits (tracker units) are applied after the first step when rtV > 0. */
static void move(const char *what, double unit, double dist, double v, double a, double rtV,
                 double rtA, double *trace) {
    QZVDTState s = {0};
    double out = 0.0, prev = 0.0, prevVel = 0.0, peakV = 0.0, peakA = 0.0, arrive = -1.0;
    QZVDT_OnInit(&s, 1.0, v, a);
    QZVDT_OnDT(&s, 0.0, &out);
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
    printf(
        "  %-46s limits kept %8.3f %9.3f: peak speed %8.2f, peak acceleration %8.1f, arrives at "
        "%.3f s\n",
        what, s.velLmt, s.accLmt, peakV, peakA, arrive);
}

int main(void) {
    static double inCm[5001], inMm[5001];
    printf("joint, 90 deg at 150 deg/s and 1146 deg/s^2:\n");
    move("degrees: init(150, 1146)", 1.0, 90.0, 150.0, 1146.0, 0, 0, NULL);
    move("radians: init(2.618, 20.0), reported in deg", 57.29577951308232, 90.0 / 57.29577951308232,
         150.0 / 57.29577951308232, 1146.0 / 57.29577951308232, 0, 0, NULL);
    move("units of 2 deg: init(75, 573), reported in deg", 2.0, 45.0, 75.0, 573.0, 0, 0, NULL);

    printf("Cartesian axis, 400 mm at 500 mm/s and 2500 mm/s^2:\n");
    move("millimetres: init(500, 2500)", 1.0, 400.0, 500.0, 2500.0, 0, 0, NULL);
    move("centimetres: init(50, 250), reported in mm", 10.0, 40.0, 50.0, 250.0, 0, 0, inCm);
    move("millimetres: init(200, 1000), then run-time 500, 2500", 1.0, 400.0, 200.0, 1000.0, 500.0,
         2500.0, inMm);
    double diff = 0.0;
    for (int k = 1; k <= 5000; ++k)
        if (fabs(inCm[k] - inMm[k]) > diff) diff = fabs(inCm[k] - inMm[k]);
    printf("  the two 500 mm/s runs differ by at most %.3g mm\n", diff);

    printf("run-time dead band (velocity limit 2.175 at initialisation):\n");
    {
        QZVDTState s = {0};
        double out;
        QZVDT_OnInit(&s, 1.0, 2.175, 7.5);
        QZVDT_OnDT(&s, 0.0, &out);
        const unsigned rc = QZVDT_OnSetRunTimeVel(&s, 2.1);
        printf("  QZVDT_OnSetRunTimeVel(2.1) returns %u: velLmt %.3f, velLmtTarget %.3f\n", rc,
               s.velLmt, s.velLmtTarget);
        QZVDT_OnSetRunTimeVel(&s, 2.1 + 1.0);
        QZVDT_OnSetRunTimeVel(&s, 2.1);
        printf("  QZVDT_OnSetRunTimeVel(3.1) then (2.1): velLmt %.3f, velLmtTarget %.3f\n",
               s.velLmt, s.velLmtTarget);
        QZVDT_OnSetRunTimeAcc(&s, 7.45);
        printf("  QZVDT_OnSetRunTimeAcc(7.45): accLmt %.3f", s.accLmt);
        QZVDT_OnSetRunTimeAcc(&s, 8.45);
        QZVDT_OnSetRunTimeAcc(&s, 7.45);
        printf("; (8.45) then (7.45): accLmt %.3f\n", s.accLmt);
        QZVDTState d = {0};
        QZVDT_OnInit(&d, 1.0, 2.175 * 57.29577951308232, 7.5 * 57.29577951308232);
        QZVDT_OnDT(&d, 0.0, &out);
        QZVDT_OnSetRunTimeVel(&d, 2.1 * 57.29577951308232);
        printf("  in degrees, 124.620 -> %.3f deg/s: velLmt %.3f deg/s\n", 2.1 * 57.29577951308232,
               d.velLmt);
    }
    return 0;
}
