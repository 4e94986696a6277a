// Real roots of quadratics and cubics, and the evaluation of a polynomial.
//
// These solvers report real roots only, in one array, and treat a coefficient as absent when it
// lies within the loose zero band (1e-15): a vanishing leading coefficient drops the degree, a
// vanishing constant term of a cubic splits off the root 0.
//
// Quadratic: the discriminant b^2 - 4ac decides between no root, one double root (reported
// once, when the discriminant is within the loose band) and two roots, which are always listed
// in ascending order.
//
// Cubic: Cardano's method on the monic cubic x^3 + A x^2 + B x + C. With disc = Q^3 + R^2:
//   disc > 0   one real root, T + S - A/3 with S, T the cube roots of R +- sqrt(disc);
//   disc = 0   a double root (reported once) and a simple one;
//   otherwise  three real roots 2 sqrt(-Q) cos((theta + 2 pi k) / 3) - A/3, theta = acos(R /
//              sqrt(-Q^3)), the first of them the largest. A NaN discriminant lands here too.
// A leading coefficient so small that b/a exceeds 1e10 in size makes the cubic term negligible
// for any root of moderate size, and the quadratic in b, c, d is solved instead.
#include "QZBaseMath.h"

#include "QZBaseMath/polynomial_inline.h"

namespace qz::detail {

namespace {

// The trigonometric case rotates the first angle by these doubles, each one unit in the last
// place above the double nearest 2 pi / 3 and 4 pi / 3.
constexpr double kThirdTurn = 2.0943951023931957;
constexpr double kTwoThirdsTurn = 4.188790204786391;
constexpr double kNegligibleCubic = 1e10;

int32_t SquareRoots(double a, double b, double c, double *roots) {
    if (IsZeroL(a)) {
        if (IsZeroL(b)) return 0;
        roots[0] = -c / b;
        return 1;
    }
    const double D = b * b - (a * 4.0) * c;
    if (IsZeroL(D)) {
        roots[0] = -b / (a + a);
        return 1;
    }
    if (D < 0.0) return 0;
    const double s = Sqrt(D);
    const double k = 0.5 / a;
    if (a > 0.0) {
        roots[0] = (-b - s) * k;
        roots[1] = (s - b) * k;
    } else {
        roots[0] = (s - b) * k;
        roots[1] = (-b - s) * k;
    }
    return 2;
}

int32_t CubicRoots(double a, double b, double c, double d, double *roots) {
    if (IsZeroL(a)) return SquareRoots(b, c, d, roots);
    const double A = b / a;
    if (A > kNegligibleCubic || A < -kNegligibleCubic) return SquareRoots(b, c, d, roots);
    if (IsZeroL(d)) {
        const int32_t n = SquareRoots(a, b, c, roots);
        roots[n] = 0.0;
        return n + 1;
    }
    const double B = c / a;
    const double C = d / a;
    const Cardano k = CardanoOf(A, B, C);
    const double shift = A / 3.0;
    if (k.disc > 0.0) {
        const double s = Sqrt(k.disc);
        const double S = SignedCbrt(k.R + s);
        const double T = SignedCbrt(k.R - s);
        roots[0] = T + (S - shift);
        return 1;
    }
    if (k.disc == 0.0) {
        const double u = SignedCbrt(k.R);
        roots[0] = 2.0 * u - shift;
        roots[1] = -(u + shift);
        return 2;
    }
    const double theta = CardanoAngle(k);
    const double m = 2.0 * Sqrt(-k.Q);
    const double phi = theta * kOneThird;
    roots[0] = CosArc(phi) * m - shift;
    roots[1] = CosArc(phi + kThirdTurn) * m - shift;
    roots[2] = CosArc(phi + kTwoThirdsTurn) * m - shift;
    return 3;
}

// The real root of the cubic nearest zero on one side of it: with positive, the smallest root
// above 0, else the largest root below 0. Roots are taken in CubicRoots' order; the first on the
// side is kept unless a later one is strictly nearer zero. Returns 0 (out unwritten) when no
// root lies on that side.
uint8_t RootNearestZero(double a, double b, double c, double d, bool positive, double *out) {
    double r[3];
    const int32_t n = CubicRoots(a, b, c, d, r);
    bool found = false;
    double best = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        const bool onSide = positive ? r[i] > 0.0 : r[i] < 0.0;
        const bool nearer = positive ? r[i] < best : r[i] > best;
        if (onSide && (!found || nearer)) {
            best = r[i];
            found = true;
        }
    }
    if (!found) return 0;
    *out = best;
    return 1;
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API int32_t QZ_SqureSolve(double a, double b, double c, double *roots) {
    return SquareRoots(a, b, c, roots);
}

QZ_API int32_t QZ_CubicSolve(double a, double b, double c, double d, double *roots) {
    return CubicRoots(a, b, c, d, roots);
}

QZ_API uint8_t QZ_CubicSolve_Min_Pos(double a, double b, double c, double d, double *out) {
    return RootNearestZero(a, b, c, d, true, out);
}

QZ_API uint8_t QZ_CubicSolve_Max_Nag(double a, double b, double c, double d, double *out) {
    return RootNearestZero(a, b, c, d, false, out);
}

// Degrees 3 and 1 (n = 4 and n = 2) take their own short forms; every other length sums the
// terms from the constant upwards with a running power of x.
QZ_API double QZ_SolvePolynomialResult(const double *p, double x, int32_t n) {
    if (n == 4) return ((p[3] * x + p[2]) * x + p[1]) * x + p[0];
    if (n == 2) return x * p[1] + p[0];
    if (n <= 0) return 0.0;
    double sum = 0.0;
    double power = 1.0;
    for (int32_t i = 0; i < n; ++i) {
        sum = sum + p[i] * power;
        power = power * x;
    }
    return sum;
}

}  // extern "C"
