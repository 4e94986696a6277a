// Fixed-size inverses, the rigid-transform inverse and the determinant: residuals on random
// matrices, the exact singularity threshold, aliasing, and the determinant bit for bit against the
// plain cofactor recursion. (The inverses' bits are checked against the LUP inverse in test_lup.)
#include <Eigen/Dense>

#include <algorithm>
#include <cmath>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::NextUp;
using qztest::SameBits;

constexpr double kEps = 2.220446049250313e-16;
using InvFn = uint8_t (*)(const double *, double *);
const InvFn kInv[9] = {nullptr,       nullptr,       QZ_MatrixInv2, QZ_MatrixInv3, QZ_MatrixInv4,
                       QZ_MatrixInv5, QZ_MatrixInv6, QZ_MatrixInv7, QZ_MatrixInv8};

double NormInf(const double *M, int n) {
    double best = 0.0;
    for (int i = 0; i < n; ++i) {
        double s = 0.0;
        for (int j = 0; j < n; ++j) s += std::fabs(M[i * n + j]);
        best = std::max(best, s);
    }
    return best;
}

// ||A X - I|| / (n eps ||A|| ||X||) in the infinity norm: O(1) for a backward-stable inverse.
double ResidualRatio(const double *A, const double *X, int n) {
    double R[64];
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            long double s = (i == j) ? -1.0L : 0.0L;
            for (int k = 0; k < n; ++k) s += static_cast<long double>(A[i * n + k]) * X[k * n + j];
            R[i * n + j] = static_cast<double>(s);
        }
    }
    return NormInf(R, n) / (n * kEps * NormInf(A, n) * NormInf(X, n));
}

// A is left as it was, and inverting in place (Ainv = A) gives the same bits.
TEST(MatrixInv, RandomMatricesOfEverySizeInvertWithSmallResidualAlsoInPlace) {
    auto rng = qztest::Rng();
    for (int n = 2; n <= 8; ++n) {
        double worst = 0.0;
        for (int c = 0; c < 2000; ++c) {
            double A[64], keep[64], X[64];
            for (int i = 0; i < n * n; ++i) keep[i] = A[i] = qztest::Uniform(rng, -1.0, 1.0);
            ASSERT_EQ(kInv[n](A, X), 1) << "n " << n << " case " << c;
            worst = std::max(worst, ResidualRatio(A, X, n));
            for (int i = 0; i < n * n; ++i) ASSERT_TRUE(SameBits(A[i], keep[i]));
            ASSERT_EQ(kInv[n](A, A), 1);
            for (int i = 0; i < n * n; ++i) ASSERT_TRUE(SameBits(A[i], X[i])) << "n " << n;
        }
        EXPECT_LT(worst, 1.0) << "n " << n;
    }
}

TEST(MatrixInv, IdentityAndPermutationsInvertExactly) {
    auto rng = qztest::Rng();
    for (int n = 2; n <= 8; ++n) {
        int order[8];
        for (int i = 0; i < n; ++i) order[i] = i;
        for (int c = 0; c < 20; ++c) {
            double A[64] = {}, X[64];
            for (int i = 0; i < n; ++i) A[i * n + order[i]] = 1.0;
            ASSERT_EQ(kInv[n](A, X), 1);
            for (int i = 0; i < n * n; ++i) EXPECT_TRUE(SameBits(X[i], A[(i % n) * n + i / n])) << n;
            std::shuffle(order, order + n, rng);  // the first case is the identity
        }
    }
}

// The threshold is absolute and inclusive: a pivot column whose largest |value| is exactly 1e-16
// (in the first, a middle or the last column) is singular and leaves the output alone; the next
// double up inverts. Matrices of perfectly good condition are refused when merely small.
TEST(MatrixInv, PivotAtExactlyTheToleranceIsSingularTheNextDoubleUpIsNot) {
    for (int n = 2; n <= 8; ++n) {
        for (int col : {0, n / 2, n - 1}) {
            for (double t : {1e-16, -1e-16, 0.0, NextUp(1e-16), -NextUp(1e-16)}) {
                double A[64] = {}, X[64];
                for (int i = 0; i < n; ++i) A[i * n + i] = 1.0;
                A[col * n + col] = t;
                std::fill(X, X + 64, -3.0);
                const bool expect = std::fabs(t) > 1e-16;
                ASSERT_EQ(kInv[n](A, X), expect ? 1 : 0) << "n " << n << " col " << col << " t " << t;
                if (expect) EXPECT_EQ(X[col * n + col], 1.0 / t);
                for (int i = 0; i < n * n && !expect; ++i) EXPECT_TRUE(SameBits(X[i], -3.0));
            }
        }
    }
    const double tiny[4] = {2e-17, 1e-17, -1e-17, 3e-17};  // condition number about 3
    double X[4] = {5.0, 5.0, 5.0, 5.0};
    EXPECT_EQ(QZ_MatrixInv2(tiny, X), 0);
    EXPECT_EQ(X[0], 5.0);
    // Column 1 vanishes below the pivot only after row 0 has been subtracted.
    const double late[9] = {1.0, 2.0, 3.0, 2.0, 4.0, 7.0, 3.0, 6.0, 1.0};
    EXPECT_EQ(QZ_MatrixInv3(late, X), 0);
}

// T^-1 T = I; the result never depends on T's last row; a zero position comes back as -0.0,
// the negation of a zero sum.
TEST(PGMatrixInv, UndoesARigidTransformWhateverItsLastRow) {
    auto rng = qztest::Rng();
    using M4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
    for (int c = 0; c < 500; ++c) {
        const Eigen::Vector3d axis = Eigen::Vector3d::Random().normalized();
        M4 T = M4::Identity(), Ti, Tg;
        T.topLeftCorner<3, 3>() = Eigen::AngleAxisd(qztest::Uniform(rng, -3, 3), axis).matrix();
        for (int i = 0; i < 3; ++i) T(i, 3) = qztest::Uniform(rng, -2, 2);
        ASSERT_EQ(QZ_PGMatrixInv(T.data(), Ti.data()), 1);
        EXPECT_LT((Ti * T - M4::Identity()).cwiseAbs().maxCoeff(), 16 * kEps);
        T.row(3) << 5.0, -1.0, NAN, 0.0;
        QZ_PGMatrixInv(T.data(), Tg.data());
        for (int i = 0; i < 16; ++i) EXPECT_TRUE(SameBits(Tg.data()[i], Ti.data()[i]));
    }
    double T[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, Ti[16];
    QZ_PGMatrixInv(T, Ti);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(SameBits(Ti[i * 4 + 3], -0.0));
    EXPECT_TRUE(SameBits(Ti[12], 0.0));
}

// The determinant as a literal recursion: every level copies its minor into its own 8-by-8 array.
double PlainDeterminant(const double *A, int n) {
    if (n == 1) return A[0];
    if (n < 1) return 0.0;
    double det = 0.0;
    for (int k = 0; k < n; ++k) {
        double M[64];
        for (int r = 0; r < n - 1; ++r) {
            for (int j = 0; j < n - 1; ++j) M[r * 8 + j] = A[(r + 1) * 8 + j + (j < k ? 0 : 1)];
        }
        const double term = PlainDeterminant(M, n - 1) * A[k];
        det = (k % 2 == 0) ? det + term : det - term;
    }
    return det;
}

// Uniform reals; small integers with signed zeros, whose expansions cancel to +-0 and hit every
// sign rule; reals over many magnitudes; and integers with an infinity or a NaN among them.
double RandomEntry(std::mt19937_64 &rng, int kind) {
    if (kind == 0) return qztest::Uniform(rng, -1.0, 1.0);
    if (kind == 2) return qztest::Uniform(rng, -1.0, 1.0) * std::ldexp(1.0, int(rng() % 61) - 30);
    const int v = static_cast<int>(rng() % 7) - 3;
    return v != 0 ? v : (rng() & 1) ? 0.0 : -0.0;
}

// A NaN's sign and payload are left to the hardware (which operand of an addition it keeps) and
// are not compared.
TEST(MatrixDeterminant, BitForBitThePlainCofactorRecursion) {
    auto rng = qztest::Rng();
    for (int n = 1; n <= 8; ++n) {
        for (int c = 0; c < (n == 8 ? 150 : 1500); ++c) {
            double A[64];
            const int kind = c % 4;
            for (double &a : A) a = RandomEntry(rng, kind);
            if (kind == 3) A[rng() % 64] = (c % 8 == 3) ? NAN : (rng() & 1) ? INFINITY : -INFINITY;
            const double d = QZ_MatrixDeterminant(A, n), ref = PlainDeterminant(A, n);
            if (std::isnan(ref)) {
                ASSERT_TRUE(std::isnan(d)) << "n " << n << " case " << c;
            } else {
                ASSERT_TRUE(SameBits(d, ref)) << "n " << n << " case " << c;
            }
        }
    }
}

// Only the leading n-by-n block of the 8-by-8 array is read (the rest is NaN here); counts below
// one give 0.0, and counts above eight give 0.0 without touching the array at all.
TEST(MatrixDeterminant, AgreesWithEigenReadingOnlyTheLeadingBlock) {
    auto rng = qztest::Rng();
    for (int n = 1; n <= 8; ++n) {
        for (int c = 0; c < 50; ++c) {
            double A[64];
            Eigen::MatrixXd E(n, n);
            std::fill(A, A + 64, NAN);
            for (int i = 0; i < n * n; ++i) E(i / n, i % n) = A[(i / n) * 8 + i % n] = qztest::Uniform(rng, -1, 1);
            EXPECT_NEAR(QZ_MatrixDeterminant(A, n), E.determinant(), 1e-13) << "n " << n;
        }
    }
    const double A[64] = {2.5};
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(A, 1), 2.5));
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(A, 0), 0.0));
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(A, -4), 0.0));
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(nullptr, 9), 0.0));
    EXPECT_TRUE(SameBits(QZ_MatrixDeterminant(nullptr, 2147483647), 0.0));
}

}  // namespace
