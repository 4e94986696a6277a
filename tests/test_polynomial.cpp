// Polynomial roots: curated fixtures through every branch, properties over polynomials built
// from chosen roots, and cross-checks against GSL.
#include <gsl/gsl_errno.h>
#include <gsl/gsl_poly.h>

#include <algorithm>
#include <complex>
#include <vector>

#include "QZBaseMath.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;
using C = std::complex<double>;
constexpr double kFill = -777.0;  // marks entries a solver must leave alone
const double kAny = NAN;          // an expected root whose value a row does not pin down

double Rel(double x, double ref) { return std::fabs(x - ref) / std::max(1.0, std::fabs(ref)); }

// Expands lead * prod (x - r_k) into real coefficients, highest degree first.
std::vector<double> FromRoots(double lead, const std::vector<C> &roots) {
    std::vector<C> p{lead};
    for (C r : roots) {
        std::vector<C> q(p.size() + 1, 0.0);
        for (size_t i = 0; i < p.size(); ++i) q[i] += p[i], q[i + 1] -= p[i] * r;
        p = q;
    }
    std::vector<double> out;
    for (C c : p) out.push_back(c.real());
    return out;
}

// Each expected root matched to a distinct found root; returns the worst relative distance.
double Match(const std::vector<C> &want, std::vector<C> got) {
    double worst = 0.0;
    for (C w : want) {
        auto best = std::min_element(got.begin(), got.end(),
                                     [&](C x, C y) { return std::abs(x - w) < std::abs(y - w); });
        worst = std::max(worst, std::abs(*best - w) / std::max(1.0, std::abs(w)));
        got.erase(best);
    }
    return worst;
}

// |p(x)| relative to the size of p's terms, coefficients highest degree first.
double Residual(const std::vector<double> &p, double x) {
    double scale = 0.0, pw = 1.0;
    std::vector<double> asc(p.rbegin(), p.rend());
    for (double c : asc) scale += std::fabs(c * pw), pw *= x;
    return std::fabs(QZ_SolvePolynomialResult(asc.data(), x, static_cast<int32_t>(asc.size()))) / scale;
}

// kind 2: QZ_SqureSolve, 3: QZ_CubicSolve, 4: QZ_Solve4OrderEqR (real roots of a quartic).
struct RealRow { int kind; double c[5]; int n; double r[4]; double tol; };

TEST(RealRoots, FixturesThroughEveryBranchLeaveTheRestUnwritten) {
    const RealRow rows[] = {
        {2, {1, -3, 2}, 2, {1, 2}, 0},  {2, {-1, 3, -2}, 2, {1, 2}, 0},  // ascending either way
        {2, {1, 2, 1}, 1, {-1}, 0},     {2, {1, 0, 1}, 0, {}, 0},     {2, {0, 2, -4}, 1, {2}, 0},
        {2, {0, 0, 5}, 0, {}, 0},       {2, {1e-15, 2, -4}, 1, {2}, 0},  // loose band ends inclusive
        {2, {-1e-15, 1e-15, 1}, 0, {}, 0}, {2, {NextUp(1e-15), 2, -4}, 2, {kAny, kAny}, 0},
        {2, {1, 2, 1 - 2.5e-16}, 1, {-1}, 0},  // discriminant 1e-15: the double root, once
        {2, {1, 2, 1 + 4e-16}, 0, {}, 0},      // just below the band: no spurious pair
        {3, {1, -6, 11, -6}, 3, {3, 1, 2}, 1e-14}, {3, {1, 0, 0, -8}, 1, {2}, 1e-15},
        {3, {1, -3, 2, 0}, 3, {1, 2, 0}, 0},                       // zero constant: then 0
        {3, {1e-12, 1, -3, 2}, 2, {1, 2}, 0}, {3, {1e-15, 1, -3, 2}, 2, {1, 2}, 0},
        {3, {1e-10, NextUp(1.0), -3, 2}, 2, {1, 2}, 1e-15},       // b / a just beyond 1e10
        {3, {1e-10, -1, 3, -2}, 3, {kAny, kAny, kAny}, 0},          // b / a exactly -1e10: kept
        {3, {1, 0, -3, 2}, 2, {-2, 1}, 0}, {3, {1, -6, 12, -8}, 2, {2, 2}, 0},  // multiple: once
        {4, {2, 3, -4, 5, -6}, 2, {1, -2.7213569329}, 1e-10}, {4, {1, 0, 0, 0, -1}, 0, {}, 0},
        {4, {1, -10, 35, -50, 24}, 4, {4, 3, 2, 1}, 1e-13}};
    for (const RealRow &w : rows) {
        double r[4] = {kFill, kFill, kFill, kFill};
        const double *c = w.c;
        const int n = w.kind == 2   ? QZ_SqureSolve(c[0], c[1], c[2], r)
                      : w.kind == 3 ? QZ_CubicSolve(c[0], c[1], c[2], c[3], r)
                                    : QZ_Solve4OrderEqR(c[0], c[1], c[2], c[3], c[4], r);
        ASSERT_EQ(n, w.n) << w.kind << ": " << c[0] << " " << c[1] << " " << c[2];
        for (int k = 0; k < 4; ++k) {
            if (k >= n) EXPECT_EQ(r[k], kFill) << c[0] << " root " << k;
            else if (!std::isnan(w.r[k])) EXPECT_NEAR(r[k], w.r[k], w.tol) << c[0] << " root " << k;
        }
    }
    // A pair 1 +- ti counts as real beside the roots +-1 only while t stays below 1/10000.
    double out[4];
    for (double t : {5e-5, 2e-4}) {
        const auto p = FromRoots(1, {C(1, t), C(1, -t), 1.0, -1.0});
        EXPECT_EQ(QZ_Solve4OrderEqR(p[0], p[1], p[2], p[3], p[4], out), t < 1e-4 ? 4 : 2);
    }
}

// The smallest positive and the largest negative root; zero is neither, refusals write nothing.
TEST(RealRoots, SelectorsPickTheRootNearestZeroOnEachSide) {
    const struct { bool pos; double c[4]; int ok; double want; } rows[] = {
        {true, {1, -6, 11, -6}, 1, 1}, {false, {1, -6, 11, -6}, 0, kFill},
        {false, {1, 0, -1, 0}, 1, -1}, {true, {1, 0, -1, 0}, 1, 1},
        {true, {1, 0, 0, 0}, 0, kFill}, {false, {0, 0, 0, 1}, 0, kFill},
        {false, {1, 6, 11, 6}, 1, -1}};  // roots -3, -1, -2: found wherever it sits
    for (const auto &w : rows) {
        double out = kFill;
        const double *c = w.c;
        EXPECT_EQ(w.pos ? QZ_CubicSolve_Min_Pos(c[0], c[1], c[2], c[3], &out)
                        : QZ_CubicSolve_Max_Nag(c[0], c[1], c[2], c[3], &out), w.ok);
        EXPECT_NEAR(out, w.want, 1e-14) << w.pos << " " << c[1];
    }
}

struct ComplexRow { int deg; double c[5]; int n; double re[4], im[4]; double tol; };

TEST(ComplexRoots, FixturesThroughEveryBranchLeaveTheRestUnwritten) {
    const double h = 0.8660254037844386;
    const ComplexRow rows[] = {
        {2, {1, 0, 1}, 2, {0, 0}, {1, -1}, 0}, {2, {1, -2, 1}, 2, {1, 1}, {0, 0}, 0},
        {2, {1, -3, 2}, 2, {2, 1}, {0, 0}, 0},  // larger real root first for a > 0
        {2, {1e-15, 2, -4}, 1, {2}, {0}, 0},    {2, {0, 1e-15, 1}, 0, {}, {}, 0},
        {3, {1, 0, 0, -1}, 3, {1, -0.5, -0.5}, {0, h, -h}, 1e-15},
        {3, {1, -6, 11, -6}, 3, {3, 1, 2}, {0, 0, 0}, 1e-14},
        {3, {1, 0, -3, 2}, 3, {-2, 1, 1}, {0, 0, 0}, 0},  // zero discriminant: double root twice
        {3, {0, 1, 0, 1}, 2, {0, 0}, {1, -1}, 0},           // only an exact zero drops the degree
        {3, {1, -3, 2, 0}, 3, {2, 1, 0}, {0, 0, 0}, 0},
        {4, {1, 0, 0, 0, -1}, 0, {}, {}, 0},                // resolvent constant zero: nothing
        {4, {1, -10, 35, -50, 24}, 4, {4, 3, 2, 1}, {0, 0, 0, 0}, 1e-13},
        {4, {2, 3, -4, 5, -6}, 4, {0.1106784664, 0.1106784664, 1, -2.7213569329},
         {1.0440984154, -1.0440984154, 0, 0}, 1e-10},
        {4, {1, 0, 10, 0, 9}, 4, {0, 0, 0, 0}, {1, -1, 3, -3}, 0},  // auxiliary root exactly zero
        {4, {1, -4, 6, -4, 1}, 4, {1, 1, 1, 1}, {0, 0, 0, 0}, 0},
        {4, {0, 1, -6, 11, -6}, 3, {3, 1, 2}, {0, 0, 0}, 1e-14},
        {4, {1, -6, 11, -6, 0}, 4, {3, 1, 2, 0}, {0, 0, 0, 0}, 1e-14}};
    for (const ComplexRow &w : rows) {
        double re[4] = {kFill, kFill, kFill, kFill}, im[4] = {kFill, kFill, kFill, kFill};
        const double *c = w.c;
        const int n = w.deg == 2   ? QZ_Solve2OrderEq(c[0], c[1], c[2], re, im)
                      : w.deg == 3 ? QZ_Solve3OrderEq(c[0], c[1], c[2], c[3], re, im)
                                   : QZ_Solve4OrderEq(c[0], c[1], c[2], c[3], c[4], re, im);
        ASSERT_EQ(n, w.n) << w.deg << ": " << c[0] << " " << c[1] << " " << c[2];
        for (int k = 0; k < 4; ++k) {
            if (k >= n) EXPECT_TRUE(re[k] == kFill && im[k] == kFill) << c[1] << " root " << k;
            else EXPECT_TRUE(std::fabs(re[k] - w.re[k]) <= w.tol && std::fabs(im[k] - w.im[k]) <= w.tol)
                << w.deg << ": " << c[1] << " " << c[2] << " root " << k << " " << C(re[k], im[k]);
        }
    }
    double re[3], im[3];  // a conjugate pair is exact; a tiny cubic term is kept, not dropped
    ASSERT_EQ(QZ_Solve3OrderEq(1, 0, 0, -1, re, im), 3);
    EXPECT_TRUE(re[2] == re[1] && SameBits(im[2], -im[1]));
    ASSERT_EQ(QZ_Solve3OrderEq(1e-12, 1, -3, 2, re, im), 3);
    EXPECT_NEAR(*std::min_element(re, re + 3), -1e12, 1e3);
}

TEST(SolvePolynomialResult, EachLengthForm) {
    const double p5[5] = {24, -50, 35, -10, 1}, p4[4] = {1, 2, 3, 4}, pz[2] = {-0.0, 5};
    const double want[] = {0.0, 1.0, 5.0, 17.0, 49.0};
    for (int n = 0; n <= 4; ++n) EXPECT_EQ(QZ_SolvePolynomialResult(n ? p4 : nullptr, 2, n), want[n]);
    EXPECT_EQ(QZ_SolvePolynomialResult(p5, 2, 5), 0.0);
    EXPECT_EQ(QZ_SolvePolynomialResult(nullptr, 2, -3), 0.0);  // nothing read for n <= 0
    EXPECT_TRUE(SameBits(QZ_SolvePolynomialResult(pz, -0.0, 2), -0.0));  // signed zero kept
}

// Random cubics with three real roots or a conjugate pair: every root found, and for three real
// roots the two angle forms of the real and the complex solver agree to rounding.
TEST(ComplexRoots, RandomCubicsAgreeWithChosenRootsAndTheRealSolver) {
    auto rng = qztest::Rng();
    double worstVal = 0, worstForms = 0;
    for (int it = 0; it < 20000; ++it) {
        const double lead = qztest::Uniform(rng, 0.5, 4), x = qztest::Uniform(rng, -10, 10);
        const C z(qztest::Uniform(rng, -10, 10), qztest::Uniform(rng, it % 2 ? 0.5 : 0, it % 2 ? 10 : 0));
        const double y = qztest::Uniform(rng, -10, 10);
        const std::vector<C> want = it % 2 ? std::vector<C>{x, z, std::conj(z)} : std::vector<C>{x, z, y};
        if (it % 2 == 0 && std::min({std::fabs(z.real() - y), std::fabs(z.real() - x), std::fabs(x - y)}) < 0.05)
            continue;
        const auto p = FromRoots(lead, want);
        double re[3], im[3], r[3];
        ASSERT_EQ(QZ_Solve3OrderEq(p[0], p[1], p[2], p[3], re, im), 3);
        worstVal = std::max(worstVal, Match(want, {C(re[0], im[0]), C(re[1], im[1]), C(re[2], im[2])}));
        if (it % 2) continue;
        ASSERT_EQ(QZ_CubicSolve(p[0], p[1], p[2], p[3], r), 3);
        for (int k = 0; k < 3; ++k) worstForms = std::max(worstForms, Rel(re[k], r[k]));
    }
    EXPECT_LT(worstVal, 1e-7);
    EXPECT_LT(worstForms, 1e-12);
}

// Disagreement with the peer over random polynomials: well-separated roots (tight, same count)
// and near-double roots, where every closed form loses digits (loose).
struct Worst {
    double sep = 0, near = 0;
    int mismatch = 0;
    void Take(bool isNear, double r) { (isNear ? near : sep) = std::max(isNear ? near : sep, r); }
};

TEST(PeerCrossCheck, QuadraticAndCubicAgainstGsl) {
    auto rng = qztest::Rng();
    auto u = [&](double lo, double hi) { return qztest::Uniform(rng, lo, hi); };
    Worst q, c;
    for (int it = 0; it < 100000; ++it) {
        const bool isNear = it % 2;
        const double x0 = u(-100, 100), x1 = isNear ? x0 * (1 + u(1e-9, 1e-6)) : u(-100, 100);
        const auto p = FromRoots(u(0.1, 10), {x0, x1});
        double r[3], g[3];
        const int n = QZ_SqureSolve(p[0], p[1], p[2], r);
        if (n != gsl_poly_solve_quadratic(p[0], p[1], p[2], &g[0], &g[1])) {
            q.mismatch += !isNear;
            continue;
        }
        for (int k = 0; k < n; ++k) {  // both ascending
            q.Take(isNear, Rel(r[k], g[k]));
            ASSERT_LT(Residual(p, r[k]), 1e-10);
        }
    }
    rng = qztest::Rng();
    for (int it = 0; it < 100000; ++it) {
        const bool isNear = it % 2;
        const double x0 = u(-10, 10), x1 = isNear ? x0 + u(1e-7, 1e-4) : u(-10, 10), x2 = u(-10, 10);
        if (!isNear && std::min({std::fabs(x0 - x1), std::fabs(x0 - x2), std::fabs(x1 - x2)}) < 0.05)
            continue;
        // Monic, as GSL takes x^3 + a x^2 + b x + c; every fourth case one root and a pair.
        const C z(x1, u(0.5, 10));
        const auto p = !isNear && it % 4 == 0 ? FromRoots(1.0, {x0, z, std::conj(z)})
                                              : FromRoots(1.0, {x0, x1, x2});
        double r[3], g[3];
        const int n = QZ_CubicSolve(p[0], p[1], p[2], p[3], r);
        if (n != gsl_poly_solve_cubic(p[1], p[2], p[3], &g[0], &g[1], &g[2])) {
            c.mismatch += !isNear;
            continue;
        }
        if (n == 3) ASSERT_GE(r[0], std::max(r[1], r[2]));  // the largest comes first
        std::sort(r, r + n);
        for (int k = 0; k < n; ++k) {
            c.Take(isNear, Rel(r[k], g[k]));
            if (!isNear) ASSERT_LT(Residual(p, r[k]), 1e-6);
        }
    }
    EXPECT_TRUE(q.sep < 1e-10 && q.near < 1e-6 && q.mismatch == 0) << q.sep << " " << q.near;
    EXPECT_TRUE(c.sep < 1e-9 && c.near < 1e-3 && c.mismatch == 0) << c.sep << " " << c.near;
}

TEST(PeerCrossCheck, QuarticAgainstGslComplexSolve) {
    auto rng = qztest::Rng();
    auto u = [&](double lo, double hi) { return qztest::Uniform(rng, lo, hi); };
    gsl_poly_complex_workspace *ws = gsl_poly_complex_workspace_alloc(5);
    Worst w;
    for (int it = 0; it < 50000; ++it) {
        const bool isNear = it % 2;
        const C z(u(-5, 5), u(0.3, 5)), v(u(-5, 5), u(0.3, 5));
        const double x = u(-5, 5), y = isNear ? x + u(1e-6, 1e-3) : u(-5, 5);
        std::vector<C> want = {x, y, z, std::conj(z)};
        if (!isNear && std::fabs(x - y) < 0.3) continue;
        if (!isNear && it % 4 == 0) {
            if (std::abs(v - z) < 0.3) continue;
            want = {v, std::conj(v), z, std::conj(z)};
        }
        const auto p = FromRoots(u(0.5, 3), want);
        double re[4], im[4], zs[8];
        const double asc[5] = {p[4], p[3], p[2], p[1], p[0]};
        ASSERT_EQ(gsl_poly_complex_solve(asc, 5, ws, zs), GSL_SUCCESS);
        if (QZ_Solve4OrderEq(p[0], p[1], p[2], p[3], p[4], re, im) != 4) {
            w.mismatch += !isNear;
            continue;
        }
        std::vector<C> peer, got;
        for (int k = 0; k < 4; ++k) peer.emplace_back(zs[2 * k], zs[2 * k + 1]), got.emplace_back(re[k], im[k]);
        w.Take(isNear, Match(peer, got));
    }
    gsl_poly_complex_workspace_free(ws);
    EXPECT_TRUE(w.sep < 1e-4 && w.near < 1e-1 && w.mismatch == 0) << w.sep << " " << w.near;
}

}  // namespace
