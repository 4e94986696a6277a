// Soak: every tracker family, the estimator and the filters driven for many cycles with random
// limits, cycle times and targets that hold still, ramp, jump and carry noise, with the
// promises a controller relies on checked on every cycle:
//   * finite input gives finite output;
//   * a tracker's speed stays within its active velocity limit, and its speed changes by at most
//     accLmt * dt per cycle, on every cycle that follows the law (a lowered limit's ramp-down
//     instead changes the speed by exactly accLmt * dt and may exceed the new limit meanwhile);
//   * averaging never amplifies: a smoothed speed or acceleration stays within the largest raw
//     one of its window (the N-axis jerk limit only shapes the ramp; it is not a hard bound);
//   * a fixed target is reached and then held; the single-axis law does so without passing the
//     target when starting from rest and the cycle is at most 7 ms (longer cycles may overshoot
//     or hunt, so only the limits are checked there).
//
// The total number of cycles is QZ_SOAK_CYCLES (default 100000, the suite's short run); the
// `soak` CTest entry runs 10 million. QZ_TEST_SEED changes the random cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "QZDT.h"
#include "QZFLT.h"
#include "test_util.h"

namespace {

using qztest::Uniform;

std::int64_t TotalCycles() {
    const char *env = std::getenv("QZ_SOAK_CYCLES");
    const long long n = env ? std::strtoll(env, nullptr, 10) : 0;
    return n > 0 ? n : 100000;
}

// Shares of the total cycles per family.
std::int64_t Budget(double share) { return static_cast<std::int64_t>(share * TotalCycles()) + 1; }

// Records the cycles a family ran, for the test report.
void Report(std::int64_t cycles) {
    ::testing::Test::RecordProperty("cycles", std::to_string(cycles));
    std::printf("[   soak   ] %lld cycles\n", static_cast<long long>(cycles));
}

double LogUniform(std::mt19937_64 &rng, double lo, double hi) {
    return std::exp(Uniform(rng, std::log(lo), std::log(hi)));
}

// Cycle times: mostly up to 7 ms, where settling without overshoot is promised, and some longer.
double CycleMs(std::mt19937_64 &rng) {
    return Uniform(rng, 0.0, 1.0) < 0.8 ? Uniform(rng, 1.0, 7.0) : Uniform(rng, 7.0, 20.0);
}

// A target programme: a sequence of segments, each a fixed target, a ramp slower than the
// velocity limit, a sequence of jumps, or a noisy fixed target.
enum class Shape { kFixed, kRamp, kJumps, kNoisy };

struct Segment {
    Shape shape;
    double base, rate, noise;
    int cycles;
    bool settles;  // a fixed target reachable within the segment, so it must be reached
};

// Cycles a segment may take at most; a fixed target further away (a slow new limit after a fast
// motion) is still driven for this long, but need not be reached.
constexpr double kMaxSegmentCycles = 200000;

// The next segment for an axis at `from` moving at v0, with the limits it will follow.
Segment NextSegment(std::mt19937_64 &rng, double from, double v0, double vel, double acc, double dt,
                    bool fixed = false) {
    Segment g;
    g.shape = fixed ? Shape::kFixed : static_cast<Shape>(rng() % 4);
    // Within a few seconds' travel, so that a segment stays a small share of a short run.
    const double reach = std::min(300.0, vel * Uniform(rng, 0.1, 3.0));
    g.base = g.shape == Shape::kRamp ? from
                                     : std::max(-300.0, std::min(300.0, from + Uniform(rng, -reach, reach)));
    g.rate = Uniform(rng, -0.8, 0.8) * vel;
    g.noise = Uniform(rng, 0.0, 0.05) * vel;
    // Stopping from v0 first, then the way to the target and the ramps at either end.
    const double travel = (std::fabs(g.base - from) + v0 * v0 / (2.0 * acc)) / vel + (2.0 * vel + std::fabs(v0)) / acc;
    const double need = 2.0 * (travel + 1.0) / dt + 50;
    g.settles = g.shape == Shape::kFixed && need <= kMaxSegmentCycles;
    g.cycles = g.shape == Shape::kFixed ? static_cast<int>(std::min(need, kMaxSegmentCycles))
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

// ---- Per-cycle checks of one single-axis tracker --------------------------------------------

struct AxisWatch {
    std::int64_t cycles = 0, lawSteps = 0, rampSteps = 0;
};

// Checks one step of an axis tracker, given its state before the step.
::testing::AssertionResult AxisStepOk(const QZVDTState &before, const QZVDTState &after) {
    if (!std::isfinite(after.pos) || !std::isfinite(after.vel)) {
        return ::testing::AssertionFailure() << "non-finite position or velocity";
    }
    if (before.resetPending == 1) return ::testing::AssertionSuccess();
    const double dv = std::fabs(after.vel - before.vel);
    const double step = after.accLmt * after.dt;
    if (before.velLmtPending == 0) {
        if (std::fabs(after.vel) > after.velLmt) {
            return ::testing::AssertionFailure() << "speed " << after.vel << " above limit " << after.velLmt;
        }
        if (dv > step * (1.0 + 1e-12) + 1e-12) {
            return ::testing::AssertionFailure() << "speed change " << dv << " above accLmt*dt " << step;
        }
    } else if (std::fabs(dv - step) > step * 1e-12 + 1e-12) {
        return ::testing::AssertionFailure() << "ramp-down change " << dv << " is not accLmt*dt " << step;
    }
    return ::testing::AssertionSuccess();
}

// Random limits within the ranges the initialiser accepts, with at most 2 s to reach full speed.
void RandomLimits(std::mt19937_64 &rng, double &vel, double &acc) {
    vel = LogUniform(rng, 0.1, 200.0);
    acc = LogUniform(rng, std::max(1.0, 0.5 * vel), 1000.0);
}

TEST(Soak, SingleAxisTrackerKeepsLimitsAndSettles) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.3);
    std::int64_t cycles = 0, settled = 0;
    while (cycles < budget) {
        const double cycleMs = CycleMs(rng);
        double vel, acc;
        RandomLimits(rng, vel, acc);
        QZVDTState s{};
        ASSERT_EQ(QZVDT_OnInit(&s, cycleMs, vel, acc), 1);
        double out;
        ASSERT_EQ(QZVDT_OnDT(&s, Uniform(rng, -300.0, 300.0), &out), 1);
        for (int seg = 0; seg < 6 && cycles < budget; ++seg) {
            if (rng() % 3 == 0) {  // new limits mid-motion, raised or lowered
                RandomLimits(rng, vel, acc);
                switch (rng() % 3) {
                    case 0: QZVDT_OnSetRunTimeLmt(&s, vel, acc); break;
                    case 1: QZVDT_OnSetRunTimeVel(&s, vel); break;
                    default: QZVDT_OnSetRunTimeAcc(&s, acc); break;
                }
            }
            const Segment g = NextSegment(rng, s.pos, s.vel, s.velLmtTarget, s.accLmt, s.dt);
            const bool fromRest = std::fabs(s.vel) <= 1e-9 && s.velLmtPending == 0;
            const double slack = 1e-12 * std::max(1.0, std::fabs(g.base));
            const double side = s.pos - g.base;
            const bool strict = cycleMs <= 7.0;
            int reachedAt = -1;
            for (int k = 0; k < g.cycles; ++k, ++cycles) {
                const double t = TargetAt(g, k, rng);
                const QZVDTState before = s;
                ASSERT_EQ(QZVDT_OnDT(&s, t, &out), 1);
                ASSERT_TRUE(AxisStepOk(before, s)) << "cycle " << k << " of segment " << seg << " ("
                                                   << cycleMs << " ms), seed " << qztest::Seed();
                if (g.shape != Shape::kFixed) continue;
                if (strict && fromRest && side != 0.0) {
                    ASSERT_GE((s.pos - g.base) * (side > 0.0 ? 1.0 : -1.0), -slack) << "passed a fixed target from rest, "
                                                            << cycleMs << " ms, seed " << qztest::Seed();
                }
                const bool at = std::fabs(s.pos - g.base) <= 1e-9 * std::max(1.0, std::fabs(g.base));
                if (reachedAt < 0 && at) reachedAt = k;
                if (strict && g.settles && reachedAt >= 0 && s.velLmtPending == 0) {
                    ASSERT_TRUE(at) << "left a fixed target it had reached, seed " << qztest::Seed();
                }
            }
            if (g.settles && strict) {
                ASSERT_GE(reachedAt, 0) << "fixed target not reached, " << cycleMs << " ms, seed "
                                        << qztest::Seed();
                ++settled;
            }
        }
    }
    EXPECT_GT(settled, 0);
    Report(cycles);
}

// ---- The N-axis trackers: averaging does not amplify ----------------------------------------

// The last `len` values of one quantity, with their largest magnitude.
class WindowMax {
public:
    void Reset(int len) {
        len_ = len;
        v_.assign(static_cast<size_t>(len), 0.0);
        i_ = 0;
    }
    void Push(double x) {
        v_[static_cast<size_t>(i_)] = std::fabs(x);
        i_ = (i_ + 1) % len_;
    }
    double Max() const { return *std::max_element(v_.begin(), v_.end()); }

private:
    std::vector<double> v_;
    int len_ = 1, i_ = 0;
};

TEST(Soak, NAxisTrackerKeepsLimitsSmoothsAndSettles) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.2);
    std::int64_t cycles = 0;
    while (cycles < budget) {
        const int n = 1 + static_cast<int>(rng() % 8);
        const double cycleMs = Uniform(rng, 1.0, 7.0);
        double v[8], a[8], j[8], t[8], p[8], pv[8], pa[8];
        for (int i = 0; i < 8; ++i) {
            RandomLimits(rng, v[i], a[i]);
            j[i] = LogUniform(rng, 10.0, 1e6);
            t[i] = Uniform(rng, -300.0, 300.0);
        }
        QZNSyncDTSState s{};
        ASSERT_EQ(QZNSyncDTS_OnInit(&s, n, cycleMs, v, a, j), 1);
        ASSERT_EQ(QZNSyncDTS_OnDT(&s, t, p), 1);
        WindowMax rawVel[8], rawAcc[8];
        for (int i = 0; i < n; ++i) rawVel[i].Reset(s.avgLen[i]), rawAcc[i].Reset(s.avgLen[i]);
        for (int seg = 0; seg < 4 && cycles < budget; ++seg) {
            if (rng() % 3 == 0) {
                double nv[8], na[8];
                for (int i = 0; i < 8; ++i) RandomLimits(rng, nv[i], na[i]);
                ASSERT_EQ(QZNSyncDTS_OnSetRunTimeLmt(&s, nv, na), 1);
            }
            Segment g[8];
            int len = 0;
            for (int i = 0; i < n; ++i) {
                g[i] = NextSegment(rng, s.pos[i], s.axis[i].vel, s.axis[i].velLmtTarget, s.axis[i].accLmt,
                                   s.axis[i].dt, rng() % 2 == 0);
                len = std::max(len, g[i].cycles);
            }
            bool allFixed = true;
            for (int i = 0; i < n; ++i) allFixed = allFixed && g[i].settles;
            if (allFixed) len += 100;  // the average lags the raw motion by its span
            for (int k = 0; k < len; ++k, ++cycles) {
                for (int i = 0; i < n; ++i) t[i] = TargetAt(g[i], std::min(k, g[i].cycles), rng);
                QZNSyncDTSState before;
                std::memcpy(&before, &s, sizeof s);
                ASSERT_EQ(QZNSyncDTS_OnDT2(&s, t, p, pv, pa), 1);
                for (int i = 0; i < n; ++i) {
                    ASSERT_TRUE(AxisStepOk(before.axis[i], s.axis[i])) << "axis " << i << " cycle " << k;
                    const double dt = s.axis[i].dt;
                    rawVel[i].Push(s.axis[i].vel);
                    rawAcc[i].Push((s.axis[i].vel - before.axis[i].vel) / dt);
                    ASSERT_TRUE(std::isfinite(p[i]) && std::isfinite(pv[i]) && std::isfinite(pa[i]));
                    const double scale = std::max(1.0, std::fabs(p[i])) * 1e-12 / dt;
                    ASSERT_LE(std::fabs(pv[i]), rawVel[i].Max() * (1 + 1e-9) + 100 * scale)
                        << "smoothed speed above the raw speeds of its window, axis " << i << " cycle " << k
                        << " seed " << qztest::Seed();
                    ASSERT_LE(std::fabs(pa[i]), rawAcc[i].Max() * (1 + 1e-9) + 200 * scale / dt)
                        << "smoothed acceleration above the raw ones of its window, axis " << i;
                }
            }
            if (allFixed && cycleMs <= 7.0) {
                for (int i = 0; i < n; ++i) {
                    ASSERT_NEAR(p[i], g[i].base, 1e-9 * std::max(1.0, std::fabs(g[i].base)))
                        << "axis " << i << " did not settle, seed " << qztest::Seed();
                    ASSERT_NEAR(pv[i], 0.0, 1e-6);
                }
            }
        }
    }
    Report(cycles);
}

// ---- Multi-stage trackers: the stages' limits bound the summed motion ----------------------

// Largest speed the cascade may command: the sum of its stages' limits (their ramps aside).
double CascadeSpeedBound(const QZVDTMState &m, const QZVDTMState &before) {
    double sum = 0.0;
    const int stages = m.mode == 0 ? 1 : 4;
    for (int k = 0; k < stages; ++k) {
        sum += std::max({m.stage[k].velLmt, before.stage[k].velLmt, std::fabs(before.stage[k].vel)});
    }
    return sum;
}

TEST(Soak, MultiStageTrackersKeepTheirStageLimitsAndSettle) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.3);
    std::int64_t cycles = 0;
    while (cycles < budget) {
        const int mode = static_cast<int>(rng() % 3);
        const int n = 1 + static_cast<int>(rng() % 8);
        const double cycleMs = Uniform(rng, 1.0, 7.0);
        double v[8], a[8], j[8], t[8], p[8];
        for (int i = 0; i < 8; ++i) {
            v[i] = LogUniform(rng, 1.0, 200.0);
            a[i] = LogUniform(rng, 10.0, 1000.0);
            j[i] = LogUniform(rng, 500.0, 2e7);
            t[i] = Uniform(rng, -100.0, 100.0);
        }
        QZNSyncDTSMState s{};
        ASSERT_EQ(QZNSyncDTS_OnInitM(&s, n, cycleMs, v, a, j, mode), 1);
        ASSERT_EQ(QZNSyncDTS_OnDTM(&s, t, p), 1);
        WindowMax rawVel[8];
        for (int i = 0; i < n; ++i) rawVel[i].Reset(s.avgLen[i]);
        for (int seg = 0; seg < 4 && cycles < budget; ++seg) {
            Segment g[8];
            int len = 0;
            bool allFixed = true;
            for (int i = 0; i < n; ++i) {
                const QZVDTState &st = s.axis[i].stage[0];
                g[i] = NextSegment(rng, s.pos[i], st.vel, st.velLmt, st.accLmt, st.dt, rng() % 2 == 0);
                allFixed = allFixed && g[i].settles;
                len = std::max(len, std::max(g[i].cycles, 200));
            }
            if (allFixed) len += 3000;  // the correction stages take up the last residuals
            for (int k = 0; k < len; ++k, ++cycles) {
                for (int i = 0; i < n; ++i) t[i] = TargetAt(g[i], std::min(k, g[i].cycles), rng);
                QZNSyncDTSMState before;
                std::memcpy(&before, &s, sizeof s);
                ASSERT_EQ(QZNSyncDTS_OnDTM(&s, t, p), 1);
                for (int i = 0; i < n; ++i) {
                    for (int st = 0; st < 4; ++st) {
                        ASSERT_TRUE(AxisStepOk(before.axis[i].stage[st], s.axis[i].stage[st]))
                            << "axis " << i << " stage " << st << " cycle " << k << " seed " << qztest::Seed();
                    }
                    const double dt = s.axis[i].stage[0].dt;
                    const double raw = (s.rawPos[i] - before.rawPos[i]) / dt;
                    const double tol = std::max(1.0, std::fabs(s.rawPos[i])) * 1e-12 / dt;
                    ASSERT_LE(std::fabs(raw), CascadeSpeedBound(s.axis[i], before.axis[i]) * (1 + 1e-9) + tol)
                        << "summed stage motion above the stage limits, axis " << i << " mode " << mode;
                    rawVel[i].Push(raw);
                    ASSERT_TRUE(std::isfinite(p[i]) && std::isfinite(s.vel[i]) && std::isfinite(s.acc[i]));
                    ASSERT_LE(std::fabs(s.vel[i]), rawVel[i].Max() * (1 + 1e-9) + 100 * tol);
                }
            }
            if (allFixed) {
                for (int i = 0; i < n; ++i) {
                    ASSERT_NEAR(p[i], g[i].base, 1e-8) << "axis " << i << " mode " << mode
                                                       << " did not settle, seed " << qztest::Seed();
                }
            }
        }
    }
    Report(cycles);
}

// ---- Estimator ------------------------------------------------------------------------------

TEST(Soak, EstimatorStaysFiniteBoundedAndComesToRest) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.1);
    std::int64_t cycles = 0;
    while (cycles < budget) {
        const int n = 1 + static_cast<int>(rng() % 8);
        const double cycleMs = Uniform(rng, 1.0, 12.0);
        double vmax[8], vcur[8], x[8], out[8], ref[8];
        for (int i = 0; i < 8; ++i) {
            vmax[i] = LogUniform(rng, 1.0, 500.0);
            vcur[i] = Uniform(rng, 0.1, 1.2) * vmax[i];
            x[i] = Uniform(rng, -100.0, 100.0);
        }
        QZNEstState s{};
        QZOnInitEst(&s, n, cycleMs, vmax, vcur);
        int32_t stamp = static_cast<int32_t>(rng() % 9993);
        const double rate = Uniform(rng, -0.5, 0.5);
        const int period = std::max(1, static_cast<int>(cycleMs));
        const int moving = 200 + static_cast<int>(rng() % 2000);
        const int still = 400;
        for (int k = 0; k < moving + still; ++k, ++cycles) {
            const bool fresh = k % (period + static_cast<int>(rng() % 3)) == 0;  // jittery arrivals
            if (fresh) {
                stamp = stamp >= 9992 ? 0 : stamp + 1;
                for (int i = 0; i < n; ++i) {
                    if (k < moving) x[i] += rate * vmax[i] * s.dt + Uniform(rng, -1e-3, 1e-3);
                    ref[i] = Uniform(rng, -1.0, 1.0) * vmax[i];
                }
            }
            if (k == moving / 2) {
                for (int i = 0; i < n; ++i) vcur[i] = Uniform(rng, 0.1, 1.2) * vmax[i];
                QZNEst_OnSetRunTimeLmt(&s, vcur);
            }
            ASSERT_EQ(QZNEst_OnDT(&s, stamp, x, out, ref), 1);
            for (int i = 0; i < n; ++i) {
                ASSERT_TRUE(std::isfinite(out[i]) && std::isfinite(s.velEst[i]));
                ASSERT_EQ(out[i], s.lastSample[i]);
                ASSERT_LE(std::fabs(s.velMeas[i]), 0.4 * vmax[i]) << "measured velocity above the cap";
                if (fresh) {  // measured now, under the current limit
                    ASSERT_LE(std::fabs(s.velMeas[i]), std::min(s.velLmtCur[i], vmax[i]) + 1e-12);
                }
                ASSERT_LE(std::fabs(s.velEst[i]), 0.4 * vmax[i] + 0.75) << "estimate beyond its quantised step";
            }
            ASSERT_GE(s.jitterScore, 0.0);
            ASSERT_LE(s.jitterScore, 100.0);
        }
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(out[i], x[i]);
            EXPECT_EQ(s.velEst[i], 0.0) << "estimate did not come to rest on still samples";
        }
    }
    Report(cycles);
}

// ---- Filters --------------------------------------------------------------------------------

TEST(Soak, FiltersTrackTheirWindowAndReachFixedInputs) {
    auto rng = qztest::Rng();
    const std::int64_t budget = Budget(0.1);
    std::int64_t cycles = 0;
    while (cycles < budget) {
        const int ch = 1 + static_cast<int>(rng() % 8);
        const int len = 1 + static_cast<int>(rng() % 100);
        const double dt = Uniform(rng, 1e-3, 2e-2);
        QZAVGFState f{};
        ASSERT_EQ(QZAVGF_OnInit(&f, ch, len, dt), 1);
        std::vector<double> window(static_cast<size_t>(ch * len));
        double x[8], avg[8], dAvg[8], base[8];
        for (int i = 0; i < 8; ++i) base[i] = Uniform(rng, -50, 50);
        const double noise = Uniform(rng, 0.0, 2.0), rate = Uniform(rng, -5, 5);
        const int moving = 50 + static_cast<int>(rng() % 1000);
        for (int k = 0; k < moving + len + 1; ++k, ++cycles) {
            for (int i = 0; i < ch; ++i) {
                x[i] = k < moving ? base[i] + rate * k * dt + Uniform(rng, -noise, noise) : base[i];
            }
            ASSERT_EQ(QZAVGF_OnFilt(&f, x, avg, dAvg), 1);
            for (int i = 0; i < ch; ++i) {
                if (k == 0) std::fill_n(&window[static_cast<size_t>(i * len)], len, x[i]);
                window[static_cast<size_t>(i * len + k % len)] = x[i];
                double sum = 0.0;
                for (int w = 0; w < len; ++w) sum += window[static_cast<size_t>(i * len + w)];
                ASSERT_NEAR(avg[i], sum / len, 1e-10 * std::max(1.0, std::fabs(sum / len)))
                    << "average drifted from its window, len " << len << " cycle " << k;
                ASSERT_TRUE(std::isfinite(dAvg[i]));
            }
        }
        for (int i = 0; i < ch; ++i) {
            EXPECT_NEAR(avg[i], base[i], 1e-12 * std::max(1.0, std::fabs(base[i])));
            EXPECT_NEAR(dAvg[i], 0.0, 1e-8);
        }

        // The smoothed value: steps within stepMax, never away from its target, and lands on it
        // within |distance| / stepMin updates.
        QZSMVState m{};
        const double stepMax = LogUniform(rng, 1e-2, 1.0);
        ASSERT_EQ(QZSMV_OnInit(&m, Uniform(rng, -5, 5), LogUniform(rng, 1e-6, 0.5), stepMax,
                               stepMax * Uniform(rng, 0.05, 1.0)),
                  1);
        const double target = Uniform(rng, -5, 5);
        const std::int64_t bound = static_cast<std::int64_t>(std::fabs(target - m.value) / m.stepMin) + 2;
        for (std::int64_t k = 0; k < bound && m.value != target; ++k, ++cycles) {
            const double before = m.value;
            double v;
            QZSMV_OnUpdateV(&m, target, &v);
            ASSERT_LE(std::fabs(v - before), m.stepMax * (1 + 1e-12) + 1e-15);
            ASSERT_LE(std::fabs(v - target), std::fabs(before - target)) << "moved away from its target";
        }
        EXPECT_EQ(m.value, target) << "smoothed value did not land on its target";
    }
    Report(cycles);
}

}  // namespace
