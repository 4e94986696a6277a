// frames.hpp: frame geometry of the C++ interface (link transforms, cross-product matrices, the
// crossing of two lines, Jacobian frame transforms), over QZMatrix.h.
//
// Families (namespace qz): dh skew line_cross jacobian_rotate
#ifndef QZMATH_FRAMES_HPP
#define QZMATH_FRAMES_HPP

#include <cstddef>

#include "QZMatrix.h"
#include "core.hpp"

namespace qz {

namespace detail {
// Jacobian frame transforms by shape.
template <std::size_t C>
struct JacobianRotate {
    static constexpr bool available = false;
    static constexpr Binary fn = nullptr;
};
template <>
struct JacobianRotate<6> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_JACOB_TRAN_T66;
};
template <>
struct JacobianRotate<7> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_JACOB_TRAN_T67;
};
}  // namespace detail

// Modified Denavit-Hartenberg link transform RotX(alpha) TransX(a) RotZ(theta) TransZ(d).
[[nodiscard]] inline Mat4 dh(Rad alpha, double a, double d, Rad theta) noexcept {
    Mat4 t;
    QZ_DH2Matrix(alpha.value, a, d, theta.value, t.data());
    return t;
}
// Cross-product matrix: skew(v) x = v x x.
[[nodiscard]] inline Mat3 skew(const Vec3 &v) noexcept {
    Mat3 s;
    QZ_Skew(v.data(), s.data());
    return s;
}
// Crossing of two lines (point, direction), or the midpoint of their common perpendicular;
// parallel for parallel lines or a zero direction; non_finite for a NaN or an infinity.
[[nodiscard]] inline Result<Vec3> line_cross(const Vec3 &p1, Vec3 d1, const Vec3 &p2,
                                             Vec3 d2) noexcept {
    if (!detail::all_finite(p1, d1, p2, d2)) return {Vec3{}, Status::non_finite};
    Result<Vec3> x{Result<Vec3>::Unwritten{}};
    if (QZ_LineCross(p1.data(), d1.data(), p2.data(), d2.data(), x.value().data()) == 0)
        x.fail(Status::parallel, true);
    return x;
}
// diag(R, R) . J for a 6x6 or 6x7 Jacobian.
template <std::size_t R, std::size_t C>
[[nodiscard]] Mat<R, C> jacobian_rotate(const Mat<R, C> &j, const Mat3 &r) noexcept {
    static_assert(R == 6 && detail::JacobianRotate<C>::available,
                  "qz::jacobian_rotate: the library turns 6x6 and 6x7 Jacobians only");
    Mat<R, C> out;
    detail::JacobianRotate<C>::fn(j.data(), r.data(), out.data());
    return out;
}

}  // namespace qz

#endif  // QZMATH_FRAMES_HPP
