// Spherical linear interpolation between two unit quaternions, along the shorter or the longer
// way, in one call or with the pair's angle cached over a motion segment; and the sense in which
// the frame turns about an axis from one orientation to another.
//
// Method: with d the dot product of the pair after choosing the sign of q2, theta = acos(d) and
// out = q1 sin((1 - t) theta) / sin(theta) + q2 sin(t theta) / sin(theta). When d is within
// 0.001 of the end of its range that the sign choice leaves possible (1 for the shorter way, -1
// for the longer), sin(theta) is too small to divide by and the weights become 1 - t and t.
// Neither the inputs nor the result are normalised.
#include "QZQuaternions.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/vector.h"
#include "QZQuaternions/quaternion.h"

namespace qz::detail {
namespace {

constexpr double kSlerpLinearBand = 0.001;

inline void Negate4(double *q) {
    q[0] = -q[0];
    q[1] = -q[1];
    q[2] = -q[2];
    q[3] = -q[3];
}

inline void Blend(const double *q1, const double *q2, double w1, double w2, double *out) {
    for (int i = 0; i < 4; ++i) out[i] = q1[i] * w1 + q2[i] * w2;
}

inline void BlendSpherical(const double *q1, const double *q2, double theta, double sinTheta,
                           double t, double *out) {
    const double w1 = SinArc((1.0 - t) * theta) / sinTheta;
    const double w2 = SinArc(t * theta) / sinTheta;
    Blend(q1, q2, w1, w2, out);
}

inline void BlendLinear(const double *q1, const double *q2, double t, double *out) {
    Blend(q1, q2, 1.0 - t, t, out);
}

// Interpolates with d = q1 . q2 already brought to the chosen sign; `spherical` is the outcome
// of the band test.
inline void SlerpWith(const double *q1, const double *q2, double d, bool spherical, double t,
                      double *out) {
    if (spherical) {
        const double theta = ACos(d);
        BlendSpherical(q1, q2, theta, SinArc(theta), t, out);
    } else {
        BlendLinear(q1, q2, t, out);
    }
}

// First pass of a cached interpolation: the sign choice on q2 (already made by the caller), then
// the angle and its sine when the pair is far enough apart for spherical weights.
inline void FactorInit(QZSlerpFactorState *st, double d, bool spherical) {
    if (spherical) {
        st->theta = ACos(d);
        st->sinTheta = SinArc(st->theta);
        st->useSpherical = 1;
    } else {
        st->useSpherical = 0;
    }
    st->initialized = 1;
}

inline void FactorBlend(const QZSlerpFactorState *st, const double *q1, const double *q2, double t,
                        double *out) {
    if (st->useSpherical == 1) {
        BlendSpherical(q1, q2, st->theta, st->sinTheta, t, out);
    } else {
        BlendLinear(q1, q2, t, out);
    }
}

// The frame's x axis, the first column of the rotation matrix of q.
inline void XAxis(const double *q, double *u) {
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    u[0] = 1.0 - 2.0 * y * y - 2.0 * z * z;
    u[1] = 2.0 * (x * y + z * w);
    u[2] = 2.0 * (x * z - y * w);
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void QZ_QuatSlerp(const double *q1, double *q2, double t, double *out) {
    double d = QuatDot(q1, q2);
    if (d < 0.0) {
        Negate4(q2);
        d = -d;
    }
    SlerpWith(q1, q2, d, 1.0 - d > kSlerpLinearBand, t, out);
}

QZ_API void QZ_QuatSlerpL(const double *q1, const double *q2, double t, double *out) {
    double d = QuatDot(q1, q2);
    double neg[4];
    const double *b = q2;
    if (d > 0.0) {
        neg[0] = -q2[0];
        neg[1] = -q2[1];
        neg[2] = -q2[2];
        neg[3] = -q2[3];
        b = neg;
        d = -d;
    }
    SlerpWith(q1, b, d, 1.0 + d > kSlerpLinearBand, t, out);
}

QZ_API void QZ_QuatSlerpFactor(const double *q1, double *q2, double t, double *out,
                               QZSlerpFactorState *state) {
    if (state->initialized == 0) {
        double d = QuatDot(q1, q2);
        if (d < 0.0) {
            Negate4(q2);
            d = -d;
        }
        FactorInit(state, d, 1.0 - d > kSlerpLinearBand);
    }
    FactorBlend(state, q1, q2, t, out);
}

QZ_API void QZ_QuatSlerpFactorL(const double *q1, double *q2, double t, double *out,
                                QZSlerpFactorState *state) {
    if (state->initialized == 0) {
        double d = QuatDot(q1, q2);
        if (d > 0.0) {
            Negate4(q2);
            d = -d;
        }
        FactorInit(state, d, 1.0 + d > kSlerpLinearBand);
    }
    FactorBlend(state, q1, q2, t, out);
}

// Projects both frames' x axes onto the plane normal to the axis and takes the signed angle
// between the projections about the axis. The projection p = (axis x u) x axis and its quarter
// turn c = axis x u span that plane, so atan2(c1 . p2, p1 . p2) is the angle from p1 to p2, each
// dot product started with its first term. The scale of the axis cancels in the sign.
QZ_API int32_t QZ_QuatSlerpDir(const double *q1, const double *q2, const double *axis) {
    double u1[3], u2[3], c1[3], c2[3], p1[3], p2[3];
    XAxis(q1, u1);
    XAxis(q2, u2);
    VectCross(axis, u1, c1);
    VectCross(axis, u2, c2);
    VectCross(c1, axis, p1);
    VectCross(c2, axis, p2);
    const double m00 = p1[0] * p2[0] + p1[1] * p2[1] + p1[2] * p2[2];
    const double m10 = c1[0] * p2[0] + c1[1] * p2[1] + c1[2] * p2[2];
    return ATan2(m10, m00) < 0.0 ? -1 : 1;
}

}  // extern "C"
