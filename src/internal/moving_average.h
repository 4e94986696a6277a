// Moving average over a ring of recent samples: the kernel of the averaging filter and of the
// smoothing in the two N-axis trackers.
//
// The sum of the window is a sliding sum: each new sample takes the slot of the oldest, and the
// sum loses the one and gains the other as (sum - oldest) + new, so a step costs the same
// whatever the window length. Such a sum accumulates rounding without bound over a long run, so
// it is replaced from time to time by an exact sum of the window, on one of two schedules:
// - at every wrap of the ring (SlideResumOnWrap): a second sum collects the samples of the
//   current pass from 0.0; when the ring index comes back to slot 0 it holds the sum of exactly
//   the window, and takes the place of the sliding sum. The error is thereby limited to what one
//   pass can build up.
// - after a number of steps that the caller counts: the ring is summed afresh (RingSum).
#ifndef QZ_INTERNAL_MOVING_AVERAGE_H
#define QZ_INTERNAL_MOVING_AVERAGE_H

#include <cstdint>

namespace qz::detail {

// A window at rest on x: the first len slots all hold x.
inline void FillRing(double *ring, std::int32_t len, double x) {
    for (std::int32_t k = 0; k < len; ++k) ring[k] = x;
}

// Exact sum of the first len slots, from 0.0 in slot order.
inline double RingSum(const double *ring, std::int32_t len) {
    double sum = 0.0;
    for (std::int32_t k = 0; k < len; ++k) sum = sum + ring[k];
    return sum;
}

// The slot after j in a ring of len slots.
inline std::int32_t NextSlot(std::int32_t j, std::int32_t len) { return j + 1 >= len ? 0 : j + 1; }

// x takes slot j, and the sliding sum drops the sample it replaces before adding x.
inline void SlideSum(double *sum, double *ring, std::int32_t j, double x) {
    *sum = (*sum - ring[j]) + x;
    ring[j] = x;
}

// SlideSum with the exact re-sum at every wrap: passSum is the sum of the samples entered since
// the ring index was last 0, and replaces the sliding sum when the index is 0 again.
inline void SlideResumOnWrap(double *sum, double *passSum, double *ring, std::int32_t j, double x) {
    if (j == 0) {
        *sum = *passSum;
        *passSum = 0.0;
    }
    *passSum = *passSum + x;
    SlideSum(sum, ring, j, x);
}

}  // namespace qz::detail

#endif
