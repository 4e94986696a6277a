// Bounded position IK: Newton steps through the damped least-squares solver.
//
// Each iteration forms the tool pose and Jacobian at q, the pose error as a twist (the position
// difference and the rotation vector from the tool's orientation to the target's), and the
// joint step that the damped solver gives for it. The step is scaled down so that no joint moves
// more than kKinMaxStep, which keeps the linearisation meaningful far from the solution, and the
// joints are clamped into their limits. The damping keeps the step finite where the arm is
// stretched or folded. Work is bounded by the iteration cap; the result is deterministic.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"
#include "QZQuaternions/quaternion.h"

namespace qz::detail {
namespace {

inline double Clamp(double x, double lo, double hi) { return x < lo ? lo : (x > hi ? hi : x); }

// Pose error at q as a twist (position difference, rotation vector) and its two norms.
void PoseError(const double *t, const double *pose, double *err, double *residual) {
    double have[4];
    TransformQuat(t, have);
    for (int k = 0; k < 3; ++k) err[k] = pose[k] - t[4 * k + 3];
    OrientationError(pose + 3, have, err + 3);
    residual[0] = Sqrt(err[0] * err[0] + err[1] * err[1] + err[2] * err[2]);
    residual[1] = Sqrt(err[3] * err[3] + err[4] * err[4] + err[5] * err[5]);
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_SolvePosition(const QZKinChain *c, const double *pose, const double *seed,
                                   int32_t maxIter, double tolPos, double tolRot, double *q,
                                   double *residual, int32_t *iterations) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    const int n = c->jointNum;
    double target[7];
    for (int k = 0; k < 7; ++k) target[k] = pose[k];
    if (!AllWithin(target, 3, kKinMaxLength) || !AllWithin(target + 3, 4, 2.0) ||
        QuatNormalize(target + 3) == 0 || !AllWithin(seed, n, kKinMaxAngle) || maxIter < 1 ||
        maxIter > QZ_KIN_MAX_ITER || !(tolPos > 0.0 && tolPos <= kKinMaxLength) ||
        !(tolRot > 0.0 && tolRot <= kPi))
        return QZ_KIN_ERR_INPUT;

    double x[QZ_KIN_MAX_JOINTS];
    for (int i = 0; i < n; ++i) x[i] = Clamp(seed[i], c->qMin[i], c->qMax[i]);
    double j[6 * QZ_KIN_MAX_JOINTS], t[16], err[6], res[2];
    int32_t it = 0;
    std::int32_t converged = 0;
    for (;;) {
        ForwardJacobian(*c, x, j, t);
        PoseError(t, target, err, res);
        if (res[0] <= tolPos && res[1] <= tolRot) {
            converged = 1;
            break;
        }
        if (it == maxIter) break;
        double dq[QZ_KIN_MAX_JOINTS];
        // Damping is on (the chain's lambdaMax), or the refusal below ends the search.
        if (DampedLeastSquares(*c, j, err, dq, nullptr) != QZ_KIN_OK) break;
        double largest = 0.0;
        for (int i = 0; i < n; ++i) largest = Max(largest, Fabs(dq[i]));
        const double scale = largest > kKinMaxStep ? kKinMaxStep / largest : 1.0;
        for (int i = 0; i < n; ++i) x[i] = Clamp(x[i] + scale * dq[i], c->qMin[i], c->qMax[i]);
        ++it;
    }
    for (int i = 0; i < n; ++i) q[i] = x[i];
    residual[0] = res[0];
    residual[1] = res[1];
    if (iterations != nullptr) *iterations = it;
    return converged;
}

}  // extern "C"
