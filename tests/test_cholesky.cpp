// Cholesky factors in 6- and 7-wide storage, the failure column and what stays written, aliasing
// of the factor with its input; the quadratic form.
#include "QZMatrix.h"

#include <limits>

#include "decomposition_cases.h"

using namespace qztest;

namespace {

using Factorize = int32_t (*)(const double *, double *, int32_t);
const struct {
    Factorize f;
    int stride;
} kFamilies[] = {{Cholesky, 6}, {Cholesky7, 7}};

}  // namespace

// Only the lower triangle is read: NaN above the diagonal and outside the block changes nothing.
TEST(Cholesky, FactorsRandomPositiveDefiniteBlocksReadingOnlyTheLowerTriangle) {
    auto rng = Rng();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto &fam : kFamilies) {
        const int S = fam.stride;
        for (int n = 1; n <= S; ++n) {
            for (int t = 0; t < 100; ++t) {
                const Mat A0 = RandomSpd(rng, n) * Uniform(rng, 1e-3, 1e3);
                std::vector<double> A = Stored(A0, S, nan), L(S * S, -7.0);
                for (int i = 0; i < n; ++i)
                    for (int j = i + 1; j < n; ++j) A[i * S + j] = nan;
                ASSERT_EQ(fam.f(A.data(), L.data(), n), 0);
                const Mat Lm = Unstored(L.data(), n, S);
                EXPECT_LT((Lm * Lm.transpose() - A0).cwiseAbs().maxCoeff(),
                          4 * n * kEps * A0.cwiseAbs().maxCoeff());
                for (int i = 0; i < S; ++i) {
                    for (int j = 0; j < S; ++j) {
                        if (i >= n || j >= n) ASSERT_EQ(L[i * S + j], -7.0);  // outside the block
                        else if (j > i) ASSERT_TRUE(SameBits(L[i * S + j], 0.0));
                        else if (j == i) ASSERT_GT(L[i * S + j], 0.0);
                    }
                }
                // Written over its own input, the factor comes out bit for bit the same.
                ASSERT_EQ(fam.f(A.data(), A.data(), n), 0);
                for (int i = 0; i < n; ++i)
                    for (int j = 0; j < n; ++j) ASSERT_TRUE(SameBits(A[i * S + j], L[i * S + j]));
            }
        }
    }
}

// The leading 4-by-4 block of a positive definite matrix, its last diagonal element lowered until
// the reduced diagonal there is zero, then one ulp below and above: -1 at column 3 with columns
// 0..2 complete and the rest unwritten (also in place, where the rest keeps A), or a factor.
TEST(Cholesky, StopsAtTheFirstColumnWithoutAPositiveReducedDiagonal) {
    auto rng = Rng();
    for (const auto &fam : kFamilies) {
        const int S = fam.stride;
        const Mat A0 = RandomSpd(rng, S);
        std::vector<double> full(S * S);
        ASSERT_EQ(fam.f(Stored(A0, S, 0.0).data(), full.data(), S), 0);
        double s = 0.0;  // the reduced diagonal's subtrahend, formed as the factorization forms it
        for (int k = 0; k < 3; ++k) s = s + full[3 * S + k] * full[3 * S + k];
        for (double d : {NextDown(s), s, NextUp(s)}) {
            std::vector<double> A = Stored(A0, S, 0.0), L(S * S, -7.0);
            A[3 * S + 3] = d;
            const int32_t r = fam.f(A.data(), L.data(), 4);
            ASSERT_EQ(r, d - s > 0.0 ? 0 : -1) << "d - s " << d - s;
            if (r == 0) continue;
            std::vector<double> inPlace = A;
            ASSERT_EQ(fam.f(inPlace.data(), inPlace.data(), 4), -1);
            for (int i = 0; i < S; ++i) {
                for (int j = 0; j < S; ++j) {
                    const int e = i * S + j;
                    const bool done = i < 4 && j < 3;
                    ASSERT_TRUE(SameBits(L[e], done ? full[e] : -7.0)) << i << "," << j;
                    ASSERT_TRUE(SameBits(inPlace[e], done ? full[e] : A[e])) << i << "," << j;
                }
            }
        }
    }
}

TEST(Cholesky, WritesNothingForEmptyOversizedOrLeadingNonPositiveBlocks) {
    double I[49] = {}, L[49];
    for (int i = 0; i < 6; ++i) I[i * 7] = 1.0;  // the 6-by-6 identity in 6-wide storage
    for (double &l : L) l = -7.0;
    EXPECT_EQ(Cholesky(I, L, 0), 0);
    EXPECT_EQ(Cholesky(I, L, 7), -1);
    EXPECT_EQ(Cholesky7(I, L, 8), -1);
    I[0] = 0.0;
    EXPECT_EQ(Cholesky(I, L, 6), -1);
    for (double l : L) ASSERT_EQ(l, -7.0);
    I[0] = 1.0;
    EXPECT_EQ(Cholesky(I, L, 6), 0);
    for (int i = 0; i < 36; ++i) EXPECT_EQ(L[i], I[i]);
}

TEST(VMV, IsTheQuadraticFormOfTheLeadingBlock) {
    auto rng = Rng();
    for (int n = 1; n <= 7; ++n) {
        const Mat M = RandomSymmetric(rng, n, 0);
        Eigen::VectorXd v(n);
        for (int i = 0; i < n; ++i) v(i) = Uniform(rng, -1.0, 1.0);
        const std::vector<double> M7 = Stored(M, 7, std::numeric_limits<double>::quiet_NaN());
        EXPECT_NEAR(VMV(v.data(), M7.data(), n), v.dot(M * v), 8 * n * kEps);
        const std::vector<double> I7 = Stored(Mat::Identity(n, n), 7, 5.0);
        EXPECT_NEAR(VMV(v.data(), I7.data(), n), v.squaredNorm(), 2 * n * kEps);
    }
    const double v[8] = {1, 2, 3, 4, 5, 6, 7, 8}, M[64] = {};
    EXPECT_TRUE(SameBits(VMV(v, M, 0), 0.0));
    EXPECT_TRUE(std::isnan(VMV(v, M, 8)));
}
