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
 * kept in seconds. Zero a new record before its first use: in the records that carry an isInit
 * field, every operation other than the initialiser refuses (returns 0, touches nothing) while
 * that field is 0.
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

/* Sample-and-hold of position samples that arrive every cycleMs calls (one call per 1 ms
 * control cycle) with jitter, for up to 8 axes, with a measured and a smoothed velocity. The
 * record has no isInit field: call QZOnInitEst first; its operations always act and return 1. */
typedef struct QZNEstState {
    int32_t axisNum;        /* number of axes, 1..8 */
    double heldPos[8];      /* position handed out on the last call */
    double velEst[8];       /* smoothed velocity (units/s), stepped towards velMeas every call,
                               dropped to 0 after holdLimit calls without a sample */
    double velMeas[8];      /* measured velocity after the near-limit cut and the clamps */
    double lastSample[8];   /* latest sample */
    double velRaw[8];       /* measured velocity before the cut and the clamps */
    double velLmtCur[8];    /* current velocity limit */
    double velLmtMax[8];    /* maximum velocity limit */
    double dt;              /* sample period (s) */
    int32_t ticksSinceSample; /* calls since the last new sample */
    int32_t cycleMsInt;     /* sample period in whole ms (truncated) */
    int32_t holdLimit;      /* calls without a sample after which velEst is dropped (<= 50) */
    int32_t resetPending;   /* 1: the next step starts afresh from its samples */
    int32_t lastStamp;      /* stamp of the latest sample */
    uint8_t nearLimit[8];   /* 1 while the reference velocity is near its maximum (hysteresis) */
    int32_t sampleCount;    /* samples counted towards the next jitter score */
    int32_t jitterSum;      /* accumulated arrival penalty (saturates at INT32_MAX) */
    double jitterScore;     /* last jitter score, 0 (regular) to 100, refreshed every 200 samples */
} QZNEstState;

/* Initialises n axes (1..8; axisNum keeps n, the axis loops cover at most 8 and none for n <= 0)
 * with a sample period of cycleMs ms (> 0) and the maximum and current velocity limits (arrays
 * of n). holdLimit = trunc(5 cycleMs) capped at 50; a NaN or out-of-range truncation gives 0 (50
 * for holdLimit). Leaves velRaw, lastStamp and nearLimit to the first step; reset-pending. */
QZ_API void QZOnInitEst(QZNEstState *s, int32_t n, double cycleMs, const double *velLmtMax,
                        const double *velLmtCur);
/* Makes the next step start afresh and zeroes the held positions and velocity estimates; the
 * jitter score survives. Returns 1. */
QZ_API int32_t QZNEst_OnEmpty(QZNEstState *s);
/* Sets the current velocity limits (array of axisNum), each capped at its maximum. Returns 1. */
QZ_API int32_t QZNEst_OnSetRunTimeLmt(QZNEstState *s, const double *velLmtCur);
/* One control cycle: a stamp different from the last one carries new samples x (stamps wrap
 * modulo 9993). Writes the held positions to out (may be x) and reads the reference velocities
 * r only with a new sample, to cut the measured velocity while |r| nears velLmtMax (on above
 * 0.97, off below 0.85). Returns 1. */
QZ_API int32_t QZNEst_OnDT(QZNEstState *s, int32_t stamp, const double *x, double *out,
                           const double *r);

/* ---- One-step fitter -------------------------------------------------------------------- */

/* One-pole low-pass filter on up to eight channels: y = x*alpha + (1 - alpha)*y_prev per channel,
 * starting from 0. This record has no isInit field: run it only after OneFitterInit. */
typedef struct OneFitterState {
    int32_t axisNum;    /* channels in use, as given to OneFitterInit */
    double state[8];    /* per channel, the last output */
    double lastOut[8];  /* outputs of the last run, for the caller */
    double alpha[8];    /* per channel, weight of the new input (1 passes, 0 freezes) */
} OneFitterState;

/* Sets n channels with coefficients alpha[0..n-1] (not checked) and clears state and lastOut
 * in all eight slots. A count above 8 is kept in axisNum but only eight coefficients are read
 * and stored. */
QZ_API void OneFitterInit(OneFitterState *s, int32_t n, const double *alpha);
/* Filters one sample per channel into out (which may be the x array). Returns the number of
 * channels filtered, axisNum capped at 8, or 0 (nothing written) when axisNum < 1. */
QZ_API int32_t OneFitterRun(OneFitterState *s, const double *x, double *out);

/* ---- Control error comparator ----------------------------------------------------------- */

/* Per joint of seven: the error between two joint vectors passes a dead band of 0.15, is
 * clamped to errLmt, integrated into integ clamped to integLmt, and the correction
 * kInteg*integ + kProp*err is clamped to outLmt. Slot 7 of every array is unused. The caller
 * may overwrite gains and limits after QZ_DCTRL_ErrorCompare_Init. */
typedef struct QZDCTRLErrorState {
    double err[8];      /* dead-banded, clamped error of the last call */
    double integ[8];    /* clamped running sum of err */
    double kInteg[8];   /* gain on integ: 0.03 base joints 0-3, 0.02 wrist joints 4-6 */
    double kProp[8];    /* gain on err: 0 */
    double outLmt[8];   /* correction limit (+-): 0.9 base, 0.6 wrist */
    double errLmt[8];   /* error limit (+-): 1.5 base, 1.0 wrist */
    double integLmt[8]; /* integral limit (+-): 30 */
} QZDCTRLErrorState;

/* Clears err and integ and installs the default gains and limits for joints 0-6 (slot 7 of
 * every array is set to 0). The int argument is ignored. Returns 1. */
QZ_API int32_t QZ_DCTRL_ErrorCompare_Init(int32_t unused, QZDCTRLErrorState *s);
/* One cycle: corr[j] from the error second[j] - first[j] for j = 0..6. corr may be first or
 * second (each joint is read before its correction is written). The int argument is ignored.
 * Returns 1. */
QZ_API int32_t QZ_DCTRL_ErrorCompare(int32_t unused, const double *first, const double *second,
                                     QZDCTRLErrorState *s, double *corr);

/* ---- N-axis multi-stage tracker --------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* QZ_DT_H */
