// Rotation vectors: round trips below and beyond a half turn, agreement with Eigen's AngleAxis,
// the angle floors, half turns, and the composition and relative rotation built on them.
#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::SameBits;

constexpr double kEps = 2.220446049250313e-16;

using RowMat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

// Random rotation vector with a uniformly drawn direction and the given angle.
void RandomRotVec(std::mt19937_64 &rng, double angle, double *r) {
    std::normal_distribution<double> g;
    Eigen::Vector3d k(g(rng), g(rng), g(rng));
    k.normalize();
    for (int i = 0; i < 3; ++i) r[i] = angle * k[i];
}

double Len(const double *r) { return std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]); }

// Tolerance of a rotation vector of the given angle recovered from a matrix: the angle is an arc
// cosine and the axis is divided by its sine, so the error grows like eps / sin^2 towards pi.
double Tol(double angle) {
    const double s = std::sin(angle);
    return 8 * kEps / (s * s) + 16 * kEps;
}

TEST(AxisAngle, RoundTripsBelowAHalfTurnAndFoldsBeyondIt) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        const double angle = qztest::Uniform(rng, 1e-6, 2 * M_PI - 1e-3);
        if (std::fabs(angle - M_PI) < 1e-3) continue;
        double r[3], R[9], back[3];
        RandomRotVec(rng, angle, r);
        axis_angle_to_rotmat(r, R);
        rotmat_to_axis_angle(R, back);
        // Beyond pi the same rotation comes back the short way: 2 pi - angle about -axis.
        const double scale = angle < M_PI ? 1.0 : (angle - 2 * M_PI) / angle;
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(back[i], scale * r[i], Tol(angle)) << "case " << n;
    }
}

TEST(AxisAngle, AgreesWithEigenAngleAxis) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        const double angle = qztest::Uniform(rng, 0.01, M_PI - 0.01);
        double r[3], R[9], back[3];
        RandomRotVec(rng, angle, r);
        axis_angle_to_rotmat(r, R);
        const Eigen::Vector3d v(r[0], r[1], r[2]);
        const Eigen::Matrix3d e = Eigen::AngleAxisd(v.norm(), v.normalized()).toRotationMatrix();
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(R[i], e(i / 3, i % 3), 4 * kEps) << "case " << n;

        // Back from Eigen's matrix, against Eigen's own extraction.
        RowMat3 em = e;
        rotmat_to_axis_angle(em.data(), back);
        const Eigen::AngleAxisd aa(e);
        const Eigen::Vector3d ref = aa.angle() * aa.axis();
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(back[i], ref[i], Tol(angle)) << "case " << n;
    }
}

TEST(AxisAngle, QuarterTurnAboutZ) {
    const double r[3] = {0, 0, M_PI / 2};
    double R[9], back[3];
    axis_angle_to_rotmat(r, R);
    const double expect[9] = {0, -1, 0, 1, 0, 0, 0, 0, 1};
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(R[i], expect[i], kEps) << i;
    rotmat_to_axis_angle(R, back);
    EXPECT_EQ(back[0], 0.0);
    EXPECT_EQ(back[1], 0.0);
    EXPECT_NEAR(back[2], M_PI / 2, 2 * kEps);
}

TEST(AxisAngle, AngleFloors) {
    double R[9], r3[3];
    const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    // Exactly at the floor Rodrigues' formula runs; one ulp below gives the identity.
    const double atFloor[3] = {1e-10, 0, 0};
    axis_angle_to_rotmat(atFloor, R);
    EXPECT_EQ(R[7], std::sin(1e-10));
    EXPECT_EQ(R[5], -std::sin(1e-10));
    for (const double x : {NextDown(1e-10), 0.0}) {
        const double below[3] = {0, x, 0};
        for (double &v : R) v = 7.0;
        axis_angle_to_rotmat(below, R);
        for (int i = 0; i < 9; ++i) EXPECT_TRUE(SameBits(R[i], id[i])) << x << " " << i;
    }

    // The identity, and a turn too small to move the trace off 3, have no axis.
    for (const double a : {0.0, 1e-8}) {
        const double r[3] = {0, 0, a};
        axis_angle_to_rotmat(r, R);
        for (double &v : r3) v = 7.0;
        rotmat_to_axis_angle(R, r3);
        for (double v : r3) EXPECT_TRUE(SameBits(v, 0.0)) << a;
    }
    // From about 1.5e-8 the trace moves and the axis is found.
    const double small[3] = {0, 0, 1e-7};
    axis_angle_to_rotmat(small, R);
    rotmat_to_axis_angle(R, r3);
    EXPECT_NEAR(r3[2], 1e-7, 1e-9);
}

// Half turns and their neighbourhood take the axis from the symmetric part of the matrix: the
// result keeps its accuracy up to and at pi, and symmetric half-turn matrices (whose
// antisymmetric part is exactly zero) still give pi times their axis.
TEST(AxisAngle, HalfTurnsTakeTheAxisFromTheSymmetricPart) {
    const double s = std::sqrt(0.5);
    const double h[9] = {0, 1, 0, 1, 0, 0, 0, 0, -1};  // about (1, 1, 0) / sqrt 2
    double r[3];
    rotmat_to_axis_angle(h, r);
    EXPECT_NEAR(r[0], M_PI * s, 4 * kEps);
    EXPECT_NEAR(r[1], M_PI * s, 4 * kEps);
    EXPECT_EQ(r[2], 0.0);
    const double dz[9] = {-1, 0, 0, 0, -1, 0, 0, 0, 1};
    rotmat_to_axis_angle(dz, r);
    EXPECT_EQ(r[0], 0.0);
    EXPECT_EQ(r[1], 0.0);
    EXPECT_EQ(r[2], M_PI);

    auto rng = qztest::Rng();
    for (int n = 0; n < 3000; ++n) {
        double k[3], R[9];
        RandomRotVec(rng, 1.0, k);
        // Symmetric 2 k k^T - I (its trace rounds either side of -1), exact Rodrigues half turns,
        // and turns up to 2e-5 short of pi.
        const double d = n % 3 == 2 ? qztest::Uniform(rng, 0.0, 2e-5) : 0.0;
        if (n % 3 == 0) {
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j) R[3 * i + j] = 2 * k[i] * k[j] - (i == j);
        } else {
            const double rv[3] = {(M_PI - d) * k[0], (M_PI - d) * k[1], (M_PI - d) * k[2]};
            axis_angle_to_rotmat(rv, R);
        }
        rotmat_to_axis_angle(R, r);
        // At pi either sign is the same rotation; short of it the sign must be kept.
        const double sign = d == 0.0 && r[0] * k[0] + r[1] * k[1] + r[2] * k[2] < 0 ? -1.0 : 1.0;
        // The angle is an arc cosine near -1: its error is about 1e-16 / (pi - angle).
        // Beyond the band the plain quotient runs, with its larger errors.
        const bool quotient = d > 0.9e-5;
        const double tol = quotient ? 16 * kEps / (d * d) : 1e-7;
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(r[i], sign * (M_PI - d) * k[i], tol) << "case " << n << " short by " << d;
        }
        // The direction is far better than the length.
        const double len = Len(r);
        const double dirTol = quotient ? 64 * kEps / d : 1e-13;
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(r[i] / len, sign * k[i], dirTol) << "case " << n;
    }
}

// Outside the half-turn band the result is the plain quotient, bit for bit.
TEST(AxisAngle, AwayFromAHalfTurnTheQuotientIsKept) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 2000; ++n) {
        double rv[3], R[9], r[3];
        const double angle = n < 1000 ? qztest::Uniform(rng, 1e-3, M_PI - 1e-3)
                                      : M_PI - qztest::Uniform(rng, 1.001e-5, 2e-5);
        RandomRotVec(rng, angle, rv);
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

TEST(AngleMult, ComposesSecondArgumentFirst) {
    const double a[3] = {0, 0, 0.3}, b[3] = {0, 0, 0.4}, zero[3] = {0, 0, 0};
    double out[3];
    AngleMult(a, b, out);
    EXPECT_NEAR(out[2], 0.7, 4 * kEps);

    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double r1[3], r2[3];
        RandomRotVec(rng, qztest::Uniform(rng, 0.01, 3.0), r1);
        RandomRotVec(rng, qztest::Uniform(rng, 0.01, 3.0), r2);
        AngleMult(r1, zero, out);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], r1[i], Tol(Len(r1))) << "case " << n;
        AngleMult(zero, r1, out);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], r1[i], Tol(Len(r1))) << "case " << n;

        const Eigen::Vector3d v1(r1[0], r1[1], r1[2]), v2(r2[0], r2[1], r2[2]);
        const Eigen::AngleAxisd ref(Eigen::AngleAxisd(v1.norm(), v1.normalized()) *
                                    Eigen::AngleAxisd(v2.norm(), v2.normalized()));
        if (ref.angle() > M_PI - 1e-2 || ref.angle() < 1e-2) continue;
        AngleMult(r1, r2, out);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(out[i], ref.angle() * ref.axis()[i], 4 * Tol(ref.angle())) << "case " << n;
        }
    }
}

TEST(RelativeRotation, IsTheRotationFromAToBInFrameA) {
    auto rng = qztest::Rng();
    for (int n = 0; n < 1000; ++n) {
        double ra[3], rb[3], Ra[9], Rb[9], Rrel[9], back[9], same[9], out[3];
        RandomRotVec(rng, qztest::Uniform(rng, 0.0, 3.0), ra);
        RandomRotVec(rng, qztest::Uniform(rng, 0.0, 3.0), rb);
        axis_angle_to_rotmat(ra, Ra);
        axis_angle_to_rotmat(rb, Rb);
        relative_rotation(Ra, Rb, Rrel);
        // Ra Rrel = Rb, and R to itself is the identity.
        const RowMat3 prod = Eigen::Map<RowMat3>(Ra) * Eigen::Map<RowMat3>(Rrel);
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(prod(i / 3, i % 3), Rb[i], 16 * kEps);
        relative_rotation(Ra, Ra, same);
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(same[i], i % 4 == 0 ? 1.0 : 0.0, 8 * kEps);

        relative_Angle(ra, ra, out);
        EXPECT_LT(Len(out), 1e-7);  // the trace of a near-identity fixes the floor of this
        relative_Angle(ra, rb, out);
        axis_angle_to_rotmat(out, back);
        const double angle = Len(out);
        if (angle < 1e-2 || angle > M_PI - 1e-2) continue;
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(back[i], Rrel[i], 4 * Tol(angle)) << "case " << n;
    }
    const double a[3] = {0, 0, 0.3}, b[3] = {0, 0, 0.5};
    double out[3];
    relative_Angle(a, b, out);
    EXPECT_NEAR(out[2], 0.2, 4 * kEps);
    EXPECT_EQ(out[0], 0.0);
}

}  // namespace
