// Vector operations: results bit for bit against plain loops in index order, the three zero
// guards of normalisation on both sides of their thresholds, empty counts, and in-place calls.
#include <Eigen/Dense>

#include <array>
#include <cstring>
#include <limits>
#include <vector>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::NextDown;
using qztest::NextUp;
using qztest::SameBits;

constexpr double kSentinel = 12345.678;

struct FixedFamily {
    int n;
    int32_t (*norm)(double *);
    void (*cpy)(const double *, double *);
    void (*add)(const double *, const double *, double *);
    void (*sa)(const double *, double, const double *, double *);
};

#define FAMILY(N) FixedFamily{N, QZ_VectNorm##N, QZ_VectCpy##N, QZ_VectAdd##N, QZ_VectSA##N},
const FixedFamily kFamilies[] = {FAMILY(2) FAMILY(3) FAMILY(4) FAMILY(5) FAMILY(6) FAMILY(7)
                                     FAMILY(8)};
#undef FAMILY

// Random entries with exact zeros of both signs mixed in, so that signed-zero handling shows.
std::vector<double> RandomVector(std::mt19937_64 &rng, int n) {
    std::vector<double> v(n + 1, kSentinel);  // one guard element past the end
    for (int i = 0; i < n; ++i) {
        const double r = qztest::Uniform(rng, 0.0, 1.0);
        v[i] = r < 0.1 ? 0.0 : r < 0.2 ? -0.0 : qztest::Uniform(rng, -10.0, 10.0);
    }
    return v;
}

double RefLength(const double *v, int n) {
    double s = 0.0;
    for (int i = 0; i < n; ++i) s = s + v[i] * v[i];
    return QZ_Sqrt(s);
}

TEST(VectFixed, EveryMemberMatchesIndexOrderLoopsBitForBit) {
    auto rng = qztest::Rng();
    for (const auto &f : kFamilies) {
        for (int rep = 0; rep < 200; ++rep) {
            const auto a = RandomVector(rng, f.n);
            const auto b = RandomVector(rng, f.n);
            const double s = qztest::Uniform(rng, -3.0, 3.0);
            std::vector<double> out(f.n + 1, kSentinel);

            f.cpy(a.data(), out.data());
            for (int i = 0; i < f.n; ++i) ASSERT_TRUE(SameBits(out[i], a[i])) << "cpy n=" << f.n;
            f.add(a.data(), b.data(), out.data());
            for (int i = 0; i < f.n; ++i) ASSERT_TRUE(SameBits(out[i], a[i] + b[i]));
            f.sa(a.data(), s, b.data(), out.data());
            for (int i = 0; i < f.n; ++i) ASSERT_TRUE(SameBits(out[i], b[i] * s + a[i]));
            ASSERT_EQ(out[f.n], kSentinel) << "wrote past n=" << f.n;

            auto v = a;
            const double len = RefLength(a.data(), f.n);
            const bool zero = QZ_IsZero(len);
            ASSERT_EQ(f.norm(v.data()), zero ? 0 : 1);
            for (int i = 0; i < f.n; ++i) ASSERT_TRUE(SameBits(v[i], zero ? a[i] : a[i] / len));
            ASSERT_EQ(v[f.n], kSentinel);
        }
    }
}

TEST(VectFixed, InPlaceAddAndScaleAdd) {
    for (const auto &f : kFamilies) {
        std::vector<double> a(f.n), b(f.n);
        for (int i = 0; i < f.n; ++i) {
            a[i] = 1.5 * i - 2.0;
            b[i] = 0.25 * i + 1.0;
        }
        auto x = a;
        f.add(x.data(), b.data(), x.data());
        for (int i = 0; i < f.n; ++i) EXPECT_EQ(x[i], a[i] + b[i]);
        x = b;
        f.sa(a.data(), 3.0, x.data(), x.data());
        for (int i = 0; i < f.n; ++i) EXPECT_EQ(x[i], b[i] * 3.0 + a[i]);
    }
}

// The fixed and counted normalisations refuse a length inside the closed band +-1e-16 and leave
// the vector as it was; one ulp above the band they normalise.
TEST(VectNorm, ZeroBandIsClosedAndLeavesVectorUnchanged) {
    for (const auto &f : kFamilies) {
        std::vector<double> v(f.n, 0.0);
        v[f.n - 1] = -1e-16;
        auto w = v;
        EXPECT_EQ(f.norm(w.data()), 0) << "n=" << f.n;
        EXPECT_TRUE(SameBits(w[f.n - 1], -1e-16));
        EXPECT_EQ(QZ_VectNorm(w.data(), f.n), 0);
        EXPECT_TRUE(SameBits(w[f.n - 1], -1e-16));

        v[f.n - 1] = NextUp(1e-16);
        w = v;
        EXPECT_EQ(f.norm(w.data()), 1);
        EXPECT_EQ(w[f.n - 1], 1.0);
        w = v;
        EXPECT_EQ(QZ_VectNorm(w.data(), f.n), 1);
        EXPECT_EQ(w[f.n - 1], 1.0);
    }
    double v3[3] = {3.0, 0.0, 4.0};
    EXPECT_EQ(QZ_VectNorm3(v3), 1);
    EXPECT_EQ(v3[0], 0.6);
    EXPECT_EQ(v3[2], 0.8);
    double z[3] = {0.0, -0.0, 0.0};
    EXPECT_EQ(QZ_VectNorm3(z), 0);
    EXPECT_TRUE(SameBits(z[1], -0.0));
    EXPECT_EQ(QZ_VectNorm(v3, 0), 0);
    EXPECT_EQ(QZ_VectNorm(v3, -5), 0);
}

// VectNormalized gives zeros strictly below a length of 1e-6 and normalises from 1e-6 on.
TEST(VectNormalized, ZerosStrictlyBelowOneMillionth) {
    double out[3] = {kSentinel, kSentinel, kSentinel};
    const double at[3] = {0.0, 1e-6, 0.0};
    VectNormalized(at, 3, out);
    EXPECT_EQ(out[1], 1.0);
    EXPECT_TRUE(SameBits(out[0], 0.0));
    const double below[3] = {-0.0, -NextDown(1e-6), 0.0};
    VectNormalized(below, 3, out);
    for (double x : out) EXPECT_TRUE(SameBits(x, 0.0));
    // A NaN length fails the comparison and is divided through.
    const double nan[2] = {std::numeric_limits<double>::quiet_NaN(), 1.0};
    VectNormalized(nan, 2, out);
    EXPECT_TRUE(std::isnan(out[0]) && std::isnan(out[1]));
    out[0] = kSentinel;
    VectNormalized(at, 0, out);
    VectNormalized(at, -1, out);
    EXPECT_EQ(out[0], kSentinel);
    // In place.
    double v[2] = {3.0, -4.0};
    VectNormalized(v, 2, v);
    EXPECT_EQ(v[0], 0.6);
    EXPECT_EQ(v[1], -0.8);
}

TEST(CalShadowVector, ProjectsOnTheLineOfBAndRefusesCountsAboveThree) {
    const double a[3] = {1.0, 2.0, 3.0};
    const double b[3] = {0.0, 0.0, 5.0};
    double out[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    CalShadowVector(a, b, out, 3);
    EXPECT_EQ(out[0], 0.0);
    EXPECT_EQ(out[1], 0.0);
    EXPECT_EQ(out[2], 3.0);
    EXPECT_EQ(out[3], kSentinel);
    const double zero[3] = {0.0, 0.0, 0.0};
    CalShadowVector(a, zero, out, 3);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(SameBits(out[i], 0.0));
    const double b1[1] = {-2.0};
    CalShadowVector(a, b1, out, 1);
    EXPECT_EQ(out[0], 1.0);
    EXPECT_EQ(out[1], 0.0);
    // Out of range counts write nothing.
    const double a4[4] = {1, 2, 3, 4}, b4[4] = {1, 1, 1, 1};
    double o4[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    CalShadowVector(a4, b4, o4, 4);
    CalShadowVector(a4, b4, o4, 0);
    CalShadowVector(a4, b4, o4, -3);
    for (double x : o4) EXPECT_EQ(x, kSentinel);
}

// The two-point normalisation tests the squared distance against 1e-9, strictly.
TEST(GetVectNormA2B, CoincidenceIsStrictlyBelowSquaredThreshold) {
    // The smallest x whose square reaches 1e-9.
    double x = QZ_Sqrt(1e-9);
    while (x * x >= 1e-9) x = NextDown(x);
    while (x * x < 1e-9) x = NextUp(x);
    const double a[3] = {1.0, -2.0, 0.5};
    // From the origin the difference is the point itself, so the squared distance is exact.
    double bOk[3] = {0.0, 0.0, 0.0};
    const double origin[3] = {0.0, 0.0, 0.0};
    bOk[1] = x;
    double out[3], len = kSentinel;
    EXPECT_EQ(QZ_GetVectNormLenA2B(origin, bOk, out, &len), 1);
    EXPECT_EQ(out[1], 1.0);
    EXPECT_TRUE(SameBits(out[0], 0.0));
    EXPECT_EQ(len, x);
    bOk[1] = NextDown(x);
    len = kSentinel;
    EXPECT_EQ(QZ_GetVectNormLenA2B(origin, bOk, out, &len), 0);
    EXPECT_EQ(out[1], NextDown(x)) << "keeps b - a";
    EXPECT_EQ(len, kSentinel);
    EXPECT_EQ(QZ_GetVectNormA2B(origin, bOk, out), 0);

    // Points 1e-5 apart count as one; 1e-4 apart they give a unit vector.
    const double near[3] = {1.0 + 1e-5, -2.0, 0.5};
    EXPECT_EQ(QZ_GetVectNormA2B(a, near, out), 0);
    EXPECT_EQ(out[0], near[0] - a[0]);
    const double far[3] = {1.0, -2.0, 0.5 - 1e-4};
    EXPECT_EQ(QZ_GetVectNormA2B(a, far, out), 1);
    EXPECT_EQ(out[2], -1.0);

    // Random points, bit for bit, with the output written over either input.
    auto rng = qztest::Rng();
    for (int rep = 0; rep < 500; ++rep) {
        double p[3], q[3], d[3], s = 0.0;
        for (int i = 0; i < 3; ++i) {
            p[i] = qztest::Uniform(rng, -5, 5);
            q[i] = qztest::Uniform(rng, -5, 5);
            d[i] = q[i] - p[i];
            s = s + d[i] * d[i];
        }
        const double l = QZ_Sqrt(s);
        ASSERT_TRUE(SameBits(QZ_GetVectLenA2B(p, q), l));
        double pp[3] = {p[0], p[1], p[2]};
        ASSERT_EQ(QZ_GetVectNormLenA2B(pp, q, pp, &len), 1);
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(SameBits(pp[i], d[i] / l));
        ASSERT_TRUE(SameBits(len, l));
    }
}

TEST(VectAngle, DegreesWithClampAndZeroGuards) {
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0}, mx[3] = {-2, 0, 0}, zero[3] = {0, 0, 0};
    EXPECT_EQ(QZ_VectAngle(x, y, 3), 90.0);
    EXPECT_EQ(QZ_VectAngle(x, mx, 3), 180.0);
    EXPECT_TRUE(SameBits(QZ_VectAngle(x, zero, 3), 0.0));
    EXPECT_TRUE(SameBits(QZ_VectAngle(zero, x, 3), 0.0));
    EXPECT_TRUE(SameBits(QZ_VectAngle(x, y, 0), 0.0));
    EXPECT_TRUE(SameBits(QZ_VectAngle(x, y, -2), 0.0));
    // A length at the edge of the zero band counts as zero.
    const double tiny[3] = {0, 0, 1e-16};
    EXPECT_TRUE(SameBits(QZ_VectAngle(x, tiny, 3), 0.0));
    const double nan[3] = {std::numeric_limits<double>::quiet_NaN(), 0, 0};
    EXPECT_TRUE(std::isnan(QZ_VectAngle(nan, x, 3)));

    // A vector with itself or its opposite, where the rounded cosine leaves [-1, 1]: the clamp
    // gives exactly 0 or 180 degrees.
    auto rng = qztest::Rng();
    int above = 0, below = 0;
    for (int rep = 0; rep < 5000; ++rep) {
        double v[3], w[3];
        for (int i = 0; i < 3; ++i) v[i] = qztest::Uniform(rng, -1, 1);
        for (int i = 0; i < 3; ++i) w[i] = -v[i];
        const double l = QZ_VectLength(v, 3);
        const double c = QZ_VectDot(v, v, 3) / (l * l);
        if (c > 1.0) {
            ++above;
            ASSERT_TRUE(SameBits(QZ_VectAngle(v, v, 3), 0.0));
        }
        if (QZ_VectDot(v, w, 3) / (l * l) < -1.0) {
            ++below;
            ASSERT_EQ(QZ_VectAngle(v, w, 3), 180.0);
        }
    }
    EXPECT_GT(above, 0) << "no case exercised the upper clamp";
    EXPECT_GT(below, 0) << "no case exercised the lower clamp";
}

// With s exactly 1 the scale is a copy: a signalling NaN keeps its payload, which a
// multiplication would quieten. One ulp either side of 1 multiplies.
TEST(VectScale, UnitFactorCopiesOthersMultiply) {
    double snan;
    const uint64_t bits = 0x7ff0000000000123ull;
    std::memcpy(&snan, &bits, sizeof snan);
    const double v[3] = {snan, -0.0, 1.0};
    double out[3];
    QZ_VectScale(v, 3, 1.0, out);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(SameBits(out[i], v[i]));
    QZ_VectScale(v, 3, NextDown(1.0), out);
    EXPECT_NE(qztest::Bits(out[0]), bits);
    EXPECT_EQ(out[2], NextDown(1.0));
    QZ_VectScale(v, 3, NextUp(1.0), out);
    EXPECT_EQ(out[2], NextUp(1.0));
    const double w[2] = {-2.0, 3.0};
    QZ_VectScale(w, 2, 0.0, out);
    EXPECT_TRUE(SameBits(out[0], -0.0));
    EXPECT_TRUE(SameBits(out[1], 0.0));
}

TEST(VectCounted, MatchIndexOrderLoopsAndEmptyCountsWriteNothing) {
    auto rng = qztest::Rng();
    for (int n = 1; n <= 12; ++n) {
        for (int rep = 0; rep < 50; ++rep) {
            const auto a = RandomVector(rng, n);
            const auto b = RandomVector(rng, n);
            const double s = qztest::Uniform(rng, -2, 2);
            std::vector<double> out(n + 1, kSentinel);
            double dot = 0.0;
            for (int i = 0; i < n; ++i) dot = dot + a[i] * b[i];
            ASSERT_TRUE(SameBits(QZ_VectDot(a.data(), b.data(), n), dot));
            ASSERT_TRUE(SameBits(QZ_VectLength(a.data(), n), RefLength(a.data(), n)));
            QZ_VectSub(a.data(), n, b.data(), out.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(out[i], a[i] - b[i]));
            QZ_VectAddX(a.data(), n, b.data(), out.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(out[i], a[i] + b[i]));
            QZ_VectDotMult(a.data(), n, b.data(), out.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(out[i], a[i] * b[i]));
            QZ_VectSAX(a.data(), n, s, b.data(), out.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(out[i], b[i] * s + a[i]));
            QZ_VectScale(a.data(), n, s, out.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(out[i], a[i] * s));
            ASSERT_EQ(out[n], kSentinel);
        }
    }
    // A lone -0.0 product is added to 0.0, giving +0.0.
    const double mz[1] = {-0.0}, one[1] = {1.0};
    EXPECT_TRUE(SameBits(QZ_VectDot(mz, one, 1), 0.0));

    const double a[2] = {1.0, 2.0};
    double out[2] = {kSentinel, kSentinel};
    for (int32_t n : {0, -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_TRUE(SameBits(QZ_VectDot(a, a, n), 0.0));
        EXPECT_TRUE(SameBits(QZ_VectLength(a, n), 0.0));
        QZ_VectSub(a, n, a, out);
        QZ_VectAddX(a, n, a, out);
        QZ_VectDotMult(a, n, a, out);
        QZ_VectSAX(a, n, 2.0, a, out);
        QZ_VectScale(a, n, 2.0, out);
        QZ_VectScale(a, n, 1.0, out);
    }
    EXPECT_EQ(out[0], kSentinel);
    // In place on either input.
    double x[2] = {1.0, 2.0};
    QZ_VectSub(x, 2, a, x);
    EXPECT_EQ(x[1], 0.0);
    QZ_VectSAX(a, 2, 3.0, x, x);
    EXPECT_EQ(x[0], 1.0);
}

TEST(VectCross, SignOfMiddleZeroAndAgreementWithEigen) {
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0};
    double out[3];
    QZ_VectCross(x, y, out);
    EXPECT_TRUE(SameBits(out[0], 0.0));
    EXPECT_TRUE(SameBits(out[1], -0.0));
    EXPECT_TRUE(SameBits(out[2], 1.0));
    auto rng = qztest::Rng();
    for (int rep = 0; rep < 200; ++rep) {
        Eigen::Vector3d a, b;
        for (int i = 0; i < 3; ++i) {
            a[i] = qztest::Uniform(rng, -3, 3);
            b[i] = qztest::Uniform(rng, -3, 3);
        }
        const Eigen::Vector3d c = a.cross(b);
        QZ_VectCross(a.data(), b.data(), out);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(out[i], c[i]);
    }
}

}  // namespace
