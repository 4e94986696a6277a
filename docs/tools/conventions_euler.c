/* The Euler-angle examples of docs/conventions.md: the XYZ and ZYZ conventions, their ranges and
 * singularities, and the two extractions whose unit names are swapped. */
#include <stdio.h>
#include <string.h>

#include "QZMatrix.h"

static const double kDeg = 0.017453292519943295;

/* Angles given in radians, printed in degrees. */
static void Deg3(const char *what, unsigned res, const double *a, int withResult) {
    if (withResult)
        printf("%s%u, ", what, res);
    else
        printf("%s", what);
    printf("(%.15g°, %.15g°, %.15g°)", a[0] / kDeg, a[1] / kDeg, a[2] / kDeg);
}

static void Xyz(double a, double b, double c, const char *sep) {
    double r[9], abc[3];
    QZ_ABC2Matrix3DEG((const double[]){a, b, c}, r);
    QZ_Matrix2XYZ(r, abc);
    printf("(%g, %g, %g)  ->  ", a, b, c);
    Deg3("", 1, abc, 0);
    printf("%s", sep);
}

static void Zyz(double a, double b, double c) {
    double r[9], abc[3];
    QZ_ZYZ2Matrix(a * kDeg, b * kDeg, c * kDeg, r);
    const unsigned res = QZ_Matrix2ZYZ(r, abc);
    printf("QZ_ZYZ2Matrix(%g°, %g°, %g°) -> QZ_Matrix2ZYZ -> ", a, b, c);
    Deg3("", res, abc, 1);
    printf("\n");
}

static void AbcZyz(const char *what, const double *r) {
    double abc[3];
    const unsigned res = QZ_Matrix2ZYZ(r, abc);
    printf("%s -> QZ_Matrix2ZYZ -> ", what);
    Deg3("", res, abc, 1);
    printf("\n");
}

int main(void) {
    double r[9], t[16], pose[6];
    printf("```text\n");
    printf("XYZ: QZ_ABC2Matrix3DEG((A, B, C), R); QZ_Matrix2XYZ(R, abc):\n");
    Xyz(10, 20, 30, "\n");
    Xyz(200, 0, -190, "        ");
    Xyz(0, 120, 0, "\n");
    Xyz(10, 90, 30, "           (B = 90°: C = 0, A - C in A)\n");

    printf("\nZYZ:\n");
    Zyz(30, 40, 50);
    Zyz(30, -40, 50);
    Zyz(30, 0.2, 40);

    memset(pose, 0, sizeof pose);
    pose[0] = 1, pose[1] = 2, pose[2] = 3;
    QZ_ZYZ2Matrix(30 * kDeg, 0.2 * kDeg, 40 * kDeg, r);
    for (int i = 0; i < 16; ++i) t[i] = 0.0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) t[4 * i + j] = r[3 * i + j];
    t[3] = 5, t[7] = 6, t[11] = 7, t[15] = 1;
    const unsigned res = QZ_Matrix2XYZABC4DEG_ZYZ(t, pose);
    printf(
        "QZ_Matrix2XYZABC4DEG_ZYZ(T of that matrix at (5, 6, 7), pose), pose = (1, 2, 3, ...)\n");
    printf("  -> %u, pose = (%g, %g, %g, %.15g, %.15g, %.15g)\n", res, pose[0], pose[1], pose[2],
           pose[3], pose[4], pose[5]);

    QZ_XYZABC2Matrix4DEG((const double[]){100, 200, 300, 10, 20, 30}, t);
    printf("\nthe transform of (100, 200, 300, 10°, 20°, 30°):\n");
    QZ_Matrix2XYZABC4ARC_XYZ(t, pose);
    printf("QZ_Matrix2XYZABC4ARC_XYZ -> (%.15g, %.15g, %.15g, %.15g, %.15g, %.15g)\n", pose[0],
           pose[1], pose[2], pose[3], pose[4], pose[5]);
    QZ_Matrix2XYZABC4DEG_XYZ(t, pose);
    printf("QZ_Matrix2XYZABC4DEG_XYZ -> (%.15g, %.15g, %.15g, %.15g, %.15g, %.15g)\n", pose[0],
           pose[1], pose[2], pose[3], pose[4], pose[5]);

    printf("\nZYZ near b = 180°, not flagged:\n");
    QZ_ABC2Matrix3DEG((const double[]){180, 0, 70}, r);
    AbcZyz("QZ_ABC2Matrix3DEG((180, 0, 70))  ", r);
    QZ_ABC2Matrix3DEG((const double[]){180, 0.2, 70}, r);
    AbcZyz("QZ_ABC2Matrix3DEG((180, 0.2, 70))", r);
    AbcZyz("{-1,0,0, 0,1,0, 0,0,-1} (half turn about y)",
           (const double[]){-1, 0, 0, 0, 1, 0, 0, 0, -1});
    QZ_ZYZ2Matrix(0, 180 * kDeg, 180 * kDeg, r);
    printf(
        "  but QZ_ZYZ2Matrix(0°, 180°, 180°) has the diagonal (%.6g, %.6g, %.6g): a half turn "
        "about x\n",
        r[0], r[4], r[8]);
    printf("```\n");
    return 0;
}
