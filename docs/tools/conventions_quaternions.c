/* The quaternion examples of docs/conventions.md: order, products, signs, the angle's floor and
 * the slerp that negates its second end. */
#include <stdio.h>

#include "QZMatrix.h"
#include "QZQuaternions.h"

static const double kDeg = 0.017453292519943295;

static void Quat(const char *what, const double *q) {
    printf("%s(%.17g, %.17g, %.17g, %.17g)\n", what, q[0], q[1], q[2], q[3]);
}

int main(void) {
    double r[9], a[4], b[4], q[4], m[4];
    printf("```text\n");
    QZ_RotZARC(90 * kDeg, r);
    QZ_Matrix2Quaternion3(r, q);
    Quat("QZ_RotZARC(pi/2, R); QZ_Matrix2Quaternion3(R, q)  ->  q = ", q);

    QZ_Matrix2Quaternion3(r, a);
    QZ_RotXARC(90 * kDeg, r);
    QZ_Matrix2Quaternion3(r, b);
    QZ_QuatMult(a, b, q);
    printf("\na = 90° about z, b = 90° about x:  QZ_QuatMult(a, b, q)\n");
    Quat("  ->  q = ", q);

    printf("\n");
    QZ_RotZARC(270 * kDeg, r);
    QZ_Matrix2Quaternion3(r, q);
    Quat("RotZ(270°) -> ", q);
    QZ_RotXARC(180 * kDeg, r);
    QZ_Matrix2Quaternion3(r, q);
    Quat("RotX(180°) -> ", q);

    const double id[4] = {0, 0, 0, 1}, neg[4] = {0, 0, 0, -1};
    const double tiny[4] = {0, 0, 1e-5, 1};
    printf("\nQZ_QuaternionAngleDeg(q, q)  = %.17g\n", QZ_QuaternionAngleDeg(id, id));
    printf("QZ_QuaternionAngleDeg(q, -q) = %.17g\n", QZ_QuaternionAngleDeg(id, neg));
    printf("QZ_QuaternionAngleDeg of a turn of 2e-5 rad = %.17g\n",
           QZ_QuaternionAngleDeg(id, tiny));

    double q2[4] = {0, 0, -0.38268343236508978, -0.92387953251128674};
    printf("\nq1 = (0, 0, 0, 1), q2 = (0, 0, %.5f, %.5f)        (45° about z, written as -q)\n",
           q2[2], q2[3]);
    QZ_QuatSlerp(id, q2, 0.5, m);
    Quat("QZ_QuatSlerp(q1, q2, 0.5, out) -> out = ", m);
    Quat("                                  q2  = ", q2);
    printf("```\n");
    return 0;
}
