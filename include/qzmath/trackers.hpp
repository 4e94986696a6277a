// trackers.hpp: the motion trackers and the other per-cycle families of QZDT.h in the C++
// interface: single-axis and N-axis trackers, their multi-stage forms, the estimator, the one-pole
// fitter and the joint error comparator.
//
// Families (namespace qz): Tracker MultiStageTracker SmoothedTracker<N>
//   SmoothedMultiStageTracker<N> PVA<N> Estimator<N> OneStepFitter<N> ErrorComparator
//
// Each class owns its C record: construction initialises it, step or update advances one cycle,
// and record() gives it to the C API as it is. The classes are copyable values without heap.
#ifndef QZMATH_TRACKERS_HPP
#define QZMATH_TRACKERS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "QZDT.h"
#include "core.hpp"

namespace qz {

namespace detail {
template <class T>
inline bool same_bytes(const T &a, const T &b) noexcept {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}
// The clamps of a tracker's initialisation, as its header states them.
constexpr bool limits_clamped(double vel, double acc) noexcept {
    return !(vel >= 0.1 && vel <= 200.0) || !(acc >= 1.0 && acc <= 1000.0);
}
// The fields of a single-axis record that a run-time limit request may change, as bits, so that
// a NaN request that was taken does not pass for an ignored one.
struct LimitFields {
    std::uint64_t acc, vel, target;
    std::uint8_t isInit, pending;
};
inline LimitFields limit_fields(const QZVDTState &s) noexcept {
    LimitFields f{0, 0, 0, s.isInit, s.velLmtPending};
    std::memcpy(&f.acc, &s.accLmt, sizeof f.acc);
    std::memcpy(&f.vel, &s.velLmt, sizeof f.vel);
    std::memcpy(&f.target, &s.velLmtTarget, sizeof f.target);
    return f;
}
// What the request did: nothing (ignored), a pending ramp, or a limit in force.
inline Limit limit_outcome(const LimitFields &before, const QZVDTState &after) noexcept {
    if (!before.isInit) return Limit::refused;
    const LimitFields now = limit_fields(after);
    if (now.acc == before.acc && now.vel == before.vel && now.target == before.target &&
        now.pending == before.pending)
        return Limit::ignored;
    return after.velLmtPending ? Limit::ramping : Limit::applied;
}
}  // namespace detail

// Single-axis tracker: cycle in ms, limits in units/s and units/s^2.
class Tracker {
  public:
    Tracker(double cycleMs, double velLmt, double accLmt) noexcept
        : init_(detail::limits_clamped(velLmt, accLmt) ? Limit::clamped : Limit::applied) {
        (void)QZVDT_OnInit(&s_, cycleMs, velLmt, accLmt);
    }
    // clamped when the constructor's limits were brought into range.
    [[nodiscard]] Limit init_limits() const noexcept { return init_; }
    // One cycle towards target: the new commanded position. The first step after construction
    // or empty() outputs the target itself.
    [[nodiscard]] double step(double target) noexcept {
        double out = s_.pos;
        (void)QZVDT_OnDT(&s_, target, &out);
        return out;
    }
    void empty() noexcept { (void)QZVDT_OnEmpty(&s_); }
    [[nodiscard]] Limit set_limits(double velLmt, double accLmt) noexcept {
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeLmt(&s_, velLmt, accLmt);
        return detail::limit_outcome(before, s_);
    }
    [[nodiscard]] Limit set_velocity_limit(double velLmt) noexcept {
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeVel(&s_, velLmt);
        return detail::limit_outcome(before, s_);
    }
    [[nodiscard]] Limit set_acceleration_limit(double accLmt) noexcept {
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeAcc(&s_, accLmt);
        return detail::limit_outcome(before, s_);
    }
    double position() const noexcept { return s_.pos; }
    double velocity() const noexcept { return s_.vel; }
    const QZVDTState &record() const noexcept { return s_; }
    QZVDTState &record() noexcept { return s_; }

  private:
    QZVDTState s_{};
    Limit init_;
};

// Multi-stage single-axis tracker (mode 0 plain, 1 slowed main stage, other values cascade).
// init_limits() judges the limits as given; the correction stages' shares of them (V/6, V/18,
// V/90) are clamped on their own, so a small V gives them the floor of 0.1.
class MultiStageTracker {
  public:
    MultiStageTracker(double cycleMs, double velLmt, double accLmt, std::int32_t mode) noexcept
        : init_(detail::limits_clamped(velLmt, accLmt) ? Limit::clamped : Limit::applied) {
        (void)QZVDT_OnInitM(&s_, cycleMs, velLmt, accLmt, mode);
        s_.mode = mode;  // the initialiser leaves the mode to the caller
    }
    [[nodiscard]] Limit init_limits() const noexcept { return init_; }
    [[nodiscard]] double step(double target) noexcept {
        double out = 0.0;
        (void)QZVDT_OnDT_BM(&s_, target, &out);
        return out;
    }
    void empty() noexcept { (void)QZVDT_OnEmptyM(&s_); }
    // Reports what became of the main stage's request.
    [[nodiscard]] Limit set_limits(double velLmt, double accLmt) noexcept {
        const auto before = detail::limit_fields(s_.stage[0]);
        (void)QZVDT_OnSetRunTimeLmtM(&s_, velLmt, accLmt, s_.mode);
        return detail::limit_outcome(before, s_.stage[0]);
    }
    const QZVDTMState &record() const noexcept { return s_; }
    QZVDTMState &record() noexcept { return s_; }

  private:
    QZVDTMState s_{};
    Limit init_;
};

// Positions, velocities and accelerations of N axes.
template <std::size_t N>
struct PVA {
    Vec<N> pos, vel, acc;
};

// N-axis smoothed tracker (N = 1..8): velocity, acceleration and jerk limits per axis.
template <std::size_t N>
class SmoothedTracker {
    static_assert(N >= 1 && N <= 8, "qz::SmoothedTracker<N>: the library tracks 1 to 8 axes");

  public:
    SmoothedTracker(double cycleMs, const Vec<N> &velLmt, const Vec<N> &accLmt,
                    const Vec<N> &jerkLmt) noexcept
        : ok_(QZNSyncDTS_OnInit(&s_, static_cast<std::int32_t>(N), cycleMs, velLmt.data(),
                                accLmt.data(), jerkLmt.data()) != 0) {
        for (std::size_t i = 0; i < N; ++i)
            init_.axis[i] = !ok_                                           ? Limit::refused
                            : detail::limits_clamped(velLmt[i], accLmt[i]) ? Limit::clamped
                                                                           : Limit::applied;
    }
    // bad_argument when a jerk limit lay outside [1, 1e12]: the record is then unusable.
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    [[nodiscard]] const LimitReport<N> &init_limits() const noexcept { return init_; }
    // One cycle towards target: the smoothed positions. The first step after construction or
    // empty() outputs the targets.
    [[nodiscard]] Result<Vec<N>> step(const Vec<N> &target) noexcept {
        Vec<N> pos{};
        const bool ok = QZNSyncDTS_OnDT(&s_, target.data(), pos.data()) != 0;
        return {pos, ok ? Status::ok : Status::not_initialised};
    }
    // As step, with the smoothed velocities and accelerations.
    [[nodiscard]] Result<PVA<N>> step_pva(const Vec<N> &target) noexcept {
        PVA<N> out{};
        const bool ok = QZNSyncDTS_OnDT2(&s_, target.data(), out.pos.data(), out.vel.data(),
                                         out.acc.data()) != 0;
        return {out, ok ? Status::ok : Status::not_initialised};
    }
    [[nodiscard]] Status empty() noexcept {
        return QZNSyncDTS_OnEmpty(&s_) ? Status::ok : Status::not_initialised;
    }
    [[nodiscard]] LimitReport<N> set_limits(const Vec<N> &velLmt, const Vec<N> &accLmt) noexcept {
        const auto before = snapshot();
        (void)QZNSyncDTS_OnSetRunTimeLmt(&s_, velLmt.data(), accLmt.data());
        return report(before);
    }
    [[nodiscard]] LimitReport<N> set_velocity_limits(const Vec<N> &velLmt) noexcept {
        const auto before = snapshot();
        (void)QZNSyncDTS_OnSetRunTimeVel(&s_, velLmt.data());
        return report(before);
    }
    [[nodiscard]] LimitReport<N> set_acceleration_limits(const Vec<N> &accLmt) noexcept {
        const auto before = snapshot();
        (void)QZNSyncDTS_OnSetRunTimeAcc(&s_, accLmt.data());
        return report(before);
    }
    const QZNSyncDTSState &record() const noexcept { return s_; }
    QZNSyncDTSState &record() noexcept { return s_; }

  private:
    std::array<detail::LimitFields, N + 1> snapshot() const noexcept {
        std::array<detail::LimitFields, N + 1> f{};
        for (std::size_t i = 0; i < N; ++i) f[i] = detail::limit_fields(s_.axis[i]);
        f[N].isInit = s_.isInit;
        return f;
    }
    LimitReport<N> report(const std::array<detail::LimitFields, N + 1> &before) const noexcept {
        LimitReport<N> r{};
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] =
                before[N].isInit ? detail::limit_outcome(before[i], s_.axis[i]) : Limit::refused;
        return r;
    }

    QZNSyncDTSState s_{};
    bool ok_;
    LimitReport<N> init_{};
};

// N-axis multi-stage tracker (N = 1..8), one mode for all axes; jerk limits clamped to
// [1000, 1e7].
template <std::size_t N>
class SmoothedMultiStageTracker {
    static_assert(N >= 1 && N <= 8,
                  "qz::SmoothedMultiStageTracker<N>: the library tracks 1 to 8 axes");

  public:
    SmoothedMultiStageTracker(double cycleMs, const Vec<N> &velLmt, const Vec<N> &accLmt,
                              const Vec<N> &jerkLmt, std::int32_t mode) noexcept {
        Vec<N> jerk = jerkLmt;
        (void)QZNSyncDTS_OnInitM(&s_, static_cast<std::int32_t>(N), cycleMs, velLmt.data(),
                                 accLmt.data(), jerk.data(), mode);
        for (std::size_t i = 0; i < N; ++i) {
            const bool clamped = detail::limits_clamped(velLmt[i], accLmt[i]) ||
                                 !detail::same_bytes(jerk[i], jerkLmt[i]);
            init_.axis[i] = clamped ? Limit::clamped : Limit::applied;
        }
    }
    [[nodiscard]] const LimitReport<N> &init_limits() const noexcept { return init_; }
    [[nodiscard]] Vec<N> step(const Vec<N> &target) noexcept {
        Vec<N> pos{};
        (void)QZNSyncDTS_OnDTM(&s_, target.data(), pos.data());
        return pos;
    }
    // One cycle towards the stored targets; reset_pending before the first step.
    [[nodiscard]] Result<Vec<N>> step_hold() noexcept {
        Vec<N> pos{};
        const bool ok = QZNSyncDTS_OnDT_UM(&s_, pos.data()) != 0;
        return {pos, ok ? Status::ok : Status::reset_pending};
    }
    // Current positions, velocities and accelerations; reset_pending before the first step.
    [[nodiscard]] Result<PVA<N>> pva() const noexcept {
        PVA<N> out{};
        Vec<N> target{};
        const bool ok = QZNSyncDTS_OnGetCurPVAM(&s_, target.data(), out.pos.data(), out.vel.data(),
                                                out.acc.data()) != 0;
        return {out, ok ? Status::ok : Status::reset_pending};
    }
    void empty() noexcept { (void)QZNSyncDTS_OnEmptyM(&s_); }
    // Reports what became of each axis's main-stage request.
    [[nodiscard]] LimitReport<N> set_limits(const Vec<N> &velLmt, const Vec<N> &accLmt) noexcept {
        std::array<detail::LimitFields, N> before{};
        for (std::size_t i = 0; i < N; ++i) before[i] = detail::limit_fields(s_.axis[i].stage[0]);
        (void)QZNSyncDTS_OnSetRunTimeLmtM(&s_, velLmt.data(), accLmt.data());
        LimitReport<N> r{};
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] =
                s_.isInit ? detail::limit_outcome(before[i], s_.axis[i].stage[0]) : Limit::refused;
        return r;
    }
    const QZNSyncDTSMState &record() const noexcept { return s_; }
    QZNSyncDTSMState &record() noexcept { return s_; }

  private:
    QZNSyncDTSMState s_{};
    LimitReport<N> init_{};
};

// N-axis estimator (N = 1..8): held positions of samples that arrive every cycleMs calls.
template <std::size_t N>
class Estimator {
    static_assert(N >= 1 && N <= 8, "qz::Estimator<N>: the library estimates 1 to 8 axes");

  public:
    Estimator(double cycleMs, const Vec<N> &velLmtMax, const Vec<N> &velLmtCur) noexcept {
        QZOnInitEst(&s_, static_cast<std::int32_t>(N), cycleMs, velLmtMax.data(), velLmtCur.data());
    }
    // One call per 1 ms cycle; a new stamp carries new samples x and reference velocities r.
    [[nodiscard]] Vec<N> step(std::int32_t stamp, const Vec<N> &x, const Vec<N> &r) noexcept {
        Vec<N> out{};
        (void)QZNEst_OnDT(&s_, stamp, x.data(), out.data(), r.data());
        return out;
    }
    void empty() noexcept { (void)QZNEst_OnEmpty(&s_); }
    // Current velocity limits; clamped on the axes whose request was above its maximum.
    [[nodiscard]] LimitReport<N> set_velocity_limits(const Vec<N> &velLmtCur) noexcept {
        (void)QZNEst_OnSetRunTimeLmt(&s_, velLmtCur.data());
        LimitReport<N> r{};
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] = velLmtCur[i] > s_.velLmtMax[i] ? Limit::clamped : Limit::applied;
        return r;
    }
    const QZNEstState &record() const noexcept { return s_; }
    QZNEstState &record() noexcept { return s_; }

  private:
    QZNEstState s_{};
};

// One-pole low-pass filter of N channels (N = 1..8): y = x alpha + (1 - alpha) y_prev.
template <std::size_t N>
class OneStepFitter {
    static_assert(N >= 1 && N <= 8, "qz::OneStepFitter<N>: the library filters 1 to 8 channels");

  public:
    explicit OneStepFitter(const Vec<N> &alpha) noexcept {
        OneFitterInit(&s_, static_cast<std::int32_t>(N), alpha.data());
    }
    [[nodiscard]] Vec<N> update(const Vec<N> &x) noexcept {
        Vec<N> out{};
        (void)OneFitterRun(&s_, x.data(), out.data());
        return out;
    }
    const OneFitterState &record() const noexcept { return s_; }
    OneFitterState &record() noexcept { return s_; }

  private:
    OneFitterState s_{};
};

// Dead-banded, clamped integral corrector of seven joints, with the library's default gains.
class ErrorComparator {
  public:
    ErrorComparator() noexcept { (void)QZ_DCTRL_ErrorCompare_Init(0, &s_); }
    // Correction of each joint from the error second - first.
    [[nodiscard]] Vec<7> update(const Vec<7> &first, const Vec<7> &second) noexcept {
        Vec<7> corr{};
        (void)QZ_DCTRL_ErrorCompare(0, first.data(), second.data(), &s_, corr.data());
        return corr;
    }
    const QZDCTRLErrorState &record() const noexcept { return s_; }
    QZDCTRLErrorState &record() noexcept { return s_; }  // gains and limits may be set here

  private:
    QZDCTRLErrorState s_{};
};

}  // namespace qz

#endif  // QZMATH_TRACKERS_HPP
