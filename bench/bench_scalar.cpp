// Cost of the scalar primitives against the plain <cmath> calls, and of one tracker step.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>

#include "QZBaseMath.h"
#include "QZDT.h"

namespace {

constexpr int kN = 1024;

struct Inputs {
    double a[kN];
    Inputs() {
        for (int i = 0; i < kN; ++i) a[i] = -3.0 + 6.0 * i / kN;
    }
};
const Inputs kIn;

template <double (*F)(double)>
void Unary(benchmark::State &st) {
    int i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(F(kIn.a[i]));
        i = (i + 1) & (kN - 1);
    }
}

double StdSin(double x) { return std::sin(x); }
double StdCos(double x) { return std::cos(x); }
double StdAcos(double x) { return std::acos(x / 3.0); }
double QzAcos(double x) { return QZ_ACOS(x / 3.0); }
double StdAtan2(double x) { return std::atan2(x, 0.75); }
double QzAtan2(double x) { return QZ_ATan2(x, 0.75); }
double StdSqrt(double x) { return std::sqrt(x + 3.0); }
double QzSqrt(double x) { return QZ_Sqrt(x + 3.0); }

BENCHMARK(Unary<QZ_SIN_ARC>)->Name("QZ_SIN_ARC");
BENCHMARK(Unary<StdSin>)->Name("std::sin");
BENCHMARK(Unary<QZ_COS_ARC>)->Name("QZ_COS_ARC");
BENCHMARK(Unary<StdCos>)->Name("std::cos");
BENCHMARK(Unary<QzAcos>)->Name("QZ_ACOS");
BENCHMARK(Unary<StdAcos>)->Name("std::acos");
BENCHMARK(Unary<QzAtan2>)->Name("QZ_ATan2");
BENCHMARK(Unary<StdAtan2>)->Name("std::atan2");
BENCHMARK(Unary<QzSqrt>)->Name("QZ_Sqrt");
BENCHMARK(Unary<StdSqrt>)->Name("std::sqrt");

void TrackerStep(benchmark::State &st) {
    QZVDTState s;
    std::memset(&s, 0, sizeof s);
    QZVDT_OnInit(&s, 1.0, 100.0, 500.0);
    double out = 0.0;
    QZVDT_OnDT(&s, 0.0, &out);
    int k = 0;
    for (auto _ : st) {
        // A target that jumps every 2000 cycles keeps the axis in every phase of its motion.
        const double target = ((k / 2000) & 1) ? -50.0 : 50.0;
        QZVDT_OnDT(&s, target, &out);
        benchmark::DoNotOptimize(out);
        ++k;
    }
}
BENCHMARK(TrackerStep)->Name("QZVDT_OnDT");

}  // namespace
