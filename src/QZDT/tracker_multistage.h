// Internal entry points of the multi-stage tracker, for the N-axis multi-stage tracker.
#ifndef QZ_DT_TRACKER_MULTISTAGE_H
#define QZ_DT_TRACKER_MULTISTAGE_H

#include <cstdint>

#include "QZDT.h"

namespace qz::detail {

std::uint8_t VdtmInit(QZVDTMState *s, double cycleMs, double velLmt, double accLmt,
                      std::int32_t mode);
std::uint8_t VdtmEmpty(QZVDTMState *s);
std::uint8_t VdtmStep(QZVDTMState *s, double target, double *out);
std::uint8_t VdtmSetLmt(QZVDTMState *s, double velLmt, double accLmt, std::int32_t mode);

}  // namespace qz::detail

#endif
