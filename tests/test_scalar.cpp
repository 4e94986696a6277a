// Scalar primitives: special values, bit for bit. The zero bands' ends are pinned by the golden
// vectors.
#include "QZBaseMath.h"

#include <cmath>
#include <limits>

#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kPi = 3.141592653589793, kTwo31 = 2147483648.0;

// Special values of the one-argument primitives, compared bit for bit (signed zeros, NaN).
TEST(Scalar, SpecialValuesBitForBit) {
    // clang-format off
    const struct { double (*f)(double); double x, want; } rows[] = {
        {QZ_Sqrt, -0.0, -0.0},       {QZ_Sqrt, -1.0, kNaN},         {QZ_3Root, 8.0, 2.0},
        {QZ_3Root, -8.0, kNaN},      {QZ_Fabs, -0.0, 0.0},          {QZ_Fabs, -kInf, kInf},
        {QZ_Value_Sig, 3.0, 1.0},    {QZ_Value_Sig, -1e-300, -1.0}, {QZ_Value_Sig, -0.0, 0.0},
        {QZ_Value_Sig, kNaN, 0.0},   {QZ_Value_Sig, -kInf, -1.0},   {QZ_COS_ARC, 0.0, 1.0},
        {QZ_COS_DEG, 180.0, -1.0},   {QZ_SIN_DEG, 90.0, 1.0},
        // The arc cosine clamps out-of-range arguments but lets NaN through.
        {QZ_ACOS, NextUp(1.0), 0.0}, {QZ_ACOS, NextDown(-1.0), kPi}, {QZ_ACOS, kInf, 0.0},
        {QZ_ACOS, -kInf, kPi},       {QZ_ACOS, kNaN, kNaN},         {QZ_ACOS, 0.5, std::acos(0.5)},
        // The raised-cosine step: anchors exact, saturated outside [-1, 1], zero for 0, -0, NaN.
        {QZ_Sigmod, 0.5, 0.5},       {QZ_Sigmod, -0.5, -0.5},       {QZ_Sigmod, 1.0, 1.0},
        {QZ_Sigmod, 2.0, 1.0},       {QZ_Sigmod, -7.0, -1.0},       {QZ_Sigmod, -kInf, -1.0},
        {QZ_Sigmod, 0.0, 0.0},       {QZ_Sigmod, -0.0, 0.0},        {QZ_Sigmod, kNaN, 0.0},
        // Floor: whole numbers unchanged (-0.0 too), true floor beyond 32 bits.
        {QZ_Floor, -2.5, -3.0},      {QZ_Floor, -3.0, -3.0},        {QZ_Floor, -1e-300, -1.0},
        {QZ_Floor, -0.0, -0.0},      {QZ_Floor, 0.0, 0.0},          {QZ_Floor, kNaN, kNaN},
        {QZ_Floor, NextDown(kTwo31), kTwo31 - 1}, {QZ_Floor, kTwo31, kTwo31}, {QZ_Floor, kTwo31 + 0.5, kTwo31},
        {QZ_Floor, -kTwo31, -kTwo31}, {QZ_Floor, -kTwo31 - 0.5, -kTwo31 - 1},
        {QZ_Floor, -1e15 - 0.25, -1e15 - 1}, {QZ_Floor, 1e300, 1e300}, {QZ_Floor, -kInf, -kInf}};
    // clang-format on
    for (const auto &r : rows) {
        const double got = r.f(r.x);
        EXPECT_TRUE(std::isnan(r.want) ? std::isnan(got) : SameBits(got, r.want)) << r.x;
    }
    EXPECT_TRUE(SameBits(QZ_3Root(27.0), std::pow(27.0, 0.3333333333333333)));
    EXPECT_NEAR(QZ_Sigmod(0.25), 0.14644660940672624, 1e-15);
    EXPECT_ALL(QZ_ATan2(0.0, -1.0) == kPi, QZ_ATan2(-0.0, -1.0) == -kPi);  // ordinate first
    EXPECT_ALL(SameBits(QZ_ATan2(-0.0, 1.0), -0.0), QZ_ATan2(1.0, 0.0) == kPi / 2);
    EXPECT_ALL(QZ_MAX(kNaN, -3.0) == -3.0, QZ_MIN(4.0, kNaN) == 4.0, QZ_MAX(1, 2) == 2);
    // The zero tie is fixed whatever the argument order: +0 is the larger zero.
    for (double a : {0.0, -0.0}) {
        EXPECT_ALL(SameBits(QZ_MAX(a, -a), 0.0), SameBits(QZ_MIN(a, -a), -0.0)) << a;
        EXPECT_ALL(SameBits(QZ_MAX(a, a), a), SameBits(QZ_MIN(a, kNaN), a)) << a;
    }
}

}  // namespace
