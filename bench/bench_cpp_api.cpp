// The C++ interface against the C call it wraps, pair by pair: the same inputs, the same
// escapes, so that the difference is what the wrapper adds (value returns, the status, the
// class around a record).
#include <benchmark/benchmark.h>

#include <qzmath/qzmath.hpp>

namespace {

template <class T>
T Filled(double seed) {
    T v{};
    for (std::size_t i = 0; i < v.size(); ++i)
        v[i] = seed + 0.37 * double(i % 7) - 0.11 * double(i / 7) + (i % 8 == 0);
    return v;
}

const auto kA6 = Filled<qz::Mat6>(0.5), kB6 = Filled<qz::Mat6>(-0.25);
const auto kJ = Filled<qz::Mat67>(0.1);
const auto kQ1 = Filled<qz::Quat>(0.3), kQ2 = Filled<qz::Quat>(-0.2);

void C_MatrixMult6(benchmark::State &state) {
    double out[36];
    for (auto _ : state) {
        QZ_MatrixMult6(kA6.data(), kB6.data(), out);
        benchmark::DoNotOptimize(out);
    }
}
void Cpp_MatrixMult6(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(qz::mul(kA6, kB6));
}
void C_MatrixInv6(benchmark::State &state) {
    double out[36];
    for (auto _ : state) {
        benchmark::DoNotOptimize(QZ_MatrixInv6(kA6.data(), out));
        benchmark::DoNotOptimize(out);
    }
}
void Cpp_MatrixInv6(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(qz::inverse(kA6));
}
void C_RightPsoInv67(benchmark::State &state) {
    double out[42];
    for (auto _ : state) {
        benchmark::DoNotOptimize(QZ_RightPsoInv67(kJ.data(), out));
        benchmark::DoNotOptimize(out);
    }
}
void Cpp_RightPsoInv67(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(qz::pinv(kJ));
}
void C_QuatMult(benchmark::State &state) {
    double out[4];
    for (auto _ : state) {
        QZ_QuatMult(kQ1.data(), kQ2.data(), out);
        benchmark::DoNotOptimize(out);
    }
}
void Cpp_QuatMult(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(qz::mul(kQ1, kQ2));
}
void C_DH2Matrix(benchmark::State &state) {
    double out[16];
    for (auto _ : state) {
        QZ_DH2Matrix(1.5707963267948966, 82.5, 316.0, 0.7, out);
        benchmark::DoNotOptimize(out);
    }
}
void Cpp_DH2Matrix(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(qz::dh(qz::Rad{1.5707963267948966}, 82.5, 316.0, qz::Rad{0.7}));
}

// One cycle of the seven-joint smoothed tracker, the targets swinging between two poses.
constexpr double kVel[7] = {98, 98, 100, 130, 140, 180, 180};
constexpr double kAcc[7] = {400, 400, 450, 600, 700, 800, 800};
constexpr double kJerk[7] = {4000, 4000, 5000, 8000, 9000, 1e4, 1e4};
double Swing(int k, int i) { return ((k / 500) % 2 ? 60.0 : -60.0) + 3.0 * i; }

void C_NSyncDTS_OnDT_7(benchmark::State &state) {
    static QZNSyncDTSState s{};
    QZNSyncDTS_OnInit(&s, 7, 1.0, kVel, kAcc, kJerk);
    double t[7], out[7];
    int k = 0;
    for (auto _ : state) {
        for (int i = 0; i < 7; ++i) t[i] = Swing(k, i);
        benchmark::DoNotOptimize(QZNSyncDTS_OnDT(&s, t, out));
        benchmark::DoNotOptimize(out);
        ++k;
    }
}
void Cpp_NSyncDTS_OnDT_7(benchmark::State &state) {
    using J = qz::Vec<7>;
    static qz::SmoothedTracker<7> arm(1.0, J{{98, 98, 100, 130, 140, 180, 180}},
                                      J{{400, 400, 450, 600, 700, 800, 800}},
                                      J{{4000, 4000, 5000, 8000, 9000, 1e4, 1e4}});
    (void)arm.jump_to_next_target();
    J t;
    int k = 0;
    for (auto _ : state) {
        for (int i = 0; i < 7; ++i) t[i] = Swing(k, i);
        benchmark::DoNotOptimize(arm.step(t));
        ++k;
    }
}
void C_VDT_OnSetRunTimeVel(benchmark::State &state) {
    QZVDTState s{};
    QZVDT_OnInit(&s, 1.0, 100.0, 400.0);
    int k = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(QZVDT_OnSetRunTimeVel(&s, (++k & 1) ? 50.0 : 100.0));
}
void Cpp_VDT_OnSetRunTimeVel(benchmark::State &state) {
    qz::Tracker axis(1.0, 100.0, 400.0);
    int k = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(axis.set_velocity_limit((++k & 1) ? 50.0 : 100.0));
}

BENCHMARK(C_MatrixMult6);
BENCHMARK(Cpp_MatrixMult6);
BENCHMARK(C_MatrixInv6);
BENCHMARK(Cpp_MatrixInv6);
BENCHMARK(C_RightPsoInv67);
BENCHMARK(Cpp_RightPsoInv67);
BENCHMARK(C_QuatMult);
BENCHMARK(Cpp_QuatMult);
BENCHMARK(C_DH2Matrix);
BENCHMARK(Cpp_DH2Matrix);
BENCHMARK(C_NSyncDTS_OnDT_7);
BENCHMARK(Cpp_NSyncDTS_OnDT_7);
BENCHMARK(C_VDT_OnSetRunTimeVel);
BENCHMARK(Cpp_VDT_OnSetRunTimeVel);

}  // namespace
