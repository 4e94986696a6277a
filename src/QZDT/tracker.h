// Internal entry points of the single-axis tracker, for the trackers that embed it.
#ifndef QZ_DT_TRACKER_H
#define QZ_DT_TRACKER_H

#include <cstdint>

#include "QZDT.h"

namespace qz::detail {

std::uint8_t VdtInit(QZVDTState *s, double cycleMs, double velLmt, double accLmt);
std::uint8_t VdtEmpty(QZVDTState *s);
std::uint8_t VdtStep(QZVDTState *s, double target, double *out);
std::uint8_t VdtSetLmt(QZVDTState *s, double velLmt, double accLmt);
std::uint8_t VdtSetVel(QZVDTState *s, double velLmt);
std::uint8_t VdtSetAcc(QZVDTState *s, double accLmt);

}  // namespace qz::detail

#endif
