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
        ASSERT_ALL(SameArray(out.data(), ref.data(), count + 1),
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

// Row-pointer shapes on a worked example, written into 5-by-6 grids of sentinels (rows on separate
// heap blocks, so that a read past a row shows under the address sanitizer): only the cells of the
// result change. Counts of 0 and below write nothing; an empty inner dimension of a product gives
// +0.0 sums.
TEST(MatrixRowPointers, WorkedExampleAndEmptyCounts) {
    const double a[6] = {1, 2, 3, 4, 5, 6}, b[6] = {1, 0, 0, 1, 2, -1}, v[3] = {1, -1, 2};
    const double ab[4] = {7, -1, 16, -1}, at[6] = {1, 4, 2, 5, 3, 6},
                 twice[6] = {2, 4, 6, 8, 10, 12};
    const double zeros[4] = {}, av[2] = {5, 11};
    Rows A(2, 3), B(3, 2);
    for (int i = 0; i < 6; ++i) A.r[i / 3][i % 3] = a[i], B.r[i / 2][i % 2] = b[i];
    // Exactly the rows x cols cells of the grid hold want, the rest their sentinel.
    auto expect = [](const Rows &grid, int rows, int cols, const double *want) {
        for (int i = 0; i < 5; ++i)
            for (int j = 0; j < 6; ++j)
                EXPECT_TRUE(
                    SameBits(grid.r[i][j], i < rows && j < cols ? want[i * cols + j] : kSentinel))
                    << i << " " << j;
    };
    for (const int32_t e : {1, 0, -1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(e);
        const int n = e == 1 ? 2 : e;  // e = 1: the example itself; else an empty count
        Rows O(5, 6, kSentinel), T(5, 6, kSentinel), S(5, 6, kSentinel), C(A), Z(5, 6, kSentinel);
        double out[3] = {kSentinel, kSentinel, kSentinel},
               empty[3] = {kSentinel, kSentinel, kSentinel};
        QZ_MatrixMultXmX(A.p(), n, 3, B.p(), 2, O.p());
        QZ_MatrixMultXmX(A.p(), 2, 3, B.p(), e == 1 ? 2 : e, O.p());
        QZ_MatrixMultVectX(A.p(), n, 3, v, out);
        QZ_MatrixTransposeXX(A.p(), 2, e == 1 ? 3 : e, T.p());
        QZ_MatrixAddX(A.p(), n, 3, A.p(), S.p());
        QZ_MatrixAddX(C.p(), 2, e == 1 ? 3 : e, A.p(), C.p());  // the output may be an input
        const bool full = e == 1;
        expect(O, full ? 2 : 0, 2, ab);
        expect(T, full ? 3 : 0, 2, at);
        expect(S, full ? 2 : 0, 3, twice);
        for (int i = 0; i < 6; ++i) EXPECT_EQ(C.r[i / 3][i % 3], full ? twice[i] : a[i]);
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(SameBits(out[i], full && i < 2 ? av[i] : kSentinel));
        if (full) continue;
        QZ_MatrixMultXmX(A.p(), 2, e, B.p(), 2, Z.p());  // empty inner dimension
        QZ_MatrixMultVectX(A.p(), 2, e, v, empty);
        expect(Z, 2, 2, zeros);
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(SameBits(empty[i], i < 2 ? 0.0 : kSentinel)) << i;
    }
}

}  // namespace
