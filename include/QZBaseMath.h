/**
 * @file
 * @brief QZBaseMath: the scalar layer of QZMath.
 *
 * Families:
 * @verbatim
   scalar primitives   QZ_Sqrt QZ_Fabs QZ_3Root QZ_SIN_* QZ_COS_* QZ_Sigmod QZ_ATan2 QZ_ACOS
                       QZ_MAX QZ_MIN QZ_IsZero QZ_IsZeroL QZ_Floor QZ_Value_Sig
   polynomial solvers  QZ_SqureSolve QZ_CubicSolve QZ_Solve*OrderEq QZ_SolvePolynomialResult
   plane geometry      QZ_CalAngleCDEG QZ_PointToLine QZ_MinDif_Circle ValueToTarget
   @endverbatim
 *
 * Every square root, absolute value, sine, cosine, arc cosine and arc tangent in the library goes
 * through the scalar primitives, so these fix once how a cosine is formed (the sine of half pi
 * minus the angle), how an arc cosine is guarded, and what counts as zero. Names ending in ARC
 * take radians, names ending in DEG take degrees. All functions are pure and reentrant.
 * Units, result values and aliasing rules for the whole library: docs/conventions.md.
 */
#ifndef QZ_BASE_MATH_H
#define QZ_BASE_MATH_H

#include <stdint.h>

/**
 * @def QZ_API
 * @brief Marks the exported API; everything else in the library has hidden visibility.
 */
#if defined(__GNUC__) || defined(__clang__)
#define QZ_API __attribute__((visibility("default")))
#else
#define QZ_API
#endif

/* Capacities of the caller-held records of QZDT.h and QZFLT.h, which size their arrays by these. */
#define QZ_MAX_AXES 8     /**< Axes of the N-axis trackers and of the estimator. */
#define QZ_MAX_CHANNELS 8 /**< Channels of the averaging filter and of the one-step fitter. */
#define QZ_RING_LEN 100   /**< Slots of a moving-average ring: the longest averaging window. */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Scalar primitives ------------------------------------------------------------------ */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Square root.
 * @param[in] x  Radicand; a negative x gives NaN (and sets errno like sqrt).
 * @return The square root of x.
 */
QZ_API double QZ_Sqrt(double x);
/**
 * @brief Absolute value.
 * @param[in] x  Any value.
 * @return |x|.
 */
QZ_API double QZ_Fabs(double x);
/**
 * @brief Approximate cube root, pow(x, 0.3333333333333333).
 *
 * Not a true cube root: a perfect cube may be off in the last place.
 * @param[in] x  Radicand; a negative x gives NaN.
 * @return pow(x, 0.3333333333333333).
 */
QZ_API double QZ_3Root(double x);
/**
 * @brief Sine of an angle in radians.
 * @param[in] a  Angle (rad).
 * @return sin(a).
 */
QZ_API double QZ_SIN_ARC(double a);
/**
 * @brief Cosine of an angle in radians, formed as sin(1.5707963267948966 - a).
 * @param[in] a  Angle (rad).
 * @return sin(1.5707963267948966 - a).
 */
QZ_API double QZ_COS_ARC(double a);
/**
 * @brief Sine of an angle in degrees: sin(0.017453292519943295 * d).
 * @param[in] d  Angle (degrees).
 * @return sin(0.017453292519943295 * d).
 */
QZ_API double QZ_SIN_DEG(double d);
/**
 * @brief Cosine of an angle in degrees: sin(1.5707963267948966 - 0.017453292519943295 * d).
 * @param[in] d  Angle (degrees).
 * @return sin(1.5707963267948966 - 0.017453292519943295 * d).
 */
QZ_API double QZ_COS_DEG(double d);
/**
 * @brief Sine and cosine of an angle in radians.
 * @param[in]  a  Angle (rad).
 * @param[out] s  Sine of a, stored first.
 * @param[out] c  Cosine of a, stored second.
 * @par Aliasing
 * s may be c: the cosine remains.
 */
QZ_API void QZ_SIN_COS_ARC(double a, double *s, double *c);
/**
 * @brief Sine and cosine of an angle in degrees, as QZ_SIN_COS_ARC after one conversion to
 * radians.
 * @param[in]  d  Angle (degrees).
 * @param[out] s  Sine of d, stored first.
 * @param[out] c  Cosine of d, stored second.
 * @par Aliasing
 * s may be c: the cosine remains.
 */
QZ_API void QZ_SIN_COS_DEG(double d, double *s, double *c);
/**
 * @brief Odd raised-cosine step from -1 to 1.
 *
 * x is clamped to [-1, 1], then (1 - cos(pi x)) / 2 is given the sign of x.
 * @param[in] x  Position on the step; 0 at the middle, +-1 at the ends.
 * @return Exactly +-1 beyond +-1, exactly +-0.5 at +-0.5, 0 for zero and for NaN.
 */
QZ_API double QZ_Sigmod(double x);
/**
 * @brief Four-quadrant arc tangent of y / x in radians; the ordinate comes first.
 * @param[in] y  Ordinate.
 * @param[in] x  Abscissa.
 * @return atan2(y, x) (rad).
 */
QZ_API double QZ_ATan2(double y, double x);
/**
 * @brief Arc cosine of x clamped to [-1, 1].
 * @param[in] x  Cosine; values beyond [-1, 1] are clamped.
 * @return Angle in [0, pi] (rad): never NaN for finite x; NaN gives NaN.
 */
QZ_API double QZ_ACOS(double x);
/**
 * @brief Larger of two values, fmax(a, b).
 * @param[in] a  First value.
 * @param[in] b  Second value.
 * @return fmax(a, b): a NaN argument is passed over in favour of the other; of +0 and -0 the
 * larger is +0 on every build (C leaves that tie open).
 */
QZ_API double QZ_MAX(double a, double b);
/**
 * @brief Smaller of two values, fmin(a, b).
 * @param[in] a  First value.
 * @param[in] b  Second value.
 * @return fmin(a, b): a NaN argument is passed over in favour of the other; of +0 and -0 the
 * smaller is -0 on every build (C leaves that tie open).
 */
QZ_API double QZ_MIN(double a, double b);
/**
 * @brief Zero test with the closed band +-1e-16.
 * @param[in] x  Value to test.
 * @retval 1 -1e-16 <= x <= 1e-16 (both ends included).
 * @retval 0 otherwise; NaN gives 0.
 */
QZ_API uint8_t QZ_IsZero(double x);
/**
 * @brief Zero test with the closed band +-1e-15.
 * @param[in] x  Value to test.
 * @retval 1 -1e-15 <= x <= 1e-15 (both ends included).
 * @retval 0 otherwise; NaN gives 0.
 */
QZ_API uint8_t QZ_IsZeroL(double x);
/**
 * @brief Largest whole number not above x.
 *
 * For |x| >= 2^31, beyond a 32-bit integer part, the true floor is returned (x itself when x is
 * whole or infinite); no out-of-range conversion takes place.
 * @param[in] x  Any value.
 * @return floor(x); whole x (and -0.0) come back unchanged, NaN gives NaN.
 */
QZ_API double QZ_Floor(double x);
/**
 * @brief Sign of x.
 * @param[in] x  Any value.
 * @return 1.0, -1.0, or +0.0 for either zero and for NaN.
 */
QZ_API double QZ_Value_Sig(double x);

/* ---- Polynomial solvers ----------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/* Coefficients come highest degree first (a x^2 + b x + c, ...). Every solver returns the number
 * of roots written to indices 0 .. count-1 and leaves the entries beyond the count as they were;
 * outputs must not alias one another. */

/**
 * @brief Real roots of the quadratic a x^2 + b x + c.
 * @param[in]  a      Coefficient of x^2; |a| <= 1e-15 solves b x + c (0 roots if also
 *                    |b| <= 1e-15).
 * @param[in]  b      Coefficient of x.
 * @param[in]  c      Constant term.
 * @param[out] roots  Array of 2: the roots at indices 0 .. count-1; entries beyond the count are
 *                    left as they were.
 * @return The number of roots: 2 in ascending order; the double root once for a discriminant
 * within 1e-15 of zero; 0 for a negative discriminant.
 */
QZ_API int32_t QZ_SqureSolve(double a, double b, double c, double *roots);
/**
 * @brief Real roots of the cubic a x^3 + b x^2 + c x + d, by Cardano.
 *
 * Solves the quadratic in b, c, d when |a| <= 1e-15 or |b / a| > 1e10; |d| <= 1e-15 gives the
 * quadratic's roots then 0.
 * @param[in]  a      Coefficient of x^3.
 * @param[in]  b      Coefficient of x^2.
 * @param[in]  c      Coefficient of x.
 * @param[in]  d      Constant term.
 * @param[out] roots  Array of 3: the roots at indices 0 .. count-1; entries beyond the count are
 *                    left as they were.
 * @return The number of roots: 1 for a positive discriminant, 2 for an exactly zero one (the
 * double root once, first), else 3 with the largest first.
 */
QZ_API int32_t QZ_CubicSolve(double a, double b, double c, double d, double *roots);
/**
 * @brief Smallest strictly positive real root of the cubic, as QZ_CubicSolve finds them.
 * @param[in]  a    Coefficient of x^3.
 * @param[in]  b    Coefficient of x^2.
 * @param[in]  c    Coefficient of x.
 * @param[in]  d    Constant term.
 * @param[out] out  The root; unwritten when there is none.
 * @retval 1 a positive root was found.
 * @retval 0 none; *out unwritten.
 */
QZ_API uint8_t QZ_CubicSolve_Min_Pos(double a, double b, double c, double d, double *out);
/**
 * @brief Largest strictly negative real root of the cubic, as QZ_CubicSolve finds them.
 * @param[in]  a    Coefficient of x^3.
 * @param[in]  b    Coefficient of x^2.
 * @param[in]  c    Coefficient of x.
 * @param[in]  d    Constant term.
 * @param[out] out  The root; unwritten when there is none.
 * @retval 1 a negative root was found.
 * @retval 0 none; *out unwritten.
 */
QZ_API uint8_t QZ_CubicSolve_Max_Nag(double a, double b, double c, double d, double *out);
/**
 * @brief Complex roots of the quadratic a x^2 + b x + c.
 * @param[in]  a   Coefficient of x^2; |a| <= 1e-15 solves b x + c.
 * @param[in]  b   Coefficient of x.
 * @param[in]  c   Constant term.
 * @param[out] re  Array of 2: real parts of the roots 0 .. count-1.
 * @param[out] im  Array of 2: imaginary parts of the roots 0 .. count-1.
 * @par Aliasing
 * re and im must be distinct arrays.
 * @return The number of roots: for |a| <= 1e-15, 1 (or 0 when |b| <= 1e-15); otherwise 2: two
 * real ones (the larger first for a > 0), or for a discriminant D <= 0 the real part -b/2a twice
 * with imaginary parts +-sqrt(-D)/2a in that order (a zero discriminant thus gives the double
 * root twice).
 */
QZ_API int32_t QZ_Solve2OrderEq(double a, double b, double c, double *re, double *im);
/**
 * @brief Complex roots of the cubic a x^3 + b x^2 + c x + d.
 *
 * a == 0 exactly solves the quadratic; d == 0 exactly gives the quadratic's roots then 0. A tiny
 * nonzero a is divided through.
 * @param[in]  a   Coefficient of x^3.
 * @param[in]  b   Coefficient of x^2.
 * @param[in]  c   Coefficient of x.
 * @param[in]  d   Constant term.
 * @param[out] re  Array of 3: real parts of the roots 0 .. count-1.
 * @param[out] im  Array of 3: imaginary parts of the roots 0 .. count-1.
 * @par Aliasing
 * re and im must be distinct arrays.
 * @return The number of roots; 3 unless a or d is exactly 0: one real root then a conjugate
 * pair, or three real roots (a double root listed twice).
 */
QZ_API int32_t QZ_Solve3OrderEq(double a, double b, double c, double d, double *re, double *im);
/**
 * @brief Complex roots of the quartic a x^4 + b x^3 + c x^2 + d x + e, by Ferrari.
 *
 * a == 0 exactly solves the cubic; e == 0 exactly gives the cubic's roots then 0.
 * @param[in]  a   Coefficient of x^4.
 * @param[in]  b   Coefficient of x^3.
 * @param[in]  c   Coefficient of x^2.
 * @param[in]  d   Coefficient of x.
 * @param[in]  e   Constant term.
 * @param[out] re  Array of 4: real parts of the roots 0 .. count-1.
 * @param[out] im  Array of 4: imaginary parts of the roots 0 .. count-1.
 * @par Aliasing
 * re and im must be distinct arrays.
 * @return The number of roots: 4, or 0 with nothing written when the resolvent's constant
 * 4ce - d^2 - b^2 e (monic form) is exactly 0.
 */
QZ_API int32_t QZ_Solve4OrderEq(double a, double b, double c, double d, double e, double *re,
                                double *im);
/**
 * @brief Real roots of the quartic a x^4 + b x^3 + c x^2 + d x + e.
 *
 * The roots of QZ_Solve4OrderEq with |im| <= 1e-16 or |re| / |im| > 10000, imaginary part
 * dropped.
 * @param[in]  a      Coefficient of x^4.
 * @param[in]  b      Coefficient of x^3.
 * @param[in]  c      Coefficient of x^2.
 * @param[in]  d      Coefficient of x.
 * @param[in]  e      Constant term.
 * @param[out] roots  Array of 4: the real roots at indices 0 .. count-1, in the order of
 *                    QZ_Solve4OrderEq.
 * @return Their count.
 */
QZ_API int32_t QZ_Solve4OrderEqR(double a, double b, double c, double d, double e, double *roots);
/**
 * @brief Value of a polynomial, constant term first: p[0] + p[1] x + ... + p[n-1] x^(n-1).
 * @param[in] p  Array of n coefficients, constant term first.
 * @param[in] x  Argument.
 * @param[in] n  Number of coefficients.
 * @return The value; 0.0 for n <= 0.
 */
QZ_API double QZ_SolvePolynomialResult(const double *p, double x, int32_t n);

/* ---- Plane geometry and target helpers -------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Exterior angle between sides a and b of a triangle with third side c, in degrees.
 * @param[in] a  Length of the first side.
 * @param[in] b  Length of the second side.
 * @param[in] c  Length of the side opposite the angle.
 * @return 180 minus the angle (degrees) between a and b: 0 when straight (c = a + b), 180 when
 * folded (c = 0); impossible sides clamp to these ends. 0.0 when |a| or |b| <= 1e-16.
 */
QZ_API double QZ_CalAngleCDEG(double a, double b, double c);
/**
 * @brief Foot of the perpendicular from a point to a line through two points.
 * @param[in]  A  Array of 3: a point on the line.
 * @param[in]  B  Array of 3: a second point on the line; A == B gives a non-finite foot.
 * @param[in]  P  Array of 3: the point.
 * @param[out] F  Array of 3: the foot.
 * @par Aliasing
 * F may be any input.
 * @return 1.
 */
QZ_API int32_t QZ_PointToLine(const double *A, const double *B, const double *P, double *F);
/**
 * @brief Shortest angular distance between two angles in degrees.
 *
 * Also brings the second angle within 180 degrees of the first. Bounded time for any difference.
 * @param[in]     a  Reference angle (degrees).
 * @param[in,out] b  Angle (degrees); receives the copy of its angle, *b plus whole turns, that
 *                   lies within 180 of a (a difference of 180 stores a - 180).
 * @return The distance (degrees, in [0, 180]). A NaN argument gives NaN here and in *b; so does
 * an infinite difference, or one beyond 2^62 degrees (where a turn is below the spacing of
 * doubles).
 */
QZ_API double QZ_MinDif_Circle(double a, double *b);
/**
 * @brief Moves a value one fixed step towards a target.
 * @param[in,out] value   Moved down by step above target + step/2, up by step below
 *                        target - step/2, else onto target exactly.
 * @param[in]     target  Target value.
 * @param[in]     step    Step size.
 */
QZ_API void ValueToTarget(double *value, double target, double step);

#ifdef __cplusplus
}
#endif

#endif /* QZ_BASE_MATH_H */
