// Quaternion product, matrix <-> quaternion conversions and slerp, against Eigen's Quaterniond.
// Each benchmark cycles through a small pool of random unit quaternions so that no call sees a
// constant input.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "QZQuaternions.h"

#if __has_include(<Eigen/Geometry>)
#include <Eigen/Geometry>
#define QZ_BENCH_EIGEN 1
#endif

namespace {

constexpr int kPool = 64;

struct Pool {
    double q[kPool][4];
    double r[kPool][9];
    Pool() {
        std::mt19937_64 rng(7);
        std::normal_distribution<double> g;
        for (int n = 0; n < kPool; ++n) {
            double s = 0.0;
            for (double &v : q[n]) {
                v = g(rng);
                s += v * v;
            }
            for (double &v : q[n]) v /= std::sqrt(s);
            QZ_Quaternion2Matrix3(q[n], r[n]);
        }
    }
};

const Pool &P() {
    static const Pool pool;
    return pool;
}

void BM_QZ_QuatMult(benchmark::State &st) {
    const Pool &p = P();
    double out[4];
    int i = 0;
    for (auto _ : st) {
        QZ_QuatMult(p.q[i], p.q[(i + 1) % kPool], out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_QZ_QuatMult);

void BM_QZ_Matrix2Quaternion3(benchmark::State &st) {
    const Pool &p = P();
    double out[4];
    int i = 0;
    for (auto _ : st) {
        QZ_Matrix2Quaternion3(p.r[i], out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_QZ_Matrix2Quaternion3);

void BM_QZ_Quaternion2Matrix3(benchmark::State &st) {
    const Pool &p = P();
    double out[9];
    int i = 0;
    for (auto _ : st) {
        QZ_Quaternion2Matrix3(p.q[i], out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_QZ_Quaternion2Matrix3);

void BM_QZ_QuatSlerp(benchmark::State &st) {
    const Pool &p = P();
    double q2[4], out[4];
    int i = 0;
    double t = 0.0;
    for (auto _ : st) {
        const double *b = p.q[(i + 1) % kPool];
        q2[0] = b[0], q2[1] = b[1], q2[2] = b[2], q2[3] = b[3];
        QZ_QuatSlerp(p.q[i], q2, t, out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
        t = t > 0.99 ? 0.0 : t + 0.01;
    }
}
BENCHMARK(BM_QZ_QuatSlerp);

#ifdef QZ_BENCH_EIGEN
struct EigenPool {
    Eigen::Quaterniond q[kPool];
    Eigen::Matrix3d r[kPool];
    EigenPool() {
        for (int n = 0; n < kPool; ++n) {
            const double *s = P().q[n];
            q[n] = Eigen::Quaterniond(s[3], s[0], s[1], s[2]);
            r[n] = q[n].toRotationMatrix();
        }
    }
};

const EigenPool &E() {
    static const EigenPool pool;
    return pool;
}

void BM_Eigen_QuatMult(benchmark::State &st) {
    const EigenPool &p = E();
    int i = 0;
    for (auto _ : st) {
        Eigen::Quaterniond out = p.q[i] * p.q[(i + 1) % kPool];
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_Eigen_QuatMult);

void BM_Eigen_Matrix2Quaternion(benchmark::State &st) {
    const EigenPool &p = E();
    int i = 0;
    for (auto _ : st) {
        Eigen::Quaterniond out(p.r[i]);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_Eigen_Matrix2Quaternion);

void BM_Eigen_Quaternion2Matrix(benchmark::State &st) {
    const EigenPool &p = E();
    int i = 0;
    for (auto _ : st) {
        Eigen::Matrix3d out = p.q[i].toRotationMatrix();
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
    }
}
BENCHMARK(BM_Eigen_Quaternion2Matrix);

void BM_Eigen_Slerp(benchmark::State &st) {
    const EigenPool &p = E();
    int i = 0;
    double t = 0.0;
    for (auto _ : st) {
        Eigen::Quaterniond out = p.q[i].slerp(t, p.q[(i + 1) % kPool]);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % kPool;
        t = t > 0.99 ? 0.0 : t + 0.01;
    }
}
BENCHMARK(BM_Eigen_Slerp);
#endif

}  // namespace
