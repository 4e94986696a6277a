/*
 * orientation_error.h: the orientation error between a commanded and a measured orientation as a
 * rotation vector, built from the library's quaternion functions (docs/orientation-and-jacobians.md).
 * Shared by example 09, the guides' measuring programs and the Cartesian-cycle benchmark.
 */
#ifndef QZ_EXAMPLE_ORIENTATION_ERROR_H
#define QZ_EXAMPLE_ORIENTATION_ERROR_H

#include "QZBaseMath.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"

/* Rotation vector r (base axes, rad) that turns the measured orientation qm into the commanded
 * qc: the error quaternion e = qc (x) qm^-1, taken with w >= 0 (the shorter way), is
 * (k sin(phi/2), cos(phi/2)); r = phi k with phi = 2 atan2(|v|, w). */
static void orientation_error(const double qc[4], const double qm[4], double r[3]) {
    double inv[4], e[4];
    QZ_QuaternionConjugate(qm, inv); /* the inverse of a unit quaternion */
    QZ_QuatMult(qc, inv, e);
    if (e[3] < 0.0)
        for (int i = 0; i < 4; ++i) e[i] = -e[i];
    const double s = QZ_VectLength(e, 3);
    const double f = s > 0.0 ? 2.0 * QZ_ATan2(s, e[3]) / s : 2.0; /* phi / sin(phi/2) -> 2 */
    for (int i = 0; i < 3; ++i) r[i] = f * e[i];
}

#endif /* QZ_EXAMPLE_ORIENTATION_ERROR_H */
