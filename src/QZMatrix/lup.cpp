// LU decomposition with partial pivoting of row-pointer matrices of any size, in place, and its
// three uses: solving a linear system, the determinant and the inverse.
//
// The elimination is the one of the fixed-size inversion family (first row of largest |value| as
// pivot, multipliers kept below the diagonal), with two differences callers rely on: a pivot is
// refused only when strictly below 1e-16, and success is reported as 0, a singular matrix as 1.
// Rows are exchanged by moving their contents, never the caller's row pointers, so the pointer
// array stays valid; P records which input row stands where and, after the last entry, how many
// exchanges were made (the sign of the determinant).
#include "QZMatrix.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/vector.h"

namespace qz::detail {

namespace {

constexpr double kLupPivotMin = 1e-16;  // a pivot strictly below this is singular
constexpr std::int32_t kScratchLen = 32;

// Exchanges the contents of rows a and b (n values each) through a fixed scratch row: b goes to
// the scratch, a to b, the scratch to a, each move a unit scale (a copy, bit for bit). Long rows
// pass in blocks, so no row length can overflow the scratch.
void ExchangeRows(double *a, double *b, std::int32_t n) {
    double scratch[kScratchLen];
    std::int32_t off = 0;
    for (std::int32_t left = n; left > 0;) {
        const std::int32_t len = left < kScratchLen ? left : kScratchLen;
        VectScale(b + off, len, 1.0, scratch);
        VectScale(a + off, len, 1.0, b + off);
        VectScale(scratch, len, 1.0, a + off);
        off += len;
        left -= len;
    }
}

std::int32_t MatLUPD(double *const *A, std::int32_t m, std::int32_t n, std::int32_t *P) {
    if (m < 0) m = 0;
    if (n < 0) n = 0;
    const std::int32_t len = n <= m ? n : m;
    if (len < 1) {
        P[len] = 0;
        return 0;
    }
    for (std::int32_t i = 0; i < len; ++i) P[i] = i;
    P[len] = 0;

    // Only the first len rows take part: with more rows than columns the rest stay as they are,
    // with fewer, the columns beyond the square are carried along.
    for (std::int32_t k = 0; k < len; ++k) {
        double best = 0.0;
        std::int32_t p = k;
        for (std::int32_t i = k; i < len; ++i) {
            const double a = Fabs(A[i][k]);
            if (a > best) {
                best = a;
                p = i;
            }
        }
        if (best < kLupPivotMin) return 1;
        if (p != k) {
            const std::int32_t t = P[k];
            P[k] = P[p];
            P[p] = t;
            ExchangeRows(A[k], A[p], n);
            P[len] = P[len] + 1;
        }
        if (k + 1 >= len) return 0;
        const double *rk = A[k];
        for (std::int32_t i = k + 1; i < len; ++i) {
            double *ri = A[i];
            ri[k] = ri[k] / rk[k];
            const double l = ri[k];
            for (std::int32_t j = k + 1; j < n; ++j) ri[j] = ri[j] - l * rk[j];
        }
    }
    return 0;
}

// Forward substitution through the unit lower triangle from the permuted right-hand side, then
// back substitution through U, each element a running difference divided by its pivot last.
void LUPSolveEq(double *const *LU, std::int32_t n, const std::int32_t *P, const double *b,
                double *x) {
    // An empty system has nothing to read or write; returning here also keeps n - 1 below from
    // overflowing for the most negative count.
    if (n < 1) return;
    for (std::int32_t i = 0; i < n; ++i) {
        double s = b[P[i]];
        for (std::int32_t j = 0; j < i; ++j) s = s - LU[i][j] * x[j];
        x[i] = s;
    }
    for (std::int32_t i = n - 1; i >= 0; --i) {
        double s = x[i];
        for (std::int32_t j = i + 1; j < n; ++j) s = s - LU[i][j] * x[j];
        x[i] = s / LU[i][i];
    }
}

double MatLUPDet(double *const *LU, std::int32_t n, const std::int32_t *P) {
    if (n < 1) return 0.0;
    double d = LU[0][0];
    for (std::int32_t i = 1; i < n; ++i) d = d * LU[i][i];
    return (P[n] % 2 != 0) ? -d : d;
}

// One solve per column of the identity, the right-hand side taken through P, written straight
// into column q of Inv.
void MatLUPInv(double *const *LU, std::int32_t n, const std::int32_t *P, double *const *Inv) {
    for (std::int32_t q = 0; q < n; ++q) {
        for (std::int32_t i = 0; i < n; ++i) {
            double s = P[i] == q ? 1.0 : 0.0;
            for (std::int32_t j = 0; j < i; ++j) s = s - LU[i][j] * Inv[j][q];
            Inv[i][q] = s;
        }
        for (std::int32_t i = n - 1; i >= 0; --i) {
            double s = Inv[i][q];
            for (std::int32_t j = i + 1; j < n; ++j) s = s - LU[i][j] * Inv[j][q];
            Inv[i][q] = s / LU[i][i];
        }
    }
}

}  // namespace

}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZ_MatLUPD(double *const *A, int32_t m, int32_t n, int32_t *P) {
    return qz::detail::MatLUPD(A, m, n, P);
}

QZ_API void QZ_LUPSolveEq(double *const *LU, int32_t n, const int32_t *P, const double *b,
                          double *x) {
    qz::detail::LUPSolveEq(LU, n, P, b, x);
}

QZ_API double QZ_MatLUPDet(double *const *LU, int32_t n, const int32_t *P) {
    return qz::detail::MatLUPDet(LU, n, P);
}

QZ_API void QZ_MatLUPInv(double *const *LU, int32_t n, const int32_t *P, double *const *Inv) {
    qz::detail::MatLUPInv(LU, n, P, Inv);
}

}  // extern "C"
