// Plane geometry and set-point helpers. The angle wrap is checked bit for bit against the
// plain turn-by-turn loop that defines it.
#include <cmath>
#include <limits>
#include <vector>

#include "QZBaseMath.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

// The reference wrap: one turn per pass. Only usable where the turn count is modest.
double LoopMinDif(double a, double *b) {
    double d = a - *b;
    if (d > 0) {
        do d = d - 360; while (d > 0);
    }
    if (d < 0) {
        do d = d + 360; while (d < 0);
    }
    if (d > 180) d = d - 360;
    *b = a - d;
    return d > 0 ? d : -d;
}

::testing::AssertionResult SameAsLoop(double a, double b) {
    double bl = b, bf = b;
    const double rl = LoopMinDif(a, &bl);
    const double rf = QZ_MinDif_Circle(a, &bf);
    if (qztest::Bits(rl) == qztest::Bits(rf) && qztest::Bits(bl) == qztest::Bits(bf))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << std::hexfloat << "a=" << a << " b=" << b << ": loop "
                                         << rl << ", " << bl << " vs " << rf << ", " << bf;
}

// The wrapped difference for a = 0, b = -x: *b then holds the signed result itself.
struct Wrapped {
    double ret, stored;
};
Wrapped WrapOf(double x) {
    double b = -x;
    const double r = QZ_MinDif_Circle(0.0, &b);
    return {r, b};
}

TEST(MinDifCircle, Fixtures) {
    double b = 350;
    EXPECT_EQ(QZ_MinDif_Circle(10, &b), 20.0);
    EXPECT_EQ(b, -10.0);
    b = -170;
    EXPECT_EQ(QZ_MinDif_Circle(170, &b), 20.0);
    EXPECT_EQ(b, 190.0);
    b = 180;  // a half turn is +180: the copy lands on a - 180
    EXPECT_EQ(QZ_MinDif_Circle(0, &b), 180.0);
    EXPECT_EQ(b, -180.0);
    b = 0;
    EXPECT_EQ(QZ_MinDif_Circle(180, &b), 180.0);
    EXPECT_EQ(b, 0.0);
    b = 42.5;
    EXPECT_TRUE(SameBits(QZ_MinDif_Circle(42.5, &b), -0.0));  // equal angles: -0 by the rule
    b = 0.1;  // a turn down and back up rounds: not exactly 0.1 - 0
    EXPECT_TRUE(SameAsLoop(0.2, 0.1));
}

// Differences of up to a few thousand turns, every size of fraction, both signs.
TEST(MinDifCircle, SameBitsAsLoopOnRandomAngles) {
    auto rng = qztest::Rng();
    const double spans[] = {1, 180, 360, 720, 1e4, 1e6};
    for (int it = 0; it < 60000; ++it) {
        const double span = spans[it % 6];
        const double a = qztest::Uniform(rng, -span, span);
        const double b = qztest::Uniform(rng, -span, span);
        ASSERT_TRUE(SameAsLoop(a, b));
        ASSERT_TRUE(SameAsLoop(a * 1e-7, b));  // tiny a beside a large b
    }
    for (int it = 0; it < 200; ++it) {  // a few far-apart ones: up to a million turns
        ASSERT_TRUE(SameAsLoop(qztest::Uniform(rng, -3.6e8, 3.6e8), qztest::Uniform(rng, -1, 1)));
    }
}

// Differences that sit on or next to whole and half turns, the rounding edges of the last step,
// signed zeros and subnormals.
TEST(MinDifCircle, SameBitsAsLoopOnAdversarialDifferences) {
    std::vector<double> d = {0.0, -0.0, 5e-324, -5e-324, 1e-300, 1e-17, 180, 360, 540, 1e-13};
    const double turns[] = {0, 1, 2, 3, 7, 1000, 123457, 2000003};
    for (double k : turns) {
        for (double base : {k * 360.0, k * 360.0 + 180.0}) {
            for (double x : {base, qztest::NextUp(base), qztest::NextDown(base), base + 1e-9,
                             base - 1e-9, base + 1e-300, base - 359.99999999999994}) {
                d.push_back(x);
            }
        }
    }
    for (double x : d) {
        for (double sgn : {1.0, -1.0}) {
            ASSERT_TRUE(SameAsLoop(0.0, -sgn * x));
            ASSERT_TRUE(SameAsLoop(sgn * x, 0.0));
            ASSERT_TRUE(SameAsLoop(sgn * x + 0.1, 0.1));
            ASSERT_TRUE(SameAsLoop(1e-10, 1e-10 - sgn * x));
        }
    }
    // Powers of two and their neighbours, where the unit in the last place changes.
    for (int e = -20; e <= 31; ++e) {
        const double p = std::ldexp(1.0, e);
        for (double x : {p, qztest::NextUp(p), qztest::NextDown(p)}) {
            ASSERT_TRUE(SameAsLoop(x, 0.0));
            ASSERT_TRUE(SameAsLoop(-x, 0.0));
        }
    }
}

// Beyond what the loop can run in a test: the wrap must give the same result from any value and
// from the value one turn-step later (as the loop rounds it). With the agreement at small
// differences above, this carries the equality to every difference up to 2^62, binade
// boundaries and the tie of the 2^56 binade included.
TEST(MinDifCircle, OneLoopStepDoesNotChangeTheResultUpTo2To62) {
    auto rng = qztest::Rng();
    // From x > 0 the loop subtracts a turn while positive; from -x it adds one while negative.
    auto check = [](double x, int steps) {
        for (double sgn : {1.0, -1.0}) {
            const Wrapped w = WrapOf(sgn * x);
            double y = sgn * x;
            for (int k = 0; k < steps && y * sgn > 0; ++k) {
                y = y - sgn * 360;
                const Wrapped v = WrapOf(y);
                ASSERT_TRUE(SameBits(w.ret, v.ret)) << std::hexfloat << sgn * x << " step " << k;
                ASSERT_TRUE(SameBits(w.stored, v.stored)) << std::hexfloat << sgn * x << " step " << k;
            }
        }
    };
    for (int e = 8; e <= 62; ++e) {
        const double p = std::ldexp(1.0, e);
        const double u = e > 52 ? std::ldexp(1.0, e - 52) : 1.0;
        for (double off = 0; off < 40; ++off) check(p + off * u, 4);  // crossing into lower binade
        for (int j = 0; j < 30; ++j) check(p * qztest::Uniform(rng, 1.0, 2.0), 50);
        check(std::nextafter(p, 0.0), 4);
    }
    check(std::ldexp(1.0, 62), 2);
}

TEST(MinDifCircle, NonFiniteAndUnresolvableDifferencesGiveNaN) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double cases[][2] = {{inf, 0},        {-inf, 0},   {0, inf}, {5, -inf},
                               {nan, 1},        {1, nan},    {inf, inf},
                               {1e300, -1e300}, {0x1.0000000000001p62, 0}, {0, 0x1.0000000000001p62},
                               {1e19, 0}};
    for (const auto &c : cases) {
        double b = c[1];
        const double r = QZ_MinDif_Circle(c[0], &b);
        EXPECT_TRUE(std::isnan(r)) << c[0] << " " << c[1];
        EXPECT_TRUE(std::isnan(b)) << c[0] << " " << c[1];
    }
    // 2^62 itself is the largest difference whose turns the loop still resolves.
    const Wrapped w = WrapOf(0x1p62);
    EXPECT_FALSE(std::isnan(w.ret));
    EXPECT_LE(w.ret, 180.0);
}

TEST(CalAngleCDEG, TriangleFixturesAndClamps) {
    EXPECT_NEAR(QZ_CalAngleCDEG(1, 1, 1), 120, 1e-12);
    EXPECT_NEAR(QZ_CalAngleCDEG(3, 4, 5), 90, 1e-12);
    EXPECT_EQ(QZ_CalAngleCDEG(1, 1, 2), 0.0);    // straight
    EXPECT_EQ(QZ_CalAngleCDEG(1, 1, 0), 180.0);  // folded
    EXPECT_EQ(QZ_CalAngleCDEG(1, 1, 3), 0.0);    // too long a third side: clamped
    EXPECT_EQ(QZ_CalAngleCDEG(2, 5, 1), 180.0);  // too short a third side: clamped
    EXPECT_EQ(QZ_CalAngleCDEG(0, 1, 1), 0.0);
    EXPECT_EQ(QZ_CalAngleCDEG(1, 1e-16, 1), 0.0);               // band end is zero
    EXPECT_NE(QZ_CalAngleCDEG(1, qztest::NextUp(1e-16), 1), 0.0);  // just beyond is not
}

TEST(PointToLine, FootIsPerpendicularAndMayAliasInputs) {
    double F[3];
    const double A[3] = {0, 0, 0}, B[3] = {1, 0, 0}, P[3] = {2, 3, 4};
    EXPECT_EQ(QZ_PointToLine(A, B, P, F), 1);
    EXPECT_EQ(F[0], 2.0);
    EXPECT_EQ(F[1], 0.0);
    EXPECT_EQ(F[2], 0.0);

    auto rng = qztest::Rng();
    for (int it = 0; it < 2000; ++it) {
        double a[3], b[3], p[3], f[3];
        for (int i = 0; i < 3; ++i) {
            a[i] = qztest::Uniform(rng, -5, 5);
            b[i] = qztest::Uniform(rng, -5, 5);
            p[i] = qztest::Uniform(rng, -5, 5);
        }
        QZ_PointToLine(a, b, p, f);
        double dot = 0, n2 = 0;
        for (int i = 0; i < 3; ++i) {
            dot += (p[i] - f[i]) * (b[i] - a[i]);
            n2 += (b[i] - a[i]) * (b[i] - a[i]);
        }
        EXPECT_NEAR(dot / n2, 0.0, 1e-12);
        for (double *out : {a, b, p}) {  // written in place of each input: the same bits
            double in[3] = {out[0], out[1], out[2]};
            QZ_PointToLine(out == a ? out : a, out == b ? out : b, out == p ? out : p, out);
            for (int i = 0; i < 3; ++i) ASSERT_TRUE(SameBits(out[i], f[i]));
            for (int i = 0; i < 3; ++i) out[i] = in[i];
        }
    }
    const double Z[3] = {1, 1, 1};
    EXPECT_EQ(QZ_PointToLine(Z, Z, P, F), 1);  // a degenerate line still returns 1
    EXPECT_FALSE(std::isfinite(F[0]));
}

TEST(ValueToTarget, StepsThenLandsExactly) {
    double v = 10;
    ValueToTarget(&v, 0, 1);
    EXPECT_EQ(v, 9.0);
    for (double start : {0.5, -0.5}) {  // half a step away counts as arrived
        v = start;
        ValueToTarget(&v, 0, 1);
        EXPECT_TRUE(SameBits(v, 0.0));
    }
    v = 0.7;
    ValueToTarget(&v, 0, 1);
    EXPECT_NEAR(v, -0.3, 1e-15);
    ValueToTarget(&v, 0, 1);
    EXPECT_EQ(v, 0.0);
    v = 1.6;
    const double want[] = {0.6, -0.4, 0.0};
    for (double w : want) {
        ValueToTarget(&v, 0, 1);
        EXPECT_NEAR(v, w, 1e-15);
    }
    EXPECT_EQ(v, 0.0);
    v = qztest::NextUp(5.5);  // one ulp beyond half a step still moves
    ValueToTarget(&v, 5, 1);
    EXPECT_NEAR(v, 4.5, 1e-15);
}

}  // namespace
