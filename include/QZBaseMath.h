/*
 * QZBaseMath: the scalar layer of QZMath.
 *
 * Families:
 *   scalar primitives   QZ_Sqrt QZ_Fabs QZ_3Root QZ_SIN_* QZ_COS_* QZ_Sigmod QZ_ATan2 QZ_ACOS
 *                       QZ_MAX QZ_MIN QZ_IsZero QZ_IsZeroL QZ_Floor QZ_Value_Sig
 *   polynomial solvers  QZ_SqureSolve QZ_CubicSolve QZ_Solve*OrderEq QZ_SolvePolynomialResult
 *   plane geometry      QZ_CalAngleCDEG QZ_PointToLine QZ_MinDif_Circle ValueToTarget
 *
 * Every square root, absolute value, sine, cosine, arc cosine and arc tangent in the library goes
 * through the scalar primitives, so these fix once how a cosine is formed (the sine of half pi
 * minus the angle), how an arc cosine is guarded, and what counts as zero. Names ending in ARC
 * take radians, names ending in DEG take degrees. All functions are pure and reentrant.
 */
#ifndef QZ_BASE_MATH_H
#define QZ_BASE_MATH_H

#include <stdint.h>

/* Marks the exported API; everything else in the library has hidden visibility. */
#if defined(__GNUC__) || defined(__clang__)
#define QZ_API __attribute__((visibility("default")))
#else
#define QZ_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Scalar primitives ------------------------------------------------------------------ */

/* Square root; a negative x gives NaN (and sets errno like sqrt). */
QZ_API double QZ_Sqrt(double x);
/* Absolute value |x|. */
QZ_API double QZ_Fabs(double x);
/* pow(x, 0.3333333333333333): not a true cube root; negative x gives NaN, and a perfect cube
 * may be off in the last place. */
QZ_API double QZ_3Root(double x);
/* Sine of an angle in radians. */
QZ_API double QZ_SIN_ARC(double a);
/* Cosine of an angle in radians, formed as sin(1.5707963267948966 - a). */
QZ_API double QZ_COS_ARC(double a);
/* Sine of an angle in degrees: sin(0.017453292519943295 * d). */
QZ_API double QZ_SIN_DEG(double d);
/* Cosine of an angle in degrees: sin(1.5707963267948966 - 0.017453292519943295 * d). */
QZ_API double QZ_COS_DEG(double d);
/* Stores the sine of a (radians) in *s first, then its cosine in *c; with s == c the cosine
 * remains. */
QZ_API void QZ_SIN_COS_ARC(double a, double *s, double *c);
/* As QZ_SIN_COS_ARC for an angle in degrees (converted once to radians). */
QZ_API void QZ_SIN_COS_DEG(double d, double *s, double *c);
/* Odd raised-cosine step: x clamped to [-1, 1], then (1 - cos(pi x)) / 2 with the sign of x;
 * exactly +-1 beyond +-1, exactly +-0.5 at +-0.5, 0 for zero and for NaN. */
QZ_API double QZ_Sigmod(double x);
/* Four-quadrant arc tangent of y / x in radians; the ordinate comes first. */
QZ_API double QZ_ATan2(double y, double x);
/* Arc cosine in [0, pi] of x clamped to [-1, 1]: never NaN for finite x; NaN gives NaN. */
QZ_API double QZ_ACOS(double x);
/* fmax(a, b): a NaN argument is passed over in favour of the other. */
QZ_API double QZ_MAX(double a, double b);
/* fmin(a, b): a NaN argument is passed over in favour of the other. */
QZ_API double QZ_MIN(double a, double b);
/* 1 if -1e-16 <= x <= 1e-16 (both ends included), else 0; NaN gives 0. */
QZ_API uint8_t QZ_IsZero(double x);
/* 1 if -1e-15 <= x <= 1e-15 (both ends included), else 0; NaN gives 0. */
QZ_API uint8_t QZ_IsZeroL(double x);
/* Largest whole number not above x; whole x (and -0.0) come back unchanged, NaN gives NaN.
 * For |x| >= 2^31, beyond a 32-bit integer part, the true floor is returned (x itself when
 * x is whole or infinite); no out-of-range conversion takes place. */
QZ_API double QZ_Floor(double x);
/* Sign of x: 1.0, -1.0, or +0.0 for either zero and for NaN. */
QZ_API double QZ_Value_Sig(double x);

/* ---- Polynomial solvers ----------------------------------------------------------------- */

/* ---- Plane geometry and target helpers -------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* QZ_BASE_MATH_H */
