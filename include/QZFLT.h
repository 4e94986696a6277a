/**
 * @file
 * @brief QZFLT: per-cycle signal filters of QZMath.
 *
 * Families (record first, then inputs, outputs last; 1 = success, 0 = failure):
 * @verbatim
   averaging filter     QZAVGFState   QZAVGF_On*
   smoothed velocity    QZSMVState    QZSMV_On*
   @endverbatim
 *
 * Records are owned by the caller; a record is used by one thread at a time. Results, aliasing
 * and threads for the whole library: docs/conventions.md.
 */
#ifndef QZ_FLT_H
#define QZ_FLT_H

#include <stdint.h>
#include "QZBaseMath.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Averaging filter ------------------------------------------------------------------- */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief Moving average over the last avgLen samples of up to eight channels sampled together,
 * with the difference quotient of the average between calls.
 *
 * The sliding sum is replaced by a freshly accumulated one at every wrap of the ring, so rounding
 * does not build up over long runs. Zero a new record before its first QZAVGF_OnInit: the other
 * functions tell an initialised record by isInit, so on a record of undefined contents their
 * refusal is meaningless.
 */
typedef struct QZAVGFState {
    double ringBuf[QZ_MAX_CHANNELS][QZ_RING_LEN]; /**< per channel, the last avgLen samples; slot
                                                     ringIdx is the oldest */
    double avgSum[QZ_MAX_CHANNELS];               /**< per channel, sum of the window */
    double avgResum[QZ_MAX_CHANNELS];             /**< per channel, sum of the samples entered since
                                                     ringIdx last wrapped */
    double prevAvg[QZ_MAX_CHANNELS];              /**< per channel, the average output by the
                                                     previous call */
    int32_t chNum;                                /**< channels in use, 1 to 8 */
    int32_t ringIdx;                              /**< slot the next sample overwrites, shared by
                                                     all channels */
    int32_t avgLen;                               /**< window length, 1 to 100 */
    int32_t isInit;                               /**< 1 after a successful QZAVGF_OnInit */
    uint8_t resetPending;                         /**< 1: the next QZAVGF_OnFilt primes the
                                                     window */
    double dt;                                    /**< sample period, the divisor of the derivative
                                                     output */
} QZAVGFState;

/**
 * @brief Sets up the averaging filter and leaves the record waiting to prime.
 * @param[out] s       Record; untouched on failure.
 * @param[in]  chNum   Number of channels, 1..8.
 * @param[in]  avgLen  Window length (samples), 1..100.
 * @param[in]  dt      Sample period, the divisor of the derivative (not checked: 0 makes the
 *                     derivative non-finite).
 * @retval 1 set up.
 * @retval 0 a count is out of range; the record is untouched.
 */
QZ_API int32_t QZAVGF_OnInit(QZAVGFState *s, int32_t chNum, int32_t avgLen, double dt);
/**
 * @brief Makes the next QZAVGF_OnFilt start afresh from its input.
 * @param[in,out] s  Record.
 * @retval 1 done.
 * @retval 0 the record is not initialised.
 */
QZ_API int32_t QZAVGF_OnEmpty(QZAVGFState *s);
/**
 * @brief Filters one sample per channel: the window's mean and its difference quotient.
 *
 * The first call after init or QZAVGF_OnEmpty fills the window with x and gives avg = x,
 * dAvg = 0.
 * @param[in,out] s     Record.
 * @param[in]     x     Array of chNum: one sample per channel.
 * @param[out]    avg   Array of chNum: mean of the window.
 * @param[out]    dAvg  Array of chNum: (avg - previous avg) / dt (units of x per unit of dt).
 * @par Aliasing
 * avg may be the x array; dAvg must be a third array.
 * @retval 1 filtered.
 * @retval 0 the record is not initialised; nothing written.
 */
QZ_API int32_t QZAVGF_OnFilt(QZAVGFState *s, const double *x, double *avg, double *dAvg);

/* ---- Smoothed velocity ------------------------------------------------------------------ */
/* What this family does with NaN, infinite, zero, negative and huge values: docs/bad-input.md */

/**
 * @brief A scalar moved towards a target by a fraction alpha of the remaining distance per
 * update, never by more than stepMax nor less than stepMin.
 *
 * It lands exactly on the target once within stepMin, so it reaches a fixed target in finitely
 * many updates.
 */
typedef struct QZSMVState {
    double value;   /**< the smoothed value, output of the last update */
    double alpha;   /**< fraction of the remaining distance covered per update */
    double stepMax; /**< largest change per update */
    double stepMin; /**< smallest change per update; targets closer than this are taken exactly */
    uint8_t isZero; /**< 1 when -1e-8 < value < 1e-8 */
    uint8_t isOne;  /**< 1 when -1e-8 < value - 1 < 1e-8 */
} QZSMVState;

/**
 * @brief Sets the start value and the smoothing parameters.
 *
 * First sets value = start and the defaults alpha 0.002, stepMax 0.01, stepMin 0.002, flags 0;
 * then takes the given parameters unless one is rejected.
 * @param[out] s        Record.
 * @param[in]  start    Initial value.
 * @param[in]  alpha    Fraction of the remaining distance per update, in [1e-9, 0.9999999999].
 * @param[in]  stepMax  Largest change per update, at least 1e-5.
 * @param[in]  stepMin  Smallest change per update, at least 1e-5 and not above stepMax.
 * @retval 1 parameters taken (a NaN parameter fails none of the tests and is taken).
 * @retval 0 alpha < 1e-9, alpha > 0.9999999999, stepMax < 1e-5, stepMin < 1e-5 or
 * stepMin > stepMax; the defaults stay.
 */
QZ_API int32_t QZSMV_OnInit(QZSMVState *s, double start, double alpha, double stepMax,
                            double stepMin);
/**
 * @brief One update towards target, giving the new value.
 * @param[in,out] s       Record.
 * @param[in]     target  Target value.
 * @param[out]    value   The new value.
 */
QZ_API void QZSMV_OnUpdateV(QZSMVState *s, double target, double *value);
/**
 * @brief One update towards target, giving the new value and the zero and one flags.
 * @param[in,out] s       Record.
 * @param[in]     target  Target value.
 * @param[out]    value   The new value.
 * @param[out]    isZero  1 when -1e-8 < value < 1e-8, else 0.
 * @param[out]    isOne   1 when -1e-8 < value - 1 < 1e-8, else 0.
 */
QZ_API void QZSMV_OnUpdateVZO(QZSMVState *s, double target, double *value, uint8_t *isZero,
                              uint8_t *isOne);
/**
 * @brief One update towards target, giving the zero and one flags only.
 * @param[in,out] s       Record.
 * @param[in]     target  Target value.
 * @param[out]    isZero  1 when -1e-8 < value < 1e-8, else 0.
 * @param[out]    isOne   1 when -1e-8 < value - 1 < 1e-8, else 0.
 */
QZ_API void QZSMV_OnUpdateZO(QZSMVState *s, double target, uint8_t *isZero, uint8_t *isOne);

#ifdef __cplusplus
}
#endif

#endif /* QZ_FLT_H */
