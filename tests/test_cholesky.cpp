// Cholesky factors in 6- and 7-wide storage: L L^T = A reading only the lower triangle, aliasing
// of the factor with its input, the failure column and what stays written; the quadratic form.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

const struct {
    int32_t (*f)(const double *, double *, int32_t);
    int S;
} kFamilies[] = {{Cholesky, 6}, {Cholesky7, 7}};

}  // namespace

// NaN above the diagonal and outside the block changes nothing; zeros are written above the
// diagonal, nothing outside the block, and the factor written over its input has the same bits.
TEST(Cholesky, FactorsRandomBlocksReadingOnlyTheLowerTriangleAlsoInPlace) {
    auto rng = Rng();
    for (const auto &fam : kFamilies) {
        const int S = fam.S;
        for (int n = 1; n <= S; ++n) {
            for (int t = 0; t < 100; ++t) {
                const Mat A0 = RandomSpd(rng, n) * Uniform(rng, 1e-3, 1e3);
                std::vector<double> A = Stored(A0, S, kNaN), L(S * S, -7.0);
                for (int i = 0; i < n; ++i)
                    for (int j = i + 1; j < n; ++j) A[i * S + j] = kNaN;
                ASSERT_EQ(fam.f(A.data(), L.data(), n), 0);
                const Mat Lm = Unstored(L.data(), n, S);
                EXPECT_LT(MaxAbs(Lm * Lm.transpose() - A0), 4 * n * kEps * MaxAbs(A0));
                EXPECT_GT(Lm.diagonal().minCoeff(), 0.0);
                for (int e = 0; e < S * S; ++e) {
                    const int i = e / S, j = e % S;
                    if (i >= n || j >= n || j > i)
                        ASSERT_TRUE(SameBits(L[e], i >= n || j >= n ? -7.0 : 0.0)) << i << j;
                }
                ASSERT_EQ(fam.f(A.data(), A.data(), n), 0);
                for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBlock(&A[i * S], &L[i * S], n));
            }
        }
    }
}

// The diagonal entry of column k lowered until its reduced diagonal is zero, then one ulp either
// side, factorizing the leading (k + 1) block: -1 with columns 0..k-1 complete and the rest
// unwritten (in place: still A), or a factor. An empty block is a success that writes nothing,
// an oversized one a failure that writes nothing.
TEST(Cholesky, StopsAtTheFirstColumnWithoutAPositiveReducedDiagonal) {
    auto rng = Rng();
    for (const auto &fam : kFamilies) {
        const int S = fam.S;
        const Mat A0 = RandomSpd(rng, S);
        std::vector<double> full(S * S), L(S * S, -7.0);
        ASSERT_EQ(fam.f(Stored(A0, S, 0.0).data(), full.data(), S), 0);
        EXPECT_EQ(fam.f(full.data(), L.data(), 0), 0);
        EXPECT_EQ(fam.f(full.data(), L.data(), S + 1), -1);
        EXPECT_EQ(L, std::vector<double>(S * S, -7.0));
        for (int k : {0, 3, S - 1}) {
            double s = 0.0;  // the reduced diagonal's subtrahend, summed as the factorization does
            for (int m = 0; m < k; ++m) s = s + full[k * S + m] * full[k * S + m];
            for (double d : {NextDown(s), s, NextUp(s)}) {
                std::vector<double> A = Stored(A0, S, 0.0), L(S * S, -7.0);
                A[k * S + k] = d;
                std::vector<double> inPlace = A;
                const int32_t r = fam.f(A.data(), L.data(), k + 1);
                ASSERT_EQ(r, d - s > 0.0 ? 0 : -1) << k << " d - s " << d - s;
                if (r == 0) continue;
                ASSERT_EQ(fam.f(inPlace.data(), inPlace.data(), k + 1), -1);
                for (int e = 0; e < S * S; ++e) {
                    const bool done = e / S <= k && e % S < k;
                    ASSERT_TRUE(SameBits(L[e], done ? full[e] : -7.0)) << k << ": " << e;
                    ASSERT_TRUE(SameBits(inPlace[e], done ? full[e] : A[e])) << k << ": " << e;
                }
            }
        }
    }
}

// Sums over the leading block only; no block is +0, one beyond the storage NaN.
TEST(VMV, IsTheQuadraticFormOfTheLeadingBlock) {
    auto rng = Rng();
    for (int n = 1; n <= 7; ++n) {
        const Mat M = RandomSymmetric(rng, n, 0), v = RandomMat(rng, 8, 1);
        EXPECT_NEAR(VMV(v.data(), Stored(M, 7, kNaN).data(), n),
                    (v.topRows(n).transpose() * M * v.topRows(n))(0), 8 * n * kEps);
        EXPECT_TRUE(SameBits(VMV(v.data(), M.data(), 0), 0.0));
        EXPECT_TRUE(std::isnan(VMV(v.data(), Stored(M, 8, 0.0).data(), 8)));
    }
}
