// quaternion.hpp: quaternion algebra and interpolation of the C++ interface, over
// QZQuaternions.h. Quaternions are x, y, z, w, the scalar last, with Hamilton products.
//
// Families (namespace qz): mul conjugate inverse normalize length angle slerp slerp_long Slerp
//   slerp_direction
#ifndef QZMATH_QUATERNION_HPP
#define QZMATH_QUATERNION_HPP

#include <cmath>
#include <type_traits>

#include "QZQuaternions.h"
#include "core.hpp"

namespace qz {

// Hamilton product a (x) b, not normalised.
[[nodiscard]] inline Quat mul(const Quat &a, const Quat &b) noexcept {
    Quat out;
    QZ_QuatMult(a.data(), b.data(), out.data());
    return out;
}
// (-x, -y, -z, w).
[[nodiscard]] inline Quat conjugate(const Quat &q) noexcept {
    Quat out;
    QZ_QuaternionConjugate(q.data(), out.data());
    return out;
}
// Unit inverse rotation, conjugate / |q|, also where |q|^2 would overflow; zero_length, zeros, when
// |q| <= 1e-9; non_finite, zeros, for a NaN or an infinity.
[[nodiscard]] inline Result<Quat> inverse(const Quat &q) noexcept {
    if (!detail::all_finite(q)) return {Quat{}, Status::non_finite};
    const Quat in = detail::length_in_range(q);
    Result<Quat> r{Result<Quat>::Unwritten{}};
    if (QZ_QuaternionInverse(in.data(), r.value().data()) == 0) r.fail(Status::zero_length, true);
    return r;
}
// q / |q|, also where |q|^2 would overflow; zero_length, q unchanged, when |q| <= 1e-16;
// non_finite, q unchanged, for a NaN or an infinity.
[[nodiscard]] inline Result<Quat> normalize(const Quat &q) noexcept {
    if (!detail::all_finite(q)) return {q, Status::non_finite};
    Result<Quat> r{detail::length_in_range(q)};
    if (QZ_QuaternionNorm(r.value().data()) == 0) r.fail(Status::zero_length, false);
    return r;
}
// Euclidean length.
[[nodiscard]] inline double length(const Quat &q) noexcept {
    return QZ_QuaternionSqrtNorm(q.data());
}
// Angle of the shorter rotation between two unit quaternions, in the unit U (never quite 0);
// zero_length, not_a_rotation or non_finite, angle 0, when either is no rotation.
template <class U>
[[nodiscard]] Result<U> angle(const Quat &a, const Quat &b) noexcept {
    static_assert(detail::is_unit<U>, "qz::angle<U>: the unit is qz::Rad or qz::Deg");
    if (const Status s = detail::rotation_status(a, b); s != Status::ok) return {U{0.0}, s};
    if constexpr (std::is_same_v<U, Deg>)
        return Deg{QZ_QuaternionAngleDeg(a.data(), b.data())};
    else
        return Rad{QZ_QuaternionAngleArc(a.data(), b.data())};
}
// Spherical interpolation along the shorter way; t = 0 gives a, t = 1 gives b (or -b). Either
// quaternion no rotation, or t not finite: zero_length, not_a_rotation or non_finite, zeros;
// non_finite too where a huge t gives NaN.
[[nodiscard]] inline Result<Quat> slerp(const Quat &a, Quat b, double t) noexcept {
    if (const Status s = detail::rotation_status(a, b); s != Status::ok) return {Quat{}, s};
    if (!std::isfinite(t)) return {Quat{}, Status::non_finite};
    Quat out;
    QZ_QuatSlerp(a.data(), b.data(), t, out.data());
    return detail::finite_result(out);
}
// Spherical interpolation along the longer way; refusals as slerp.
[[nodiscard]] inline Result<Quat> slerp_long(const Quat &a, const Quat &b, double t) noexcept {
    if (const Status s = detail::rotation_status(a, b); s != Status::ok) return {Quat{}, s};
    if (!std::isfinite(t)) return {Quat{}, Status::non_finite};
    Quat out;
    QZ_QuatSlerpL(a.data(), b.data(), t, out.data());
    return detail::finite_result(out);
}
// Slerp between one fixed pair, its angle worked out once on the first call of at(). A pair that
// is no rotation is refused once, at construction: status() and every at() say why.
class Slerp {
  public:
    Slerp(const Quat &from, const Quat &to, bool longWay = false) noexcept
        : a_(from), b_(to), long_(longWay), status_(detail::rotation_status(from, to)) {}
    [[nodiscard]] Status status() const noexcept { return status_; }
    [[nodiscard]] Result<Quat> at(double t) noexcept {
        if (status_ != Status::ok) return {Quat{}, status_};
        if (!std::isfinite(t)) return {Quat{}, Status::non_finite};
        Quat out;
        (long_ ? QZ_QuatSlerpFactorL : QZ_QuatSlerpFactor)(a_.data(), b_.data(), t, out.data(),
                                                           &state_);
        return detail::finite_result(out);
    }
    const QZSlerpFactorState &record() const noexcept { return state_; }

  private:
    Quat a_, b_;
    QZSlerpFactorState state_{};
    bool long_;
    Status status_;
};
// Sense (+1 or -1) in which the frame's x axis turns about axis from a to b; refusals as slerp
// (the sense 0), and non_finite for an axis with a NaN or an infinity.
[[nodiscard]] inline Result<int> slerp_direction(const Quat &a, const Quat &b,
                                                 const Vec3 &axis) noexcept {
    const Status s = detail::rotation_status(a, b);
    if (s != Status::ok || !detail::all_finite(axis))
        return {0, s != Status::ok ? s : Status::non_finite};
    return QZ_QuatSlerpDir(a.data(), b.data(), axis.data());
}

}  // namespace qz

#endif  // QZMATH_QUATERNION_HPP
