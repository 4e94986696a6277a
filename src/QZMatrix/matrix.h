// Fixed-shape matrix operations as inline templates, for the modules of the library that multiply,
// transpose or copy small matrices (inverses, decompositions, rotations, Jacobians).
//
// The exported QZ_Matrix* functions are thin wrappers over these, so a module that calls them
// here gets exactly the same bits without going through an exported symbol.
//
// Matrices are row-major; an operand with a row stride different from its column count (the
// rotation block of a 4-by-4 transform) says so through its LD parameter.
//
// Products: every output element is a running sum of its products over the inner index k in
// increasing order. Which value the sum starts from matters for the sign of a zero result: a
// product family either starts with the k = 0 product (Start::kFirstProduct) or adds every product
// to 0.0 (Start::kZero), which turns a lone -0.0 product into +0.0. The sums are kept in locals
// and stored when complete, which gives the same bits as accumulating in the output because the
// output never shares storage with an input.
#ifndef QZ_MATRIX_MATRIX_H
#define QZ_MATRIX_MATRIX_H

#include <cstddef>
#include <cstdint>

namespace qz::detail {

enum class Start { kFirstProduct, kZero };

// Two doubles side by side, for running two independent sums with one instruction. Lane-wise
// arithmetic rounds each lane exactly as the scalar operation would, so it changes no bit.
using Pair = double __attribute__((vector_size(16)));

inline Pair LoadPair(const double *p) {
    Pair r;
    __builtin_memcpy(&r, p, sizeof r);
    return r;
}
inline void StorePair(double *p, Pair x) { __builtin_memcpy(p, &x, sizeof x); }

// The smaller of two sizes, for block sizes fixed at compile time.
constexpr int SmallerOf(int a, int b) { return a < b ? a : b; }

// The first term of a running sum: the product itself, or the product added to 0.0.
template <Start S, typename T>
inline T FirstTerm(T product) {
    if constexpr (S == Start::kZero) {
        return T{} + product;
    } else {
        return product;
    }
}

// R consecutive output rows of Out (row stride P) = A (row stride LDA) . B (K x P, stride LDB).
//
// The k loop runs outside the column loop, so the P running sums of a row advance side by side,
// two to a Pair (an odd last column runs alone), while each still adds its products in increasing
// k exactly as a sum formed one element at a time would. Taking two rows together lets both use
// every row of B loaded once.
template <int R, int P, int LDA>
inline void MatMulStep(Pair (*acc)[P / 2 > 0 ? P / 2 : 1], double *last, const double *A,
                       const double *b, std::ptrdiff_t k) {
    constexpr int kPairs = P / 2;
    Pair bq[kPairs > 0 ? kPairs : 1];
    for (std::ptrdiff_t q = 0; q < kPairs; ++q) bq[q] = LoadPair(b + 2 * q);
    for (std::ptrdiff_t r = 0; r < R; ++r) {
        const double a = A[r * LDA + k];
        const Pair a2 = {a, a};
        for (int q = 0; q < kPairs; ++q) acc[r][q] = acc[r][q] + a2 * bq[q];
        if (P % 2) last[r] = last[r] + a * b[P - 1];
    }
}

template <int R, int K, int P, Start S, int LDA, int LDB>
inline void MatMulRows(const double *A, const double *B, double *Out) {
    constexpr int kPairs = P / 2;
    constexpr bool kOdd = (P % 2) != 0;
    Pair acc[R][kPairs > 0 ? kPairs : 1];
    double last[R];
    for (std::ptrdiff_t r = 0; r < R; ++r) {
        const double a = A[r * LDA];
        const Pair a2 = {a, a};
        for (std::ptrdiff_t q = 0; q < kPairs; ++q) {
            acc[r][q] = FirstTerm<S>(a2 * LoadPair(B + 2 * q));
        }
        if (kOdd) last[r] = FirstTerm<S>(a * B[P - 1]);
    }
    if constexpr (K * P <= 16) {
        // Small enough for every operand to stay in registers: straight-line code.
#pragma GCC unroll 8
        for (std::ptrdiff_t k = 1; k < K; ++k) MatMulStep<R, P, LDA>(acc, last, A, B + k * LDB, k);
    } else {
        // Unrolled, this loop would let the compiler load every operand up front and spill the
        // running sums; one k per iteration keeps them all in registers.
#pragma GCC unroll 1
        for (std::ptrdiff_t k = 1; k < K; ++k) MatMulStep<R, P, LDA>(acc, last, A, B + k * LDB, k);
    }
    for (std::ptrdiff_t r = 0; r < R; ++r) {
        for (std::ptrdiff_t q = 0; q < kPairs; ++q) StorePair(Out + r * P + 2 * q, acc[r][q]);
        if (kOdd) Out[r * P + P - 1] = last[r];
    }
}

// Out (M x P, row stride P) = A (M x K, row stride LDA) . B (K x P, row stride LDB); every element
// the running sum over increasing k, started as S says.
template <int M, int K, int P, Start S, int LDA = K, int LDB = P>
inline void MatMul(const double *A, const double *B, double *Out) {
    // cppcheck-suppress redundantCondition ; sizes are parameters, some instantiations repeat one
    static_assert(M > 0 && K > 0 && P > 0, "empty products have no fixed shape");
    // Rows taken together: up to four when a row's sums fit in two registers, else two, so that
    // the running sums and one row of B stay within the sixteen vector registers.
    constexpr int kBlock = P <= 3 ? SmallerOf(M, 4) : SmallerOf(M, 2);
    for (std::ptrdiff_t i = 0; i + kBlock <= M; i += kBlock) {
        // Reload B for every block of rows rather than keep all of it live across the loop: it
        // does not fit the registers and would be spilled to the stack and reloaded anyway.
        const double *b = B;
        __asm__("" : "+r"(b));
        MatMulRows<kBlock, K, P, S, LDA, LDB>(A + i * LDA, b, Out + i * P);
    }
    constexpr int kRest = M % kBlock;
    if constexpr (kRest > 0) {
        constexpr std::ptrdiff_t i = M - kRest;
        MatMulRows<kRest, K, P, S, LDA, LDB>(A + i * LDA, B, Out + i * P);
    }
}

// out (M) = Mat (M x K, row stride LD) . v (K); each out[i] the running sum over increasing k.
//
// Two rows go together: their products of two consecutive k are formed with one multiplication
// per row, then regrouped by k so that one addition advances both rows' sums by one term each,
// still in increasing k.
template <int M, int K, Start S, int LD = K>
inline void MatVec(const double *Mat, const double *v, double *out) {
    // cppcheck-suppress redundantCondition ; sizes are parameters, some instantiations repeat one
    static_assert(M > 0 && K > 0, "empty products have no fixed shape");
    for (std::ptrdiff_t i = 0; i + 1 < M; i += 2) {
        const double *m0 = Mat + i * LD;
        const double *m1 = m0 + LD;
        Pair acc = {0.0, 0.0};
        for (int k = 0; k + 1 < K; k += 2) {
            const Pair vk = LoadPair(v + k);
            const Pair p0 = LoadPair(m0 + k) * vk;
            const Pair p1 = LoadPair(m1 + k) * vk;
            const Pair lo = {p0[0], p1[0]};
            const Pair hi = {p0[1], p1[1]};
            acc = (k == 0) ? FirstTerm<S>(lo) : acc + lo;
            acc = acc + hi;
        }
        if (K % 2) {
            const double vk = v[K - 1];
            const Pair p = Pair{m0[K - 1], m1[K - 1]} * Pair{vk, vk};
            acc = (K == 1) ? FirstTerm<S>(p) : acc + p;
        }
        StorePair(out + i, acc);
    }
    if (M % 2) {
        const double *m = Mat + static_cast<std::ptrdiff_t>(M - 1) * LD;
        double acc = FirstTerm<S>(m[0] * v[0]);
        for (int k = 1; k < K; ++k) acc = acc + m[k] * v[k];
        out[M - 1] = acc;
    }
}

// out (P) = v (K) . Mat (K x P), every sum from 0.0: a single-row product.
template <int K, int P>
inline void VecMat(const double *v, const double *Mat, double *out) {
    MatMulRows<1, K, P, Start::kZero, K, P>(v, Mat, out);
}

// B (N x M) = transpose of A (M x N, row stride LDA); values move bit for bit.
template <int M, int N, int LDA = N>
inline void MatTranspose(const double *A, double *B) {
    for (int i = 0; i < M; ++i) {
        for (int j = 0; j < N; ++j) B[j * M + i] = A[i * LDA + j];
    }
}

// ---- the square families, under the names other modules call ------------------------------------

// Out = A . B, n x n, every sum starting with its k = 0 product.
template <int N>
inline void MatrixMult(const double *A, const double *B, double *Out) {
    MatMul<N, N, N, Start::kFirstProduct>(A, B, Out);
}

template <int N>
inline void MatrixTranspose(const double *A, double *B) {
    MatTranspose<N, N>(A, B);
}

template <int N>
inline void MatrixCpy(const double *src, double *dst) {
    for (int i = 0; i < N * N; ++i) dst[i] = src[i];
}

// Each row cleared, then its diagonal element set.
template <int N>
inline void MatrixIdentity(double *M) {
    for (int i = 0; i < N; ++i) {
        for (int j = 0; j < N; ++j) M[i * N + j] = 0.0;
        M[i * N + i] = 1.0;
    }
}

template <int N>
inline void MatrixAdd(const double *A, const double *B, double *Out) {
    for (int i = 0; i < N * N; ++i) Out[i] = A[i] + B[i];
}

// out = R . v for a 3-by-3 R, each sum starting with its first product.
inline void MatrixMultVect3(const double *R, const double *v, double *out) {
    MatVec<3, 3, Start::kFirstProduct>(R, v, out);
}

}  // namespace qz::detail

#endif
