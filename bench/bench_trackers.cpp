// Cost of one control cycle of the seven-joint trackers: the figure the controller's cycle
// budget is held against. The targets swing between two poses so that every axis keeps moving
// (accelerating, cruising and braking) rather than resting on its target.
#include <benchmark/benchmark.h>

#include "QZDT.h"

namespace {

constexpr int kJoints = 7;
const double kVel[kJoints] = {98, 98, 100, 130, 140, 180, 180};
const double kAcc[kJoints] = {400, 400, 450, 600, 700, 800, 800};

double Swing(int k, int i) { return ((k / 500) % 2 ? 60.0 : -60.0) + 3.0 * i; }

void BM_NSyncDTS_OnDT_7(benchmark::State &state) {
    QZNSyncDTSState s{};
    double jerk[kJoints] = {4000, 4000, 5000, 8000, 9000, 1e4, 1e4};
    QZNSyncDTS_OnInit(&s, kJoints, 1.0, kVel, kAcc, jerk);
    double t[kJoints], out[kJoints];
    int k = 0;
    for (auto _ : state) {
        for (int i = 0; i < kJoints; ++i) t[i] = Swing(k, i);
        benchmark::DoNotOptimize(QZNSyncDTS_OnDT(&s, t, out));
        benchmark::ClobberMemory();
        ++k;
    }
}
BENCHMARK(BM_NSyncDTS_OnDT_7);

void BM_NSyncDTS_OnDTM_7(benchmark::State &state) {
    QZNSyncDTSMState s{};
    double jerk[kJoints] = {4000, 4000, 5000, 8000, 9000, 1e4, 1e4};
    QZNSyncDTS_OnInitM(&s, kJoints, 1.0, kVel, kAcc, jerk, static_cast<int32_t>(state.range(0)));
    double t[kJoints], out[kJoints];
    int k = 0;
    for (auto _ : state) {
        for (int i = 0; i < kJoints; ++i) t[i] = Swing(k, i);
        benchmark::DoNotOptimize(QZNSyncDTS_OnDTM(&s, t, out));
        benchmark::ClobberMemory();
        ++k;
    }
}
BENCHMARK(BM_NSyncDTS_OnDTM_7)->Arg(0)->Arg(1)->Arg(2);

// One single-axis step, the building block: the seven-axis steps cost about seven (or, in the
// cascade, twenty-eight) of these plus the smoothing.
void BM_VDT_OnDT(benchmark::State &state) {
    QZVDTState s{};
    QZVDT_OnInit(&s, 1.0, kVel[0], kAcc[0]);
    double out;
    int k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(QZVDT_OnDT(&s, Swing(k, 0), &out));
        ++k;
    }
}
BENCHMARK(BM_VDT_OnDT);

}  // namespace
