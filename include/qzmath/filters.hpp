// filters.hpp: the signal filters of QZFLT.h in the C++ interface.
//
// Families (namespace qz): AveragingFilter<N> Averaged<N> SmoothedValue
#ifndef QZMATH_FILTERS_HPP
#define QZMATH_FILTERS_HPP

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "QZFLT.h"
#include "core.hpp"

namespace qz {

// Average of the window and its rate of change, per channel.
template <std::size_t N>
struct Averaged {
    Vec<N> avg, rate;
};
// Moving average of N channels (N = 1..8) over a window of 1..100 samples, sample period dt
// (finite, above zero: the divisor of the rate). A sample with a NaN or an infinity never enters
// the window, where it would stay for the window's length.
template <std::size_t N>
class AveragingFilter {
    static_assert(N >= 1 && N <= 8, "qz::AveragingFilter<N>: the library averages 1 to 8 channels");

  public:
    AveragingFilter(std::int32_t window, double dt) noexcept
        : ok_(std::isfinite(dt) && dt > 0.0 &&
              QZAVGF_OnInit(&s_, static_cast<std::int32_t>(N), window, dt) != 0) {}
    // bad_argument when the window lay outside 1..100 or dt was not finite and above zero (every
    // update then fails).
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    // The window's mean and rate; non_finite, the window unchanged and the last outputs given, when
    // x holds a NaN or an infinity. Finite samples can still overflow the window's sum or the rate
    // (samples near the largest double, a subnormal dt): that update reports non_finite and gives
    // the last finite outputs; the sample is in the window, which forgets it after its length.
    [[nodiscard]] Result<Averaged<N>> update(const Vec<N> &x) noexcept {
        if (!ok_) return {last_, Status::not_initialised};
        if (!detail::all_finite(x)) return {last_, Status::non_finite};
        Averaged<N> out;
        (void)QZAVGF_OnFilt(&s_, x.data(), out.avg.data(), out.rate.data());
        if (!detail::all_finite(out.avg, out.rate)) return {last_, Status::non_finite};
        last_ = out;
        return last_;
    }
    // The next update starts the window afresh from its sample.
    [[nodiscard]] Status restart() noexcept {
        return QZAVGF_OnEmpty(&s_) != 0 ? Status::ok : Status::not_initialised;
    }
    const QZAVGFState &record() const noexcept { return s_; }

  private:
    QZAVGFState s_{};
    Averaged<N> last_{};
    bool ok_;
};

// A value moved towards a target by a share alpha of the distance per update, the step within
// [stepMin, stepMax].
class SmoothedValue {
  public:
    SmoothedValue(double start, double alpha, double stepMax, double stepMin) noexcept
        : ok_(detail::all_finite(start, alpha, stepMax, stepMin) &&
              QZSMV_OnInit(&s_, start, alpha, stepMax, stepMin) != 0) {
        if (!ok_) (void)QZSMV_OnInit(&s_, std::isfinite(start) ? start : 0.0, 0.0, 0.0, 0.0);
    }
    // bad_argument when the parameters were refused: the defaults (alpha 0.002, steps 0.01 and
    // 0.002) are in force, from start (0 when start was not finite).
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    // The new value; non_finite, the value unchanged, for a NaN or infinite target.
    [[nodiscard]] Result<double> update(double target) noexcept {
        if (!std::isfinite(target)) return {s_.value, Status::non_finite};
        double v = 0.0;
        QZSMV_OnUpdateV(&s_, target, &v);
        return v;
    }
    double value() const noexcept { return s_.value; }
    bool is_zero() const noexcept { return s_.isZero != 0; }
    bool is_one() const noexcept { return s_.isOne != 0; }
    const QZSMVState &record() const noexcept { return s_; }

  private:
    QZSMVState s_{};
    bool ok_;
};

}  // namespace qz

#endif  // QZMATH_FILTERS_HPP
