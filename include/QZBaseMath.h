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

/* Capacities of the caller-held records of QZDT.h and QZFLT.h, which size their arrays by these. */
#define QZ_MAX_AXES 8     /* axes of the N-axis trackers and of the estimator */
#define QZ_MAX_CHANNELS 8 /* channels of the averaging filter and of the one-step fitter */
#define QZ_RING_LEN 100   /* slots of a moving-average ring: the longest averaging window */

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
/* fmax(a, b): a NaN argument is passed over in favour of the other; of +0 and -0 the larger is
 * +0 on every build (C leaves that tie open). */
QZ_API double QZ_MAX(double a, double b);
/* fmin(a, b): a NaN argument is passed over in favour of the other; of +0 and -0 the smaller is
 * -0 on every build (C leaves that tie open). */
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

/* Coefficients come highest degree first (a x^2 + b x + c, ...). Every solver returns the number
 * of roots written to indices 0 .. count-1 and leaves the entries beyond the count as they were;
 * outputs must not alias one another. */

/* Real roots of a x^2 + b x + c (roots[2]). |a| <= 1e-15 solves b x + c (0 roots if also
 * |b| <= 1e-15); a discriminant within 1e-15 of zero gives the double root once; a negative one
 * gives 0; otherwise 2 roots in ascending order. */
QZ_API int32_t QZ_SqureSolve(double a, double b, double c, double *roots);
/* Real roots of a x^3 + b x^2 + c x + d (roots[3]), by Cardano. Solves the quadratic in b, c, d
 * when |a| <= 1e-15 or |b / a| > 1e10; |d| <= 1e-15 gives the quadratic's roots then 0. One root
 * for a positive discriminant, 2 for an exactly zero one (the double root once, first), else 3
 * with the largest first. */
QZ_API int32_t QZ_CubicSolve(double a, double b, double c, double d, double *roots);
/* Smallest strictly positive real root of the cubic (as QZ_CubicSolve) in *out: 1, or 0 with
 * *out unwritten. */
QZ_API uint8_t QZ_CubicSolve_Min_Pos(double a, double b, double c, double d, double *out);
/* Largest strictly negative real root of the cubic (as QZ_CubicSolve) in *out: 1, or 0 with
 * *out unwritten. */
QZ_API uint8_t QZ_CubicSolve_Max_Nag(double a, double b, double c, double d, double *out);
/* Complex roots of a x^2 + b x + c as re[2], im[2]. |a| <= 1e-15 solves b x + c (1 root, or 0
 * when |b| <= 1e-15); otherwise 2 roots: two real ones (the larger first for a > 0), or for a
 * discriminant D <= 0 the real part -b/2a twice with imaginary parts +-sqrt(-D)/2a in that order
 * (a zero discriminant thus gives the double root twice). */
QZ_API int32_t QZ_Solve2OrderEq(double a, double b, double c, double *re, double *im);
/* Complex roots of a x^3 + b x^2 + c x + d as re[3], im[3]. a == 0 exactly solves the quadratic;
 * d == 0 exactly gives the quadratic's roots then 0. Otherwise 3: one real root then a conjugate
 * pair, or three real roots (a double root listed twice). A tiny nonzero a is divided through. */
QZ_API int32_t QZ_Solve3OrderEq(double a, double b, double c, double d, double *re, double *im);
/* Complex roots of a x^4 + b x^3 + c x^2 + d x + e as re[4], im[4], by Ferrari. a == 0 exactly
 * solves the cubic; e == 0 exactly gives the cubic's roots then 0. Otherwise 4 roots, or 0 with
 * nothing written when the resolvent's constant 4ce - d^2 - b^2 e (monic form) is exactly 0. */
QZ_API int32_t QZ_Solve4OrderEq(double a, double b, double c, double d, double e, double *re,
                                double *im);
/* The real roots of QZ_Solve4OrderEq in its order (roots[4]): those with |im| <= 1e-16 or
 * |re| / |im| > 10000, imaginary part dropped. Returns their count. */
QZ_API int32_t QZ_Solve4OrderEqR(double a, double b, double c, double d, double e, double *roots);
/* Value at x of p[0] + p[1] x + ... + p[n-1] x^(n-1), constant term first; 0.0 for n <= 0. */
QZ_API double QZ_SolvePolynomialResult(const double *p, double x, int32_t n);

/* ---- Plane geometry and target helpers -------------------------------------------------- */

/* 180 minus the angle (degrees) between sides a and b of a triangle with third side c: 0 when
 * straight (c = a + b), 180 when folded (c = 0); impossible sides clamp to these ends. 0.0 when
 * |a| or |b| <= 1e-16. */
QZ_API double QZ_CalAngleCDEG(double a, double b, double c);
/* Foot F[3] of the perpendicular from P[3] to the line through A[3] and B[3]; F may alias any
 * input. A == B gives a non-finite foot. Returns 1. */
QZ_API int32_t QZ_PointToLine(const double *A, const double *B, const double *P, double *F);
/* Shortest angular distance (degrees, in [0, 180]) between a and *b; stores in *b the copy of its
 * angle, *b plus whole turns, that lies within 180 of a (a difference of 180 stores a - 180).
 * Bounded time for any difference. A NaN argument gives NaN in both; an infinite difference,
 * or one beyond 2^62 degrees (where a turn is below the spacing of doubles), also gives NaN in
 * both. */
QZ_API double QZ_MinDif_Circle(double a, double *b);
/* Moves *value one step towards target: down by step above target + step/2, up by step below
 * target - step/2, else onto target exactly. */
QZ_API void ValueToTarget(double *value, double target, double step);

#ifdef __cplusplus
}
#endif

#endif /* QZ_BASE_MATH_H */
