// Cholesky factors in 6- and 7-wide storage: L L^T = A reading only the lower triangle, and the
// factor written over its input.
#include "QZMatrix.h"

#include "decomposition_cases.h"

using namespace qztest;

namespace {

// clang-format off
const struct {
    int32_t (*f)(const double *, double *, int32_t);
    int S;
} kFamilies[] = {{Cholesky, 6}, {Cholesky7, 7}};
// clang-format on

}  // namespace

// NaN above the diagonal and outside the block changes nothing, and the factor written over its
// input has the same bits. What is written above the diagonal and outside the block is pinned by
// the golden vectors.
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
                ASSERT_EQ(fam.f(A.data(), A.data(), n), 0);
                for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBlock(&A[i * S], &L[i * S], n));
            }
        }
    }
}
