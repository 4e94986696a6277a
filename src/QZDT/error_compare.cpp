// Control error comparator: a dead-banded, clamped integral corrector for seven joints.
//
// Per joint, the difference of the two position vectors loses a dead band of 0.15 (errors
// inside it count as none, larger ones are shifted towards zero by the band so the correction
// starts continuously), is clamped to the error limit, and is integrated into a clamped
// integrator. The correction is the gain-weighted sum of integral and error, clamped to the
// output limit. Base joints 0-3 and wrist joints 4-6 differ only in their default gains and
// limits; every clamp tests its upper bound first and lets NaN through.
#include "QZDT.h"

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {
namespace {

constexpr int kJoints = 7;
constexpr int kSlots = kJoints + 1;  // one unused slot at the end of every array
static_assert(QZ_DCTRL_SLOTS == kSlots, "QZ_DCTRL_SLOTS sizes the comparator's arrays");
constexpr int kBaseJoints = 4;
constexpr double kDeadBand = 0.15;

struct JointDefaults {
    double kInteg, kProp, outLmt, errLmt, integLmt;
};
constexpr JointDefaults kBase{0.03, 0.0, 0.9, 1.5, 30.0};
constexpr JointDefaults kWrist{0.02, 0.0, 0.6, 1.0, 30.0};

double Clamp(double v, double lmt) {
    if (v > lmt) return lmt;
    if (v < -lmt) return -lmt;
    return v;
}

double DeadBand(double e) {
    if (Fabs(e) <= kDeadBand) return 0.0;
    if (e > kDeadBand) return e - kDeadBand;
    return e + kDeadBand;
}

int32_t ErrInit(QZDCTRLErrorState *s) {
    for (int j = 0; j < kSlots; ++j) {
        const bool used = j < kJoints;
        const JointDefaults &d = j < kBaseJoints ? kBase : kWrist;
        s->err[j] = 0.0;
        s->integ[j] = 0.0;
        s->kInteg[j] = used ? d.kInteg : 0.0;
        s->kProp[j] = used ? d.kProp : 0.0;
        s->outLmt[j] = used ? d.outLmt : 0.0;
        s->errLmt[j] = used ? d.errLmt : 0.0;
        s->integLmt[j] = used ? d.integLmt : 0.0;
    }
    return 1;
}

int32_t ErrCompare(const double *first, const double *second, QZDCTRLErrorState *s, double *corr) {
    for (int j = 0; j < kJoints; ++j) {
        const double e = DeadBand(second[j] - first[j]);
        s->err[j] = Clamp(e, s->errLmt[j]);
        s->integ[j] = Clamp(s->integ[j] + s->err[j], s->integLmt[j]);
        const double u = s->kInteg[j] * s->integ[j] + s->kProp[j] * s->err[j];
        corr[j] = Clamp(u, s->outLmt[j]);
    }
    return 1;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API int32_t QZ_DCTRL_ErrorCompare_Init(int32_t unused, QZDCTRLErrorState *s) {
    (void)unused;
    return ErrInit(s);
}
QZ_API int32_t QZ_DCTRL_ErrorCompare(int32_t unused, const double *first, const double *second,
                                     QZDCTRLErrorState *s, double *corr) {
    (void)unused;
    return ErrCompare(first, second, s, corr);
}

}  // extern "C"
