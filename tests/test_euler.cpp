// Elementary rotations, XYZ (ABC) and ZYZ Euler angles, XYZABC poses.
#include <Eigen/Dense>
#include <kdl/frames.hpp>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::SameBits;
using qztest::Uniform;
using Mat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
using Mat4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
constexpr double kPi = 3.141592653589793, kRadToDeg = 57.29577951308232;

Mat3 Rot(void (*f)(double, double *), double a) { Mat3 m; f(a, m.data()); return m; }
double MaxDiff(const Mat3 &a, const KDL::Rotation &k) {
    double d = 0;
    for (int i = 0; i < 9; ++i) d = std::max(d, std::fabs(a.data()[i] - k(i / 3, i % 3)));
    return d;
}

TEST(Euler, ElementaryRotationsAreRightHandedWithSignedZeros) {
    const Mat3 rz = Rot(QZ_RotZARC, kPi / 2);
    EXPECT_LT((rz - (Mat3() << 0, -1, 0, 1, 0, 0, 0, 0, 1).finished()).cwiseAbs().maxCoeff(), 1e-16);
    EXPECT_LT((Rot(QZ_RotYARC, kPi / 2) * Eigen::Vector3d::UnitZ() - Eigen::Vector3d::UnitX()).norm(), 1e-16);
    const Mat3 rx = Rot(QZ_RotXARC, 0.0);  // identity, the negated sine being -0
    for (int i = 0; i < 9; ++i) EXPECT_TRUE(SameBits(rx.data()[i], i % 4 ? (i == 5 ? -0.0 : 0.0) : 1.0));
}

// KDL's RPY(roll, pitch, yaw) = Rz(yaw) Ry(pitch) Rx(roll) is XYZ with (A, B, C) = (roll, pitch,
// yaw); KDL's EulerZYZ(alpha, beta, gamma) is ZYZ with (a, b, c) in that order. Away from the
// singular tilts both pick the same principal ranges as this library.
TEST(Euler, BothConventionsRoundTripAndAgreeWithElementaryProductsAndKdl) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        const double x = Uniform(rng, -3.14, 3.14), y = Uniform(rng, -1.55, 1.55),
                     z = Uniform(rng, -3.14, 3.14), b = Uniform(rng, 0.01, 3.13);
        const double abc[3] = {x, y, z};
        Mat3 r, q;
        double got[3], kr, kp, ky;
        QZ_ABC2Matrix3ARC(abc, r.data());
        EXPECT_LT((r - Rot(QZ_RotZARC, z) * Rot(QZ_RotYARC, y) * Rot(QZ_RotXARC, x)).cwiseAbs().maxCoeff(), 4e-16);
        const KDL::Rotation rpy = KDL::Rotation::RPY(x, y, z);
        EXPECT_LT(MaxDiff(r, rpy), 1e-15);
        rpy.GetRPY(kr, kp, ky);
        EXPECT_EQ(QZ_Matrix2XYZ(r.data(), got), 1u);
        EXPECT_NEAR(got[0], x, 1e-13); EXPECT_NEAR(got[1], y, 1e-13); EXPECT_NEAR(got[2], z, 1e-13);
        EXPECT_NEAR(got[0], kr, 1e-13); EXPECT_NEAR(got[1], kp, 1e-13); EXPECT_NEAR(got[2], ky, 1e-13);

        QZ_ZYZ2Matrix(x, b, z, q.data());
        EXPECT_LT((q - Rot(QZ_RotZARC, x) * Rot(QZ_RotYARC, b) * Rot(QZ_RotZARC, z)).cwiseAbs().maxCoeff(), 4e-16);
        const KDL::Rotation zyz = KDL::Rotation::EulerZYZ(x, b, z);
        EXPECT_LT(MaxDiff(q, zyz), 1e-15);
        zyz.GetEulerZYZ(kr, kp, ky);
        ASSERT_EQ(QZ_Matrix2ZYZ(q.data(), got), 1u) << n;
        EXPECT_NEAR(got[0], x, 1e-11); EXPECT_NEAR(got[1], b, 1e-13); EXPECT_NEAR(got[2], z, 1e-11);
        EXPECT_NEAR(got[0], kr, 1e-11); EXPECT_NEAR(got[1], kp, 1e-13); EXPECT_NEAR(got[2], ky, 1e-11);
    }
}

// Every pose and transform form is the rotation form plus the position; the XYZ extraction pair
// answers in degrees from the ARC name and in radians from the DEG name.
TEST(Euler, PoseFormsShareTheRotationFormsAndUnits) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 300; ++n) {
        const double p[6] = {Uniform(rng, -2e3, 2e3), Uniform(rng, -2e3, 2e3), Uniform(rng, -2e3, 2e3),
                             Uniform(rng, -180, 180), Uniform(rng, -89, 89), Uniform(rng, -180, 180)};
        double t[16], r[9], rc[9], rad[6], deg[6], zr[6], zd[6], a3[3], z3[3];
        QZ_XYZABC2Matrix4DEG(p, t);
        QZ_ABC2Matrix3DEG(p + 3, r);
        QZ_CALC_TRANS_FROM_Rotxyz(p + 3, rc);
        for (int i = 0; i < 9; ++i) EXPECT_TRUE(SameBits(t[4 * (i / 3) + i % 3], r[i]) && SameBits(rc[i], r[i]));
        EXPECT_TRUE(SameBits(t[12], 0.0) && SameBits(t[14], 0.0) && SameBits(t[15], 1.0));
        EXPECT_EQ(QZ_Matrix2XYZABC4ARC_XYZ(t, deg) + QZ_Matrix2XYZABC4DEG_XYZ(t, rad), 2u);
        QZ_Matrix2XYZ(r, a3);
        EXPECT_EQ(QZ_Matrix2XYZABC4ARC_ZYZ(t, zr) + QZ_Matrix2XYZABC4DEG_ZYZ(t, zd), 2u);
        EXPECT_EQ(QZ_Matrix2ZYZ(r, z3), 1u);
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(SameBits(deg[i], p[i]) && SameBits(rad[i], p[i]) && SameBits(zd[i], p[i]));
            EXPECT_TRUE(SameBits(rad[3 + i], a3[i]) && SameBits(deg[3 + i], a3[i] * kRadToDeg));
            EXPECT_TRUE(SameBits(zr[3 + i], z3[i]) && SameBits(zd[3 + i], z3[i] * kRadToDeg));
            EXPECT_NEAR(deg[3 + i], p[3 + i], 1e-10);
        }
        QZ_XYZABC2Matrix4ARC(rad, t);  // radians back in gives the same block
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(t[4 * (i / 3) + i % 3], r[i], 1e-15);
    }
}

// At cos B = 0 only A - C (B = pi/2) or A + C (B = -pi/2) is defined: C = +0, A carries it.
// The band is |cos B| <= 1e-16; the branches are told apart by a matrix whose rows give
// atan2(r21, r22) = 0 on the regular path and atan2(r01, r11) = pi/2 on the singular one.
TEST(Euler, XyzGimbalLockPutsTheTurnIntoA) {
    double r[9], abc[3], pose[6];
    const double in[3] = {0.7, kPi / 2, -0.4};
    QZ_ABC2Matrix3ARC(in, r);  // cos(pi/2) is the sine of exactly 0
    QZ_Matrix2XYZ(r, abc);
    EXPECT_TRUE(SameBits(abc[2], 0.0));
    EXPECT_NEAR(abc[0], 1.1, 1e-15);
    const double phi = 0.3;  // B = -pi/2 by hand, A + C = phi
    const double t[16] = {0, -std::sin(phi), -std::cos(phi), 10, 0, std::cos(phi), -std::sin(phi), 20,
                          1, 0, 0, 30, 0, 0, 0, 1};
    QZ_Matrix2XYZABC4DEG_XYZ(t, pose);
    EXPECT_TRUE(pose[0] == 10 && pose[2] == 30 && pose[4] == -kPi / 2 && SameBits(pose[5], 0.0));
    EXPECT_NEAR(pose[3], phi, 1e-15);
    auto a = [&](double r00) {
        const double m[9] = {r00, 1, 0, 0, 0, 0, -1, 0, 1};
        QZ_Matrix2XYZ(m, abc);
        return abc[0];
    };
    EXPECT_EQ(a(1e-16), kPi / 2);
    EXPECT_EQ(a(-1e-16), kPi / 2);
    EXPECT_EQ(a(qztest::NextUp(1e-16)), 0.0);
}

// Within half a degree of b = 0 the z turns merge: a = 0, c = a + c, result 0. b is never
// negative (a and c turn by half a turn instead) and b near pi is regular.
TEST(Euler, ZyzSmallTiltIsSingularAndBIsNeverNegative) {
    double r[9], abc[3];
    const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(QZ_Matrix2ZYZ(id, abc), 0u);
    EXPECT_TRUE(SameBits(abc[0], 0.0) && SameBits(abc[1], 0.0) && SameBits(abc[2], -0.0));
    QZ_ZYZ2Matrix(0.3, 0.005, 0.5, r);
    EXPECT_EQ(QZ_Matrix2ZYZ(r, abc), 0u);
    EXPECT_TRUE(SameBits(abc[0], 0.0) && std::fabs(abc[2] - 0.8) < 2e-5);
    QZ_ZYZ2Matrix(0.3, -0.4, 0.5, r);
    EXPECT_EQ(QZ_Matrix2ZYZ(r, abc), 1u);
    EXPECT_TRUE(std::fabs(abc[0] - (0.3 - kPi)) < 1e-15 && std::fabs(abc[1] - 0.4) < 1e-15 &&
                std::fabs(abc[2] - (0.5 - kPi)) < 1e-15);
    QZ_ZYZ2Matrix(0.3, kPi - 0.001, 0.5, r);
    EXPECT_EQ(QZ_Matrix2ZYZ(r, abc), 1u);
    EXPECT_NEAR(abc[0], 0.3, 1e-12);

    // Tilts about y land b on the doubles around the threshold, which itself is regular.
    const double th = 0.008726646259971648;
    bool sawAt = false, sawBelow = false;
    double t = qztest::NextDown(qztest::NextDown(th));
    for (int k = 0; k < 40; ++k, t = qztest::NextUp(t)) {
        QZ_RotYARC(t, r);
        const uint32_t flag = QZ_Matrix2ZYZ(r, abc);
        EXPECT_EQ(flag, abc[1] < th ? 0u : 1u) << abc[1];
        sawAt |= abc[1] == th;
        sawBelow |= abc[1] == qztest::NextDown(th);
    }
    EXPECT_TRUE(sawAt && sawBelow);

    // The pose forms stop there: no position, and the DEG form leaves b and c in radians.
    QZ_ZYZ2Matrix(0.0, 0.004, 0.25, r);
    const double tf[16] = {r[0], r[1], r[2], 1, r[3], r[4], r[5], 2, r[6], r[7], r[8], 3, 0, 0, 0, 1};
    double pose[6] = {-1, -2, -3, -4, -5, -6}, poseRad[6] = {-1, -2, -3, -4, -5, -6};
    EXPECT_EQ(QZ_Matrix2XYZABC4DEG_ZYZ(tf, pose) + QZ_Matrix2XYZABC4ARC_ZYZ(tf, poseRad), 0u);
    EXPECT_TRUE(pose[0] == -1 && pose[1] == -2 && pose[2] == -3 && SameBits(pose[3], 0.0));
    EXPECT_NEAR(pose[4], 0.004, 1e-15);
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(SameBits(poseRad[i], pose[i])) << i;
}

TEST(Euler, XyzMRotTurnsAboutOwnZAndKeepsOrigin) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 200; ++n) {
        const double p[6] = {Uniform(rng, -9, 9), Uniform(rng, -9, 9), Uniform(rng, -9, 9),
                             Uniform(rng, -3, 3), Uniform(rng, -1.5, 1.5), Uniform(rng, -3, 3)};
        const double th = Uniform(rng, -3, 3);
        Mat4 t, out, rz = Mat4::Identity();
        QZ_XYZABC2Matrix4ARC(p, t.data());
        QZ_XYZMRot(t.data(), std::cos(th), std::sin(th), out.data());
        rz.topLeftCorner<3, 3>() = Rot(QZ_RotZARC, th);
        EXPECT_LT((out - t * rz).cwiseAbs().maxCoeff(), 1e-14) << n;
        EXPECT_EQ(out.col(3), t.col(3));
    }
    double t[16], out[16];  // c = 1, s = 0 copies, and rewrites a bottom row that was not 0 0 0 1
    for (int i = 0; i < 16; ++i) t[i] = i + 0.5;
    QZ_XYZMRot(t, 1.0, 0.0, out);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(out[i], t[i]) << i;
    EXPECT_TRUE(SameBits(out[12], 0.0) && SameBits(out[15], 1.0));
}

}  // namespace
