// Orientation error as a rotation vector, accurate in angle near 0 and near pi.
//
// Method: the error quaternion e = qt (x) conj(qa) is the rotation from qa to qt, scaled by
// |qt| |qa|; with (v, w) = e taken in the w >= 0 hemisphere, the angle is 2 atan2(|v|, w) and the
// axis v / |v|, both independent of that scale, so the inputs are never normalised.
//
// Near pi, w is small and |v| close to its full length: the rounding of w (an absolute error of
// about one ulp of 1) moves the angle by about one ulp of pi, and the axis is well resolved. Near
// 0 the opposite holds: v is the sum of four products that cancel to something small, and a plain
// sum would leave an absolute error of about 1e-16, a relative error of 1e-8 for an angle of
// 1e-8. So each component of v is summed as a compensated dot product: every product is split
// exactly into a rounded part and its rounding error (Dekker's product, with Veltkamp's split of
// each component formed once, which needs no fused multiply-add), and the parts are summed with their errors carried along.
// The result is as accurate as if formed in twice the precision and then rounded, which leaves
// the angle correct to a few ulps down to angles of about 1e-16 rad.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"

namespace qz::detail {
namespace {

constexpr double kSplit = 134217729.0;  // 2^27 + 1: splits a double into two 26-bit halves
// Bounds on a quaternion's squared length; inside them no split or square overflows.
constexpr double kQuatMinNorm2 = 1e-16;
constexpr double kQuatMaxNorm2 = 1e16;

// A double split into a high part of at most 26 significant bits and the exact remainder, so
// that a product of two high or low parts is exact.
struct Split {
    double v, hi, lo;
};

inline Split SplitOf(double a) {
    const double c = kSplit * a, hi = c - (c - a);
    return {a, hi, a - hi};
}

inline Split Neg(Split s) { return {-s.v, -s.hi, -s.lo}; }

// a * b == p + e exactly.
inline void ExactProduct(const Split &a, const Split &b, double &p, double &e) {
    p = a.v * b.v;
    e = ((a.hi * b.hi - p) + a.hi * b.lo + a.lo * b.hi) + a.lo * b.lo;
}

// a + b == s + e exactly.
inline void ExactSum(double a, double b, double &s, double &e) {
    s = a + b;
    const double bb = s - a;
    e = (a - (s - bb)) + (b - bb);
}

// a0 b0 + a1 b1 + a2 b2 + a3 b3, as if in twice the precision, then rounded.
inline double Dot4(const Split (&a)[4], const Split (&b)[4]) {
    double sum, err;
    ExactProduct(a[0], b[0], sum, err);
    for (int k = 1; k < 4; ++k) {
        double h, r, e;
        ExactProduct(a[k], b[k], h, r);
        ExactSum(sum, h, sum, e);
        err = err + (e + r);
    }
    return sum + err;
}

bool QuatOk(const double *q) {
    const double n2 = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
    return n2 >= kQuatMinNorm2 && n2 <= kQuatMaxNorm2;  // NaN and infinity fail
}

}  // namespace

void OrientationError(const double *qt, const double *qa, double *r) {
    // Each component is split once; a negated split is exact.
    const Split xt = SplitOf(qt[0]), yt = SplitOf(qt[1]), zt = SplitOf(qt[2]), wt = SplitOf(qt[3]);
    const Split xa = SplitOf(qa[0]), ya = SplitOf(qa[1]), za = SplitOf(qa[2]), wa = SplitOf(qa[3]);
    // v = wa vt - wt va - vt x va, w = wt wa + vt . va
    const Split nwt = Neg(wt);
    const Split ax[4] = {wa, nwt, Neg(yt), zt}, bx[4] = {xt, xa, za, ya};
    const Split ay[4] = {wa, nwt, Neg(zt), xt}, by[4] = {yt, ya, xa, za};
    const Split az[4] = {wa, nwt, Neg(xt), yt}, bz[4] = {zt, za, ya, xa};
    double v[3] = {Dot4(ax, bx), Dot4(ay, by), Dot4(az, bz)};
    double w = qt[3] * qa[3] + qt[0] * qa[0] + qt[1] * qa[1] + qt[2] * qa[2];
    if (w < 0.0) {
        w = -w;
        for (double &x : v) x = -x;
    }
    const double s = Sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    const double f = s > 0.0 ? (2.0 * ATan2(s, w)) / s : 0.0;
    for (int k = 0; k < 3; ++k) r[k] = f * v[k];
}

}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_OrientationError(const double *qTarget, const double *qActual, double *r) {
    using namespace qz::detail;
    if (!QuatOk(qTarget) || !QuatOk(qActual)) return QZ_KIN_ERR_INPUT;
    OrientationError(qTarget, qActual, r);
    return QZ_KIN_OK;
}

}  // extern "C"
