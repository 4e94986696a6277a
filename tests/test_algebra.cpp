// Quaternion algebra: the length floors on both sides and the inverse.
#include "quaternion_cases.h"

namespace {

using namespace qztest;

// Normalising refuses a length at or below 1e-16, inverting one at or below 1e-9 (or NaN); a
// refused inverse leaves its output alone. The inverse negates the vector part, zeros included,
// and divides by the length, not its square.
TEST(QuaternionNormAndInverse, RefuseLengthsAtTheirFloors) {
    const double unitInv[4] = {-0.0, -0.0, -0.0, 1.0}, kept[4] = {7, 7, 7, 7};
    // clang-format off
    const struct { double len; uint32_t norm, inv; } rows[] = {
        {1e-16, 0, 0}, {NextUp(1e-16), 1, 0}, {1e-9, 1, 0}, {NextUp(1e-9), 1, 1}, {2.0, 1, 1}};
    // clang-format on
    for (const auto &r : rows) {
        double q[4] = {0, 0, 0, r.len}, inv[4] = {7, 7, 7, 7};
        ASSERT_EQ(QZ_QuaternionSqrtNorm(q), r.len);
        EXPECT_EQ(QZ_QuaternionInverse(q, inv), r.inv) << r.len;
        EXPECT_TRUE(Near(inv, r.inv ? unitInv : kept, 4, 0.0)) << r.len;
        EXPECT_EQ(QZ_QuaternionNorm(q), r.norm) << r.len;
        EXPECT_EQ(q[3], r.norm ? 1.0 : r.len);
    }
    const double nan[4] = {NAN, 0, 0, 1};
    double inv[4] = {7, 7, 7, 7};
    EXPECT_EQ(QZ_QuaternionInverse(nan, inv), 0u);
    EXPECT_TRUE(Near(inv, kept, 4, 0.0));
    // Of length 5, so both results are exact; the inverse may be taken in place.
    double q[4] = {1, -2, 2, 4}, n[4] = {1, -2, 2, 4};
    const double wantInv[4] = {-0.2, 0.4, -0.4, 0.8}, wantNorm[4] = {0.2, -0.4, 0.4, 0.8};
    EXPECT_EQ(QZ_QuaternionInverse(q, q), 1u);
    EXPECT_EQ(QZ_QuaternionNorm(n), 1u);
    EXPECT_ALL(Near(q, wantInv, 4, 0.0), Near(n, wantNorm, 4, 0.0));
}

}  // namespace
