// LUP decomposition on row-pointer matrices: threshold and return codes, the permutation record
// and the determinant's sign, pivot ties, rectangular and long rows, and solve, determinant and
// inverse against the fixed-size inverse (to the bit: the same elimination) and the determinant.
#include <algorithm>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

Rows Make(int m, int n, const double *v) {
    Rows A(m, n);
    for (int i = 0; i < m * n; ++i) A.r[i / n][i % n] = v[i];
    return A;
}

TEST(MatLUPD, EmptyAndNegativeCountsWriteOnlyTheExchangeCount) {
    for (auto [m, n] : {std::pair{0, 3}, {3, 0}, {0, 0}, {-1, 4}, {4, -2}, {-5, -5}}) {
        int32_t P[2] = {77, 77};
        EXPECT_EQ(QZ_MatLUPD(nullptr, m, n, P), 0) << m << " x " << n;
        EXPECT_TRUE(P[0] == 0 && P[1] == 77);
    }
    int32_t P[1] = {0};
    double b[1] = {1.0}, x[1] = {4.0}, row[1] = {6.0}, *inv[1] = {row};
    for (int32_t n : {0, -3}) {
        QZ_LUPSolveEq(nullptr, n, P, b, x);
        QZ_MatLUPInv(nullptr, n, P, inv);
        EXPECT_TRUE(SameBits(QZ_MatLUPDet(nullptr, n, nullptr), 0.0));
    }
    EXPECT_TRUE(x[0] == 4.0 && row[0] == 6.0);
}

// Unlike the fixed-size inverses, a pivot of exactly 1e-16 is accepted and the next double down
// refused. Exchanges move row contents (the pointers stay), are recorded in P with their count
// last, and set the determinant's sign; of equal candidates the upper row stays the pivot; a
// singular matrix keeps the exchanges made before it stopped.
TEST(MatLUPD, ThresholdExchangesTiesAndEarlyStop) {
    const double t = 1e-16, d = NextDown(1e-16);
    const struct {
        double a[9];
        int32_t result, P[4];
        double det;
    } cases[] = {{{1, 0, 0, 0, 1, 0, 0, 0, t}, 0, {0, 1, 2, 0}, t},
                 {{-t, 0, 0, 0, 1, 0, 0, 0, 1}, 0, {0, 1, 2, 0}, -t},
                 {{1, 0, 0, 0, 1, 0, 0, 0, -d}, 1, {0, 1, 2, 0}, 0},
                 {{d, 0, 0, 0, 1, 0, 0, 0, 1}, 1, {0, 1, 2, 0}, 0},
                 {{0, 1, 0, 1, 0, 0, 0, 0, 1}, 0, {1, 0, 2, 1}, -1},
                 {{0, 2, 0, 0, 0, 3, 4, 0, 0}, 0, {2, 0, 1, 2}, 24},
                 {{1, 2, 0, -1, 3, 0, 0, 0, 1}, 0, {0, 1, 2, 0}, 5},
                 {{1, 2, 3, 4, 8, 5, 2, 4, 9}, 1, {1, 0, 2, 1}, 0}};
    for (const auto &c : cases) {
        Rows A = Make(3, 3, c.a);
        const auto before = A.ptr;
        int32_t P[4];
        ASSERT_EQ(QZ_MatLUPD(A.p(), 3, 3, P), c.result) << (&c - cases);
        EXPECT_TRUE(std::equal(P, P + 4, c.P) && A.ptr == before) << (&c - cases);
        if (c.result == 0) EXPECT_EQ(QZ_MatLUPDet(A.p(), 3, P), c.det) << (&c - cases);
    }
    // Accepted pivots can multiply to an underflow: the exchange still shows in the zero's sign.
    Rows Z(21, 21);
    for (int i = 0; i < 21; ++i) Z.r[i][i < 2 ? 1 - i : i] = 1e-16;
    int32_t PZ[22];
    ASSERT_EQ(QZ_MatLUPD(Z.p(), 21, 21, PZ), 0);
    EXPECT_TRUE(SameBits(QZ_MatLUPDet(Z.p(), 21, PZ), -0.0));
}

// L (unit lower, from the multipliers) times U reproduces the permuted rows. With more rows than
// columns the extra rows are left untouched; with more columns the extra columns are carried
// along. Rows longer than any scratch row (up to 100 values) move whole.
TEST(MatLUPD, RectangularAndLongRowsDecomposeIntoLU) {
    auto rng = Rng();
    for (auto [m, n] : {std::pair{5, 3}, {9, 2}, {3, 5}, {2, 31}, {4, 32}, {3, 33}, {6, 100}}) {
        for (int c = 0; c < 20; ++c) {
            const auto v = RandomEntries(rng, m * n, false);
            const Rows A = Make(m, n, v.data());
            Rows LU = A;
            const int len = std::min(m, n);
            std::vector<int32_t> P(len + 1);
            ASSERT_EQ(QZ_MatLUPD(LU.p(), m, n, P.data()), 0);
            for (int i = 0; i < len; ++i) {
                for (int j = 0; j < n; ++j) {
                    double s = 0.0;
                    for (int k = 0; k <= std::min(i, j); ++k)
                        s += (k == i ? 1.0 : LU.r[i][k]) * LU.r[k][j];
                    ASSERT_NEAR(s, A.r[P[i]][j], 1e-13) << m << " x " << n;
                }
            }
            for (int i = len; i < m; ++i) EXPECT_EQ(LU.r[i], A.r[i]);
        }
    }
}

// For the fixed sizes the decomposition is the elimination of QZ_MatrixInvN and its inverse the
// same substitutions column by column: the two agree to the bit, and refuse the same matrices, on
// uniform matrices and on small integers with signed zeros (pivot ties, exact cancellations,
// singular matrices). A solve for a unit vector gives that column of the inverse to the bit, a
// solve for a column of A the unit vector; the determinant agrees with the cofactor expansion.
TEST(MatLUP, SolveDeterminantAndInverseAgreeWithTheFixedSizeFunctions) {
    auto rng = Rng();
    int singular = 0;
    for (int n = 2; n <= 8; ++n) {
        for (int c = 0; c < 2000; ++c) {
            double flat[64], X[64], D[64];
            for (int i = 0; i < n * n; ++i) {
                const int v = static_cast<int>(rng() % 7) - 3;
                flat[i] = D[i / n * 8 + i % n] = c % 2 == 0    ? Uniform(rng, -1, 1)
                                                 : v           ? v
                                                 : (rng() & 1) ? 0.0
                                                               : -0.0;
            }
            Rows LU = Make(n, n, flat), Inv(n, n);
            int32_t P[9];
            const int32_t failed = QZ_MatLUPD(LU.p(), n, n, P);
            ASSERT_EQ(kInv[n](flat, X), failed ? 0 : 1) << "n " << n << " case " << c;
            if (failed && ++singular) continue;
            QZ_MatLUPInv(LU.p(), n, P, Inv.p());
            for (int i = 0; i < n * n; ++i) ASSERT_TRUE(SameBits(Inv.r[i / n][i % n], X[i])) << n;
            const int q = c % n;
            std::vector<double> e(n, 0.0), x(n), col(n), y(n);
            e[q] = 1.0;
            for (int i = 0; i < n; ++i) col[i] = flat[i * n + q];
            QZ_LUPSolveEq(LU.p(), n, P, e.data(), x.data());
            QZ_LUPSolveEq(LU.p(), n, P, col.data(), y.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(x[i], X[i * n + q]));
            if (c % 2 == 1) continue;  // integer matrices may be nearly singular
            for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], i == q ? 1.0 : 0.0, 1e-11);
            const double det = QZ_MatrixDeterminant(D, n);
            EXPECT_NEAR(QZ_MatLUPDet(LU.p(), n, P), det, 1e-13 + 1e-12 * std::fabs(det)) << n;
        }
    }
    EXPECT_GT(singular, 100);
}

// A count of 0 or less is an empty system, however negative: nothing read, nothing written. The
// most negative count is the one that breaks a substitution running down from n - 1. Disabled
// while QZ_LUPSolveEq still forms INT32_MIN - 1 (signed overflow; with wrapping, it walks x from
// index INT32_MAX); the reproducer is fuzz/corpus/fuzz_matrix/lup-solve-most-negative-count.
TEST(MatLUP, MostNegativeCountReadsAndWritesNothing) {
    const double b[2] = {1.0, 2.0};
    double x[2] = {7.0, 7.0};
    for (const int32_t n : {0, -1, INT32_MIN + 1, INT32_MIN}) {
        QZ_LUPSolveEq(nullptr, n, nullptr, b, x);
        EXPECT_TRUE(SameBits(x[0], 7.0) && SameBits(x[1], 7.0)) << n;
        QZ_MatLUPInv(nullptr, n, nullptr, nullptr);
        EXPECT_TRUE(SameBits(QZ_MatLUPDet(nullptr, n, nullptr), 0.0)) << n;
    }
}

}  // namespace
