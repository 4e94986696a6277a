/**
 * @file
 * @brief QZKinematics: serial-chain kinematics, damped least squares and tracker lead of QZMath.
 *
 * Families:
 * @verbatim
   chain                 QZKinChain QZKin_ChainInit QZKin_SetDamping
   forward kinematics    QZKin_Forward QZKin_ForwardPosQuat QZKin_Jacobian
   orientation error     QZKin_OrientationError
   damped least squares  QZKin_DampedLeastSquares
   tracker lead          QZKin_TrackerLead
   position IK           QZKin_SolvePosition
   @endverbatim
 *
 * A chain is built once from a modified Denavit-Hartenberg table of 1 to 8 revolute joints: link
 * i is RotX(alpha) TransX(a) RotZ(theta) TransZ(d), with theta = q[i] + offset, and the tool sits
 * at a fixed transform from the last joint's frame. Lengths are in the caller's unit, angles in
 * radians. Jacobians are 6 x n row-major (element [i][j] at n*i + j): rows 0-2 the linear
 * velocity of the tool point, rows 3-5 the angular velocity, both in base axes.
 *
 * Unlike the rest of the C API, these functions check their inputs: a NaN, infinite or absurd
 * value (a length beyond 1e9, an angle beyond 1e4 rad) is refused with a negative result and the
 * outputs are left unwritten. Every function is reentrant and does bounded work with no
 * allocation. The chain record holds no pointers: it may be copied byte for byte.
 * Frames, damping and lead explained: docs/kinematics.md.
 */
#ifndef QZ_KINEMATICS_H
#define QZ_KINEMATICS_H

#include <stdint.h>
#include "QZBaseMath.h"
#include "QZDT.h"

#define QZ_KIN_MAX_JOINTS 8  /**< Joints of a chain at most. */
#define QZ_KIN_MAX_ITER 1000 /**< Largest iteration cap QZKin_SolvePosition accepts. */

/* Results of the kinematics functions: 1 (or 0 where stated) on success, negative on refusal. */
#define QZ_KIN_OK 1           /**< Done. */
#define QZ_KIN_ERR_COUNT (-1) /**< Joint count outside 1..8, or the chain is not initialised. */
#define QZ_KIN_ERR_TABLE (-2) /**< A link entry is NaN, infinite or absurd. */
#define QZ_KIN_ERR_TOOL (-3)  /**< The tool is not a finite rigid transform. */
#define QZ_KIN_ERR_LIMITS \
    (-4) /**< A joint limit is NaN or absurd, or a minimum above its maximum. */
#define QZ_KIN_ERR_INPUT (-5)    /**< A per-call input or parameter is NaN, infinite or absurd. */
#define QZ_KIN_ERR_SINGULAR (-6) /**< Singular Jacobian with no damping allowed (lambdaMax 0). */

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief A serial chain of revolute joints, built by QZKin_ChainInit; read-only afterwards.
 */
typedef struct QZKinChain {
    int32_t jointNum;                   /**< joints, 1..8; 0 while not initialised */
    uint8_t isInit;                     /**< 1 once initialised */
    double alpha[QZ_KIN_MAX_JOINTS];    /**< link twist (rad) */
    double a[QZ_KIN_MAX_JOINTS];        /**< link length along the previous x axis */
    double d[QZ_KIN_MAX_JOINTS];        /**< link offset along the joint axis */
    double offset[QZ_KIN_MAX_JOINTS];   /**< joint angle at q = 0 (rad) */
    double sinAlpha[QZ_KIN_MAX_JOINTS]; /**< sine of alpha, formed once */
    double cosAlpha[QZ_KIN_MAX_JOINTS]; /**< cosine of alpha, formed once */
    double tool[16];                    /**< last joint frame to tool, 4x4 row-major */
    double qMin[QZ_KIN_MAX_JOINTS];     /**< lower joint limits (rad) */
    double qMax[QZ_KIN_MAX_JOINTS];     /**< upper joint limits (rad) */
    double lengthScale;                 /**< length that makes the linear rows unitless */
    double sigmaThreshold;              /**< unitless smallest singular value where damping
                                                 starts */
    double lambdaMax;                   /**< damping factor at the singularity */
} QZKinChain;

/* ---- Chain ------------------------------------------------------------------------------ */

/**
 * @brief Builds a chain from a modified DH table, a tool transform and joint limits.
 *
 * The damping starts at its defaults: length scale the sum of |a|, |d| and the tool's distance
 * (1 if that is 0), threshold 0.01, lambdaMax 0.01 (QZKin_SetDamping changes them).
 * @param[out] c     Chain; on refusal left unwritten.
 * @param[in]  n     Joints, 1..8.
 * @param[in]  dh    n rows of alpha (rad), a, d, theta offset (rad); |alpha|, |offset| <= 4 pi,
 *                   |a|, |d| <= 1e9.
 * @param[in]  tool  Last joint frame to tool, 4x4 (16), a rotation orthonormal to 1e-9, bottom
 *                   row 0 0 0 1; NULL for none (the identity).
 * @param[in]  qMin  n lower joint limits (rad), NULL for -1e4.
 * @param[in]  qMax  n upper joint limits (rad), NULL for 1e4.
 * @return QZ_KIN_OK, or QZ_KIN_ERR_COUNT, _TABLE, _TOOL or _LIMITS.
 */
QZ_API int32_t QZKin_ChainInit(QZKinChain *c, int32_t n, const double *dh, const double *tool,
                               const double *qMin, const double *qMax);
/**
 * @brief Sets the damping of QZKin_DampedLeastSquares and QZKin_SolvePosition.
 *
 * The linear rows of a Jacobian and of a twist are divided by lengthScale, so that sigma, the
 * smallest singular value of that unitless Jacobian, means the same in any length unit. Below
 * sigmaThreshold the damping lambda^2 = (1 - (sigma/sigmaThreshold)^2) lambdaMax^2 is applied.
 * @param[in,out] c               Initialised chain; unchanged on refusal.
 * @param[in]     lengthScale     In (0, 1e9].
 * @param[in]     sigmaThreshold  In (0, 1].
 * @param[in]     lambdaMax       In [0, 1]; 0 turns damping off.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT (chain not initialised) or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_SetDamping(QZKinChain *c, double lengthScale, double sigmaThreshold,
                                double lambdaMax);

/* ---- Forward kinematics ----------------------------------------------------------------- */

/**
 * @brief Tool transform in the base frame for joint angles q.
 * @param[in]  c  Chain.
 * @param[in]  q  Joint angles (rad), jointNum of them, |q| <= 1e4 (limits are not applied).
 * @param[out] t  4x4 transform (16); unwritten on refusal.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_Forward(const QZKinChain *c, const double *q, double *t);
/**
 * @brief Tool pose for joint angles q as x, y, z, qx, qy, qz, qw (unit quaternion).
 * @param[in]  c     Chain.
 * @param[in]  q     Joint angles (rad), as for QZKin_Forward.
 * @param[out] pose  PosQuat pose (7); unwritten on refusal.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_ForwardPosQuat(const QZKinChain *c, const double *q, double *pose);
/**
 * @brief Geometric Jacobian at the tool point in base axes, and the tool transform with it.
 *
 * Column i is (z_i x (p_tool - p_i), z_i) for joint i's axis z_i through p_i, per rad/s.
 * @param[in]  c  Chain.
 * @param[in]  q  Joint angles (rad), as for QZKin_Forward.
 * @param[out] j  6 x jointNum row-major; unwritten on refusal.
 * @param[out] t  Tool transform (16), or NULL.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_Jacobian(const QZKinChain *c, const double *q, double *j, double *t);

/* ---- Orientation error ------------------------------------------------------------------ */

/**
 * @brief Rotation vector (rad, base axes) that turns the orientation qActual into qTarget.
 *
 * The angle is in [0, pi] and correct to a few ulps everywhere, also within 1e-8 rad of 0 and
 * pi. The quaternions need not be of unit length (their lengths cancel).
 * @param[in]  qTarget  Quaternion (4), x y z w, squared length in [1e-16, 1e16].
 * @param[in]  qActual  Quaternion (4), the same.
 * @param[out] r        Rotation vector (3); unwritten on refusal. May alias neither input.
 * @return QZ_KIN_OK or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_OrientationError(const double *qTarget, const double *qActual, double *r);

/* ---- Damped least squares --------------------------------------------------------------- */

/**
 * @brief Joint velocities for a twist: qdot = Jn^T (Jn Jn^T + lambda^2 I)^-1 vn.
 *
 * Jn and vn are j and v with their linear rows divided by the chain's length scale; lambda rises
 * from 0 as the estimated smallest singular value sigma of Jn falls below the chain's threshold
 * (QZKin_SetDamping). With fewer than six joints the equal form (Jn^T Jn + lambda^2 I)^-1 Jn^T vn
 * is used, and sigma is the smallest of their jointNum singular values.
 * @param[in]  c       Chain (joint count and damping).
 * @param[in]  j       Jacobian, 6 x jointNum, as QZKin_Jacobian writes it.
 * @param[in]  v       Twist (6): linear velocity (units/s), angular velocity (rad/s).
 * @param[out] qdot    Joint velocities (rad/s), jointNum; unwritten on refusal.
 * @param[out] report  Two values or NULL: sigma (unitless) and the lambda applied.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT, QZ_KIN_ERR_SINGULAR, or QZ_KIN_ERR_INPUT for a NaN or
 *         infinite entry, or one that overflows the solve (any beyond 1e9 is then named so).
 */
QZ_API int32_t QZKin_DampedLeastSquares(const QZKinChain *c, const double *j, const double *v,
                                        double *qdot, double *report);

/* ---- Tracker lead ----------------------------------------------------------------------- */

/**
 * @brief How far ahead of a moving path to place each axis's target of an N-axis tracker.
 *
 * The tracker trails a target moving at speed v by L(v) = (max(|v|, A h) + A h) / (2A) + h -
 * cycle + (avgLen - 1) cycle / 2 seconds, with A, h, cycle and avgLen of that axis;
 * lead = v L + a L^2 / 2 (see docs/streaming.md).
 * @param[in]  s     Initialised N-axis tracker.
 * @param[in]  v     Path velocity per axis (units/s), axisNum of them.
 * @param[in]  a     Path acceleration per axis (units/s^2), or NULL for none.
 * @param[out] lead  Lead per axis (units), axisNum; unwritten on refusal.
 * @param[out] lag   Lag L per axis (s), or NULL.
 * @return QZ_KIN_OK, QZ_KIN_ERR_COUNT (tracker not initialised) or QZ_KIN_ERR_INPUT.
 */
QZ_API int32_t QZKin_TrackerLead(const QZNSyncDTSState *s, const double *v, const double *a,
                                 double *lead, double *lag);

/* ---- Position IK ------------------------------------------------------------------------ */

/**
 * @brief Joint angles that put the tool at a pose: Newton steps through the damped solver.
 *
 * From the seed (clamped into the limits), each iteration solves the damped system for the pose
 * error, limits the largest joint step to 0.5 rad and clamps the joints into their limits, at
 * most maxIter times.
 * @param[in]  c           Chain.
 * @param[in]  pose        Target PosQuat pose (7); the quaternion is normalised.
 * @param[in]  seed        Starting joint angles (rad), jointNum.
 * @param[in]  maxIter     Iteration cap, 1..QZ_KIN_MAX_ITER.
 * @param[in]  tolPos      Position tolerance (units), > 0.
 * @param[in]  tolRot      Orientation tolerance (rad), > 0.
 * @param[out] q           Joint angles (rad), jointNum: the solution, or the last iterate.
 * @param[out] residual    Two values: position error (units) and orientation error (rad) at q.
 * @param[out] iterations  Newton steps taken, or NULL.
 * @retval 1 converged: both errors within their tolerances.
 * @retval 0 not converged within maxIter; q and residual hold the last iterate.
 * @retval <0 refused (QZ_KIN_ERR_COUNT, QZ_KIN_ERR_INPUT); nothing written.
 */
QZ_API int32_t QZKin_SolvePosition(const QZKinChain *c, const double *pose, const double *seed,
                                   int32_t maxIter, double tolPos, double tolRot, double *q,
                                   double *residual, int32_t *iterations);

#ifdef __cplusplus
}
#endif

#endif /* QZ_KINEMATICS_H */
