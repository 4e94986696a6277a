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
// exactly into a rounded part and its rounding error (Dekker's product, with Veltkamp's split,
// which needs no fused multiply-add), and the parts are summed with their errors carried along.
// The result is as accurate as if formed in twice the precision and then rounded, which leaves
// the angle correct to a few ulps down to angles of about 1e-16 rad.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"
#include "QZMatrix/matrix.h"

namespace qz::detail {
namespace {

constexpr double kSplit = 134217729.0;  // 2^27 + 1: splits a double into two 26-bit halves
// Bounds on a quaternion's squared length; inside them no split or square overflows.
constexpr double kQuatMinNorm2 = 1e-16;
constexpr double kQuatMaxNorm2 = 1e16;

// A value split into a high part of at most 26 significant bits and the exact remainder, so
// that a product of two high or low parts is exact. T is a double, or a Pair of two independent
// lanes that round exactly as two doubles would.
template <class T>
struct Split {
    T v, hi, lo;
};

template <class T>
inline Split<T> SplitOf(T a) {
    const T c = kSplit * a, hi = c - (c - a);
    return {a, hi, a - hi};
}

// a * b == p + e exactly.
template <class T>
inline void ExactProduct(const Split<T> &a, const Split<T> &b, T &p, T &e) {
    p = a.v * b.v;
    e = ((a.hi * b.hi - p) + a.hi * b.lo + a.lo * b.hi) + a.lo * b.lo;
}

// a + b == s + e exactly.
template <class T>
inline void ExactSum(T a, T b, T &s, T &e) {
    s = a + b;
    const T bb = s - a;
    e = (a - (s - bb)) + (b - bb);
}

// a0 b0 + a1 b1 + a2 b2 + a3 b3, as if in twice the precision, then rounded.
template <class T>
inline T Dot4(const T (&a)[4], const T (&b)[4]) {
    T sum, err;
    ExactProduct(SplitOf(a[0]), SplitOf(b[0]), sum, err);
    for (int k = 1; k < 4; ++k) {
        T h, r, e;
        ExactProduct(SplitOf(a[k]), SplitOf(b[k]), h, r);
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
    const double xt = qt[0], yt = qt[1], zt = qt[2], wt = qt[3];
    const double xa = qa[0], ya = qa[1], za = qa[2], wa = qa[3];
    // v = wa vt - wt va - vt x va, w = wt wa + vt . va; x and y side by side in the lanes of a
    // Pair, z alone.
    const Pair axy[4] = {{wa, wa}, {-wt, -wt}, {-yt, -zt}, {zt, xt}};
    const Pair bxy[4] = {{xt, yt}, {xa, ya}, {za, xa}, {ya, za}};
    const double az[4] = {wa, -wt, -xt, yt}, bz[4] = {zt, za, ya, xa};
    const Pair vxy = Dot4(axy, bxy);
    double v[3] = {vxy[0], vxy[1], Dot4(az, bz)};
    double w = qt[3] * qa[3] + qt[0] * qa[0] + qt[1] * qa[1] + qt[2] * qa[2];
    if (w < 0.0) {  // the other hemisphere: the same rotation, the shorter way
        w = -w;
        v[0] = -v[0];
        v[1] = -v[1];
        v[2] = -v[2];
    }
    const double s = Sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    const double f = s > 0.0 ? (2.0 * ATan2(s, w)) / s : 0.0;
    r[0] = f * v[0];
    r[1] = f * v[1];
    r[2] = f * v[2];
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
