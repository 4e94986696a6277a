// Fixed-size inverses, the rigid-transform inverse and the determinant: residual ratios on random
// matrices, the exact singularity threshold, in-place calls, and the determinant bit for bit
// against the literal cofactor recursion. (The inverses' bits are checked against LUP elsewhere.)
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

// The threshold is absolute and inclusive: a pivot column whose largest |value| is exactly 1e-16
// (the first, a middle or the last column) is singular and leaves the output alone; the next
// double up inverts. A small, well-conditioned matrix is refused, and so is a column that
// vanishes below the pivot only after elimination.
TEST(MatrixInv, PivotAtExactlyTheToleranceIsSingularTheNextDoubleUpIsNot) {
    for (int n = 2; n <= 8; ++n) {
        for (int col : {0, n / 2, n - 1}) {
            for (double t : {1e-16, -1e-16, 0.0, NextUp(1e-16), -NextUp(1e-16)}) {
                double A[64] = {}, X[64];
                for (int i = 0; i < n; ++i) A[i * n + i] = 1.0;
                A[col * n + col] = t;
                std::fill(X, X + 64, kSentinel);
                const bool ok = std::fabs(t) > 1e-16;
                ASSERT_EQ(kInv[n](A, X), ok ? 1 : 0) << "n " << n << " col " << col << " t " << t;
                EXPECT_EQ(X[col * n + col], ok ? 1.0 / t : kSentinel);
                EXPECT_EQ(std::count(X, X + 64, kSentinel), ok ? 64 - n * n : 64);
            }
        }
    }
    const double tiny[4] = {2e-17, 1e-17, -1e-17, 3e-17};
    const double late[9] = {1.0, 2.0, 3.0, 2.0, 4.0, 7.0, 3.0, 6.0, 1.0};
    double X[9];
    EXPECT_EQ(QZ_MatrixInv2(tiny, X) + QZ_MatrixInv3(late, X), 0);
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

// The determinant as the literal recursion: every level copies its minor into an 8-by-8 array.
double PlainDeterminant(const double *A, int n) {
    if (n <= 1) return n == 1 ? A[0] : 0.0;
    double det = 0.0;
    for (int k = 0; k < n; ++k) {
        double M[64];
        for (int i = 0; i < (n - 1) * 8; ++i) M[i] = i % 8 < n - 1 ? A[i + 8 + (i % 8 >= k)] : NAN;
        const double term = PlainDeterminant(M, n - 1) * A[k];
        det = (k % 2 == 0) ? det + term : det - term;
    }
    return det;
}

// Uniform reals; small integers with signed zeros, whose expansions cancel to +-0 and exercise
// every sign rule; reals over many magnitudes; integers with an infinity or a NaN among them.
// Outside the leading block the array holds NaN, which must never be read. A NaN's sign and
// payload are left to the hardware and are not compared. Counts below one give 0.0, counts above
// eight 0.0 without reading the array.
TEST(MatrixDeterminant, BitForBitTheLiteralCofactorRecursion) {
    auto rng = Rng();
    for (int n = 1; n <= 8; ++n) {
        for (int c = 0; c < (n == 8 ? 200 : 1500); ++c) {
            double A[64];
            for (int i = 0; i < 64; ++i) {
                const int v = static_cast<int>(rng() % 7) - 3, kind = c % 4;
                A[i] = i / 8 >= n || i % 8 >= n ? NAN
                       : kind == 0              ? Uniform(rng, -1.0, 1.0)
                       : kind == 2 ? Uniform(rng, -1.0, 1.0) * std::ldexp(1.0, int(rng() % 61) - 30)
                       : v != 0    ? v
                       : (rng() & 1) ? 0.0
                                     : -0.0;
            }
            if (c % 4 == 3)
                A[rng() % n * 9] = (c % 8 == 3) ? NAN : (rng() & 1) ? INFINITY : -INFINITY;
            const double d = QZ_MatrixDeterminant(A, n), ref = PlainDeterminant(A, n);
            if (std::isnan(ref))
                ASSERT_TRUE(std::isnan(d)) << "n " << n << " case " << c;
            else
                ASSERT_TRUE(SameBits(d, ref)) << "n " << n << " case " << c;
        }
    }
    const double A[64] = {2.5};
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(A, 1), 2.5));
    for (int32_t n : {0, -4}) EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(A, n), 0.0));
    for (int32_t n : {9, 2147483647}) EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(nullptr, n), 0.0));
}

}  // namespace
