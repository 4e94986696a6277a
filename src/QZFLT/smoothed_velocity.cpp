// Smoothed velocity: a rate-limited exponential smoother for one scalar command.
//
// Plain exponential smoothing approaches its target forever, with steps that shrink
// geometrically. Here the smoothed step is clamped to [-stepMax, stepMax], and a step smaller
// than stepMin is replaced by a full stepMin step, or by the target itself once the target lies
// within stepMin. The value therefore reaches a fixed target exactly, after finitely many
// updates, and the zero and one flags can be tested by the caller without a tolerance of its own.
//
// All comparisons are strict: a step of exactly stepMin is taken as a smoothed step, and a
// target exactly stepMin away is approached by one stepMin step rather than taken.
#include "QZFLT.h"

namespace qz::detail {
namespace {

constexpr double kDefaultAlpha = 0.002;
constexpr double kDefaultStepMax = 0.01;
constexpr double kDefaultStepMin = 0.002;
constexpr double kAlphaMin = 1e-9;
constexpr double kAlphaMax = 0.9999999999;
constexpr double kStepFloor = 1e-5;
constexpr double kFlagBand = 1e-8;

int32_t SmvInit(QZSMVState *s, double start, double alpha, double stepMax, double stepMin) {
    s->value = start;
    s->alpha = kDefaultAlpha;
    s->stepMax = kDefaultStepMax;
    s->stepMin = kDefaultStepMin;
    s->isZero = 0;
    s->isOne = 0;
    if (alpha < kAlphaMin || alpha > kAlphaMax || stepMax < kStepFloor || stepMin < kStepFloor ||
        stepMin > stepMax) {
        return 0;
    }
    s->alpha = alpha;
    s->stepMax = stepMax;
    s->stepMin = stepMin;
    return 1;
}

void SmvUpdate(QZSMVState *s, double x) {
    const double v = s->value;
    const double a = s->alpha;
    const double step = ((1.0 - a) * v + a * x) - v;
    double t = step;
    if (t > s->stepMax) t = s->stepMax;
    if (t < -s->stepMax) t = -s->stepMax;
    const double lo = s->stepMin;
    if (-lo < t && t < lo) {
        const double d = x - v;
        if (-lo < d && d < lo) {
            s->value = x;
        } else if (d > 0.0) {
            s->value = v + lo;
        } else {
            s->value = v - lo;
        }
    } else {
        s->value = v + t;
    }
    const double w = s->value;
    s->isZero = (-kFlagBand < w && w < kFlagBand) ? 1 : 0;
    const double w1 = w - 1.0;
    s->isOne = (-kFlagBand < w1 && w1 < kFlagBand) ? 1 : 0;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API int32_t QZSMV_OnInit(QZSMVState *s, double start, double alpha, double stepMax,
                            double stepMin) {
    return SmvInit(s, start, alpha, stepMax, stepMin);
}

QZ_API void QZSMV_OnUpdateV(QZSMVState *s, double target, double *value) {
    SmvUpdate(s, target);
    *value = s->value;
}

QZ_API void QZSMV_OnUpdateVZO(QZSMVState *s, double target, double *value, uint8_t *isZero,
                              uint8_t *isOne) {
    SmvUpdate(s, target);
    *value = s->value;
    *isZero = s->isZero;
    *isOne = s->isOne;
}

QZ_API void QZSMV_OnUpdateZO(QZSMVState *s, double target, uint8_t *isZero, uint8_t *isOne) {
    SmvUpdate(s, target);
    *isZero = s->isZero;
    *isOne = s->isOne;
}

}  // extern "C"
