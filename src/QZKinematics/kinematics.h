// Internal entry points of the kinematics module, so that the position IK and the other modules'
// callers reach them without going through an exported name, and the limits every entry point
// checks its inputs against, kept in one place.
#ifndef QZ_KINEMATICS_KINEMATICS_H
#define QZ_KINEMATICS_KINEMATICS_H

#include <cstdint>

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics.h"

// For loops whose bounds are fixed by a template's size: unrolled, the kinematics and the
// factorisations become straight-line code with their operands in registers.
#define QZ_KIN_UNROLL _Pragma("GCC unroll 8")

// Calls F<n>(args...) for the chain's joint count n, 1..8, so that each size gets its own
// fully unrolled code.
#define QZ_KIN_DISPATCH(n, F, ...)         \
    switch (n) {                           \
        case 1: return F<1>(__VA_ARGS__);  \
        case 2: return F<2>(__VA_ARGS__);  \
        case 3: return F<3>(__VA_ARGS__);  \
        case 4: return F<4>(__VA_ARGS__);  \
        case 5: return F<5>(__VA_ARGS__);  \
        case 6: return F<6>(__VA_ARGS__);  \
        case 7: return F<7>(__VA_ARGS__);  \
        default: return F<8>(__VA_ARGS__); \
    }

namespace qz::detail {

constexpr double kKinMaxLength = 1e9;           // largest link length, tool distance, length scale
constexpr double kKinMaxAngle = 1e4;            // largest joint angle or limit (rad)
constexpr double kKinMaxLinkAngle = 4.0 * kPi;  // largest link twist or joint offset (rad)
constexpr double kKinMaxStep = 0.5;             // largest joint step of one Newton iteration (rad)

// x is a number, not NaN or infinite, and |x| <= bound. NaN fails both comparisons.
inline bool Within(double x, double bound) { return x >= -bound && x <= bound; }

// Every x[i] within the bound.
inline bool AllWithin(const double *x, int n, double bound) {
    bool ok = true;
    for (int i = 0; i < n; ++i) ok = Within(x[i], bound) && ok;
    return ok;
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
// The damped solve; report and result as QZKin_DampedLeastSquares.
std::int32_t DampedLeastSquares(const QZKinChain &c, const double *j, const double *v, double *qdot,
                                double *report);

}  // namespace qz::detail

#endif
