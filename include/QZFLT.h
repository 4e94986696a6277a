/*
 * QZFLT: per-cycle signal filters of QZMath.
 *
 * Families (record first, then inputs, outputs last; 1 = success, 0 = failure):
 *   averaging filter     QZAVGFState   QZAVGF_On*
 *   smoothed velocity    QZSMVState    QZSMV_On*
 *
 * Records are owned by the caller; a record is used by one thread at a time.
 */
#ifndef QZ_FLT_H
#define QZ_FLT_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Averaging filter ------------------------------------------------------------------- */

/* Moving average over the last avgLen samples of up to eight channels sampled together, with the
 * difference quotient of the average between calls. The sliding sum is replaced by a freshly
 * accumulated one at every wrap of the ring, so rounding does not build up over long runs.
 * Zero a new record before its first QZAVGF_OnInit: the other functions tell an initialised
 * record by isInit, so on a record of undefined contents their refusal is meaningless. */
typedef struct QZAVGFState {
    double ringBuf[QZ_MAX_CHANNELS][QZ_RING_LEN]; /* per channel, the last avgLen samples; slot
                                                     ringIdx is the oldest */
    double avgSum[QZ_MAX_CHANNELS];               /* per channel, sum of the window */
    double avgResum[QZ_MAX_CHANNELS];             /* per channel, sum of the samples entered since
                                                     ringIdx last wrapped */
    double prevAvg[QZ_MAX_CHANNELS];              /* per channel, the average output by the previous
                                                     call */
    int32_t chNum;                                /* channels in use, 1 to 8 */
    int32_t ringIdx;                              /* slot the next sample overwrites, shared by all
                                                     channels */
    int32_t avgLen;                               /* window length, 1 to 100 */
    int32_t isInit;                               /* 1 after a successful QZAVGF_OnInit */
    uint8_t resetPending;                         /* 1: the next QZAVGF_OnFilt primes the window */
    double dt;                                    /* sample period, the divisor of the derivative
                                                     output */
} QZAVGFState;

/* Sets up chNum channels (1..8) over a window of avgLen samples (1..100) with sample period dt
 * (not checked: 0 makes the derivative non-finite) and leaves the record waiting to prime.
 * Returns 1, or 0 with the record untouched when a count is out of range. */
QZ_API int32_t QZAVGF_OnInit(QZAVGFState *s, int32_t chNum, int32_t avgLen, double dt);
/* Makes the next QZAVGF_OnFilt start afresh from its input. Returns 1, or 0 before init. */
QZ_API int32_t QZAVGF_OnEmpty(QZAVGFState *s);
/* One sample per channel: avg = mean of the window, dAvg = (avg - previous avg) / dt. The first
 * call after init or QZAVGF_OnEmpty fills the window with x and gives avg = x, dAvg = 0.
 * avg may be the x array; dAvg must be a third array. Returns 1, or 0 (nothing written) before
 * init. */
QZ_API int32_t QZAVGF_OnFilt(QZAVGFState *s, const double *x, double *avg, double *dAvg);

/* ---- Smoothed velocity ------------------------------------------------------------------ */

/* A scalar moved towards a target by a fraction alpha of the remaining distance per update,
 * never by more than stepMax nor less than stepMin, landing exactly on the target once within
 * stepMin; so it reaches a fixed target in finitely many updates. */
typedef struct QZSMVState {
    double value;   /* the smoothed value, output of the last update */
    double alpha;   /* fraction of the remaining distance covered per update */
    double stepMax; /* largest change per update */
    double stepMin; /* smallest change per update; targets closer than this are taken exactly */
    uint8_t isZero; /* 1 when -1e-8 < value < 1e-8 */
    uint8_t isOne;  /* 1 when -1e-8 < value - 1 < 1e-8 */
} QZSMVState;

/* Sets value = start and the defaults alpha 0.002, stepMax 0.01, stepMin 0.002, flags 0; then
 * takes the given parameters and returns 1 unless alpha < 1e-9, alpha > 0.9999999999,
 * stepMax < 1e-5, stepMin < 1e-5 or stepMin > stepMax, when it returns 0 and the defaults stay
 * (a NaN parameter fails none of these tests and is taken). */
QZ_API int32_t QZSMV_OnInit(QZSMVState *s, double start, double alpha, double stepMax,
                            double stepMin);
/* One update towards target; writes the new value to *value. */
QZ_API void QZSMV_OnUpdateV(QZSMVState *s, double target, double *value);
/* One update towards target; writes the new value and the zero and one flags. */
QZ_API void QZSMV_OnUpdateVZO(QZSMVState *s, double target, double *value, uint8_t *isZero,
                              uint8_t *isOne);
/* One update towards target; writes the zero and one flags only. */
QZ_API void QZSMV_OnUpdateZO(QZSMVState *s, double target, uint8_t *isZero, uint8_t *isOne);

#ifdef __cplusplus
}
#endif

#endif /* QZ_FLT_H */
