/* Prints the layout of every public record, one line per field in declaration order:
 *   RECORD FIELD OFFSET SIZE
 * and one line per record with its size:
 *   RECORD - 0 SIZEOF
 * Bindings in other languages mirror these records and compare their layout with this output. */
#include <stddef.h>
#include <stdio.h>

#include "QZDT.h"
#include "QZFLT.h"
#include "QZQuaternions.h"

#define F(T, f) printf("%s %s %zu %zu\n", #T, #f, offsetof(T, f), sizeof(((T *)0)->f))
#define R(T) printf("%s - 0 %zu\n", #T, sizeof(T))

int main(void) {
    // clang-format off
    R(QZVDTState);
    F(QZVDTState, pos); F(QZVDTState, vel); F(QZVDTState, accLmt); F(QZVDTState, dt);
    F(QZVDTState, lawStep); F(QZVDTState, accStep2); F(QZVDTState, isInit);
    F(QZVDTState, resetPending); F(QZVDTState, velLmt); F(QZVDTState, velLmtPending);
    F(QZVDTState, velLmtTarget); F(QZVDTState, baseDt);

    R(QZNSyncDTSState);
    F(QZNSyncDTSState, axis); F(QZNSyncDTSState, axisNum); F(QZNSyncDTSState, isInit);
    F(QZNSyncDTSState, resetPending); F(QZNSyncDTSState, vel); F(QZNSyncDTSState, acc);
    F(QZNSyncDTSState, pos); F(QZNSyncDTSState, target); F(QZNSyncDTSState, ringBuf);
    F(QZNSyncDTSState, avgLen); F(QZNSyncDTSState, avgLenD); F(QZNSyncDTSState, avgSum);
    F(QZNSyncDTSState, avgResum); F(QZNSyncDTSState, ringIdx);

    R(QZVDTMState);
    F(QZVDTMState, stage); F(QZVDTMState, blend); F(QZVDTMState, corrScale);
    F(QZVDTMState, mode); F(QZVDTMState, targetJump);

    R(QZNEstState);
    F(QZNEstState, axisNum); F(QZNEstState, heldPos); F(QZNEstState, velEst);
    F(QZNEstState, velMeas); F(QZNEstState, lastSample); F(QZNEstState, velRaw);
    F(QZNEstState, velLmtCur); F(QZNEstState, velLmtMax); F(QZNEstState, dt);
    F(QZNEstState, ticksSinceSample); F(QZNEstState, cycleMsInt); F(QZNEstState, holdLimit);
    F(QZNEstState, resetPending); F(QZNEstState, lastStamp); F(QZNEstState, nearLimit);
    F(QZNEstState, sampleCount); F(QZNEstState, jitterSum); F(QZNEstState, jitterScore);

    R(OneFitterState);
    F(OneFitterState, axisNum); F(OneFitterState, state); F(OneFitterState, lastOut);
    F(OneFitterState, alpha);

    R(QZDCTRLErrorState);
    F(QZDCTRLErrorState, err); F(QZDCTRLErrorState, integ); F(QZDCTRLErrorState, kInteg);
    F(QZDCTRLErrorState, kProp); F(QZDCTRLErrorState, outLmt); F(QZDCTRLErrorState, errLmt);
    F(QZDCTRLErrorState, integLmt);

    R(QZNSyncDTSMState);
    F(QZNSyncDTSMState, axis); F(QZNSyncDTSMState, axisNum); F(QZNSyncDTSMState, isInit);
    F(QZNSyncDTSMState, resetPending); F(QZNSyncDTSMState, vel); F(QZNSyncDTSMState, acc);
    F(QZNSyncDTSMState, rawPos); F(QZNSyncDTSMState, pos); F(QZNSyncDTSMState, target);
    F(QZNSyncDTSMState, prevTarget); F(QZNSyncDTSMState, ringBuf); F(QZNSyncDTSMState, avgLen);
    F(QZNSyncDTSMState, avgLenD); F(QZNSyncDTSMState, avgSum); F(QZNSyncDTSMState, resumCount);
    F(QZNSyncDTSMState, ringIdx);

    R(QZAVGFState);
    F(QZAVGFState, ringBuf); F(QZAVGFState, avgSum); F(QZAVGFState, avgResum);
    F(QZAVGFState, prevAvg); F(QZAVGFState, chNum); F(QZAVGFState, ringIdx);
    F(QZAVGFState, avgLen); F(QZAVGFState, isInit); F(QZAVGFState, resetPending);
    F(QZAVGFState, dt);

    R(QZSMVState);
    F(QZSMVState, value); F(QZSMVState, alpha); F(QZSMVState, stepMax); F(QZSMVState, stepMin);
    F(QZSMVState, isZero); F(QZSMVState, isOne);

    R(QZSlerpFactorState);
    F(QZSlerpFactorState, initialized); F(QZSlerpFactorState, theta);
    F(QZSlerpFactorState, sinTheta); F(QZSlerpFactorState, useSpherical);
    // clang-format on
    return 0;
}
