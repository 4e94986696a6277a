// Helpers shared by the two N-axis trackers, which smooth each axis's raw output by a moving
// average over a ring of recent outputs.
#ifndef QZ_DT_SMOOTHING_H
#define QZ_DT_SMOOTHING_H

#include <cstdint>

#include "internal/capacity.h"
#include "internal/moving_average.h"

namespace qz::detail {

// Averaging span from the ratio of build-up time to cycle time: truncated toward zero and clamped
// to [lo, hi]. Compared before converting, so that an infinite or huge ratio gives hi and a NaN
// gives lo without an out-of-range conversion.
inline std::int32_t SpanFromRatio(double r, std::int32_t lo, std::int32_t hi) {
    if (r != r) return lo;
    if (r > static_cast<double>(hi)) return hi;
    if (r < static_cast<double>(lo)) return lo;
    return static_cast<std::int32_t>(r);
}

// Moving from the previous smoothed position to p over one cycle tau: the new velocity and the
// acceleration as first and second differences.
template <class State>
inline void UpdateDerivatives(State *s, int i, double p, double tau) {
    const double v = (p - s->pos[i]) / tau;
    s->acc[i] = (v - s->vel[i]) / tau;
    s->vel[i] = v;
    s->pos[i] = p;
}

// First step after initialisation or emptying, for both N-axis records: every axis's tracker
// snaps to its target (stepAxis(i, t, &out[i]) steps it, with whatever the record keeps of t),
// its ring is filled with the position p reached, so the average starts at rest there, and
// finishAxis(i, p) sets the record's own fields of that start. Each target is read before its
// output is written, so out may be the target array.
template <class State, class StepAxis, class FinishAxis>
inline void ResetAxes(State *s, const double *target, double *out, StepAxis stepAxis,
                      FinishAxis finishAxis) {
    for (int i = 0; i < s->axisNum; ++i) {
        const double t = target[i];
        s->target[i] = t;
        stepAxis(i, t, &out[i]);
        const double p = out[i];
        s->pos[i] = p;
        FillRing(s->ringBuf[i], s->avgLen[i], p);
        s->avgSum[i] = p * s->avgLenD[i];
        finishAxis(i, p);
        s->ringIdx[i] = 0;
        s->vel[i] = 0.0;
        s->acc[i] = 0.0;
    }
    s->resetPending = 0;
}

// Readers shared by the two N-axis records: the targets (when asked for) and the smoothed
// position, velocity and acceleration of every axis in use. The full reader refuses while a
// reset is pending, since the record then holds the motion from before the reset.
template <class State>
inline std::uint8_t ReadPVA(const State *s, double *target, double *pos, double *vel, double *acc) {
    if (s->isInit == 0 || s->resetPending == 1) return 0;
    for (int i = 0; i < s->axisNum; ++i) {
        target[i] = s->target[i];
        pos[i] = s->pos[i];
        vel[i] = s->vel[i];
        acc[i] = s->acc[i];
    }
    return 1;
}

template <class State>
inline std::uint8_t ReadPVAUnchecked(const State *s, double *pos, double *vel, double *acc) {
    if (s->isInit == 0) return 0;
    for (int i = 0; i < s->axisNum; ++i) {
        pos[i] = s->pos[i];
        vel[i] = s->vel[i];
        acc[i] = s->acc[i];
    }
    return 1;
}

}  // namespace qz::detail

#endif
