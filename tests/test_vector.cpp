// Vector operations: worked examples (also in place) and empty counts, and the three zero guards of
// normalisation on both sides of their thresholds. The angle's clamps and guards and the shadow
// vector's counts are pinned by the golden vectors.
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

// Element-wise operations and their results for a = (1, 2, 3), b = (4, 5, 6), s = 2; fixed ones
// exist for n = 2..8 only.
struct Elementwise {
    bool fixed;
    void (*call)(const double *a, const double *b, double *o, int32_t n, double s);
    double want[3];
};
#define OP(FIXED, CALL, ...)                                                                     \
    Elementwise {                                                                                \
        FIXED, [](const double *a, const double *b, double *o, int32_t n, double s) { CALL; }, { \
            __VA_ARGS__                                                                          \
        }                                                                                        \
    }
// clang-format off
const Elementwise kOps[] = {
    OP(true, kFixed[n].cpy(a, o), 1, 2, 3),           OP(true, kFixed[n].add(a, b, o), 5, 7, 9),
    OP(true, kFixed[n].sa(a, s, b, o), 9, 12, 15),    OP(false, QZ_VectSub(a, n, b, o), -3, -3, -3),
    OP(false, QZ_VectAddX(a, n, b, o), 5, 7, 9),      OP(false, QZ_VectDotMult(a, n, b, o), 4, 10, 18),
    OP(false, QZ_VectSAX(a, n, s, b, o), 9, 12, 15),  OP(false, QZ_VectScale(a, n, s, o), 2, 4, 6)};
// clang-format on
#undef OP

// Counts of 0 and below are empty vectors: sums 0.0, nothing written, normalisation refused.
// Every output may be written over either input; a lone -0.0 product added to the sum's start
// 0.0 gives +0.0. The bits of longer and random vectors are the golden vectors' business.
TEST(Vect, ElementwiseByHandAlsoInPlaceAndEmptyCounts) {
    const double a[3] = {1, 2, 3}, b[3] = {4, 5, 6}, c[3] = {2, 3, 6}, mz[1] = {-0.0};
    for (const auto &op : kOps) {
        for (int32_t n : {std::numeric_limits<int32_t>::min(), 0, 2, 3}) {
            if (op.fixed && n < 2) continue;
            const int len = n > 0 ? n : 0;
            double out[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
            double inA[3] = {1, 2, 3}, inB[3] = {4, 5, 6};
            op.call(a, b, out, n, 2.0);
            op.call(inA, b, inA, n, 2.0);
            op.call(a, inB, inB, n, 2.0);
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(out[i], i < len ? op.want[i] : kSentinel) << (&op - kOps) << " " << n;
            EXPECT_TRUE(SameArray(inA, out, len)) << (&op - kOps) << " " << n;
            EXPECT_TRUE(SameArray(inB, out, len)) << (&op - kOps) << " " << n;
        }
    }
    EXPECT_EQ(QZ_VectDot(a, b, 3), 32.0);
    EXPECT_TRUE(SameBits(QZ_VectDot(mz, a, 1), 0.0));
    EXPECT_TRUE(SameBits(QZ_VectDot(a, b, 0), 0.0));
    EXPECT_TRUE(SameBits(QZ_VectLength(a, -1), 0.0));
    EXPECT_EQ(QZ_VectLength(c, 3), 7.0);
    for (int fixed = 0; fixed < 2; ++fixed) {
        double v[3] = {2, 3, 6}, e[1] = {5};
        ASSERT_EQ(fixed ? kFixed[3].norm(v) : QZ_VectNorm(v, 3), 1);
        EXPECT_ALL(v[0] == 2 / 7.0, v[1] == 3 / 7.0, v[2] == 6 / 7.0);
        EXPECT_EQ(QZ_VectNorm(e, 0), 0);
        EXPECT_EQ(e[0], 5.0);
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
    EXPECT_ALL(SameBits(len, QZ_Sqrt(1e-9)), SameBits(len, QZ_GetVectLenA2B(origin, at)));
    EXPECT_ALL(SameArray(inA, inB, 3), SameBits(inA[0], x0 / len));
}

}  // namespace
