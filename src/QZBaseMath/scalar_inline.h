// The scalar primitives as inline functions, for use inside the library.
//
// This header and scalar.cpp are the only places in the library that call the standard
// mathematics library; every other module forms its square roots, absolute values, signs,
// trigonometry and zero tests through these, so that each is formed one way everywhere and the
// results are the same bits whichever module computes them. The exported QZ_ functions are thin
// wrappers over these.
#ifndef QZ_BASEMATH_SCALAR_INLINE_H
#define QZ_BASEMATH_SCALAR_INLINE_H

#include <cmath>
#include <cstdint>

namespace qz::detail {

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kPi = 3.141592653589793;
constexpr double kDegToRad = 0.017453292519943295;  // radians per degree
constexpr double kRadToDeg = 57.29577951308232;     // degrees per radian
constexpr double kOneThird = 0.3333333333333333;
constexpr double kZeroTol = 1e-16;
constexpr double kZeroTolLoose = 1e-15;

inline double Sqrt(double x) { return std::sqrt(x); }
inline double Fabs(double x) { return std::fabs(x); }
inline double Root3(double x) { return std::pow(x, kOneThird); }
inline double SinArc(double a) { return std::sin(a); }
// Every cosine is the sine of half pi minus the angle, the difference rounded first.
inline double CosArc(double a) { return SinArc(kHalfPi - a); }
inline double SinDeg(double d) { return SinArc(kDegToRad * d); }
inline double CosDeg(double d) { return CosArc(kDegToRad * d); }
// Both of one angle. The sine is stored first, so that with s == c the cosine is what remains.
inline void SinCosArc(double a, double *s, double *c) {
    *s = SinArc(a);
    *c = CosArc(a);
}
// Degrees are turned into radians once, then the sine and cosine taken of that value.
inline void SinCosDeg(double d, double *s, double *c) {
    const double r = kDegToRad * d;
    *s = SinArc(r);
    *c = CosArc(r);
}
inline double ATan2(double y, double x) { return std::atan2(y, x); }
// Rounding can push a cosine just outside [-1, 1]; clamp so that it gives 0 or pi, not NaN.
// The upper clamp is a comparison so that NaN passes through.
inline double ACos(double x) {
    if (x < -1.0) return std::acos(-1.0);
    return std::acos(x > 1.0 ? 1.0 : x);
}
// fmax and fmin: a NaN argument is passed over in favour of the other. C leaves the sign of the
// result open when +0 meets -0, and builds really differ there (glibc's fmax, the compiler's
// inline maxsd and aarch64's fmaxnm each choose differently); these fix it as IEEE 754 orders
// the zeros, +0 above -0, so that every build returns the same bits.
inline double Max(double a, double b) {
    if (a != a) return b;
    if (b != b) return a;
    if (a > b) return a;
    if (b > a) return b;
    return std::signbit(a) ? b : a;
}
inline double Min(double a, double b) {
    if (a != a) return b;
    if (b != b) return a;
    if (a < b) return a;
    if (b < a) return b;
    return std::signbit(a) ? a : b;
}
// Closed bands: both ends count as zero, NaN does not.
inline bool IsZero(double x) { return x >= -kZeroTol && x <= kZeroTol; }
inline bool IsZeroL(double x) { return x >= -kZeroTolLoose && x <= kZeroTolLoose; }
inline double ValueSig(double x) {
    if (x > 0.0) return 1.0;
    if (x < 0.0) return -1.0;
    return 0.0;
}

}  // namespace qz::detail

#endif
