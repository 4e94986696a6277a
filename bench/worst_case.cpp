// Worst case per call of every function that a controller calls once per control cycle.
//
// Each function is driven over many calls of ordinary input (moving targets, random rotations,
// well-conditioned matrices) interleaved with adversarial events: limit changes (also inside the
// trackers' dead band), target jumps, resets, NaN and infinite inputs, subnormal values, huge
// values and near-singular matrices. The events follow a fixed schedule and every input comes
// from a seeded generator, so two runs make exactly the same calls.
//
//   worst_case [--calls N] [--only NAME]
//       Times every call with the time-stamp counter, pinned to one core, and prints per function
//       the median, the 99.9th percentile and the maximum in TSC ticks (the timer's own cost
//       subtracted), with the class of input behind the maximum.
//   valgrind --tool=callgrind --collect-atstart=no --combine-dumps=yes
//            --callgrind-out-file=F worst_case --count [--calls N] [--only NAME]
//       Collects the exact instruction count of sampled calls and of every adversarial call, one
//       profile part per call; bench/worst_case.sh reads them back into medians and maxima.
//       Unlike time, these counts do not move with the machine's load.
#include <QZDT.h>
#include <QZFLT.h>
#include <QZKinematics.h>
#include <QZMatrix.h>
#include <QZQuaternions.h>
#include <sched.h>
#include <valgrind/callgrind.h>
#include <x86intrin.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "../examples/arm7.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kSub = 3e-310;  // subnormal
constexpr int kAxes = 7;

// Input classes; the ordinary one is 0.
enum Event {
    kNone,
    kJump,
    kLimits,
    kDeadBand,
    kReset,
    kNaNIn,
    kInfIn,
    kSubnormal,
    kHuge,
    kSingular
};
const char *const kEventName[] = {"ordinary",   "target jump",  "limit change", "dead band",
                                  "reset",      "NaN input",    "inf input",    "subnormal input",
                                  "huge input", "near-singular"};

// The fixed schedule of events: call k carries at most one.
Event EventAt(long k) {
    if (k < 10) return kNone;
    if (k % 4001 == 0) return kReset;
    if (k % 1009 == 0) return kNaNIn;
    if (k % 1013 == 0) return kInfIn;
    if (k % 499 == 0) return kSubnormal;
    if (k % 503 == 0) return kHuge;
    if (k % 307 == 0) return kDeadBand;
    if (k % 211 == 0) return kLimits;
    if (k % 97 == 0) return kJump;
    if (k % 89 == 0) return kSingular;
    return kNone;
}

std::mt19937_64 rng;
double Uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); }

// Replaces x according to an input event: the value classes every function must survive.
double Disturb(Event e, double x) {
    switch (e) {
        case kNaNIn: return kNaN;
        case kInfIn: return kInf;
        case kSubnormal: return kSub;
        case kHuge: return 1e12;
        default: return x;
    }
}

void RandomQuaternion(double *q) {
    double n = 0.0;
    for (int i = 0; i < 4; ++i) {
        q[i] = Uniform(-1.0, 1.0);
        n += q[i] * q[i];
    }
    n = std::sqrt(n);
    for (int i = 0; i < 4; ++i) q[i] /= n;
}

// A function under test: prepare() sets up call k's input and applies the between-cycle events
// (not measured); call() is the one library call that is timed or counted.
struct Case {
    const char *name;
    void (*init)();
    Event (*prepare)(long k);
    void (*call)();
};

// ---- Trackers, estimator, filters, fitter, comparator ---------------------------------------

double tgt[8], pos[8], vel[8], acc[8], jerk[8], lim[8], alim[8];
double one, oneOut;

// A smooth target per axis that moves, stops and reverses, with jumps and the value classes of
// the schedule. Limit events change the per-axis limits in lim/alim; a dead-band event asks for
// a change of 0.05 (ignored by the trackers).
Event Targets(long k, int n) {
    const Event e = EventAt(k);
    for (int i = 0; i < n; ++i) {
        double t = 0.6 * std::sin(0.0013 * k * (1 + 0.3 * i)) + 0.02 * std::sin(0.07 * k);
        if (e == kJump) t += Uniform(-2.0, 2.0);
        tgt[i] = Disturb(e, t);
        if (e == kLimits) {
            lim[i] = Uniform(0.3, 3.0);
            alim[i] = Uniform(2.0, 30.0);
        } else if (e == kDeadBand) {
            lim[i] += 0.05;
        }
    }
    one = tgt[0];
    return e;
}
void DefaultLimits() {
    for (int i = 0; i < 8; ++i) {
        lim[i] = 2.0;
        alim[i] = 10.0;
        jerk[i] = 200.0;
    }
}

QZVDTState single;
QZVDTMState multi;
QZNSyncDTSState smooth;
QZNSyncDTSMState cascade;
int cascadeMode;
QZNEstState est;
QZAVGFState avgf;
QZSMVState smv;
OneFitterState fitter;
QZDCTRLErrorState comparator;

// The three modes of the N-axis multi-stage tracker share one driver.
void CascadeInit() {
    cascade = QZNSyncDTSMState{};
    DefaultLimits();
    for (int i = 0; i < 8; ++i) jerk[i] = 20000.0;
    QZNSyncDTS_OnInitM(&cascade, kAxes, 1.0, lim, alim, jerk, cascadeMode);
}
Event CascadePrepare(long k) {
    const Event e = Targets(k, kAxes);
    if (e == kLimits || e == kDeadBand) QZNSyncDTS_OnSetRunTimeLmtM(&cascade, lim, alim);
    if (e == kReset || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
        QZNSyncDTS_OnEmptyM(&cascade);
    return e;
}
void CascadeCall() { QZNSyncDTS_OnDTM(&cascade, tgt, pos); }
template <int Mode>
void CascadeInitMode() {
    cascadeMode = Mode;
    CascadeInit();
}

const Case kTrackers[] = {
    {"QZVDT_OnDT",
     [] {
         single = QZVDTState{};
         DefaultLimits();
         QZVDT_OnInit(&single, 1.0, lim[0], alim[0]);
     },
     [](long k) {
         const Event e = Targets(k, 1);
         if (e == kLimits || e == kDeadBand) QZVDT_OnSetRunTimeLmt(&single, lim[0], alim[0]);
         if (e == kReset || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZVDT_OnEmpty(&single);
         return e;
     },
     [] { QZVDT_OnDT(&single, one, &oneOut); }},
    {"QZVDT_OnDT_BM (cascade)",
     [] {
         multi = QZVDTMState{};
         DefaultLimits();
         QZVDT_OnInitM(&multi, 1.0, lim[0], alim[0], 2);
         multi.mode = 2;
     },
     [](long k) {
         const Event e = Targets(k, 1);
         if (e == kLimits || e == kDeadBand) QZVDT_OnSetRunTimeLmtM(&multi, lim[0], alim[0], 2);
         if (e == kReset || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZVDT_OnEmptyM(&multi);
         return e;
     },
     [] { QZVDT_OnDT_BM(&multi, one, &oneOut); }},
    {"QZNSyncDTS_OnDT (7 axes)",
     [] {
         smooth = QZNSyncDTSState{};
         DefaultLimits();
         QZNSyncDTS_OnInit(&smooth, kAxes, 1.0, lim, alim, jerk);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         if (e == kLimits || e == kDeadBand) QZNSyncDTS_OnSetRunTimeLmt(&smooth, lim, alim);
         if (e == kReset || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZNSyncDTS_OnEmpty(&smooth);
         return e;
     },
     [] { QZNSyncDTS_OnDT(&smooth, tgt, pos); }},
    {"QZNSyncDTS_OnDTM (7 axes, mode 0)", CascadeInitMode<0>, CascadePrepare, CascadeCall},
    {"QZNSyncDTS_OnDTM (7 axes, mode 1)", CascadeInitMode<1>, CascadePrepare, CascadeCall},
    {"QZNSyncDTS_OnDTM (7 axes, mode 2)", CascadeInitMode<2>, CascadePrepare, CascadeCall},
    {"QZNEst_OnDT (7 axes)",
     [] {
         est = QZNEstState{};
         DefaultLimits();
         QZOnInitEst(&est, kAxes, 4.0, lim, lim);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         if (e == kLimits || e == kDeadBand) QZNEst_OnSetRunTimeLmt(&est, lim);
         if (e == kReset) QZNEst_OnEmpty(&est);
         // A new sample every fourth cycle, with jitter: sometimes the third or the fifth.
         static int stamp = 0, next = 4;
         if (--next <= 0) {
             ++stamp;
             next = 3 + static_cast<int>(rng() % 3);
         }
         vel[0] = stamp;
         return e;
     },
     [] { QZNEst_OnDT(&est, static_cast<int32_t>(vel[0]), tgt, pos, lim); }},
    {"QZAVGF_OnFilt (7 channels, 100)",
     [] {
         avgf = QZAVGFState{};
         QZAVGF_OnInit(&avgf, kAxes, 100, 0.001);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         if (e == kReset || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZAVGF_OnEmpty(&avgf);
         return e;
     },
     [] { QZAVGF_OnFilt(&avgf, tgt, pos, vel); }},
    {"QZSMV_OnUpdateVZO",
     [] {
         smv = QZSMVState{};
         QZSMV_OnInit(&smv, 0.0, 0.002, 0.01, 0.002);
     },
     [](long k) {
         const Event e = Targets(k, 1);
         if (e == kNaNIn || e == kInfIn || EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZSMV_OnInit(&smv, 0.0, 0.002, 0.01, 0.002);
         return e;
     },
     [] {
         uint8_t z, o;
         QZSMV_OnUpdateVZO(&smv, one, &oneOut, &z, &o);
     }},
    {"OneFitterRun (7 channels)",
     [] {
         fitter = OneFitterState{};
         for (int i = 0; i < 8; ++i) jerk[i] = 0.1;
         OneFitterInit(&fitter, kAxes, jerk);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         if (EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             OneFitterInit(&fitter, kAxes, jerk);
         return e;
     },
     [] { OneFitterRun(&fitter, tgt, pos); }},
    {"QZ_DCTRL_ErrorCompare",
     [] {
         comparator = QZDCTRLErrorState{};
         QZ_DCTRL_ErrorCompare_Init(0, &comparator);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         for (int i = 0; i < kAxes; ++i) pos[i] = tgt[i] + Uniform(-2.0, 2.0);
         if (EventAt(k - 1) == kNaNIn || EventAt(k - 1) == kInfIn)
             QZ_DCTRL_ErrorCompare_Init(0, &comparator);
         return e;
     },
     [] { QZ_DCTRL_ErrorCompare(0, tgt, pos, &comparator, vel); }},
};

// ---- What a Cartesian cycle uses -------------------------------------------------------------

double A[49], B[49], J[42], P[42], R[9], Q[4], Q2[4], T[16], M[49];
double dh[4], slerpT;
QZSlerpFactorState slerpState;

// A well-conditioned matrix of size n (row stride n), made near-singular or filled with the
// value classes on events.
Event RandomMatrix(long k, int rows, int cols, double *m) {
    const Event e = EventAt(k);
    for (int i = 0; i < rows * cols; ++i)
        m[i] = Uniform(-1.0, 1.0) + (i % (cols + 1) == 0 ? 3.0 : 0.0);
    if (e == kSingular) {  // one row a combination of two others, off by 1e-13
        for (int j = 0; j < cols; ++j)
            m[(rows - 1) * cols + j] = m[j] + 0.5 * m[cols + j] + 1e-13 * j;
    } else if (e >= kNaNIn && e <= kHuge) {
        m[static_cast<int>(rng() % (rows * cols))] = Disturb(e, 0.0);
    }
    return e;
}
Event RandomRotation(long k) {
    const Event e = EventAt(k);
    RandomQuaternion(Q);
    if (e == kSingular) {  // a half turn: the conversions' branch changes
        Q[3] = 1e-9;
        const double n = std::sqrt(Q[0] * Q[0] + Q[1] * Q[1] + Q[2] * Q[2] + Q[3] * Q[3]);
        for (double &q : Q) q /= n;
    } else {
        Q[rng() % 4] = Disturb(e, Q[0]);
    }
    QZ_Quaternion2Matrix3(Q, R);
    return e;
}

// The seven-joint arm of examples/arm7.h as a chain, and its joints: random postures, with the
// value classes of the schedule and, on a singular event, the elbow stretched.
QZKinChain arm;
double joints[7], twist[6], report[2];
void KinInit() { arm7_chain(1.0, &arm); }
Event KinJoints(long k) {
    const Event e = EventAt(k);
    for (double &q : joints) q = Uniform(-2.8, 2.8);
    if (e == kSingular) {
        const double stretched[7] = {0.35, -0.52, 0.17, -0.4670106, 0.0, 1.66, 0.7};
        std::memcpy(joints, stretched, sizeof joints);
    } else if (e >= kNaNIn && e <= kHuge) {
        joints[k % 7] = Disturb(e, 0.0);
    }
    return e;
}

const Case kCartesian[] = {
    {"QZ_DH2Matrix", [] {},
     [](long k) {
         const Event e = EventAt(k);
         dh[0] = Uniform(-1.6, 1.6);
         dh[1] = Uniform(0.0, 400.0);
         dh[2] = Uniform(0.0, 400.0);
         dh[3] = Disturb(e, Uniform(-3.2, 3.2));
         return e;
     },
     [] { QZ_DH2Matrix(dh[0], dh[1], dh[2], dh[3], T); }},
    {"QZ_Matrix2Quaternion3", [] {}, [](long k) { return RandomRotation(k); },
     [] { QZ_Matrix2Quaternion3(R, Q2); }},
    {"QZ_Quaternion2Matrix3", [] {}, [](long k) { return RandomRotation(k); },
     [] { QZ_Quaternion2Matrix3(Q, R); }},
    {"QZ_QuatMult", [] {},
     [](long k) {
         const Event e = RandomRotation(k);
         RandomQuaternion(Q2);
         return e;
     },
     [] { QZ_QuatMult(Q, Q2, T); }},
    {"QZ_QuatSlerp", [] {},
     [](long k) {
         const Event e = RandomRotation(k);
         std::memcpy(Q2, Q, sizeof Q);
         if (k % 3) Q2[k % 4] += Uniform(-0.5, 0.5) * (k % 2 ? 1.0 : 1e-6);  // far or near
         slerpT = Uniform(0.0, 1.0);
         return e;
     },
     [] { QZ_QuatSlerp(Q, Q2, slerpT, T); }},
    {"QZ_QuatSlerpFactor", [] {},
     [](long k) {
         const Event e = EventAt(k);
         if (k % 1000 == 0 || e != kNone) {  // a new pair of ends now and then
             RandomRotation(k);
             RandomQuaternion(Q2);
             slerpState = QZSlerpFactorState{};
         }
         slerpT = (k % 1000) / 1000.0;
         return e;
     },
     [] { QZ_QuatSlerpFactor(Q, Q2, slerpT, T, &slerpState); }},
    {"QZ_JACOB_TRAN_T67", [] {},
     [](long k) {
         const Event e = RandomMatrix(k, 6, 7, J);
         RandomRotation(k + 1);
         return e;
     },
     [] { QZ_JACOB_TRAN_T67(J, R, P); }},
    {"QZ_RightPsoInv67", [] {}, [](long k) { return RandomMatrix(k, 6, 7, J); },
     [] { QZ_RightPsoInv67(J, P); }},
    {"QZ_MatrixInv6", [] {}, [](long k) { return RandomMatrix(k, 6, 6, A); },
     [] { QZ_MatrixInv6(A, M); }},
    {"QZ_MatrixInv7", [] {}, [](long k) { return RandomMatrix(k, 7, 7, A); },
     [] { QZ_MatrixInv7(A, M); }},
    {"QZKin_Jacobian (7 joints)", KinInit, KinJoints, [] { QZKin_Jacobian(&arm, joints, J, T); }},
    {"QZKin_ForwardPosQuat (7 joints)", KinInit, KinJoints,
     [] { QZKin_ForwardPosQuat(&arm, joints, P); }},
    {"QZKin_OrientationError", [] {},
     [](long k) {
         const Event e = RandomRotation(k);
         std::memcpy(Q2, Q, sizeof Q);
         Q2[k % 4] += Uniform(-1.0, 1.0) * (k % 2 ? 1.0 : 1e-9);  // far or near
         if (k % 5 == 0) Q2[3] = -Q2[3];                          // near the half turn
         return e;
     },
     [] { QZKin_OrientationError(Q, Q2, T); }},
    // The arm's own Jacobians, at times within 1e-6 rad of its stretch, where the damping works.
    {"QZKin_DampedLeastSquares (7 joints)", KinInit,
     [](long k) {
         const Event e = KinJoints(k);
         if (e == kSingular) joints[3] = -0.4670106 + Uniform(-1e-6, 1e-6);
         QZKin_Jacobian(&arm, joints, J, nullptr);
         for (int i = 0; i < 6; ++i) twist[i] = Uniform(-100.0, 100.0);
         if (e >= kNaNIn && e <= kHuge) twist[k % 6] = Disturb(e, 0.0);
         return e;
     },
     [] { QZKin_DampedLeastSquares(&arm, J, twist, P, report); }},
    {"QZKin_TrackerLead (7 axes)",
     [] {
         smooth = QZNSyncDTSState{};
         DefaultLimits();
         QZNSyncDTS_OnInit(&smooth, kAxes, 1.0, lim, alim, jerk);
     },
     [](long k) {
         const Event e = Targets(k, kAxes);
         for (int i = 0; i < kAxes; ++i) vel[i] = 10.0 * tgt[i];
         return e;
     },
     [] { QZKin_TrackerLead(&smooth, vel, acc, pos, nullptr); }},
};

// ---- Measuring ---------------------------------------------------------------------------------

inline std::uint64_t TicksBefore() {
    _mm_lfence();
    const std::uint64_t t = __rdtsc();
    _mm_lfence();
    return t;
}
inline std::uint64_t TicksAfter() {
    unsigned aux;
    const std::uint64_t t = __rdtscp(&aux);
    _mm_lfence();
    return t;
}

__attribute__((noinline)) void Nothing() { asm volatile(""); }

struct Stats {
    double median, p999, max;
    Event maxEvent;
    double subnormalMedian;  // median over the calls with a subnormal input
};

double Median(std::vector<double> v) {
    if (v.empty()) return 0.0;
    std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
    return v[v.size() / 2];
}

// Ticks of the calls, less the median cost of timing an empty call.
Stats Time(const Case &c, long calls, double overhead) {
    rng.seed(12345);
    c.init();
    std::vector<double> t(calls);
    std::vector<Event> ev(calls);
    for (long k = 0; k < calls; ++k) {
        ev[k] = c.prepare(k);
        const std::uint64_t a = TicksBefore();
        c.call();
        const std::uint64_t b = TicksAfter();
        t[k] = std::max(0.0, static_cast<double>(b - a) - overhead);
    }
    const long worst = std::max_element(t.begin(), t.end()) - t.begin();
    std::vector<double> sub;
    for (long k = 0; k < calls; ++k)
        if (ev[k] == kSubnormal) sub.push_back(t[k]);
    Stats s{0, 0, t[worst], ev[worst], Median(sub)};
    std::nth_element(t.begin(), t.begin() + calls / 2, t.end());
    s.median = t[calls / 2];
    const long q = std::min(calls - 1, static_cast<long>(calls * 0.999));
    std::nth_element(t.begin(), t.begin() + q, t.end());
    s.p999 = t[q];
    return s;
}

double TimerOverhead() {
    std::vector<double> t(100000);
    for (double &x : t) {
        const std::uint64_t a = TicksBefore();
        Nothing();
        x = static_cast<double>(TicksAfter() - a);
    }
    std::nth_element(t.begin(), t.begin() + t.size() / 2, t.end());
    return t[t.size() / 2];
}

double TicksPerNanosecond() {
    const auto t0 = std::chrono::steady_clock::now();
    const std::uint64_t a = __rdtsc();
    while (std::chrono::steady_clock::now() - t0 < std::chrono::milliseconds(200)) {}
    const std::uint64_t b = __rdtsc();
    const double ns =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count();
    return (b - a) / ns;
}

// One profile part per counted call, labelled "name|k|event"; an empty call first, as the cost
// of the counting itself.
void Count(const Case &c, long calls, long every) {
    rng.seed(12345);
    c.init();
    char label[160];
    CALLGRIND_TOGGLE_COLLECT;
    Nothing();
    CALLGRIND_TOGGLE_COLLECT;
    std::snprintf(label, sizeof label, "%s|-1|empty", c.name);
    CALLGRIND_DUMP_STATS_AT(label);
    for (long k = 0; k < calls; ++k) {
        const Event e = c.prepare(k);
        const bool counted = k % every == 0 || e != kNone || EventAt(k - 1) != kNone;
        if (!counted) {
            c.call();
            continue;
        }
        CALLGRIND_TOGGLE_COLLECT;
        c.call();
        CALLGRIND_TOGGLE_COLLECT;
        std::snprintf(label, sizeof label, "%s|%ld|%s", c.name, k,
                      kEventName[e != kNone ? e : EventAt(k - 1)]);
        CALLGRIND_DUMP_STATS_AT(label);
    }
}

}  // namespace

int main(int argc, char **argv) {
    long calls = 1000000;
    bool count = false;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--calls" && i + 1 < argc)
            calls = std::atol(argv[++i]);
        else if (a == "--count")
            count = true;
        else if (a == "--only" && i + 1 < argc)
            only = argv[++i];
        else {
            std::fprintf(stderr, "usage: %s [--calls N] [--count] [--only NAME]\n", argv[0]);
            return 2;
        }
    }
    if (calls < 10) calls = 10;

    std::vector<Case> cases(std::begin(kTrackers), std::end(kTrackers));
    cases.insert(cases.end(), std::begin(kCartesian), std::end(kCartesian));
    if (count) {
        for (const Case &c : cases) {
            if (!only.empty() && only != c.name) continue;
            Count(c, calls, std::max(1L, calls / 1000));
        }
        return 0;
    }

    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(0, &one);
    const bool pinned = sched_setaffinity(0, sizeof one, &one) == 0;
    const double overhead = TimerOverhead();
    std::printf(
        "%ld calls per function, %s, TSC %.3f ticks/ns, timer overhead %.0f ticks subtracted\n",
        calls, pinned ? "pinned to CPU 0" : "NOT pinned", TicksPerNanosecond(), overhead);
    std::printf("%-36s %8s %8s %10s %10s  %s\n", "function", "median", "p99.9", "max", "subnormal",
                "input at max");
    for (const Case &c : cases) {
        if (!only.empty() && only != c.name) continue;
        const Stats s = Time(c, calls, overhead);
        std::printf("%-36s %8.0f %8.0f %10.0f %10.0f  %s\n", c.name, s.median, s.p999, s.max,
                    s.subnormalMedian, kEventName[s.maxEvent]);
    }
    return 0;
}
