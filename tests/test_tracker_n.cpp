// N-axis smoothed tracker: the lifecycle and the step variants. The averaging spans chosen at
// initialisation are pinned by the golden vectors; long runs (limits, smoothing, settling) are the
// soak's business.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

// A record never initialised refuses to step or be read; reset steps output the targets at rest;
// the readers respect a pending reset; OnDT2, OnDT_NoChange and an aliased target/output array
// all give the bits of OnDT.
TEST(TrackerN, LifecycleAndStepVariantsAgree) {
    auto rng = qztest::Rng();
    double v[8], a[8], j[8], t[8] = {0, 0, 0, 0, 0, 0, 0, 99}, p[8], p2[8], v2[8], a2[8], pa[8],
                             pn[8], tt[8];
    for (int i = 0; i < 8; ++i)
        v[i] = qztest::Uniform(rng, 20, 150), a[i] = qztest::Uniform(rng, 20, 900),
        j[i] = qztest::Uniform(rng, 200, 4e4);
    QZNSyncDTSState s[4] = {};  // plain, OnDT2, aliased, OnDT_NoChange
    QZNSyncDTSMState m = {};
    EXPECT_ALL(!QZNSyncDTS_OnDT2(&s[0], t, p, v2, a2), !QZNSyncDTS_OnDT_NoChange(&s[0], p),
               !QZNSyncDTS_OnGetCurPVA(&s[0], tt, p, v2, a2), !QZNSyncDTS_OnDT_UM(&m, p));
    for (auto &r : s) ASSERT_EQ(QZNSyncDTS_OnInit(&r, 7, 4.0, v, a, j), 1);
    EXPECT_EQ(QZNSyncDTS_OnGetCurPVA(&s[0], tt, p, v2, a2), 0);  // a reset is pending
    EXPECT_EQ(QZNSyncDTS_OnGetCurPVA_U(&s[0], p, v2, a2), 1);
    for (int k = 0; k < 700; ++k) {
        if (k % 150 == 0)
            for (int i = 0; i < 7; ++i) t[i] = qztest::Uniform(rng, -200, 200);
        if (k == 450)
            for (auto &r : s) ASSERT_EQ(QZNSyncDTS_OnEmpty(&r), 1);
        std::memcpy(pa, t, sizeof pa);
        ASSERT_ALL(QZNSyncDTS_OnDT(&s[0], t, p), QZNSyncDTS_OnDT2(&s[1], t, p2, v2, a2),
                   QZNSyncDTS_OnDT(&s[2], pa, pa),
                   (k % 150 ? QZNSyncDTS_OnDT_NoChange(&s[3], pn) : QZNSyncDTS_OnDT(&s[3], t, pn)));
        for (int i = 0; i < 7; ++i) {
            if (k == 0 || k == 450) ASSERT_ALL(p[i] == t[i], v2[i] == 0, a2[i] == 0) << k;
            ASSERT_TRUE(SameBits(p[i], p2[i])) << "OnDT2, cycle " << k;
            ASSERT_TRUE(SameBits(p[i], pa[i])) << "aliased, cycle " << k;
            ASSERT_TRUE(SameBits(p[i], pn[i])) << "OnDT_NoChange, cycle " << k;
            ASSERT_ALL(SameBits(v2[i], s[0].vel[i]), SameBits(a2[i], s[0].acc[i])) << k;
        }
    }
    ASSERT_EQ(QZNSyncDTS_OnGetCurPVA(&s[0], tt, p, v2, a2), 1);
    EXPECT_ALL(tt[6] == t[6], p[6] == s[0].pos[6], v2[6] == s[0].vel[6]);
    EXPECT_EQ(s[0].target[7], 0.0);  // the axis beyond the count is never read or written
}

}  // namespace
