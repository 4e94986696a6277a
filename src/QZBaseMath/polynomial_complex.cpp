// Complex roots of quadratics, cubics and quartics.
//
// Every root comes back as a real part and an imaginary part in two parallel arrays, so that a
// conjugate pair is kept rather than dropped. The quadratic tests its leading coefficient with
// the loose zero band (1e-15) like the real-root solvers; the cubic and the quartic drop a degree
// only for an exactly zero leading coefficient and split off the root 0 only for an exactly zero
// constant term: a merely tiny leading coefficient is divided through.
//
// Quadratic: two roots always once the degree is two, a zero discriminant giving the double
// root twice.
//
// Cubic: Cardano's quantities Q, R and disc = Q^3 + R^2 of the monic cubic, as in the real-root
// solver. disc > 0 gives one real root and a conjugate pair; disc = 0 lists the double root
// twice; otherwise (three real roots, or a NaN discriminant) the roots are the cosines of the
// angle sums (theta + 2 pi k) / 3.
//
// Quartic (Ferrari): the monic quartic x^4 + b x^3 + c x^2 + d x + e is split into two
// quadratics through one real root y of the resolvent cubic y^3 - c y^2 + (bd - 4e) y + K. With
// W = b^2/4 - c + y and its square root rho (imaginary when W < 0), the roots are
//   -b/4 + rho/2 +- f/2   and   -b/4 - rho/2 +- g/2,
// where f and g are square roots of the (possibly complex) quantities F and G. A resolvent
// constant K of exactly zero is reported as no roots at all.
#include "QZBaseMath.h"

#include "QZBaseMath/polynomial_inline.h"

namespace qz::detail {

namespace {

// Angle offsets of the second and third roots of the trigonometric case (2 pi and 4 pi).
constexpr double kTurn = 6.283185307179586;
constexpr double kTwoTurns = 12.566370614359172;

int32_t Quadratic(double a, double b, double c, double *re, double *im) {
    if (IsZeroL(a)) {
        if (IsZeroL(b)) return 0;
        re[0] = -c / b;
        im[0] = 0.0;
        return 1;
    }
    const double D = b * b - 4.0 * a * c;
    const double a2 = a + a;
    if (D > 0.0) {
        im[0] = 0.0;
        im[1] = 0.0;
        const double s = Sqrt(D);
        re[0] = (s - b) / a2;
        re[1] = (-b - s) / a2;
        return 2;
    }
    const double s = Sqrt(-D);
    im[0] = s / a2;
    im[1] = -s / a2;
    re[0] = -b / a2;
    re[1] = -b / a2;
    return 2;
}

int32_t Cubic(double a, double b, double c, double d, double *re, double *im) {
    if (a == 0.0) return Quadratic(b, c, d, re, im);
    if (d == 0.0) {
        const int32_t n = Quadratic(a, b, c, re, im);
        re[n] = 0.0;
        im[n] = 0.0;
        return n + 1;
    }
    const double A = b / a;
    const double B = c / a;
    const Cardano k = CardanoOf(A, B, d / a);
    im[0] = 0.0;
    const double shift = A / 3.0;
    if (k.disc > 0.0) {
        const double s = Sqrt(k.disc);
        const double S = SignedCbrt(k.R + s);
        const double T = SignedCbrt(k.R - s);
        re[0] = (S - shift) + T;
        re[1] = -((S + T) * 0.5 + shift);
        re[2] = re[1];
        im[1] = Sqrt(3.0) * (S - T) * 0.5;
        im[2] = -im[1];
        return 3;
    }
    im[1] = 0.0;
    im[2] = 0.0;
    if (k.disc == 0.0) {
        const double u = SignedCbrt(k.R);
        re[0] = 2.0 * u - shift;
        re[1] = -(u + shift);
        re[2] = re[1];
        return 3;
    }
    const double theta = CardanoAngle(k);
    const double m = 2.0 * Sqrt(-k.Q);
    re[0] = CosArc((theta + 0.0) / 3.0) * m - shift;
    re[1] = CosArc((theta + kTurn) / 3.0) * m - shift;
    re[2] = CosArc((theta + kTwoTurns) / 3.0) * m - shift;
    return 3;
}

// A complex number as its two parts; the quartic's intermediate quantities may be either.
struct Cplx {
    double re;
    double im;
};

// Square root of a quantity that is real (im ignored) or the complex M + iY.
Cplx SqrtReal(double F) {
    if (F >= 0.0) return {Sqrt(F), 0.0};
    return {0.0, Sqrt(-F)};
}

Cplx SqrtComplex(double M, double Y) {
    const double r = Sqrt(Sqrt(M * M + Y * Y));
    const double alpha = ATan2(Y, M) * 0.5;
    return {r * CosArc(alpha), r * SinArc(alpha)};
}

// One real root of the resolvent y^3 + A y^2 + P y + K; in the three-root case the largest.
double ResolventRoot(double A, double P, double K) {
    const Cardano k = CardanoOf(A, P, K);
    const double shift = A / 3.0;
    if (k.disc > 0.0) {
        const double s = Sqrt(k.disc);
        const double S = SignedCbrt(k.R + s);
        const double T = SignedCbrt(k.R - s);
        return T + (S - shift);
    }
    if (k.disc == 0.0) return 2.0 * SignedCbrt(k.R) - shift;
    const double theta = CardanoAngle(k);
    return 2.0 * Sqrt(-k.Q) * CosArc(theta / 3.0) - shift;
}

int32_t Quartic(double a, double b, double c, double d, double e, double *re, double *im) {
    if (a == 0.0) return Cubic(b, c, d, e, re, im);
    if (e == 0.0) {
        const int32_t n = Cubic(a, b, c, d, re, im);
        re[n] = 0.0;
        im[n] = 0.0;
        return n + 1;
    }
    if (a != 1.0) {
        b = b / a;
        c = c / a;
        d = d / a;
        e = e / a;
    }
    const double K = 4.0 * c * e - (d * d + b * b * e);
    if (K == 0.0) return 0;
    const double y = ResolventRoot(-c, b * d - 4.0 * e, K);

    const double h = b * 0.25;
    const double W = h * b - c + y;
    const double M = 3.0 * b * h - (W + 2.0 * c);
    const double N = b * c - (b * b * b + 8.0 * d) * 0.25;

    // rho = sqrt(W); F and G are the quantities whose square roots split each pair.
    double rhoR = 0.0;
    double rhoI = 0.0;
    Cplx f{};
    Cplx g{};
    if (W > 0.0) {
        rhoR = Sqrt(W);
        const double V = N / rhoR;
        f = SqrtReal(M + V);
        g = SqrtReal(M - V);
    } else if (W == 0.0) {
        const double H = y * y - 4.0 * e;
        if (H >= 0.0) {
            const double t = 2.0 * Sqrt(H);
            f = SqrtReal(M + t);
            g = SqrtReal(M - t);
        } else {
            f = SqrtComplex(M, 2.0 * Sqrt(-H));
            g = {f.re, -f.im};
        }
    } else {
        rhoI = Sqrt(-W);
        const double Y = -N / rhoI;
        if (Y == 0.0) {
            f = SqrtReal(M);
            g = SqrtReal(M);
        } else {
            f = SqrtComplex(M, Y);
            g = {f.re, -f.im};
        }
    }

    re[0] = (rhoR + f.re) * 0.5 - h;
    im[0] = (rhoI + f.im) * 0.5;
    re[1] = rhoR * 0.5 - (f.re * 0.5 + h);
    im[1] = (rhoI - f.im) * 0.5;
    re[2] = g.re * 0.5 - (rhoR * 0.5 + h);
    im[2] = (g.im - rhoI) * 0.5;
    re[3] = -((g.re + rhoR) * 0.5 + h);
    im[3] = -(rhoI + g.im) * 0.5;
    return 4;
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API int32_t QZ_Solve2OrderEq(double a, double b, double c, double *re, double *im) {
    return Quadratic(a, b, c, re, im);
}

QZ_API int32_t QZ_Solve3OrderEq(double a, double b, double c, double d, double *re, double *im) {
    return Cubic(a, b, c, d, re, im);
}

QZ_API int32_t QZ_Solve4OrderEq(double a, double b, double c, double d, double e, double *re,
                                double *im) {
    return Quartic(a, b, c, d, e, re, im);
}

// A root counts as real when its imaginary part is within the zero band, or less than 1/10000
// of its real part in size; its imaginary part is then dropped. Order is kept, nothing merged.
QZ_API int32_t QZ_Solve4OrderEqR(double a, double b, double c, double d, double e, double *out) {
    double re[4];
    double im[4];
    const int32_t n = Quartic(a, b, c, d, e, re, im);
    if (n <= 0) return 0;
    int32_t k = 0;
    for (int32_t i = 0; i < n; ++i) {
        if (IsZero(im[i]) || Fabs(re[i]) / Fabs(im[i]) > 10000.0) {
            out[k] = re[i];
            ++k;
        }
    }
    return k;
}

}  // extern "C"
