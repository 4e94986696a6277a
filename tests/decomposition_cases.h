// Random inputs for the decomposition tests: symmetric matrices with chosen spectra and
// well-conditioned positive definite ones, built from random orthogonal bases.
#ifndef QZ_TEST_DECOMPOSITION_CASES_H
#define QZ_TEST_DECOMPOSITION_CASES_H

#include <Eigen/Dense>

#include <algorithm>
#include <vector>

#include "test_util.h"

namespace qztest {

using Mat = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

inline Mat RandomOrthogonal(std::mt19937_64 &rng, int n) {
    std::normal_distribution<double> g;
    Mat G(n, n);
    for (int i = 0; i < n * n; ++i) G.data()[i] = g(rng);
    return Eigen::HouseholderQR<Mat>(G).householderQ();
}

// Symmetric n-by-n with entries exactly mirrored. kind 0: uniform entries in [-1, 1]; 1: spread
// spectrum over 1e-6..1e6 with random signs; 2: eigenvalues clustered within 1e-12 of 1; 3: an
// eigenvalue repeated (only two distinct values).
inline Mat RandomSymmetric(std::mt19937_64 &rng, int n, int kind) {
    Mat M(n, n);
    if (kind == 0) {
        for (int i = 0; i < n; ++i)
            for (int j = 0; j <= i; ++j) M(i, j) = M(j, i) = Uniform(rng, -1.0, 1.0);
        return M;
    }
    Eigen::VectorXd l(n);
    for (int i = 0; i < n; ++i) {
        if (kind == 1) l(i) = std::pow(10.0, Uniform(rng, -6.0, 6.0)) * (i % 2 ? -1.0 : 1.0);
        if (kind == 2) l(i) = 1.0 + 1e-12 * Uniform(rng, -1.0, 1.0);
        if (kind == 3) l(i) = i % 3 ? 2.0 : -1.0;
    }
    const Mat Q = RandomOrthogonal(rng, n);
    M = Q * l.asDiagonal() * Q.transpose();
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) M(j, i) = M(i, j);
    return M;
}

// Symmetric positive definite with eigenvalues in [1, 10].
inline Mat RandomSpd(std::mt19937_64 &rng, int n) {
    Eigen::VectorXd l(n);
    for (int i = 0; i < n; ++i) l(i) = Uniform(rng, 1.0, 10.0);
    const Mat Q = RandomOrthogonal(rng, n);
    Mat M = Q * l.asDiagonal() * Q.transpose();
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) M(j, i) = M(i, j);
    return M;
}

// The leading n-by-n block of M copied into row-stride S storage, the rest filled with fill.
inline std::vector<double> Stored(const Mat &M, int S, double fill) {
    std::vector<double> s(S * S, fill);
    for (int i = 0; i < M.rows(); ++i)
        for (int j = 0; j < M.cols(); ++j) s[i * S + j] = M(i, j);
    return s;
}

inline Mat Unstored(const double *s, int n, int S) {
    Mat M(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) M(i, j) = s[i * S + j];
    return M;
}

inline Eigen::VectorXd Sorted(Eigen::VectorXd v) {
    std::sort(v.data(), v.data() + v.size());
    return v;
}

constexpr double kEps = 2.220446049250313e-16;

}  // namespace qztest

#endif
