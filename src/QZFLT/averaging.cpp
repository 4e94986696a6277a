// Averaging filter.
//
// Each channel keeps its last L samples in a ring and the sliding sum of that ring, replaced by
// the exact sum of the window (avgResum) at every wrap of the ring (internal/moving_average.h);
// the work per sample does not depend on L. All channels share one ring index.
//
// The first call after initialisation or QZAVGF_OnEmpty fills the whole window with its input
// (its sum formed by repeated addition, as the sliding updates would have formed it), so the
// output starts at the input instead of ramping up from zero.
#include "QZFLT.h"

#include "internal/capacity.h"
#include "internal/moving_average.h"

namespace qz::detail {

namespace {

void Prime(QZAVGFState *s, const double *x, double *avg, double *dAvg) {
    const int32_t len = s->avgLen;
    for (int32_t ch = 0; ch < s->chNum; ++ch) {
        const double xi = x[ch];
        FillRing(s->ringBuf[ch], len, xi);
        s->avgSum[ch] = RingSum(s->ringBuf[ch], len);
        s->avgResum[ch] = s->avgSum[ch];
        avg[ch] = xi;
        dAvg[ch] = 0.0;
        s->prevAvg[ch] = xi;
    }
    s->ringIdx = 0;
    s->resetPending = 0;
}

void Filter(QZAVGFState *s, const double *x, double *avg, double *dAvg) {
    const int32_t i = s->ringIdx;
    const int32_t len = s->avgLen;
    for (int32_t ch = 0; ch < s->chNum; ++ch) {
        const double xi = x[ch];
        SlideResumOnWrap(&s->avgSum[ch], &s->avgResum[ch], s->ringBuf[ch], i, xi);
        const double a = s->avgSum[ch] / len;
        avg[ch] = a;
        dAvg[ch] = (a - s->prevAvg[ch]) / s->dt;
        s->prevAvg[ch] = a;
    }
    s->ringIdx = NextSlot(i, len);
}

int32_t AveragingFilterInit(QZAVGFState *s, int32_t chNum, int32_t avgLen, double dt) {
    if (chNum < 1 || chNum > kMaxChannels || avgLen < 1 || avgLen > kRingSlots) return 0;
    s->dt = dt;
    s->chNum = chNum;
    s->avgLen = avgLen;
    s->ringIdx = 0;
    s->isInit = 1;
    s->resetPending = 1;
    for (int32_t ch = 0; ch < kMaxChannels; ++ch) {
        s->prevAvg[ch] = 0.0;
        s->avgSum[ch] = 0.0;
        s->avgResum[ch] = 0.0;
    }
    return 1;
}

int32_t AveragingFilterEmpty(QZAVGFState *s) {
    if (s->isInit == 0) return 0;
    for (int32_t ch = 0; ch < kMaxChannels; ++ch) s->prevAvg[ch] = 0.0;
    s->resetPending = 1;
    return 1;
}

int32_t AveragingFilterStep(QZAVGFState *s, const double *x, double *avg, double *dAvg) {
    if (s->isInit == 0) return 0;
    if (s->resetPending == 1) {
        Prime(s, x, avg, dAvg);
    } else {
        Filter(s, x, avg, dAvg);
    }
    return 1;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API int32_t QZAVGF_OnInit(QZAVGFState *s, int32_t chNum, int32_t avgLen, double dt) {
    return AveragingFilterInit(s, chNum, avgLen, dt);
}
QZ_API int32_t QZAVGF_OnEmpty(QZAVGFState *s) { return AveragingFilterEmpty(s); }
QZ_API int32_t QZAVGF_OnFilt(QZAVGFState *s, const double *x, double *avg, double *dAvg) {
    return AveragingFilterStep(s, x, avg, dAvg);
}

}  // extern "C"
