// Capacities of the caller-held records. The public headers size the records' arrays with macros
// of the same values; the assertions keep the two in step, so that no loop bound here can run
// past an array that a caller allocated.
#ifndef QZ_INTERNAL_CAPACITY_H
#define QZ_INTERNAL_CAPACITY_H

#include "QZBaseMath.h"

namespace qz::detail {

constexpr int kMaxAxes = 8;      // axes of the N-axis trackers and of the estimator
constexpr int kMaxChannels = 8;  // channels of the averaging filter and of the one-step fitter
constexpr int kRingSlots = 100;  // slots of a moving-average ring: the longest window

static_assert(QZ_MAX_AXES == kMaxAxes, "QZ_MAX_AXES sizes the per-axis arrays");
static_assert(QZ_MAX_CHANNELS == kMaxChannels, "QZ_MAX_CHANNELS sizes the per-channel arrays");
static_assert(QZ_RING_LEN == kRingSlots, "QZ_RING_LEN sizes the moving-average rings");

}  // namespace qz::detail

#endif
