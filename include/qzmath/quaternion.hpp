// quaternion.hpp: quaternion algebra and interpolation of the C++ interface, over
// QZQuaternions.h. Quaternions are x, y, z, w, the scalar last, with Hamilton products.
//
// Families (namespace qz): mul conjugate inverse normalize length angle slerp slerp_long Slerp
//   slerp_direction
#ifndef QZMATH_QUATERNION_HPP
#define QZMATH_QUATERNION_HPP

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
// Unit inverse rotation, conjugate / |q|; zero_length when |q| <= 1e-9.
[[nodiscard]] inline Result<Quat> inverse(const Quat &q) noexcept {
    Result<Quat> r{Result<Quat>::Unwritten{}};
    if (!QZ_QuaternionInverse(q.data(), r.value().data())) r.fail(Status::zero_length, true);
    return r;
}
// q / |q|; zero_length, q unchanged, when |q| <= 1e-16.
[[nodiscard]] inline Result<Quat> normalize(const Quat &q) noexcept {
    Result<Quat> r{q};
    if (!QZ_QuaternionNorm(r.value().data())) r.fail(Status::zero_length, false);
    return r;
}
// Euclidean length.
[[nodiscard]] inline double length(const Quat &q) noexcept {
    return QZ_QuaternionSqrtNorm(q.data());
}
// Angle of the shorter rotation between two unit quaternions, in the unit U (never quite 0).
template <class U>
[[nodiscard]] U angle(const Quat &a, const Quat &b) noexcept {
    static_assert(detail::is_unit<U>, "qz::angle<U>: the unit is qz::Rad or qz::Deg");
    if constexpr (std::is_same_v<U, Deg>)
        return Deg{QZ_QuaternionAngleDeg(a.data(), b.data())};
    else
        return Rad{QZ_QuaternionAngleArc(a.data(), b.data())};
}
// Spherical interpolation along the shorter way; t = 0 gives a, t = 1 gives b (or -b).
[[nodiscard]] inline Quat slerp(const Quat &a, Quat b, double t) noexcept {
    Quat out;
    QZ_QuatSlerp(a.data(), b.data(), t, out.data());
    return out;
}
// Spherical interpolation along the longer way.
[[nodiscard]] inline Quat slerp_long(const Quat &a, const Quat &b, double t) noexcept {
    Quat out;
    QZ_QuatSlerpL(a.data(), b.data(), t, out.data());
    return out;
}
// Slerp between one fixed pair, its angle worked out once on the first call of at().
class Slerp {
  public:
    Slerp(const Quat &from, const Quat &to, bool longWay = false) noexcept
        : a_(from), b_(to), long_(longWay) {}
    [[nodiscard]] Quat at(double t) noexcept {
        Quat out;
        (long_ ? QZ_QuatSlerpFactorL : QZ_QuatSlerpFactor)(a_.data(), b_.data(), t, out.data(),
                                                           &state_);
        return out;
    }
    const QZSlerpFactorState &record() const noexcept { return state_; }

  private:
    Quat a_, b_;
    QZSlerpFactorState state_{};
    bool long_;
};
// Sense (+1 or -1) in which the frame's x axis turns about axis from a to b.
[[nodiscard]] inline int slerp_direction(const Quat &a, const Quat &b, const Vec3 &axis) noexcept {
    return QZ_QuatSlerpDir(a.data(), b.data(), axis.data());
}

}  // namespace qz

#endif  // QZMATH_QUATERNION_HPP
