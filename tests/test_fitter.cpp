// One-step fitter: the exponential response from a zero start, per-channel coefficients,
// refused and oversized channel counts, in-place use.
#include "QZDT.h"
#include "test_util.h"

using qztest::SameBits;

// alpha 0.5 on a unit step gives 1 - 2^-k exactly; 1 passes the input, 0 holds the zero start.
TEST(Fitter, StepResponseStartsFromZeroPerChannel) {
    OneFitterState s;
    std::memset(&s, 0x5a, sizeof s);
    const double alpha[3] = {0.5, 1.0, 0.0};
    OneFitterInit(&s, 3, alpha);
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(s.state[i] == 0.0 && s.lastOut[i] == 0.0);
    const double x[3] = {1.0, -3.0, 9.0};
    double y[3];
    for (int k = 1; k <= 60; ++k) {
        ASSERT_EQ(OneFitterRun(&s, x, y), 3);
        EXPECT_TRUE(SameBits(y[0], 1.0 - std::ldexp(1.0, -k))) << k;
        EXPECT_TRUE(SameBits(y[1], -3.0) && SameBits(y[2], 0.0));
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(SameBits(s.lastOut[i], y[i]) && SameBits(s.state[i], y[i]));
    }
}

// Each output is a convex combination of the input and the previous output, so it never leaves
// their interval; in-place use gives the same bits.
TEST(Fitter, OutputStaysBetweenInputAndStateAndMayOverwriteInput) {
    auto rng = qztest::Rng();
    OneFitterState a, b;
    double alpha[8];
    for (double &c : alpha) c = qztest::Uniform(rng, 0.0, 1.0);
    OneFitterInit(&a, 8, alpha);
    OneFitterInit(&b, 8, alpha);
    for (int k = 0; k < 1000; ++k) {
        double x[8], io[8], y[8], prev[8];
        std::memcpy(prev, a.state, sizeof prev);
        for (int i = 0; i < 8; ++i) io[i] = x[i] = qztest::Uniform(rng, -10.0, 10.0);
        OneFitterRun(&a, x, y);
        OneFitterRun(&b, io, io);
        for (int i = 0; i < 8; ++i) {
            ASSERT_TRUE(SameBits(y[i], io[i]));
            ASSERT_LE(y[i], std::max(x[i], prev[i]) + 1e-14);
            ASSERT_GE(y[i], std::min(x[i], prev[i]) - 1e-14);
        }
    }
}

// No channels: nothing filtered or written. More than eight: eight filtered, nothing beyond.
TEST(Fitter, ChannelCountsOutsideOneToEight) {
    OneFitterState s;
    double alpha[12], x[12], y[12];
    for (int i = 0; i < 12; ++i) alpha[i] = x[i] = 1.0, y[i] = -1.0;
    for (int n : {0, -4}) {
        OneFitterInit(&s, n, alpha);
        EXPECT_EQ(OneFitterRun(&s, x, y), 0);
        EXPECT_EQ(y[0], -1.0);
    }
    OneFitterInit(&s, 12, alpha);
    EXPECT_EQ(s.axisNum, 12);
    EXPECT_EQ(OneFitterRun(&s, x, y), 8);
    EXPECT_TRUE(y[7] == 1.0 && y[8] == -1.0);
}
