// Conversions: quaternion <-> matrix round trips and composition, Eigen as a peer, the four
// matrix-to-quaternion forms with their ties, and the pose helpers.
#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

constexpr double kEps = 2.220446049250313e-16;

void RandomUnitQuat(std::mt19937_64 &rng, double *q) {
    std::normal_distribution<double> g;
    double n = 0.0;
    for (int i = 0; i < 4; ++i) {
        q[i] = g(rng);
        n += q[i] * q[i];
    }
    n = std::sqrt(n);
    for (int i = 0; i < 4; ++i) q[i] /= n;
}

Eigen::Quaterniond ToEigen(const double *q) { return Eigen::Quaterniond(q[3], q[0], q[1], q[2]); }

// q == sign * ref component-wise within tol, for the sign that matches best.
::testing::AssertionResult SameUpToSign(const double *q, const double *ref, double tol) {
    const double sign = (q[0] * ref[0] + q[1] * ref[1] + q[2] * ref[2] + q[3] * ref[3]) < 0 ? -1 : 1;
    for (int i = 0; i < 4; ++i) {
        if (!(std::fabs(q[i] - sign * ref[i]) <= tol)) {
            return ::testing::AssertionFailure() << "component " << i << ": " << q[i] << " vs "
                                                 << sign * ref[i];
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(QuaternionMatrix, RoundTripKeepsTheQuaternionUpToSign) {
    auto rng = qztest::Rng();
    int negated = 0;
    for (int n = 0; n < 2000; ++n) {
        double q[4], r[9], back[4];
        RandomUnitQuat(rng, q);
        QZ_Quaternion2Matrix3(q, r);
        QZ_Matrix2Quaternion3(r, back);
        ASSERT_TRUE(SameUpToSign(back, q, 8 * kEps)) << "case " << n;
        const bool flipped = back[0] * q[0] + back[1] * q[1] + back[2] * q[2] + back[3] * q[3] < 0;
        // A positive trace always comes back with w > 0; elsewhere the sign follows the axis.
        if (r[0] + r[4] + r[8] > 0.0) EXPECT_EQ(flipped, q[3] < 0);
        negated += flipped;
    }
    EXPECT_GT(negated, 0);  // the draw reached the sign change of the branches
}

TEST(QuaternionMatrix, AgreesWithEigenInBothDirections) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        double q[4], r[9], back[4], r4[16];
        RandomUnitQuat(rng, q);
        QZ_Quaternion2Matrix3(q, r);
        QZ_Quaternion2Matrix4(q, r4);
        const Eigen::Matrix3d e = ToEigen(q).toRotationMatrix();
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                EXPECT_NEAR(r[3 * i + j], e(i, j), 4 * kEps) << "case " << n;
                EXPECT_TRUE(SameBits(r4[4 * i + j], r[3 * i + j]));
            }
        }
        // From Eigen's matrix back: Eigen picks its own form, so agree up to sign.
        double em[9];
        for (int i = 0; i < 9; ++i) em[i] = e(i / 3, i % 3);
        QZ_Matrix2Quaternion3(em, back);
        const Eigen::Quaterniond eq(e);
        const double ref[4] = {eq.x(), eq.y(), eq.z(), eq.w()};
        EXPECT_TRUE(SameUpToSign(back, ref, 8 * kEps)) << "case " << n;
    }
}

TEST(QuaternionMatrix, MatrixOfAProductIsTheProductOfTheMatrices) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double a[4], b[4], ab[4], ra[9], rb[9], rab[9];
        RandomUnitQuat(rng, a);
        RandomUnitQuat(rng, b);
        QZ_QuatMult(a, b, ab);
        QZ_Quaternion2Matrix3(a, ra);
        QZ_Quaternion2Matrix3(b, rb);
        QZ_Quaternion2Matrix3(ab, rab);
        const Eigen::Matrix3d prod =
            Eigen::Map<Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(ra) *
            Eigen::Map<Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(rb);
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(rab[i], prod(i / 3, i % 3), 16 * kEps);
    }
}

// Which of the four forms ran is told by the component set to 0.25 S, which is positive and
// exact; the test matrices are not rotations so that the forms give different results.
TEST(Matrix2Quaternion, TakesTheFourFormsWithTiesToTheLater) {
    double q[4];
    const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    QZ_Matrix2Quaternion3(id, q);
    EXPECT_EQ(q[3], 1.0);
    EXPECT_EQ(q[0], 0.0);

    const double dx[9] = {1, 0, 0, 0, -1, 0, 0, 0, -1};
    const double dy[9] = {-1, 0, 0, 0, 1, 0, 0, 0, -1};
    const double dz[9] = {-1, 0, 0, 0, -1, 0, 0, 0, 1};
    const double *diag[3] = {dx, dy, dz};
    for (int axis = 0; axis < 3; ++axis) {
        QZ_Matrix2Quaternion3(diag[axis], q);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(q[i], i == axis ? 1.0 : 0.0) << axis << " " << i;
    }

    // Trace exactly 0 with equal diagonal: the last form.
    const double cyc[9] = {0, 0, 1, 1, 0, 0, 0, 1, 0};
    QZ_Matrix2Quaternion3(cyc, q);
    for (double v : q) EXPECT_EQ(v, 0.5);

    const double h = std::sqrt(3.0) / 2;  // 0.25 S for S = 2 sqrt(3)
    // r00 = r11 > r22: second axis form.
    const double t01[9] = {0.5, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, -2};
    QZ_Matrix2Quaternion3(t01, q);
    EXPECT_EQ(q[1], h);
    EXPECT_NE(q[0], h);
    // r00 = r22 > r11 and r11 = r22 > r00: third axis form.
    const double t02[9] = {0.5, 0.1, 0.2, 0.3, -2, 0.6, -0.4, 0.7, 0.5};
    QZ_Matrix2Quaternion3(t02, q);
    EXPECT_EQ(q[2], h);
    const double t12[9] = {-2, 0.1, 0.2, 0.3, 0.5, 0.6, -0.4, 0.7, 0.5};
    QZ_Matrix2Quaternion3(t12, q);
    EXPECT_EQ(q[2], h);

    // The trace test is strict: one ulp above zero takes the first form, zero and below do not.
    double t[9] = {0.5, 0, 0, 0, 0.5, 0, 0, 0, NextUp(-1.0)};
    QZ_Matrix2Quaternion3(t, q);
    EXPECT_EQ(q[3], 0.5);
    EXPECT_EQ(q[1], 0.0);
    for (double r22 : {-1.0, NextDown(-1.0)}) {
        t[8] = r22;
        QZ_Matrix2Quaternion3(t, q);
        EXPECT_NEAR(q[1], std::sqrt(0.5), kEps) << r22;
        EXPECT_EQ(q[3], 0.0) << r22;
    }
}

TEST(Matrix2Quaternion, ReadsOnlyTheRotationBlockOfATransform) {
    const double q0[4] = {0.2, -0.4, 0.4, 0.8};
    double m[16], q[4], q3[4], r[9];
    QZ_Quaternion2Matrix3(q0, r);
    for (int i = 0; i < 16; ++i) m[i] = 1e300;  // junk outside the rotation block
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) m[4 * i + j] = r[3 * i + j];
    QZ_Matrix2Quaternion4(m, q);
    QZ_Matrix2Quaternion3(r, q3);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(SameBits(q[i], q3[i]));
}

TEST(Quaternion2Matrix4, PadsWithZerosIncludingElement15) {
    const double id[4] = {0, 0, 0, 1};
    double m[16];
    for (double &v : m) v = 7.0;
    QZ_Quaternion2Matrix4(id, m);
    for (int i = 0; i < 16; ++i) {
        const bool diag = i == 0 || i == 5 || i == 10;
        EXPECT_EQ(m[i], diag ? 1.0 : 0.0) << i;
    }
}

TEST(PosQuat, TransformRoundTripAndNormalisingForm) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 500; ++n) {
        double q[4], m[16], pose[7], back[16];
        RandomUnitQuat(rng, q);
        QZ_Quaternion2Matrix4(q, m);
        m[3] = qztest::Uniform(rng, -2, 2);
        m[7] = qztest::Uniform(rng, -2, 2);
        m[11] = qztest::Uniform(rng, -2, 2);
        m[15] = 1.0;
        QZ_Matrix2PosQuat(m, pose);
        QZ_PosQuat2Matrix(pose, back);
        for (int i = 0; i < 16; ++i) {
            if (i == 3 || i == 7 || i == 11 || i >= 12) {
                EXPECT_TRUE(SameBits(back[i], m[i])) << i;
            } else {
                EXPECT_NEAR(back[i], m[i], 8 * kEps) << i;
            }
        }
        // Scaled quaternion: the normalising form rewrites the pose and builds the same transform
        // as the plain form does from the rewritten pose.
        const double k = qztest::Uniform(rng, 0.1, 10.0);
        double scaled[7] = {pose[0], pose[1], pose[2], k * pose[3], k * pose[4], k * pose[5], k * pose[6]};
        double un[16], plain[16];
        EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(scaled, un), 1u);
        EXPECT_NEAR(QZ_QuaternionSqrtNorm(scaled + 3), 1.0, 2 * kEps);
        QZ_PosQuat2Matrix(scaled, plain);
        for (int i = 0; i < 16; ++i) EXPECT_TRUE(SameBits(un[i], plain[i]));
    }
}

TEST(PosQuat, NormalisingFormWithShortQuaternions) {
    double pose[7] = {1, 2, 3, 0, 0, 0, 2}, m[16];
    EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(pose, m), 1u);
    EXPECT_EQ(pose[6], 1.0);
    const double expect[16] = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], expect[i]) << i;

    // Too short to normalise: the pose stays, and a zero quaternion still yields the identity.
    double zero[7] = {1, 2, 3, 0, 0, 0, 0};
    EXPECT_EQ(QZ_PosQuat2Matrix_UnNorm(zero, m), 1u);
    for (int i = 3; i < 7; ++i) EXPECT_TRUE(SameBits(zero[i], 0.0));
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], expect[i]) << i;
}

TEST(XYZABC2XYZQ, BuildsTheNormalisedQuaternionInPlace) {
    const double s = std::sqrt(0.5);
    double b0[8] = {1, 2, 3, 0, 0, 0, 9, 9};
    EXPECT_EQ(QZ_XYZABC2XYZQ(b0), 1u);
    const double e0[8] = {1, 2, 3, 0, 0, 0, 1, 0};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(b0[i], e0[i]) << i;

    double bA[8] = {0, 0, 0, 90, 0, 0, 9, 9};
    EXPECT_EQ(QZ_XYZABC2XYZQ(bA), 1u);
    EXPECT_NEAR(bA[3], s, kEps);
    EXPECT_NEAR(bA[4], 0.0, kEps);
    EXPECT_NEAR(bA[5], 0.0, kEps);
    EXPECT_NEAR(bA[6], s, kEps);
    double bC[8] = {0, 0, 0, 0, 0, 90, 9, 9};
    EXPECT_EQ(QZ_XYZABC2XYZQ(bC), 1u);
    EXPECT_NEAR(bC[5], s, kEps);
    EXPECT_NEAR(bC[6], s, kEps);
    EXPECT_EQ(bC[7], 0.0);

    // R = Rz(C) Ry(B) Rx(A), compared with Eigen's composition of elementary rotations.
    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double buf[8] = {0.5, -1, 2};
        for (int i = 3; i < 6; ++i) buf[i] = qztest::Uniform(rng, -180, 180);
        const double d2r = 0.017453292519943295;
        const Eigen::Quaterniond e(Eigen::AngleAxisd(buf[5] * d2r, Eigen::Vector3d::UnitZ()) *
                                   Eigen::AngleAxisd(buf[4] * d2r, Eigen::Vector3d::UnitY()) *
                                   Eigen::AngleAxisd(buf[3] * d2r, Eigen::Vector3d::UnitX()));
        ASSERT_EQ(QZ_XYZABC2XYZQ(buf), 1u);
        const double ref[4] = {e.x(), e.y(), e.z(), e.w()};
        EXPECT_TRUE(SameUpToSign(buf + 3, ref, 16 * kEps)) << "case " << n;
        EXPECT_EQ(buf[0], 0.5);
        EXPECT_EQ(buf[7], 0.0);
    }
}

}  // namespace
