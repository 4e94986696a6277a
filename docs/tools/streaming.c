/*
 * Measures how the trackers follow a moving target, for docs/streaming.md: the lag behind a
 * constant-speed ramp against the speed for three limits (the CSV of argument 1), the ways of
 * feeding a target, and what a limit change or a target jump does in the middle of a move. Built
 * and run by scripts/docs-figures.sh, which also plots the CSV into docs/streaming_lag.png. The
 * page's lag table is printed by streaming_table.c.
 */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include "QZDT.h"
#include "lag.h"

/* A path that accelerates at pathAcc to speed v, cruises, and stops at `dist`, fed to one N-axis
 * axis (A acc, span avgLen from jerk) every cycle as an absolute target, with or without the
 * lead to where the path will be one lag L ahead, p + v L + a L^2 / 2, L taken at the path's own
 * speed v (a: the path's acceleration). Returns the largest |output - path|. */
static double follow_path(double v, double pathAcc, double dist, double acc, double jerk, int lead,
                          double *settle) {
    static QZNSyncDTSState n;
    memset(&n, 0, sizeof n);
    const double vel = 10.0, cycleMs = 1.0, dt = 0.001;
    double jl = jerk, out, worst = 0.0, p = 0.0, pv = 0.0, pa = 0.0;
    QZNSyncDTS_OnInit(&n, 1, cycleMs, &vel, &acc, &jl);
    const int span = n.avgLen[0];
    *settle = -1.0;
    for (long k = 0; k < 20000; ++k) {
        /* Path position p and speed pv at this cycle: trapezoid in speed. */
        const double tAcc = v / pathAcc, dAcc = 0.5 * v * tAcc, t = (double)k * dt;
        const double tCruise = (dist - 2.0 * dAcc) / v, tEnd = 2.0 * tAcc + tCruise;
        if (t < tAcc) {
            p = 0.5 * pathAcc * t * t;
            pv = pathAcc * t;
            pa = pathAcc;
        } else if (t < tAcc + tCruise) {
            p = dAcc + v * (t - tAcc);
            pv = v;
            pa = 0.0;
        } else if (t < tEnd) {
            const double r = tEnd - t;
            p = dist - 0.5 * pathAcc * r * r;
            pv = pathAcc * r;
            pa = -pathAcc;
        } else {
            p = dist;
            pv = 0.0;
            pa = 0.0;
        }
        const double lag = lag_formula(pv, acc, dt, span);
        double target = lead ? p + pv * lag + 0.5 * pa * lag * lag : p;
        QZNSyncDTS_OnDT(&n, &target, &out);
        const double e = fabs(out - p);
        if (t <= tEnd && e > worst) worst = e;
        if (t > tEnd && *settle < 0.0 && e < 1e-6) *settle = 1000.0 * (t - tEnd);
    }
    return worst;
}

int main(int argc, char **argv) {
    /* Plot data: lag of the single-axis tracker at 1 ms against speed for three limits. */
    if (argc > 1) {
        FILE *f = fopen(argv[1], "w");
        if (!f) return 1;
        fprintf(f, "speed,meas3.75,form3.75,meas7.5,form7.5,meas30,form30\n");
        for (int k = 1; k <= 60; ++k) {
            const double v = 0.05 * k;
            fprintf(f, "%.3f", v);
            const double accs[] = {3.75, 7.5, 30.0};
            for (int a = 0; a < 3; ++a)
                fprintf(f, ",%.4f,%.4f", measure_lag(PLAIN, v, accs[a], 1e6, 1.0, 8.0),
                        1000 * lag_formula(v, accs[a], 0.001, 1));
            fprintf(f, "\n");
        }
        fclose(f);
    }

    /* Feeding: increments relative to the last output make the axis crawl. */
    {
        QZVDTState s = {0};
        double out = 0.0, target;
        QZVDT_OnInit(&s, 1.0, 10.0, 7.5);
        QZVDT_OnDT(&s, 0.0, &out);
        for (int k = 0; k < 5000; ++k) {
            target = out + 1.0 * 0.001; /* "one more cycle's worth" of a 1 unit/s move */
            QZVDT_OnDT(&s, target, &out);
        }
        printf(
            "increments of 1 unit/s x 1 ms added to the last output: speed after 5 s %.4f "
            "units/s\n",
            s.vel);
    }

    /* A path with a speed ramp, fed with and without the lead. */
    {
        double settle;
        const double e0 = follow_path(1.0, 5.0, 2.0, 7.5, 3750, 0, &settle);
        const double s0 = settle;
        const double e1 = follow_path(1.0, 5.0, 2.0, 7.5, 3750, 1, &settle);
        printf(
            "path 0 -> 2 at 1 unit/s, path acceleration 5, axis A 7.5 span 3: largest |output - "
            "path|"
            " %.4f without lead (settles %.0f ms after the path), %.5f with the lead (settles %.0f "
            "ms)\n",
            e0, s0, e1, settle);
        const double e2 = follow_path(1.0, 5.0, 2.0, 7.5, 375, 1, &settle);
        printf("  the same with span 20: %.5f with the lead\n", e2);
        const double e3 = follow_path(0.3, 5.0, 2.0, 7.5, 3750, 0, &settle);
        const double e4 = follow_path(0.3, 5.0, 2.0, 7.5, 3750, 1, &settle);
        printf("  at 0.3 unit/s: %.5f without, %.6f with the lead\n", e3, e4);
    }

    /* Mid-move events on a ramp at 1 unit/s (A 7.5, V 2, 1 ms): a lowered velocity limit (raised
     * again 1 s later), a raised acceleration limit, and a target that jumps ahead by 0.2. The
     * recovery times count from the event (from the raise for the velocity limit) until the lag's
     * distance from its new steady value has fallen below 10 % and 1 % of its largest value. */
    const char *events[] = {"velocity limit 2 -> 0.5 at 2 s, back to 2 at 3 s",
                            "acceleration limit 7.5 -> 30 at 2 s",
                            "target jumps ahead by 0.2 at 2 s"};
    for (int ev = 0; ev < 3; ++ev) {
        QZVDTState s = {0};
        double out = 0.0, lagBefore = 0.0, peak = 0.0, least = 1e9, t10 = -1.0, t1 = -1.0;
        QZVDT_OnInit(&s, 1.0, 2.0, 7.5);
        const int from = ev == 0 ? 3000 : 2000;
        const double steady = lag_formula(1.0, ev == 1 ? 30.0 : 7.5, 0.001, 1);
        double jump = 0.0;
        for (int k = 0; k <= 6000; ++k) {
            if (k == 2000) {
                lagBefore = 0.001 * (double)(k - 1) - out;
                if (ev == 0) QZVDT_OnSetRunTimeVel(&s, 0.5);
                if (ev == 1) QZVDT_OnSetRunTimeAcc(&s, 30.0);
                if (ev == 2) jump = 0.2;
            }
            if (ev == 0 && k == 3000) QZVDT_OnSetRunTimeVel(&s, 2.0);
            const double target = 0.001 * (double)k + jump;
            QZVDT_OnDT(&s, target, &out);
            if (k < 2000) continue;
            const double lag = target - out, excess = fabs(lag - steady);
            if (lag < least) least = lag;
            if (k <= from || excess > peak) {
                if (excess > peak) peak = excess;
                continue;
            }
            if (t10 < 0.0 && excess < 0.1 * peak) t10 = k - from;
            if (t1 < 0.0 && excess < 0.01 * peak) t1 = k - from;
        }
        printf(
            "%s: lag %.4f before, %.4f from the new steady lag at most; within 10 %% of that after"
            " %.0f ms, 1 %% after %.0f ms; least lag %.4f (output %s the target)\n",
            events[ev], lagBefore, peak, t10, t1, least, least < 0.0 ? "passes" : "stays behind");
    }
    return 0;
}
