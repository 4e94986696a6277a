// Plane geometry and set-point helpers: the supplement of a triangle's angle, the foot of a
// perpendicular, the shortest angular difference on the circle, and the quantised step towards
// a target.
#include "QZBaseMath.h"

#include <cstdint>
#include <limits>

#include "QZBaseMath/scalar_inline.h"
#include "QZBaseMath/target_inline.h"

namespace qz::detail {

namespace {

constexpr double kTurnDeg = 360.0;

// Wrapping an angle difference by whole turns.
//
// The reference rule is a loop: while d > 0, d = d - 360 (each difference rounded). Its result
// is reproduced here to the bit without walking the turns one by one:
//
// * Below 2^56 every subtraction but the last is exact: d and 360 are then both whole multiples
//   of the unit in the last place of d (at most 8, and 360 = 45 * 8), and the difference is
//   smaller than d. So the loop reaches exactly the value d - 360 k in (0, 360], and only its
//   final step, which crosses zero, rounds. That value is found with an exact remainder.
// * From 2^56 up to 2^62 the steps round, but within one binade (unit u) they remove a fixed
//   whole number of units: round(360 / u), which is 22 or 23 units for u = 16 (a tie, settled
//   towards an even count of units: after one step the count is even and every further step
//   removes 22), 11, 6, 3, 1 and 1 for u = 32 ... 512. All the steps that stay inside the
//   binade are taken at once; the step that leaves it is taken as the loop takes it.
// * Above 2^62 (unit 1024 or more) d - 360 rounds back to d: the loop never ends. Such a
//   difference (or an infinite one) has no meaning as an angle, and is reported as NaN.
constexpr double kExactBelow = 72057594037927936.0;     // 2^56
constexpr double kStallAbove = 4611686018427387904.0;   // 2^62
constexpr double kUlpOfBinade = 2.220446049250313e-16;  // 2^-52: the unit over the binade's floor

// The loop's steps taken while d stays at or above the largest power of two not above it, for
// 2^56 <= d <= 2^62. Returns d after them; the loop's next step leaves the binade (or lands on
// its floor).
double SkipRoundedTurns(double d) {
    double lo = kStallAbove;
    while (lo > d) lo = lo * 0.5;
    const double u = lo * kUlpOfBinade;
    if (d - lo < kTurnDeg) return d;  // d - lo is exact: both lie in [lo, 2 lo)
    d = d - kTurnDeg;                 // one step as the loop takes it (settles a tie's parity)
    if (d - lo < kTurnDeg) return d;
    const int64_t step = static_cast<int64_t>((d - (d - kTurnDeg)) / u);
    int64_t need =
        static_cast<int64_t>(kTurnDeg / u);  // a step stays inside while >= 360 / u units
    if (static_cast<double>(need) * u < kTurnDeg) need = need + 1;
    const int64_t above = static_cast<int64_t>((d - lo) / u);
    const int64_t k = (above - need) / step + 1;
    return lo + static_cast<double>(above - k * step) * u;
}

// The value d - 360 k in (0, 360] that the loop reaches from 0 < d < 2^56; every one of these
// subtractions is exact (see above), so the whole turns may be removed in any grouping.
double ExactTurnsOff(double d) {
    if (d > kTurnDeg) {
        // An estimate of the turns that never exceeds the true count by which the loop can go
        // on, removed in two exact parts of fewer than 2^24 turns each.
        int64_t n = static_cast<int64_t>(d / kTurnDeg) - 2;
        if (n > 0) {
            const int64_t hi = n >> 24;
            const int64_t lo = n - (hi << 24);
            d = d - (kTurnDeg * static_cast<double>(hi)) * 16777216.0;
            d = d - kTurnDeg * static_cast<double>(lo);
        }
        while (d > kTurnDeg) d = d - kTurnDeg;
    }
    return d;
}

// "repeat d = d - 360 while d > 0" for d > 0, in bounded time. NaN where the loop never ends.
double UnwindDown(double d) {
    if (!(d <= kStallAbove)) return std::numeric_limits<double>::quiet_NaN();
    while (d >= kExactBelow) d = SkipRoundedTurns(d) - kTurnDeg;
    return ExactTurnsOff(d) - kTurnDeg;
}

}  // namespace

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API double QZ_CalAngleCDEG(double a, double b, double c) {
    if (IsZero(a)) return 0.0;
    if (IsZero(b)) return 0.0;
    double k = (a * a + b * b - c * c) / (a * b + a * b);
    if (k > 1.0) {
        k = 1.0;
    } else if (k < -1.0) {
        k = -1.0;
    }
    return 180.0 - ACos(k) * kRadToDeg;
}

// The differences are kept locally and each foot coordinate is written after its line point
// coordinate is read, so the foot may share storage with any input.
QZ_API int32_t QZ_PointToLine(const double *A, const double *B, const double *P, double *F) {
    double d[3];
    double s = 0.0;
    double q = 0.0;
    for (int i = 0; i < 3; ++i) {
        d[i] = B[i] - A[i];
        s = s + (P[i] - A[i]) * d[i];
        q = q + d[i] * d[i];
    }
    const double t = s / q;
    for (int i = 0; i < 3; ++i) F[i] = d[i] * t + A[i];
    return 1;
}

// Unwraps the difference into (-180, 180] by whole turns. The loop "add 360 while negative" is
// the mirror image of "subtract 360 while positive" (rounding is symmetric), so one routine
// serves both directions; only a zero result is not mirrored: -360 + 360 is +0, hence 0 - y.
QZ_API double QZ_MinDif_Circle(double a, double *b) {
    double d = a - *b;
    if (d > 0.0) d = UnwindDown(d);
    if (d < 0.0) d = 0.0 - UnwindDown(-d);
    if (d > 180.0) d = d - kTurnDeg;
    *b = a - d;
    return d > 0.0 ? d : -d;
}

QZ_API void ValueToTarget(double *value, double target, double step) {
    StepToTarget(value, target, step);
}

}  // extern "C"
