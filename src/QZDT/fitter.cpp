// One-step fitter: a one-pole (exponential) low-pass filter per channel,
//   y_k = x_k * alpha + (1 - alpha) * y_(k-1),
// starting from y = 0 rather than from the first input, so its output ramps up from zero.
// The record holds eight channels; a larger count is kept as given but never indexes past them.
#include "QZDT.h"

#include "internal/capacity.h"

namespace qz::detail {
namespace {

int32_t ChannelsInUse(int32_t n) { return n > kMaxChannels ? kMaxChannels : n; }

void FitterInit(OneFitterState *s, int32_t n, const double *alpha) {
    s->axisNum = n;
    const int32_t m = ChannelsInUse(n);
    for (int32_t i = 0; i < m; ++i) s->alpha[i] = alpha[i];
    for (int32_t i = 0; i < kMaxChannels; ++i) {
        s->state[i] = 0.0;
        s->lastOut[i] = 0.0;
    }
}

int32_t FitterRun(OneFitterState *s, const double *x, double *out) {
    if (s->axisNum < 1) return 0;
    const int32_t m = ChannelsInUse(s->axisNum);
    for (int32_t i = 0; i < m; ++i) {
        const double a = s->alpha[i];
        const double y = x[i] * a + (1.0 - a) * s->state[i];
        out[i] = y;
        s->state[i] = y;
    }
    for (int32_t i = 0; i < m; ++i) s->lastOut[i] = out[i];
    return m;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void OneFitterInit(OneFitterState *s, int32_t n, const double *alpha) {
    FitterInit(s, n, alpha);
}
QZ_API int32_t OneFitterRun(OneFitterState *s, const double *x, double *out) {
    return FitterRun(s, x, out);
}

}  // extern "C"
