// Plane geometry and set-point helpers: the angle wrap's fixtures, triangles, the foot of a
// perpendicular and the stepping towards a target.
#include <algorithm>
#include <cmath>
#include <vector>

#include "QZBaseMath.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

// a, b, result, b afterwards. A half turn is +180; equal angles give -0; differences that are not
// finite or too large to resolve into turns give NaN in both.
TEST(MinDifCircle, FixturesAndUnresolvableDifferences) {
    const double nan = NAN, inf = INFINITY;
    // clang-format off
    const double rows[][4] = {
        {10, 350, 20, -10}, {170, -170, 20, 190}, {0, 180, 180, -180}, {180, 0, 180, 0},
        {42.5, 42.5, -0.0, 42.5}, {inf, 0, nan, nan}, {0, inf, nan, nan}, {5, -inf, nan, nan},
        {nan, 1, nan, nan}, {1, nan, nan, nan}, {inf, inf, nan, nan}, {1e300, -1e300, nan, nan},
        {1e19, 0, nan, nan}, {0x1.0000000000001p62, 0, nan, nan}, {0, 0x1.0000000000001p62, nan, nan}};
    // clang-format on
    for (const auto &r : rows) {
        double b = r[1];
        const double got = QZ_MinDif_Circle(r[0], &b);
        EXPECT_TRUE(std::isnan(r[2]) ? std::isnan(got) && std::isnan(b)
                                     : SameBits(got, r[2]) && SameBits(b, r[3]))
            << r[0] << " " << r[1];
    }
    double b = -0x1p62;  // the largest difference whose turns are still resolved
    EXPECT_LE(QZ_MinDif_Circle(0.0, &b), 180.0);
}

// Sides a, b and the opposite side c -> the angle at C in degrees, clamped for impossible
// triangles, 0 when a side is within the zero band (and not beyond it).
TEST(CalAngleCDEG, TriangleFixturesClampsAndZeroBand) {
    const double rows[][4] = {{3, 4, 5, 90},  {1, 1, 2, 0}, {1, 1, 0, 180},   {1, 1, 3, 0},
                              {2, 5, 1, 180}, {0, 1, 1, 0}, {1, 1e-16, 1, 0}, {1, 1, 1, 120}};
    for (const auto &r : rows) EXPECT_NEAR(QZ_CalAngleCDEG(r[0], r[1], r[2]), r[3], 1e-12) << r[2];
    EXPECT_NE(QZ_CalAngleCDEG(1, NextUp(1e-16), 1), 0.0);
}

// The foot is perpendicular, and the output may overwrite any input with the same bits.
TEST(PointToLine, FootIsPerpendicularAndMayAliasInputs) {
    auto rng = qztest::Rng();
    for (int it = 0; it < 2000; ++it) {
        double in[3][3], f[3], dot = 0, n2 = 0;
        for (auto &v : in)
            for (double &x : v) x = qztest::Uniform(rng, -5, 5);
        ASSERT_EQ(QZ_PointToLine(in[0], in[1], in[2], f), 1);
        for (int i = 0; i < 3; ++i)
            dot += (in[2][i] - f[i]) * (in[1][i] - in[0][i]),
                n2 += (in[1][i] - in[0][i]) * (in[1][i] - in[0][i]);
        ASSERT_NEAR(dot / n2, 0.0, 1e-12);
        for (int w = 0; w < 3; ++w) {
            double c[3][3];
            std::copy(&in[0][0], &in[0][0] + 9, &c[0][0]);
            QZ_PointToLine(c[0], c[1], c[2], c[w]);
            for (int i = 0; i < 3; ++i) ASSERT_TRUE(SameBits(c[w][i], f[i])) << w;
        }
    }
    const double Z[3] = {1, 1, 1}, P[3] = {2, 3, 4};
    double F[3];
    EXPECT_EQ(QZ_PointToLine(Z, Z, P, F), 1);  // a degenerate line still returns 1
    EXPECT_FALSE(std::isfinite(F[0]));
}

// Steps of one towards 0 (or 5); within half a step, inclusive, lands exactly on the target.
TEST(ValueToTarget, StepsThenLandsExactly) {
    // clang-format off
    const struct { double start, target; std::vector<double> path; } rows[] = {
        {10, 0, {9}}, {0.5, 0, {0}}, {-0.5, 0, {0}}, {1.6, 0, {0.6, -0.4, 0}}, {NextUp(5.5), 5, {4.5}}};
    // clang-format on
    for (const auto &r : rows) {
        double v = r.start;
        for (double w : r.path) {
            ValueToTarget(&v, r.target, 1);
            EXPECT_NEAR(v, w, 1e-15) << r.start;
        }
        if (r.path.back() == r.target) EXPECT_TRUE(SameBits(v, r.target)) << r.start;
    }
}

}  // namespace
