// Decompositions against Eigen's fixed-size solvers: time per call and, beside it as a counter,
// the accuracy of each side over the same inputs (the largest residual ratio, in units of
// n * eps * |A|):
//   eig7               |A V - V diag(lambda)|     vs SelfAdjointEigenSolver
//   generalized_eig7   |A V - B V diag(lambda)|   vs GeneralizedSelfAdjointEigenSolver
//   Cholesky7          |L L^T - A|                vs LLT
//   QZ_RightPsoInv67   |A P - I|                  vs CompleteOrthogonalDecomposition
#include <benchmark/benchmark.h>

#include <Eigen/Dense>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "QZMatrix.h"

namespace {

constexpr int kCases = 64;
constexpr double kEps = 2.220446049250313e-16;
using M7 = Eigen::Matrix<double, 7, 7, Eigen::RowMajor>;
using M67 = Eigen::Matrix<double, 6, 7, Eigen::RowMajor>;
using M76 = Eigen::Matrix<double, 7, 6, Eigen::RowMajor>;
using M6 = Eigen::Matrix<double, 6, 6, Eigen::RowMajor>;

struct Inputs {
    std::vector<M7> sym, spd;
    std::vector<M67> jac;
};

const Inputs &Cases() {
    static const Inputs in = [] {
        Inputs r;
        std::mt19937_64 rng(20261123u);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        for (int c = 0; c < kCases; ++c) {
            M7 a, g;
            M67 j;
            for (int i = 0; i < 49; ++i) a.data()[i] = u(rng), g.data()[i] = u(rng);
            for (int i = 0; i < 42; ++i) j.data()[i] = u(rng);
            r.sym.push_back((a + a.transpose()) * 0.5);
            r.spd.push_back(g * g.transpose() + 7.0 * M7::Identity());
            r.jac.push_back(j);
        }
        return r;
    }();
    return in;
}

double Scale(const M7 &a) { return 7 * kEps * a.cwiseAbs().maxCoeff(); }

void Report(benchmark::State &state, double worst) { state.counters["max_resid_ratio"] = worst; }

void BM_eig7_QZ(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        M7 a = in.sym[c], v;
        eig7(a.data(), v.data(), 1e-15);
        worst = std::max(worst,
                         (in.sym[c] * v - v * M7(a.diagonal().asDiagonal())).cwiseAbs().maxCoeff() /
                             Scale(in.sym[c]));
    }
    int c = 0;
    for (auto _ : state) {
        M7 a = in.sym[c], v;
        benchmark::DoNotOptimize(eig7(a.data(), v.data(), 1e-15));
        benchmark::DoNotOptimize(v.data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_eig7_Eigen(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        Eigen::SelfAdjointEigenSolver<M7> es(in.sym[c]);
        const M7 v = es.eigenvectors();
        worst = std::max(
            worst, (in.sym[c] * v - v * M7(es.eigenvalues().asDiagonal())).cwiseAbs().maxCoeff() /
                       Scale(in.sym[c]));
    }
    int c = 0;
    Eigen::SelfAdjointEigenSolver<M7> es;
    for (auto _ : state) {
        es.compute(in.sym[c]);
        benchmark::DoNotOptimize(es.eigenvectors().data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_generalized_eig7_QZ(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        M7 v;
        Eigen::Matrix<double, 7, 1> l;
        generalized_eig7(1e-15, in.sym[c].data(), in.spd[c].data(), v.data(), l.data());
        worst = std::max(
            worst, (in.sym[c] * v - in.spd[c] * v * M7(l.asDiagonal())).cwiseAbs().maxCoeff() /
                       Scale(in.sym[c]));
    }
    int c = 0;
    for (auto _ : state) {
        M7 v;
        double l[7];
        benchmark::DoNotOptimize(
            generalized_eig7(1e-15, in.sym[c].data(), in.spd[c].data(), v.data(), l));
        benchmark::DoNotOptimize(v.data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_generalized_eig7_Eigen(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        Eigen::GeneralizedSelfAdjointEigenSolver<M7> es(in.sym[c], in.spd[c]);
        const M7 v = es.eigenvectors();
        worst = std::max(worst, (in.sym[c] * v - in.spd[c] * v * M7(es.eigenvalues().asDiagonal()))
                                        .cwiseAbs()
                                        .maxCoeff() /
                                    Scale(in.sym[c]));
    }
    int c = 0;
    Eigen::GeneralizedSelfAdjointEigenSolver<M7> es;
    for (auto _ : state) {
        es.compute(in.sym[c], in.spd[c]);
        benchmark::DoNotOptimize(es.eigenvectors().data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_Cholesky7_QZ(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        M7 l;
        Cholesky7(in.spd[c].data(), l.data(), 7);
        worst = std::max(worst,
                         (l * l.transpose() - in.spd[c]).cwiseAbs().maxCoeff() / Scale(in.spd[c]));
    }
    int c = 0;
    for (auto _ : state) {
        M7 l;
        benchmark::DoNotOptimize(Cholesky7(in.spd[c].data(), l.data(), 7));
        benchmark::DoNotOptimize(l.data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_Cholesky7_Eigen(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        const M7 l = Eigen::LLT<M7>(in.spd[c]).matrixL();
        worst = std::max(worst,
                         (l * l.transpose() - in.spd[c]).cwiseAbs().maxCoeff() / Scale(in.spd[c]));
    }
    int c = 0;
    Eigen::LLT<M7> llt;
    for (auto _ : state) {
        llt.compute(in.spd[c]);
        benchmark::DoNotOptimize(llt.matrixLLT().data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

double PinvResidual(const M67 &a, const M76 &p) {
    return (a * p - M6::Identity()).cwiseAbs().maxCoeff() / (6 * kEps);
}

void BM_RightPsoInv67_QZ(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        M76 p;
        QZ_RightPsoInv67(in.jac[c].data(), p.data());
        worst = std::max(worst, PinvResidual(in.jac[c], p));
    }
    int c = 0;
    for (auto _ : state) {
        M76 p;
        benchmark::DoNotOptimize(QZ_RightPsoInv67(in.jac[c].data(), p.data()));
        benchmark::DoNotOptimize(p.data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

void BM_RightPsoInv67_Eigen(benchmark::State &state) {
    const Inputs &in = Cases();
    double worst = 0.0;
    for (int c = 0; c < kCases; ++c) {
        const M76 p = Eigen::CompleteOrthogonalDecomposition<M67>(in.jac[c]).pseudoInverse();
        worst = std::max(worst, PinvResidual(in.jac[c], p));
    }
    int c = 0;
    Eigen::CompleteOrthogonalDecomposition<M67> cod(6, 7);
    for (auto _ : state) {
        cod.compute(in.jac[c]);
        M76 p = cod.pseudoInverse();
        benchmark::DoNotOptimize(p.data());
        c = (c + 1) % kCases;
    }
    Report(state, worst);
}

}  // namespace

BENCHMARK(BM_eig7_QZ);
BENCHMARK(BM_eig7_Eigen);
BENCHMARK(BM_generalized_eig7_QZ);
BENCHMARK(BM_generalized_eig7_Eigen);
BENCHMARK(BM_Cholesky7_QZ);
BENCHMARK(BM_Cholesky7_Eigen);
BENCHMARK(BM_RightPsoInv67_QZ);
BENCHMARK(BM_RightPsoInv67_Eigen);
