// N-axis smoothed tracker.
//
// Every axis runs its own single-axis tracker; the trackers share the cycle but nothing else.
// Each raw output then enters a ring of the axis's last avgLen raw outputs, and the mean of the
// ring is the output. The span is the number of cycles that the acceleration limit takes to
// build up at the jerk limit, so the average turns every step of the raw acceleration into a
// ramp of that length: the smoothed motion has an S-shaped velocity and a bounded jerk, and lags
// the raw one by (avgLen - 1) / 2 cycles.
//
// The mean comes from a sliding sum, so that its cost does not depend on the span, replaced by
// the exact sum of the window (avgResum) each time the ring wraps (internal/moving_average.h).
#include "QZBaseMath/scalar_inline.h"
#include "QZDT/smoothing.h"
#include "QZDT/tracker.h"
#include "internal/moving_average.h"

namespace qz::detail {

namespace {

constexpr double kJerkMin = 1.0, kJerkMax = 1e12;
constexpr std::int32_t kSpanMin = 3, kSpanMax = 30;
static_assert(kSpanMax <= kRingSlots, "the longest span fits the ring");

std::uint8_t SmoothedTrackerInit(QZNSyncDTSState *s, std::int32_t n, double cycleMs,
                                 const double *velLmt, const double *accLmt,
                                 const double *jerkLmt) {
    s->axisNum = 0;
    s->isInit = 0;
    if (n < 1 || n > kMaxAxes) return 0;
    for (int i = 0; i < n; ++i) {
        const double j = jerkLmt[i];
        if (j < kJerkMin || j > kJerkMax) return 0;
        VdtInit(&s->axis[i], cycleMs, velLmt[i], accLmt[i]);
        const double r = ((1000.0 * accLmt[i]) / j) / cycleMs;
        s->avgLen[i] = SpanFromRatio(r, kSpanMin, kSpanMax);
        s->avgLenD[i] = static_cast<double>(s->avgLen[i]);
        s->ringIdx[i] = 0;
    }
    s->isInit = 1;
    s->axisNum = n;
    s->resetPending = 1;
    return 1;
}

// First step after initialisation or emptying: the axis trackers snap to their targets and each
// ring is filled with that position, so the average starts at rest on it.
void SmoothedTrackerResetStep(QZNSyncDTSState *s, const double *target, double *out) {
    ResetAxes(
        s, target, out, [s](int i, double t, double *o) { VdtStep(&s->axis[i], t, o); },
        [s](int i, double p) { s->avgResum[i] = p * s->avgLenD[i]; });
}

std::uint8_t SmoothedTrackerStep(QZNSyncDTSState *s, const double *target, double *out) {
    if (s->isInit == 0) return 0;
    if (s->resetPending == 1) {
        SmoothedTrackerResetStep(s, target, out);
        return 1;
    }
    // All targets are read before any output is written, so out may be the target array.
    double y[kMaxAxes] = {};
    for (int i = 0; i < s->axisNum; ++i) {
        s->target[i] = target[i];
        VdtStep(&s->axis[i], s->target[i], &y[i]);
    }
    for (int i = 0; i < s->axisNum; ++i) {
        const std::int32_t j = s->ringIdx[i];
        SlideResumOnWrap(&s->avgSum[i], &s->avgResum[i], s->ringBuf[i], j, y[i]);
        const double p = s->avgSum[i] / s->avgLenD[i];
        out[i] = p;
        UpdateDerivatives(s, i, p, s->axis[i].baseDt);
        s->ringIdx[i] = NextSlot(j, s->avgLen[i]);
    }
    return 1;
}

template <class AxisOp>
std::uint8_t ForEachAxisTracker(QZNSyncDTSState *s, AxisOp op) {
    if (s->isInit == 0) return 0;
    for (int i = 0; i < s->axisNum; ++i) {
        if (op(&s->axis[i], i) == 0) return 0;
    }
    return 1;
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API uint8_t QZNSyncDTS_OnInit(QZNSyncDTSState *s, int32_t n, double cycleMs,
                                 const double *velLmt, const double *accLmt,
                                 const double *jerkLmt) {
    return SmoothedTrackerInit(s, n, cycleMs, velLmt, accLmt, jerkLmt);
}

QZ_API uint8_t QZNSyncDTS_OnEmpty(QZNSyncDTSState *s) {
    if (ForEachAxisTracker(s, [](QZVDTState *a, int) { return VdtEmpty(a); }) == 0) return 0;
    s->resetPending = 1;
    return 1;
}

QZ_API uint8_t QZNSyncDTS_OnSetRunTimeLmt(QZNSyncDTSState *s, const double *velLmt,
                                          const double *accLmt) {
    return ForEachAxisTracker(
        s, [=](QZVDTState *a, int i) { return VdtSetLmt(a, velLmt[i], accLmt[i]); });
}

QZ_API uint8_t QZNSyncDTS_OnSetRunTimeVel(QZNSyncDTSState *s, const double *velLmt) {
    return ForEachAxisTracker(s, [=](QZVDTState *a, int i) { return VdtSetVel(a, velLmt[i]); });
}

QZ_API uint8_t QZNSyncDTS_OnSetRunTimeAcc(QZNSyncDTSState *s, const double *accLmt) {
    return ForEachAxisTracker(s, [=](QZVDTState *a, int i) { return VdtSetAcc(a, accLmt[i]); });
}

QZ_API uint8_t QZNSyncDTS_OnDT(QZNSyncDTSState *s, const double *target, double *pos) {
    return SmoothedTrackerStep(s, target, pos);
}

QZ_API uint8_t QZNSyncDTS_OnDT2(QZNSyncDTSState *s, const double *target, double *pos, double *vel,
                                double *acc) {
    if (SmoothedTrackerStep(s, target, pos) == 0) return 0;
    for (int i = 0; i < s->axisNum; ++i) {
        vel[i] = s->vel[i];
        acc[i] = s->acc[i];
    }
    return 1;
}

QZ_API uint8_t QZNSyncDTS_OnDT_NoChange(QZNSyncDTSState *s, double *pos) {
    if (s->isInit == 0) return 0;
    double t[kMaxAxes] = {};
    for (int i = 0; i < s->axisNum; ++i) t[i] = s->target[i];
    return SmoothedTrackerStep(s, t, pos);
}

QZ_API uint8_t QZNSyncDTS_OnGetCurPVA(const QZNSyncDTSState *s, double *target, double *pos,
                                      double *vel, double *acc) {
    return ReadPVA(s, target, pos, vel, acc);
}

QZ_API uint8_t QZNSyncDTS_OnGetCurPVA_U(const QZNSyncDTSState *s, double *pos, double *vel,
                                        double *acc) {
    return ReadPVAUnchecked(s, pos, vel, acc);
}

}  // extern "C"
