// vector.hpp: fixed-size vectors of the C++ interface, over the vector family of QZMatrix.h.
//
// Families (namespace qz): add sub scale axpy dot length normalize cross angle
//
// Each wrapper calls the one C function of its size and returns its bits unchanged; a size that
// the library does not provide is a compile error.
#ifndef QZMATH_VECTOR_HPP
#define QZMATH_VECTOR_HPP

#include <cstddef>
#include <cstdint>

#include "QZMatrix.h"
#include "core.hpp"

namespace qz {

namespace detail {
// Fixed-size vectors, n = 2..8. A size without an entry keeps the null functions of the primary
// template, so only the static_assert of the caller speaks.
template <std::size_t N>
struct Vector {
    static constexpr bool available = false;
    static constexpr Norm norm = nullptr;
    static constexpr Binary add = nullptr;
    static constexpr Scaled sa = nullptr;
};
#define QZ_CPP_VECTOR_SIZE(N)                         \
    template <>                                       \
    struct Vector<N> {                                \
        static constexpr bool available = true;       \
        static constexpr Norm norm = &QZ_VectNorm##N; \
        static constexpr Binary add = &QZ_VectAdd##N; \
        static constexpr Scaled sa = &QZ_VectSA##N;   \
    };
QZ_CPP_VECTOR_SIZE(2)
QZ_CPP_VECTOR_SIZE(3)
QZ_CPP_VECTOR_SIZE(4)
QZ_CPP_VECTOR_SIZE(5)
QZ_CPP_VECTOR_SIZE(6)
QZ_CPP_VECTOR_SIZE(7)
QZ_CPP_VECTOR_SIZE(8)
#undef QZ_CPP_VECTOR_SIZE
}  // namespace detail

// a + b (sizes 2..8).
template <std::size_t N>
[[nodiscard]] Vec<N> add(const Vec<N> &a, const Vec<N> &b) noexcept {
    static_assert(detail::Vector<N>::available,
                  "qz::add: the library adds vectors of sizes 2 to 8");
    Vec<N> out;
    detail::Vector<N>::add(a.data(), b.data(), out.data());
    return out;
}
// a + b*s, the product formed first (sizes 2..8).
template <std::size_t N>
[[nodiscard]] Vec<N> axpy(const Vec<N> &a, double s, const Vec<N> &b) noexcept {
    static_assert(detail::Vector<N>::available, "qz::axpy: the library has sizes 2 to 8");
    Vec<N> out;
    detail::Vector<N>::sa(a.data(), s, b.data(), out.data());
    return out;
}
// a - b.
template <std::size_t N>
[[nodiscard]] Vec<N> sub(const Vec<N> &a, const Vec<N> &b) noexcept {
    Vec<N> out;
    QZ_VectSub(a.data(), static_cast<std::int32_t>(N), b.data(), out.data());
    return out;
}
// v * s.
template <std::size_t N>
[[nodiscard]] Vec<N> scale(const Vec<N> &v, double s) noexcept {
    Vec<N> out;
    QZ_VectScale(v.data(), static_cast<std::int32_t>(N), s, out.data());
    return out;
}
// Sum of a[i] * b[i] in index order from 0.0.
template <std::size_t N>
[[nodiscard]] double dot(const Vec<N> &a, const Vec<N> &b) noexcept {
    return QZ_VectDot(a.data(), b.data(), static_cast<std::int32_t>(N));
}
// Euclidean length.
template <std::size_t N>
[[nodiscard]] double length(const Vec<N> &v) noexcept {
    return QZ_VectLength(v.data(), static_cast<std::int32_t>(N));
}
// v / |v| (sizes 2..8), also where |v|^2 would overflow; zero_length, v unchanged, when |v| is
// within 1e-16 of zero; non_finite, v unchanged, for a NaN or an infinity.
template <std::size_t N>
[[nodiscard]] Result<Vec<N>> normalize(const Vec<N> &v) noexcept {
    static_assert(detail::Vector<N>::available, "qz::normalize: the library has sizes 2 to 8");
    if (!detail::all_finite(v)) return {v, Status::non_finite};
    Result<Vec<N>> r{detail::length_in_range(v)};
    if (!detail::Vector<N>::norm(r.value().data())) r.fail(Status::zero_length, false);
    return r;
}
// a x b.
[[nodiscard]] inline Vec3 cross(const Vec3 &a, const Vec3 &b) noexcept {
    Vec3 out;
    QZ_VectCross(a.data(), b.data(), out.data());
    return out;
}
// Angle between a and b in degrees, [0, 180]; zero_length, angle 0, when either is within 1e-16
// of zero length (no direction); non_finite, angle 0, for a NaN or an infinity.
template <std::size_t N>
[[nodiscard]] Result<Deg> angle(const Vec<N> &a, const Vec<N> &b) noexcept {
    const auto n = static_cast<std::int32_t>(N);
    if (!detail::all_finite(a, b)) return {Deg{0.0}, Status::non_finite};
    const Vec<N> u = detail::length_in_range(a), v = detail::length_in_range(b);
    if (QZ_IsZero(QZ_VectLength(u.data(), n)) || QZ_IsZero(QZ_VectLength(v.data(), n)))
        return {Deg{0.0}, Status::zero_length};
    return Deg{QZ_VectAngle(u.data(), v.data(), n)};
}

}  // namespace qz

#endif  // QZMATH_VECTOR_HPP
