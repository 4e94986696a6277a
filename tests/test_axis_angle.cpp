// Rotation vectors: round trips below and beyond a half turn against Eigen's AngleAxis, the
// half-turn band, and the composition and relative rotation built on them.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

Eigen::AngleAxisd ToAngleAxis(const double *r) {
    const Eigen::Vector3d v = Eigen::Vector3d::Map(r);
    return Eigen::AngleAxisd(v.norm(), v.normalized());
}

// The angle back from a matrix is an arc cosine and the axis is divided by its sine, so the
// error grows like eps / sin^2 towards a half turn.
double Tol(double angle) { return 8 * kEps / (std::sin(angle) * std::sin(angle)) + 16 * kEps; }

// Matrices from turns anywhere in (0, 2 pi), from turns up to 2e-5 short of a half turn, from
// exact half turns (some about axes close to y) and symmetric 2 k k^T - I (trace either side
// of -1). Back from the matrix,
// a turn beyond pi comes the short way, 2 pi - angle about -k. Within 1e-5 of a half turn the
// axis comes from the symmetric part, accurate up to pi, where a symmetric matrix gives pi times
// its axis (either sign) rather than no rotation; outside, the plain quotient, bit for bit.
TEST(AxisAngle, RoundTripsAgreeWithEigenAndTheHalfTurnBandReadsTheSymmetricPart) {
    auto rng = Rng();
    std::normal_distribution<double> g;
    for (int n = 0; n < 6000; ++n) {
        Eigen::Vector3d k = Eigen::Vector3d(g(rng), g(rng), g(rng)).normalized();
        if (n % 12 == 4) k = Eigen::Vector3d(1e-6 * k[0], 1, 1e-6 * k[2]).normalized();  // near y
        const double angle = n % 3 == 0   ? Uniform(rng, 1e-6, 2 * M_PI)
                             : n % 3 == 1 ? M_PI - Uniform(rng, 0.0, 2e-5)
                                          : M_PI;
        double r[3], R[9], back[3];
        Eigen::Vector3d::Map(r) = angle * k;
        axis_angle_to_rotmat(r, R);
        if (n % 6 == 5)
            RowMat3::Map(R) = 2 * k * k.transpose() - Eigen::Matrix3d::Identity();
        else
            ASSERT_TRUE(Near(R, RowMat3(ToAngleAxis(r).toRotationMatrix()).data(), 9, 4 * kEps));
        rotmat_to_axis_angle(R, back);
        const double theta = std::acos((R[0] + R[4] + R[8] - 1.0) * 0.5), s2 = 2 * std::sin(theta);
        const double fold = angle < M_PI ? 1.0 : (angle - 2 * M_PI) / angle;
        const double sign = angle != M_PI ? fold : Eigen::Vector3d::Map(back).dot(k) < 0 ? -1 : 1;
        if (theta <= M_PI - 1e-5) {  // NaN past a trace of -1 is in the band
            const double plain[3] = {theta * (R[7] - R[5]) / s2, theta * (R[2] - R[6]) / s2,
                                     theta * (R[3] - R[1]) / s2};
            ASSERT_TRUE(Near(back, plain, 3, 0.0)) << n << " angle " << angle;
            ASSERT_TRUE(Near(back, r, 3, Tol(angle), sign)) << n << " angle " << angle;
            continue;
        }
        ASSERT_TRUE(Near(back, r, 3, 1e-7, sign)) << n << " angle " << angle;
        const Eigen::Vector3d axis = Eigen::Vector3d::Map(back).normalized();
        ASSERT_TRUE(Near(axis.data(), k.data(), 3, 1e-13, sign < 0 ? -1.0 : 1.0)) << n;
    }
}

// AngleMult applies r2 first, then r1, in the fixed frame; relative_Angle gives Ra^T Rb.
TEST(AngleMultAndRelative, ComposeAndDifferRotationsLikeEigen) {
    auto rng = Rng();
    for (int n = 0; n < 1000; ++n) {
        double r1[3], r2[3], out[3];
        for (double &v : r1) v = Uniform(rng, -1.7, 1.7);
        for (double &v : r2) v = Uniform(rng, -1.7, 1.7);
        const Eigen::AngleAxisd mult(ToAngleAxis(r1) * ToAngleAxis(r2));
        const Eigen::AngleAxisd rel(ToAngleAxis(r1).inverse() * ToAngleAxis(r2));
        for (int f = 0; f < 2; ++f) {
            const Eigen::AngleAxisd &ref = f ? rel : mult;
            (f ? relative_Angle : AngleMult)(r1, r2, out);
            if (ref.angle() > 1e-2 && ref.angle() < M_PI - 1e-2)
                ASSERT_TRUE(Near(out, ref.axis().data(), 3, 4 * Tol(ref.angle()), ref.angle()));
        }
    }
}

}  // namespace
