// matrix.hpp: fixed-size matrices of the C++ interface and the linear algebra on them, over the
// matrix, inversion, LUP, pseudo-inverse, Cholesky and eigen families of QZMatrix.h.
//
// Families (namespace qz): identity add sub mul mul_rotation rotate mul_diag transpose inverse
//   rigid_inverse det pinv lup solve cholesky vmv eig generalized_eig; Lup<N> EigenPairs<N>
//
// Each wrapper calls the one C function of its size or shape and returns its bits unchanged; a
// size that the library does not provide is a compile error.
#ifndef QZMATH_MATRIX_HPP
#define QZMATH_MATRIX_HPP

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "QZMatrix.h"
#include "core.hpp"

namespace qz {

namespace detail {
// Square matrices, n = 2..8. A size without an entry keeps the null functions of the primary
// template, so only the static_assert of the caller speaks.
template <std::size_t N>
struct Square {
    static constexpr bool available = false;
    static constexpr Binary mult = nullptr;
    static constexpr Binary add = nullptr;
    static constexpr Unary transpose = nullptr;
    static constexpr Fill identity = nullptr;
    static constexpr Flag8 inv = nullptr;
};
#define QZ_CPP_SQUARE_SIZE(N)                                      \
    template <>                                                    \
    struct Square<N> {                                             \
        static constexpr bool available = true;                    \
        static constexpr Binary mult = &QZ_MatrixMult##N;          \
        static constexpr Binary add = &QZ_MatrixAdd##N;            \
        static constexpr Unary transpose = &QZ_MatrixTranspose##N; \
        static constexpr Fill identity = &QZ_MatrixIdentity##N;    \
        static constexpr Flag8 inv = &QZ_MatrixInv##N;             \
    };
QZ_CPP_SQUARE_SIZE(2)
QZ_CPP_SQUARE_SIZE(3)
QZ_CPP_SQUARE_SIZE(4)
QZ_CPP_SQUARE_SIZE(5)
QZ_CPP_SQUARE_SIZE(6)
QZ_CPP_SQUARE_SIZE(7)
QZ_CPP_SQUARE_SIZE(8)
#undef QZ_CPP_SQUARE_SIZE

// Products by shape: (R x K) . (K x C). The squares come from Square; two Jacobian shapes beside.
template <std::size_t R, std::size_t K, std::size_t C>
struct Product {
    static constexpr bool available = R == K && K == C && Square<R>::available;
    static constexpr Binary fn = Square<R>::mult;
};
template <>
struct Product<6, 7, 7> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_MatrixMult6777;
};
template <>
struct Product<6, 7, 6> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_MatrixMult6776;
};
// Matrix (R x C) times vector (C).
template <std::size_t R, std::size_t C>
struct MatVec {
    static constexpr bool available = false;
    static constexpr Binary fn = nullptr;
};
#define QZ_CPP_MATVEC(R, C, F)                  \
    template <>                                 \
    struct MatVec<R, C> {                       \
        static constexpr bool available = true; \
        static constexpr Binary fn = &(F);      \
    };
QZ_CPP_MATVEC(3, 3, QZ_MatrixMultVect3)
QZ_CPP_MATVEC(4, 4, QZ_MatrixMultVect4)
QZ_CPP_MATVEC(6, 6, QZ_MatrixMultVect6)
QZ_CPP_MATVEC(7, 7, QZ_MatrixMultVect7)
QZ_CPP_MATVEC(6, 7, QZ_Matrix67MultVect7)
QZ_CPP_MATVEC(7, 6, QZ_Matrix76MultVect6)
#undef QZ_CPP_MATVEC
// Row vector (N) times matrix (N x N).
template <std::size_t N>
struct VecMat {
    static constexpr bool available = false;
    static constexpr Binary fn = nullptr;
};
template <>
struct VecMat<6> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_VMmult1666;
};
template <>
struct VecMat<7> {
    static constexpr bool available = true;
    static constexpr Binary fn = &QZ_VMmult1777;
};
// Transposes by shape.
template <std::size_t R, std::size_t C>
struct Transpose {
    static constexpr bool available = R == C && Square<R>::available;
    static constexpr Unary fn = Square<R>::transpose;
};
template <>
struct Transpose<6, 7> {
    static constexpr bool available = true;
    static constexpr Unary fn = &QZ_Mat67Transpose;
};
// Pseudo-inverses by shape of the input.
template <std::size_t R, std::size_t C>
struct PseudoInverse {
    static constexpr bool available = false;
    static constexpr Flag8 fn = nullptr;
};
template <>
struct PseudoInverse<6, 7> {
    static constexpr bool available = true;
    static constexpr Flag8 fn = &QZ_RightPsoInv67;
};
template <>
struct PseudoInverse<7, 6> {
    static constexpr bool available = true;
    static constexpr Flag8 fn = &QZ_LeftPsoInv76;
};

// Copies the leading n x n block of a row-major n x n matrix into storage of row stride S.
template <std::size_t S, std::size_t N>
constexpr std::array<double, S * S> padded(const Mat<N, N> &a) noexcept {
    std::array<double, S * S> out{};
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j) out[i * S + j] = a[i * N + j];
    return out;
}
}  // namespace detail

// N x N identity (sizes 2..8).
template <std::size_t N>
[[nodiscard]] Mat<N, N> identity() noexcept {
    static_assert(detail::Square<N>::available, "qz::identity: the library has sizes 2 to 8");
    Mat<N, N> out;
    detail::Square<N>::identity(out.data());
    return out;
}
// A + B (square sizes 2..8).
template <std::size_t N>
[[nodiscard]] Mat<N, N> add(const Mat<N, N> &a, const Mat<N, N> &b) noexcept {
    static_assert(detail::Square<N>::available,
                  "qz::add: the library adds square matrices of sizes 2 to 8");
    Mat<N, N> out;
    detail::Square<N>::add(a.data(), b.data(), out.data());
    return out;
}
// A - B (6 x 7 only).
template <std::size_t R, std::size_t C>
[[nodiscard]] Mat<R, C> sub(const Mat<R, C> &a, const Mat<R, C> &b) noexcept {
    static_assert(R == 6 && C == 7, "qz::sub: the library subtracts 6x7 matrices only");
    Mat<R, C> out;
    QZ_MatrixSub67(a.data(), b.data(), out.data());
    return out;
}
// A . B: square sizes 2..8, (6x7).(7x7) and (6x7).(7x6).
template <std::size_t R, std::size_t K, std::size_t C>
[[nodiscard]] Mat<R, C> mul(const Mat<R, K> &a, const Mat<K, C> &b) noexcept {
    static_assert(detail::Product<R, K, C>::available,
                  "qz::mul: the library multiplies square matrices of sizes 2 to 8, (6x7).(7x7) "
                  "and (6x7).(7x6) only");
    Mat<R, C> out;
    detail::Product<R, K, C>::fn(a.data(), b.data(), out.data());
    return out;
}
// M . v: square sizes 3, 4, 6, 7, and the shapes 6x7 and 7x6.
template <std::size_t R, std::size_t C>
[[nodiscard]] Vec<R> mul(const Mat<R, C> &m, const Vec<C> &v) noexcept {
    static_assert(detail::MatVec<R, C>::available,
                  "qz::mul: the library multiplies a vector by 3x3, 4x4, 6x6, 7x7, 6x7 and 7x6 "
                  "matrices only");
    Vec<R> out;
    detail::MatVec<R, C>::fn(m.data(), v.data(), out.data());
    return out;
}
// v^T . M: sizes 6 and 7.
template <std::size_t N>
[[nodiscard]] Vec<N> mul(const Vec<N> &v, const Mat<N, N> &m) noexcept {
    static_assert(detail::VecMat<N>::available,
                  "qz::mul: the library multiplies a row vector by 6x6 and 7x7 matrices only");
    Vec<N> out;
    detail::VecMat<N>::fn(v.data(), m.data(), out.data());
    return out;
}
// A . rotation block of T.
[[nodiscard]] inline Mat3 mul_rotation(const Mat3 &a, const Mat4 &t) noexcept {
    Mat3 out;
    QZ_MatrixMult3m4(a.data(), t.data(), out.data());
    return out;
}
// Rotation block of T times v.
[[nodiscard]] inline Vec3 rotate(const Mat4 &t, const Vec3 &v) noexcept {
    Vec3 out;
    QZ_MVmult43(t.data(), v.data(), out.data());
    return out;
}
// A . diag(d), 6 x 6.
[[nodiscard]] inline Mat6 mul_diag(const Mat6 &a, const Vec<6> &d) noexcept {
    Mat6 out;
    QZ_MmultDiagM66(a.data(), d.data(), out.data());
    return out;
}
// Transpose: square sizes 2..8 and 6x7.
template <std::size_t R, std::size_t C>
[[nodiscard]] Mat<C, R> transpose(const Mat<R, C> &a) noexcept {
    static_assert(detail::Transpose<R, C>::available,
                  "qz::transpose: the library transposes square matrices of sizes 2 to 8 and 6x7 "
                  "only");
    Mat<C, R> out;
    detail::Transpose<R, C>::fn(a.data(), out.data());
    return out;
}
// Inverse by LU with partial pivoting (sizes 2..8); singular, zeros, at a pivot <= 1e-16;
// non_finite, zeros, for a NaN or infinite element.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<R, C>> inverse(const Mat<R, C> &a) noexcept {
    static_assert(R == C && detail::Square<R>::available,
                  "qz::inverse: the library inverts square matrices of sizes 2 to 8 only");
    // One result object on every path, so that it is built in place.
    Result<Mat<R, C>> r{typename Result<Mat<R, C>>::Unwritten{}};
    if (!detail::all_finite(a))
        r.fail(Status::non_finite, true);
    else if (!detail::Square<R>::inv(a.data(), r.value().data()))
        r.fail(Status::singular, true);
    return r;
}
// Inverse of a rigid transform in closed form (rotation transposed); T's last row is not read.
[[nodiscard]] inline Mat4 rigid_inverse(const Mat4 &t) noexcept {
    Mat4 out;
    (void)QZ_PGMatrixInv(t.data(), out.data());
    return out;
}
// Determinant by cofactor expansion (sizes 1..8).
template <std::size_t R, std::size_t C>
[[nodiscard]] double det(const Mat<R, C> &a) noexcept {
    static_assert(R == C && R >= 1 && R <= 8,
                  "qz::det: the library takes determinants of square matrices of sizes 1 to 8");
    const auto storage = detail::padded<8>(a);
    return QZ_MatrixDeterminant(storage.data(), static_cast<std::int32_t>(R));
}
// Moore-Penrose pseudo-inverse of a 6x7 (right) or 7x6 (left) Jacobian; singular when the Gram
// matrix is, non_finite for a NaN or infinite element.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<C, R>> pinv(const Mat<R, C> &a) noexcept {
    static_assert(detail::PseudoInverse<R, C>::available,
                  "qz::pinv: the library has pseudo-inverses of 6x7 and 7x6 matrices only");
    Result<Mat<C, R>> r{typename Result<Mat<C, R>>::Unwritten{}};
    if (!detail::all_finite(a))
        r.fail(Status::non_finite, true);
    else if (!detail::PseudoInverse<R, C>::fn(a.data(), r.value().data()))
        r.fail(Status::singular, true);
    return r;
}

// LU factors of an N x N matrix with partial pivoting: unit lower L below the diagonal, U on and
// above it; perm[i] is the input row now in row i and perm[N] the number of exchanges.
template <std::size_t N>
struct Lup {
    Mat<N, N> lu;
    std::array<std::int32_t, N + 1> perm;
};
namespace detail {
template <std::size_t R, std::size_t C>
constexpr std::array<double *, R> row_pointers(Mat<R, C> &m) noexcept {
    std::array<double *, R> rows{};
    for (std::size_t i = 0; i < R; ++i) rows[i] = m.data() + i * C;
    return rows;
}
}  // namespace detail
// LUP decomposition; singular (partly reduced factors) at a pivot below 1e-16; non_finite, zeros,
// for a NaN or infinite element.
template <std::size_t N>
[[nodiscard]] Result<Lup<N>> lup(const Mat<N, N> &a) noexcept {
    if (!detail::all_finite(a)) return {Lup<N>{}, Status::non_finite};
    Lup<N> f{a, {}};
    const auto rows = detail::row_pointers(f.lu);
    const auto n = static_cast<std::int32_t>(N);
    if (QZ_MatLUPD(rows.data(), n, n, f.perm.data()) != 0) return {f, Status::singular};
    return f;
}
// x with A x = b, from A's LUP factors.
template <std::size_t N>
[[nodiscard]] Vec<N> solve(const Lup<N> &f, const Vec<N> &b) noexcept {
    Mat<N, N> lu = f.lu;  // the C function takes mutable row pointers but only reads them
    const auto rows = detail::row_pointers(lu);
    Vec<N> x;
    QZ_LUPSolveEq(rows.data(), static_cast<std::int32_t>(N), f.perm.data(), b.data(), x.data());
    return x;
}
// Determinant from LUP factors.
template <std::size_t N>
[[nodiscard]] double det(const Lup<N> &f) noexcept {
    Mat<N, N> lu = f.lu;
    const auto rows = detail::row_pointers(lu);
    return QZ_MatLUPDet(rows.data(), static_cast<std::int32_t>(N), f.perm.data());
}
// Inverse from LUP factors (no singularity test: a zero pivot gives inf or NaN).
template <std::size_t N>
[[nodiscard]] Mat<N, N> inverse(const Lup<N> &f) noexcept {
    Mat<N, N> lu = f.lu, out;
    const auto rows = detail::row_pointers(lu);
    const auto outRows = detail::row_pointers(out);
    QZ_MatLUPInv(rows.data(), static_cast<std::int32_t>(N), f.perm.data(), outRows.data());
    return out;
}

// Lower Cholesky factor of a symmetric positive definite matrix (sizes 1..7; only the lower
// triangle is read); not_positive_definite at the first reduced diagonal <= 0; non_finite, zeros,
// for a NaN or infinite element of the lower triangle.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<R, C>> cholesky(const Mat<R, C> &a) noexcept {
    static_assert(R == C && R >= 1 && R <= 7,
                  "qz::cholesky: the library factors square matrices of sizes 1 to 7 only");
    for (std::size_t i = 0; i < R; ++i)
        for (std::size_t j = 0; j <= i; ++j)
            if (!std::isfinite(a(i, j))) return {Mat<R, C>{}, Status::non_finite};
    constexpr std::size_t S = R <= 6 ? 6 : 7;
    const auto in = detail::padded<S>(a);
    std::array<double, S * S> l{};
    const std::int32_t rc = S == 6 ? Cholesky(in.data(), l.data(), static_cast<std::int32_t>(R))
                                   : Cholesky7(in.data(), l.data(), static_cast<std::int32_t>(R));
    Mat<R, C> out{};
    for (std::size_t i = 0; i < R; ++i)
        for (std::size_t j = 0; j < R; ++j) out[i * R + j] = l[i * S + j];
    if (rc != 0) return {out, Status::not_positive_definite};
    return out;
}
// v^T M v (sizes 1..7).
template <std::size_t N>
[[nodiscard]] double vmv(const Vec<N> &v, const Mat<N, N> &m) noexcept {
    static_assert(N >= 1 && N <= 7, "qz::vmv: the library has sizes 1 to 7 only");
    const auto storage = detail::padded<7>(m);
    return VMV(v.data(), storage.data(), static_cast<std::int32_t>(N));
}

// Eigenvalues and eigenvectors: vectors' column k belongs to values[k]; the pairs are unsorted.
template <std::size_t N>
struct EigenPairs {
    Vec<N> values;
    Mat<N, N> vectors;
};
// Symmetric eigen decomposition by the threshold Jacobi method (sizes 1..8); failed when the
// input is rejected, a rotation is undefined or the rotation cap is reached (the C function does
// not tell these apart); non_finite for a NaN or infinite element or tolerance.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<EigenPairs<R>> eig(const Mat<R, C> &a, double eps) noexcept {
    static_assert(R == C && R >= 1 && R <= 8,
                  "qz::eig: the library decomposes square matrices of sizes 1 to 8 only");
    if (!detail::all_finite(a, eps)) return {EigenPairs<R>{}, Status::non_finite};
    Mat<R, C> work = a;
    EigenPairs<R> out{};
    const bool ok = ::eig(static_cast<std::int32_t>(R), work.data(), out.vectors.data(), eps) != 0;
    for (std::size_t k = 0; k < R; ++k) out.values[k] = work[k * R + k];
    return {out, ok ? Status::ok : Status::failed};
}
// Generalized symmetric eigenproblem A x = lambda B x (sizes 6 and 7), reentrant in both sizes;
// failed as for eig, non_finite for a NaN or infinite element or tolerance.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<EigenPairs<R>> generalized_eig(const Mat<R, C> &a, const Mat<R, C> &b,
                                                    double eps) noexcept {
    static_assert(R == C && (R == 6 || R == 7),
                  "qz::generalized_eig: the library has sizes 6 and 7 only");
    if (!detail::all_finite(a, b, eps)) return {EigenPairs<R>{}, Status::non_finite};
    EigenPairs<R> out{};
    const auto fn = R == 6 ? &::generalized_eig : &::generalized_eig7;
    const bool ok = fn(eps, a.data(), b.data(), out.vectors.data(), out.values.data()) != 0;
    return {out, ok ? Status::ok : Status::failed};
}

}  // namespace qz

#endif  // QZMATH_MATRIX_HPP
