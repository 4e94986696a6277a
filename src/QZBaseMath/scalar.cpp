// Scalar primitives: the exported layer over the inline primitives.
#include "QZBaseMath.h"

#include "QZBaseMath/scalar_inline.h"

using namespace qz::detail;

extern "C" {

QZ_API double QZ_Sqrt(double x) { return Sqrt(x); }
QZ_API double QZ_Fabs(double x) { return Fabs(x); }
QZ_API double QZ_3Root(double x) { return Root3(x); }
QZ_API double QZ_SIN_ARC(double a) { return SinArc(a); }
QZ_API double QZ_COS_ARC(double a) { return CosArc(a); }
QZ_API double QZ_SIN_DEG(double d) { return SinDeg(d); }
QZ_API double QZ_COS_DEG(double d) { return CosDeg(d); }

QZ_API void QZ_SIN_COS_ARC(double a, double *s, double *c) { SinCosArc(a, s, c); }
QZ_API void QZ_SIN_COS_DEG(double d, double *s, double *c) { SinCosDeg(d, s, c); }

// (1 - cos(pi x)) / 2 written as a sine, mirrored for negative x. Beyond the clamp the sine is
// exactly 1, so the result saturates at exactly +-1.
QZ_API double QZ_Sigmod(double x) {
    if (x < -1.0) {
        x = -1.0;
    } else if (x > 1.0) {
        x = 1.0;
    }
    if (x > 0.0) return (SinArc(x * kPi - kHalfPi) + 1.0) * 0.5;
    if (x < 0.0) return -(SinArc(-x * kPi - kHalfPi) + 1.0) * 0.5;
    return 0.0;
}

QZ_API double QZ_ATan2(double y, double x) { return ATan2(y, x); }
QZ_API double QZ_ACOS(double x) { return ACos(x); }
QZ_API double QZ_MAX(double a, double b) { return Max(a, b); }
QZ_API double QZ_MIN(double a, double b) { return Min(a, b); }
QZ_API uint8_t QZ_IsZero(double x) { return IsZero(x) ? 1 : 0; }
QZ_API uint8_t QZ_IsZeroL(double x) { return IsZeroL(x) ? 1 : 0; }

// The floor through a 32-bit integer part, so that a whole x (including -0.0) comes back as the
// very same double. Magnitudes from 2^31 on do not fit that integer part: there the true floor
// is taken directly instead of converting out of range.
QZ_API double QZ_Floor(double x) {
    if (x != x) return x;
    if (!(Fabs(x) < 2147483648.0)) return std::floor(x);
    const double t = static_cast<double>(static_cast<int32_t>(x));
    const double f = x - t;
    if (f == 0.0) return x;
    if (x > 0.0) return x - f;
    return x - f - 1.0;
}

QZ_API double QZ_Value_Sig(double x) { return ValueSig(x); }

}  // extern "C"
