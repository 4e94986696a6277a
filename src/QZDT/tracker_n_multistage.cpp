// N-axis multi-stage tracker.
//
// The N-axis smoothed tracker with a multi-stage tracker per axis. One mode serves all axes: in
// the cascade modes the correction stages already shape the motion, so the averaging span is
// fixed (5 cycles in mode 1, 20 otherwise); in mode 0 it follows the jerk limit as in the plain
// N-axis tracker, but may reach 100 cycles.
//
// The running sum of a ring is brought back to the exact sum of its slots after every 1000
// steps. To keep the cost of a step bounded by one re-summation, at most one axis is re-summed
// per call: since all counters advance together they pass 1000 on the same call, and the axes
// are then re-summed on successive calls in index order.
//
// A target that moves by more than 1% of stage 0's velocity limit in one cycle is faster than
// the axis may follow; the axis's sticky targetJump flag records it for the caller.
#include "QZBaseMath/scalar_inline.h"
#include "QZDT/smoothing.h"
#include "QZDT/tracker.h"
#include "QZDT/tracker_multistage.h"
#include "internal/moving_average.h"

namespace qz::detail {

namespace {

constexpr double kJerkMin = 1000.0, kJerkMax = 1e7;
constexpr std::int32_t kSpanMin = 5, kSpanMax = 100;
constexpr std::int32_t kSpanMode1 = 5, kSpanCascade = 20;
static_assert(kSpanMax <= kRingSlots && kSpanCascade <= kRingSlots, "every span fits the ring");
constexpr std::int32_t kResumEvery = 1000;
constexpr double kJumpShare = 0.01;

std::uint8_t MultiStageSmoothedInit(QZNSyncDTSMState *s, std::int32_t n, double cycleMs,
                                    const double *velLmt, const double *accLmt, double *jerkLmt,
                                    std::int32_t mode) {
    s->axisNum = 0;
    s->isInit = 0;
    if (n < 1 || n > kMaxAxes) return 0;
    for (int i = 0; i < n; ++i) {
        if (jerkLmt[i] > kJerkMax) {
            jerkLmt[i] = kJerkMax;
        } else if (jerkLmt[i] < kJerkMin) {
            jerkLmt[i] = kJerkMin;
        }
        s->axis[i].mode = mode;
        VdtmInit(&s->axis[i], cycleMs, velLmt[i], accLmt[i], mode);
        std::int32_t span = 0;
        if (mode == 1) {
            span = kSpanMode1;
        } else if (mode != 0) {
            span = kSpanCascade;
        } else {
            span = SpanFromRatio(((1000.0 * accLmt[i]) / jerkLmt[i]) / cycleMs, kSpanMin, kSpanMax);
        }
        s->avgLen[i] = span;
        s->avgLenD[i] = static_cast<double>(span);
        s->resumCount[i] = 0;
        s->ringIdx[i] = 0;
    }
    s->isInit = 1;
    s->axisNum = n;
    s->resetPending = 1;
    return 1;
}

// First step after initialisation or emptying: as the N-axis tracker's, the previous target and
// the raw position starting at the target and the position reached.
void MultiStageSmoothedResetStep(QZNSyncDTSMState *s, const double *target, double *out) {
    ResetAxes(
        s, target, out,
        [s](int i, double t, double *o) {
            s->prevTarget[i] = t;
            VdtmStep(&s->axis[i], t, o);
        },
        [s](int i, double p) {
            s->rawPos[i] = p;
            s->resumCount[i] = 0;
        });
}

// The raw outputs y enter the rings; the smoothed positions go to out.
void SmoothRawOutputs(QZNSyncDTSMState *s, const double *y, double *out) {
    for (int i = 0; i < s->axisNum; ++i) s->rawPos[i] = y[i];
    bool resummed = false;
    for (int i = 0; i < s->axisNum; ++i) {
        const std::int32_t j = s->ringIdx[i];
        SlideSum(&s->avgSum[i], s->ringBuf[i], j, y[i]);
        const double p = s->avgSum[i] / s->avgLenD[i];
        out[i] = p;
        UpdateDerivatives(s, i, p, s->axis[i].stage[0].baseDt);
        s->ringIdx[i] = NextSlot(j, s->avgLen[i]);
        s->resumCount[i] = s->resumCount[i] + 1;
        if (!resummed && s->resumCount[i] > kResumEvery) {
            s->resumCount[i] = 0;
            s->avgSum[i] = RingSum(s->ringBuf[i], s->avgLen[i]);
            resummed = true;
        }
    }
}

std::uint8_t MultiStageSmoothedStep(QZNSyncDTSMState *s, const double *target, double *out) {
    if (s->isInit == 0) return 0;
    if (s->resetPending == 1) {
        MultiStageSmoothedResetStep(s, target, out);
        return 1;
    }
    // All targets are read before any output is written, so out may be the target array.
    double y[kMaxAxes] = {};
    for (int i = 0; i < s->axisNum; ++i) {
        const double t = target[i];
        s->target[i] = t;
        QZVDTMState *a = &s->axis[i];
        if (Fabs(s->prevTarget[i] - t) > kJumpShare * a->stage[0].velLmt) a->targetJump = 1;
        VdtmStep(a, t, &y[i]);
        s->prevTarget[i] = t;
    }
    SmoothRawOutputs(s, y, out);
    return 1;
}

std::uint8_t MultiStageSmoothedStepStored(QZNSyncDTSMState *s, double *out) {
    if (s->isInit == 0 || s->resetPending == 1) return 0;
    double y[kMaxAxes] = {};
    for (int i = 0; i < s->axisNum; ++i) VdtmStep(&s->axis[i], s->target[i], &y[i]);
    SmoothRawOutputs(s, y, out);
    return 1;
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API uint8_t QZNSyncDTS_OnInitM(QZNSyncDTSMState *s, int32_t n, double cycleMs,
                                  const double *velLmt, const double *accLmt, double *jerkLmt,
                                  int32_t mode) {
    return MultiStageSmoothedInit(s, n, cycleMs, velLmt, accLmt, jerkLmt, mode);
}

QZ_API uint8_t QZNSyncDTS_OnEmptyM(QZNSyncDTSMState *s) {
    if (s->isInit == 0) return 0;
    for (int i = 0; i < s->axisNum; ++i) VdtmEmpty(&s->axis[i]);
    s->resetPending = 1;
    return 1;
}

QZ_API uint8_t QZNSyncDTS_OnSetRunTimeLmtM(QZNSyncDTSMState *s, const double *velLmt,
                                           const double *accLmt) {
    if (s->isInit == 0) return 0;
    for (int i = 0; i < s->axisNum; ++i)
        VdtmSetLmt(&s->axis[i], velLmt[i], accLmt[i], s->axis[i].mode);
    return 1;
}

QZ_API uint8_t QZNSyncDTS_OnDTM(QZNSyncDTSMState *s, const double *target, double *pos) {
    return MultiStageSmoothedStep(s, target, pos);
}

QZ_API uint8_t QZNSyncDTS_OnDT_UM(QZNSyncDTSMState *s, double *pos) {
    return MultiStageSmoothedStepStored(s, pos);
}

QZ_API uint8_t QZNSyncDTS_OnGetCurPVAM(const QZNSyncDTSMState *s, double *target, double *pos,
                                       double *vel, double *acc) {
    return ReadPVA(s, target, pos, vel, acc);
}

QZ_API uint8_t QZNSyncDTS_OnGetCurPVA_UM(const QZNSyncDTSMState *s, double *pos, double *vel,
                                         double *acc) {
    return ReadPVAUnchecked(s, pos, vel, acc);
}

}  // extern "C"
