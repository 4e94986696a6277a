/**
 * @file
 * @brief QZDT: motion trackers and per-cycle helpers of QZMath.
 *
 * Families (record first, then inputs, outputs last; 1 = success, 0 = failure):
 * @verbatim
   single-axis tracker          QZVDTState        QZVDT_On*
   N-axis smoothed tracker      QZNSyncDTSState   QZNSyncDTS_On*
   multi-stage tracker          QZVDTMState       QZVDT_On*M
   N-axis estimator             QZNEstState       QZOnInitEst QZNEst_On*
   one-step fitter              OneFitterState    OneFitterInit OneFitterRun
   control error comparator     QZDCTRLErrorState QZ_DCTRL_ErrorCompare*
   N-axis multi-stage tracker   QZNSyncDTSMState  QZNSyncDTS_On*M
   @endverbatim
 *
 * Records are owned by the caller and hold all state between calls; a record is used by one
 * thread at a time, distinct records are independent. Cycle times are given in milliseconds and
 * kept in seconds. Zero a new record before its first use: in the records that carry an isInit
 * field, every operation other than the initialiser refuses (returns 0, touches nothing) while
 * that field is 0. Positions are in the caller's length unit ("units"); an axis array holds one
 * double per axis in use. What each tracker limits, and units for the whole library:
 * docs/conventions.md and docs/units-and-limits.md.
 */
#ifndef QZ_DT_H
#define QZ_DT_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Single-axis tracker ---------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief One axis moved towards its target by a time-optimal law within a velocity and an
 * acceleration limit.
 *
 * Embedded in the N-axis and multi-stage records: its layout is ABI.
 */
typedef struct QZVDTState {
    double pos;            /**< commanded position, the step's output */
    double vel;            /**< velocity (units/s) */
    double accLmt;         /**< acceleration limit (units/s^2) */
    double dt;             /**< integration step (s) */
    double lawStep;        /**< step of the switching law (s), always 0.01 */
    double accStep2;       /**< accLmt * baseDt^2, kept for the caller */
    uint8_t isInit;        /**< 1 once initialised */
    uint8_t resetPending;  /**< 1: the next step snaps to its target */
    double velLmt;         /**< active velocity limit (units/s) */
    uint8_t velLmtPending; /**< 1: a lowered limit waits in velLmtTarget while the axis ramps
                                down */
    double velLmtTarget;   /**< most recently requested velocity limit */
    double baseDt;         /**< cycle time (s) */
} QZVDTState;

/**
 * @brief Initialises the single-axis tracker and leaves the record reset-pending.
 * @param[out] s        Record.
 * @param[in]  cycleMs  Cycle time (ms), clamped to [1, 1000] (below 1 gives 1 ms; a NaN cycle
 *                      time is kept and makes every step NaN).
 * @param[in]  velLmt   Velocity limit (units/s), clamped to [0.1, 200]; NaN takes 200.
 * @param[in]  accLmt   Acceleration limit (units/s^2), clamped to [1, 1000]; NaN takes 1000.
 * @return 1.
 */
QZ_API uint8_t QZVDT_OnInit(QZVDTState *s, double cycleMs, double velLmt, double accLmt);
/**
 * @brief Makes the next step snap to its target (after the axis was moved by other means).
 * @param[in,out] s  Record.
 * @retval 1 done.
 * @retval 0 the record is not initialised; nothing touched.
 */
QZ_API uint8_t QZVDT_OnEmpty(QZVDTState *s);
/**
 * @brief One control cycle towards target.
 *
 * The first step after initialisation or QZVDT_OnEmpty outputs the target itself with zero
 * velocity. The law looks ahead a fixed 10 ms: with cycles up to 7 ms the axis settles on a fixed
 * target without passing it; longer cycles may overshoot, and from about 8.5 ms it may hunt
 * around the target.
 * @param[in,out] s       Record.
 * @param[in]     target  Target position (units).
 * @param[out]    out     The new commanded position (units).
 * @retval 1 stepped.
 * @retval 0 the record is not initialised; nothing touched, out unwritten.
 */
QZ_API uint8_t QZVDT_OnDT(QZVDTState *s, double target, double *out);
/**
 * @brief Requests new velocity and acceleration limits (unclamped).
 *
 * Ignored when both lie within 0.1 of the requested velocity limit and the acceleration limit; a
 * velocity limit below the current speed takes effect after a ramp down at the acceleration
 * limit.
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Velocity limit (units/s).
 * @param[in]     accLmt  Acceleration limit (units/s^2).
 * @retval 1 taken or ignored.
 * @retval 0 the record is not initialised; nothing touched.
 */
QZ_API uint8_t QZVDT_OnSetRunTimeLmt(QZVDTState *s, double velLmt, double accLmt);
/**
 * @brief Requests a new velocity limit (unclamped); ignored within 0.1 of the last request.
 *
 * A limit below the current speed takes effect after a ramp down at the acceleration limit.
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Velocity limit (units/s).
 * @retval 1 taken or ignored.
 * @retval 0 the record is not initialised; nothing touched.
 */
QZ_API uint8_t QZVDT_OnSetRunTimeVel(QZVDTState *s, double velLmt);
/**
 * @brief Sets a new acceleration limit (unclamped); ignored within 0.1 of the current one.
 * @param[in,out] s       Record.
 * @param[in]     accLmt  Acceleration limit (units/s^2).
 * @retval 1 taken or ignored.
 * @retval 0 the record is not initialised; nothing touched.
 */
QZ_API uint8_t QZVDT_OnSetRunTimeAcc(QZVDTState *s, double accLmt);

/* ---- N-axis smoothed tracker ------------------------------------------------------------ */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Up to eight axes stepped together, each by its own single-axis tracker, with each raw
 * output passed through a moving average that also limits jerk.
 *
 * The average's span (3..30 cycles) is the time the acceleration limit takes to build up at the
 * axis's jerk limit: the smoothed motion is limited in jerk as well. The running sum of a ring is
 * replaced by its exact sum every time the ring wraps. An axis tracker whose isInit the caller
 * has cleared is stepped as refusing: its raw output counts as 0.
 */
typedef struct QZNSyncDTSState {
    QZVDTState axis[QZ_MAX_AXES];             /**< single-axis tracker per axis */
    int32_t axisNum;                          /**< axes in use, 1..8 */
    uint8_t isInit;                           /**< 1 once initialised */
    uint8_t resetPending;                     /**< 1: the next step starts the axes afresh at their
                                                 targets */
    double vel[QZ_MAX_AXES];                  /**< smoothed velocity (units/s) */
    double acc[QZ_MAX_AXES];                  /**< smoothed acceleration (units/s^2) */
    double pos[QZ_MAX_AXES];                  /**< smoothed position, the last output */
    double target[QZ_MAX_AXES];               /**< targets of the last step */
    double ringBuf[QZ_MAX_AXES][QZ_RING_LEN]; /**< last raw tracker outputs; the first avgLen slots
                                                 are used */
    int32_t avgLen[QZ_MAX_AXES];              /**< averaging span (cycles), 3..30 */
    double avgLenD[QZ_MAX_AXES];              /**< avgLen as a double, the divisor of the average */
    double avgSum[QZ_MAX_AXES];               /**< running sum of the used slots */
    double avgResum[QZ_MAX_AXES];             /**< sum of the raw outputs entered since ringIdx was
                                                 last 0 */
    int32_t ringIdx[QZ_MAX_AXES];             /**< slot the next raw output overwrites */
} QZNSyncDTSState;

/**
 * @brief Initialises n axes of the N-axis smoothed tracker from per-axis limits, with a reset
 * pending.
 *
 * Each axis's averaging span is ((1000 acc / jerk) / cycleMs) cycles from the unclamped values,
 * truncated and clamped to [3, 30] (a NaN ratio gives 3).
 * @param[out] s        Record.
 * @param[in]  n        Number of axes, 1..8.
 * @param[in]  cycleMs  Cycle time (ms), clamped as by QZVDT_OnInit.
 * @param[in]  velLmt   Axis array of n: velocity limits (units/s), clamped as by QZVDT_OnInit.
 * @param[in]  accLmt   Axis array of n: acceleration limits (units/s^2), clamped as by
 *                      QZVDT_OnInit.
 * @param[in]  jerkLmt  Axis array of n: jerk limits (units/s^3), each in [1, 1e12] (a NaN jerk
 *                      passes).
 * @retval 1 initialised, reset pending.
 * @retval 0 a bad n or jerk limit; the record is left unusable (isInit 0).
 */
QZ_API uint8_t QZNSyncDTS_OnInit(QZNSyncDTSState *s, int32_t n, double cycleMs,
                                 const double *velLmt, const double *accLmt, const double *jerkLmt);
/**
 * @brief Makes the next step start every axis afresh at its target.
 * @param[in,out] s  Record.
 * @retval 1 done.
 * @retval 0 the record is not initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnEmpty(QZNSyncDTSState *s);
/**
 * @brief Run-time velocity and acceleration limits per axis, through QZVDT_OnSetRunTimeLmt.
 *
 * The axes take them in axis order; averaging spans are kept.
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Axis array: velocity limits (units/s).
 * @param[in]     accLmt  Axis array: acceleration limits (units/s^2).
 * @retval 1 every axis took its limits (or ignored them within the dead band).
 * @retval 0 at the first axis that refuses (earlier axes keep theirs), or the record is not
 * initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnSetRunTimeLmt(QZNSyncDTSState *s, const double *velLmt,
                                          const double *accLmt);
/**
 * @brief As QZNSyncDTS_OnSetRunTimeLmt, for velocity limits only (QZVDT_OnSetRunTimeVel).
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Axis array: velocity limits (units/s).
 * @retval 1 every axis took its limit (or ignored it within the dead band).
 * @retval 0 at the first axis that refuses (earlier axes keep theirs), or the record is not
 * initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnSetRunTimeVel(QZNSyncDTSState *s, const double *velLmt);
/**
 * @brief As QZNSyncDTS_OnSetRunTimeLmt, for acceleration limits only (QZVDT_OnSetRunTimeAcc).
 * @param[in,out] s       Record.
 * @param[in]     accLmt  Axis array: acceleration limits (units/s^2).
 * @retval 1 every axis took its limit (or ignored it within the dead band).
 * @retval 0 at the first axis that refuses (earlier axes keep theirs), or the record is not
 * initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnSetRunTimeAcc(QZNSyncDTSState *s, const double *accLmt);
/**
 * @brief One control cycle of every axis towards its target, giving the smoothed positions.
 *
 * The first step after initialisation or emptying outputs the targets, with zero velocity and
 * acceleration.
 * @param[in,out] s       Record.
 * @param[in]     target  Axis array: target positions (units).
 * @param[out]    pos     Axis array: smoothed positions (units).
 * @par Aliasing
 * pos may be the target array.
 * @retval 1 stepped.
 * @retval 0 the record is not initialised; outputs unwritten.
 */
QZ_API uint8_t QZNSyncDTS_OnDT(QZNSyncDTSState *s, const double *target, double *pos);
/**
 * @brief QZNSyncDTS_OnDT that also gives the smoothed velocities and accelerations.
 * @param[in,out] s       Record.
 * @param[in]     target  Axis array: target positions (units).
 * @param[out]    pos     Axis array: smoothed positions (units).
 * @param[out]    vel     Axis array: smoothed velocities (units/s).
 * @param[out]    acc     Axis array: smoothed accelerations (units/s^2).
 * @par Aliasing
 * pos may be the target array; vel and acc are further distinct arrays.
 * @retval 1 stepped.
 * @retval 0 the record is not initialised; outputs unwritten.
 */
QZ_API uint8_t QZNSyncDTS_OnDT2(QZNSyncDTSState *s, const double *target, double *pos, double *vel,
                                double *acc);
/**
 * @brief QZNSyncDTS_OnDT towards the targets of the last step.
 * @param[in,out] s    Record.
 * @param[out]    pos  Axis array: smoothed positions (units).
 * @retval 1 stepped.
 * @retval 0 the record is not initialised; pos unwritten.
 */
QZ_API uint8_t QZNSyncDTS_OnDT_NoChange(QZNSyncDTSState *s, double *pos);
/**
 * @brief Copies the last targets and the smoothed positions, velocities and accelerations.
 * @param[in]  s       Record.
 * @param[out] target  Axis array: targets of the last step (units).
 * @param[out] pos     Axis array: smoothed positions (units).
 * @param[out] vel     Axis array: smoothed velocities (units/s).
 * @param[out] acc     Axis array: smoothed accelerations (units/s^2).
 * @retval 1 copied.
 * @retval 0 not initialised, or a reset is pending; nothing written.
 */
QZ_API uint8_t QZNSyncDTS_OnGetCurPVA(const QZNSyncDTSState *s, double *target, double *pos,
                                      double *vel, double *acc);
/**
 * @brief Copies the smoothed positions, velocities and accelerations, also while a reset is
 * pending.
 *
 * While a reset is pending they are whatever the record last held.
 * @param[in]  s    Record.
 * @param[out] pos  Axis array: smoothed positions (units).
 * @param[out] vel  Axis array: smoothed velocities (units/s).
 * @param[out] acc  Axis array: smoothed accelerations (units/s^2).
 * @retval 1 copied.
 * @retval 0 the record is not initialised; nothing written.
 */
QZ_API uint8_t QZNSyncDTS_OnGetCurPVA_U(const QZNSyncDTSState *s, double *pos, double *vel,
                                        double *acc);

/* ---- Multi-stage single-axis tracker ---------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief A single-axis tracker (stage 0) followed by three correction stages; the commanded
 * position is the sum of the four stage positions.
 *
 * Each correction stage tracks, within a shrinking band, the error the stages before leave. A
 * blend moves the correction stages' positions back into stage 0 while the main error is large.
 * Mode 0 is the plain tracker; any other mode runs the cascade, and mode 1 also slows stage 0 to
 * 69/90 of the velocity limit.
 */
typedef struct QZVDTMState {
    QZVDTState stage[4]; /**< stage 0 the main tracker, 1..3 the correction stages */
    double blend;        /**< share of the correction positions moved into stage 0 per step */
    double corrScale;    /**< correction band k: stages 1, 2, 3 work within 10k, 3k, k */
    int32_t mode;        /**< 0: single stage; other: cascade. Set by the caller (see
                              QZVDT_OnInitM) */
    int32_t targetJump;  /**< sticky: set by QZNSyncDTS_OnDTM when the target jumped */
} QZVDTMState;

/**
 * @brief Initialises the four stages of the multi-stage tracker.
 *
 * Stage 0 gets V (69V/90 in mode 1) and A, stages 1..3 V/6, V/18, V/90 with 2A, 2A, A (each
 * clamped by QZVDT_OnInit); corrScale = 5V/180 clamped to [0.1, 1]. Does NOT store mode: a caller
 * using this record on its own sets s->mode itself.
 * @param[out] s        Record.
 * @param[in]  cycleMs  Cycle time (ms), clamped as by QZVDT_OnInit.
 * @param[in]  velLmt   Velocity limit V (units/s).
 * @param[in]  accLmt   Acceleration limit A (units/s^2).
 * @param[in]  mode     Mode used to share out the limits (not stored).
 * @return 1.
 */
QZ_API uint8_t QZVDT_OnInitM(QZVDTMState *s, double cycleMs, double velLmt, double accLmt,
                             int32_t mode);
/**
 * @brief Makes every stage snap on its next step and clears the blend.
 * @param[in,out] s  Record.
 * @return 1.
 */
QZ_API uint8_t QZVDT_OnEmptyM(QZVDTMState *s);
/**
 * @brief One control cycle of the multi-stage tracker towards target.
 * @param[in,out] s       Record.
 * @param[in]     target  Target position (units).
 * @param[out]    out     The commanded position (units), the sum of the stage positions.
 * @retval 1 stepped.
 * @retval 0 stage 0 is not initialised; out unwritten.
 */
QZ_API uint8_t QZVDT_OnDT_BM(QZVDTMState *s, double target, double *out);
/**
 * @brief Run-time limits (unclamped) for the four stages, through QZVDT_OnSetRunTimeLmt.
 *
 * Stage 0 gets V (69V/90 in mode 1) and A, stages 1..3 V/6, V/18, V/90 with 100A each.
 * corrScale is kept.
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Velocity limit V (units/s).
 * @param[in]     accLmt  Acceleration limit A (units/s^2).
 * @param[in]     mode    Mode used to share out the limits.
 * @return 1.
 */
QZ_API uint8_t QZVDT_OnSetRunTimeLmtM(QZVDTMState *s, double velLmt, double accLmt, int32_t mode);

/* ---- N-axis estimator ------------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Sample-and-hold of jittery position samples for up to 8 axes, with a measured and a
 * smoothed velocity.
 *
 * Samples arrive every cycleMs calls (one call per 1 ms control cycle) with jitter. The record
 * has no isInit field: call QZOnInitEst first; its operations always act and return 1.
 */
typedef struct QZNEstState {
    int32_t axisNum;                /**< number of axes, 1..8 */
    double heldPos[QZ_MAX_AXES];    /**< position handed out on the last call */
    double velEst[QZ_MAX_AXES];     /**< smoothed velocity (units/s), stepped towards velMeas every
                                       call, dropped to 0 after holdLimit calls without a sample */
    double velMeas[QZ_MAX_AXES];    /**< measured velocity after the near-limit cut and the
                                       clamps */
    double lastSample[QZ_MAX_AXES]; /**< latest sample */
    double velRaw[QZ_MAX_AXES];     /**< measured velocity before the cut and the clamps */
    double velLmtCur[QZ_MAX_AXES];  /**< current velocity limit */
    double velLmtMax[QZ_MAX_AXES];  /**< maximum velocity limit */
    double dt;                      /**< sample period (s) */
    int32_t ticksSinceSample;       /**< calls since the last new sample */
    int32_t cycleMsInt;             /**< sample period in whole ms (truncated) */
    int32_t holdLimit;              /**< calls without a sample after which velEst is dropped
                                       (<= 50) */
    int32_t resetPending;           /**< 1: the next step starts afresh from its samples */
    int32_t lastStamp;              /**< stamp of the latest sample */
    uint8_t nearLimit[QZ_MAX_AXES]; /**< 1 while the reference velocity is near its maximum
                                       (hysteresis) */
    int32_t sampleCount;            /**< samples counted towards the next jitter score */
    int32_t jitterSum;              /**< accumulated arrival penalty (saturates at INT32_MAX) */
    double jitterScore;             /**< last jitter score, 0 (regular) to 100, refreshed every 200
                                       samples */
} QZNEstState;

/**
 * @brief Initialises the estimator for n axes, reset-pending.
 *
 * holdLimit = trunc(5 cycleMs) capped at 50; a NaN or out-of-range truncation gives 0 (50 for
 * holdLimit). Leaves velRaw, lastStamp and nearLimit to the first step.
 * @param[out] s          Record.
 * @param[in]  n          Number of axes, 1..8; axisNum keeps n, the axis loops cover at most 8
 *                        and none for n <= 0.
 * @param[in]  cycleMs    Sample period (ms), > 0.
 * @param[in]  velLmtMax  Array of n: maximum velocity limits (units/s).
 * @param[in]  velLmtCur  Array of n: current velocity limits (units/s).
 */
QZ_API void QZOnInitEst(QZNEstState *s, int32_t n, double cycleMs, const double *velLmtMax,
                        const double *velLmtCur);
/**
 * @brief Makes the next estimator step start afresh.
 *
 * Zeroes the held positions and velocity estimates; the jitter score survives.
 * @param[in,out] s  Record.
 * @return 1.
 */
QZ_API int32_t QZNEst_OnEmpty(QZNEstState *s);
/**
 * @brief Sets the current velocity limits, each capped at its maximum.
 * @param[in,out] s          Record.
 * @param[in]     velLmtCur  Array of axisNum: current velocity limits (units/s).
 * @return 1.
 */
QZ_API int32_t QZNEst_OnSetRunTimeLmt(QZNEstState *s, const double *velLmtCur);
/**
 * @brief One control cycle of the estimator: new samples when the stamp changes, held positions
 * out.
 * @param[in,out] s      Record.
 * @param[in]     stamp  Sample stamp; a stamp different from the last one carries new samples
 *                       (stamps wrap modulo 9993).
 * @param[in]     x      Array of axisNum: position samples (units), read on the first step
 *                       after a reset and whenever the stamp is new.
 * @param[out]    out    Array of axisNum: held positions (units).
 * @param[in]     r      Array of axisNum: reference velocities (units/s), read only with a new
 *                       sample, to cut the measured velocity while |r| nears velLmtMax (on above
 *                       0.97, off below 0.85).
 * @par Aliasing
 * out may be x.
 * @return 1.
 */
QZ_API int32_t QZNEst_OnDT(QZNEstState *s, int32_t stamp, const double *x, double *out,
                           const double *r);

/* ---- One-step fitter -------------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief One-pole low-pass filter on up to eight channels: y = x*alpha + (1 - alpha)*y_prev per
 * channel, starting from 0.
 *
 * This record has no isInit field: run it only after OneFitterInit.
 */
typedef struct OneFitterState {
    int32_t axisNum;                 /**< channels in use, as given to OneFitterInit */
    double state[QZ_MAX_CHANNELS];   /**< per channel, the last output */
    double lastOut[QZ_MAX_CHANNELS]; /**< outputs of the last run, for the caller */
    double alpha[QZ_MAX_CHANNELS];   /**< per channel, weight of the new input (1 passes,
                                        0 freezes) */
} OneFitterState;

/**
 * @brief Sets the channel count and coefficients of the one-step fitter.
 *
 * Clears state and lastOut in all eight slots.
 * @param[out] s      Record.
 * @param[in]  n      Number of channels; a count above 8 is kept in axisNum but only eight
 *                    coefficients are read and stored.
 * @param[in]  alpha  Array of min(n, 8): per-channel weight of the new input (not checked).
 */
QZ_API void OneFitterInit(OneFitterState *s, int32_t n, const double *alpha);
/**
 * @brief Filters one sample per channel.
 * @param[in,out] s    Record.
 * @param[in]     x    Array of min(axisNum, 8): one sample per channel.
 * @param[out]    out  Array of min(axisNum, 8): filtered values.
 * @par Aliasing
 * out may be the x array.
 * @return The number of channels filtered, axisNum capped at 8, or 0 (nothing written) when
 * axisNum < 1.
 */
QZ_API int32_t OneFitterRun(OneFitterState *s, const double *x, double *out);

/* ---- Control error comparator ----------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

#define QZ_DCTRL_SLOTS 8 /**< Slots of the comparator's arrays: the seven joints and one unused. */

/**
 * @brief Dead-banded, clamped integral corrector for seven joints.
 *
 * Per joint of seven: the error between two joint vectors passes a dead band of 0.15, is clamped
 * to errLmt, integrated into integ clamped to integLmt, and the correction kInteg*integ +
 * kProp*err is clamped to outLmt. Slot 7 of every array is unused. The caller may overwrite gains
 * and limits after QZ_DCTRL_ErrorCompare_Init.
 */
typedef struct QZDCTRLErrorState {
    double err[QZ_DCTRL_SLOTS];      /**< dead-banded, clamped error of the last call */
    double integ[QZ_DCTRL_SLOTS];    /**< clamped running sum of err */
    double kInteg[QZ_DCTRL_SLOTS];   /**< gain on integ: 0.03 base joints 0-3, 0.02 wrist
                                        joints 4-6 */
    double kProp[QZ_DCTRL_SLOTS];    /**< gain on err: 0 */
    double outLmt[QZ_DCTRL_SLOTS];   /**< correction limit (+-): 0.9 base, 0.6 wrist */
    double errLmt[QZ_DCTRL_SLOTS];   /**< error limit (+-): 1.5 base, 1.0 wrist */
    double integLmt[QZ_DCTRL_SLOTS]; /**< integral limit (+-): 30 */
} QZDCTRLErrorState;

/**
 * @brief Clears the comparator and installs its default gains and limits.
 *
 * Clears err and integ and installs the default gains and limits for joints 0-6 (slot 7 of every
 * array is set to 0).
 * @param[in]  unused  Ignored.
 * @param[out] s       Record.
 * @return 1.
 */
QZ_API int32_t QZ_DCTRL_ErrorCompare_Init(int32_t unused, QZDCTRLErrorState *s);
/**
 * @brief One cycle of the comparator: a correction per joint from second[j] - first[j].
 *
 * For the seven joints j = 0..6.
 * @param[in]     unused  Ignored.
 * @param[in]     first   Array of 7: first joint vector (joint units).
 * @param[in]     second  Array of 7: second joint vector (joint units).
 * @param[in,out] s       Record.
 * @param[out]    corr    Array of 7: corrections (joint units).
 * @par Aliasing
 * corr may be first or second (each joint is read before its correction is written).
 * @return 1.
 */
QZ_API int32_t QZ_DCTRL_ErrorCompare(int32_t unused, const double *first, const double *second,
                                     QZDCTRLErrorState *s, double *corr);

/* ---- N-axis multi-stage tracker --------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief The N-axis smoothed tracker built on multi-stage trackers.
 *
 * One mode for all axes, spans of 5..100 cycles, jerk limits clamped rather than refused, and the
 * running sums recomputed from their rings after every 1000 steps, at most one axis per call. A
 * stage whose isInit the caller has cleared is stepped as refusing: its output counts as 0.
 */
typedef struct QZNSyncDTSMState {
    QZVDTMState axis[QZ_MAX_AXES];            /**< multi-stage tracker per axis */
    int32_t axisNum;                          /**< axes in use, 1..8 */
    uint8_t isInit;                           /**< 1 once initialised */
    uint8_t resetPending;                     /**< 1: the next step starts afresh at the targets */
    double vel[QZ_MAX_AXES];                  /**< smoothed velocity (units/s) */
    double acc[QZ_MAX_AXES];                  /**< smoothed acceleration (units/s^2) */
    double rawPos[QZ_MAX_AXES];               /**< unsmoothed output of each axis's multi-stage
                                                 step */
    double pos[QZ_MAX_AXES];                  /**< smoothed position, the last output */
    double target[QZ_MAX_AXES];               /**< targets of the last step */
    double prevTarget[QZ_MAX_AXES];           /**< targets of the step before, for the jump test */
    double ringBuf[QZ_MAX_AXES][QZ_RING_LEN]; /**< last raw outputs; the first avgLen slots are
                                                 used */
    int32_t avgLen[QZ_MAX_AXES];              /**< averaging span (cycles), 5..100 */
    double avgLenD[QZ_MAX_AXES];              /**< avgLen as a double, the divisor */
    double avgSum[QZ_MAX_AXES];               /**< running sum of the used slots */
    int32_t resumCount[QZ_MAX_AXES];          /**< steps since avgSum was last recomputed from the
                                                 ring */
    int32_t ringIdx[QZ_MAX_AXES];             /**< slot the next raw output overwrites */
} QZNSyncDTSMState;

/**
 * @brief Initialises n axes of the N-axis multi-stage tracker in one mode, with a reset pending.
 *
 * Span: 5 in mode 1, 20 in other non-zero modes, and in mode 0 ((1000 acc / jerk) / cycleMs)
 * cycles (unclamped acc and cycleMs), truncated and clamped to [5, 100] (NaN gives 5).
 * @param[out]    s        Record.
 * @param[in]     n        Number of axes, 1..8.
 * @param[in]     cycleMs  Cycle time (ms), clamped as by QZVDT_OnInit.
 * @param[in]     velLmt   Axis array of n: velocity limits (units/s), as for QZVDT_OnInitM.
 * @param[in]     accLmt   Axis array of n: acceleration limits (units/s^2), as for
 *                         QZVDT_OnInitM.
 * @param[in,out] jerkLmt  Axis array of n: jerk limits (units/s^3), clamped in place to
 *                         [1000, 1e7] (NaN kept).
 * @param[in]     mode     Mode of every axis (see QZVDTMState).
 * @retval 1 initialised, reset pending.
 * @retval 0 a bad n: the record is left unusable, the jerk array untouched.
 */
QZ_API uint8_t QZNSyncDTS_OnInitM(QZNSyncDTSMState *s, int32_t n, double cycleMs,
                                  const double *velLmt, const double *accLmt, double *jerkLmt,
                                  int32_t mode);
/**
 * @brief Makes the next step start every axis afresh at its target.
 * @param[in,out] s  Record.
 * @retval 1 done.
 * @retval 0 the record is not initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnEmptyM(QZNSyncDTSMState *s);
/**
 * @brief Per-axis run-time limits through QZVDT_OnSetRunTimeLmtM with the axis's mode; spans are
 * kept.
 * @param[in,out] s       Record.
 * @param[in]     velLmt  Axis array: velocity limits (units/s).
 * @param[in]     accLmt  Axis array: acceleration limits (units/s^2).
 * @retval 1 set.
 * @retval 0 the record is not initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnSetRunTimeLmtM(QZNSyncDTSMState *s, const double *velLmt,
                                           const double *accLmt);
/**
 * @brief One control cycle of every axis towards its target, giving the smoothed positions.
 *
 * Sets an axis's targetJump when its target moved by more than 1% of stage 0's velocity limit.
 * The first step after initialisation or emptying outputs the targets.
 * @param[in,out] s       Record.
 * @param[in]     target  Axis array: target positions (units).
 * @param[out]    pos     Axis array: smoothed positions (units).
 * @par Aliasing
 * pos may be the target array.
 * @retval 1 stepped.
 * @retval 0 the record is not initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnDTM(QZNSyncDTSMState *s, const double *target, double *pos);
/**
 * @brief One control cycle towards the stored targets (no jump test).
 * @param[in,out] s    Record.
 * @param[out]    pos  Axis array: smoothed positions (units).
 * @retval 1 stepped.
 * @retval 0 not initialised, or a reset is pending.
 */
QZ_API uint8_t QZNSyncDTS_OnDT_UM(QZNSyncDTSMState *s, double *pos);
/**
 * @brief Copies targets, smoothed positions, velocities and accelerations.
 * @param[in]  s       Record.
 * @param[out] target  Axis array: targets of the last step (units).
 * @param[out] pos     Axis array: smoothed positions (units).
 * @param[out] vel     Axis array: smoothed velocities (units/s).
 * @param[out] acc     Axis array: smoothed accelerations (units/s^2).
 * @retval 1 copied.
 * @retval 0 not initialised, or a reset is pending.
 */
QZ_API uint8_t QZNSyncDTS_OnGetCurPVAM(const QZNSyncDTSMState *s, double *target, double *pos,
                                       double *vel, double *acc);
/**
 * @brief Copies smoothed positions, velocities and accelerations, also while a reset is pending.
 * @param[in]  s    Record.
 * @param[out] pos  Axis array: smoothed positions (units).
 * @param[out] vel  Axis array: smoothed velocities (units/s).
 * @param[out] acc  Axis array: smoothed accelerations (units/s^2).
 * @retval 1 copied.
 * @retval 0 the record is not initialised.
 */
QZ_API uint8_t QZNSyncDTS_OnGetCurPVA_UM(const QZNSyncDTSMState *s, double *pos, double *vel,
                                         double *acc);

#ifdef __cplusplus
}
#endif

#endif /* QZ_DT_H */
