// Vector operations: bit for bit against plain loops in index order (also in place), the three
// zero guards of normalisation on both sides of their thresholds, empty counts, the angle's clamps
// and the shadow vector.
#include <Eigen/Dense>
#include <limits>
#include <tuple>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

struct FixedFamily {
    int32_t (*norm)(double *);
    void (*cpy)(const double *, double *);
    void (*add)(const double *, const double *, double *);
    void (*sa)(const double *, double, const double *, double *);
};
#define FAMILY(N) FixedFamily{QZ_VectNorm##N, QZ_VectCpy##N, QZ_VectAdd##N, QZ_VectSA##N},
// clang-format off
const FixedFamily kFixed[9] = {
    {}, {}, FAMILY(2) FAMILY(3) FAMILY(4) FAMILY(5) FAMILY(6) FAMILY(7) FAMILY(8)};
// clang-format on
#undef FAMILY

// Element-wise operations, out[i] = ref(a[i], b[i], s); fixed ones exist for n = 2..8 only.
struct Elementwise {
    bool fixed;
    void (*call)(const double *a, const double *b, double *o, int32_t n, double s);
    double (*ref)(double a, double b, double s);
};
// clang-format off
#define OP(FIXED, CALL, REF)                                                                      \
    Elementwise{FIXED, [](const double *a, const double *b, double *o, int32_t n, double s) {    \
        CALL; }, [](double a, double b, double s) { return REF; }}
// clang-format off
const Elementwise kOps[] = {
    OP(true, kFixed[n].cpy(a, o), a),               OP(true, kFixed[n].add(a, b, o), a + b),
    OP(true, kFixed[n].sa(a, s, b, o), b * s + a),  OP(false, QZ_VectSub(a, n, b, o), a - b),
    OP(false, QZ_VectAddX(a, n, b, o), a + b),      OP(false, QZ_VectDotMult(a, n, b, o), a * b),
    OP(false, QZ_VectSAX(a, n, s, b, o), b * s + a), OP(false, QZ_VectScale(a, n, s, o), a * s)};
// clang-format on
// clang-format on
#undef OP

// Counts of 0 and below are empty vectors: sums 0.0, nothing written, normalisation refused.
// Every output is also written over each input in turn; a lone -0.0 product added to the sum's
// start 0.0 gives +0.0.
TEST(Vect, EveryOperationMatchesIndexOrderLoopsBitForBitAlsoInPlace) {
    auto rng = Rng();
    for (int32_t n : {std::numeric_limits<int32_t>::min(), -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 12}) {
        const int len = n > 0 ? n : 0;
        for (int rep = 0; rep < 100; ++rep) {
            const auto a = RandomEntries(rng, len), b = RandomEntries(rng, len);
            const double s = Uniform(rng, -2.0, 2.0);
            for (const auto &op : kOps) {
                if (op.fixed && (n < 2 || n > 8)) continue;
                std::vector<double> ref(a), out(len + 1, kSentinel), inA(a), inB(b);
                for (int i = 0; i < len; ++i) ref[i] = op.ref(a[i], b[i], s);
                op.call(a.data(), b.data(), out.data(), n, s);
                op.call(inA.data(), b.data(), inA.data(), n, s);
                op.call(a.data(), inB.data(), inB.data(), n, s);
                ASSERT_TRUE(SameArray(out.data(), ref.data(), len + 1)) << (&op - kOps) << " " << n;
                ASSERT_TRUE(SameArray(inA.data(), ref.data(), len) &&
                            SameArray(inB.data(), ref.data(), len));
            }
            double dot = 0.0, sq = 0.0;
            for (int i = 0; i < len; ++i) dot = dot + a[i] * b[i], sq = sq + a[i] * a[i];
            const double l = QZ_Sqrt(sq);
            ASSERT_TRUE(SameBits(QZ_VectDot(a.data(), b.data(), n), dot) &&
                        SameBits(QZ_VectLength(a.data(), n), l));
            for (int fixed = 0; fixed < 2; ++fixed) {
                if (fixed && (n < 2 || n > 8)) continue;
                auto v = a;
                ASSERT_EQ(fixed ? kFixed[n].norm(v.data()) : QZ_VectNorm(v.data(), n),
                          QZ_IsZero(l) ? 0 : 1);
                for (int i = 0; i <= len; ++i)
                    ASSERT_TRUE(SameBits(v[i], QZ_IsZero(l) || i == len ? a[i] : a[i] / l));
            }
        }
    }
}

// VectNorm refuses a length inside the closed band +-1e-16, v untouched; VectNormalized gives
// +0.0 zeros strictly below 1e-6; the two-point forms take points as one strictly below a squared
// distance of 1e-9, keeping b - a in out and leaving *len unwritten; out may be a or b.
TEST(VectNormalisation, ZeroGuardsAtTheirThresholdsBothSides) {
    for (int n = 2; n <= 8; ++n) {
        for (double t : {1e-16, -1e-16, NextUp(1e-16), -NextUp(1e-16)}) {
            const bool unit = QZ_Fabs(t) > 1e-16;
            for (int fixed = 0; fixed < 2; ++fixed) {
                std::vector<double> v(n, 0.0);
                v[n - 1] = t;
                ASSERT_EQ(fixed ? kFixed[n].norm(v.data()) : QZ_VectNorm(v.data(), n),
                          unit ? 1 : 0);
                EXPECT_TRUE(SameBits(v[n - 1], unit ? std::copysign(1.0, t) : t)) << n;
            }
        }
    }
    for (double t : {1e-6, -1e-6, NextDown(1e-6), -NextDown(1e-6)}) {
        const double v[3] = {-0.0, t, 0.0};
        double out[3];
        VectNormalized(v, 3, out);
        const bool unit = QZ_Fabs(t) >= 1e-6;
        EXPECT_TRUE(SameBits(out[0], unit ? -0.0 : 0.0));
        EXPECT_TRUE(SameBits(out[1], unit ? std::copysign(1.0, t) : 0.0)) << t;
        VectNormalized(v, 0, out);  // an empty count writes nothing
        EXPECT_TRUE(SameBits(out[1], unit ? std::copysign(1.0, t) : 0.0));
    }
    const double nan[2] = {NAN, 1.0};  // a NaN length fails the comparison and is divided through
    double out2[2];
    VectNormalized(nan, 2, out2);
    EXPECT_TRUE(std::isnan(out2[1]));
    // From the origin: x0^2 is just below 1e-9, and a second component brings the index-order
    // sum of squares to exactly 1e-9, which is not below the threshold.
    double x0 = QZ_Sqrt(1e-9), out[3], len = kSentinel;
    while (x0 * x0 >= 1e-9) x0 = NextDown(x0);
    const double y = QZ_Sqrt(1e-9 - x0 * x0), origin[3] = {}, at[3] = {x0, y, 0.0},
                 below[3] = {x0, 0.0, 0.0};
    ASSERT_EQ(0.0 + x0 * x0 + y * y, 1e-9);
    EXPECT_EQ(
        QZ_GetVectNormA2B(origin, below, out) + QZ_GetVectNormLenA2B(origin, below, out, &len), 0);
    EXPECT_TRUE(SameArray(out, below, 3));
    EXPECT_EQ(len, kSentinel);
    double inA[3] = {}, inB[3] = {x0, y, 0.0};  // out may be a or b
    EXPECT_EQ(QZ_GetVectNormA2B(inA, at, inA) + QZ_GetVectNormLenA2B(origin, inB, inB, &len), 2);
    EXPECT_TRUE(SameBits(len, QZ_Sqrt(1e-9)) && SameBits(len, QZ_GetVectLenA2B(origin, at)));
    EXPECT_TRUE(SameArray(inA, inB, 3) && SameBits(inA[0], x0 / len));
}

// Degrees; 0.0 for a zero-band length or an empty count; a NaN passes through; a vector with
// itself or its opposite, whose rounded cosine leaves [-1, 1], gives exactly 0 or 180.
TEST(VectAngle, DegreesWithClampAndZeroGuards) {
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0}, tiny[3] = {0, 0, 1e-16}, nan[3] = {NAN, 0, 0};
    EXPECT_EQ(QZ_VectAngle(x, y, 3), 90.0);
    for (auto [a, b, n] : {std::tuple{x, tiny, 3}, {tiny, x, 3}, {x, y, 0}, {x, y, -2}})
        EXPECT_TRUE(SameBits(QZ_VectAngle(a, b, n), 0.0));
    EXPECT_TRUE(std::isnan(QZ_VectAngle(nan, x, 3)));
    auto rng = Rng();
    int above = 0, below = 0;
    for (int rep = 0; rep < 5000; ++rep) {
        double v[3], w[3];
        for (int i = 0; i < 3; ++i) w[i] = -(v[i] = Uniform(rng, -1, 1));
        const double l2 = QZ_VectLength(v, 3) * QZ_VectLength(v, 3);
        if (QZ_VectDot(v, v, 3) / l2 > 1.0 && ++above)
            ASSERT_TRUE(SameBits(QZ_VectAngle(v, v, 3), 0.0));
        if (QZ_VectDot(v, w, 3) / l2 < -1.0 && ++below) ASSERT_EQ(QZ_VectAngle(v, w, 3), 180.0);
    }
    EXPECT_GT(above * below, 0) << "a clamp was never exercised";
}

// The shadow of a on the line of b: zero for a b below 1e-6; counts outside 1..3 write nothing.
TEST(CalShadowVector, ProjectsOnTheLineOfBAndRefusesOtherCounts) {
    const double a[4] = {1, 2, 3, 4}, b[4] = {0, 0, -5, 1}, b1[1] = {-2.0}, zero[3] = {};
    double out[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    for (int32_t n : {4, 0, -3}) CalShadowVector(a, b, out, n);
    EXPECT_EQ(std::count(out, out + 4, kSentinel), 4);
    CalShadowVector(a, b, out, 3);
    EXPECT_TRUE(out[2] == 3.0 && out[3] == kSentinel);
    CalShadowVector(a, zero, out, 3);
    EXPECT_TRUE(SameArray(out, zero, 3));
    CalShadowVector(a, b1, out, 1);
    EXPECT_EQ(out[0], 1.0);
}

}  // namespace
