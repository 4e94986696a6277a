// Frame geometry: line crossings, v + M x in place. The DH link transform is checked against
// KDL through the example arm's chain (test_example_arm7.cpp).
#include "QZMatrix.h"
#include "decomposition_cases.h"

using namespace qztest;

namespace {

using Vec3 = Eigen::Vector3d;
constexpr double kPi = 3.141592653589793;

// Meeting lines give their crossing, skew lines the midpoint of the common perpendicular; the
// directions come back as unit vectors.
TEST(Frames, LineCrossGivesCrossingOrMidpointOfCommonPerpendicular) {
    auto rng = Rng();
    double x[3];
    for (int n = 0; n < 2000; ++n) {
        const Vec3 c = 1e3 * RandomMat(rng, 3, 1), u = RandomMat(rng, 3, 1),
                   w = RandomMat(rng, 3, 1);
        if (u.normalized().cross(w.normalized()).norm() < 0.05) continue;
        const Vec3 perp = u.cross(w).normalized() * (n % 2 ? Uniform(rng, -50, 50) : 0.0);
        const Vec3 a = c + perp + Uniform(rng, -300, 300) * u,
                   b = c - perp + Uniform(rng, -300, 300) * w;
        Vec3 du = 3.0 * u, dw = 0.5 * w;
        ASSERT_EQ(QZ_LineCross(a.data(), du.data(), b.data(), dw.data(), x), 1u) << n;
        EXPECT_LT((Vec3(x[0], x[1], x[2]) - c).norm(), 1e-8) << n;
        EXPECT_LT((du - u.normalized()).norm() + (dw - w.normalized()).norm(), 1e-15);
    }
}

// Same-way lines count as parallel up to about 2e-4 rad, opposite lines only within about 1e-8
// rad of a straight angle; parallel pairs and zero directions (left zero) leave X as it was.
TEST(Frames, LineCrossRefusesParallelAndZeroDirections) {
    // clang-format off
    const struct { double angle, len; uint32_t ok; } cases[] = {
        {0.0, 1, 0}, {1e-4, 1, 0}, {4e-4, 1, 1}, {kPi, 1, 0}, {kPi - 1e-9, 1, 0},
        {kPi - 1e-6, 1, 1}, {kPi / 2, 0, 0}};
    // clang-format on
    for (const auto &c : cases) {
        double p1[3] = {0, 0, 0}, d1[3] = {5 * c.len, 0, 0}, p2[3] = {0, 1, 0}, x[3] = {7, 8, 9};
        double d2[3] = {3 * std::cos(c.angle), 3 * std::sin(c.angle), 0};
        EXPECT_EQ(QZ_LineCross(p1, d1, p2, d2, x), c.ok) << c.angle;
        EXPECT_ALL(d1[0] == c.len, std::fabs(std::hypot(d2[0], d2[1]) - 1) < 1e-15);
        if (!c.ok) EXPECT_ALL(x[0] == 7, x[1] == 8, x[2] == 9) << c.angle;
    }
}

TEST(Frames, VectAddMVInPlaceAndEmptyShapes) {
    double r0[2] = {1, 2}, r1[2] = {-3, 4}, *m[2] = {r0, r1};
    double v[2] = {0.5, -0.5}, x[2] = {2, -1}, neg[2] = {-0.0, 2.0}, o[2] = {5, 5};
    QZ_VectAddMV(v, m, 2, 2, x, v);  // out may be v
    EXPECT_ALL(v[0] == 0.5 + 2 - 2, v[1] == -0.5 - 6 - 4);
    QZ_VectAddMV(neg, m, 0, 2, x, o);  // no rows: nothing written
    EXPECT_ALL(o[0] == 5, o[1] == 5);
    QZ_VectAddMV(neg, m, 2, 0, x, o);  // no columns: a copy of v, -0 kept
    EXPECT_ALL(SameBits(o[0], -0.0), o[1] == 2);
}

}  // namespace
