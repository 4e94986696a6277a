// Multi-stage single-axis tracker.
//
// Stage 0 tracks the target like the plain tracker. Each correction stage then tracks the error
// that the stages before it still leave, clamped to its band (10k, 3k and k for stages 1, 2 and
// 3, with k = corrScale): their velocity limits are far lower than stage 0's and their
// acceleration limits at least as high, so they take up small residuals quickly without ever
// carrying the main motion. The output is the sum of the four stage positions.
//
// While the main error is outside stage 1's band the correction stages would otherwise hold on
// to positions that stage 0 should carry, so a blend g, which rises towards 0.5 while the error
// is large and decays towards 0 once it is small, moves the share g of their positions into
// stage 0 after every step. The move leaves the sum unchanged.
#include "QZDT/tracker_multistage.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZDT/tracker.h"

namespace qz::detail {

namespace {

// The upper bound first, then the lower, as comparisons: a NaN residual passes through.
double ClampBand(double x, double band) {
    double r = x > band ? band : x;
    r = r < -band ? -band : r;
    return r;
}

double Stage0Vel(double v, std::int32_t mode) { return mode == 1 ? (v * 69.0) / 90.0 : v; }

}  // namespace

std::uint8_t VdtmInit(QZVDTMState *s, double cycleMs, double velLmt, double accLmt,
                      std::int32_t mode) {
    VdtInit(&s->stage[0], cycleMs, Stage0Vel(velLmt, mode), accLmt);
    VdtInit(&s->stage[1], cycleMs, velLmt / 6.0, accLmt + accLmt);
    VdtInit(&s->stage[2], cycleMs, velLmt / 18.0, accLmt + accLmt);
    VdtInit(&s->stage[3], cycleMs, velLmt / 90.0, accLmt);
    s->targetJump = 0;
    s->blend = 0.0;
    double k = (velLmt * 5.0) / 180.0;
    k = k < 0.1 ? 0.1 : k;
    k = k > 1.0 ? 1.0 : k;
    s->corrScale = k;
    return 1;
}

std::uint8_t VdtmEmpty(QZVDTMState *s) {
    for (QZVDTState &st : s->stage) VdtEmpty(&st);
    s->blend = 0.0;
    return 1;
}

std::uint8_t VdtmStep(QZVDTMState *s, double target, double *out) {
    double y0 = 0.0;
    if (VdtStep(&s->stage[0], target, &y0) == 0) return 0;
    if (s->mode == 0) {
        *out = y0;
        return 1;
    }
    const double k = s->corrScale;
    double y1 = 0.0, y2 = 0.0, y3 = 0.0;
    const double e1 = target - y0;
    VdtStep(&s->stage[1], ClampBand(e1, 10.0 * k), &y1);
    const double c1 = y0 + y1;
    VdtStep(&s->stage[2], ClampBand(target - c1, 3.0 * k), &y2);
    const double c2 = c1 + y2;
    VdtStep(&s->stage[3], ClampBand(target - c2, k), &y3);
    *out = c2 + y3;

    if (Fabs(e1) > 10.0 * k) {
        s->blend = 0.93 * s->blend + 0.035;
    } else {
        s->blend = 0.97 * s->blend;
    }
    const double g = s->blend;
    const double p1 = s->stage[1].pos, p2 = s->stage[2].pos, p3 = s->stage[3].pos;
    s->stage[0].pos = s->stage[0].pos + g * (p1 + p2 + p3);
    s->stage[1].pos = p1 * (1.0 - g);
    s->stage[2].pos = p2 * (1.0 - g);
    s->stage[3].pos = p3 * (1.0 - g);
    return 1;
}

std::uint8_t VdtmSetLmt(QZVDTMState *s, double velLmt, double accLmt, std::int32_t mode) {
    VdtSetLmt(&s->stage[0], Stage0Vel(velLmt, mode), accLmt);
    VdtSetLmt(&s->stage[1], velLmt / 6.0, 100.0 * accLmt);
    VdtSetLmt(&s->stage[2], velLmt / 18.0, 100.0 * accLmt);
    VdtSetLmt(&s->stage[3], velLmt / 90.0, 100.0 * accLmt);
    return 1;
}

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API uint8_t QZVDT_OnInitM(QZVDTMState *s, double cycleMs, double velLmt, double accLmt,
                             int32_t mode) {
    return VdtmInit(s, cycleMs, velLmt, accLmt, mode);
}
QZ_API uint8_t QZVDT_OnEmptyM(QZVDTMState *s) { return VdtmEmpty(s); }
QZ_API uint8_t QZVDT_OnDT_BM(QZVDTMState *s, double target, double *out) {
    return VdtmStep(s, target, out);
}
QZ_API uint8_t QZVDT_OnSetRunTimeLmtM(QZVDTMState *s, double velLmt, double accLmt, int32_t mode) {
    return VdtmSetLmt(s, velLmt, accLmt, mode);
}

}  // extern "C"
