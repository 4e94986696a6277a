// filters.hpp: the signal filters of QZFLT.h in the C++ interface.
//
// Families (namespace qz): AveragingFilter<N> Averaged<N> SmoothedValue
#ifndef QZMATH_FILTERS_HPP
#define QZMATH_FILTERS_HPP

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
// Moving average of N channels (N = 1..8) over a window of 1..100 samples, sample period dt.
template <std::size_t N>
class AveragingFilter {
    static_assert(N >= 1 && N <= 8, "qz::AveragingFilter<N>: the library averages 1 to 8 channels");

  public:
    AveragingFilter(std::int32_t window, double dt) noexcept
        : ok_(QZAVGF_OnInit(&s_, static_cast<std::int32_t>(N), window, dt) != 0) {}
    // bad_argument when the window lay outside 1..100 (every update then fails).
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    [[nodiscard]] Result<Averaged<N>> update(const Vec<N> &x) noexcept {
        Averaged<N> out{};
        const bool ok = QZAVGF_OnFilt(&s_, x.data(), out.avg.data(), out.rate.data()) != 0;
        return {out, ok ? Status::ok : Status::not_initialised};
    }
    [[nodiscard]] Status empty() noexcept {
        return QZAVGF_OnEmpty(&s_) ? Status::ok : Status::not_initialised;
    }
    const QZAVGFState &record() const noexcept { return s_; }
    QZAVGFState &record() noexcept { return s_; }

  private:
    QZAVGFState s_{};
    bool ok_;
};

// A value moved towards a target by a share alpha of the distance per update, the step within
// [stepMin, stepMax].
class SmoothedValue {
  public:
    SmoothedValue(double start, double alpha, double stepMax, double stepMin) noexcept
        : ok_(QZSMV_OnInit(&s_, start, alpha, stepMax, stepMin) != 0) {}
    // bad_argument when the parameters were refused: the defaults (0.002, 0.01, 0.002) are in force.
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    [[nodiscard]] double update(double target) noexcept {
        double v = 0.0;
        QZSMV_OnUpdateV(&s_, target, &v);
        return v;
    }
    double value() const noexcept { return s_.value; }
    bool is_zero() const noexcept { return s_.isZero != 0; }
    bool is_one() const noexcept { return s_.isOne != 0; }
    const QZSMVState &record() const noexcept { return s_; }
    QZSMVState &record() noexcept { return s_; }

  private:
    QZSMVState s_{};
    bool ok_;
};

}  // namespace qz

#endif  // QZMATH_FILTERS_HPP
