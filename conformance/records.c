/* Field layouts of the library's records, in declaration order: what a state line lists and what
 * a record digest covers. Padding is never read, so records compare by value, field by field. */
#include <stddef.h>

#include "QZDT.h"
#include "QZFLT.h"
#include "QZKinematics.h"
#include "QZQuaternions.h"
#include "qzc.h"

#define FIELD(T, f, type, n) \
    { #f, offsetof(T, f), type, n, NULL }
#define EMBED(T, f, sub, n) \
    { #f, offsetof(T, f), 'r', n, &sub }
#define RECORD(T)                                              \
    const qzc_record qzc_rec_##T = {#T, sizeof(T), fields_##T, \
                                    (int)(sizeof fields_##T / sizeof fields_##T[0])}

/* ---- QZDT ---- */
static const qzc_field fields_QZVDTState[] = {
    FIELD(QZVDTState, pos, 'd', 1),          FIELD(QZVDTState, vel, 'd', 1),
    FIELD(QZVDTState, accLmt, 'd', 1),       FIELD(QZVDTState, dt, 'd', 1),
    FIELD(QZVDTState, lawStep, 'd', 1),      FIELD(QZVDTState, accStep2, 'd', 1),
    FIELD(QZVDTState, isInit, 'u', 1),       FIELD(QZVDTState, resetPending, 'u', 1),
    FIELD(QZVDTState, velLmt, 'd', 1),       FIELD(QZVDTState, velLmtPending, 'u', 1),
    FIELD(QZVDTState, velLmtTarget, 'd', 1), FIELD(QZVDTState, baseDt, 'd', 1),
};
RECORD(QZVDTState);

static const qzc_field fields_QZNSyncDTSState[] = {
    EMBED(QZNSyncDTSState, axis, qzc_rec_QZVDTState, 8),
    FIELD(QZNSyncDTSState, axisNum, 'i', 1),
    FIELD(QZNSyncDTSState, isInit, 'u', 1),
    FIELD(QZNSyncDTSState, resetPending, 'u', 1),
    FIELD(QZNSyncDTSState, vel, 'd', 8),
    FIELD(QZNSyncDTSState, acc, 'd', 8),
    FIELD(QZNSyncDTSState, pos, 'd', 8),
    FIELD(QZNSyncDTSState, target, 'd', 8),
    FIELD(QZNSyncDTSState, ringBuf, 'd', 800),
    FIELD(QZNSyncDTSState, avgLen, 'i', 8),
    FIELD(QZNSyncDTSState, avgLenD, 'd', 8),
    FIELD(QZNSyncDTSState, avgSum, 'd', 8),
    FIELD(QZNSyncDTSState, avgResum, 'd', 8),
    FIELD(QZNSyncDTSState, ringIdx, 'i', 8),
};
RECORD(QZNSyncDTSState);

static const qzc_field fields_QZVDTMState[] = {
    EMBED(QZVDTMState, stage, qzc_rec_QZVDTState, 4),
    FIELD(QZVDTMState, blend, 'd', 1),
    FIELD(QZVDTMState, corrScale, 'd', 1),
    FIELD(QZVDTMState, mode, 'i', 1),
    FIELD(QZVDTMState, targetJump, 'i', 1),
};
RECORD(QZVDTMState);

static const qzc_field fields_QZNEstState[] = {
    FIELD(QZNEstState, axisNum, 'i', 1),      FIELD(QZNEstState, heldPos, 'd', 8),
    FIELD(QZNEstState, velEst, 'd', 8),       FIELD(QZNEstState, velMeas, 'd', 8),
    FIELD(QZNEstState, lastSample, 'd', 8),   FIELD(QZNEstState, velRaw, 'd', 8),
    FIELD(QZNEstState, velLmtCur, 'd', 8),    FIELD(QZNEstState, velLmtMax, 'd', 8),
    FIELD(QZNEstState, dt, 'd', 1),           FIELD(QZNEstState, ticksSinceSample, 'i', 1),
    FIELD(QZNEstState, cycleMsInt, 'i', 1),   FIELD(QZNEstState, holdLimit, 'i', 1),
    FIELD(QZNEstState, resetPending, 'i', 1), FIELD(QZNEstState, lastStamp, 'i', 1),
    FIELD(QZNEstState, nearLimit, 'u', 8),    FIELD(QZNEstState, sampleCount, 'i', 1),
    FIELD(QZNEstState, jitterSum, 'i', 1),    FIELD(QZNEstState, jitterScore, 'd', 1),
};
RECORD(QZNEstState);

static const qzc_field fields_OneFitterState[] = {
    FIELD(OneFitterState, axisNum, 'i', 1),
    FIELD(OneFitterState, state, 'd', 8),
    FIELD(OneFitterState, lastOut, 'd', 8),
    FIELD(OneFitterState, alpha, 'd', 8),
};
RECORD(OneFitterState);

static const qzc_field fields_QZDCTRLErrorState[] = {
    FIELD(QZDCTRLErrorState, err, 'd', 8),      FIELD(QZDCTRLErrorState, integ, 'd', 8),
    FIELD(QZDCTRLErrorState, kInteg, 'd', 8),   FIELD(QZDCTRLErrorState, kProp, 'd', 8),
    FIELD(QZDCTRLErrorState, outLmt, 'd', 8),   FIELD(QZDCTRLErrorState, errLmt, 'd', 8),
    FIELD(QZDCTRLErrorState, integLmt, 'd', 8),
};
RECORD(QZDCTRLErrorState);

static const qzc_field fields_QZNSyncDTSMState[] = {
    EMBED(QZNSyncDTSMState, axis, qzc_rec_QZVDTMState, 8),
    FIELD(QZNSyncDTSMState, axisNum, 'i', 1),
    FIELD(QZNSyncDTSMState, isInit, 'u', 1),
    FIELD(QZNSyncDTSMState, resetPending, 'u', 1),
    FIELD(QZNSyncDTSMState, vel, 'd', 8),
    FIELD(QZNSyncDTSMState, acc, 'd', 8),
    FIELD(QZNSyncDTSMState, rawPos, 'd', 8),
    FIELD(QZNSyncDTSMState, pos, 'd', 8),
    FIELD(QZNSyncDTSMState, target, 'd', 8),
    FIELD(QZNSyncDTSMState, prevTarget, 'd', 8),
    FIELD(QZNSyncDTSMState, ringBuf, 'd', 800),
    FIELD(QZNSyncDTSMState, avgLen, 'i', 8),
    FIELD(QZNSyncDTSMState, avgLenD, 'd', 8),
    FIELD(QZNSyncDTSMState, avgSum, 'd', 8),
    FIELD(QZNSyncDTSMState, resumCount, 'i', 8),
    FIELD(QZNSyncDTSMState, ringIdx, 'i', 8),
};
RECORD(QZNSyncDTSMState);

/* ---- QZFLT ---- */
static const qzc_field fields_QZAVGFState[] = {
    FIELD(QZAVGFState, ringBuf, 'd', 800),    FIELD(QZAVGFState, avgSum, 'd', 8),
    FIELD(QZAVGFState, avgResum, 'd', 8),     FIELD(QZAVGFState, prevAvg, 'd', 8),
    FIELD(QZAVGFState, chNum, 'i', 1),        FIELD(QZAVGFState, ringIdx, 'i', 1),
    FIELD(QZAVGFState, avgLen, 'i', 1),       FIELD(QZAVGFState, isInit, 'i', 1),
    FIELD(QZAVGFState, resetPending, 'u', 1), FIELD(QZAVGFState, dt, 'd', 1),
};
RECORD(QZAVGFState);

static const qzc_field fields_QZSMVState[] = {
    FIELD(QZSMVState, value, 'd', 1),   FIELD(QZSMVState, alpha, 'd', 1),
    FIELD(QZSMVState, stepMax, 'd', 1), FIELD(QZSMVState, stepMin, 'd', 1),
    FIELD(QZSMVState, isZero, 'u', 1),  FIELD(QZSMVState, isOne, 'u', 1),
};
RECORD(QZSMVState);

/* ---- QZQuaternions ---- */
static const qzc_field fields_QZSlerpFactorState[] = {
    FIELD(QZSlerpFactorState, initialized, 'u', 1),
    FIELD(QZSlerpFactorState, theta, 'd', 1),
    FIELD(QZSlerpFactorState, sinTheta, 'd', 1),
    FIELD(QZSlerpFactorState, useSpherical, 'u', 1),
};
RECORD(QZSlerpFactorState);

/* Every record a sequence may work on. */
/* ---- QZKinematics ---- */
static const qzc_field fields_QZKinChain[] = {
    FIELD(QZKinChain, jointNum, 'i', 1),
    FIELD(QZKinChain, isInit, 'u', 1),
    FIELD(QZKinChain, alpha, 'd', 8),
    FIELD(QZKinChain, a, 'd', 8),
    FIELD(QZKinChain, d, 'd', 8),
    FIELD(QZKinChain, offset, 'd', 8),
    FIELD(QZKinChain, sinAlpha, 'd', 8),
    FIELD(QZKinChain, cosAlpha, 'd', 8),
    FIELD(QZKinChain, tool, 'd', 16),
    FIELD(QZKinChain, qMin, 'd', 8),
    FIELD(QZKinChain, qMax, 'd', 8),
    FIELD(QZKinChain, lengthScale, 'd', 1),
    FIELD(QZKinChain, sigmaThreshold, 'd', 1),
    FIELD(QZKinChain, lambdaMax, 'd', 1),
};
RECORD(QZKinChain);

const qzc_record *const qzc_records[] = {
    &qzc_rec_QZVDTState,         &qzc_rec_QZNSyncDTSState, &qzc_rec_QZVDTMState,
    &qzc_rec_QZNEstState,        &qzc_rec_OneFitterState,  &qzc_rec_QZDCTRLErrorState,
    &qzc_rec_QZNSyncDTSMState,   &qzc_rec_QZAVGFState,     &qzc_rec_QZSMVState,
    &qzc_rec_QZSlerpFactorState, &qzc_rec_QZKinChain,
};
const int qzc_record_count = (int)(sizeof qzc_records / sizeof qzc_records[0]);
