// Multi-stage tracker: stage limits at initialisation and at run time, and the blend. The
// cascade's limits and settling over long runs are the soak's business.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "QZDT.h"
#include "test_util.h"

namespace {

void ExpectStages(const QZVDTMState &s, const double (&vel)[4], const double (&acc)[4]) {
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(s.stage[k].velLmtTarget, vel[k]) << "stage " << k;
        EXPECT_EQ(s.stage[k].accLmt, acc[k]) << "stage " << k;
    }
}

// Initialisation does not store the mode; the correction stages get 2A, 2A, A there but 100A at
// run time; each stage clamps its own copy at initialisation only.
TEST(TrackerMultistage, StageLimitsAtInitAndRunTime) {
    QZVDTMState s{};
    double out = -3.0;
    EXPECT_EQ(QZVDT_OnDT_BM(&s, 1.0, &out), 0);
    EXPECT_EQ(out, -3.0);
    s.mode = 77;
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 1), 1);
    EXPECT_EQ(s.mode, 77);
    EXPECT_EQ(s.corrScale, 1.0);  // 2.5 lowered
    ExpectStages(s, {69, 15, 5, 1}, {50, 100, 100, 50});
    ASSERT_EQ(QZVDT_OnSetRunTimeLmtM(&s, 180.0, 4.0, 1), 1);
    ExpectStages(s, {138, 30, 10, 2}, {4, 400, 400, 400});
    EXPECT_EQ(s.corrScale, 1.0);
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 54.0, 50.0, 1), 1);
    EXPECT_EQ(s.corrScale, 1.0);  // 1.5 lowered
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 1.8, 600.0, 2), 1);
    EXPECT_EQ(s.corrScale, 0.1);  // 0.05 raised
    ExpectStages(s, {1.8, 1.8 / 6, std::max(1.8 / 18, 0.1), 0.1}, {600, 1000, 1000, 600});
}

// The blend rises as 0.93 g + 0.035 while stage 0's output is beyond ten correction bands from
// the target, and decays as 0.97 g within them.
TEST(TrackerMultistage, BlendRisesFarFromTheTargetAndDecaysNearIt) {
    QZVDTMState s{};
    ASSERT_EQ(QZVDT_OnInitM(&s, 4.0, 90.0, 50.0, 1), 1);
    s.mode = 1;
    double out;
    QZVDT_OnDT_BM(&s, 0.0, &out);  // the reset step: blend 0
    QZVDT_OnDT_BM(&s, 100.0, &out);
    EXPECT_EQ(s.blend, 0.035);
    for (int k = 0; k < 5000; ++k) QZVDT_OnDT_BM(&s, 100.0, &out);
    const double g = s.blend;
    QZVDT_OnDT_BM(&s, 100.0, &out);
    EXPECT_GT(g, 0.0);
    EXPECT_EQ(s.blend, 0.97 * g);
}

}  // namespace
