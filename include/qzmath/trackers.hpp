// trackers.hpp: the motion trackers and the other per-cycle families of QZDT.h in the C++
// interface: single-axis and N-axis trackers, their multi-stage forms, the estimator, the one-pole
// fitter and the joint error comparator.
//
// Families (namespace qz): Tracker MultiStageTracker SmoothedTracker<N>
//   SmoothedMultiStageTracker<N> PVA<N> Estimator<N> OneStepFitter<N> ErrorComparator
//
// Each class owns its C record: construction initialises it, step or update advances one cycle,
// and record() shows it to the C API as it is. The classes are copyable values without heap.
//
// Every tracker has the same operations, with the same signatures (P is double for one axis,
// Vec<N> for N):
//   step(target)            one cycle towards target: Result<P>, the commanded position
//   step_to_last_target()   one cycle towards the last accepted target: Result<P>
//   reset_to(position)      the axis stands at position, at rest, from here on: Status
//   jump_to_next_target()   the next step outputs its target itself: Status
//   set_limits(vel, acc)    run-time limits: Limit (per axis: LimitReport)
// What they refuse, and why, keeps the arm in a defined state:
//   - A NaN or infinite target is not taken (nor, by an N-axis tracker, one beyond +-1e300,
//     whose average would overflow): that cycle steps towards the last accepted target,
//     within the limits, and reports non_finite (an N-axis tracker does this per axis). Before the
//     first accepted target there is none to move to: the position is held and nothing steps.
//   - A NaN, infinite, zero or negative limit or cycle time is refused (Limit::invalid); a
//     tracker constructed with one stays uninitialised and every step reports not_initialised.
//   - A run-time acceleration limit is brought into the initialiser's range [1, 1000], so that a
//     ramp down to a lowered velocity limit never leaves the velocity unbounded for a cycle.
// The cost is a few isfinite tests per step; the stepping itself is the C function's, bit for bit.
#ifndef QZMATH_TRACKERS_HPP
#define QZMATH_TRACKERS_HPP

#include <algorithm>
#include <array>
#include <cmath>
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
constexpr double kVelMin = 0.1, kVelMax = 200.0, kAccMin = 1.0, kAccMax = 1000.0;
constexpr double kCycleMin = 1.0, kCycleMax = 1000.0;
constexpr bool limits_clamped(double vel, double acc) noexcept {
    return !(vel >= kVelMin && vel <= kVelMax) || !(acc >= kAccMin && acc <= kAccMax);
}
constexpr bool cycle_clamped(double cycleMs) noexcept {
    return !(cycleMs >= kCycleMin && cycleMs <= kCycleMax);
}
// A target or position an N-axis tracker can take: finite and within +-1e300, so that its
// average over a span of up to 100 cycles cannot overflow (from 1.7e308 it gave inf under ok).
inline bool averageable(double x) noexcept { return std::isfinite(x) && std::fabs(x) <= 1e300; }
template <std::size_t N>
bool averageable(const Vec<N> &v) noexcept {
    return std::all_of(v.begin(), v.end(), [](double x) { return averageable(x); });
}
// A limit or a cycle time that can be given to a tracker at all: finite and above zero.
inline bool usable(double x) noexcept { return std::isfinite(x) && x > 0.0; }
template <std::size_t N>
bool usable(const std::array<double, N> &v) noexcept {
    return std::all_of(v.begin(), v.end(), [](double x) { return usable(x); });
}
// A run-time acceleration limit within the initialiser's range; clamped says it was not.
inline double run_time_acc(double acc, bool &clamped) noexcept {
    const double a = acc < kAccMin ? kAccMin : acc > kAccMax ? kAccMax : acc;
    clamped = clamped || a != acc;
    return a;
}
// What the initialisation made of one axis's limits.
inline Limit init_outcome(bool usable, bool clamped) noexcept {
    return !usable ? Limit::invalid : clamped ? Limit::clamped : Limit::applied;
}

// The fields of a single-axis record that a run-time limit request may change, as bits.
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
// What the request did: nothing (ignored), a pending ramp, or a limit in force; clamped when the
// request had to be brought into range first.
inline Limit limit_outcome(const LimitFields &before, const QZVDTState &after,
                           bool clamped = false) noexcept {
    if (before.isInit == 0) return Limit::refused;
    if (clamped) return Limit::clamped;
    const LimitFields now = limit_fields(after);
    if (now.acc == before.acc && now.vel == before.vel && now.target == before.target &&
        now.pending == before.pending)
        return Limit::ignored;
    return after.velLmtPending != 0 ? Limit::ramping : Limit::applied;
}
// Screens an N-axis run-time request: every value usable, accelerations clamped into range.
// With any axis unusable nothing is changed: those axes report invalid and the others ignored.
template <std::size_t N>
bool screen_limits(const Vec<N> *vel, Vec<N> *acc, std::array<bool, N> &clamped,
                   LimitReport<N> &report) noexcept {
    bool ok = true;
    for (std::size_t i = 0; i < N; ++i) {
        const bool bad = (vel && !usable((*vel)[i])) || (acc && !usable((*acc)[i]));
        report.axis[i] = bad ? Limit::invalid : Limit::ignored;
        ok = ok && !bad;
        clamped[i] = false;
        if (acc) (*acc)[i] = run_time_acc((*acc)[i], clamped[i]);
    }
    return ok;
}
// One step of an N-axis record through call, towards target with each NaN or infinite element
// replaced by the record's last accepted target. A step that cannot be taken (the record not
// initialised, or a bad element before any target was accepted) leaves the record as it is.
template <std::size_t N, class Record, class Call>
Status step_accepted(const Record &s, const Vec<N> &target, Call call) noexcept {
    if (!s.isInit) return Status::not_initialised;
    Vec<N> t = target;
    bool allFinite = true;
    for (std::size_t i = 0; i < N; ++i)
        if (!averageable(t[i])) t[i] = s.target[i], allFinite = false;
    if (!allFinite && s.resetPending) return Status::non_finite;
    call(t.data());
    return allFinite ? Status::ok : Status::non_finite;
}
template <std::size_t N>
Vec<N> first_n(const double *v) noexcept {
    Vec<N> out{};
    for (std::size_t i = 0; i < N; ++i) out[i] = v[i];
    return out;
}
}  // namespace detail

// Single-axis tracker: cycle in ms, limits in units/s and units/s^2.
class Tracker {
  public:
    Tracker(double cycleMs, double velLmt, double accLmt) noexcept
        : init_(detail::init_outcome(
              detail::usable(cycleMs) && detail::usable(velLmt) && detail::usable(accLmt),
              detail::limits_clamped(velLmt, accLmt) || detail::cycle_clamped(cycleMs))) {
        if (init_ != Limit::invalid) (void)QZVDT_OnInit(&s_, cycleMs, velLmt, accLmt);
    }
    // bad_argument when the constructor refused its cycle time or limits.
    [[nodiscard]] Status status() const noexcept {
        return s_.isInit != 0 ? Status::ok : Status::bad_argument;
    }
    // invalid, clamped (cycle time or limits brought into range) or applied.
    [[nodiscard]] Limit init_limits() const noexcept { return init_; }
    // One cycle towards target: the new commanded position. The first step after construction or
    // jump_to_next_target() outputs the target itself.
    [[nodiscard]] Result<double> step(double target) noexcept {
        if (s_.isInit == 0) return {s_.pos, Status::not_initialised};
        if (std::isfinite(target)) {
            target_ = target;
            return advance();
        }
        const Result<double> r = step_to_last_target();
        return {r.value(), Status::non_finite};
    }
    // One cycle towards the last accepted target; reset_pending (position held) before there is one.
    [[nodiscard]] Result<double> step_to_last_target() noexcept {
        if (s_.isInit == 0) return {s_.pos, Status::not_initialised};
        if (s_.resetPending != 0) return {s_.pos, Status::reset_pending};
        return advance();
    }
    // The axis stands at position, at rest; the next step moves from there.
    [[nodiscard]] Status reset_to(double position) noexcept {
        if (s_.isInit == 0) return Status::not_initialised;
        if (!std::isfinite(position)) return Status::non_finite;
        (void)QZVDT_OnEmpty(&s_);
        target_ = position;
        (void)advance();
        return Status::ok;
    }
    // The next step outputs its target itself, at rest (after the axis was moved by other means).
    [[nodiscard]] Status jump_to_next_target() noexcept {
        return QZVDT_OnEmpty(&s_) != 0 ? Status::ok : Status::not_initialised;
    }
    [[nodiscard]] Limit set_limits(double velLmt, double accLmt) noexcept {
        if (s_.isInit == 0) return Limit::refused;
        if (!detail::usable(velLmt) || !detail::usable(accLmt)) return Limit::invalid;
        bool clamped = false;
        const double acc = detail::run_time_acc(accLmt, clamped);
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeLmt(&s_, velLmt, acc);
        return detail::limit_outcome(before, s_, clamped);
    }
    [[nodiscard]] Limit set_velocity_limit(double velLmt) noexcept {
        if (s_.isInit == 0) return Limit::refused;
        if (!detail::usable(velLmt)) return Limit::invalid;
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeVel(&s_, velLmt);
        return detail::limit_outcome(before, s_);
    }
    [[nodiscard]] Limit set_acceleration_limit(double accLmt) noexcept {
        if (s_.isInit == 0) return Limit::refused;
        if (!detail::usable(accLmt)) return Limit::invalid;
        bool clamped = false;
        const double acc = detail::run_time_acc(accLmt, clamped);
        const auto before = detail::limit_fields(s_);
        (void)QZVDT_OnSetRunTimeAcc(&s_, acc);
        return detail::limit_outcome(before, s_, clamped);
    }
    double position() const noexcept { return s_.pos; }
    double velocity() const noexcept { return s_.vel; }
    // The last accepted target.
    double target() const noexcept { return target_; }
    const QZVDTState &record() const noexcept { return s_; }

  private:
    Result<double> advance() noexcept {
        double out = s_.pos;
        (void)QZVDT_OnDT(&s_, target_, &out);
        return out;
    }

    QZVDTState s_{};
    double target_ = 0.0;
    Limit init_;
};

// Multi-stage single-axis tracker (mode 0 plain, 1 slowed main stage, other values cascade).
// init_limits() judges the limits as given; the correction stages' shares of them (V/6, V/18,
// V/90) are clamped on their own, so a small V gives them the floor of 0.1.
class MultiStageTracker {
  public:
    MultiStageTracker(double cycleMs, double velLmt, double accLmt, std::int32_t mode) noexcept
        : init_(detail::init_outcome(
              detail::usable(cycleMs) && detail::usable(velLmt) && detail::usable(accLmt),
              detail::limits_clamped(velLmt, accLmt) || detail::cycle_clamped(cycleMs))) {
        if (init_ != Limit::invalid) (void)QZVDT_OnInitM(&s_, cycleMs, velLmt, accLmt, mode);
        s_.mode = mode;  // the initialiser leaves the mode to the caller
    }
    [[nodiscard]] Status status() const noexcept {
        return s_.stage[0].isInit != 0 ? Status::ok : Status::bad_argument;
    }
    [[nodiscard]] Limit init_limits() const noexcept { return init_; }
    // As Tracker::step, the commanded position being the sum of the four stages.
    [[nodiscard]] Result<double> step(double target) noexcept {
        if (s_.stage[0].isInit == 0) return {position(), Status::not_initialised};
        if (std::isfinite(target)) {
            target_ = target;
            return advance();
        }
        const Result<double> r = step_to_last_target();
        return {r.value(), Status::non_finite};
    }
    [[nodiscard]] Result<double> step_to_last_target() noexcept {
        if (s_.stage[0].isInit == 0) return {position(), Status::not_initialised};
        if (s_.stage[0].resetPending != 0) return {position(), Status::reset_pending};
        return advance();
    }
    [[nodiscard]] Status reset_to(double position) noexcept {
        if (s_.stage[0].isInit == 0) return Status::not_initialised;
        if (!std::isfinite(position)) return Status::non_finite;
        (void)QZVDT_OnEmptyM(&s_);
        target_ = position;
        (void)advance();
        return Status::ok;
    }
    [[nodiscard]] Status jump_to_next_target() noexcept {
        if (s_.stage[0].isInit == 0) return Status::not_initialised;
        (void)QZVDT_OnEmptyM(&s_);
        return Status::ok;
    }
    // Reports what became of the main stage's request; an unusable value changes nothing.
    [[nodiscard]] Limit set_limits(double velLmt, double accLmt) noexcept {
        if (s_.stage[0].isInit == 0) return Limit::refused;
        if (!detail::usable(velLmt) || !detail::usable(accLmt)) return Limit::invalid;
        bool clamped = false;
        const double acc = detail::run_time_acc(accLmt, clamped);
        const auto before = detail::limit_fields(s_.stage[0]);
        (void)QZVDT_OnSetRunTimeLmtM(&s_, velLmt, acc, s_.mode);
        return detail::limit_outcome(before, s_.stage[0], clamped);
    }
    // The commanded position: the sum of the stage positions.
    double position() const noexcept {
        return s_.stage[0].pos + s_.stage[1].pos + s_.stage[2].pos + s_.stage[3].pos;
    }
    double target() const noexcept { return target_; }
    const QZVDTMState &record() const noexcept { return s_; }

  private:
    Result<double> advance() noexcept {
        double out = 0.0;
        (void)QZVDT_OnDT_BM(&s_, target_, &out);
        return out;
    }

    QZVDTMState s_{};
    double target_ = 0.0;
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
                    const Vec<N> &jerkLmt) noexcept {
        const bool usable = detail::usable(cycleMs) && detail::usable(velLmt) &&
                            detail::usable(accLmt) && detail::usable(jerkLmt);
        const bool ok =
            usable && QZNSyncDTS_OnInit(&s_, static_cast<std::int32_t>(N), cycleMs, velLmt.data(),
                                        accLmt.data(), jerkLmt.data()) != 0;
        for (std::size_t i = 0; i < N; ++i) {
            const bool axisUsable = detail::usable(cycleMs) && detail::usable(velLmt[i]) &&
                                    detail::usable(accLmt[i]) && detail::usable(jerkLmt[i]);
            init_.axis[i] =
                !axisUsable ? Limit::invalid
                : !ok       ? Limit::refused
                      : detail::init_outcome(true, detail::limits_clamped(velLmt[i], accLmt[i]) ||
                                                       detail::cycle_clamped(cycleMs));
        }
    }
    // bad_argument when a cycle time or limit was unusable or a jerk limit lay outside [1, 1e12]:
    // the record is then left uninitialised.
    [[nodiscard]] Status status() const noexcept {
        return s_.isInit != 0 ? Status::ok : Status::bad_argument;
    }
    [[nodiscard]] const LimitReport<N> &init_limits() const noexcept { return init_; }
    // One cycle towards target: the smoothed positions. The first step after construction or
    // jump_to_next_target() outputs the targets.
    [[nodiscard]] Result<Vec<N>> step(const Vec<N> &target) noexcept {
        Vec<N> pos = detail::first_n<N>(s_.pos);
        const Status s = detail::step_accepted(
            s_, target, [&](const double *t) { (void)QZNSyncDTS_OnDT(&s_, t, pos.data()); });
        return {pos, s};
    }
    // As step, with the smoothed velocities and accelerations.
    [[nodiscard]] Result<PVA<N>> step_pva(const Vec<N> &target) noexcept {
        PVA<N> out = current();
        const Status s = detail::step_accepted(s_, target, [&](const double *t) {
            (void)QZNSyncDTS_OnDT2(&s_, t, out.pos.data(), out.vel.data(), out.acc.data());
        });
        return {out, s};
    }
    // One cycle towards the last accepted targets; reset_pending (positions held) before any.
    [[nodiscard]] Result<Vec<N>> step_to_last_target() noexcept {
        if (s_.isInit == 0) return {current().pos, Status::not_initialised};
        if (s_.resetPending != 0) return {current().pos, Status::reset_pending};
        Vec<N> pos{};
        (void)QZNSyncDTS_OnDT_NoChange(&s_, pos.data());
        return pos;
    }
    // Every axis stands at its position, at rest; the next step moves from there.
    [[nodiscard]] Status reset_to(const Vec<N> &position) noexcept {
        if (s_.isInit == 0) return Status::not_initialised;
        if (!detail::averageable(position)) return Status::non_finite;
        (void)QZNSyncDTS_OnEmpty(&s_);
        Vec<N> pos{};
        (void)QZNSyncDTS_OnDT(&s_, position.data(), pos.data());
        return Status::ok;
    }
    // The next step outputs its targets themselves, at rest.
    [[nodiscard]] Status jump_to_next_target() noexcept {
        return QZNSyncDTS_OnEmpty(&s_) != 0 ? Status::ok : Status::not_initialised;
    }
    [[nodiscard]] LimitReport<N> set_limits(const Vec<N> &velLmt, const Vec<N> &accLmt) noexcept {
        Vec<N> acc = accLmt;
        return set(&velLmt, &acc, [&](const double *v, const double *a) {
            (void)QZNSyncDTS_OnSetRunTimeLmt(&s_, v, a);
        });
    }
    [[nodiscard]] LimitReport<N> set_velocity_limits(const Vec<N> &velLmt) noexcept {
        return set(&velLmt, nullptr, [&](const double *v, const double *) {
            (void)QZNSyncDTS_OnSetRunTimeVel(&s_, v);
        });
    }
    [[nodiscard]] LimitReport<N> set_acceleration_limits(const Vec<N> &accLmt) noexcept {
        Vec<N> acc = accLmt;
        return set(nullptr, &acc, [&](const double *, const double *a) {
            (void)QZNSyncDTS_OnSetRunTimeAcc(&s_, a);
        });
    }
    // The last accepted targets.
    Vec<N> target() const noexcept { return detail::first_n<N>(s_.target); }
    const QZNSyncDTSState &record() const noexcept { return s_; }

  private:
    PVA<N> current() const noexcept {
        return {detail::first_n<N>(s_.pos), detail::first_n<N>(s_.vel), detail::first_n<N>(s_.acc)};
    }
    template <class Call>
    LimitReport<N> set(const Vec<N> *vel, Vec<N> *acc, Call call) noexcept {
        LimitReport<N> r{};
        if (!s_.isInit) {
            r.axis.fill(Limit::refused);
            return r;
        }
        std::array<bool, N> clamped{};
        if (!detail::screen_limits(vel, acc, clamped, r)) return r;
        std::array<detail::LimitFields, N> before{};
        for (std::size_t i = 0; i < N; ++i) before[i] = detail::limit_fields(s_.axis[i]);
        call(vel ? vel->data() : nullptr, acc ? acc->data() : nullptr);
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] = detail::limit_outcome(before[i], s_.axis[i], clamped[i]);
        return r;
    }

    QZNSyncDTSState s_{};
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
        const bool usable = detail::usable(cycleMs) && detail::usable(velLmt) &&
                            detail::usable(accLmt) && detail::usable(jerkLmt);
        if (usable)
            (void)QZNSyncDTS_OnInitM(&s_, static_cast<std::int32_t>(N), cycleMs, velLmt.data(),
                                     accLmt.data(), jerk.data(), mode);
        for (std::size_t i = 0; i < N; ++i) {
            const bool axisUsable = detail::usable(cycleMs) && detail::usable(velLmt[i]) &&
                                    detail::usable(accLmt[i]) && detail::usable(jerkLmt[i]);
            const bool clamped = detail::limits_clamped(velLmt[i], accLmt[i]) ||
                                 detail::cycle_clamped(cycleMs) ||
                                 !detail::same_bytes(jerk[i], jerkLmt[i]);
            init_.axis[i] = !axisUsable ? Limit::invalid
                            : !usable   ? Limit::refused
                                        : detail::init_outcome(true, clamped);
        }
    }
    [[nodiscard]] Status status() const noexcept {
        return s_.isInit != 0 ? Status::ok : Status::bad_argument;
    }
    [[nodiscard]] const LimitReport<N> &init_limits() const noexcept { return init_; }
    // As SmoothedTracker::step.
    [[nodiscard]] Result<Vec<N>> step(const Vec<N> &target) noexcept {
        Vec<N> pos = positions();
        const Status s = detail::step_accepted(
            s_, target, [&](const double *t) { (void)QZNSyncDTS_OnDTM(&s_, t, pos.data()); });
        return {pos, s};
    }
    // One cycle towards the last accepted targets; reset_pending (positions held) before any.
    [[nodiscard]] Result<Vec<N>> step_to_last_target() noexcept {
        if (s_.isInit == 0) return {positions(), Status::not_initialised};
        Vec<N> pos = positions();
        const bool ok = QZNSyncDTS_OnDT_UM(&s_, pos.data()) != 0;
        return {pos, ok ? Status::ok : Status::reset_pending};
    }
    [[nodiscard]] Status reset_to(const Vec<N> &position) noexcept {
        if (s_.isInit == 0) return Status::not_initialised;
        if (!detail::averageable(position)) return Status::non_finite;
        (void)QZNSyncDTS_OnEmptyM(&s_);
        Vec<N> pos{};
        (void)QZNSyncDTS_OnDTM(&s_, position.data(), pos.data());
        return Status::ok;
    }
    [[nodiscard]] Status jump_to_next_target() noexcept {
        return QZNSyncDTS_OnEmptyM(&s_) != 0 ? Status::ok : Status::not_initialised;
    }
    // Current positions, velocities and accelerations; reset_pending before the first step.
    [[nodiscard]] Result<PVA<N>> pva() const noexcept {
        PVA<N> out{};
        Vec<N> targets{};
        const bool ok = QZNSyncDTS_OnGetCurPVAM(&s_, targets.data(), out.pos.data(), out.vel.data(),
                                                out.acc.data()) != 0;
        return {out, ok ? Status::ok : Status::reset_pending};
    }
    // Reports what became of each axis's main-stage request.
    [[nodiscard]] LimitReport<N> set_limits(const Vec<N> &velLmt, const Vec<N> &accLmt) noexcept {
        LimitReport<N> r{};
        if (s_.isInit == 0) {
            r.axis.fill(Limit::refused);
            return r;
        }
        Vec<N> acc = accLmt;
        std::array<bool, N> clamped{};
        if (!detail::screen_limits(&velLmt, &acc, clamped, r)) return r;
        std::array<detail::LimitFields, N> before{};
        for (std::size_t i = 0; i < N; ++i) before[i] = detail::limit_fields(s_.axis[i].stage[0]);
        (void)QZNSyncDTS_OnSetRunTimeLmtM(&s_, velLmt.data(), acc.data());
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] = detail::limit_outcome(before[i], s_.axis[i].stage[0], clamped[i]);
        return r;
    }
    Vec<N> target() const noexcept { return detail::first_n<N>(s_.target); }
    const QZNSyncDTSMState &record() const noexcept { return s_; }

  private:
    Vec<N> positions() const noexcept { return detail::first_n<N>(s_.pos); }

    QZNSyncDTSMState s_{};
    LimitReport<N> init_{};
};

// N-axis estimator (N = 1..8): held positions of samples that arrive every cycleMs calls. Samples
// or reference velocities with a NaN or an infinity are not taken: that call holds, as a call
// without a new sample does, and reports non_finite.
template <std::size_t N>
class Estimator {
    static_assert(N >= 1 && N <= 8, "qz::Estimator<N>: the library estimates 1 to 8 axes");

  public:
    Estimator(double cycleMs, const Vec<N> &velLmtMax, const Vec<N> &velLmtCur) noexcept
        : ok_(detail::usable(cycleMs) && detail::usable(velLmtMax) && detail::usable(velLmtCur)) {
        if (ok_)
            QZOnInitEst(&s_, static_cast<std::int32_t>(N), cycleMs, velLmtMax.data(),
                        velLmtCur.data());
    }
    // bad_argument when a sample period or limit was NaN, infinite, zero or negative.
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    // One call per 1 ms cycle; a new stamp carries new samples x and reference velocities r.
    [[nodiscard]] Result<Vec<N>> step(std::int32_t stamp, const Vec<N> &x,
                                      const Vec<N> &r) noexcept {
        if (!ok_) return {held(), Status::not_initialised};
        if (detail::all_finite(x, r)) return step_with(stamp, x, r, Status::ok);
        // The last stamp again: no sample is read (none before the first).
        if (s_.resetPending != 0) return {held(), Status::non_finite};
        return step_with(s_.lastStamp, detail::first_n<N>(s_.lastSample), Vec<N>{},
                         Status::non_finite);
    }
    // The next step starts afresh from its samples.
    [[nodiscard]] Status jump_to_next_samples() noexcept {
        if (!ok_) return Status::not_initialised;
        (void)QZNEst_OnEmpty(&s_);
        return Status::ok;
    }
    // Current velocity limits; clamped on the axes whose request was above its maximum. An
    // unusable value changes nothing: those axes report invalid, the others ignored.
    [[nodiscard]] LimitReport<N> set_velocity_limits(const Vec<N> &velLmtCur) noexcept {
        LimitReport<N> r{};
        if (!ok_) {
            r.axis.fill(Limit::refused);
            return r;
        }
        std::array<bool, N> clamped{};
        if (!detail::screen_limits<N>(&velLmtCur, nullptr, clamped, r)) return r;
        (void)QZNEst_OnSetRunTimeLmt(&s_, velLmtCur.data());
        for (std::size_t i = 0; i < N; ++i)
            r.axis[i] = velLmtCur[i] > s_.velLmtMax[i] ? Limit::clamped : Limit::applied;
        return r;
    }
    const QZNEstState &record() const noexcept { return s_; }

  private:
    Vec<N> held() const noexcept { return detail::first_n<N>(s_.heldPos); }
    Result<Vec<N>> step_with(std::int32_t stamp, const Vec<N> &x, const Vec<N> &r,
                             Status status) noexcept {
        Vec<N> out{};
        (void)QZNEst_OnDT(&s_, stamp, x.data(), out.data(), r.data());
        return {out, status};
    }

    QZNEstState s_{};
    bool ok_;
};

// One-pole low-pass filter of N channels (N = 1..8): y = x alpha + (1 - alpha) y_prev. Each
// alpha lies in [0, 1], so that the filter cannot grow without bound.
template <std::size_t N>
class OneStepFitter {
    static_assert(N >= 1 && N <= 8, "qz::OneStepFitter<N>: the library filters 1 to 8 channels");

  public:
    explicit OneStepFitter(const Vec<N> &alpha) noexcept : ok_(true) {
        for (double a : alpha) ok_ = ok_ && a >= 0.0 && a <= 1.0;
        if (ok_) OneFitterInit(&s_, static_cast<std::int32_t>(N), alpha.data());
    }
    // bad_argument when an alpha was NaN or outside [0, 1].
    [[nodiscard]] Status status() const noexcept { return ok_ ? Status::ok : Status::bad_argument; }
    // The filtered values; non_finite, the filter unchanged and its last outputs given, when x
    // holds a NaN or an infinity.
    [[nodiscard]] Result<Vec<N>> update(const Vec<N> &x) noexcept {
        if (!ok_) return {Vec<N>{}, Status::not_initialised};
        if (!detail::all_finite(x)) return {detail::first_n<N>(s_.state), Status::non_finite};
        Vec<N> out{};
        (void)OneFitterRun(&s_, x.data(), out.data());
        return out;
    }
    const OneFitterState &record() const noexcept { return s_; }

  private:
    OneFitterState s_{};
    bool ok_;
};

// Dead-banded, clamped integral corrector of seven joints, with the library's default gains.
class ErrorComparator {
  public:
    ErrorComparator() noexcept { (void)QZ_DCTRL_ErrorCompare_Init(0, &s_); }
    // Correction of each joint from the error second - first; non_finite, the integral unchanged
    // and the last corrections given, when either holds a NaN or an infinity.
    [[nodiscard]] Result<Vec<7>> update(const Vec<7> &first, const Vec<7> &second) noexcept {
        if (!detail::all_finite(first, second)) return {corr_, Status::non_finite};
        (void)QZ_DCTRL_ErrorCompare(0, first.data(), second.data(), &s_, corr_.data());
        return corr_;
    }
    // Per joint, the gains on the integral and on the error (defaults 0.03 / 0.02 and 0);
    // bad_argument, nothing changed, for a NaN, infinite or negative gain.
    [[nodiscard]] Status set_gains(const Vec<7> &kInteg, const Vec<7> &kProp) noexcept {
        if (!non_negative(kInteg) || !non_negative(kProp)) return Status::bad_argument;
        copy(kInteg, s_.kInteg), copy(kProp, s_.kProp);
        return Status::ok;
    }
    // Per joint, the limits of the correction, the error and the integral (defaults 0.9 / 0.6,
    // 1.5 / 1.0 and 30); refused as set_gains.
    [[nodiscard]] Status set_limits(const Vec<7> &outLmt, const Vec<7> &errLmt,
                                    const Vec<7> &integLmt) noexcept {
        if (!non_negative(outLmt) || !non_negative(errLmt) || !non_negative(integLmt))
            return Status::bad_argument;
        copy(outLmt, s_.outLmt), copy(errLmt, s_.errLmt), copy(integLmt, s_.integLmt);
        return Status::ok;
    }
    const QZDCTRLErrorState &record() const noexcept { return s_; }

  private:
    static bool non_negative(const Vec<7> &v) noexcept {
        return std::all_of(v.begin(), v.end(), [](double x) { return std::isfinite(x) && x >= 0; });
    }
    static void copy(const Vec<7> &v, double *field) noexcept {
        std::copy(v.begin(), v.end(), field);
    }

    QZDCTRLErrorState s_{};
    Vec<7> corr_{};
};

}  // namespace qz

#endif  // QZMATH_TRACKERS_HPP
