// The steady lead of the N-axis smoothed tracker.
//
// A single-axis tracker judges its error as if the target stood still, with a law that looks a
// fixed h ahead; behind a target moving at speed v it settles at the speed v, at the distance
// where the law asks for no acceleration. As a time that distance is
//     L(v) = (max(|v|, A h) + A h) / (2A) + h - cycle,
// and the N-axis tracker's moving average adds (avgLen - 1) / 2 cycles. Placing the target
// v L + a L^2 / 2 ahead of the path makes the output arrive on the path at constant speed.
// Everything is read from the tracker's record at the call, so a limit changed at run time is
// taken into account at once.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"

namespace qz::detail {
namespace {

constexpr double kMaxPathRate = 1e9;  // largest path velocity or acceleration accepted

double SteadyLag(const QZNSyncDTSState &s, int i, double v) {
    const QZVDTState &axis = s.axis[i];
    const double h = axis.lawStep, ah = axis.accLmt * h;
    const double speed = Max(Fabs(v), ah);
    return (speed + ah) / (2.0 * axis.accLmt) + h - axis.dt + 0.5 * (s.avgLen[i] - 1) * axis.dt;
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_TrackerLead(const QZNSyncDTSState *s, const double *v, const double *a,
                                 double *lead, double *lag) {
    using namespace qz::detail;
    if (s->isInit != 1 || s->axisNum < 1 || s->axisNum > QZ_MAX_AXES) return QZ_KIN_ERR_COUNT;
    const int n = s->axisNum;
    const bool hasAcc = a != nullptr, hasLag = lag != nullptr;
    if (!AllWithin(v, n, kMaxPathRate) || (hasAcc && !AllWithin(a, n, kMaxPathRate)))
        return QZ_KIN_ERR_INPUT;
    // A record whose limits were set to NaN (the trackers keep a NaN cycle time) has no lag.
    for (int i = 0; i < n; ++i)
        if (!(s->axis[i].accLmt > 0.0) || !Within(s->axis[i].dt, 1.0)) return QZ_KIN_ERR_INPUT;
    for (int i = 0; i < n; ++i) {
        const double l = SteadyLag(*s, i, v[i]);
        const double acc = hasAcc ? a[i] : 0.0;
        lead[i] = v[i] * l + 0.5 * acc * l * l;
        if (hasLag) lag[i] = l;
    }
    return QZ_KIN_OK;
}

}  // extern "C"
