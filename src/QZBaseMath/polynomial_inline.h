// Pieces shared by the real-root and complex-root polynomial solvers.
//
// Both families reduce a cubic x^3 + A x^2 + B x + C to the depressed form through the same two
// quantities Q and R (Cardano), and take cube roots of values of either sign. Keeping these in
// one place makes every solver form them the same way, to the bit.
#ifndef QZ_BASEMATH_POLYNOMIAL_INLINE_H
#define QZ_BASEMATH_POLYNOMIAL_INLINE_H

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// Cube root of either sign: the scalar cube root only takes non-negative arguments.
inline double SignedCbrt(double v) { return v < 0.0 ? -Root3(-v) : Root3(v); }

// Cardano's quantities of the monic cubic x^3 + A x^2 + B x + C:
//   Q = (3B - A^2) / 9,  R = ((9B - 2A^2) A - 27C) / 54,  disc = Q^3 + R^2.
// disc > 0: one real root; disc = 0: a multiple root; disc < 0: three distinct real roots.
struct Cardano {
    double Q;
    double R;
    double disc;
};

inline Cardano CardanoOf(double A, double B, double C) {
    Cardano k{};
    k.Q = (3.0 * B - A * A) / 9.0;
    k.R = ((9.0 * B - 2.0 * (A * A)) * A - 27.0 * C) / 54.0;
    k.disc = k.Q * k.Q * k.Q + k.R * k.R;
    return k;
}

// The arc cosine of the trigonometric (three real roots) case, acos(R / sqrt(-Q^3)).
inline double CardanoAngle(const Cardano &k) {
    const double nq = -k.Q;
    return ACos(k.R / Sqrt(nq * nq * nq));
}

}  // namespace qz::detail

#endif
