// Vector operations as inline templates, for the modules of the library that work on vectors.
//
// The exported QZ_Vect* functions are thin wrappers over these, so a module that calls them here
// gets exactly the same bits without going through an exported symbol.
//
// Conventions kept throughout: sums run from index 0 upward in one running value that starts
// from 0.0; a length is the plain square root of that sum of squares (no scaling against
// overflow); normalising divides every element by the length, never multiplies by a reciprocal.
// Every function except VectCross forms output element i only from input element i, or from
// sums over the whole input completed before the first store, so its output may be an input.
#ifndef QZ_MATRIX_VECTOR_H
#define QZ_MATRIX_VECTOR_H

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// Below this length VectNormalized gives the zero vector instead of a direction.
constexpr double kNormalizedMinLength = 1e-6;
// Two points whose squared distance is below this are taken as one point.
constexpr double kCoincidentSquared = 1e-9;

// ---- fixed sizes ------------------------------------------------------------------------------

// Divides v by its length in place; returns 0 and leaves v untouched when the length is within
// the zero band.
template <int N>
inline std::int32_t VectNormFixed(double *v) {
    double q = v[0] * v[0];
    for (int i = 1; i < N; ++i) q = q + v[i] * v[i];
    const double len = Sqrt(q);
    if (IsZero(len)) return 0;
    for (int i = 0; i < N; ++i) v[i] = v[i] / len;
    return 1;
}

template <int N>
inline void VectCpy(const double *src, double *dst) {
    for (int i = 0; i < N; ++i) dst[i] = src[i];
}

template <int N>
inline void VectAdd(const double *a, const double *b, double *out) {
    for (int i = 0; i < N; ++i) out[i] = a[i] + b[i];
}

// out = b * s + a, the product formed first.
template <int N>
inline void VectSA(const double *a, double s, const double *b, double *out) {
    for (int i = 0; i < N; ++i) out[i] = b[i] * s + a[i];
}

// ---- counted (n <= 0 is an empty vector) -------------------------------------------------------

inline void VectSub(const double *a, std::int32_t n, const double *b, double *out) {
    for (std::int32_t i = 0; i < n; ++i) out[i] = a[i] - b[i];
}

inline void VectAddX(const double *a, std::int32_t n, const double *b, double *out) {
    for (std::int32_t i = 0; i < n; ++i) out[i] = a[i] + b[i];
}

inline void VectDotMult(const double *a, std::int32_t n, const double *b, double *out) {
    for (std::int32_t i = 0; i < n; ++i) out[i] = a[i] * b[i];
}

inline void VectSAX(const double *a, std::int32_t n, double s, const double *b, double *out) {
    for (std::int32_t i = 0; i < n; ++i) out[i] = b[i] * s + a[i];
}

// out = v * s. A factor of exactly one (the only double within the zero band of 1) copies, so
// that a unit scale moves the bits unchanged.
inline void VectScale(const double *v, std::int32_t n, double s, double *out) {
    if (IsZero(s - 1.0)) {
        for (std::int32_t i = 0; i < n; ++i) out[i] = v[i];
    } else {
        for (std::int32_t i = 0; i < n; ++i) out[i] = v[i] * s;
    }
}

inline double VectDot(const double *a, const double *b, std::int32_t n) {
    double s = 0.0;
    for (std::int32_t i = 0; i < n; ++i) s = s + a[i] * b[i];
    return s;
}

inline double VectLength(const double *v, std::int32_t n) {
    double s = 0.0;
    for (std::int32_t i = 0; i < n; ++i) s = s + v[i] * v[i];
    return Sqrt(s);
}

// Counted form of VectNormFixed; an empty vector has length 0 and is refused.
inline std::int32_t VectNorm(double *v, std::int32_t n) {
    const double len = VectLength(v, n);
    if (IsZero(len)) return 0;
    for (std::int32_t i = 0; i < n; ++i) v[i] = v[i] / len;
    return 1;
}

// Angle between a and b in degrees, 0 when either is of zero length. The cosine is clamped to
// [-1, 1] by comparisons so that rounding cannot push it out of the arc cosine's domain, while a
// NaN still passes through.
inline double VectAngle(const double *a, const double *b, std::int32_t n) {
    const double d = VectDot(a, b, n);
    const double la = VectLength(a, n);
    const double lb = VectLength(b, n);
    if (IsZero(la)) return 0.0;
    if (IsZero(lb)) return 0.0;
    double r = d / (la * lb);
    if (r >= 1.0) {
        r = 1.0;
    } else if (r <= -1.0) {
        r = -1.0;
    }
    return ACos(r) * kRadToDeg;
}

// Unit vector of v, or the zero vector when v is shorter than kNormalizedMinLength. It reports
// nothing: a caller recognises the degenerate case by the zero output. A NaN length fails the
// comparison and is divided through.
inline void VectNormalized(const double *v, std::int32_t n, double *out) {
    if (n <= 0) return;
    double q = 0.0;
    for (std::int32_t i = 0; i < n; ++i) q = q + v[i] * v[i];
    const double len = Sqrt(q);
    if (len < kNormalizedMinLength) {
        for (std::int32_t i = 0; i < n; ++i) out[i] = 0.0;
    } else {
        for (std::int32_t i = 0; i < n; ++i) out[i] = v[i] / len;
    }
}

// The shadow of a on the line of b: (a . u) u with u the unit vector of b (zero when b is
// shorter than kNormalizedMinLength). The unit vector is held in three local elements, so counts
// above 3 are refused and, like counts of 0 or less, write nothing.
inline void CalShadowVector(const double *a, const double *b, double *out, std::int32_t n) {
    if (n <= 0 || n > 3) return;
    double u[3] = {0.0, 0.0, 0.0};
    VectNormalized(b, n, u);
    const double d = VectDot(a, u, n);
    VectScale(u, n, d, out);
}

// ---- 3-vectors ----------------------------------------------------------------------------------

// out = a x b; the middle component is the negated minor, so its zero takes the minus sign.
// out must not share storage with a or b.
inline void VectCross(const double *a, const double *b, double *out) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = -(a[0] * b[2] - a[2] * b[0]);
    out[2] = a[0] * b[1] - a[1] * b[0];
}

inline double GetVectLenA2B(const double *a, const double *b) {
    double q = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double d = b[i] - a[i];
        q = q + d * d;
    }
    return Sqrt(q);
}

// Writes b - a into out and, unless the points coincide (squared distance below
// kCoincidentSquared), divides it by its length, which goes to *len when len is given. On the
// coincident path out keeps b - a and *len is not written.
inline std::int32_t GetVectNormLenA2B(const double *a, const double *b, double *out, double *len) {
    double q = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double d = b[i] - a[i];
        out[i] = d;
        q = q + d * d;
    }
    if (Fabs(q) < kCoincidentSquared) return 0;
    const double l = Sqrt(q);
    for (int i = 0; i < 3; ++i) out[i] = out[i] / l;
    if (len != nullptr) *len = l;
    return 1;
}

inline std::int32_t GetVectNormA2B(const double *a, const double *b, double *out) {
    return GetVectNormLenA2B(a, b, out, nullptr);
}

}  // namespace qz::detail

#endif
