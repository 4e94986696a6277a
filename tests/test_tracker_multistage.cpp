// Multi-stage tracker: mode 0 is the plain tracker. The cascade's limits and settling over long
// runs are the soak's business.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "QZDT.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

void ExpectStages(const QZVDTMState &s, const double (&vel)[4], const double (&acc)[4]) {
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(s.stage[k].velLmtTarget, vel[k]) << "stage " << k;
        EXPECT_EQ(s.stage[k].accLmt, acc[k]) << "stage " << k;
    }
}

// Mode 0 is the plain tracker, bit for bit, through limit changes and emptying.
TEST(TrackerMultistage, ModeZeroIsThePlainTracker) {
    auto rng = qztest::Rng();
    for (int run = 0; run < 20; ++run) {
        const double v = qztest::Uniform(rng, 0.05, 250), a = qztest::Uniform(rng, 0.5, 1200);
        const double cycleMs = qztest::Uniform(rng, 0.5, 10);
        QZVDTState plain{};
        QZVDTMState m{};
        QZVDT_OnInit(&plain, cycleMs, v, a);
        QZVDT_OnInitM(&m, cycleMs, v, a, 0);
        double t = 0, yp, ym;
        for (int k = 0; k < 3000; ++k) {
            if (k % 400 == 0) t = qztest::Uniform(rng, -500, 500);
            if (k % 700 == 350) {
                const double nv = qztest::Uniform(rng, 1, 200), na = qztest::Uniform(rng, 1, 900);
                QZVDT_OnSetRunTimeLmt(&plain, nv, na);
                QZVDT_OnSetRunTimeLmtM(&m, nv, na, 0);
            }
            if (k == 2000) QZVDT_OnEmpty(&plain), QZVDT_OnEmptyM(&m);
            ASSERT_EQ(QZVDT_OnDT(&plain, t, &yp), 1);
            ASSERT_EQ(QZVDT_OnDT_BM(&m, t, &ym), 1);
            ASSERT_TRUE(SameBits(yp, ym)) << run << " " << k;
        }
    }
}

}  // namespace
