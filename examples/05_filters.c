/*
 * Example 05: the per-cycle filters.
 *
 * 1. Averaging filter: a joint ramping at 25 deg/s, measured every 4 ms with uniform noise of
 *    +-0.2 deg, through a 10-sample moving average. The average trails the ramp by (10 - 1) / 2
 *    cycles and carries less noise; its difference quotient is a velocity.
 * 2. Smoothed velocity: a speed override brought from 0 to 1 and back, a fraction of the way per
 *    update but within a minimum and maximum step, so it lands exactly on 1 and on 0 and raises
 *    the one and zero flags.
 * 3. One-step fitter: a one-pole low-pass filter on a unit step.
 *
 * The noise comes from a small linear congruential generator, so every run prints the same.
 *
 * Usage: 05_filters   (prints its results; writes nothing)
 */
#include <stdint.h>
#include <stdio.h>

#include "QZDT.h"
#include "QZFLT.h"

static uint32_t lcg = 12345u;

/* Uniform in [-1, 1). */
static double noise(void) {
    lcg = lcg * 1664525u + 1013904223u;
    return (double)(lcg >> 8) / 8388608.0 - 1.0;
}

static void averaging_filter(void) {
    const double dt = 0.004, speed = 25.0, amp = 0.2;
    const int32_t window = 10;
    const int cycles = 2000, settle = 100;
    static QZAVGFState f; /* zeroed by static storage; the record holds 8 x 100 samples */
    if (!QZAVGF_OnInit(&f, 1, window, dt)) return;

    double sqRaw = 0.0, sqAvg = 0.0, lagSum = 0.0, velSum = 0.0, sqVel = 0.0;
    for (int k = 0; k < cycles; ++k) {
        const double truth = speed * dt * k, meas = truth + amp * noise();
        double avg, vel;
        QZAVGF_OnFilt(&f, &meas, &avg, &vel); /* the first call fills the window with meas */
        if (k < settle) continue;
        /* The window's mean lies (window - 1) / 2 cycles behind the newest sample. */
        const double delayed = speed * dt * (k - 0.5 * (window - 1));
        sqRaw += (meas - truth) * (meas - truth);
        sqAvg += (avg - delayed) * (avg - delayed);
        lagSum += (truth - avg) / (speed * dt);
        velSum += vel;
        sqVel += (vel - speed) * (vel - speed);
    }
    const int n = cycles - settle;
    printf("averaging filter, window %d: position noise RMS %.4f -> %.4f deg, lag %.2f cycles\n",
           window, QZ_Sqrt(sqRaw / n), QZ_Sqrt(sqAvg / n), lagSum / n);
    printf("  its derivative: mean %.3f deg/s (true %.1f), RMS error %.2f deg/s\n", velSum / n,
           speed, QZ_Sqrt(sqVel / n));
}

static void smoothed_velocity(void) {
    QZSMVState s;
    double value = 0.0;
    uint8_t isZero = 0, isOne = 0;
    if (!QZSMV_OnInit(&s, 0.0, 0.5, 0.1, 0.01)) return; /* alpha 0.5, steps 0.01 .. 0.1 */
    printf("smoothed velocity, alpha 0.5, steps 0.01 to 0.1, from 0 to 1:");
    int n = 0;
    do {
        QZSMV_OnUpdateVZO(&s, 1.0, &value, &isZero, &isOne);
        printf(" %.4g", value);
        ++n;
    } while (!isOne);
    printf("\n  reached exactly 1 (%s) after %d updates", value == 1.0 ? "yes" : "no", n);
    n = 0;
    do {
        QZSMV_OnUpdateVZO(&s, 0.0, &value, &isZero, &isOne);
        ++n;
    } while (!isZero);
    printf("; back to exactly 0 (%s) after %d updates\n", value == 0.0 ? "yes" : "no", n);
}

static void one_step_fitter(void) {
    OneFitterState f;
    const double alpha = 0.5, step = 1.0;
    double y = 0.0;
    OneFitterInit(&f, 1, &alpha); /* starts from 0, not from the first input */
    printf("one-step fitter, alpha 0.5, unit step:");
    for (int k = 0; k < 6; ++k) {
        OneFitterRun(&f, &step, &y);
        printf(" %.6g", y);
    }
    printf("\n");
}

int main(void) {
    averaging_filter();
    smoothed_velocity();
    one_step_fitter();
    return 0;
}
