// Single-axis tracker.
//
// Each step applies the discrete time-optimal law (the bang-bang synthesis with a square-root
// switching curve of the tracking differentiator) to the error between the commanded position
// and the target. With A the acceleration limit and h the law's step, the law looks one step
// ahead (y = e + h v); inside the linear zone |y| <= h^2 A it commands the acceleration that
// closes the gap in one step, outside it follows the parabola v = -sign(y) sqrt(2 A |y|). The
// resulting acceleration u in [-A, A] is integrated into a velocity clipped to the velocity
// limit, and that into the position.
//
// A velocity limit lowered below the current speed is not applied at once, which would be an
// acceleration step beyond A: the axis ramps down at A (ignoring the law) until its speed is
// inside the requested limit, and only then adopts it.
#include "QZDT/tracker.h"

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

namespace {

constexpr double kLawStep = 0.01;  // seconds, whatever the cycle time
constexpr double kVelMin = 0.1, kVelMax = 200.0;
constexpr double kAccMin = 1.0, kAccMax = 1000.0;
constexpr double kDeadBand = 0.1;  // run-time requests closer than this are ignored

// Raising the limit, or a limit the axis is already inside, applies at once; anything else
// waits for the deceleration ramp of the step.
void RequestVel(QZVDTState *s, double v) {
    if (v > s->velLmt || v > Fabs(s->vel)) {
        s->velLmt = v;
        s->velLmtTarget = v;
        s->velLmtPending = 0;
    } else {
        s->velLmtTarget = v;
        s->velLmtPending = 1;
    }
}

void SetAcc(QZVDTState *s, double a) {
    s->accLmt = a;
    s->accStep2 = a * s->baseDt * s->baseDt;
}

// Commanded acceleration of the time-optimal law for the error e = pos - target.
double LawAcc(const QZVDTState *s, double target) {
    const double A = s->accLmt;
    const double h = s->lawStep;
    const double v = s->vel;
    const double d = A * h;
    const double d0 = h * d;
    const double e = s->pos - target;
    const double y = e + h * v;
    const double a0 = Sqrt((A * 8.0) * Fabs(y) + d * d);
    const double m = Fabs(y) <= d0 ? y / h + v : v + (ValueSig(y) * 0.5) * (a0 - d);
    if (Fabs(m) <= d) return (m * (-A)) / d;
    return ValueSig(m) * (-A);
}

}  // namespace

std::uint8_t VdtInit(QZVDTState *s, double cycleMs, double velLmt, double accLmt) {
    s->velLmtPending = 0;
    const double v = velLmt < kVelMin ? kVelMin : Min(velLmt, kVelMax);
    const double a = accLmt < kAccMin ? kAccMin : Min(accLmt, kAccMax);
    double dt = 0.0;
    if (cycleMs < 1.0) {
        dt = 0.001;
    } else if (cycleMs > 1000.0) {
        dt = 1.0;
    } else {
        dt = cycleMs / 1000.0;
    }
    s->baseDt = dt;
    s->dt = dt;
    s->pos = 0.0;
    s->vel = 0.0;
    s->isInit = 1;
    s->resetPending = 1;
    s->accLmt = a;
    s->accStep2 = (a * dt) * dt;
    s->lawStep = kLawStep;
    s->velLmt = v;
    s->velLmtTarget = v;
    return 1;
}

std::uint8_t VdtEmpty(QZVDTState *s) {
    if (s->isInit == 0) return 0;
    s->resetPending = 1;
    return 1;
}

std::uint8_t VdtStep(QZVDTState *s, double target, double *out) {
    if (s->isInit == 0) return 0;
    if (s->resetPending == 1) {
        s->pos = target;
        s->vel = 0.0;
        *out = target;
        s->resetPending = 0;
        return 1;
    }
    const double v = s->vel;
    const double dt = s->dt;
    if (s->velLmtPending == 0) {
        const double u = LawAcc(s, target);
        const double vn = v + dt * u;
        if (Fabs(vn) > s->velLmt) {
            s->vel = vn < 0.0 ? -s->velLmt : s->velLmt;
        } else {
            s->vel = vn;
        }
    } else {
        // Deceleration ramp towards a lowered limit; the law is not consulted and the new speed
        // is not clipped this cycle.
        const double A = s->accLmt;
        if (v > 0.0) {
            s->vel = v - A * dt;
            if (s->velLmtTarget > s->vel) {
                s->velLmtPending = 0;
                s->velLmt = s->velLmtTarget;
            }
        } else {
            s->vel = v + A * dt;
            if (s->vel > -s->velLmtTarget) {
                s->velLmtPending = 0;
                s->velLmt = s->velLmtTarget;
            }
        }
    }
    s->pos = s->pos + s->vel * dt;
    *out = s->pos;
    return 1;
}

std::uint8_t VdtSetLmt(QZVDTState *s, double velLmt, double accLmt) {
    if (s->isInit == 0) return 0;
    if (Fabs(velLmt - s->velLmtTarget) < kDeadBand && Fabs(s->accLmt - accLmt) < kDeadBand)
        return 1;
    SetAcc(s, accLmt);
    RequestVel(s, velLmt);
    return 1;
}

std::uint8_t VdtSetVel(QZVDTState *s, double velLmt) {
    if (s->isInit == 0) return 0;
    if (Fabs(velLmt - s->velLmtTarget) < kDeadBand) return 1;
    RequestVel(s, velLmt);
    return 1;
}

std::uint8_t VdtSetAcc(QZVDTState *s, double accLmt) {
    if (s->isInit == 0) return 0;
    if (Fabs(s->accLmt - accLmt) < kDeadBand) return 1;
    SetAcc(s, accLmt);
    return 1;
}

}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API uint8_t QZVDT_OnInit(QZVDTState *s, double cycleMs, double velLmt, double accLmt) {
    return VdtInit(s, cycleMs, velLmt, accLmt);
}
QZ_API uint8_t QZVDT_OnEmpty(QZVDTState *s) { return VdtEmpty(s); }
QZ_API uint8_t QZVDT_OnDT(QZVDTState *s, double target, double *out) {
    return VdtStep(s, target, out);
}
QZ_API uint8_t QZVDT_OnSetRunTimeLmt(QZVDTState *s, double velLmt, double accLmt) {
    return VdtSetLmt(s, velLmt, accLmt);
}
QZ_API uint8_t QZVDT_OnSetRunTimeVel(QZVDTState *s, double velLmt) { return VdtSetVel(s, velLmt); }
QZ_API uint8_t QZVDT_OnSetRunTimeAcc(QZVDTState *s, double accLmt) { return VdtSetAcc(s, accLmt); }

}  // extern "C"
