// N-axis multi-stage tracker: lifecycle, the sticky target-jump flag and the re-summation of one
// axis per call after 1000 steps. The jerk clamps and spans of initialisation are pinned by the
// golden vectors; long runs are the soak's business.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_support.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

// Random limits and targets for eight axes.
void RandomAxes(std::mt19937_64 &rng, double *v, double *a, double *j, double *t) {
    for (int i = 0; i < 8; ++i)
        v[i] = qztest::Uniform(rng, 20, 150), a[i] = qztest::Uniform(rng, 30, 800),
        j[i] = qztest::Uniform(rng, 2000, 1e6), t[i] = qztest::Uniform(rng, -50, 50);
}

// Refusals before initialisation and while a reset is pending; the reset step outputs the
// targets at rest; run-time limits go through each axis's mode (mode 1: 69/90 on stage 0).
TEST(TrackerNMultistage, LifecycleAndReaders) {
    const double v[2] = {50, 20}, a[2] = {200, 100}, nv[2] = {90, 180}, na[2] = {10, 10};
    double j[2] = {5000, 5000}, t[2] = {3, -4}, p[2] = {9, 9}, vv[2], aa[2], tt[2];
    QZNSyncDTSMState s{};
    EXPECT_EQ(QZNSyncDTS_OnDTM(&s, t, p) + QZNSyncDTS_OnEmptyM(&s) +
                  QZNSyncDTS_OnSetRunTimeLmtM(&s, v, a) + QZNSyncDTS_OnGetCurPVA_UM(&s, p, vv, aa),
              0);
    EXPECT_EQ(p[0], 9);
    ASSERT_EQ(QZNSyncDTS_OnInitM(&s, 2, 4.0, v, a, j, 1), 1);
    for (int round = 0; round < 2; ++round) {
        EXPECT_ALL(QZNSyncDTS_OnDT_UM(&s, p) == 0, QZNSyncDTS_OnGetCurPVAM(&s, tt, p, vv, aa) == 0,
                   QZNSyncDTS_OnGetCurPVA_UM(&s, p, vv, aa) == 1);
        ASSERT_EQ(QZNSyncDTS_OnDTM(&s, t, p), 1);
        ASSERT_EQ(QZNSyncDTS_OnGetCurPVAM(&s, tt, p, vv, aa), 1);
        for (int i = 0; i < 2; ++i)
            EXPECT_ALL(p[i] == t[i], tt[i] == t[i], s.rawPos[i] == t[i], vv[i] == 0, aa[i] == 0);
        for (int k = 0; k < 20; ++k) ASSERT_EQ(QZNSyncDTS_OnDT_UM(&s, p), 1);
        ASSERT_EQ(QZNSyncDTS_OnEmptyM(&s), 1);
        t[0] = 100;
    }
    ASSERT_EQ(QZNSyncDTS_OnSetRunTimeLmtM(&s, nv, na), 1);
    EXPECT_EQ(s.axis[0].stage[0].velLmtTarget, 69);
    EXPECT_EQ(s.axis[1].stage[0].velLmtTarget, 138);
}

// Set by a move of more than 1% of stage 0's active velocity limit in one step; stays set
// through later steps and emptying; cleared by initialisation alone.
TEST(TrackerNMultistage, TargetJumpIsStrictAndSticky) {
    const double v[2] = {100, 100}, a[2] = {100, 100};
    double j[2] = {1e4, 1e4}, t[2] = {0, 0}, p[2];
    QZNSyncDTSMState s{};
    ASSERT_EQ(QZNSyncDTS_OnInitM(&s, 2, 4.0, v, a, j, 2), 1);
    QZNSyncDTS_OnDTM(&s, t, p);
    t[0] = 1.0, t[1] = qztest::NextUp(1.0);  // exactly 1% of 100, and one ulp more
    QZNSyncDTS_OnDTM(&s, t, p);
    EXPECT_ALL(s.axis[0].targetJump == 0, s.axis[1].targetJump == 1);
    t[0] = 1.5;
    for (int k = 0; k < 10; ++k) QZNSyncDTS_OnDTM(&s, t, p);
    QZNSyncDTS_OnEmptyM(&s);
    QZNSyncDTS_OnDTM(&s, t, p);
    EXPECT_ALL(s.axis[0].targetJump == 0, s.axis[1].targetJump == 1);
    QZNSyncDTS_OnInitM(&s, 2, 4.0, v, a, j, 2);
    EXPECT_EQ(s.axis[1].targetJump, 0);
}

// All counters pass 1000 on the same call: axis 0 is re-summed then, axis 1 on the next call
// and so on, through either step operation, each to the exact sum of its ring; the axis beyond
// the count stays untouched.
TEST(TrackerNMultistage, ResummationTakesOneAxisPerCallInOrder) {
    auto rng = qztest::Rng();
    const int n = 7;
    double v[8], a[8], j[8], t[8], p[8];
    RandomAxes(rng, v, a, j, t);
    QZNSyncDTSMState s{};
    ASSERT_EQ(QZNSyncDTS_OnInitM(&s, 8, 1.0, v, a, j, 0), 1);  // all eight axes are taken
    ASSERT_EQ(QZNSyncDTS_OnInitM(&s, n, 1.0, v, a, j, 0), 1);
    for (int k = 0; k <= 1000; ++k) QZNSyncDTS_OnDTM(&s, k ? t : v, p);
    for (int call = 0; call < n; ++call) {
        ASSERT_EQ(call % 2 ? QZNSyncDTS_OnDT_UM(&s, p) : QZNSyncDTS_OnDTM(&s, t, p), 1);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(s.resumCount[i], i <= call ? call - i : 1001 + call) << call;
        EXPECT_TRUE(SameBits(s.avgSum[call], RingSum(s, call))) << call;
    }
    EXPECT_EQ(s.rawPos[n], 0.0);
    EXPECT_EQ(s.avgSum[n], 0.0);
    EXPECT_EQ(s.resumCount[n], 0);
}

}  // namespace
