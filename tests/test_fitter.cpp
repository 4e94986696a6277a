// One-step fitter: the exponential response from a zero start, in place.
#include "QZDT.h"
#include "test_util.h"

using qztest::SameBits;

// alpha 0.5 on a unit step gives 1 - 2^-k exactly; 1 passes the input, 0 holds the zero start.
TEST(Fitter, StepResponseStartsFromZeroInPlace) {
    OneFitterState s;
    std::memset(&s, 0x5a, sizeof s);
    const double alpha[3] = {0.5, 1.0, 0.0};
    OneFitterInit(&s, 3, alpha);
    for (int i = 0; i < 8; ++i) EXPECT_ALL(s.state[i] == 0.0, s.lastOut[i] == 0.0);
    for (int k = 1; k <= 60; ++k) {
        double io[3] = {1.0, -3.0, 9.0};
        ASSERT_EQ(OneFitterRun(&s, io, io), 3);
        EXPECT_ALL(SameBits(io[0], 1.0 - std::ldexp(1.0, -k)), io[1] == -3.0, SameBits(io[2], 0.0));
        for (int i = 0; i < 3; ++i)
            EXPECT_ALL(SameBits(s.lastOut[i], io[i]), SameBits(s.state[i], io[i]));
    }
}
