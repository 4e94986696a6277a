// Random rotations and comparisons shared by the quaternion tests.
#ifndef QZ_TEST_QUATERNION_CASES_H
#define QZ_TEST_QUATERNION_CASES_H

#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace qztest {

constexpr double kEps = 2.220446049250313e-16;

inline void RandomUnitQuat(std::mt19937_64 &rng, double *q) {
    std::normal_distribution<double> g;
    const Eigen::Vector4d v = Eigen::Vector4d(g(rng), g(rng), g(rng), g(rng)).normalized();
    for (int i = 0; i < 4; ++i) q[i] = v[i];
}

inline Eigen::Quaterniond ToEigen(const double *q) { return {q[3], q[0], q[1], q[2]}; }

inline double Dot4(const double *a, const double *b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// q equals +ref or -ref component-wise within tol.
inline ::testing::AssertionResult SameUpToSign(const double *q, const double *ref, double tol) {
    const double sign = Dot4(q, ref) < 0 ? -1 : 1;
    for (int i = 0; i < 4; ++i) {
        if (!(std::fabs(q[i] - sign * ref[i]) <= tol))
            return ::testing::AssertionFailure() << i << ": " << q[i] << " vs " << sign * ref[i];
    }
    return ::testing::AssertionSuccess();
}

}  // namespace qztest

#endif
