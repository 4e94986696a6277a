/*
 * Example 11: damped least squares as the arm stretches.
 *
 * The flange of the seven-joint arm of examples/arm7.h is pulled straight away from the shoulder
 * at 10 mm/s, from an elbow bent 20 degrees into the stretch where shoulder, elbow and wrist line up and the
 * Jacobian loses a rank. Each 1 ms cycle the joint velocities come from QZKin_DampedLeastSquares,
 * once with the chain's default damping and once with the damping turned off (QZKin_SetDamping
 * with lambdaMax 0, the plain least-squares solution), and the joints are integrated.
 *
 * Every 100 ms it prints how far the elbow is from the stretch, the smallest singular value that
 * the solver estimates for the unitless Jacobian, the damping factor it applied and the largest
 * joint speed of both runs. Undamped, the joint speeds grow as one over the distance and the arm
 * is thrown about; damped, they stay bounded, and the flange stops short of the unreachable
 * stretch, which is the price: it no longer follows the pull exactly.
 *
 * Usage: 11_stretch_damping   (prints its results; writes nothing)
 */
#include <math.h>
#include <stdio.h>

#include "QZKinematics.h"
#include "arm7.h"

#define DEG 0.017453292519943295
#define DT 0.001
#define PULL_MM_S 10.0   /* flange speed away from the shoulder */
#define SHOULDER_Z 333.0 /* the shoulder (joint 2's origin) on the base z axis, in mm */

typedef struct {
    double q[7];
    double sigma, lambda, speed; /* of the last cycle: estimate, damping, largest |qdot| */
    double peak;                 /* largest |qdot| of the whole run */
    int ok;
} Run;

/* Joint 4's angle where the arm is stretched: the elbow and wrist offsets (82.5 mm) line up. */
static double stretch_angle(void) { return -(atan(82.5 / 316.0) + atan(82.5 / 384.0)); }

static void step(const QZKinChain *arm, Run *r) {
    double j[42], t[16], v[6] = {0, 0, 0, 0, 0, 0}, qdot[7], report[2];
    QZKin_Jacobian(arm, r->q, j, t);
    const double u[3] = {t[3], t[7], t[11] - SHOULDER_Z};
    const double n = sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    for (int k = 0; k < 3; ++k) v[k] = PULL_MM_S * u[k] / n;
    if (QZKin_DampedLeastSquares(arm, j, v, qdot, report) != QZ_KIN_OK) {
        r->ok = 0;
        return;
    }
    r->sigma = report[0];
    r->lambda = report[1];
    r->speed = 0.0;
    for (int i = 0; i < 7; ++i) {
        r->q[i] += qdot[i] * DT;
        if (fabs(qdot[i]) > r->speed) r->speed = fabs(qdot[i]);
    }
    if (r->speed > r->peak) r->peak = r->speed;
}

int main(void) {
    QZKinChain damped, plain;
    arm7_chain(1.0, &damped);
    plain = damped;
    QZKin_SetDamping(&plain, plain.lengthScale, plain.sigmaThreshold, 0.0);

    const double start[7] = {20 * DEG, -30 * DEG, 10 * DEG, stretch_angle() - 20 * DEG,
                             0.0,      95 * DEG,  40 * DEG};
    Run a = {{0}, 0, 0, 0, 0, 1}, b = {{0}, 0, 0, 0, 0, 1};
    for (int i = 0; i < 7; ++i) a.q[i] = b.q[i] = start[i];
    printf("chain: length scale %.0f mm, damping below sigma %.2f, lambda up to %.2f\n",
           damped.lengthScale, damped.sigmaThreshold, damped.lambdaMax);
    printf("  time | elbow from stretch |  sigma  | lambda  | damped max |qdot| | undamped\n");
    for (int k = 1; k <= 1500; ++k) {
        step(&damped, &a);
        if (b.ok) step(&plain, &b);
        if (k % 100 == 0) {
            char undamped[32];
            if (b.ok)
                snprintf(undamped, sizeof undamped, "%9.3f rad/s", b.speed);
            else
                snprintf(undamped, sizeof undamped, "singular, refused");
            printf("%4.1f s | %14.4f deg | %.5f | %.5f | %11.3f rad/s | %s\n", k * DT,
                   (a.q[3] - stretch_angle()) / DEG, a.sigma, a.lambda, a.speed, undamped);
        }
    }
    printf("largest joint speed over the pull: damped %.3f rad/s, undamped %.3f rad/s\n", a.peak,
           b.peak);
    return a.ok ? 0 : 1;
}
