// LUP decomposition on row-pointer matrices: solve, determinant and inverse against the fixed-size
// inverse (to the bit: the same elimination) and the determinant, singular matrices included.
#include <algorithm>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

Rows Make(int m, int n, const double *v) {
    Rows A(m, n);
    for (int i = 0; i < m * n; ++i) A.r[i / n][i % n] = v[i];
    return A;
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
// most negative count is the one that would break a substitution running down from n - 1.
TEST(MatLUP, MostNegativeCountReadsAndWritesNothing) {
    const double b[2] = {1.0, 2.0};
    double x[2] = {7.0, 7.0};
    for (const int32_t n : {0, -1, INT32_MIN + 1, INT32_MIN}) {
        QZ_LUPSolveEq(nullptr, n, nullptr, b, x);
        EXPECT_ALL(SameBits(x[0], 7.0), SameBits(x[1], 7.0)) << n;
        QZ_MatLUPInv(nullptr, n, nullptr, nullptr);
        EXPECT_TRUE(SameBits(QZ_MatLUPDet(nullptr, n, nullptr), 0.0)) << n;
    }
}

}  // namespace
