// Frame geometry: modified DH link transforms, line crossings, v + M x in place.
#include <kdl/frames.hpp>

#include "QZMatrix.h"
#include "decomposition_cases.h"

using namespace qztest;

namespace {

using Vec3 = Eigen::Vector3d;
constexpr double kPi = 3.141592653589793;

// A rotation about x or z (axis 0 or 2) followed by a shift along the same axis.
Mat Elementary(void (*rot)(double, double *), double angle, int axis, double shift) {
    Mat t = Mat::Identity(4, 4), r(3, 3);
    rot(angle, r.data());
    t.topLeftCorner(3, 3) = r;
    t(axis, 3) = shift;
    return t;
}

// A seven-link chain equals the chain of RotX(alpha) TransX(a) RotZ(theta) TransZ(d) built from
// the elementary rotations, and each link equals KDL's Craig (modified) DH frame. KDL takes
// (a, alpha, d, theta); this library takes (alpha, a, d, theta).
TEST(Frames, DhChainMatchesElementaryProductsAndKdl) {
    auto rng = Rng();
    for (int n = 0; n < 200; ++n) {
        Mat chain = Mat::Identity(4, 4), hand = chain, l(4, 4);
        for (int link = 0; link < 7; ++link) {
            const double al = Uniform(rng, -kPi, kPi), a = Uniform(rng, -500, 500),
                         d = Uniform(rng, -500, 500), th = Uniform(rng, -kPi, kPi);
            QZ_DH2Matrix(al, a, d, th, l.data());
            const KDL::Frame k = KDL::Frame::DH_Craig1989(a, al, d, th);
            EXPECT_LT(MaxAbs(l.topLeftCorner(3, 3) - Eigen::Map<const Mat>(k.M.data, 3, 3)), 1e-15);
            EXPECT_LT(MaxAbs(l.col(3).head(3) - Eigen::Map<const Vec3>(k.p.data)), 1e-12);
            EXPECT_TRUE(SameBits(l(3, 0), 0.0) && SameBits(l(3, 3), 1.0));
            chain = chain * l;
            hand = hand * Elementary(QZ_RotXARC, al, 0, a) * Elementary(QZ_RotZARC, th, 2, d);
        }
        EXPECT_LT(MaxAbs(chain - hand), 1e-10) << n;
    }
}

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
        EXPECT_TRUE(d1[0] == c.len && std::fabs(std::hypot(d2[0], d2[1]) - 1) < 1e-15);
        if (!c.ok) EXPECT_TRUE(x[0] == 7 && x[1] == 8 && x[2] == 9) << c.angle;
    }
}

TEST(Frames, VectAddMVInPlaceAndEmptyShapes) {
    double r0[2] = {1, 2}, r1[2] = {-3, 4}, *m[2] = {r0, r1};
    double v[2] = {0.5, -0.5}, x[2] = {2, -1}, neg[2] = {-0.0, 2.0}, o[2] = {5, 5};
    QZ_VectAddMV(v, m, 2, 2, x, v);  // out may be v
    EXPECT_TRUE(v[0] == 0.5 + 2 - 2 && v[1] == -0.5 - 6 - 4);
    QZ_VectAddMV(neg, m, 0, 2, x, o);  // no rows: nothing written
    EXPECT_TRUE(o[0] == 5 && o[1] == 5);
    QZ_VectAddMV(neg, m, 2, 0, x, o);  // no columns: a copy of v, -0 kept
    EXPECT_TRUE(SameBits(o[0], -0.0) && o[1] == 2);
}

}  // namespace
