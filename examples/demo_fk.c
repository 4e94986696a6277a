/*
 * Forward kinematics of the demo's seven-joint arm: one modified Denavit-Hartenberg link
 * transform per joint, chained by 4x4 products from the base to the flange, and the flange
 * transform reported as XYZABC (millimetres, degrees).
 */
#include "QZMatrix.h"
#include "demo.h"

#define HALF_PI 1.5707963267948966

/* One link: twist alpha (rad) and length a (mm) along the previous x, offset d (mm) along the
 * joint's z axis; the joint angle is added to thetaOffset. */
typedef struct {
    double alpha, a, d, thetaOffset;
} DemoLink;

/* An anthropomorphic arm: shoulder (joints 1-3), elbow (4), wrist (5-7), with small elbow and
 * wrist offsets, then a fixed flange 107 mm beyond the last joint. */
static const DemoLink kArm[7] = {
    {0.0, 0.0, 333.0, 0.0},    {-HALF_PI, 0.0, 0.0, 0.0},     {HALF_PI, 0.0, 316.0, 0.0},
    {HALF_PI, 82.5, 0.0, 0.0}, {-HALF_PI, -82.5, 384.0, 0.0}, {HALF_PI, 0.0, 0.0, 0.0},
    {HALF_PI, 88.0, 0.0, 0.0},
};
static const DemoLink kFlange = {0.0, 0.0, 107.0, 0.0};

void demo_flange_pose(const double q[7], double xyzabc[6]) {
    double t[16], link[16], next[16];
    const DemoLink *l = &kArm[0];
    QZ_DH2Matrix(l->alpha, l->a, l->d, l->thetaOffset + q[0], t);
    for (int i = 1; i <= 7; ++i) {
        l = i < 7 ? &kArm[i] : &kFlange;
        QZ_DH2Matrix(l->alpha, l->a, l->d, l->thetaOffset + (i < 7 ? q[i] : 0.0), link);
        QZ_MMM44(t, link, next);
        QZ_MatrixCpy4(next, t);
    }
    /* The ARC-named XYZ extraction is the one that answers in degrees. */
    QZ_Matrix2XYZABC4ARC_XYZ(t, xyzabc);
}
