// Polynomial roots: curated fixtures through every branch, properties over polynomials built
// from chosen roots (checked by value and by substitution), and a cross-check against GSL.
#include <gsl/gsl_errno.h>
#include <gsl/gsl_poly.h>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <vector>

#include "QZBaseMath.h"
#include "test_util.h"

namespace {

using qztest::SameBits;
using C = std::complex<double>;
constexpr double kFill = -777.0;  // marks entries a solver must leave alone

double Rel(double x, double ref) { return std::fabs(x - ref) / std::max(1.0, std::fabs(ref)); }

// |p(x)| relative to the size of its terms, so that the tolerance does not depend on scale.
double Residual(const std::vector<double> &asc, double x) {
    double scale = 0.0, pw = 1.0;
    for (double c : asc) {
        scale += std::fabs(c * pw);
        pw *= x;
    }
    return std::fabs(QZ_SolvePolynomialResult(asc.data(), x, static_cast<int32_t>(asc.size()))) /
           scale;
}

C EvalC(const std::vector<double> &desc, C x) {
    C v = 0.0;
    for (double c : desc) v = v * x + c;
    return v;
}

// Expands lead * prod (x - r_k) into coefficients, highest degree first.
std::vector<double> FromRoots(double lead, const std::vector<C> &roots) {
    std::vector<C> p{lead};
    for (C r : roots) {
        std::vector<C> q(p.size() + 1, 0.0);
        for (size_t i = 0; i < p.size(); ++i) {
            q[i] += p[i];
            q[i + 1] -= p[i] * r;
        }
        p = q;
    }
    std::vector<double> out;
    for (C c : p) out.push_back(c.real());
    return out;
}

// Each expected root matched to a distinct found root; returns the worst distance.
double Match(std::vector<C> want, std::vector<C> got) {
    double worst = 0.0;
    for (C w : want) {
        size_t best = 0;
        for (size_t i = 1; i < got.size(); ++i)
            if (std::abs(got[i] - w) < std::abs(got[best] - w)) best = i;
        worst = std::max(worst, std::abs(got[best] - w) / std::max(1.0, std::abs(w)));
        got.erase(got.begin() + static_cast<long>(best));
    }
    return worst;
}

// ---- Real-root solvers ------------------------------------------------------------------

TEST(SqureSolve, FixturesAscendingAndDegenerate) {
    double r[2] = {kFill, kFill};
    ASSERT_EQ(QZ_SqureSolve(1, -3, 2, r), 2);
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[1], 2.0);
    ASSERT_EQ(QZ_SqureSolve(-1, 3, -2, r), 2);  // negative leading coefficient: still ascending
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[1], 2.0);

    r[0] = r[1] = kFill;
    ASSERT_EQ(QZ_SqureSolve(1, 2, 1, r), 1);
    EXPECT_EQ(r[0], -1.0);
    EXPECT_EQ(r[1], kFill);
    r[0] = kFill;
    EXPECT_EQ(QZ_SqureSolve(1, 0, 1, r), 0);
    EXPECT_EQ(r[0], kFill);
    ASSERT_EQ(QZ_SqureSolve(0, 2, -4, r), 1);
    EXPECT_EQ(r[0], 2.0);
    r[0] = kFill;
    EXPECT_EQ(QZ_SqureSolve(0, 0, 5, r), 0);
    EXPECT_EQ(r[0], kFill);
}

// The loose band includes both of its ends: 1e-15 is zero, the next double above is not.
TEST(SqureSolve, LooseZeroBandOnLeadingCoefficientAndDiscriminant) {
    double r[2] = {kFill, kFill};
    ASSERT_EQ(QZ_SqureSolve(1e-15, 2, -4, r), 1);
    EXPECT_EQ(r[0], 2.0);
    EXPECT_EQ(QZ_SqureSolve(-1e-15, 1e-15, 1, r), 0);
    EXPECT_EQ(QZ_SqureSolve(qztest::NextUp(1e-15), 2, -4, r), 2);

    // x^2 + 2x + (1 - t): discriminant 4t. Within the band the double root comes once.
    r[0] = r[1] = kFill;
    ASSERT_EQ(QZ_SqureSolve(1, 2, 1 - 2.5e-16, r), 1);
    EXPECT_EQ(r[0], -1.0);
    EXPECT_EQ(r[1], kFill);
    // Just below the band: no root rather than a spurious pair.
    EXPECT_EQ(QZ_SqureSolve(1, 2, 1 + 4.0e-16, r), 0);
}

TEST(CubicSolve, FixturesThroughEachBranch) {
    double r[3] = {kFill, kFill, kFill};
    // Three real roots: the trigonometric form, largest first.
    ASSERT_EQ(QZ_CubicSolve(1, -6, 11, -6, r), 3);
    EXPECT_NEAR(r[0], 3, 1e-14);
    EXPECT_NEAR(r[1], 1, 1e-14);
    EXPECT_NEAR(r[2], 2, 1e-14);
    // One real root.
    r[0] = r[1] = r[2] = kFill;
    ASSERT_EQ(QZ_CubicSolve(1, 0, 0, -8, r), 1);
    EXPECT_NEAR(r[0], 2, 1e-15);
    EXPECT_EQ(r[1], kFill);
    // Zero constant term: the quadratic's roots, then 0.
    ASSERT_EQ(QZ_CubicSolve(1, -3, 2, 0, r), 3);
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[1], 2.0);
    EXPECT_EQ(r[2], 0.0);
    // Negligible cubic term (b / a beyond 1e10) and a leading coefficient in the loose band.
    ASSERT_EQ(QZ_CubicSolve(1e-12, 1, -3, 2, r), 2);
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[1], 2.0);
    ASSERT_EQ(QZ_CubicSolve(1e-15, 1, -3, 2, r), 2);
    EXPECT_EQ(r[0], 1.0);
}

// (x - 1)^2 (x + 2) and (x - 2)^3 have an exactly zero discriminant: the multiple root comes
// once, after the simple one.
TEST(CubicSolve, DoubleAndTripleRootsReportedOnce) {
    double r[3] = {kFill, kFill, kFill};
    ASSERT_EQ(QZ_CubicSolve(1, 0, -3, 2, r), 2);
    EXPECT_EQ(r[0], -2.0);
    EXPECT_EQ(r[1], 1.0);
    EXPECT_EQ(r[2], kFill);
    ASSERT_EQ(QZ_CubicSolve(1, -6, 12, -8, r), 2);
    EXPECT_EQ(r[0], 2.0);
    EXPECT_EQ(r[1], 2.0);
}

TEST(CubicSelectors, SmallestPositiveAndLargestNegative) {
    double out = kFill;
    ASSERT_EQ(QZ_CubicSolve_Min_Pos(1, -6, 11, -6, &out), 1);
    EXPECT_NEAR(out, 1.0, 1e-14);
    out = kFill;
    EXPECT_EQ(QZ_CubicSolve_Max_Nag(1, -6, 11, -6, &out), 0);
    EXPECT_EQ(out, kFill);
    ASSERT_EQ(QZ_CubicSolve_Max_Nag(1, 0, -1, 0, &out), 1);  // roots -1, 1, 0: zero is neither
    EXPECT_EQ(out, -1.0);
    ASSERT_EQ(QZ_CubicSolve_Min_Pos(1, 0, -1, 0, &out), 1);
    EXPECT_EQ(out, 1.0);
    out = kFill;
    EXPECT_EQ(QZ_CubicSolve_Min_Pos(1, 0, 0, 0, &out), 0);  // only the root 0
    EXPECT_EQ(QZ_CubicSolve_Max_Nag(0, 0, 0, 1, &out), 0);  // no root at all
    EXPECT_EQ(out, kFill);
    // Roots -3, -1, -2 (largest first): the negative nearest zero is found wherever it sits.
    ASSERT_EQ(QZ_CubicSolve_Max_Nag(1, 6, 11, 6, &out), 1);
    EXPECT_NEAR(out, -1.0, 1e-14);
}

// ---- Complex-root solvers ---------------------------------------------------------------

TEST(Solve2OrderEq, PairsDoubleRootAndLinear) {
    double re[2] = {kFill, kFill}, im[2] = {kFill, kFill};
    ASSERT_EQ(QZ_Solve2OrderEq(1, 0, 1, re, im), 2);
    EXPECT_EQ(re[0], 0.0);
    EXPECT_EQ(re[1], 0.0);
    EXPECT_EQ(im[0], 1.0);
    EXPECT_EQ(im[1], -1.0);
    ASSERT_EQ(QZ_Solve2OrderEq(1, -2, 1, re, im), 2);  // the double root twice
    EXPECT_EQ(re[0], 1.0);
    EXPECT_EQ(re[1], 1.0);
    EXPECT_EQ(im[0], 0.0);
    EXPECT_EQ(im[1], 0.0);
    ASSERT_EQ(QZ_Solve2OrderEq(1, -3, 2, re, im), 2);  // larger real root first for a > 0
    EXPECT_EQ(re[0], 2.0);
    EXPECT_EQ(re[1], 1.0);
    re[1] = im[1] = kFill;
    ASSERT_EQ(QZ_Solve2OrderEq(1e-15, 2, -4, re, im), 1);  // loose band on the leading term
    EXPECT_EQ(re[0], 2.0);
    EXPECT_EQ(im[0], 0.0);
    EXPECT_EQ(re[1], kFill);
    EXPECT_EQ(im[1], kFill);
    EXPECT_EQ(QZ_Solve2OrderEq(0, 1e-15, 1, re, im), 0);
}

TEST(Solve3OrderEq, FixturesThroughEachBranch) {
    double re[3], im[3];
    ASSERT_EQ(QZ_Solve3OrderEq(1, 0, 0, -1, re, im), 3);  // one real root and a pair
    EXPECT_NEAR(re[0], 1, 1e-15);
    EXPECT_NEAR(re[1], -0.5, 1e-15);
    EXPECT_NEAR(im[1], 0.8660254037844386, 1e-15);
    EXPECT_EQ(re[2], re[1]);
    EXPECT_TRUE(SameBits(im[2], -im[1]));
    EXPECT_EQ(im[0], 0.0);

    ASSERT_EQ(QZ_Solve3OrderEq(1, -6, 11, -6, re, im), 3);  // three real roots
    EXPECT_NEAR(re[0], 3, 1e-14);
    EXPECT_NEAR(re[1], 1, 1e-14);
    EXPECT_NEAR(re[2], 2, 1e-14);
    for (double v : im) EXPECT_EQ(v, 0.0);

    ASSERT_EQ(QZ_Solve3OrderEq(1, 0, -3, 2, re, im), 3);  // zero discriminant: double root twice
    EXPECT_EQ(re[0], -2.0);
    EXPECT_EQ(re[1], 1.0);
    EXPECT_EQ(re[2], 1.0);

    ASSERT_EQ(QZ_Solve3OrderEq(0, 1, 0, 1, re, im), 2);  // exact zero drops to x^2 + 1
    EXPECT_EQ(im[0], 1.0);
    ASSERT_EQ(QZ_Solve3OrderEq(1, -3, 2, 0, re, im), 3);  // zero constant: quadratic's roots, 0
    EXPECT_EQ(re[0], 2.0);
    EXPECT_EQ(re[1], 1.0);
    EXPECT_EQ(re[2], 0.0);
    EXPECT_EQ(im[2], 0.0);
}

// Unlike the real-root cubic, only an exact zero drops the degree: a tiny leading coefficient
// is divided through, giving a huge third root beside the quadratic's two.
TEST(Solve3OrderEq, TinyLeadingCoefficientIsKept) {
    double re[3], im[3], r[3];
    ASSERT_EQ(QZ_Solve3OrderEq(1e-12, 1, -3, 2, re, im), 3);
    EXPECT_EQ(QZ_CubicSolve(1e-12, 1, -3, 2, r), 2);
    const double big = *std::min_element(re, re + 3);
    EXPECT_NEAR(big, -1e12, 1e3);
}

// The two trigonometric forms (angle times one third plus offsets, and angle sum over three)
// agree to rounding.
TEST(Solve3OrderEq, AgreesWithRealCubicAndRandomComplexPairs) {
    auto rng = qztest::Rng();
    double worstRes = 0, worstVal = 0, worstForms = 0;
    for (int it = 0; it < 20000; ++it) {
        const double lead = qztest::Uniform(rng, 0.5, 4);
        const double x = qztest::Uniform(rng, -10, 10);
        std::vector<C> want;
        if (it % 2) {
            const C z(qztest::Uniform(rng, -10, 10), qztest::Uniform(rng, 0.5, 10));
            want = {x, z, std::conj(z)};
        } else {
            want = {x, qztest::Uniform(rng, -10, 10), qztest::Uniform(rng, -10, 10)};
            if (std::fabs(want[1].real() - want[2].real()) < 0.05 ||
                std::fabs(want[1].real() - x) < 0.05 || std::fabs(want[2].real() - x) < 0.05)
                continue;
        }
        const auto p = FromRoots(lead, want);
        double re[3], im[3], r[3];
        ASSERT_EQ(QZ_Solve3OrderEq(p[0], p[1], p[2], p[3], re, im), 3);
        std::vector<C> got;
        for (int k = 0; k < 3; ++k) {
            got.emplace_back(re[k], im[k]);
            worstRes = std::max(worstRes, std::abs(EvalC(p, got.back())) / (lead * 1000.0));
        }
        worstVal = std::max(worstVal, Match(want, got));
        if (it % 2 == 0) {
            ASSERT_EQ(QZ_CubicSolve(p[0], p[1], p[2], p[3], r), 3);
            for (int k = 0; k < 3; ++k) worstForms = std::max(worstForms, Rel(re[k], r[k]));
        }
    }
    std::printf("complex cubic worst: roots %.3g, residual %.3g, the two angle forms %.3g\n",
                worstVal, worstRes, worstForms);
    EXPECT_LT(worstVal, 1e-7);
    EXPECT_LT(worstRes, 1e-7);
    EXPECT_LT(worstForms, 1e-12);
}

TEST(Solve4OrderEq, FixturesAndResolventZero) {
    double re[4] = {kFill, kFill, kFill, kFill}, im[4] = {kFill, kFill, kFill, kFill};
    EXPECT_EQ(QZ_Solve4OrderEq(1, 0, 0, 0, -1, re, im), 0);  // K = 0: nothing written
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(re[k], kFill);
        EXPECT_EQ(im[k], kFill);
    }
    ASSERT_EQ(QZ_Solve4OrderEq(1, -10, 35, -50, 24, re, im), 4);
    const double want[4] = {4, 3, 2, 1};
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(re[k], want[k], 1e-13);
        EXPECT_EQ(im[k], 0.0);
    }
    ASSERT_EQ(QZ_Solve4OrderEq(2, 3, -4, 5, -6, re, im), 4);
    EXPECT_NEAR(re[0], 0.1106784664, 1e-10);
    EXPECT_NEAR(im[0], 1.0440984154, 1e-10);
    EXPECT_EQ(re[1], re[0]);
    EXPECT_EQ(im[1], -im[0]);
    EXPECT_NEAR(re[2], 1, 1e-15);
    EXPECT_NEAR(re[3], -2.7213569329, 1e-10);
    EXPECT_EQ(im[2], 0.0);

    // (x^2 + 9)(x^2 + 1) and (x - 1)^4: the auxiliary root is exactly zero.
    ASSERT_EQ(QZ_Solve4OrderEq(1, 0, 10, 0, 9, re, im), 4);
    EXPECT_EQ(im[0], 1.0);
    EXPECT_EQ(im[1], -1.0);
    EXPECT_EQ(im[2], 3.0);
    EXPECT_EQ(im[3], -3.0);
    ASSERT_EQ(QZ_Solve4OrderEq(1, -4, 6, -4, 1, re, im), 4);
    for (int k = 0; k < 4; ++k) EXPECT_EQ(re[k], 1.0);

    // Exact zeros drop to the cubic or split off the root 0.
    ASSERT_EQ(QZ_Solve4OrderEq(0, 1, -6, 11, -6, re, im), 3);
    EXPECT_NEAR(re[0], 3, 1e-14);
    re[3] = kFill;
    ASSERT_EQ(QZ_Solve4OrderEq(1, -6, 11, -6, 0, re, im), 4);
    EXPECT_EQ(re[3], 0.0);
    EXPECT_EQ(im[3], 0.0);
}

TEST(Solve4OrderEqR, KeepsRealAndNearlyRealRootsInOrder) {
    double out[4] = {kFill, kFill, kFill, kFill};
    ASSERT_EQ(QZ_Solve4OrderEqR(2, 3, -4, 5, -6, out), 2);
    EXPECT_NEAR(out[0], 1, 1e-15);
    EXPECT_NEAR(out[1], -2.7213569329, 1e-10);
    EXPECT_EQ(out[2], kFill);
    EXPECT_EQ(QZ_Solve4OrderEqR(1, 0, 0, 0, -1, out), 0);
    ASSERT_EQ(QZ_Solve4OrderEqR(1, -10, 35, -50, 24, out), 4);
    EXPECT_NEAR(out[0], 4, 1e-13);
    EXPECT_NEAR(out[3], 1, 1e-13);
    // (x^2 - 2x + 1 + t^2)(x^2 - 1): a pair 1 +- ti counts as real only when t < 1/10000.
    const auto p = FromRoots(1, {C(1, 5e-5), C(1, -5e-5), 1.0, -1.0});
    EXPECT_EQ(QZ_Solve4OrderEqR(p[0], p[1], p[2], p[3], p[4], out), 4);
    const auto q = FromRoots(1, {C(1, 2e-4), C(1, -2e-4), 1.0, -1.0});
    EXPECT_EQ(QZ_Solve4OrderEqR(q[0], q[1], q[2], q[3], q[4], out), 2);
}

TEST(SolvePolynomialResult, EachLengthForm) {
    const double p5[5] = {24, -50, 35, -10, 1};
    EXPECT_EQ(QZ_SolvePolynomialResult(p5, 2, 5), 0.0);
    const double p4[4] = {1, 2, 3, 4};
    EXPECT_EQ(QZ_SolvePolynomialResult(p4, 2, 4), 49.0);
    EXPECT_EQ(QZ_SolvePolynomialResult(p4, 2, 3), 17.0);
    EXPECT_EQ(QZ_SolvePolynomialResult(p4, 2, 2), 5.0);
    EXPECT_EQ(QZ_SolvePolynomialResult(p4, 2, 1), 1.0);
    EXPECT_EQ(QZ_SolvePolynomialResult(nullptr, 2, 0), 0.0);  // nothing read for n <= 0
    EXPECT_EQ(QZ_SolvePolynomialResult(nullptr, 2, -3), 0.0);
    const double pz[2] = {-0.0, 5};  // the short linear form keeps a signed zero
    EXPECT_TRUE(SameBits(QZ_SolvePolynomialResult(pz, -0.0, 2), -0.0));
}

// ---- Cross-check against GSL ------------------------------------------------------------

// Relative disagreement with the peer over random polynomials, reported (not asserted tightly):
// well-separated roots first, then near-multiple roots where every closed form loses digits.
struct Worst {
    double rel = 0;
    std::vector<double> where;
    int countMismatch = 0;
    void Take(double r, std::vector<double> w) {
        if (r > rel) {
            rel = r;
            where = std::move(w);
        }
    }
    void Print(const char *what) const {
        std::printf("%s: worst rel %.3g at coefficients", what, rel);
        for (double c : where) std::printf(" %.17g", c);
        std::printf("; count mismatches %d\n", countMismatch);
    }
};

TEST(PeerCrossCheck, QuadraticAgainstGsl) {
    auto rng = qztest::Rng();
    Worst sep, near;
    for (int it = 0; it < 100000; ++it) {
        const bool isNear = it % 2;
        const double x0 = qztest::Uniform(rng, -100, 100);
        const double x1 = isNear ? x0 * (1 + qztest::Uniform(rng, 1e-9, 1e-6))
                                 : qztest::Uniform(rng, -100, 100);
        const auto p = FromRoots(qztest::Uniform(rng, 0.1, 10), {x0, x1});
        double r[2], g[2];
        const int n = QZ_SqureSolve(p[0], p[1], p[2], r);
        const int m = gsl_poly_solve_quadratic(p[0], p[1], p[2], &g[0], &g[1]);
        Worst &w = isNear ? near : sep;
        if (n != m) {
            ++w.countMismatch;
            continue;
        }
        for (int k = 0; k < n; ++k) {  // GSL's order is ascending, as is ours
            w.Take(Rel(r[k], g[k]), p);
            EXPECT_LT(Residual({p[2], p[1], p[0]}, r[k]), 1e-10);
        }
    }
    sep.Print("quadratic vs gsl_poly_solve_quadratic, separated roots");
    near.Print("quadratic vs gsl_poly_solve_quadratic, near-double roots");
    EXPECT_LT(sep.rel, 1e-10);
    EXPECT_EQ(sep.countMismatch, 0);
    EXPECT_LT(near.rel, 1e-6);
}

TEST(PeerCrossCheck, CubicAgainstGsl) {
    auto rng = qztest::Rng();
    Worst sep, near;
    for (int it = 0; it < 100000; ++it) {
        const bool isNear = it % 2;
        const double x0 = qztest::Uniform(rng, -10, 10);
        const double x1 = isNear ? x0 + qztest::Uniform(rng, 1e-7, 1e-4) : qztest::Uniform(rng, -10, 10);
        const double x2 = qztest::Uniform(rng, -10, 10);
        if (!isNear && (std::fabs(x0 - x1) < 0.05 || std::fabs(x0 - x2) < 0.05 ||
                        std::fabs(x1 - x2) < 0.05))
            continue;
        // Monic, as GSL takes x^3 + a x^2 + b x + c; every fourth case one root and a pair.
        const C z(x1, qztest::Uniform(rng, 0.5, 10));
        const auto p = !isNear && it % 4 == 0 ? FromRoots(1.0, {x0, z, std::conj(z)})
                                              : FromRoots(1.0, {x0, x1, x2});
        double r[3], g[3];
        const int n = QZ_CubicSolve(p[0], p[1], p[2], p[3], r);
        const int m = gsl_poly_solve_cubic(p[1], p[2], p[3], &g[0], &g[1], &g[2]);
        Worst &w = isNear ? near : sep;
        if (n != m) {
            ++w.countMismatch;
            continue;
        }
        if (n == 3) EXPECT_GE(r[0], std::max(r[1], r[2]));  // the largest comes first
        std::sort(r, r + n);
        for (int k = 0; k < n; ++k) {
            w.Take(Rel(r[k], g[k]), p);
            if (!isNear) EXPECT_LT(Residual({p[3], p[2], p[1], p[0]}, r[k]), 1e-6);
        }
    }
    sep.Print("cubic vs gsl_poly_solve_cubic, separated roots");
    near.Print("cubic vs gsl_poly_solve_cubic, near-double roots");
    EXPECT_LT(sep.rel, 1e-9);
    EXPECT_EQ(sep.countMismatch, 0);
    EXPECT_LT(near.rel, 1e-3);
}

TEST(PeerCrossCheck, QuarticAgainstGslComplexSolve) {
    auto rng = qztest::Rng();
    gsl_poly_complex_workspace *ws = gsl_poly_complex_workspace_alloc(5);
    Worst sep, near;
    for (int it = 0; it < 50000; ++it) {
        const bool isNear = it % 2;
        auto u = [&](double lo, double hi) { return qztest::Uniform(rng, lo, hi); };
        const C z(u(-5, 5), u(0.3, 5));
        std::vector<C> want;
        if (isNear) {
            const double x = u(-5, 5);
            want = {x, x + u(1e-6, 1e-3), z, std::conj(z)};
        } else {
            want = {u(-5, 5), u(-5, 5), z, std::conj(z)};
            if (std::fabs(want[0].real() - want[1].real()) < 0.3) continue;
            if (it % 4 == 0) {
                const C w(u(-5, 5), u(0.3, 5));
                want = {w, std::conj(w), z, std::conj(z)};
                if (std::abs(w - z) < 0.3) continue;
            }
        }
        const auto p = FromRoots(u(0.5, 3), want);
        double re[4], im[4];
        const int n = QZ_Solve4OrderEq(p[0], p[1], p[2], p[3], p[4], re, im);
        const double asc[5] = {p[4], p[3], p[2], p[1], p[0]};
        double zs[8];
        ASSERT_EQ(gsl_poly_complex_solve(asc, 5, ws, zs), GSL_SUCCESS);
        Worst &w = isNear ? near : sep;
        if (n != 4) {
            ++w.countMismatch;
            continue;
        }
        std::vector<C> peer, got;
        for (int k = 0; k < 4; ++k) {
            peer.emplace_back(zs[2 * k], zs[2 * k + 1]);
            got.emplace_back(re[k], im[k]);
        }
        w.Take(Match(peer, got), p);
    }
    gsl_poly_complex_workspace_free(ws);
    sep.Print("quartic vs gsl_poly_complex_solve, separated roots");
    near.Print("quartic vs gsl_poly_complex_solve, near-double roots");
    EXPECT_LT(sep.rel, 1e-4);
    EXPECT_EQ(sep.countMismatch, 0);
    EXPECT_LT(near.rel, 1e-1);
}

}  // namespace
