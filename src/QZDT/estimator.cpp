// N-axis estimator: sample-and-hold of slow, jittery position samples with a velocity estimate.
//
// The caller calls once per 1 ms control cycle; a sample arrives every cycleMs calls or so and is
// recognised by a new stamp. Between samples the last one is held. Each new sample gives a
// measured velocity over the stamp difference (stamps wrap modulo 9993), cut to zero while the
// axis's reference velocity is near its maximum (hysteresis between 0.97 and 0.85 of it) and
// clamped to the current limit and to 0.4 of the maximum. The smoothed estimate moves towards
// the measured velocity in fixed quantised steps, once per call, and is dropped to zero when
// samples stop for holdLimit calls. Every 200 samples the arrival jitter is scored from the
// deviation of each arrival interval from the nominal one.
#include "QZDT.h"

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZBaseMath/target_inline.h"
#include "internal/capacity.h"

namespace qz::detail {

namespace {

constexpr int32_t kStampWrap = 9993;
constexpr int32_t kMaxHold = 50;
constexpr int32_t kScoreEvery = 200;
constexpr double kScoreMax = 100.0;
constexpr double kSampleStep = 0.8;    // estimate step per new sample
constexpr double kSlowHoldStep = 1.5;  // estimate step while held, when |velMeas| < 1
constexpr double kNearOn = 0.97;       // of the maximum: the cut switches on above this
constexpr double kNearOff = 0.85;      // and off below this
constexpr double kMeasCap = 0.4;       // of the maximum: the measured velocity never exceeds it

// Axis loops never leave the record's arrays, whatever axisNum holds.
int Axes(const QZNEstState *s) {
    if (s->axisNum < 0) return 0;
    return s->axisNum > kMaxAxes ? kMaxAxes : s->axisNum;
}

// Truncation towards zero into a 32-bit int; NaN and values outside its range, which no valid
// sample period produces, give 0 instead of an undefined conversion.
int32_t TruncInt(double x) {
    if (x > -2147483649.0 && x < 2147483648.0) return static_cast<int32_t>(x);
    return 0;
}

// The penalty of one arrival interval of `ticks` calls: nothing within one tick of nominal
// or exactly at a band edge, the deviation below 20 % of the period, ten times it up to 50 %,
// thirty times it beyond.
int64_t ArrivalPenalty(int32_t ticks, double dt) {
    const int64_t nominal = TruncInt(dt * 1000.0 + 0.0001);
    int64_t dev = static_cast<int64_t>(ticks) - nominal;
    if (dev < 0) dev = -dev;
    const int64_t t20 = TruncInt(dt * 200.0 + 0.0001);
    const int64_t t50 = TruncInt(dt * 500.0 + 0.0001);
    if (dev >= 1 && dev < t20) return dev;
    if (dev > t20 && dev < t50) return 10 * dev;
    if (dev > t50) return 30 * dev;
    return 0;
}

void ScoreArrival(QZNEstState *s, int32_t ticks) {
    s->sampleCount += 1;
    const int64_t sum = s->jitterSum + ArrivalPenalty(ticks, s->dt);
    s->jitterSum = sum > INT32_MAX ? INT32_MAX : static_cast<int32_t>(sum);
    if (s->sampleCount > kScoreEvery - 1) {
        double score = static_cast<double>(s->jitterSum) / static_cast<double>(kScoreEvery);
        if (score > kScoreMax) score = kScoreMax;
        s->jitterScore = score;
        s->sampleCount = 0;
        s->jitterSum = 0;
    }
}

void Restart(QZNEstState *s, int32_t stamp, const double *x, double *out) {
    const int n = Axes(s);
    for (int i = 0; i < n; ++i) {
        s->lastSample[i] = x[i];
        s->heldPos[i] = x[i];
        s->velEst[i] = 0.0;
        s->velMeas[i] = 0.0;
        s->velRaw[i] = 0.0;
        s->nearLimit[i] = 0;
        out[i] = x[i];
    }
    s->resetPending = 0;
    s->ticksSinceSample = 0;
    s->lastStamp = stamp;
}

void Hold(QZNEstState *s, double *out) {
    const int n = Axes(s);
    s->ticksSinceSample += 1;
    for (int i = 0; i < n; ++i) {
        const double step = Fabs(s->velMeas[i]) < 1.0 ? kSlowHoldStep : kSampleStep;
        StepToTarget(&s->velEst[i], s->velMeas[i], step);
        s->heldPos[i] = s->lastSample[i];
    }
    if (s->ticksSinceSample >= s->holdLimit) {
        s->ticksSinceSample = s->holdLimit;
        for (int i = 0; i < n; ++i) {
            s->velEst[i] = 0.0;
            out[i] = s->lastSample[i];
        }
    } else {
        for (int i = 0; i < n; ++i) out[i] = s->heldPos[i];
    }
}

// Measured velocity of one axis from a new sample over T seconds, with the near-limit cut and
// the two clamps.
void Measure(QZNEstState *s, int i, double x, double T, double r) {
    const double v = (x - s->lastSample[i]) / T;
    s->velMeas[i] = v;
    s->velRaw[i] = v;
    const double vmax = s->velLmtMax[i];
    if (Fabs(r) > kNearOn * vmax) s->nearLimit[i] = 1;
    if (Fabs(r) < kNearOff * vmax) {
        s->nearLimit[i] = 0;
    } else if (s->nearLimit[i] == 1) {
        s->velMeas[i] = 0.0;
    }
    s->lastSample[i] = x;
    const double cur = s->velLmtCur[i];
    if (s->velMeas[i] > cur) {
        s->velMeas[i] = cur;
    } else if (s->velMeas[i] < -cur) {
        s->velMeas[i] = -cur;
    }
    const double cap = kMeasCap * vmax;
    if (s->velMeas[i] > cap) {
        s->velMeas[i] = cap;
    } else if (s->velMeas[i] < -cap) {
        s->velMeas[i] = -cap;
    }
}

void NewSample(QZNEstState *s, int32_t stamp, const double *x, double *out, const double *r) {
    const int n = Axes(s);
    int64_t delta = static_cast<int64_t>(stamp) - s->lastStamp;
    if (delta < 0) delta += kStampWrap;
    ScoreArrival(s, s->ticksSinceSample + 1);
    const double T = static_cast<double>(delta) * s->dt;
    for (int i = 0; i < n; ++i) Measure(s, i, x[i], T, r[i]);
    s->ticksSinceSample = 0;
    s->lastStamp = stamp;
    for (int i = 0; i < n; ++i) {
        StepToTarget(&s->velEst[i], s->velMeas[i], kSampleStep);
        s->heldPos[i] = s->lastSample[i];
        out[i] = s->lastSample[i];
    }
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void QZOnInitEst(QZNEstState *s, int32_t n, double cycleMs, const double *velLmtMax,
                        const double *velLmtCur) {
    s->axisNum = n;
    const int axes = Axes(s);
    for (int i = 0; i < axes; ++i) {
        s->heldPos[i] = 0.0;
        s->velEst[i] = 0.0;
        s->velMeas[i] = 0.0;
        s->lastSample[i] = 0.0;
        s->velLmtCur[i] = velLmtCur[i];
        s->velLmtMax[i] = velLmtMax[i];
    }
    s->dt = cycleMs * 0.001;
    s->ticksSinceSample = 0;
    s->cycleMsInt = TruncInt(cycleMs);
    const double hold = 5.0 * cycleMs;
    s->holdLimit = (hold > kMaxHold || hold != hold) ? kMaxHold : TruncInt(hold);
    s->resetPending = 1;
    s->sampleCount = 0;
    s->jitterSum = 0;
    s->jitterScore = 0.0;
}

QZ_API int32_t QZNEst_OnEmpty(QZNEstState *s) {
    s->resetPending = 1;
    const int n = Axes(s);
    for (int i = 0; i < n; ++i) {
        s->heldPos[i] = 0.0;
        s->velEst[i] = 0.0;
    }
    return 1;
}

QZ_API int32_t QZNEst_OnSetRunTimeLmt(QZNEstState *s, const double *velLmtCur) {
    const int n = Axes(s);
    for (int i = 0; i < n; ++i) {
        const double v = velLmtCur[i];
        s->velLmtCur[i] = v > s->velLmtMax[i] ? s->velLmtMax[i] : v;
    }
    return 1;
}

QZ_API int32_t QZNEst_OnDT(QZNEstState *s, int32_t stamp, const double *x, double *out,
                           const double *r) {
    if (s->resetPending == 1) {
        Restart(s, stamp, x, out);
    } else if (stamp == s->lastStamp) {
        Hold(s, out);
    } else {
        NewSample(s, stamp, x, out, r);
    }
    return 1;
}

}  // extern "C"
