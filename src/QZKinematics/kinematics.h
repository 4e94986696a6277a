// Internal entry points of the kinematics module, so that the position IK and the other modules'
// callers reach them without going through an exported name, and the limits every entry point
// checks its inputs against, kept in one place.
#ifndef QZ_KINEMATICS_KINEMATICS_H
#define QZ_KINEMATICS_KINEMATICS_H

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/inverse.h"
#include "QZKinematics.h"

namespace qz::detail {

constexpr double kKinMaxLength = 1e9;           // largest link length, tool distance, length scale
constexpr double kKinMaxAngle = 1e4;            // largest joint angle or limit (rad)
constexpr double kKinMaxLinkAngle = 4.0 * kPi;  // largest link twist or joint offset (rad)
constexpr double kKinMaxStep = 0.5;             // largest joint step of one Newton iteration (rad)

// x is a number, not NaN or infinite, and |x| <= bound. NaN fails both comparisons.
inline bool Within(double x, double bound) { return x >= -bound && x <= bound; }

// Every x[i] within the bound; all are tested, two at a time, without a branch per element.
inline bool AllWithin(const double *x, int n, double bound) {
    const Pair hi = {bound, bound}, lo = -hi;
    PairMask ok = {-1, -1};
    int i = 0;
    for (; i + 1 < n; i += 2) {
        const Pair v = LoadPair(x + i);
        ok = ok & (v >= lo) & (v <= hi);
    }
    bool all = ok[0] != 0 && ok[1] != 0;
    if (i < n) all = all && Within(x[i], bound);
    return all;
}

// The chain may be used: initialised with a joint count in range.
inline bool ChainReady(const QZKinChain *c) {
    return c->isInit == 1 && c->jointNum >= 1 && c->jointNum <= QZ_KIN_MAX_JOINTS;
}

// Position and rotation of every joint axis and the tool transform, for angles q already checked.
// z[i] is joint i's axis and p[i] a point on it, in base coordinates; either may be null.
void ChainFrames(const QZKinChain &c, const double *q, double *t, double (*z)[3], double (*p)[3]);
// Tool transform t and the Jacobian j (6 x jointNum).
void ForwardJacobian(const QZKinChain &c, const double *q, double *j, double *t);
// Unit quaternion of the rotation block of a 4x4 transform.
void TransformQuat(const double *t, double *quat);
// Rotation vector from qa to qt; inputs already checked.
void OrientationError(const double *qt, const double *qa, double *r);
// The damped solve for a checked Jacobian and twist; report as QZKin_DampedLeastSquares.
std::int32_t DampedLeastSquares(const QZKinChain &c, const double *j, const double *v, double *qdot,
                                double *report);

}  // namespace qz::detail

#endif
