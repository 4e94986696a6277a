// Polynomial roots: every branch of every solver checked by substituting the roots back, roots
// recovered from polynomials built from chosen roots, and cross-checks against GSL. The root
// selectors and the polynomial evaluation are pinned by the golden vectors.
#include <gsl/gsl_errno.h>
#include <gsl/gsl_poly.h>

#include <algorithm>
#include <complex>
#include <vector>

#include "QZBaseMath.h"
#include "test_util.h"

namespace {

using C = std::complex<double>;
using qztest::NextUp;
constexpr double kFill = -777.0;  // marks entries a solver must leave alone

double Rel(C x, C ref) { return std::abs(x - ref) / std::max(1.0, std::abs(ref)); }

// |p(z)| relative to the size of p's terms, coefficients highest degree first.
double Residual(const double *c, int deg, C z) {
    C p = 0.0;
    double scale = 0.0;
    for (int k = 0; k <= deg; ++k) p = p * z + c[k], scale = scale * std::abs(z) + std::fabs(c[k]);
    return std::abs(p) / std::max(scale, 1e-300);
}

// Expands lead * prod (x - r_k) into real coefficients, highest degree first.
std::vector<double> FromRoots(double lead, const std::vector<C> &roots) {
    std::vector<C> p{lead};
    for (C r : roots) {
        p.push_back(0.0);
        for (size_t i = p.size() - 1; i > 0; --i) p[i] -= p[i - 1] * r;
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
                                     [&](C x, C y) { return Rel(x, w) < Rel(y, w); });
        worst = std::max(worst, Rel(*best, w));
        got.erase(best);
    }
    return worst;
}

// Solves with kind 2, 3, 4 (QZ_SqureSolve, QZ_CubicSolve, QZ_Solve4OrderEqR) or 12, 13, 14
// (QZ_Solve2OrderEq, QZ_Solve3OrderEq, QZ_Solve4OrderEq; imaginary parts into im).
int Solve(int kind, const double *c, double *re, double *im) {
    switch (kind) {
        case 2: return QZ_SqureSolve(c[0], c[1], c[2], re);
        case 3: return QZ_CubicSolve(c[0], c[1], c[2], c[3], re);
        case 4: return QZ_Solve4OrderEqR(c[0], c[1], c[2], c[3], c[4], re);
        case 12: return QZ_Solve2OrderEq(c[0], c[1], c[2], re, im);
        case 13: return QZ_Solve3OrderEq(c[0], c[1], c[2], c[3], re, im);
        default: return QZ_Solve4OrderEq(c[0], c[1], c[2], c[3], c[4], re, im);
    }
}

// Every root found satisfies the whole polynomial (tiny leading terms included), a full set sums
// to -b/a (so no root is repeated in place of another), and nothing past the count is written.
// Thresholds: zero bands end inclusive, b/a beyond 1e10 drops the cubic term, exact zeros split
// off a root at 0, a multiple real root is reported once by the real solvers.
TEST(Roots, EveryBranchSatisfiesThePolynomialAndLeavesTheRestUnwritten) {
    // clang-format off
    const struct { int kind; double c[5]; int n; double tol = 1e-9; } rows[] = {
        {2, {1, -3, 2}, 2}, {2, {-1, 3, -2}, 2}, {2, {1, 2, 1}, 1}, {2, {1, 0, 1}, 0},
        {2, {0, 2, -4}, 1}, {2, {0, 0, 5}, 0}, {2, {1e-15, 2, -4}, 1}, {2, {-1e-15, 1e-15, 1}, 0},
        {2, {NextUp(1e-15), 2, -4}, 2, 1e-3}, {2, {1, 2, 1 - 2.5e-16}, 1}, {2, {1, 2, 1 + 4e-16}, 0},
        {3, {1, -6, 11, -6}, 3}, {3, {1, 0, 0, -8}, 1}, {3, {1, -3, 2, 0}, 3}, {3, {1e-12, 1, -3, 2}, 2},
        {3, {1e-10, NextUp(1.0), -3, 2}, 2}, {3, {1e-10, -1, 3, -2}, 3, 0.1}, {3, {1e-10, 1, -3, 2}, 3, 2.0}, {3, {1, 0, -3, 2}, 2},
        {3, {1, -6, 12, -8}, 2},
        {4, {2, 3, -4, 5, -6}, 2}, {4, {1, 0, 0, 0, -1}, 0}, {4, {1, -10, 35, -50, 24}, 4},
        {12, {1, 0, 1}, 2}, {12, {1, -2, 1}, 2}, {12, {1e-15, 2, -4}, 1}, {12, {0, 1e-15, 1}, 0},
        {13, {1, 0, 0, -1}, 3}, {13, {1, -6, 11, -6}, 3}, {13, {1, 0, -3, 2}, 3}, {13, {0, 1, 0, 1}, 2},
        {13, {1, -3, 2, 0}, 3}, {13, {1e-12, 1, -3, 2}, 3, 1.0}, {13, {1, -7, 14, -8}, 3},
        {14, {1, 0, 0, 0, -1}, 0},  // resolvent constant exactly zero: nothing
        {14, {1, -10, 35, -50, 24}, 4}, {14, {2, 3, -4, 5, -6}, 4}, {14, {1, 0, 10, 0, 9}, 4},
        {14, {1, -4, 6, -4, 1}, 4}, {14, {0, 1, -6, 11, -6}, 3}, {14, {1, -6, 11, -6, 0}, 4},
        {14, {1, 0, 1, 0, 1e-16}, 4, 0.1}, {14, {1, -2, 5, 0, 0}, 4}};  // a constant of 1e-16 is kept
    for (const auto &w : rows) {
        const int deg = w.kind % 10;
        double re[4] = {kFill, kFill, kFill, kFill}, im[4] = {kFill, kFill, kFill, kFill};
        const int n = Solve(w.kind, w.c, re, im);
        ASSERT_EQ(n, w.n) << w.kind << ": " << w.c[0] << " " << w.c[1] << " " << w.c[2];
        C sum = 0.0;
        for (int k = 0; k < 4; ++k) {
            const C z(re[k], w.kind > 10 ? im[k] : 0.0);
            if (k >= n) EXPECT_ALL(re[k] == kFill, im[k] == kFill) << w.kind << " " << w.c[1] << " " << k;
            else EXPECT_LT(Residual(w.c, deg, z), w.tol) << w.kind << ": " << w.c[1] << " " << w.c[2] << " " << z;
            if (k < n) sum += z;
        }
        if (n == deg && w.c[0] != 0) EXPECT_LT(Rel(sum, -w.c[1] / w.c[0]), 1e-9) << w.kind << " " << w.c[1];
    }
    double re[4], im[4];
    // clang-format on
    // A pair 1 +- ti counts as real beside the roots +-1 only while t stays below 1/10000.
    for (double t : {5e-5, 2e-4}) {
        const auto p = FromRoots(1, {C(1, t), C(1, -t), 1.0, -1.0});
        EXPECT_EQ(QZ_Solve4OrderEqR(p[0], p[1], p[2], p[3], p[4], re), t < 1e-4 ? 4 : 2);
    }
    ASSERT_EQ(QZ_Solve3OrderEq(1, 0, 0, -1, re, im), 3);  // a conjugate pair is exact
    EXPECT_ALL(re[2] == re[1], im[2] == -im[1], im[1] != 0);
}

// Against GSL over random polynomials built from chosen roots: well-separated roots agree
// tightly and with the same count; near-double roots, where every closed form loses digits,
// loosely. Real cubic roots come largest first.
TEST(PeerCrossCheck, QuadraticCubicAndQuarticAgainstGsl) {
    auto rng = qztest::Rng();
    auto u = [&](double lo, double hi) { return qztest::Uniform(rng, lo, hi); };
    const double tol[3][2] = {{1e-10, 1e-5}, {1e-9, 1e-3}, {1e-4, 1e-1}};  // [degree - 2][near]
    gsl_poly_complex_workspace *ws = gsl_poly_complex_workspace_alloc(5);
    for (int it = 0; it < 150000; ++it) {
        const bool near = it % 2;
        const int deg = 2 + it / 50000;
        const double x0 = u(-10, 10),
                     x1 = near ? x0 * (1 + u(1e-9, 1e-6)) + u(1e-7, 1e-5) : u(-10, 10);
        const C z(u(-5, 5), u(0.3, 5)), v(u(-5, 5), u(0.3, 5));
        std::vector<C> want = {x0, x1};
        if (deg == 3) want.push_back(u(-10, 10));
        if (deg == 3 && !near && it % 4 == 1) want = {x0, z, std::conj(z)};
        if (deg == 4)
            want = it % 4 == 0 ? std::vector<C>{v, std::conj(v), z, std::conj(z)}
                               : std::vector<C>{x0 / 2, x1 / 2, z, std::conj(z)};
        bool close = false;
        for (size_t i = 0; i < want.size(); ++i)
            for (size_t j = 0; j < i; ++j) close |= std::abs(want[i] - want[j]) < 0.3;
        if (close != near) continue;
        const auto p = FromRoots(deg == 3 ? 1.0 : u(0.5, 3), want);  // GSL's cubic is monic
        double r[4], im[4] = {}, g[8] = {};
        int n, ng = 4;
        if (deg == 2)
            n = QZ_SqureSolve(p[0], p[1], p[2], r),
            ng = gsl_poly_solve_quadratic(p[0], p[1], p[2], g, g + 1);
        else if (deg == 3)
            n = QZ_CubicSolve(p[0], p[1], p[2], p[3], r),
            ng = gsl_poly_solve_cubic(p[1], p[2], p[3], g, g + 1, g + 2);
        else {
            const double asc[5] = {p[4], p[3], p[2], p[1], p[0]};
            ASSERT_EQ(gsl_poly_complex_solve(asc, 5, ws, g), GSL_SUCCESS);
            n = QZ_Solve4OrderEq(p[0], p[1], p[2], p[3], p[4], r, im);
        }
        if (near && n != ng) continue;  // a near-double root may count as one or as two
        ASSERT_EQ(n, ng) << "degree " << deg << ", iteration " << it;
        std::vector<C> mine, peer;
        for (int k = 0; k < n; ++k) {
            mine.emplace_back(r[k], im[k]);
            peer.emplace_back(deg == 4 ? C(g[2 * k], g[2 * k + 1]) : C(g[k], 0.0));
        }
        if (deg == 3 && n == 3) ASSERT_GE(r[0], std::max(r[1], r[2]));
        ASSERT_LT(Match(peer, mine), tol[deg - 2][near])
            << "degree " << deg << ", iteration " << it;
    }
    gsl_poly_complex_workspace_free(ws);
}

}  // namespace
