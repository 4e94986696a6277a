// Slerp: the linear band on both sides of its threshold, in every form.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

// Either way in one call, or through a factor state; only the shorter single call and the
// factor forms may negate q2.
void Slerp(bool longer, bool factor, const double *q1, double *q2, double t, double *out,
           QZSlerpFactorState *st) {
    if (factor) (longer ? QZ_QuatSlerpFactorL : QZ_QuatSlerpFactor)(q1, q2, t, out, st);
    else longer ? QZ_QuatSlerpL(q1, q2, t, out) : QZ_QuatSlerp(q1, q2, t, out);
}

// The linear band starts where 1 - d (the longer way: 1 + d) reaches 0.001: spherical weights keep
// the midpoint between the identity and (0, 0, sqrt(1 - d^2), d) at unit length, linear ones cut
// the chord.
TEST(QuatSlerp, LinearBandStartsAtTheThresholdForAllForms) {
    double dl = NextDown(NextDown(0.999)), dL = -dl;
    while (1.0 - dl > 0.001) dl = NextUp(dl);
    while (1.0 + dL > 0.001) dL = NextDown(dL);
    const double q1[4] = {0, 0, 0, 1};
    for (int c = 0; c < 8; ++c) {  // way, form, and side of the threshold
        const bool longer = c & 1, factor = c & 2, inBand = c & 4;
        const double d = longer ? (inBand ? dL : NextUp(dL)) : (inBand ? dl : NextDown(dl));
        double q2[4] = {0, 0, std::sqrt(1 - d * d), d}, out[4];
        QZSlerpFactorState st{};
        Slerp(longer, factor, q1, q2, 0.5, out, &st);
        const double len = QZ_QuaternionSqrtNorm(out);
        EXPECT_TRUE(inBand ? len < 1 - 1e-5 : std::fabs(len - 1) < 1e-12) << c << " " << len;
    }
}

}  // namespace
