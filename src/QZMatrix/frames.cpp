// Frame geometry for the kinematics and dynamics of a serial arm: the modified Denavit-Hartenberg
// link transform, the cross-product and inertia operators of a vector, the crossing of two
// spatial lines, and an affine update on a row-pointer matrix.
#include "QZMatrix.h"

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/vector.h"

namespace qz::detail {
namespace {

// Below this degeneracy of the triangle (u, v, u + v) two lines count as parallel.
constexpr double kParallelTol = 1e-8;

// Sorts three values into ascending order.
inline void Sort3(double &a, double &b, double &c) {
    if (b < a) {
        const double t = a;
        a = b;
        b = t;
    }
    if (c < b) {
        const double t = b;
        b = c;
        c = t;
    }
    if (b < a) {
        const double t = a;
        a = b;
        b = t;
    }
}

// The point of line p + k * (b - p) at parameter k, formed as p * k + b - b * k.
inline void PointOnLine(const double *p, const double *b, double k, double *x) {
    double bk[3];
    VectSA<3>(b, k, p, x);  // p * k + b
    VectScale(b, 3, k, bk);
    VectSub(x, 3, bk, x);
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

// Modified (Craig) convention: T = RotX(alpha) * TransX(a) * RotZ(theta) * TransZ(d).
QZ_API void QZ_DH2Matrix(double alpha, double a, double d, double theta, double *t) {
    const double st = SinArc(theta), ct = CosArc(theta);
    const double sa = SinArc(alpha), ca = CosArc(alpha);
    t[0] = ct;
    t[1] = -st;
    t[2] = 0.0;
    t[3] = a;
    t[4] = st * ca;
    t[5] = ct * ca;
    t[6] = -sa;
    t[7] = -sa * d;
    t[8] = st * sa;
    t[9] = ct * sa;
    t[10] = ca;
    t[11] = ca * d;
    t[12] = 0.0;
    t[13] = 0.0;
    t[14] = 0.0;
    t[15] = 1.0;
}

QZ_API void QZ_Skew(const double *v, double *s) {
    s[0] = 0.0;
    s[1] = -v[2];
    s[2] = v[1];
    s[3] = v[2];
    s[4] = 0.0;
    s[5] = -v[0];
    s[6] = -v[1];
    s[7] = v[0];
    s[8] = 0.0;
}

// Rows chosen so that L(v) * (Ixx, Ixy, Ixz, Iyy, Iyz, Izz) = I * v for a symmetric I.
QZ_API void QZ_LOperator(const double *v, double *l) {
    l[0] = v[0];
    l[1] = v[1];
    l[2] = v[2];
    l[3] = 0.0;
    l[4] = 0.0;
    l[5] = 0.0;
    l[6] = 0.0;
    l[7] = v[0];
    l[8] = 0.0;
    l[9] = v[1];
    l[10] = v[2];
    l[11] = 0.0;
    l[12] = 0.0;
    l[13] = 0.0;
    l[14] = v[0];
    l[15] = 0.0;
    l[16] = v[1];
    l[17] = v[2];
}

// Method: with unit directions, u = -d1 and v = -d2 are two sides of a triangle whose third side
// is u + v. The triangle is flat (its two short sides add up to the long one) exactly when the
// lines are parallel, which gives a test free of a sine or a near-zero determinant. Otherwise
// the closest points X1 = B1 + s u and X2 = B2 + t v solve the 2x2 normal equations of
// |X1 - X2|^2, and their midpoint is the answer: the crossing for lines that meet, the middle of
// the common perpendicular for skew lines. A zero direction stays zero, gives a flat triangle
// and is refused like a parallel pair.
QZ_API uint32_t QZ_LineCross(const double *p1, double *d1, const double *p2, double *d2,
                             double *x) {
    VectNorm(d1, 3);
    VectNorm(d2, 3);
    double b1[3], b2[3], u[3], v[3], w[3];
    VectAdd<3>(p1, d1, b1);
    VectAdd<3>(p2, d2, b2);
    VectSub(p1, 3, b1, u);
    VectSub(p2, 3, b2, v);
    VectAdd<3>(u, v, w);

    double s0 = VectLength(u, 3), s1 = VectLength(v, 3), s2 = VectLength(w, 3);
    Sort3(s0, s1, s2);
    const double e = Fabs(s0 + s1 - s2);
    if (e < kParallelTol) return 0;

    double r[3];
    VectSub(b2, 3, b1, r);
    const double a = VectDot(u, u, 3);
    const double b = VectDot(u, v, 3);
    const double c = VectDot(v, v, 3);
    const double g = VectDot(u, r, 3);
    const double h = VectDot(v, r, 3);
    const double det = b * b - a * c;
    const double s = (b * h - c * g) / det;
    const double t = (a * h - b * g) / det;

    double x1[3], x2[3], sum[3];
    PointOnLine(p1, b1, s, x1);
    PointOnLine(p2, b2, t, x2);
    VectAdd<3>(x1, x2, sum);
    for (int i = 0; i < 3; ++i) x[i] = 0.5 * sum[i];
    return 1;
}

// out = v + M x, each row accumulated in out itself, so out may be v.
QZ_API void QZ_VectAddMV(const double *v, double *const *m, int32_t n, int32_t cols,
                         const double *x, double *out) {
    for (int32_t i = 0; i < n; ++i) {
        out[i] = v[i];
        const double *row = m[i];
        for (int32_t j = 0; j < cols; ++j) out[i] = out[i] + row[j] * x[j];
    }
}

}  // extern "C"
