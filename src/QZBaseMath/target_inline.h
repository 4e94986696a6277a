// The quantised step towards a target, for the modules that move a value this way every cycle.
#ifndef QZ_BASEMATH_TARGET_INLINE_H
#define QZ_BASEMATH_TARGET_INLINE_H

namespace qz::detail {

// Moves *value one step towards target, or onto it when within half a step (inclusive).
inline void StepToTarget(double *value, double target, double step) {
    const double h = step * 0.5;
    if (*value > target + h) {
        *value = *value - step;
    } else if (*value < target - h) {
        *value = *value + step;
    } else {
        *value = target;
    }
}

}  // namespace qz::detail

#endif
