// Random rotations and comparisons shared by the quaternion tests.
#ifndef QZ_TEST_QUATERNION_CASES_H
#define QZ_TEST_QUATERNION_CASES_H

#include <Eigen/Geometry>

#include "QZQuaternions.h"
#include "test_util.h"

namespace qztest {

constexpr double kEps = 2.220446049250313e-16;
using RowMat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

inline void RandomUnitQuat(std::mt19937_64 &rng, double *q) {
    std::normal_distribution<double> g;
    Eigen::Vector4d::Map(q) = Eigen::Vector4d(g(rng), g(rng), g(rng), g(rng)).normalized();
}

// Our (x, y, z, w) as Eigen's (w, x, y, z); Eigen's coeffs() come back as (x, y, z, w).
inline Eigen::Quaterniond ToEigen(const double *q) { return {q[3], q[0], q[1], q[2]}; }

inline double Dot4(const double *a, const double *b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// a[i] within tol of sign * b[i] for i < n; tol 0 asks for the same bits.
inline ::testing::AssertionResult Near(const double *a, const double *b, int n, double tol,
                                       double sign = 1.0) {
    for (int i = 0; i < n; ++i) {
        const double want = sign * b[i];
        if (tol == 0.0 ? !SameBits(a[i], want) : !(std::fabs(a[i] - want) <= tol))
            return ::testing::AssertionFailure() << i << ": " << a[i] << " vs " << want;
    }
    return ::testing::AssertionSuccess();
}

// q equals +ref or -ref component-wise within tol.
inline ::testing::AssertionResult SameUpToSign(const double *q, const double *ref, double tol) {
    return Near(q, ref, 4, tol, Dot4(q, ref) < 0 ? -1.0 : 1.0);
}

}  // namespace qztest

#endif
