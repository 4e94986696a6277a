// eigen.hpp: zero-copy views between the qz value types and Eigen, for programs that use Eigen.
// Include it after Eigen is on the include path; qzmath.hpp itself needs nothing but the C
// headers.
//
//   qz::eigen::map(x)    a qz value seen as an Eigen map: a Mat<R, C> as a row-major R x C matrix,
//                        a Vec<N> as a column vector, a Quat as an Eigen::Quaternion (Eigen stores
//                        x, y, z, w too)
//   qz::eigen::as_qz(e)  a fixed-size row-major Eigen matrix (or a map of one), a column vector
//                        or a quaternion seen as the qz value of the same layout
//
// Neither copies: writes through a view reach the viewed storage.
#ifndef QZMATH_EIGEN_HPP
#define QZMATH_EIGEN_HPP

#include <Eigen/Core>
#include <Eigen/Geometry>

#include "qzmath.hpp"

namespace qz::eigen {

// The Eigen type of the same layout as Mat<R, C>: row-major, except that Eigen stores a column
// (C == 1) only column-major, which is the same layout.
template <std::size_t R, std::size_t C>
using Matrix =
    Eigen::Matrix<double, int(R), int(C), (C == 1 && R != 1) ? Eigen::ColMajor : Eigen::RowMajor>;

template <std::size_t R, std::size_t C>
Eigen::Map<Matrix<R, C>> map(Mat<R, C> &m) noexcept {
    return Eigen::Map<Matrix<R, C>>(m.data());
}
template <std::size_t R, std::size_t C>
Eigen::Map<const Matrix<R, C>> map(const Mat<R, C> &m) noexcept {
    return Eigen::Map<const Matrix<R, C>>(m.data());
}
template <std::size_t N>
Eigen::Map<Matrix<N, 1>> map(Vec<N> &v) noexcept {
    return Eigen::Map<Matrix<N, 1>>(v.data());
}
template <std::size_t N>
Eigen::Map<const Matrix<N, 1>> map(const Vec<N> &v) noexcept {
    return Eigen::Map<const Matrix<N, 1>>(v.data());
}
inline Eigen::Map<Eigen::Quaterniond> map(Quat &q) noexcept {
    return Eigen::Map<Eigen::Quaterniond>(q.data());
}
inline Eigen::Map<const Eigen::Quaterniond> map(const Quat &q) noexcept {
    return Eigen::Map<const Eigen::Quaterniond>(q.data());
}

// The qz values share their layout with these Eigen objects (a standard-layout array of double
// against Eigen's plain array of coefficients), so the coefficients are used in place: the casts
// below view one storage as the other type and copy nothing.
// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast,cppcoreguidelines-pro-type-const-cast)
template <int R, int C, int O>
Mat<R, C> &as_qz(Eigen::Matrix<double, R, C, O> &m) noexcept {
    static_assert(R > 1 && C > 1 && (O & Eigen::RowMajor),
                  "qz::eigen::as_qz: fixed-size and row-major only");
    return *reinterpret_cast<Mat<R, C> *>(m.data());
}
template <int R, int C, int O>
const Mat<R, C> &as_qz(const Eigen::Matrix<double, R, C, O> &m) noexcept {
    static_assert(R > 1 && C > 1 && (O & Eigen::RowMajor),
                  "qz::eigen::as_qz: fixed-size and row-major only");
    return *reinterpret_cast<const Mat<R, C> *>(m.data());
}
template <int N>
Vec<N> &as_qz(Eigen::Matrix<double, N, 1> &v) noexcept {
    static_assert(N > 0, "qz::eigen::as_qz: fixed-size only");
    return *reinterpret_cast<Vec<N> *>(v.data());
}
template <int N>
const Vec<N> &as_qz(const Eigen::Matrix<double, N, 1> &v) noexcept {
    static_assert(N > 0, "qz::eigen::as_qz: fixed-size only");
    return *reinterpret_cast<const Vec<N> *>(v.data());
}
// A map is itself a view: as_qz of a map is the storage it maps.
template <class Plain>
auto &as_qz(const Eigen::Map<Plain> &m) noexcept {
    using Target =
        std::remove_reference_t<decltype(as_qz(std::declval<std::remove_const_t<Plain> &>()))>;
    using Out = std::conditional_t<std::is_const_v<Plain>, const Target, Target>;
    return *reinterpret_cast<Out *>(const_cast<double *>(m.data()));
}
inline Quat &as_qz(Eigen::Quaterniond &q) noexcept {
    return *reinterpret_cast<Quat *>(q.coeffs().data());
}
inline const Quat &as_qz(const Eigen::Quaterniond &q) noexcept {
    return *reinterpret_cast<const Quat *>(q.coeffs().data());
}
// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast,cppcoreguidelines-pro-type-const-cast)

}  // namespace qz::eigen

#endif  // QZMATH_EIGEN_HPP
