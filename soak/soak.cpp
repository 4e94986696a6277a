// Soak: every tracker family and the filters driven for many cycles with random
// limits, cycle times and targets that hold still, ramp, jump and carry noise, checking on every
// cycle what a controller relies on:
//   * finite input gives finite output;
//   * every stage's speed stays within its active velocity limit and changes by at most
//     accLmt * dt per cycle (a lowered limit's ramp-down changes it by exactly accLmt * dt, and
//     may swing it through zero past the limit, from where the next step clips it back);
//   * the summed stage motion stays within the sum of the stage limits, and averaging never
//     amplifies: a smoothed speed stays within the largest raw one of its window;
//   * a fixed target is reached and held with cycles up to 7 ms; the single-axis law does so
//     without passing the target when it starts from rest.
// The total number of cycles is QZ_SOAK_CYCLES (default 100000; the `soak` CTest entry runs
// 10 million). QZ_TEST_SEED changes the random cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "QZDT.h"
#include "QZFLT.h"
#include "../tests/test_util.h"

namespace {

using qztest::Uniform;

// This test's share of the total cycles.
std::int64_t Budget(double share) {
    const char *env = std::getenv("QZ_SOAK_CYCLES");
    const long long n = env ? std::strtoll(env, nullptr, 10) : 0;
    return static_cast<std::int64_t>(share * (n > 0 ? n : 100000)) + 1;
}

double LogUniform(std::mt19937_64 &rng, double lo, double hi) {
    return std::exp(Uniform(rng, std::log(lo), std::log(hi)));
}

// Random limits within the ranges the initialiser accepts, with at most 2 s to reach full speed.
void RandomLimits(std::mt19937_64 &rng, double &vel, double &acc) {
    vel = LogUniform(rng, 0.1, 200.0);
    acc = LogUniform(rng, std::max(1.0, 0.5 * vel), 1000.0);
}

// A target programme segment: a fixed target, a ramp slower than the velocity limit, a sequence
// of jumps, or a noisy fixed target.
enum class Shape { kFixed, kRamp, kJumps, kNoisy };

struct Segment {
    Shape shape;
    double base, rate, noise;
    int cycles;
    bool settles;  // a fixed target reachable within the segment, so it must be reached
};

// The next segment for an axis at `from` moving at v0, with the limits it will follow.
Segment NextSegment(std::mt19937_64 &rng, const QZVDTState &st, double from, bool fixed) {
    const double vel = st.velLmtTarget, acc = st.accLmt, v0 = st.vel;
    Segment g;
    g.shape = fixed ? Shape::kFixed : static_cast<Shape>(rng() % 4);
    const double reach = std::min(300.0, vel * Uniform(rng, 0.1, 3.0));
    g.base = g.shape == Shape::kRamp
                 ? from
                 : std::max(-300.0, std::min(300.0, from + Uniform(rng, -reach, reach)));
    g.rate = Uniform(rng, -0.8, 0.8) * vel;
    g.noise = Uniform(rng, 0.0, 0.05) * vel;
    // Stopping from v0 first, then the way to the target and the ramps at either end.
    const double travel = (std::fabs(g.base - from) + v0 * v0 / (2.0 * acc)) / vel +
                          (2.0 * vel + std::fabs(v0)) / acc;
    const double need = 2.0 * (travel + 1.0) / st.dt + 50, most = 200000;
    g.settles = g.shape == Shape::kFixed && need <= most;
    g.cycles = g.shape == Shape::kFixed ? static_cast<int>(std::min(need, most))
                                        : 20 + static_cast<int>(rng() % 400);
    return g;
}

double TargetAt(const Segment &g, int k, std::mt19937_64 &rng) {
    switch (g.shape) {
        case Shape::kFixed: return g.base;
        case Shape::kRamp: return g.base + g.rate * (k * 0.001);
        case Shape::kJumps: return k % 37 == 0 ? g.base + Uniform(rng, -50.0, 50.0) : g.base;
        default: return g.base + Uniform(rng, -1.0, 1.0) * g.noise;
    }
}

// One step of a single-axis tracker (or cascade stage), given its state before the step.
::testing::AssertionResult StageStepOk(const QZVDTState &before, const QZVDTState &after) {
    if (!std::isfinite(after.pos) || !std::isfinite(after.vel))
        return ::testing::AssertionFailure() << "non-finite";
    if (before.resetPending == 1) return ::testing::AssertionSuccess();
    const double dv = std::fabs(after.vel - before.vel), step = after.accLmt * after.dt;
    if (before.velLmtPending !=
        0) {  // a ramp-down ends once the speed has passed below the new limit
        const bool ended = after.velLmtPending == 0;
        const bool below = before.vel > 0.0 ? after.vel < after.velLmt : after.vel > -after.velLmt;
        if (std::fabs(dv - step) <= step * 1e-12 + 1e-12 && (!ended || below))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "ramp-down change " << dv << " (accLmt*dt " << step << ") to " << after.vel;
    }
    if (std::fabs(after.vel) > after.velLmt)
        return ::testing::AssertionFailure() << "speed " << after.vel << " above " << after.velLmt;
    // Above its limit (a ramp-down step may swing the speed through zero and beyond it), the
    // law clips straight back to the limit.
    if (dv > step * (1.0 + 1e-12) + 1e-12 && std::fabs(before.vel) <= before.velLmt)
        return ::testing::AssertionFailure() << "speed change " << dv << " above " << step;
    return ::testing::AssertionSuccess();
}

// The largest magnitude among the last values pushed, as many as the vector holds.
struct WindowMax {
    std::vector<double> v;
    size_t i = 0;
    void Push(double x) { v[i] = std::fabs(x), i = (i + 1) % v.size(); }
    double Max() const { return *std::max_element(v.begin(), v.end()); }
};

// The tracker families behind one face: n axes of one or four cascaded stages, with each axis's
// smoothed velocity (the raw velocity where nothing smooths) and span.
struct Single {
    static constexpr int kMaxAxes = 1, kStages = 1, kTail = 0;
    static constexpr double kMaxMs = 20, kSettle = 1e-9;
    QZVDTState s;
    int Init(int, double ms, const double *v, const double *a, const double *) {
        return QZVDT_OnInit(&s, ms, v[0], a[0]);
    }
    int Step(const double *t, double *p) { return QZVDT_OnDT(&s, t[0], p); }
    int SetLimits(int how, const double *v, const double *a) {
        return how == 0   ? QZVDT_OnSetRunTimeLmt(&s, v[0], a[0])
               : how == 1 ? QZVDT_OnSetRunTimeVel(&s, v[0])
                          : QZVDT_OnSetRunTimeAcc(&s, a[0]);
    }
    const QZVDTState &Stage(int, int) const { return s; }
    double Vel(int) const { return s.vel; }
    int Span(int) const { return 1; }
};

struct Smoothed {
    static constexpr int kMaxAxes = 8, kStages = 1, kTail = 100;  // the average lags by its span
    static constexpr double kMaxMs = 7, kSettle = 1e-9;
    QZNSyncDTSState s;
    double vel[8], acc[8];
    int Init(int n, double ms, const double *v, const double *a, const double *j) {
        return QZNSyncDTS_OnInit(&s, n, ms, v, a, j);
    }
    int Step(const double *t, double *p) { return QZNSyncDTS_OnDT2(&s, t, p, vel, acc); }
    int SetLimits(int how, const double *v, const double *a) {
        return how == 0   ? QZNSyncDTS_OnSetRunTimeLmt(&s, v, a)
               : how == 1 ? QZNSyncDTS_OnSetRunTimeVel(&s, v)
                          : QZNSyncDTS_OnSetRunTimeAcc(&s, a);
    }
    const QZVDTState &Stage(int i, int) const { return s.axis[i]; }
    double Vel(int i) const { return vel[i]; }
    int Span(int i) const { return s.avgLen[i]; }
};

// In a random mode. It keeps its initial limits: its correction stages take 100 times the
// acceleration limit at run time, and one ramp-down step at that rate swings far through zero.
struct Cascade {
    static constexpr int kMaxAxes = 8, kStages = 4,
                         kTail = 3000;  // corrections take up the residuals
    static constexpr double kMaxMs = 7, kSettle = 1e-8;
    QZNSyncDTSMState s;
    int Init(int n, double ms, const double *v, const double *a, const double *j) {
        double jerk[8];
        std::copy(j, j + 8, jerk);
        return QZNSyncDTS_OnInitM(&s, n, ms, v, a, jerk, static_cast<int>(j[7]) % 3);
    }
    int Step(const double *t, double *p) { return QZNSyncDTS_OnDTM(&s, t, p); }
    int SetLimits(int, const double *, const double *) { return 1; }
    const QZVDTState &Stage(int i, int k) const { return s.axis[i].stage[k]; }
    double Vel(int i) const { return s.vel[i]; }
    int Span(int i) const { return s.avgLen[i]; }
};

// The raw position of an axis: the sum of its stages.
template <class F>
double Raw(const F &f, int i) {
    double sum = 0.0;
    for (int st = 0; st < F::kStages; ++st) sum += f.Stage(i, st).pos;
    return sum;
}

template <class F>
void SoakTrackers(double share) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(share);
    std::int64_t cycles = 0, settled = 0;
    while (cycles < budget) {
        const int n = 1 + static_cast<int>(rng() % F::kMaxAxes);
        const double ms =
            Uniform(rng, 0, 1) < 0.8 ? Uniform(rng, 1, 7) : Uniform(rng, 7, F::kMaxMs);
        double v[8], a[8], j[8], t[8], p[8];
        for (int i = 0; i < 8; ++i) {
            RandomLimits(rng, v[i], a[i]);
            j[i] = LogUniform(rng, 10.0, 2e7);
            t[i] = Uniform(rng, -300.0, 300.0);
        }
        F f{};
        ASSERT_TRUE(f.Init(n, ms, v, a, j) == 1 && f.Step(t, p) == 1);
        WindowMax rawVel[8];
        for (int i = 0; i < n; ++i) rawVel[i].v.assign(static_cast<size_t>(f.Span(i)), 0.0);
        // New limits, raised or lowered; half of them below an axis's speed: a ramp-down.
        auto newLimits = [&] {
            for (int i = 0; i < 8; ++i) {
                RandomLimits(rng, v[i], a[i]);
                const double speed = i < n ? std::fabs(f.Stage(i, 0).vel) : 0.0;
                if (rng() % 2 && speed > 0.2) v[i] = speed * Uniform(rng, 0.1, 0.9);
            }
            return f.SetLimits(static_cast<int>(rng() % 3), v, a) == 1;
        };
        for (int seg = 0; seg < 5 && cycles < budget; ++seg) {
            if (F::kStages == 1 && rng() % 3 == 0) ASSERT_TRUE(newLimits());
            Segment g[8];
            double side[8];
            bool fromRest[8], allSettle = true;
            int len = 0, reachedAt[8];
            for (int i = 0; i < n; ++i) {
                const QZVDTState &st = f.Stage(i, 0);
                g[i] = NextSegment(rng, st, Raw(f, i),
                                   n > 1 && rng() % 2 == 0);  // all fixed now and then
                fromRest[i] = std::fabs(st.vel) <= 1e-9 && st.velLmtPending == 0;
                side[i] = st.pos - g[i].base;
                reachedAt[i] = -1;
                allSettle = allSettle && g[i].settles;
                len = std::max(len, g[i].cycles);
            }
            const bool strict = ms <= 7.0 && allSettle,
                       raw1 = F::kMaxAxes == 1;  // raw1: output unsmoothed
            if (allSettle) len += F::kTail;
            for (int k = 0; k < len; ++k, ++cycles) {
                for (int i = 0; i < n; ++i) t[i] = TargetAt(g[i], std::min(k, g[i].cycles), rng);
                if (F::kStages == 1 && !allSettle && k == len / 2 && rng() % 2)
                    ASSERT_TRUE(newLimits());
                const F before = f;
                ASSERT_EQ(f.Step(t, p), 1);
                for (int i = 0; i < n; ++i) {
                    double bound = 0.0;
                    for (int st = 0; st < F::kStages; ++st) {
                        const QZVDTState &b = before.Stage(i, st), &s = f.Stage(i, st);
                        ASSERT_TRUE(StageStepOk(b, s))
                            << "axis " << i << " stage " << st << " cycle " << k << ", " << ms
                            << " ms, seed " << qztest::Seed();
                        // A reset snaps and a ramp-down may swing through zero: the stage check covers those.
                        const bool free = b.resetPending || b.velLmtPending;
                        bound += free ? INFINITY : std::max({s.velLmt, b.velLmt, std::fabs(b.vel)});
                    }
                    const double dt = f.Stage(i, 0).dt, raw = (Raw(f, i) - Raw(before, i)) / dt;
                    const double tol = std::max(1.0, std::fabs(Raw(f, i))) * 1e-12 / dt;
                    ASSERT_TRUE(std::isfinite(p[i]) && std::isfinite(f.Vel(i))) << "axis " << i;
                    ASSERT_LE(std::fabs(raw), bound * (1 + 1e-9) + tol)
                        << "summed stage motion above the limits";
                    rawVel[i].Push(raw);
                    ASSERT_LE(std::fabs(f.Vel(i)), rawVel[i].Max() * (1 + 1e-9) + 100 * tol)
                        << "smoothed speed above the raw ones of its window, axis " << i << " seed "
                        << qztest::Seed();
                    const double off = (p[i] - g[i].base) * (side[i] > 0 ? 1 : -1);
                    const double slack = std::max(1.0, std::fabs(g[i].base));
                    if (!strict || !raw1) continue;
                    ASSERT_TRUE(!fromRest[i] || side[i] == 0.0 || off >= -1e-12 * slack)
                        << "passed a target from rest";
                    ASSERT_TRUE(reachedAt[i] < 0 || f.Stage(i, 0).velLmtPending ||
                                std::fabs(off) <= 1e-9 * slack)
                        << "left a fixed target it had reached, seed " << qztest::Seed();
                    if (reachedAt[i] < 0 && std::fabs(off) <= 1e-9 * slack) reachedAt[i] = k;
                }
            }
            for (int i = 0; i < n && strict; ++i) {
                ASSERT_LE(std::fabs(p[i] - g[i].base),
                          F::kSettle * std::max(1.0, std::fabs(g[i].base)))
                    << "axis " << i << " did not settle, " << ms << " ms, seed " << qztest::Seed();
                ASSERT_LE(std::fabs(f.Vel(i)), 1e-6);
            }
            settled += strict;
        }
    }
    EXPECT_GT(settled, 0);
    ::testing::Test::RecordProperty("cycles", std::to_string(cycles));
}

TEST(Soak, SingleAxisTrackerKeepsLimitsAndSettles) { SoakTrackers<Single>(0.3); }
TEST(Soak, NAxisTrackerKeepsLimitsSmoothsAndSettles) { SoakTrackers<Smoothed>(0.2); }
TEST(Soak, MultiStageTrackersKeepTheirStageLimitsAndSettle) { SoakTrackers<Cascade>(0.3); }

// The moving average stays near a fresh sum over its window and lands on a fixed input; the
// smoothed value steps within stepMax (and, until it lands, by at least stepMin), never away from
// its target, and lands on it.
TEST(Soak, FiltersTrackTheirWindowAndReachFixedInputs) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.1);
    for (std::int64_t cycles = 0; cycles < budget;) {
        const int ch = 1 + static_cast<int>(rng() % 8), len = 1 + static_cast<int>(rng() % 100);
        const double dt = Uniform(rng, 1e-3, 2e-2), noise = Uniform(rng, 0.0, 2.0),
                     rate = Uniform(rng, -5, 5);
        QZAVGFState f{};
        ASSERT_EQ(QZAVGF_OnInit(&f, ch, len, dt), 1);
        std::vector<double> window(static_cast<size_t>(ch * len));
        double x[8], avg[8], dAvg[8], base[8];
        for (double &b : base) b = Uniform(rng, -50, 50);
        const int moving = 50 + static_cast<int>(rng() % 1000);
        for (int k = 0; k < moving + len + 1; ++k, ++cycles) {
            for (int i = 0; i < ch; ++i)
                x[i] = base[i] + (k < moving ? rate * k * dt + Uniform(rng, -noise, noise) : 0.0);
            ASSERT_EQ(QZAVGF_OnFilt(&f, x, avg, dAvg), 1);
            for (int i = 0; i < ch; ++i) {
                double *w = &window[static_cast<size_t>(i * len)], sum = 0.0;
                if (k == 0) std::fill_n(w, len, x[i]);
                w[k % len] = x[i];
                for (int m = 0; m < len; ++m) sum += w[m];
                ASSERT_NEAR(avg[i], sum / len, 1e-10 * std::max(1.0, std::fabs(sum / len)))
                    << "len " << len << " cycle " << k;
            }
        }
        for (int i = 0; i < ch; ++i)
            EXPECT_NEAR(avg[i], base[i], 1e-12 * std::max(1.0, std::fabs(base[i])));
        for (int i = 0; i < ch; ++i) EXPECT_NEAR(dAvg[i], 0.0, 1e-8);

        QZSMVState m{};
        const double stepMax = LogUniform(rng, 1e-2, 1.0), target = Uniform(rng, -5, 5);
        ASSERT_EQ(QZSMV_OnInit(&m, Uniform(rng, -5, 5), LogUniform(rng, 1e-6, 0.5), stepMax,
                               stepMax * Uniform(rng, 0.05, 1.0)),
                  1);
        const std::int64_t bound =
            static_cast<std::int64_t>(std::fabs(target - m.value) / m.stepMin) + 2;
        for (std::int64_t k = 0; k < bound && m.value != target; ++k, ++cycles) {
            const double before = m.value;
            double y;
            QZSMV_OnUpdateV(&m, target, &y);
            ASSERT_LE(std::fabs(y - before), m.stepMax * (1 + 1e-12) + 1e-15);
            ASSERT_LE(std::fabs(y - target), std::fabs(before - target))
                << "moved away from its target";
            if (y != target)
                ASSERT_GE(std::fabs(y - before), m.stepMin * (1 - 1e-9)) << "step below stepMin";
        }
        EXPECT_EQ(m.value, target) << "smoothed value did not land on its target";
    }
}

}  // namespace
