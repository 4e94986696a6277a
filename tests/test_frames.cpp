// Frame geometry: modified DH link transforms, skew and L operators, line crossings, v + M x.
#include <Eigen/Dense>
#include <kdl/frames.hpp>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::SameBits;
using qztest::Uniform;
using Mat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
using Mat4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
using Vec3 = Eigen::Vector3d;
constexpr double kPi = 3.141592653589793;

Mat4 Dh(double alpha, double a, double d, double theta) {
    Mat4 t;
    QZ_DH2Matrix(alpha, a, d, theta, t.data());
    return t;
}
Mat4 Elementary(void (*rot)(double, double *), double angle, const Vec3 &shift) {
    Mat3 r;
    rot(angle, r.data());
    Mat4 t = Mat4::Identity();
    t.topLeftCorner<3, 3>() = r;
    t.col(3).head<3>() = shift;
    return t;
}
Vec3 RandomVec(std::mt19937_64 &rng, double h) {
    return Vec3(Uniform(rng, -h, h), Uniform(rng, -h, h), Uniform(rng, -h, h));
}

// A seven-link chain equals the chain of RotX(alpha) TransX(a) RotZ(theta) TransZ(d) built from
// the elementary rotations, and each link equals KDL's Craig (modified) DH frame. KDL takes
// (a, alpha, d, theta); this library takes (alpha, a, d, theta).
TEST(Frames, DhChainMatchesElementaryProductsAndKdl) {
    const Mat4 t = Dh(0, 1, 2, kPi / 2);
    EXPECT_LT((t - (Mat4() << 0, -1, 0, 1, 1, 0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 1).finished()).cwiseAbs().maxCoeff(), 1e-16);
    EXPECT_EQ(Dh(0, 0, 0, 0), Mat4::Identity());
    auto rng = qztest::Rng();
    for (int n = 0; n < 200; ++n) {
        Mat4 chain = Mat4::Identity(), hand = Mat4::Identity();
        for (int link = 0; link < 7; ++link) {
            const double al = Uniform(rng, -kPi, kPi), a = Uniform(rng, -500, 500),
                         d = Uniform(rng, -500, 500), th = Uniform(rng, -kPi, kPi);
            const Mat4 l = Dh(al, a, d, th);
            const KDL::Frame k = KDL::Frame::DH_Craig1989(a, al, d, th);
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j) EXPECT_NEAR(l(i, j), k.M(i, j), 1e-15);
                EXPECT_NEAR(l(i, 3), k.p(i), 1e-12);
            }
            EXPECT_TRUE(SameBits(l(3, 0), 0.0) && SameBits(l(3, 3), 1.0));
            chain = chain * l;
            hand = hand * Elementary(QZ_RotXARC, al, Vec3(a, 0, 0)) *
                   Elementary(QZ_RotZARC, th, Vec3(0, 0, 0)) * Elementary(QZ_RotXARC, 0, Vec3(0, 0, d));
        }
        EXPECT_LT((chain - hand).cwiseAbs().maxCoeff(), 1e-10) << n;
    }
}

TEST(Frames, SkewIsCrossProductAndLOperatorIsSymmetricProduct) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 200; ++n) {
        const Vec3 v = RandomVec(rng, 5), x = RandomVec(rng, 5);
        const Vec3 dg = RandomVec(rng, 5), od = RandomVec(rng, 5);
        Mat3 s, in;
        in << dg(0), od(0), od(1), od(0), dg(1), od(2), od(1), od(2), dg(2);
        Eigen::Matrix<double, 3, 6, Eigen::RowMajor> l;
        Eigen::Matrix<double, 6, 1> vech;
        vech << in(0, 0), in(0, 1), in(0, 2), in(1, 1), in(1, 2), in(2, 2);
        QZ_Skew(v.data(), s.data());
        QZ_LOperator(v.data(), l.data());
        EXPECT_LT((s * x - v.cross(x)).norm(), 1e-13);
        EXPECT_LT((l * vech - in * v).norm(), 1e-13);
    }
}

// Meeting lines give their crossing, skew lines the midpoint of the common perpendicular; the
// directions come back as unit vectors.
TEST(Frames, LineCrossGivesCrossingOrMidpointOfCommonPerpendicular) {
    double p1[3] = {0, 0, 0}, d1[3] = {2, 0, 0}, p2[3] = {1, 1, 0}, d2[3] = {0, 1, 0}, x[3];
    EXPECT_EQ(QZ_LineCross(p1, d1, p2, d2, x), 1u);
    EXPECT_TRUE(x[0] == 1 && x[1] == 0 && x[2] == 0 && d1[0] == 1);
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        const Vec3 c = RandomVec(rng, 1000), u = RandomVec(rng, 1), w = RandomVec(rng, 1);
        if (u.normalized().cross(w.normalized()).norm() < 0.05) continue;
        const Vec3 perp = u.cross(w).normalized() * (n % 2 ? Uniform(rng, -50, 50) : 0.0);
        const Vec3 a = c + perp + Uniform(rng, -300, 300) * u, b = c - perp + Uniform(rng, -300, 300) * w;
        Vec3 du = 3.0 * u, dw = 0.5 * w;
        ASSERT_EQ(QZ_LineCross(a.data(), du.data(), b.data(), dw.data(), x), 1u) << n;
        EXPECT_LT((Vec3(x[0], x[1], x[2]) - c).norm(), 1e-8) << n;
        EXPECT_LT((du - u.normalized()).norm() + (dw - w.normalized()).norm(), 1e-15);
    }
}

// Same-way lines count as parallel up to about 2e-4 rad, opposite lines only within about 1e-8
// rad of a straight angle; parallel pairs and zero directions leave X as it was.
TEST(Frames, LineCrossRefusesParallelAndZeroDirections) {
    double x[3] = {7, 8, 9};
    auto cross = [&](double angle) {
        double p1[3] = {0, 0, 0}, d1[3] = {5, 0, 0}, p2[3] = {0, 1, 0};
        double d2[3] = {std::cos(angle), std::sin(angle), 0};
        return QZ_LineCross(p1, d1, p2, d2, x);
    };
    EXPECT_EQ(cross(0.0) + cross(1e-4) + cross(kPi) + cross(kPi - 1e-9), 0u);
    EXPECT_TRUE(x[0] == 7 && x[1] == 8 && x[2] == 9);
    EXPECT_EQ(cross(4e-4), 1u);
    EXPECT_EQ(cross(kPi - 1e-6), 1u);
    double p1[3] = {0, 0, 0}, d1[3] = {0, 0, 0}, p2[3] = {1, 1, 0}, d2[3] = {0, 3, 0}, y[3] = {7, 8, 9};
    EXPECT_EQ(QZ_LineCross(p1, d1, p2, d2, y), 0u);
    EXPECT_TRUE(d1[0] == 0 && d2[1] == 1 && y[0] == 7 && y[2] == 9);
}

TEST(Frames, VectAddMVInPlaceAndEmptyShapes) {
    double r0[2] = {1, 2}, r1[2] = {-3, 4}, *m[2] = {r0, r1};
    double v[2] = {0.5, -0.5}, x[2] = {2, -1};
    QZ_VectAddMV(v, m, 2, 2, x, v);  // out may be v
    EXPECT_TRUE(v[0] == 0.5 + 2 - 2 && v[1] == -0.5 - 6 - 4);
    double neg[2] = {-0.0, 2.0}, o[2] = {5, 5};
    QZ_VectAddMV(neg, m, 0, 2, x, o);  // no rows: nothing written
    EXPECT_TRUE(o[0] == 5 && o[1] == 5);
    QZ_VectAddMV(neg, m, 2, 0, x, o);  // no columns: a copy of v, -0 kept
    EXPECT_TRUE(SameBits(o[0], -0.0) && o[1] == 2);
}

}  // namespace
