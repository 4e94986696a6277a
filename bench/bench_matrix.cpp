// Matrix products of the kinematic sizes, side by side with Eigen's fixed-size products on the
// same inputs. Every benchmark escapes its inputs and output each iteration, so that neither side
// can hoist or drop the work.
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

template <int R, int C>
struct Operand {
    alignas(64) double v[R * C];
    explicit Operand(unsigned seed) {
        std::mt19937_64 rng(seed);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        for (double &x : v) x = u(rng);
    }
};

using Product = void (*)(const double *, const double *, double *);

// QZ side: Out (M x P) = f(A (M x K), B (K x P)).
template <int M, int K, int P>
void RunQZ(benchmark::State &state, Product f) {
    Operand<M, K> a(1);
    Operand<K, P> b(2);
    alignas(64) double out[M * P];
    for (auto _ : state) {
        benchmark::DoNotOptimize(a.v);
        benchmark::DoNotOptimize(b.v);
        f(a.v, b.v, out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
}

#define QZ_BENCH(name, M, K, P)                                              \
    void BM_QZ_##name(benchmark::State &s) { RunQZ<M, K, P>(s, QZ_##name); } \
    BENCHMARK(BM_QZ_##name);

QZ_BENCH(MatrixMult3, 3, 3, 3)
QZ_BENCH(MatrixMult4, 4, 4, 4)
QZ_BENCH(MatrixMult6, 6, 6, 6)
QZ_BENCH(MatrixMult7, 7, 7, 7)
QZ_BENCH(MatrixMultVect6, 6, 6, 1)
QZ_BENCH(MatrixMultVect7, 7, 7, 1)
QZ_BENCH(Matrix67MultVect7, 6, 7, 1)

#ifdef QZ_BENCH_HAVE_EIGEN
// Eigen side: fixed-size row-major operands holding the same values, product into a fixed-size
// result without a temporary.
template <int M, int K, int P>
void RunEigen(benchmark::State &state) {
    using MatA = Eigen::Matrix<double, M, K, Eigen::RowMajor>;
    using MatB = Eigen::Matrix<double, K, P, (P == 1 ? Eigen::ColMajor : Eigen::RowMajor)>;
    using MatO = Eigen::Matrix<double, M, P, (P == 1 ? Eigen::ColMajor : Eigen::RowMajor)>;
    Operand<M, K> a(1);
    Operand<K, P> b(2);
    MatA ea = Eigen::Map<const MatA>(a.v);
    MatB eb = Eigen::Map<const MatB>(b.v);
    MatO eo;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ea.data());
        benchmark::DoNotOptimize(eb.data());
        eo.noalias() = ea * eb;
        benchmark::DoNotOptimize(eo.data());
        benchmark::ClobberMemory();
    }
}

#define EIGEN_BENCH(name, M, K, P)                                      \
    void BM_Eigen_##name(benchmark::State &s) { RunEigen<M, K, P>(s); } \
    BENCHMARK(BM_Eigen_##name);

EIGEN_BENCH(MatrixMult3, 3, 3, 3)
EIGEN_BENCH(MatrixMult4, 4, 4, 4)
EIGEN_BENCH(MatrixMult6, 6, 6, 6)
EIGEN_BENCH(MatrixMult7, 7, 7, 7)
EIGEN_BENCH(MatrixMultVect6, 6, 6, 1)
EIGEN_BENCH(MatrixMultVect7, 7, 7, 1)
EIGEN_BENCH(Matrix67MultVect7, 6, 7, 1)
#endif

}  // namespace
