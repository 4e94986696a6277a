// Rotation vectors: round trips below and beyond a half turn against Eigen's AngleAxis, the angle
// floors, half turns, and the composition and relative rotation built on them.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

void RandomRotVec(std::mt19937_64 &rng, double angle, double *r) {
    std::normal_distribution<double> g;
    const Eigen::Vector3d k = Eigen::Vector3d(g(rng), g(rng), g(rng)).normalized();
    for (int i = 0; i < 3; ++i) r[i] = angle * k[i];
}

double Len(const double *r) { return std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]); }

// The angle back from a matrix is an arc cosine and the axis is divided by its sine, so the
// error grows like eps / sin^2 towards a half turn.
double Tol(double angle) { return 8 * kEps / (std::sin(angle) * std::sin(angle)) + 16 * kEps; }

TEST(AxisAngle, RoundTripsAgreeWithEigenAndFoldBeyondAHalfTurn) {
    auto rng = Rng();
    for (int n = 0; n < 2000; ++n) {
        const double angle = Uniform(rng, 1e-6, 2 * M_PI - 1e-3);
        if (std::fabs(angle - M_PI) < 1e-3) continue;
        double r[3], R[9], back[3];
        RandomRotVec(rng, angle, r);
        axis_angle_to_rotmat(r, R);
        const Eigen::Vector3d v(r[0], r[1], r[2]);
        const Eigen::Matrix3d e = Eigen::AngleAxisd(v.norm(), v.normalized()).toRotationMatrix();
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(R[i], e(i / 3, i % 3), 4 * kEps) << "case " << n;
        // Beyond pi the same rotation comes back the short way: 2 pi - angle about -axis.
        rotmat_to_axis_angle(R, back);
        const double scale = angle < M_PI ? 1.0 : (angle - 2 * M_PI) / angle;
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(back[i], scale * r[i], Tol(angle)) << "case " << n;
    }
}

TEST(AxisAngle, AngleFloors) {
    double R[9], r3[3];
    const double atFloor[3] = {1e-10, 0, 0};  // at the floor Rodrigues' formula runs
    axis_angle_to_rotmat(atFloor, R);
    EXPECT_EQ(R[7], std::sin(1e-10));
    const double below[3] = {0, NextDown(1e-10), 0};
    axis_angle_to_rotmat(below, R);
    for (int i = 0; i < 9; ++i) EXPECT_TRUE(SameBits(R[i], i % 4 == 0 ? 1.0 : 0.0)) << i;
    // A turn too small to move the trace off 3 has no axis; from about 1.5e-8 it has.
    for (const double a : {0.0, 1e-8, 1e-7}) {
        const double r[3] = {0, 0, a};
        axis_angle_to_rotmat(r, R);
        rotmat_to_axis_angle(R, r3);
        EXPECT_TRUE(SameBits(r3[0], 0.0));
        EXPECT_NEAR(r3[2], a < 1e-7 ? 0.0 : a, 1e-9) << a;
    }
}

// Near and at a half turn the axis comes from the symmetric part: accurate up to pi, and a
// symmetric half-turn matrix still gives pi times its axis rather than no rotation.
TEST(AxisAngle, HalfTurnsTakeTheAxisFromTheSymmetricPart) {
    const double h[9] = {0, 1, 0, 1, 0, 0, 0, 0, -1};  // about (1, 1, 0) / sqrt 2
    double r[3];
    rotmat_to_axis_angle(h, r);
    EXPECT_NEAR(r[0], M_PI * std::sqrt(0.5), 4 * kEps);
    EXPECT_NEAR(r[1], M_PI * std::sqrt(0.5), 4 * kEps);
    EXPECT_EQ(r[2], 0.0);

    auto rng = Rng();
    for (int n = 0; n < 3000; ++n) {
        double k[3], R[9];
        RandomRotVec(rng, 1.0, k);
        // Symmetric 2 k k^T - I (trace either side of -1), Rodrigues half turns, and turns up to
        // 2e-5 short of pi, across the edge of the band.
        const double d = n % 3 == 2 ? Uniform(rng, 0.0, 2e-5) : 0.0;
        if (n % 3 == 0) {
            for (int i = 0; i < 9; ++i) R[i] = 2 * k[i / 3] * k[i % 3] - (i % 4 == 0);
        } else {
            const double rv[3] = {(M_PI - d) * k[0], (M_PI - d) * k[1], (M_PI - d) * k[2]};
            axis_angle_to_rotmat(rv, R);
        }
        rotmat_to_axis_angle(R, r);
        const double sign = d == 0.0 && r[0] * k[0] + r[1] * k[1] + r[2] * k[2] < 0 ? -1.0 : 1.0;
        const bool quotient = d > 0.9e-5;  // beyond the band, with the quotient's errors
        const double len = Len(r);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(r[i], sign * (M_PI - d) * k[i], quotient ? 16 * kEps / (d * d) : 1e-7)
                << "case " << n << " short by " << d;
            EXPECT_NEAR(r[i] / len, sign * k[i], quotient ? 64 * kEps / d : 1e-13) << "case " << n;
        }
    }
}

// Outside the half-turn band the result is the plain quotient, bit for bit.
TEST(AxisAngle, AwayFromAHalfTurnTheQuotientIsKept) {
    auto rng = Rng();
    for (int n = 0; n < 2000; ++n) {
        double rv[3], R[9], r[3];
        RandomRotVec(rng, n < 1000 ? Uniform(rng, 1e-3, 3.14) : M_PI - Uniform(rng, 1.001e-5, 2e-5), rv);
        axis_angle_to_rotmat(rv, R);
        rotmat_to_axis_angle(R, r);
        const double theta = std::acos((R[0] + R[4] + R[8] - 1.0) * 0.5);
        ASSERT_LT(theta, M_PI - 1e-5);
        const double s2 = 2.0 * std::sin(theta);
        EXPECT_TRUE(SameBits(r[0], theta * (R[7] - R[5]) / s2)) << "case " << n;
        EXPECT_TRUE(SameBits(r[1], theta * (R[2] - R[6]) / s2)) << "case " << n;
        EXPECT_TRUE(SameBits(r[2], theta * (R[3] - R[1]) / s2)) << "case " << n;
    }
}

TEST(AngleMultAndRelative, ComposeAndDifferRotations) {
    const double a[3] = {0, 0, 0.3}, b[3] = {0, 0, 0.4}, c[3] = {0, 0, 0.5}, zero[3] = {0, 0, 0};
    double out[3];
    AngleMult(a, b, out);
    EXPECT_NEAR(out[2], 0.7, 4 * kEps);
    relative_Angle(a, c, out);
    EXPECT_NEAR(out[2], 0.2, 4 * kEps);

    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double r1[3], r2[3], R1[9], R2[9], Rrel[9], same[9];
        RandomRotVec(rng, Uniform(rng, 0.01, 3.0), r1);
        RandomRotVec(rng, Uniform(rng, 0.01, 3.0), r2);
        AngleMult(zero, r1, out);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], r1[i], Tol(Len(r1))) << "case " << n;
        // r2 first, then r1, in the fixed frame.
        const Eigen::Vector3d v1(r1[0], r1[1], r1[2]), v2(r2[0], r2[1], r2[2]);
        const Eigen::AngleAxisd ref(Eigen::AngleAxisd(v1.norm(), v1.normalized()) *
                                    Eigen::AngleAxisd(v2.norm(), v2.normalized()));
        AngleMult(r1, r2, out);
        if (ref.angle() > 1e-2 && ref.angle() < M_PI - 1e-2)
            for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], ref.angle() * ref.axis()[i], 4 * Tol(ref.angle()));
        // Ra Rrel = Rb; R relative to itself is the identity.
        axis_angle_to_rotmat(r1, R1);
        axis_angle_to_rotmat(r2, R2);
        relative_rotation(R1, R2, Rrel);
        relative_rotation(R1, R1, same);
        using RowMat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
        const RowMat3 prod = Eigen::Map<RowMat3>(R1) * Eigen::Map<RowMat3>(Rrel);
        for (int i = 0; i < 9; ++i) {
            EXPECT_NEAR(prod(i / 3, i % 3), R2[i], 16 * kEps);
            EXPECT_NEAR(same[i], i % 4 == 0 ? 1.0 : 0.0, 8 * kEps);
        }
        relative_Angle(r1, r1, out);
        EXPECT_LT(Len(out), 1e-7);
    }
}

}  // namespace
