// Scalar primitives: thresholds, special values and the exact way each value is formed.
#include "QZBaseMath.h"

#include <cmath>
#include <limits>

#include "test_util.h"

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(ZeroBands, BothEndsCountAsZeroAndNothingBeyond) {
    EXPECT_EQ(QZ_IsZero(1e-16), 1);
    EXPECT_EQ(QZ_IsZero(-1e-16), 1);
    EXPECT_EQ(QZ_IsZero(-0.0), 1);
    EXPECT_EQ(QZ_IsZero(NextUp(1e-16)), 0);
    EXPECT_EQ(QZ_IsZero(NextDown(-1e-16)), 0);
    EXPECT_EQ(QZ_IsZero(1e-15), 0);
    EXPECT_EQ(QZ_IsZeroL(1e-15), 1);
    EXPECT_EQ(QZ_IsZeroL(-1e-15), 1);
    EXPECT_EQ(QZ_IsZeroL(NextUp(1e-15)), 0);
    EXPECT_EQ(QZ_IsZeroL(NextDown(-1e-15)), 0);
    EXPECT_EQ(QZ_IsZeroL(2e-15), 0);
    for (double x : {kNaN, kInf, -kInf}) {
        EXPECT_EQ(QZ_IsZero(x), 0);
        EXPECT_EQ(QZ_IsZeroL(x), 0);
    }
}

TEST(Trigonometry, EveryCosineIsTheSineOfHalfPiMinusTheAngle) {
    auto rng = qztest::Rng();
    for (int i = 0; i < 20000; ++i) {
        const double a = qztest::Uniform(rng, -20.0, 20.0);
        const double d = qztest::Uniform(rng, -720.0, 720.0);
        EXPECT_TRUE(SameBits(QZ_COS_ARC(a), std::sin(1.5707963267948966 - a)));
        EXPECT_TRUE(SameBits(QZ_SIN_DEG(d), std::sin(0.017453292519943295 * d)));
        EXPECT_TRUE(SameBits(QZ_COS_DEG(d), std::sin(1.5707963267948966 - 0.017453292519943295 * d)));
        double s = 0, c = 0;
        QZ_SIN_COS_DEG(d, &s, &c);
        EXPECT_TRUE(SameBits(s, QZ_SIN_DEG(d)));
        EXPECT_TRUE(SameBits(c, QZ_COS_DEG(d)));
        QZ_SIN_COS_ARC(a, &s, &c);
        EXPECT_TRUE(SameBits(s, QZ_SIN_ARC(a)));
        EXPECT_TRUE(SameBits(c, QZ_COS_ARC(a)));
    }
    EXPECT_EQ(QZ_COS_ARC(0.0), 1.0);
    EXPECT_EQ(QZ_COS_DEG(180.0), -1.0);
    EXPECT_EQ(QZ_SIN_DEG(90.0), 1.0);
    // The sine is stored first: one destination for both keeps the cosine.
    double both = 0.0;
    QZ_SIN_COS_ARC(0.0, &both, &both);
    EXPECT_EQ(both, 1.0);
    QZ_SIN_COS_DEG(180.0, &both, &both);
    EXPECT_EQ(both, -1.0);
}

TEST(Trigonometry, ArcTangentTakesOrdinateFirstAndKeepsSignedZeros) {
    EXPECT_EQ(QZ_ATan2(1.0, 0.0), 1.5707963267948966);
    EXPECT_EQ(QZ_ATan2(0.0, -1.0), 3.141592653589793);
    EXPECT_EQ(QZ_ATan2(-0.0, -1.0), -3.141592653589793);
    EXPECT_TRUE(SameBits(QZ_ATan2(-0.0, 1.0), -0.0));
}

TEST(Trigonometry, ArcCosineIsClampedButLetsNaNThrough) {
    EXPECT_EQ(QZ_ACOS(1.5), 0.0);
    EXPECT_EQ(QZ_ACOS(NextUp(1.0)), 0.0);
    EXPECT_EQ(QZ_ACOS(-2.0), 3.141592653589793);
    EXPECT_EQ(QZ_ACOS(NextDown(-1.0)), 3.141592653589793);
    EXPECT_EQ(QZ_ACOS(kInf), 0.0);
    EXPECT_EQ(QZ_ACOS(-kInf), 3.141592653589793);
    EXPECT_TRUE(std::isnan(QZ_ACOS(kNaN)));
    EXPECT_TRUE(SameBits(QZ_ACOS(0.5), std::acos(0.5)));
}

TEST(RaisedCosineStep, HitsItsAnchorsExactlyAndIsOdd) {
    EXPECT_EQ(QZ_Sigmod(0.5), 0.5);
    EXPECT_EQ(QZ_Sigmod(-0.5), -0.5);
    EXPECT_NEAR(QZ_Sigmod(0.25), 0.14644660940672624, 1e-15);
    EXPECT_EQ(QZ_Sigmod(1.0), 1.0);
    EXPECT_EQ(QZ_Sigmod(2.0), 1.0);
    EXPECT_EQ(QZ_Sigmod(-7.0), -1.0);
    EXPECT_EQ(QZ_Sigmod(kInf), 1.0);
    EXPECT_EQ(QZ_Sigmod(-kInf), -1.0);
    EXPECT_TRUE(SameBits(QZ_Sigmod(0.0), 0.0));
    EXPECT_TRUE(SameBits(QZ_Sigmod(-0.0), 0.0));
    EXPECT_TRUE(SameBits(QZ_Sigmod(kNaN), 0.0));
    auto rng = qztest::Rng();
    double prev = -1.0;
    for (int i = 1; i <= 2000; ++i) {
        const double x = -1.0 + i / 1000.0;
        const double y = QZ_Sigmod(x);
        EXPECT_GE(y, prev) << x;  // monotone
        prev = y;
        const double r = qztest::Uniform(rng, 0.0, 1.0);
        EXPECT_TRUE(SameBits(QZ_Sigmod(-r), -QZ_Sigmod(r)));
    }
}

TEST(Floor, WholeNumbersComeBackUnchangedIncludingNegativeZero) {
    EXPECT_EQ(QZ_Floor(2.5), 2.0);
    EXPECT_EQ(QZ_Floor(-2.5), -3.0);
    EXPECT_EQ(QZ_Floor(-3.0), -3.0);
    EXPECT_EQ(QZ_Floor(0.999), 0.0);
    EXPECT_EQ(QZ_Floor(-1e-300), -1.0);
    EXPECT_TRUE(SameBits(QZ_Floor(-0.0), -0.0));
    EXPECT_TRUE(SameBits(QZ_Floor(0.0), 0.0));
    EXPECT_TRUE(std::isnan(QZ_Floor(kNaN)));
    auto rng = qztest::Rng();
    for (int i = 0; i < 20000; ++i) {
        const double x = qztest::Uniform(rng, -2147483647.0, 2147483647.0);
        EXPECT_EQ(QZ_Floor(x), std::floor(x)) << x;
    }
}

TEST(Floor, BeyondThirtyTwoBitsGivesTheTrueFloor) {
    const double two31 = 2147483648.0;
    EXPECT_EQ(QZ_Floor(NextDown(two31)), two31 - 1.0);
    EXPECT_EQ(QZ_Floor(two31), two31);
    EXPECT_EQ(QZ_Floor(two31 + 0.5), two31);
    EXPECT_EQ(QZ_Floor(-two31), -two31);
    EXPECT_EQ(QZ_Floor(-two31 - 0.5), -two31 - 1.0);
    EXPECT_EQ(QZ_Floor(-1e15 - 0.25), -1e15 - 1.0);
    EXPECT_EQ(QZ_Floor(1e300), 1e300);
    EXPECT_EQ(QZ_Floor(kInf), kInf);
    EXPECT_EQ(QZ_Floor(-kInf), -kInf);
}

TEST(SignAndMagnitude, ZerosAndNaNHaveNoSign) {
    EXPECT_EQ(QZ_Value_Sig(3.0), 1.0);
    EXPECT_EQ(QZ_Value_Sig(-1e-300), -1.0);
    EXPECT_TRUE(SameBits(QZ_Value_Sig(-0.0), 0.0));
    EXPECT_TRUE(SameBits(QZ_Value_Sig(kNaN), 0.0));
    EXPECT_EQ(QZ_Value_Sig(-kInf), -1.0);
    EXPECT_TRUE(SameBits(QZ_Fabs(-0.0), 0.0));
    EXPECT_EQ(QZ_Fabs(-kInf), kInf);
}

TEST(RootsAndPowers, NoGuardsOnNegativeArguments) {
    EXPECT_EQ(QZ_Sqrt(0.0), 0.0);
    EXPECT_TRUE(SameBits(QZ_Sqrt(-0.0), -0.0));
    EXPECT_TRUE(std::isnan(QZ_Sqrt(-1.0)));
    EXPECT_EQ(QZ_Sqrt(2.0), std::sqrt(2.0));
    EXPECT_EQ(QZ_3Root(8.0), 2.0);
    EXPECT_TRUE(std::isnan(QZ_3Root(-8.0)));
    EXPECT_TRUE(SameBits(QZ_3Root(27.0), std::pow(27.0, 0.3333333333333333)));
}

TEST(Extremes, NaNIsPassedOverInFavourOfTheOther) {
    EXPECT_EQ(QZ_MAX(1.0, 2.0), 2.0);
    EXPECT_EQ(QZ_MIN(1.0, 2.0), 1.0);
    EXPECT_EQ(QZ_MAX(kNaN, -3.0), -3.0);
    EXPECT_EQ(QZ_MIN(4.0, kNaN), 4.0);
}

}  // namespace
