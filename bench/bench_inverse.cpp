// Inverses and the determinant: ns per call of the fixed-size inverses beside Eigen's inverse()
// on the same inputs, and the determinant of 8 beside the plain cofactor recursion it reproduces.
#include <benchmark/benchmark.h>

#include <random>

#include "QZMatrix.h"

#ifdef __has_include
#if __has_include(<Eigen/Dense>)
#include <Eigen/Dense>
#define QZ_BENCH_HAVE_EIGEN 1
#endif
#endif

namespace {

constexpr int kInputs = 64;  // cycled through, so that no call sees a constant input

template <int N>
struct Inputs {
    double a[kInputs][N * N];
    Inputs() {
        std::mt19937_64 rng(12345);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        for (auto &m : a) {
            for (double &x : m) x = u(rng);
        }
    }
};

template <int N>
const Inputs<N> &Data() {
    static const Inputs<N> d;
    return d;
}

template <int N, uint8_t (*Inv)(const double *, double *)>
void BM_QZ_MatrixInv(benchmark::State &state) {
    const auto &d = Data<N>();
    double out[N * N];
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Inv(d.a[i], out));
        benchmark::ClobberMemory();
        i = (i + 1) % kInputs;
    }
}

#ifdef QZ_BENCH_HAVE_EIGEN
template <int N>
void BM_Eigen_Inverse(benchmark::State &state) {
    using Mat = Eigen::Matrix<double, N, N, Eigen::RowMajor>;
    const auto &d = Data<N>();
    Mat out;
    int i = 0;
    for (auto _ : state) {
        out = Eigen::Map<const Mat>(d.a[i]).inverse();
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
        i = (i + 1) % kInputs;
    }
}

BENCHMARK(BM_Eigen_Inverse<4>);
BENCHMARK(BM_Eigen_Inverse<6>);
BENCHMARK(BM_Eigen_Inverse<7>);
#endif

BENCHMARK(BM_QZ_MatrixInv<4, QZ_MatrixInv4>);
BENCHMARK(BM_QZ_MatrixInv<6, QZ_MatrixInv6>);
BENCHMARK(BM_QZ_MatrixInv<7, QZ_MatrixInv7>);

// The cofactor recursion as written: every level copies its minor into an 8-by-8 array.
double PlainDeterminant(const double *A, int n) {
    if (n == 1) return A[0];
    if (n < 1) return 0.0;
    double det = 0.0;
    for (int k = 0; k < n; ++k) {
        double M[64];
        for (int r = 0; r < n - 1; ++r) {
            for (int j = 0; j < n - 1; ++j)
                M[r * 8 + j] = j < k ? A[(r + 1) * 8 + j] : A[(r + 1) * 8 + j + 1];
        }
        const double term = PlainDeterminant(M, n - 1) * A[k];
        det = (k % 2 == 0) ? det + term : det - term;
    }
    return det;
}

void BM_QZ_MatrixDeterminant8(benchmark::State &state) {
    const auto &d = Data<8>();
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(QZ_MatrixDeterminant(d.a[i], 8));
        i = (i + 1) % kInputs;
    }
}

void BM_PlainDeterminant8(benchmark::State &state) {
    const auto &d = Data<8>();
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainDeterminant(d.a[i], 8));
        i = (i + 1) % kInputs;
    }
}

BENCHMARK(BM_QZ_MatrixDeterminant8);
BENCHMARK(BM_PlainDeterminant8);

}  // namespace
