/*
 * Example 04: velocity from slow, jittery position samples with the N-axis estimator.
 *
 * The controller runs a 1 ms cycle; an external sensor samples a joint every 4 ms on its own
 * clock and numbers its samples, but each sample reaches the controller 0, 1 or 2 ms late. The
 * joint rests until 0.2 s and then moves at 30 deg/s; at 1.2 s the sensor stops sending.
 *
 * Differencing what arrives, per control cycle or per arrival, mixes the delivery jitter into the
 * velocity. The estimator holds the latest sample as the position and measures the velocity
 * between the last two samples over their numbered sample periods, so the delivery delay drops
 * out; its smoothed velocity steps 0.8 deg/s per cycle towards the measured one and is dropped to
 * zero after 20 cycles (five sample periods) without a sample. It also scores how regularly the
 * samples arrive.
 *
 * Usage: 04_jittery_velocity   (prints its results; writes nothing)
 */
#include <stdint.h>
#include <stdio.h>

#include "QZDT.h"

static uint32_t lcg = 2024u;

/* Delivery delay of the next sample: 0, 1 or 2 ms. */
static int next_delay(void) {
    lcg = lcg * 1664525u + 1013904223u;
    return (int)((lcg >> 16) % 3u);
}

/* The joint's true position (deg) and velocity (deg/s) at time t (s). */
static double truth_pos(double t) { return t < 0.2 ? 10.0 : 10.0 + 30.0 * (t - 0.2); }
static double truth_vel(double t) { return t < 0.2 ? 0.0 : 30.0; }

static double absd(double x) { return x < 0.0 ? -x : x; }

int main(void) {
    const double samplePeriodMs = 4.0;
    const double velMax[1] = {100.0}, velCur[1] = {100.0}, ref[1] = {0.0};
    const int calls = 1300, sendUntil = 1200; /* ms */
    QZNEstState est;
    QZOnInitEst(&est, 1, samplePeriodMs, velMax, velCur);

    /* Sample i is taken at 4i ms and arrives at 4i + delay ms. */
    int nextSample = 0, nextArrival = 0, pendingDelay = next_delay();
    int32_t stamp = 0;
    double sample = truth_pos(0.0), held = 0.0, prevHeld = 0.0;
    double lastArrivalPos = sample, lastArrivalMs = 0.0, arrivalVel = 0.0;
    double sqErrCycle = 0.0, sqErrArrival = 0.0, sqErrEst = 0.0, maxErrEst = 0.0;
    int nCruise = 0, droppedAt = -1;
    double velAt1s = 0.0, heldAt1s = 0.0;

    for (int ms = 0; ms < calls; ++ms) {
        /* Deliver every sample whose arrival time has come (at most one per 4 ms). */
        nextArrival = 4 * nextSample + pendingDelay;
        if (ms >= nextArrival && 4 * nextSample <= sendUntil) {
            sample = truth_pos(4 * nextSample * 0.001);
            stamp = (int32_t)(nextSample % 9993);
            if (ms > 0) arrivalVel = (sample - lastArrivalPos) / ((ms - lastArrivalMs) * 0.001);
            lastArrivalPos = sample;
            lastArrivalMs = ms;
            ++nextSample;
            pendingDelay = next_delay();
        }
        QZNEst_OnDT(&est, stamp, &sample, &held, ref);
        const double cycleVel = ms > 0 ? (held - prevHeld) / 0.001 : 0.0;
        prevHeld = held;

        /* Compare while the joint cruises, once the estimate has caught up with the motion. */
        const double t = ms * 0.001, v = truth_vel(t - 0.006); /* a sample is 2 to 6 ms old */
        if (t >= 0.3 && t < 1.2) {
            sqErrCycle += (cycleVel - v) * (cycleVel - v);
            sqErrArrival += (arrivalVel - v) * (arrivalVel - v);
            sqErrEst += (est.velEst[0] - v) * (est.velEst[0] - v);
            if (absd(est.velEst[0] - v) > maxErrEst) maxErrEst = absd(est.velEst[0] - v);
            ++nCruise;
        }
        if (ms == 1000) {
            velAt1s = est.velEst[0];
            heldAt1s = held;
        }
        if (ms > sendUntil && droppedAt < 0 && est.velEst[0] == 0.0) droppedAt = ms;
    }

    printf(
        "estimator: 4 ms samples arriving 0-2 ms late, 1 ms cycle, joint at 30 deg/s from 0.2 s\n");
    printf(
        "velocity RMS error while cruising [deg/s]: per-cycle difference %.1f, per-arrival "
        "difference %.2f, estimator %.1e\n",
        QZ_Sqrt(sqErrCycle / nCruise), QZ_Sqrt(sqErrArrival / nCruise),
        QZ_Sqrt(sqErrEst / nCruise));
    printf(
        "at 1.0 s: estimated velocity %.3f deg/s, held position %.3f deg (true position %.3f "
        "deg)\n",
        velAt1s, heldAt1s, truth_pos(1.0));
    printf(
        "jitter score %.2f (0 = regular); samples stopped at %.1f s, velocity estimate dropped to "
        "0 at "
        "%.3f s\n",
        est.jitterScore, sendUntil * 0.001, droppedAt * 0.001);
    return 0;
}
