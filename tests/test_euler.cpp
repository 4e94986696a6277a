// Elementary rotations, XYZ (ABC) and ZYZ Euler angles, XYZABC poses: round trips in both
// conventions and units, KDL's answers, and the XYZ gimbal lock.
#include <kdl/frames.hpp>

#include "QZMatrix.h"
#include "decomposition_cases.h"

using namespace qztest;

namespace {

constexpr double kPi = 3.141592653589793, kRadToDeg = 57.29577951308232;

Mat Rot(void (*f)(double, double *), double a) {
    Mat m(3, 3);
    f(a, m.data());
    return m;
}
double Dist(const Mat &a, const KDL::Rotation &k) {
    return MaxAbs(a - Eigen::Map<const Mat>(k.data, 3, 3));
}
double Dist3(const double *a, double x, double y, double z) {
    return std::max({std::fabs(a[0] - x), std::fabs(a[1] - y), std::fabs(a[2] - z)});
}

// KDL's RPY(roll, pitch, yaw) = Rz(yaw) Ry(pitch) Rx(roll) is XYZ with (A, B, C) = (roll, pitch,
// yaw); KDL's EulerZYZ(alpha, beta, gamma) is ZYZ with (a, b, c) in that order. Angles within
// the principal ranges come back from the matrices they make.
TEST(Euler, BothConventionsRoundTripAndAgreeWithElementaryProductsAndKdl) {
    const Mat rx = Rot(QZ_RotXARC, 0.0);
    EXPECT_ALL(SameBits(rx(1, 2), -0.0), SameBits(rx(2, 1), 0.0));  // -sin(0) is a negation
    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        const double x = Uniform(rng, -3.14, 3.14), y = Uniform(rng, -1.55, 1.55),
                     z = Uniform(rng, -3.14, 3.14), b = Uniform(rng, 0.01, 3.13),
                     abc[3] = {x, y, z};
        Mat r(3, 3), q(3, 3);
        double got[3];
        QZ_ABC2Matrix3ARC(abc, r.data());
        EXPECT_LT(MaxAbs(r - Rot(QZ_RotZARC, z) * Rot(QZ_RotYARC, y) * Rot(QZ_RotXARC, x)), 4e-16);
        EXPECT_LT(Dist(r, KDL::Rotation::RPY(x, y, z)), 1e-15);
        EXPECT_EQ(QZ_Matrix2XYZ(r.data(), got), 1u);
        EXPECT_LT(Dist3(got, x, y, z), 1e-13) << n;

        QZ_ZYZ2Matrix(x, b, z, q.data());
        EXPECT_LT(MaxAbs(q - Rot(QZ_RotZARC, x) * Rot(QZ_RotYARC, b) * Rot(QZ_RotZARC, z)), 4e-16);
        EXPECT_LT(Dist(q, KDL::Rotation::EulerZYZ(x, b, z)), 1e-15);
        ASSERT_EQ(QZ_Matrix2ZYZ(q.data(), got), 1u) << n;
        EXPECT_LT(Dist3(got, x, b, z), 1e-11) << n;
    }
}

// Every pose and transform form is the rotation form plus the position, bit for bit; the XYZ
// extraction pair answers in degrees from the ARC name and in radians from the DEG name.
TEST(Euler, PoseFormsShareTheRotationFormsAndUnits) {
    auto rng = Rng();
    for (int n = 0; n < 300; ++n) {
        double p[6], t[16], r[9], rc[9], rad[6], deg[6], zr[6], zd[6], a3[3], z3[3], t3[3];
        for (int i = 0; i < 6; ++i) p[i] = Uniform(rng, -1, 1) * (i < 3 ? 2e3 : i == 4 ? 89 : 180);
        QZ_XYZABC2Matrix4DEG(p, t);
        QZ_ABC2Matrix3DEG(p + 3, r);
        QZ_CALC_TRANS_FROM_Rotxyz(p + 3, rc);
        EXPECT_EQ(QZ_Matrix2XYZABC4ARC_XYZ(t, deg) + QZ_Matrix2XYZABC4DEG_XYZ(t, rad) +
                      QZ_Matrix2XYZABC4ARC_ZYZ(t, zr) + QZ_Matrix2XYZABC4DEG_ZYZ(t, zd) +
                      QZ_Matrix2XYZ(r, a3) + QZ_Matrix42XYZ(t, t3) + QZ_Matrix2ZYZ(r, z3),
                  7u);
        for (int i = 0; i < 9; ++i)
            ASSERT_ALL(SameBits(t[4 * (i / 3) + i % 3], r[i]), SameBits(rc[i], r[i])) << i;
        ASSERT_ALL(SameBits(t[12], 0.0), SameBits(t[14], 0.0), SameBits(t[15], 1.0));
        for (int i = 0; i < 3; ++i) {
            ASSERT_ALL(SameBits(deg[i], p[i]), SameBits(rad[i], p[i]), SameBits(zd[i], p[i]));
            ASSERT_ALL(SameBits(rad[3 + i], a3[i]), SameBits(t3[i], a3[i]),
                       SameBits(deg[3 + i], a3[i] * kRadToDeg), SameBits(zr[3 + i], z3[i]),
                       SameBits(zd[3 + i], z3[i] * kRadToDeg));
            EXPECT_NEAR(deg[3 + i], p[3 + i], 1e-10);
        }
        QZ_XYZABC2Matrix4ARC(rad, t);  // radians back in give the same block
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(t[4 * (i / 3) + i % 3], r[i], 1e-15);
    }
}

// At cos B = 0 only A - C (B = pi/2) or A + C (B = -pi/2) is defined: C = +0, A carries it. The
// band is |cos B| <= 1e-16; the branches are told apart by a matrix whose rows give
// atan2(r21, r22) = 0 on the regular path and atan2(r01, r11) = pi/2 on the singular one.
TEST(Euler, XyzGimbalLockPutsTheTurnIntoA) {
    double r[9], abc[3], pose[6];
    const double in[3] = {0.7, kPi / 2, -0.4};
    QZ_ABC2Matrix3ARC(in, r);  // cos(pi/2) is the sine of exactly 0
    QZ_Matrix2XYZ(r, abc);
    EXPECT_ALL(SameBits(abc[2], 0.0), std::fabs(abc[0] - 1.1) < 1e-15);
    const double s = std::sin(0.3), c = std::cos(0.3);  // B = -pi/2 by hand, A + C = 0.3
    const double t[16] = {0, -s, -c, 10, 0, c, -s, 20, 1, 0, 0, 30, 0, 0, 0, 1};
    QZ_Matrix2XYZABC4DEG_XYZ(t, pose);
    EXPECT_ALL(pose[0] == 10, pose[2] == 30, pose[4] == -kPi / 2, SameBits(pose[5], 0.0));
    EXPECT_NEAR(pose[3], 0.3, 1e-15);
    for (double r00 : {1e-16, -1e-16, NextUp(1e-16)}) {
        const double m[9] = {r00, 1, 0, 0, 0, 0, -1, 0, 1};
        QZ_Matrix2XYZ(m, abc);
        EXPECT_EQ(abc[0], r00 == NextUp(1e-16) ? 0.0 : kPi / 2) << r00;
    }
}

}  // namespace
