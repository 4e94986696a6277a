// Determinant of the leading n-by-n block of an 8-by-8 array, by cofactor expansion along the
// first row.
//
// The expansion is defined recursively: det of a block = sum over its columns k of
// det(minor without row 0 and column k) * (row 0, column k), added for even k and subtracted for
// odd k, starting from 0.0. Written that way it visits n! one-by-one minors (40320 for n = 8), yet
// a minor met at depth d always consists of rows d..n-1 and some set of n-d columns kept in their
// order, so there are only 2^n distinct minors. Each is evaluated once here, from the smaller
// minors it expands into, with exactly the products, signs and running sum of the recursive
// form, so the result is the same to the last bit (signed zeros, infinities and NaN included),
// for n = 8 with about 1,000 products instead of 69,000 and no copying of minors.
#include "QZMatrix.h"

#include <cstddef>
#include <cstdint>

namespace qz::detail {

namespace {

constexpr int kDetStride = 8;  // row stride of the caller's array, whatever n is
constexpr int kDetMaxN = 8;

double Determinant(const double *A, std::int32_t n) {
    if (n > kDetMaxN) return 0.0;  // the array holds no larger block
    if (n == 1) return A[0];
    if (n < 1) return 0.0;

    // minor[S]: determinant of the minor on the columns of the bit set S and the last |S| rows.
    // Visiting the sets in increasing order finds every S \ {c} (a smaller number) ready.
    double minor[1u << kDetMaxN];
    unsigned char count[1u << kDetMaxN];  // number of columns in each set
    count[0] = 0;
    const unsigned all = (1u << n) - 1u;
    for (unsigned set = 1; set <= all; ++set) {
        const int size = count[set >> 1] + static_cast<int>(set & 1u);
        count[set] = static_cast<unsigned char>(size);
        const double *row = A + static_cast<std::ptrdiff_t>(n - size) * kDetStride;
        if (size == 1) {
            minor[set] = row[__builtin_ctz(set)];
            continue;
        }
        double det = 0.0;
        int k = 0;  // position of the column within the minor: fixes the sign
        for (unsigned rest = set; rest != 0; rest &= rest - 1, ++k) {
            const unsigned bit = rest & (~rest + 1u);
            const double term = minor[set ^ bit] * row[__builtin_ctz(bit)];
            det = (k & 1) != 0 ? det - term : det + term;
        }
        minor[set] = det;
    }
    // cppcheck-suppress uninitvar ; n >= 2 here, so the loop has written every minor up to all
    return minor[all];
}

}  // namespace

}  // namespace qz::detail

extern "C" {

QZ_API double QZ_MatrixDeterminant(const double *A, int32_t n) {
    return qz::detail::Determinant(A, n);
}

}  // extern "C"
