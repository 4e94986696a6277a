/*
 * The lag of a tracker behind a target ramp, measured and from its formula: shared by the
 * measuring program of docs/streaming.md (streaming.c) and the program that prints its table
 * (streaming_table.c).
 */
#ifndef QZ_DOCS_LAG_H
#define QZ_DOCS_LAG_H

#include <math.h>
#include <string.h>

#include "QZDT.h"

#define LAW_STEP 0.01 /* the switching law's fixed look-ahead h (s), QZVDTState.lawStep */

/* Steady lag (s) of the single-axis tracker behind a ramp of speed v: the output at a cycle
 * trails that cycle's target by v * lag. avgLen adds (avgLen - 1) / 2 cycles for the N-axis
 * tracker (pass 1 for the single-axis one). */
static double lag_formula(double v, double acc, double dt, int avgLen) {
    const double ah = acc * LAW_STEP;
    const double vv = fabs(v) > ah ? fabs(v) : ah;
    return (vv + ah) / (2.0 * acc) + LAW_STEP - dt + 0.5 * (avgLen - 1) * dt;
}

/* Kinds of tracker measured. */
enum { PLAIN, NAXIS, NAXIS_M1, NAXIS_M0 };

/* Lag (ms) of one tracker behind a ramp of speed v, measured after `seconds` of ramp. */
static double measure_lag(int kind, double v, double acc, double jerk, double cycleMs,
                          double seconds) {
    static QZVDTState s;
    static QZNSyncDTSState n;
    static QZNSyncDTSMState m;
    const double vel = 10.0, dt = cycleMs / 1000.0;
    double jl = jerk, out = 0.0;
    memset(&s, 0, sizeof s);
    memset(&n, 0, sizeof n);
    memset(&m, 0, sizeof m);
    if (kind == PLAIN) QZVDT_OnInit(&s, cycleMs, vel, acc);
    if (kind == NAXIS) QZNSyncDTS_OnInit(&n, 1, cycleMs, &vel, &acc, &jl);
    if (kind == NAXIS_M1) QZNSyncDTS_OnInitM(&m, 1, cycleMs, &vel, &acc, &jl, 1);
    if (kind == NAXIS_M0) QZNSyncDTS_OnInitM(&m, 1, cycleMs, &vel, &acc, &jl, 0);
    const long cycles = (long)(seconds / dt + 0.5);
    double target = 0.0;
    for (long k = 0; k <= cycles; ++k) {
        target = v * (double)k * dt; /* absolute target of this cycle */
        if (kind == PLAIN) QZVDT_OnDT(&s, target, &out);
        if (kind == NAXIS) QZNSyncDTS_OnDT(&n, &target, &out);
        if (kind >= NAXIS_M1) QZNSyncDTS_OnDTM(&m, &target, &out);
    }
    return 1000.0 * (target - out) / v;
}

#endif
