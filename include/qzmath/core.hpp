// core.hpp: what every part of the C++ interface shares: angles that carry their unit, the value
// types in the layout of the C functions, and the Status and Result of a call.
//
// Families (namespace qz):
//   angles       Rad Deg to_rad to_deg sin cos acos atan2
//   value types  Vec<N> Mat<R, C> Quat PosQuat PoseXYZ<U> PoseZYZ<U> EulerXYZ<U> EulerZYZ RotVec
//   results      Status Limit Result<T> LimitReport<N> to_string
//
// Every value type is a std::array of double in the layout the C function expects (row-major
// matrices, quaternions x, y, z, w), so value.data() goes to a C function and back as it is.
// Nothing in the C++ interface throws or allocates, and every function is noexcept: fit for the
// real-time cycle.
#ifndef QZMATH_CORE_HPP
#define QZMATH_CORE_HPP

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <type_traits>

#include "QZBaseMath.h"

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
    zero_length,            // too short to normalise or invert, or a quaternion of length <= 1e-9
                            // where a rotation is expected
    parallel,               // line crossing of parallel lines or of a zero direction
    failed,                 // eig / generalized eig: rejected input, undefined rotation or cap
    not_initialised,        // the record is not initialised (or its initialisation was refused)
    reset_pending,          // the record waits for its first step after initialisation or a jump
    bad_argument,           // an initialisation refused its parameters
    non_finite,             // an input held NaN or an infinity: refused, nothing computed from it
    not_a_rotation,         // a rotation expected, but rows not orthonormal within 1e-3, a mirror,
                            // or a quaternion whose length is not within 1e-3 of 1
};

constexpr const char *to_string(Status s) noexcept {
    constexpr const char *names[] = {"ok",           "singular",         "not positive definite",
                                     "ZYZ singular", "zero length",      "parallel",
                                     "failed",       "not initialised",  "reset pending",
                                     "bad argument", "non-finite input", "not a rotation"};
    return names[static_cast<std::size_t>(s)];
}

// What became of a limit or a cycle time given to a tracker.
enum class [[nodiscard]] Limit : std::uint8_t{
    applied,  // in force from this call on
    ramping,  // below the current speed: the axis ramps down at its acceleration limit first
    ignored,  // within 0.1 of the last request: nothing changed (the C call still reports success)
    clamped,  // brought into velocity [0.1, 200], acceleration [1, 1000], cycle [1, 1000] ms (jerk
              // [1000, 1e7] for the N-axis multi-stage tracker), then applied as above
    refused,  // the record is not initialised
    invalid,  // NaN, infinite, zero or negative: refused, the limits in force stay
};

constexpr const char *to_string(Limit l) noexcept {
    constexpr const char *names[] = {"applied", "ramping", "ignored",
                                     "clamped", "refused", "invalid"};
    return names[static_cast<std::size_t>(l)];
}

// A value and the status of the call that produced it. On failure the value holds what the C
// function left in a zero-initialised output: zeros where it writes nothing, and where it writes
// usable results anyway (ZYZ singular, LUP partly reduced) those results. A tracker's step holds
// the commanded position whatever the status. On a temporary, value() and * give the value by
// value, so that `const auto &m = qz::inverse(a).value();` keeps a live copy.
template <class T>
class [[nodiscard]] Result {
  public:
    // cppcheck-suppress noExplicitConstructor ; implicit: a wrapper returns its value as it is
    constexpr Result(const T &value, Status status = Status::ok) noexcept
        : value_(value), status_(status) {}
    // A result whose value a C function is about to write in place (no zeroing, no copy).
    struct Unwritten {};
    // cppcheck-suppress uninitMemberVar ; the C function's output, written before it is read
    explicit Result(Unwritten) noexcept : status_(Status::ok) {}
    // Marks the call failed; zero says the C function wrote nothing, so the value becomes zeros.
    void fail(Status status, bool zero) noexcept {
        status_ = status;
        if (zero) value_ = T{};
    }
    constexpr bool ok() const noexcept { return status_ == Status::ok; }
    constexpr explicit operator bool() const noexcept { return ok(); }
    constexpr Status status() const noexcept { return status_; }
    constexpr const T &value() const &noexcept { return value_; }
    constexpr T &value() &noexcept { return value_; }
    constexpr T value() const &&noexcept { return value_; }
    constexpr const T &operator*() const &noexcept { return value_; }
    constexpr T operator*() const &&noexcept { return value_; }
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

namespace detail {
// True when no element is NaN or infinite. The layer above the C functions refuses such inputs
// where they enter, so that no record keeps them and no conversion turns them into a finite answer.
inline bool finite(double x) noexcept { return std::isfinite(x); }
// x * 0 is a signed zero for every finite x and NaN for NaN and the infinities, so the sum of
// those products is zero exactly when every element is finite: one multiply and one add per
// element, without a branch (twice as fast as a test per element).
template <std::size_t N>
bool finite(const std::array<double, N> &v) noexcept {
    const auto plusZeroed = [](double sum, double x) noexcept { return sum + x * 0.0; };
    return std::accumulate(v.begin(), v.end(), 0.0, plusZeroed) == 0.0;
}
template <class... T>
bool all_finite(const T &...v) noexcept {
    return (finite(v) && ...);
}
// v, or v scaled by 2^-256 (exactly, a power of two) as often as its squared length would
// overflow (at most three times): the direction is the same and the length now fits, so that a
// function of the direction alone (normalising, a unit inverse, an angle) gives it instead of
// zeros or NaN. Steps of 2^-256 leave the largest element above 2^250, far from the lengths
// that the C functions take as zero.
template <class T>
T length_in_range(T v) noexcept {
    const auto plusSquare = [](double sum, double x) noexcept { return sum + x * x; };
    for (int i = 0;
         i < 3 && !(std::accumulate(v.begin(), v.end(), 0.0, plusSquare) <= 1.7976931348623157e308);
         ++i)
        std::transform(v.begin(), v.end(), v.begin(),
                       [](double x) noexcept { return x * 0x1p-256; });
    return v;
}
// The status of an input that must be finite: ok or non_finite.
template <class... T>
Status finite_status(const T &...v) noexcept {
    return all_finite(v...) ? Status::ok : Status::non_finite;
}

// out, or zeros under non_finite when finite input still gave NaN or an infinity (a rotation
// vector whose squared length overflows, a slerp at a huge t): never handed out under ok.
template <class T>
Result<T> finite_result(const T &out) noexcept {
    return finite(out) ? Result<T>(out) : Result<T>(T{}, Status::non_finite);
}

// The status of quaternions where rotations are expected: non_finite for a NaN or an infinity,
// zero_length for a length of at most 1e-9 (no direction to turn about), not_a_rotation for a
// length not within 1e-3 of 1 (the C functions take them as unit length), else ok.
inline Status rotation_status(const std::array<double, 4> &q) noexcept {
    if (!finite(q)) return Status::non_finite;
    const double n2 = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
    if (n2 <= 1e-18) return Status::zero_length;
    return n2 >= 0.998 && n2 <= 1.002 ? Status::ok : Status::not_a_rotation;
}
inline Status rotation_status(const std::array<double, 4> &a,
                              const std::array<double, 4> &b) noexcept {
    const Status s = rotation_status(a);
    return s != Status::ok ? s : rotation_status(b);
}
// The status of a rotation matrix, or of a transform's rotation block (row stride S): non_finite
// for a NaN or an infinity, not_a_rotation unless its rows are orthonormal within 1e-3 and form a
// right-handed frame, else ok. Zeros, a scaled matrix or a mirror would otherwise come out of a
// conversion as a plausible orientation.
template <std::size_t S>
Status rotation_matrix_status(const double *m) noexcept {
    std::array<double, 9> r{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) r[3 * i + j] = m[S * i + j];
    if (!finite(r)) return Status::non_finite;
    const auto rowDot = [&r](std::size_t i, std::size_t j) {
        return r[3 * i] * r[3 * j] + r[3 * i + 1] * r[3 * j + 1] + r[3 * i + 2] * r[3 * j + 2];
    };
    double worst = 0.0;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = i; j < 3; ++j) {
            const double e = rowDot(i, j) - (i == j ? 1.0 : 0.0);
            worst = e > worst ? e : -e > worst ? -e : worst;
        }
    const double handedness = r[0] * (r[4] * r[8] - r[5] * r[7]) -
                              r[1] * (r[3] * r[8] - r[5] * r[6]) +
                              r[2] * (r[3] * r[7] - r[4] * r[6]);
    return worst <= 1e-3 && handedness > 0.0 ? Status::ok : Status::not_a_rotation;
}

// Signatures of the C functions that the size tables of the other headers hold.
using Unary = void (*)(const double *, double *);
using Binary = void (*)(const double *, const double *, double *);
using Scaled = void (*)(const double *, double, const double *, double *);
using Flag8 = std::uint8_t (*)(const double *, double *);
using Norm = std::int32_t (*)(double *);
using Fill = void (*)(double *);
}  // namespace detail

// ---- Scalars with units --------------------------------------------------------------------------

[[nodiscard]] inline double sin(Rad a) noexcept { return QZ_SIN_ARC(a.value); }
[[nodiscard]] inline double sin(Deg a) noexcept { return QZ_SIN_DEG(a.value); }
[[nodiscard]] inline double cos(Rad a) noexcept { return QZ_COS_ARC(a.value); }
[[nodiscard]] inline double cos(Deg a) noexcept { return QZ_COS_DEG(a.value); }
// Arc cosine of x clamped to [-1, 1].
[[nodiscard]] inline Rad acos(double x) noexcept { return Rad{QZ_ACOS(x)}; }
// Four-quadrant arc tangent of y / x.
[[nodiscard]] inline Rad atan2(double y, double x) noexcept { return Rad{QZ_ATan2(y, x)}; }

}  // namespace qz

#endif  // QZMATH_CORE_HPP
