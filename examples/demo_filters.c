/*
 * Filter section of the demo: a joint moving at constant speed, measured with uniform noise,
 * through the averaging filter and the one-step fitter. On a ramp each filter trails the true
 * position by a fixed number of cycles; what is left after removing that lag is filtered noise.
 * The noise comes from a small linear congruential generator, so every run prints the same.
 */
#include <stdint.h>
#include <stdio.h>

#include "QZDT.h"
#include "QZFLT.h"
#include "demo.h"

static uint32_t lcg_state = 12345u;

/* Uniform in [-1, 1). */
static double lcg_noise(void) {
    lcg_state = lcg_state * 1664525u + 1013904223u;
    return (double)(lcg_state >> 8) / 8388608.0 - 1.0;
}

/* Accumulates the tracking error of one filter on the ramp: its mean gives the lag, its spread
 * the residual noise. */
typedef struct {
    double sum, sumSq;
    int n;
} ErrStats;

static void err_add(ErrStats *e, double err) {
    e->sum += err;
    e->sumSq += err * err;
    e->n += 1;
}

static double err_mean(const ErrStats *e) { return e->sum / e->n; }
static double err_rms(const ErrStats *e) {
    const double m = err_mean(e);
    return QZ_Sqrt(e->sumSq / e->n - m * m);
}

void demo_filters(void) {
    const double dt = 0.004, speed = 12.5, noiseAmp = 0.2; /* s, deg/s, deg */
    const int32_t window = 16;
    const double alpha = 0.125;
    const int cycles = 5000, settle = 500;
    static QZAVGFState avgf; /* static: zeroed, and the ring is too large for a small stack */
    OneFitterState fit;
    ErrStats rawErr = {0}, avgErr = {0}, fitErr = {0};
    double velSum = 0.0;

    QZAVGF_OnInit(&avgf, 1, window, dt);
    OneFitterInit(&fit, 1, &alpha);
    for (int k = 0; k < cycles; ++k) {
        const double truth = speed * dt * k;
        const double meas = truth + noiseAmp * lcg_noise();
        double avg, dAvg, fitted;
        QZAVGF_OnFilt(&avgf, &meas, &avg, &dAvg);
        OneFitterRun(&fit, &meas, &fitted);
        if (k < settle) continue;
        err_add(&rawErr, meas - truth);
        err_add(&avgErr, truth - avg);
        err_add(&fitErr, truth - fitted);
        velSum += dAvg;
    }
    const double perCycle = speed * dt;
    printf("filters: joint ramp %.1f deg/s at %.0f ms, uniform noise +-%.1f deg (RMS %.4f deg)\n",
           speed, dt * 1000.0, noiseAmp, err_rms(&rawErr));
    printf(
        "averaging filter, window %d: noise RMS %.4f -> %.4f deg, lag %.2f cycles, "
        "mean velocity %.3f deg/s\n",
        window, err_rms(&rawErr), err_rms(&avgErr), err_mean(&avgErr) / perCycle,
        velSum / (cycles - settle));
    printf("one-step fitter, alpha %.3f: noise RMS %.4f -> %.4f deg, lag %.2f cycles\n", alpha,
           err_rms(&rawErr), err_rms(&fitErr), err_mean(&fitErr) / perCycle);
}
