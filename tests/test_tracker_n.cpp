// N-axis smoothed tracker: initialisation guards and spans, lifecycle, and the behaviour of long
// runs on up to eight axes (limits respected, jerk bounded by the averaging, settling, and the
// running sums re-summed exactly at every wrap of the ring).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

struct Limits {
    double vel[8], acc[8], jerk[8];
};

Limits RandomLimits(std::mt19937_64 &rng) {
    Limits l;
    for (int i = 0; i < 8; ++i) {
        l.vel[i] = qztest::Uniform(rng, 20.0, 150.0);
        l.acc[i] = qztest::Uniform(rng, 20.0, 900.0);
        l.jerk[i] = qztest::Uniform(rng, 200.0, 40000.0);
    }
    return l;
}

double FreshSum(const QZNSyncDTSState &s, int i) {
    double sum = 0.0;
    for (int k = 0; k < s.avgLen[i]; ++k) sum = sum + s.ringBuf[i][k];
    return sum;
}

TEST(TrackerN, InitRefusesBadAxisCountOrJerkAndLeavesRecordUnusable) {
    const double v[8] = {10, 10, 10, 10, 10, 10, 10, 10}, a[8] = {100, 100, 100, 100, 100, 100, 100, 100};
    double j[8] = {1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000};
    QZNSyncDTSState s{};
    EXPECT_EQ(QZNSyncDTS_OnInit(&s, 0, 4.0, v, a, j), 0);
    EXPECT_EQ(QZNSyncDTS_OnInit(&s, 9, 4.0, v, a, j), 0);
    for (double bad : {qztest::NextDown(1.0), 0.5, 2e12, qztest::NextUp(1e12)}) {
        ASSERT_EQ(QZNSyncDTS_OnInit(&s, 3, 4.0, v, a, j), 1);
        j[2] = bad;
        EXPECT_EQ(QZNSyncDTS_OnInit(&s, 3, 4.0, v, a, j), 0) << bad;
        EXPECT_EQ(s.isInit, 0);
        EXPECT_EQ(s.axisNum, 0);
        double out[8] = {-7, -7, -7};
        EXPECT_EQ(QZNSyncDTS_OnDT(&s, v, out), 0);
        EXPECT_EQ(out[0], -7);
        EXPECT_EQ(QZNSyncDTS_OnEmpty(&s), 0);
        EXPECT_EQ(QZNSyncDTS_OnGetCurPVA_U(&s, out, out, out), 0);
        j[2] = 1000;
    }
    for (double edge : {1.0, 1e12}) {
        j[0] = edge;
        EXPECT_EQ(QZNSyncDTS_OnInit(&s, 8, 4.0, v, a, j), 1) << edge;
    }
}

// The span is the number of cycles the acceleration takes to build up at the jerk limit, from
// the arguments as given (not the tracker's clamped copies), truncated and clamped to [3, 30].
TEST(TrackerN, SpanFollowsUnclampedBuildUpTime) {
    struct Case {
        double cycleMs, acc, jerk;
        int span;
    } cases[] = {
        {4, 10, 200, 12},      {4, 10, 1e12, 3},    {4, 10, 1, 30},     {4, 5000, 1e5, 12},
        {1, 3, 1000, 3},       {1, 2.9999, 1000, 3}, {1, 30.9, 1000, 30}, {1, 29.99, 1000, 29},
        {0, 10, 1000, 30},     {0, 0, 1000, 3},      {4, -50, 1000, 3},
    };
    for (const Case &c : cases) {
        QZNSyncDTSState s{};
        const double v = 10, a = c.acc, j = c.jerk;
        ASSERT_EQ(QZNSyncDTS_OnInit(&s, 1, c.cycleMs, &v, &a, &j), 1);
        EXPECT_EQ(s.avgLen[0], c.span) << c.cycleMs << " " << c.acc << " " << c.jerk;
        EXPECT_EQ(s.avgLenD[0], static_cast<double>(c.span));
        EXPECT_EQ(s.axis[0].accLmt, std::min(std::max(c.acc, 1.0), 1000.0));
    }
}

TEST(TrackerN, ResetStepOutputsTargetsAndReadersRespectIt) {
    auto rng = qztest::Rng();
    const Limits l = RandomLimits(rng);
    QZNSyncDTSState s{};
    ASSERT_EQ(QZNSyncDTS_OnInit(&s, 8, 2.0, l.vel, l.acc, l.jerk), 1);
    double t[8], p[8], v[8], a[8], tt[8];
    for (double &x : t) x = qztest::Uniform(rng, -100, 100);
    EXPECT_EQ(QZNSyncDTS_OnGetCurPVA(&s, tt, p, v, a), 0);
    EXPECT_EQ(QZNSyncDTS_OnGetCurPVA_U(&s, p, v, a), 1);
    std::fill(v, v + 8, 9.0);
    ASSERT_EQ(QZNSyncDTS_OnDT2(&s, t, p, v, a), 1);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(p[i], t[i]);
        EXPECT_EQ(v[i], 0.0);
        EXPECT_EQ(a[i], 0.0);
    }
    // Move away, then empty: the next step snaps to the new targets again.
    for (int k = 0; k < 50; ++k) QZNSyncDTS_OnDT(&s, tt, p);
    ASSERT_EQ(QZNSyncDTS_OnEmpty(&s), 1);
    EXPECT_EQ(QZNSyncDTS_OnGetCurPVA(&s, tt, p, v, a), 0);
    ASSERT_EQ(QZNSyncDTS_OnDT(&s, t, p), 1);
    ASSERT_EQ(QZNSyncDTS_OnGetCurPVA(&s, tt, p, v, a), 1);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(tt[i], t[i]);
        EXPECT_EQ(p[i], t[i]);
        EXPECT_EQ(v[i], 0.0);
    }
}

// The step variants and an aliased target/output array all give the same bits as OnDT.
TEST(TrackerN, StepVariantsAndAliasedArraysAgree) {
    auto rng = qztest::Rng();
    const Limits l = RandomLimits(rng);
    QZNSyncDTSState ref{}, dt2{}, alias{}, nochange{};
    for (QZNSyncDTSState *s : {&ref, &dt2, &alias, &nochange})
        ASSERT_EQ(QZNSyncDTS_OnInit(s, 7, 4.0, l.vel, l.acc, l.jerk), 1);
    double t[8] = {};
    for (int k = 0; k < 600; ++k) {
        if (k % 150 == 0)
            for (int i = 0; i < 7; ++i) t[i] = qztest::Uniform(rng, -200, 200);
        double p[8], p2[8], v2[8], a2[8], pa[8], pn[8];
        ASSERT_EQ(QZNSyncDTS_OnDT(&ref, t, p), 1);
        ASSERT_EQ(QZNSyncDTS_OnDT2(&dt2, t, p2, v2, a2), 1);
        std::memcpy(pa, t, sizeof pa);
        ASSERT_EQ(QZNSyncDTS_OnDT(&alias, pa, pa), 1);
        if (k % 150 == 0) {
            ASSERT_EQ(QZNSyncDTS_OnDT(&nochange, t, pn), 1);
        } else {
            ASSERT_EQ(QZNSyncDTS_OnDT_NoChange(&nochange, pn), 1);
        }
        for (int i = 0; i < 7; ++i) {
            ASSERT_TRUE(SameBits(p[i], p2[i]) && SameBits(p[i], pa[i]) && SameBits(p[i], pn[i])) << k;
            ASSERT_TRUE(SameBits(v2[i], ref.vel[i]) && SameBits(a2[i], ref.acc[i])) << k;
        }
    }
}

// Long runs towards fixed, ramping and jumping targets with limit changes: velocity within the
// limit, acceleration within the limit and changing by at most 2A/avgLen per cycle, settling on
// the final target, and the running sum replaced by the exact sum of the ring at every wrap.
TEST(TrackerN, LongRunsRespectLimitsSmoothAndSettle) {
    auto rng = qztest::Rng();
    for (int run = 0; run < 12; ++run) {
        const Limits l = RandomLimits(rng);
        const int n = 1 + run % 8;
        const double cycleMs = run % 3 == 0 ? 8.0 : 4.0;
        QZNSyncDTSState s{};
        ASSERT_EQ(QZNSyncDTS_OnInit(&s, n, cycleMs, l.vel, l.acc, l.jerk), 1);
        double t[8], start[8], out[8];
        for (int i = 0; i < n; ++i) start[i] = t[i] = qztest::Uniform(rng, -40, 40);
        ASSERT_EQ(QZNSyncDTS_OnDT(&s, t, out), 1);
        // Lowered limits only shrink the bounds, so the initial limits bound the whole run.
        const double *vmax = l.vel, *amax = l.acc;
        const int steps = 7000;
        int wraps = 0;
        for (int k = 1; k <= steps; ++k) {
            if (k == 1500) {  // jump
                for (int i = 0; i < n; ++i) t[i] = qztest::Uniform(rng, -40, 40);
            } else if (k > 2500 && k <= 3000) {  // ramp slower than every limit
                for (int i = 0; i < n; ++i) t[i] = start[i] + 0.002 * (k - 2500);
            } else if (k == 3500) {  // lowered limits, mid-motion
                double nv[8], na[8];
                for (int i = 0; i < n; ++i) {
                    nv[i] = 0.5 * l.vel[i];
                    na[i] = 0.7 * l.acc[i];
                    t[i] = -t[i];
                }
                ASSERT_EQ(QZNSyncDTS_OnSetRunTimeLmt(&s, nv, na), 1);
            }
            QZNSyncDTSState before;
            std::memcpy(&before, &s, sizeof s);
            ASSERT_EQ(QZNSyncDTS_OnDT(&s, t, out), 1);
            for (int i = 0; i < n; ++i) {
                ASSERT_LE(std::fabs(s.vel[i]), vmax[i] * (1 + 1e-12) + 1e-9) << run << " " << k;
                ASSERT_LE(std::fabs(s.acc[i]), amax[i] * (1 + 1e-9) + 1e-6) << run << " " << k;
                ASSERT_LE(std::fabs(s.acc[i] - before.acc[i]), 2 * amax[i] / s.avgLenD[i] * (1 + 1e-9) + 1e-6)
                    << run << " " << k;
                const int j = before.ringIdx[i];
                const double y = s.ringBuf[i][j];
                if (j == 0 && k > s.avgLen[i]) {
                    // The ring holds exactly the values summed since the last wrap.
                    ASSERT_TRUE(SameBits(before.avgResum[i], FreshSum(before, i)));
                    ASSERT_TRUE(SameBits(s.avgSum[i], (FreshSum(before, i) - before.ringBuf[i][0]) + y));
                    ++wraps;
                }
                ASSERT_NEAR(s.avgSum[i], FreshSum(s, i), 1e-11 * s.avgLenD[i] * 50);
                ASSERT_TRUE(SameBits(out[i], s.avgSum[i] / s.avgLenD[i]));
            }
        }
        EXPECT_GT(wraps, 0);
        for (int i = 0; i < n; ++i) {
            EXPECT_NEAR(out[i], t[i], 1e-9) << run << " axis " << i;
            EXPECT_NEAR(s.vel[i], 0.0, 1e-6);
        }
    }
}

// From rest towards a distant target the smoothed acceleration climbs over avgLen cycles from
// A/avgLen to A, where the raw tracker jumps to A at once.
TEST(TrackerN, AccelerationBuildsUpOverTheSpan) {
    const double v = 100, a = 10, j = 200;  // 4 ms: span 12
    QZNSyncDTSState s{};
    ASSERT_EQ(QZNSyncDTS_OnInit(&s, 1, 4.0, &v, &a, &j), 1);
    double t = 0, out;
    QZNSyncDTS_OnDT(&s, &t, &out);
    t = 1000;
    double prev = 0;
    for (int k = 1; k <= 12; ++k) {
        QZNSyncDTS_OnDT(&s, &t, &out);
        EXPECT_NEAR(s.acc[0], a * k / 12.0, 1e-6) << k;
        EXPECT_GT(s.acc[0], prev);
        prev = s.acc[0];
    }
}

// Limit changes and emptying pass through the axes in order and stop at the first that refuses.
TEST(TrackerN, AxisRefusalStopsLimitChangesAndEmpty) {
    const double v[3] = {10, 10, 10}, a[3] = {100, 100, 100}, j[3] = {1000, 1000, 1000};
    const double nv[3] = {20, 20, 20}, na[3] = {300, 300, 300};
    QZNSyncDTSState s{};
    ASSERT_EQ(QZNSyncDTS_OnInit(&s, 3, 4.0, v, a, j), 1);
    double out[3];
    QZNSyncDTS_OnDT(&s, v, out);
    s.axis[1].isInit = 0;
    EXPECT_EQ(QZNSyncDTS_OnSetRunTimeLmt(&s, nv, na), 0);
    EXPECT_EQ(s.axis[0].velLmt, 20);
    EXPECT_EQ(s.axis[0].accLmt, 300);
    EXPECT_EQ(s.axis[2].velLmt, 10);
    EXPECT_EQ(QZNSyncDTS_OnSetRunTimeVel(&s, na), 0);
    EXPECT_EQ(QZNSyncDTS_OnSetRunTimeAcc(&s, nv), 0);
    EXPECT_EQ(s.axis[0].accLmt, 20);
    EXPECT_EQ(s.axis[2].accLmt, 100);
    EXPECT_EQ(QZNSyncDTS_OnEmpty(&s), 0);
    EXPECT_EQ(s.resetPending, 0);
    EXPECT_EQ(s.axis[0].resetPending, 1);
    EXPECT_EQ(s.axis[2].resetPending, 0);
}

}  // namespace
