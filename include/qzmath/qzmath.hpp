// qzmath.hpp: the C++17 interface of QZMath, header-only, over the C functions of QZBaseMath.h,
// QZDT.h, QZFLT.h, QZMatrix.h and QZQuaternions.h.
//
// Families (namespace qz):
//   value types        Vec<N> Mat<R, C> Quat PosQuat PoseXYZ<U> PoseZYZ<U> EulerXYZ<U>
//                      EulerZYZ RotVec Lup<N> EigenPairs<N>
//   angles             Rad Deg to_rad to_deg sin cos acos atan2
//   results            Status Limit Result<T> LimitReport<N> to_string
//   vectors            add sub scale axpy dot length normalize cross angle
//   matrices           identity add sub mul mul_rotation rotate mul_diag transpose inverse
//                      rigid_inverse det pinv lup solve cholesky vmv eig generalized_eig
//   quaternions        mul conjugate inverse normalize length angle slerp slerp_long Slerp
//                      slerp_direction
//   orientation        rotation rotation4 transform to_quat to_posquat to_rotvec euler_xyz
//                      euler_zyz pose_xyz pose_zyz rot_x rot_y rot_z compose relative turn_z
//   frames             dh skew line_cross jacobian_rotate
//   stateful families  Tracker MultiStageTracker SmoothedTracker<N> SmoothedMultiStageTracker<N>
//                      Estimator<N> OneStepFitter<N> ErrorComparator AveragingFilter<N>
//                      SmoothedValue
//
// Every value type is a std::array of double in the layout the C function expects (row-major
// matrices, quaternions x, y, z, w), so value.data() goes to a C function and back as it is.
// Each wrapper calls the one C function of its size or shape and returns its bits unchanged; a
// size that the library does not provide is a compile error. Nothing here throws or allocates,
// and every function is noexcept: fit for the real-time cycle.
#ifndef QZMATH_QZMATH_HPP
#define QZMATH_QZMATH_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"

namespace qz {

// ---- Angles ------------------------------------------------------------------------------------

// An angle in radians or in degrees. The two do not convert into each other implicitly, so a
// degree value cannot reach a function that takes radians by accident.
struct Rad {
    double value;
};
struct Deg {
    double value;
};
// Degrees to radians as the library converts them (0.017453292519943295 * d).
constexpr Rad to_rad(Deg d) noexcept { return Rad{0.017453292519943295 * d.value}; }
// Radians to degrees as the library converts them (r * 57.29577951308232).
constexpr Deg to_deg(Rad r) noexcept { return Deg{r.value * 57.29577951308232}; }

namespace detail {
template <class U>
constexpr bool is_unit = std::is_same_v<U, Rad> || std::is_same_v<U, Deg>;
}  // namespace detail

// ---- Value types ---------------------------------------------------------------------------------

// N doubles.
template <std::size_t N>
struct Vec : std::array<double, N> {};

// R-by-C row-major matrix: element (i, j) at i * C + j, as the C functions read it.
template <std::size_t R, std::size_t C>
struct Mat : std::array<double, R * C> {
    static constexpr std::size_t rows = R;
    static constexpr std::size_t cols = C;
    constexpr double &operator()(std::size_t i, std::size_t j) noexcept {
        return (*this)[i * C + j];
    }
    constexpr const double &operator()(std::size_t i, std::size_t j) const noexcept {
        return (*this)[i * C + j];
    }
};

using Vec3 = Vec<3>;
using Mat3 = Mat<3, 3>;  // rotation
using Mat4 = Mat<4, 4>;  // homogeneous transform, position at (0, 3), (1, 3), (2, 3)
using Mat6 = Mat<6, 6>;
using Mat67 = Mat<6, 7>;  // Jacobian of a seven-joint arm
using Mat76 = Mat<7, 6>;

// Quaternion x, y, z, w, the scalar last.
struct Quat : std::array<double, 4> {
    constexpr double x() const noexcept { return (*this)[0]; }
    constexpr double y() const noexcept { return (*this)[1]; }
    constexpr double z() const noexcept { return (*this)[2]; }
    constexpr double w() const noexcept { return (*this)[3]; }
};

// Pose x, y, z, qx, qy, qz, qw.
struct PosQuat : std::array<double, 7> {};

// Pose x, y, z, A, B, C with R = Rz(C) Ry(B) Rx(A), angles in the unit U (Rad or Deg).
template <class U>
struct PoseXYZ : std::array<double, 6> {
    static_assert(detail::is_unit<U>, "qz::PoseXYZ: the angle unit is qz::Rad or qz::Deg");
};
// Pose x, y, z, a, b, c with R = Rz(a) Ry(b) Rz(c), angles in the unit U (Rad or Deg).
template <class U>
struct PoseZYZ : std::array<double, 6> {
    static_assert(detail::is_unit<U>, "qz::PoseZYZ: the angle unit is qz::Rad or qz::Deg");
};
// Euler angles A, B, C of R = Rz(C) Ry(B) Rx(A), in the unit U.
template <class U>
struct EulerXYZ : std::array<double, 3> {
    static_assert(detail::is_unit<U>, "qz::EulerXYZ: the angle unit is qz::Rad or qz::Deg");
};
// Euler angles a, b, c of R = Rz(a) Ry(b) Rz(c), in radians (the library's only ZYZ unit for a
// rotation matrix).
struct EulerZYZ : std::array<double, 3> {};
// Rotation vector: unit axis times the angle in radians.
struct RotVec : std::array<double, 3> {};

static_assert(sizeof(Mat<6, 7>) == 42 * sizeof(double) && std::is_standard_layout_v<Mat<6, 7>>);
static_assert(sizeof(Quat) == 4 * sizeof(double) && std::is_standard_layout_v<Quat>);
static_assert(sizeof(PosQuat) == 7 * sizeof(double) && std::is_trivially_copyable_v<PosQuat>);

// ---- Results -------------------------------------------------------------------------------------

// Why a call did not succeed. The C functions say it with 1/0 flags, 0/1 (LUP), 0/-1 (Cholesky) or
// counts; here each reason has its own name.
enum class [[nodiscard]] Status : std::uint8_t{
    ok,
    singular,               // a pivot column's largest |value| at or below 1e-16
    not_positive_definite,  // Cholesky: a reduced diagonal <= 0
    zyz_singular,           // ZYZ extraction with |b| below 0.5 degree: usable angles, a = 0
    zero_length,            // too short to normalise or invert
    parallel,               // line crossing of parallel lines or of a zero direction
    failed,                 // eig / generalized eig: rejected input, undefined rotation or cap
    not_initialised,        // the record is not initialised (or its initialisation was refused)
    reset_pending,          // the record waits for its first step after initialisation or empty
    bad_argument,           // an initialisation refused its parameters
};

constexpr const char *to_string(Status s) noexcept {
    constexpr const char *names[] = {
        "ok",       "singular", "not positive definite", "ZYZ singular",  "zero length",
        "parallel", "failed",   "not initialised",       "reset pending", "bad argument"};
    return names[static_cast<std::size_t>(s)];
}

// What became of a limit given to a tracker.
enum class [[nodiscard]] Limit : std::uint8_t{
    applied,  // in force from this call on
    ramping,  // below the current speed: the axis ramps down at its acceleration limit first
    ignored,  // within 0.1 of the last request: nothing changed (the C call still reports success)
    clamped,  // initialisation only: brought into velocity [0.1, 200], acceleration [1, 1000]
              // (jerk [1000, 1e7] for the N-axis multi-stage tracker); a NaN limit counts too
    refused,  // the record is not initialised
};

constexpr const char *to_string(Limit l) noexcept {
    constexpr const char *names[] = {"applied", "ramping", "ignored", "clamped", "refused"};
    return names[static_cast<std::size_t>(l)];
}

// A value and the status of the call that produced it. On failure the value holds what the C
// function left in a zero-initialised output: zeros where it writes nothing, and where it writes
// usable results anyway (ZYZ singular, LUP partly reduced) those results.
template <class T>
class [[nodiscard]] Result {
  public:
    // cppcheck-suppress noExplicitConstructor ; implicit: a wrapper returns its value as it is
    constexpr Result(const T &value, Status status = Status::ok) noexcept
        : value_(value), status_(status) {}
    // A result whose value a C function is about to write in place (no zeroing, no copy).
    struct Unwritten {};
    explicit Result(Unwritten) noexcept : status_(Status::ok) {}
    // Marks the call failed; zero says the C function wrote nothing, so the value becomes zeros.
    void fail(Status status, bool zero) noexcept {
        status_ = status;
        if (zero) value_ = T{};
    }
    constexpr bool ok() const noexcept { return status_ == Status::ok; }
    constexpr explicit operator bool() const noexcept { return ok(); }
    constexpr Status status() const noexcept { return status_; }
    constexpr const T &value() const noexcept { return value_; }
    constexpr T &value() noexcept { return value_; }
    constexpr const T &operator*() const noexcept { return value_; }
    constexpr const T *operator->() const noexcept { return &value_; }
    constexpr T value_or(const T &fallback) const noexcept { return ok() ? value_ : fallback; }

  private:
    T value_;
    Status status_;
};

// One Limit per axis.
template <std::size_t N>
struct [[nodiscard]] LimitReport {
    std::array<Limit, N> axis{};
    constexpr Limit operator[](std::size_t i) const noexcept { return axis[i]; }
    // Loops rather than std::all_of and std::any_of, which are constexpr only from C++20.
    constexpr bool all(Limit l) const noexcept {
        for (Limit a : axis) {
            // cppcheck-suppress useStlAlgorithm ; constexpr in C++17
            if (a != l) return false;
        }
        return true;
    }
    constexpr bool any(Limit l) const noexcept {
        for (Limit a : axis) {
            // cppcheck-suppress useStlAlgorithm ; constexpr in C++17
            if (a == l) return true;
        }
        return false;
    }
};

// ---- Size tables: which C function serves which size ----------------------------------------

namespace detail {
using Unary = void (*)(const double *, double *);
using Binary = void (*)(const double *, const double *, double *);
using Scaled = void (*)(const double *, double, const double *, double *);
using Flag8 = std::uint8_t (*)(const double *, double *);
using Norm = std::int32_t (*)(double *);
using Fill = void (*)(double *);

// Fixed-size vectors, n = 2..8. A size without an entry keeps the null functions of the primary
// template, so only the static_assert of the caller speaks.
template <std::size_t N>
struct Vector {
    static constexpr bool available = false;
    static constexpr Norm norm = nullptr;
    static constexpr Binary add = nullptr;
    static constexpr Scaled sa = nullptr;
};
// Square matrices, n = 2..8.
template <std::size_t N>
struct Square {
    static constexpr bool available = false;
    static constexpr Binary mult = nullptr;
    static constexpr Binary add = nullptr;
    static constexpr Unary transpose = nullptr;
    static constexpr Fill identity = nullptr;
    static constexpr Flag8 inv = nullptr;
};
#define QZ_CPP_SIZE(N)                                             \
    template <>                                                    \
    struct Vector<N> {                                             \
        static constexpr bool available = true;                    \
        static constexpr Norm norm = &QZ_VectNorm##N;              \
        static constexpr Binary add = &QZ_VectAdd##N;              \
        static constexpr Scaled sa = &QZ_VectSA##N;                \
    };                                                             \
    template <>                                                    \
    struct Square<N> {                                             \
        static constexpr bool available = true;                    \
        static constexpr Binary mult = &QZ_MatrixMult##N;          \
        static constexpr Binary add = &QZ_MatrixAdd##N;            \
        static constexpr Unary transpose = &QZ_MatrixTranspose##N; \
        static constexpr Fill identity = &QZ_MatrixIdentity##N;    \
        static constexpr Flag8 inv = &QZ_MatrixInv##N;             \
    };
QZ_CPP_SIZE(2)
QZ_CPP_SIZE(3)
QZ_CPP_SIZE(4)
QZ_CPP_SIZE(5)
QZ_CPP_SIZE(6)
QZ_CPP_SIZE(7)
QZ_CPP_SIZE(8)
#undef QZ_CPP_SIZE

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

// Copies the leading n x n block of a row-major n x n matrix into storage of row stride S.
template <std::size_t S, std::size_t N>
constexpr std::array<double, S * S> padded(const Mat<N, N> &a) noexcept {
    std::array<double, S * S> out{};
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j) out[i * S + j] = a[i * N + j];
    return out;
}

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
    if (before.isInit == 0) return Limit::refused;
    const LimitFields now = limit_fields(after);
    if (now.acc == before.acc && now.vel == before.vel && now.target == before.target &&
        now.pending == before.pending)
        return Limit::ignored;
    return after.velLmtPending != 0 ? Limit::ramping : Limit::applied;
}
}  // namespace detail

// ---- Vectors ---------------------------------------------------------------------------------

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
// v / |v| (sizes 2..8); zero_length, v unchanged, when |v| is within 1e-16 of zero.
template <std::size_t N>
[[nodiscard]] Result<Vec<N>> normalize(const Vec<N> &v) noexcept {
    static_assert(detail::Vector<N>::available, "qz::normalize: the library has sizes 2 to 8");
    Result<Vec<N>> r{v};
    if (!detail::Vector<N>::norm(r.value().data())) r.fail(Status::zero_length, false);
    return r;
}
// a x b.
[[nodiscard]] inline Vec3 cross(const Vec3 &a, const Vec3 &b) noexcept {
    Vec3 out;
    QZ_VectCross(a.data(), b.data(), out.data());
    return out;
}
// Angle between a and b in degrees, [0, 180]; 0 when either is of zero length.
template <std::size_t N>
[[nodiscard]] Deg angle(const Vec<N> &a, const Vec<N> &b) noexcept {
    return Deg{QZ_VectAngle(a.data(), b.data(), static_cast<std::int32_t>(N))};
}

// ---- Matrices --------------------------------------------------------------------------------

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
// Inverse by LU with partial pivoting (sizes 2..8); singular, zeros, at a pivot <= 1e-16.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<R, C>> inverse(const Mat<R, C> &a) noexcept {
    static_assert(R == C && detail::Square<R>::available,
                  "qz::inverse: the library inverts square matrices of sizes 2 to 8 only");
    Result<Mat<R, C>> r{typename Result<Mat<R, C>>::Unwritten{}};
    if (!detail::Square<R>::inv(a.data(), r.value().data())) r.fail(Status::singular, true);
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
// matrix is.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<C, R>> pinv(const Mat<R, C> &a) noexcept {
    static_assert(detail::PseudoInverse<R, C>::available,
                  "qz::pinv: the library has pseudo-inverses of 6x7 and 7x6 matrices only");
    Result<Mat<C, R>> r{typename Result<Mat<C, R>>::Unwritten{}};
    if (!detail::PseudoInverse<R, C>::fn(a.data(), r.value().data()))
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
// LUP decomposition; singular (partly reduced factors) at a pivot below 1e-16.
template <std::size_t N>
[[nodiscard]] Result<Lup<N>> lup(const Mat<N, N> &a) noexcept {
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
// triangle is read); not_positive_definite at the first reduced diagonal <= 0.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<Mat<R, C>> cholesky(const Mat<R, C> &a) noexcept {
    static_assert(R == C && R >= 1 && R <= 7,
                  "qz::cholesky: the library factors square matrices of sizes 1 to 7 only");
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
// not tell these apart).
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<EigenPairs<R>> eig(const Mat<R, C> &a, double eps) noexcept {
    static_assert(R == C && R >= 1 && R <= 8,
                  "qz::eig: the library decomposes square matrices of sizes 1 to 8 only");
    Mat<R, C> work = a;
    EigenPairs<R> out{};
    const bool ok = ::eig(static_cast<std::int32_t>(R), work.data(), out.vectors.data(), eps) != 0;
    for (std::size_t k = 0; k < R; ++k) out.values[k] = work[k * R + k];
    return {out, ok ? Status::ok : Status::failed};
}
// Generalized symmetric eigenproblem A x = lambda B x (sizes 6 and 7). The 7x7 form works in
// static storage: its calls must not overlap, from any thread.
template <std::size_t R, std::size_t C>
[[nodiscard]] Result<EigenPairs<R>> generalized_eig(const Mat<R, C> &a, const Mat<R, C> &b,
                                                    double eps) noexcept {
    static_assert(R == C && (R == 6 || R == 7),
                  "qz::generalized_eig: the library has sizes 6 and 7 only");
    EigenPairs<R> out{};
    const auto fn = R == 6 ? &::generalized_eig : &::generalized_eig7;
    const bool ok = fn(eps, a.data(), b.data(), out.vectors.data(), out.values.data()) != 0;
    return {out, ok ? Status::ok : Status::failed};
}

// ---- Scalars with units --------------------------------------------------------------------------

[[nodiscard]] inline double sin(Rad a) noexcept { return QZ_SIN_ARC(a.value); }
[[nodiscard]] inline double sin(Deg a) noexcept { return QZ_SIN_DEG(a.value); }
[[nodiscard]] inline double cos(Rad a) noexcept { return QZ_COS_ARC(a.value); }
[[nodiscard]] inline double cos(Deg a) noexcept { return QZ_COS_DEG(a.value); }
// Arc cosine of x clamped to [-1, 1].
[[nodiscard]] inline Rad acos(double x) noexcept { return Rad{QZ_ACOS(x)}; }
// Four-quadrant arc tangent of y / x.
[[nodiscard]] inline Rad atan2(double y, double x) noexcept { return Rad{QZ_ATan2(y, x)}; }

// ---- Quaternions ---------------------------------------------------------------------------------

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
    if (QZ_QuaternionInverse(q.data(), r.value().data()) == 0) r.fail(Status::zero_length, true);
    return r;
}
// q / |q|; zero_length, q unchanged, when |q| <= 1e-16.
[[nodiscard]] inline Result<Quat> normalize(const Quat &q) noexcept {
    Result<Quat> r{q};
    if (QZ_QuaternionNorm(r.value().data()) == 0) r.fail(Status::zero_length, false);
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

// ---- Orientation: rotations, Euler angles, rotation vectors, poses -----------------------------

// Quaternion of a rotation matrix, or of a transform's rotation block (not normalised).
[[nodiscard]] inline Quat to_quat(const Mat3 &r) noexcept {
    Quat q;
    QZ_Matrix2Quaternion3(r.data(), q.data());
    return q;
}
[[nodiscard]] inline Quat to_quat(const Mat4 &t) noexcept {
    Quat q;
    QZ_Matrix2Quaternion4(t.data(), q.data());
    return q;
}
// Rotation matrix of a unit quaternion, of a rotation vector, of Euler angles.
[[nodiscard]] inline Mat3 rotation(const Quat &q) noexcept {
    Mat3 r;
    QZ_Quaternion2Matrix3(q.data(), r.data());
    return r;
}
[[nodiscard]] inline Mat3 rotation(const RotVec &v) noexcept {
    Mat3 r;
    axis_angle_to_rotmat(v.data(), r.data());
    return r;
}
template <class U>
[[nodiscard]] Mat3 rotation(const EulerXYZ<U> &abc) noexcept {
    Mat3 r;
    (void)(std::is_same_v<U, Deg> ? QZ_ABC2Matrix3DEG : QZ_ABC2Matrix3ARC)(abc.data(), r.data());
    return r;
}
[[nodiscard]] inline Mat3 rotation(const EulerZYZ &abc) noexcept {
    Mat3 r;
    QZ_ZYZ2Matrix(abc[0], abc[1], abc[2], r.data());
    return r;
}
// 4x4 matrix with the rotation of q and zeros elsewhere: element (3, 3) is 0 as well.
[[nodiscard]] inline Mat4 rotation4(const Quat &q) noexcept {
    Mat4 m;
    QZ_Quaternion2Matrix4(q.data(), m.data());
    return m;
}
// Elementary rotations.
[[nodiscard]] inline Mat3 rot_x(Rad a) noexcept {
    Mat3 r;
    QZ_RotXARC(a.value, r.data());
    return r;
}
[[nodiscard]] inline Mat3 rot_y(Rad a) noexcept {
    Mat3 r;
    QZ_RotYARC(a.value, r.data());
    return r;
}
[[nodiscard]] inline Mat3 rot_z(Rad a) noexcept {
    Mat3 r;
    QZ_RotZARC(a.value, r.data());
    return r;
}
// XYZ angles in radians of a rotation or of a transform's rotation block.
[[nodiscard]] inline EulerXYZ<Rad> euler_xyz(const Mat3 &r) noexcept {
    EulerXYZ<Rad> abc;
    (void)QZ_Matrix2XYZ(r.data(), abc.data());
    return abc;
}
[[nodiscard]] inline EulerXYZ<Rad> euler_xyz(const Mat4 &t) noexcept {
    EulerXYZ<Rad> abc;
    (void)QZ_Matrix42XYZ(t.data(), abc.data());
    return abc;
}
// ZYZ angles in radians; zyz_singular below |b| = 0.5 degree, with a = 0 and usable b, c.
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat3 &r) noexcept {
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (QZ_Matrix2ZYZ(r.data(), abc.value().data()) == 0) abc.fail(Status::zyz_singular, false);
    return abc;
}
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat4 &t) noexcept {
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (QZ_Matrix42ZYZ(t.data(), abc.value().data()) == 0) abc.fail(Status::zyz_singular, false);
    return abc;
}
// Rotation vector of a rotation matrix, angle in [0, pi].
[[nodiscard]] inline RotVec to_rotvec(const Mat3 &r) noexcept {
    RotVec v;
    rotmat_to_axis_angle(r.data(), v.data());
    return v;
}
// Rotation vector of R(a) R(b): b applied first, both in the fixed frame.
[[nodiscard]] inline RotVec compose(const RotVec &a, const RotVec &b) noexcept {
    RotVec out;
    AngleMult(a.data(), b.data(), out.data());
    return out;
}
// The rotation from orientation a to orientation b, expressed in frame a: Ra^T Rb.
[[nodiscard]] inline Mat3 relative(const Mat3 &a, const Mat3 &b) noexcept {
    Mat3 out;
    relative_rotation(a.data(), b.data(), out.data());
    return out;
}
[[nodiscard]] inline RotVec relative(const RotVec &a, const RotVec &b) noexcept {
    RotVec out;
    relative_Angle(a.data(), b.data(), out.data());
    return out;
}

// Transform of a pose.
[[nodiscard]] inline Mat4 transform(const PosQuat &p) noexcept {
    Mat4 t;
    QZ_PosQuat2Matrix(p.data(), t.data());
    return t;
}
template <class U>
[[nodiscard]] Mat4 transform(const PoseXYZ<U> &p) noexcept {
    Mat4 t;
    (std::is_same_v<U, Deg> ? QZ_XYZABC2Matrix4DEG : QZ_XYZABC2Matrix4ARC)(p.data(), t.data());
    return t;
}
// PosQuat pose of a transform.
[[nodiscard]] inline PosQuat to_posquat(const Mat4 &t) noexcept {
    PosQuat p;
    QZ_Matrix2PosQuat(t.data(), p.data());
    return p;
}
// PosQuat pose of an XYZABC pose in degrees, quaternion normalised; zero_length when it could
// not be (then it is unnormalised).
[[nodiscard]] inline Result<PosQuat> to_posquat(const PoseXYZ<Deg> &p) noexcept {
    double buf[8] = {p[0], p[1], p[2], p[3], p[4], p[5], 0.0, 0.0};
    const bool ok = QZ_XYZABC2XYZQ(buf) != 0;
    PosQuat out;
    for (std::size_t i = 0; i < 7; ++i) out[i] = buf[i];
    return {out, ok ? Status::ok : Status::zero_length};
}
// XYZ pose of a transform, angles in the unit asked for.
template <class U>
[[nodiscard]] PoseXYZ<U> pose_xyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_xyz<U>: the unit is qz::Rad or qz::Deg");
    PoseXYZ<U> p;
    // The C names carry the opposite unit: the ARC form answers in degrees, the DEG form in radians.
    (void)(std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4ARC_XYZ : QZ_Matrix2XYZABC4DEG_XYZ)(t.data(),
                                                                                         p.data());
    return p;
}
// ZYZ pose of a transform; zyz_singular below |b| = 0.5 degree, when only the angles are written
// (a = 0; with Deg, b and c stay in radians, as the C function leaves them).
template <class U>
[[nodiscard]] Result<PoseZYZ<U>> pose_zyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_zyz<U>: the unit is qz::Rad or qz::Deg");
    Result<PoseZYZ<U>> p{PoseZYZ<U>{}};  // the singular branch leaves the position unwritten
    const auto fn = std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4DEG_ZYZ : QZ_Matrix2XYZABC4ARC_ZYZ;
    if (!fn(t.data(), p.value().data())) p.fail(Status::zyz_singular, false);
    return p;
}
// T turned about its own z axis by the angle of cosine c and sine s.
[[nodiscard]] inline Mat4 turn_z(const Mat4 &t, double c, double s) noexcept {
    Mat4 out;
    QZ_XYZMRot(t.data(), c, s, out.data());
    return out;
}

// ---- Frames and Jacobians ------------------------------------------------------------------

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
// parallel for parallel lines or a zero direction.
[[nodiscard]] inline Result<Vec3> line_cross(const Vec3 &p1, Vec3 d1, const Vec3 &p2,
                                             Vec3 d2) noexcept {
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

// ---- Stateful families -----------------------------------------------------------------------
//
// Each class owns its C record: construction initialises it, step or update advances one cycle,
// and record() gives it to the C API as it is. The classes are copyable values without heap.

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
        return QZNSyncDTS_OnEmpty(&s_) != 0 ? Status::ok : Status::not_initialised;
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
            r.axis[i] = s_.isInit != 0 ? detail::limit_outcome(before[i], s_.axis[i].stage[0])
                                       : Limit::refused;
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
        return QZAVGF_OnEmpty(&s_) != 0 ? Status::ok : Status::not_initialised;
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

#endif  // QZMATH_QZMATH_HPP
