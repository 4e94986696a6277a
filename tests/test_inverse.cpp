// Fixed-size inverses and the rigid-transform inverse: residual ratios on random matrices and
// in-place calls. (The inverses' bits are checked against LUP elsewhere.)
#include <Eigen/Dense>
#include <algorithm>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

double NormInf(const double *M, int n) {
    double best = 0.0;
    for (int i = 0; i < n; ++i) {
        double s = 0.0;
        for (int j = 0; j < n; ++j) s += std::fabs(M[i * n + j]);
        best = std::max(best, s);
    }
    return best;
}

// ||A X - I|| / (n eps ||A|| ||X||) in the infinity norm, the product in long double: of order 1
// for a backward-stable inverse. Random matrices of every size; A is left as it was, and
// inverting in place (Ainv = A) gives the same bits.
TEST(MatrixInv, RandomMatricesOfEverySizeInvertWithSmallResidualAlsoInPlace) {
    auto rng = Rng();
    for (int n = 2; n <= 8; ++n) {
        double worst = 0.0;
        for (int c = 0; c < 2000; ++c) {
            double A[64], keep[64], X[64], R[64];
            for (int i = 0; i < n * n; ++i) keep[i] = A[i] = Uniform(rng, -1.0, 1.0);
            ASSERT_EQ(kInv[n](A, X), 1) << "n " << n << " case " << c;
            for (int i = 0; i < n * n; ++i) {
                long double s = (i % (n + 1) == 0) ? -1.0L : 0.0L;
                for (int k = 0; k < n; ++k) s += (long double)A[i / n * n + k] * X[k * n + i % n];
                R[i] = static_cast<double>(s);
            }
            worst = std::max(worst, NormInf(R, n) / (n * 0x1p-52 * NormInf(A, n) * NormInf(X, n)));
            ASSERT_TRUE(SameArray(A, keep, n * n));
            ASSERT_EQ(kInv[n](A, A), 1);
            ASSERT_TRUE(SameArray(A, X, n * n)) << "n " << n;
        }
        EXPECT_LT(worst, 1.0) << "n " << n;
    }
}

// T^-1 T = I for rotations about random axes; T's last row is never read; a zero position comes
// back as -0.0, the negation of a zero sum.
TEST(PGMatrixInv, UndoesARigidTransformWhateverItsLastRow) {
    using M4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
    for (int c = 0; c < 500; ++c) {
        M4 T = M4::Identity(), Ti, Tg;
        if (c > 0) {  // the first case is the identity
            const Eigen::Vector3d axis = Eigen::Vector3d::Random().normalized();
            T.topLeftCorner<3, 3>() = Eigen::AngleAxisd(3.0 * axis[0], axis).matrix();
            T.block<3, 1>(0, 3) = Eigen::Vector3d::Random();
        }
        ASSERT_EQ(QZ_PGMatrixInv(T.data(), Ti.data()), 1);
        EXPECT_LT((Ti * T - M4::Identity()).cwiseAbs().maxCoeff(), 4e-15);
        T.row(3) << 5.0, -1.0, NAN, 0.0;
        QZ_PGMatrixInv(T.data(), Tg.data());
        ASSERT_TRUE(SameArray(Tg.data(), Ti.data(), 16));
        if (c == 0) EXPECT_TRUE(std::signbit(Ti(0, 3)) && Ti(0, 3) == 0.0 && Ti(3, 3) == 1.0);
    }
}

}  // namespace
