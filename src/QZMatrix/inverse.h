// Inversion of the fixed-size square matrices, for the modules that invert inside their own
// algorithms (pseudo-inverses, generalized eigenproblems) without going through the exported names.
//
// Method: Doolittle LU factorisation with partial pivoting on a working copy W, the row-index
// record perm tracking which input row stands where; then one forward substitution (unit lower
// triangle, right-hand side the permuted identity column) and one back substitution per column of
// the result. The pivot is the first row of largest |value| in the column, and the matrix counts
// as singular as soon as that value lies in the zero band of IsZero (|value| <= 1e-16, absolute).
//
// The substitutions are written row by row: row i of the result is formed from rows already
// finished, one column q per lane. Each element still runs through exactly the chain of a
// column-by-column solve (start value, then the terms j in increasing order, then the division),
// only the columns are interleaved, which lets the compiler keep the rows in vector registers.
#ifndef QZ_MATRIX_INVERSE_H
#define QZ_MATRIX_INVERSE_H

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/matrix.h"
#include "QZMatrix/vector.h"

// Every loop of the elimination has bounds fixed by N; unrolled, the whole inversion becomes
// straight-line code with the row operations in vector registers.
#define QZ_INV_UNROLL _Pragma("GCC unroll 8")

namespace qz::detail {

template <int N>
inline std::uint8_t MatrixInv(const double *A, double *Ainv) {
    double W[N * N];
    double X[N * N];
    double scratch[N];
    int perm[N];

    // A is read here and nowhere else, which is what lets Ainv be A.
    MatrixCpy<N>(A, W);
    QZ_INV_UNROLL
    for (int i = 0; i < N; ++i) perm[i] = i;

    QZ_INV_UNROLL
    for (int k = 0; k < N; ++k) {
        double best = 0.0;
        int p = k;
        QZ_INV_UNROLL
        for (int i = k; i < N; ++i) {
            // On varied data the winner is unpredictable, so it is selected without a branch:
            // p takes i through a mask exactly when |W[i][k]| > best.
            const double a = Fabs(W[i * N + k]);
            const int larger = a > best;
            best = larger ? a : best;
            p ^= (p ^ i) & -larger;
        }
        // Also made for the last column, where the search covers one row.
        if (IsZero(best)) return 0;
        if (p != k) {
            const int t = perm[k];
            perm[k] = perm[p];
            perm[p] = t;
            VectCpy<N>(W + p * N, scratch);
            VectCpy<N>(W + k * N, W + p * N);
            VectCpy<N>(scratch, W + k * N);
        }
        const double *wk = W + k * N;
        QZ_INV_UNROLL
        for (int i = k + 1; i < N; ++i) {
            double *wi = W + i * N;
            wi[k] = wi[k] / wk[k];
            const double l = wi[k];
            QZ_INV_UNROLL
            for (int j = k + 1; j < N; ++j) wi[j] = wi[j] - l * wk[j];
        }
    }

    // Forward: L y = (column q of the identity, rows permuted), for every q at once.
    QZ_INV_UNROLL
    for (int i = 0; i < N; ++i) {
        double *xi = X + i * N;
        QZ_INV_UNROLL
        for (int q = 0; q < N; ++q) xi[q] = 0.0;
        xi[perm[i]] = 1.0;
        QZ_INV_UNROLL
        for (int j = 0; j < i; ++j) {
            const double l = W[i * N + j];
            const double *xj = X + j * N;
            QZ_INV_UNROLL
            for (int q = 0; q < N; ++q) xi[q] = xi[q] - l * xj[q];
        }
    }
    // Back: U x = y, from the last row up; each element divided by its pivot, never multiplied by
    // a reciprocal.
    QZ_INV_UNROLL
    for (int i = N - 1; i >= 0; --i) {
        double *xi = X + i * N;
        QZ_INV_UNROLL
        for (int j = i + 1; j < N; ++j) {
            const double u = W[i * N + j];
            const double *xj = X + j * N;
            QZ_INV_UNROLL
            for (int q = 0; q < N; ++q) xi[q] = xi[q] - u * xj[q];
        }
        const double d = W[i * N + i];
        QZ_INV_UNROLL
        for (int q = 0; q < N; ++q) xi[q] = xi[q] / d;
    }
    MatrixCpy<N>(X, Ainv);
    return 1;
}

}  // namespace qz::detail

#undef QZ_INV_UNROLL

#endif
