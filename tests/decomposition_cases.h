// Random inputs for the decomposition tests: symmetric matrices with chosen spectra, positive
// definite ones and uniform rectangular ones, all from the seeded generator.
#ifndef QZ_TEST_DECOMPOSITION_CASES_H
#define QZ_TEST_DECOMPOSITION_CASES_H

#include <Eigen/Dense>

#include <algorithm>
#include <limits>
#include <vector>

#include "test_util.h"

namespace qztest {

using Mat = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
constexpr double kEps = 2.220446049250313e-16;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

inline double MaxAbs(const Mat &m) { return m.cwiseAbs().maxCoeff(); }

inline Mat RandomMat(std::mt19937_64 &rng, int rows, int cols) {
    Mat M(rows, cols);
    for (int i = 0; i < rows * cols; ++i) M.data()[i] = Uniform(rng, -1.0, 1.0);
    return M;
}

// Symmetric n-by-n, mirrored to the bit. kind 0: uniform entries in [-1, 1]; else Q diag(l) Q^T
// with l spread over 1e-6..1e6 with alternating signs (1), clustered within 1e-12 of 1 (2),
// taking two values only (3), or in [1, 10], positive definite (4).
inline Mat RandomSymmetric(std::mt19937_64 &rng, int n, int kind) {
    Mat M = RandomMat(rng, n, n);
    if (kind != 0) {
        Eigen::VectorXd l(n);
        for (int i = 0; i < n; ++i) {
            const double u = Uniform(rng, -1.0, 1.0);
            l(i) = kind == 1   ? std::pow(10.0, 6 * u) * (i % 2 ? -1.0 : 1.0)
                   : kind == 2 ? 1.0 + 1e-12 * u
                   : kind == 3 ? (i % 3 ? 2.0 : -1.0)
                               : 5.5 + 4.5 * u;
        }
        const Mat Q = Eigen::HouseholderQR<Mat>(M).householderQ();
        M = Q * l.asDiagonal() * Q.transpose();
    }
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) M(j, i) = M(i, j);
    return M;
}

inline Mat RandomSpd(std::mt19937_64 &rng, int n) { return RandomSymmetric(rng, n, 4); }

// M copied into row-stride S storage, the rest filled with fill; and back.
inline std::vector<double> Stored(const Mat &M, int S, double fill) {
    std::vector<double> s(S * S, fill);
    for (int i = 0; i < M.rows(); ++i)
        for (int j = 0; j < M.cols(); ++j) s[i * S + j] = M(i, j);
    return s;
}

inline Mat Unstored(const double *s, int n, int S) {
    return Eigen::Map<const Mat, 0, Eigen::OuterStride<>>(s, n, n, Eigen::OuterStride<>(S));
}

inline bool SameBlock(const double *a, const double *b, int count) {
    for (int i = 0; i < count; ++i)
        if (!SameBits(a[i], b[i])) return false;
    return true;
}

inline Eigen::VectorXd Sorted(Eigen::VectorXd v) {
    std::sort(v.data(), v.data() + v.size());
    return v;
}

}  // namespace qztest

#endif
