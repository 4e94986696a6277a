/*
 * QZDT: motion trackers and per-cycle helpers of QZMath.
 *
 * Families (record first, then inputs, outputs last; 1 = success, 0 = failure):
 *   single-axis tracker          QZVDTState        QZVDT_On*
 *   N-axis smoothed tracker      QZNSyncDTSState   QZNSyncDTS_On*
 *   multi-stage tracker          QZVDTMState       QZVDT_On*M
 *   N-axis estimator             QZNEstState       QZOnInitEst QZNEst_On*
 *   one-step fitter              OneFitterState    OneFitterInit OneFitterRun
 *   control error comparator     QZDCTRLErrorState QZ_DCTRL_ErrorCompare*
 *   N-axis multi-stage tracker   QZNSyncDTSMState  QZNSyncDTS_On*M
 *
 * Records are owned by the caller and hold all state between calls; a record is used by one
 * thread at a time, distinct records are independent. Cycle times are given in milliseconds and
 * kept in seconds. Zero a new record before its first use: every operation other than the
 * initialiser refuses (returns 0, touches nothing) while the record's isInit field is 0.
 */
#ifndef QZ_DT_H
#define QZ_DT_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Single-axis tracker ---------------------------------------------------------------- */

/* One axis moved towards its target by a time-optimal law within a velocity and an
 * acceleration limit. Embedded in the N-axis and multi-stage records: its layout is ABI. */
typedef struct QZVDTState {
    double pos;            /* commanded position, the step's output */
    double vel;            /* velocity (units/s) */
    double accLmt;         /* acceleration limit (units/s^2) */
    double dt;             /* integration step (s) */
    double lawStep;        /* step of the switching law (s), always 0.01 */
    double accStep2;       /* accLmt * baseDt^2, kept for the caller */
    uint8_t isInit;        /* 1 once initialised */
    uint8_t resetPending;  /* 1: the next step snaps to its target */
    double velLmt;         /* active velocity limit (units/s) */
    uint8_t velLmtPending; /* 1: a lowered limit waits in velLmtTarget while the axis ramps down */
    double velLmtTarget;   /* most recently requested velocity limit */
    double baseDt;         /* cycle time (s) */
} QZVDTState;

/* Initialises the tracker: velocity limit clamped to [0.1, 200], acceleration to [1, 1000]
 * (a NaN limit takes the upper bound), cycleMs to [1, 1000] ms (below 1 gives 1 ms; a NaN cycle
 * time is kept and makes every step NaN). Leaves the record reset-pending. Returns 1. */
QZ_API uint8_t QZVDT_OnInit(QZVDTState *s, double cycleMs, double velLmt, double accLmt);
/* Makes the next step snap to its target (after the axis was moved by other means). */
QZ_API uint8_t QZVDT_OnEmpty(QZVDTState *s);
/* One control cycle towards target; writes the new commanded position to *out. The first step
 * after initialisation or QZVDT_OnEmpty outputs the target itself with zero velocity. The law
 * looks ahead a fixed 10 ms: with cycles up to 7 ms the axis settles on a fixed target without
 * passing it; longer cycles may overshoot, and from about 8.5 ms it may hunt around the target. */
QZ_API uint8_t QZVDT_OnDT(QZVDTState *s, double target, double *out);
/* Requests new velocity and acceleration limits (unclamped). Ignored when both lie within 0.1
 * of the requested velocity limit and the acceleration limit; a velocity limit below the current
 * speed takes effect after a ramp down at the acceleration limit. */
QZ_API uint8_t QZVDT_OnSetRunTimeLmt(QZVDTState *s, double velLmt, double accLmt);
/* Requests a new velocity limit (unclamped); ignored within 0.1 of the last request. */
QZ_API uint8_t QZVDT_OnSetRunTimeVel(QZVDTState *s, double velLmt);
/* Sets a new acceleration limit (unclamped); ignored within 0.1 of the current one. */
QZ_API uint8_t QZVDT_OnSetRunTimeAcc(QZVDTState *s, double accLmt);

/* ---- N-axis smoothed tracker ------------------------------------------------------------ */

/* ---- Multi-stage single-axis tracker ---------------------------------------------------- */

/* ---- N-axis estimator ------------------------------------------------------------------- */

/* ---- One-step fitter -------------------------------------------------------------------- */

/* ---- Control error comparator ----------------------------------------------------------- */

/* ---- N-axis multi-stage tracker --------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* QZ_DT_H */
