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

/* ---- Smoothed velocity ------------------------------------------------------------------ */

#ifdef __cplusplus
}
#endif

#endif /* QZ_FLT_H */
