// Inversion of the fixed-size square matrices, for the modules that invert inside their own
// algorithms (pseudo-inverses, generalized eigenproblems) without going through the exported names.
//
// Method: Doolittle LU factorisation with partial pivoting on a working copy W, the row-index
// record perm tracking which input row stands where; then one forward substitution (unit lower
// triangle, right-hand side the permuted identity column) and one back substitution per column of
// the result. The pivot is the first row of largest |value| in the column, and the matrix counts
// as singular as soon as that value lies in the zero band of IsZero (|value| <= 1e-16, absolute).
//
// How it is laid out for speed, none of which changes a single operation on a value:
// - W and the result are held as rows of Pairs (two columns to a register, an odd last column
//   beside a padding lane that is never stored), so every row operation advances two columns
//   with one instruction and each lane rounds exactly as the scalar operation would.
// - Which row wins a pivot search is unpredictable on varied data, so nothing branches on it: the
//   winner is found from a mask of the rows that beat the best so far, and the row exchange is a
//   bitwise selection between rows (a copy, moving every bit unchanged), made even when p = k.
// - The substitutions are written row by row: row i of the result is formed from rows already
//   finished, one column q per lane. Each element still runs through exactly the chain of a
//   column-by-column solve (start value, then the terms j in increasing order, then the division
//   by the pivot, never a multiplication by its reciprocal); only the columns are interleaved.
#ifndef QZ_MATRIX_INVERSE_H
#define QZ_MATRIX_INVERSE_H

#include <cstddef>
#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/matrix.h"

// Every loop of the inversion has bounds fixed by N; unrolled, the whole inversion becomes
// straight-line code with the rows in vector registers.
#define QZ_INV_UNROLL _Pragma("GCC unroll 8")

namespace qz::detail {

// Rows of the identity of any size up to kMaxInv: the row that has its 1.0 in column q starts at
// kUnitRow + (kMaxInv - 1) - q (and reads 0.0 one element past the row, for a padding lane).
constexpr int kMaxInv = 8;
inline constexpr double kUnitRow[2 * kMaxInv] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0,
                                                 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};

// A lane-wise selection mask: all bits set in the lanes to take from the first operand.
using PairMask = long long __attribute__((vector_size(16)));

// Vector types of one size reinterpret their bits without conversion, which is what a lane mask
// needs.
// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast)
inline Pair Select(PairMask take_a, Pair a, Pair b) {
    return reinterpret_cast<Pair>((reinterpret_cast<PairMask>(a) & take_a) |
                                  (reinterpret_cast<PairMask>(b) & ~take_a));
}
// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)

// Index of the highest set bit of a nonzero mask.
inline int HighestBit(unsigned mask) { return 31 - __builtin_clz(mask); }

template <int N>
inline std::uint8_t MatrixInv(const double *A, double *Ainv) {
    static_assert(N >= 2 && N <= kMaxInv, "the inversion family covers sizes 2 to 8");
    constexpr int kP = (N + 1) / 2;  // Pairs per row
    constexpr bool kOdd = (N % 2) != 0;

    // The working copy W, taken element by element from A; A is read here and nowhere else,
    // which is what lets Ainv be A.
    Pair w[N][kP];
    int perm[N];
    QZ_INV_UNROLL
    for (std::ptrdiff_t i = 0; i < N; ++i) {
        QZ_INV_UNROLL
        for (std::ptrdiff_t q = 0; q < N / 2; ++q) w[i][q] = LoadPair(A + i * N + 2 * q);
        if constexpr (kOdd) w[i][kP - 1] = Pair{A[i * N + N - 1], 0.0};
        perm[i] = static_cast<int>(i);
    }
    // Element [i][j] of W.
    auto at = [&w](int i, int j) { return w[i][j / 2][j % 2]; };

    QZ_INV_UNROLL
    for (int k = 0; k < N; ++k) {
        // Pivot search: each row that beats the best so far sets its bit, so the last such row
        // (the highest bit) is the first row of largest |value|. Row k's own bit is always set:
        // a column that never beats 0.0 leaves p = k.
        double best = 0.0;
        unsigned wins = 1u;
        QZ_INV_UNROLL
        for (int i = k; i < N; ++i) {
            const double a = Fabs(at(i, k));
            const bool larger = a > best;
            wins |= static_cast<unsigned>(larger) << (i - k);
            best = larger ? a : best;
        }
        // Also made for the last column, where the search covers one row.
        if (IsZero(best)) return 0;
        const int p = k + HighestBit(wins);

        // Exchange rows k and p of W and entries k and p of perm.
        if (k < N - 1) {
            Pair rowk[kP];
            int permk = perm[k];
            QZ_INV_UNROLL
            for (int q = 0; q < kP; ++q) rowk[q] = w[k][q];
            QZ_INV_UNROLL
            for (int i = k + 1; i < N; ++i) {
                const long long s = -static_cast<long long>(p == i);
                const PairMask take = {s, s};
                QZ_INV_UNROLL
                for (int q = 0; q < kP; ++q) {
                    const Pair wi = w[i][q];
                    w[k][q] = Select(take, wi, w[k][q]);
                    w[i][q] = Select(take, rowk[q], wi);
                }
                const int m = -static_cast<int>(p == i);
                const int pi = perm[i];
                perm[k] ^= (perm[k] ^ pi) & m;
                perm[i] = pi ^ ((pi ^ permk) & m);
            }
        }

        // Eliminate below the pivot: the multiplier W[i][k] / W[k][k] is kept in place of the
        // eliminated element, then W[i][j] = W[i][j] - W[i][k] * W[k][j] for j > k. Lanes left of
        // column k+1 in the pivot's Pair are computed but not kept.
        const double pivot = at(k, k);
        QZ_INV_UNROLL
        for (int i = k + 1; i < N; ++i) {
            const double l = at(i, k) / pivot;
            const Pair l2 = {l, l};
            const int qk = k / 2;
            if (k % 2 == 0) {
                const Pair t = w[i][qk] - l2 * w[k][qk];
                w[i][qk] = Pair{l, t[1]};
            } else {
                w[i][qk][1] = l;
            }
            QZ_INV_UNROLL
            for (int q = qk + 1; q < kP; ++q) w[i][q] = w[i][q] - l2 * w[k][q];
        }
    }

    // Forward: L y = (column q of the identity, rows permuted), every q at once.
    Pair x[N][kP];
    QZ_INV_UNROLL
    for (int i = 0; i < N; ++i) {
        // Start from row perm[i] of the identity: 1.0 in column perm[i], 0.0 elsewhere.
        const double *e = kUnitRow + (kMaxInv - 1) - perm[i];
        QZ_INV_UNROLL
        for (std::ptrdiff_t q = 0; q < kP; ++q) x[i][q] = LoadPair(e + 2 * q);
        QZ_INV_UNROLL
        for (int j = 0; j < i; ++j) {
            const double l = at(i, j);
            const Pair l2 = {l, l};
            QZ_INV_UNROLL
            for (int q = 0; q < kP; ++q) x[i][q] = x[i][q] - l2 * x[j][q];
        }
    }
    // Back: U x = y, from the last row up, each element divided by its pivot.
    QZ_INV_UNROLL
    for (int i = N - 1; i >= 0; --i) {
        QZ_INV_UNROLL
        for (int j = i + 1; j < N; ++j) {
            const double u = at(i, j);
            const Pair u2 = {u, u};
            QZ_INV_UNROLL
            for (int q = 0; q < kP; ++q) x[i][q] = x[i][q] - u2 * x[j][q];
        }
        const double d = at(i, i);
        const Pair d2 = {d, d};
        QZ_INV_UNROLL
        for (int q = 0; q < kP; ++q) x[i][q] = x[i][q] / d2;
    }

    QZ_INV_UNROLL
    for (std::ptrdiff_t i = 0; i < N; ++i) {
        QZ_INV_UNROLL
        for (std::ptrdiff_t q = 0; q < N / 2; ++q) StorePair(Ainv + i * N + 2 * q, x[i][q]);
        if constexpr (kOdd) Ainv[i * N + N - 1] = x[i][kP - 1][0];
    }
    return 1;
}

}  // namespace qz::detail

#undef QZ_INV_UNROLL

#endif
