// Matrix operations: moves bit for bit, element-wise operations in place, rotation-block shapes
// that never read the fourth row or column, and row-pointer shapes with empty counts. The bits of
// the fixed-size products are pinned by the golden vectors.
#include <algorithm>
#include <limits>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

// Random rows of `cols` values in a stride of `ld`, NaN in the columns that must not be read.
std::vector<double> Strided(std::mt19937_64 &rng, int rows, int cols, int ld) {
    auto v = RandomEntries(rng, rows * ld);
    for (int i = 0; i < rows * ld; ++i) v[i] = i % ld < cols ? v[i] : NAN;
    return v;
}

// clang-format off
// B = A (rows x cols, row stride lda), transposed or copied.
struct Move {
    void (*f)(const double *, double *);
    int rows, cols, lda;
    bool transposed;
};
#define SQUARE(N) Move{QZ_MatrixTranspose##N, N, N, N, true}, Move{QZ_MatrixCpy##N, N, N, N, false},
const Move kMoves[] = {SQUARE(2) SQUARE(3) SQUARE(4) SQUARE(5) SQUARE(6) SQUARE(7) SQUARE(8)
    {QZ_Mat67Transpose, 6, 7, 7, true}, {Mat4433Transpose, 3, 3, 4, true}, {MatTr33, 3, 3, 3, true},
    {MatTr44, 4, 4, 4, true}};
#undef SQUARE
#define SQUARE(N) QZ_MatrixIdentity##N,
void (*const kIdentity[])(double *) = {SQUARE(2) SQUARE(3) SQUARE(4) SQUARE(5) SQUARE(6) SQUARE(7) SQUARE(8)};
#undef SQUARE
// clang-format on

// Transposes, copies and the identity move values without arithmetic, so a signalling NaN keeps
// its payload; nothing past the output is touched.
TEST(MatrixMoves, TransposesCopiesAndIdentityAreBitExact) {
    auto rng = Rng();
    const uint64_t bits = 0x7ff4000000000abcull;
    for (const auto &t : kMoves) {
        auto A = Strided(rng, t.rows, t.cols, t.lda);
        std::memcpy(A.data(), &bits, sizeof bits);
        const int count = t.rows * t.cols;
        std::vector<double> out(count + 1, kSentinel), ref(out);
        for (int i = 0; i < count; ++i)
            ref[t.transposed ? i % t.cols * t.rows + i / t.cols : i] =
                A[i / t.cols * t.lda + i % t.cols];
        t.f(A.data(), out.data());
        ASSERT_TRUE(SameArray(out.data(), ref.data(), count + 1)) << (&t - kMoves);
    }
    for (int n = 2; n <= 8; ++n) {
        std::vector<double> out(n * n + 1, NAN);
        out[n * n] = kSentinel;
        kIdentity[n - 2](out.data());
        for (int i = 0; i <= n * n; ++i)
            ASSERT_TRUE(SameBits(out[i], i == n * n ? kSentinel : i % (n + 1) == 0 ? 1.0 : 0.0));
    }
}

// Element-wise sums and differences cover every element, also written over either input.
TEST(MatrixElementwise, SumsDifferencesAndColumnScalingAlsoInPlace) {
    auto rng = Rng();
    void (*const add[])(const double *, const double *, double *) = {
        QZ_MatrixAdd2, QZ_MatrixAdd3, QZ_MatrixAdd4, QZ_MatrixAdd5,
        QZ_MatrixAdd6, QZ_MatrixAdd7, QZ_MatrixAdd8};
    auto check = [&](int count, auto f, auto op) {
        const auto A = RandomEntries(rng, count), B = RandomEntries(rng, count);
        std::vector<double> ref(A), out(count + 1, kSentinel), inA(A), inB(B);
        for (int i = 0; i < count; ++i) ref[i] = op(A, B, i);
        f(A.data(), B.data(), out.data());
        f(inA.data(), B.data(), inA.data());
        ASSERT_TRUE(SameArray(out.data(), ref.data(), count + 1) &&
                    SameArray(inA.data(), ref.data(), count));
        if (count == 36) return;  // the diagonal factor d is not an output
        f(A.data(), inB.data(), inB.data());
        ASSERT_TRUE(SameArray(inB.data(), ref.data(), count));
    };
    for (int n = 2; n <= 8; ++n)
        check(n * n, add[n - 2], [](auto &a, auto &b, int i) { return a[i] + b[i]; });
    check(42, QZ_MatrixSub67, [](auto &a, auto &b, int i) { return a[i] - b[i]; });
    check(36, QZ_MmultDiagM66, [](auto &a, auto &d, int i) { return a[i] * d[i % 6]; });
}

// Row-pointer matrices of every small size, counts of 0 and below included, written into a 5-by-6
// grid of sentinels: only the cells of the result may change; an empty inner dimension of a
// product gives +0.0 sums.
TEST(MatrixRowPointers, MatchTheLoopAndHonourEmptyCounts) {
    auto rng = Rng();
    for (int n = -1; n <= 4; ++n) {
        for (int m = -1; m <= 4; ++m) {
            for (int p = -1; p <= 4; ++p) {
                const int N = std::max(n, 0), M = std::max(m, 0), P = std::max(p, 0);
                const auto a = RandomEntries(rng, N * M), b = RandomEntries(rng, M * P),
                           v = RandomEntries(rng, M);
                std::vector<double> ab(N * P + 1), av(N + 1);
                Rows A(N, M), B(M, P), O(5, 6, kSentinel), T(5, 6, kSentinel), S(5, 6, kSentinel);
                for (int i = 0; i < N * M; ++i) A.r[i / M][i % M] = a[i];
                for (int i = 0; i < M * P; ++i) B.r[i / P][i % P] = b[i];
                Rows C(A);
                std::vector<double> out(6, kSentinel);
                QZ_MatrixMultXmX(A.p(), n, m, B.p(), p, O.p());
                QZ_MatrixMultVectX(A.p(), n, m, v.data(), out.data());
                QZ_MatrixTransposeXX(A.p(), n, m, T.p());
                QZ_MatrixAddX(A.p(), n, m, A.p(), S.p());
                QZ_MatrixAddX(C.p(), n, m, A.p(), C.p());
                RefMul(N, M, P, a.data(), M, b.data(), P, ab.data(), true);
                RefMul(N, M, 1, a.data(), M, v.data(), 1, av.data(), true);
                for (int i = 0; i < 5; ++i) {
                    ASSERT_TRUE(SameBits(out[i], i < N ? av[i] : kSentinel));
                    for (int j = 0; j < 6; ++j) {
                        ASSERT_TRUE(
                            SameBits(O.r[i][j], i < N && j < P ? ab[i * P + j] : kSentinel));
                        ASSERT_TRUE(SameBits(T.r[i][j], i < M && j < N ? a[j * M + i] : kSentinel));
                        ASSERT_TRUE(
                            SameBits(S.r[i][j], i < N && j < M ? a[i * M + j] * 2 : kSentinel));
                        if (i < N && j < M) ASSERT_TRUE(SameBits(C.r[i][j], S.r[i][j]));
                    }
                }
            }
        }
    }
}

}  // namespace
