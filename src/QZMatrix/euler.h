// The XYZ (ABC) rotation R = Rz(C) * Ry(B) * Rx(A) from its three angles, shared by the Euler
// conversions of the matrix module and the pose-to-quaternion conversion of the quaternion
// module, so that both build the same block with the same operations.
#ifndef QZ_MATRIX_EULER_H
#define QZ_MATRIX_EULER_H

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// Writes R = Rz(C) * Ry(B) * Rx(A) from the sines and cosines of the three angles into a matrix
// with the given row stride (3 for a rotation, 4 for a transform); only the 3x3 block is written.
template <int Stride>
inline void XyzBlock(double sA, double cA, double sB, double cB, double sC, double cC, double *r) {
    r[0] = cC * cB;
    r[1] = cC * sB * sA - sC * cA;
    r[2] = cC * sB * cA + sC * sA;
    r[Stride + 0] = sC * cB;
    r[Stride + 1] = sC * sB * sA + cC * cA;
    r[Stride + 2] = sC * sB * cA - cC * sA;
    r[2 * Stride + 0] = -sB;
    r[2 * Stride + 1] = cB * sA;
    r[2 * Stride + 2] = cB * cA;
}

// XYZ rotation of the angle triple abc (radians, or degrees when Deg) into the 3x3 block. All
// three angles are read before r is written.
template <int Stride, bool Deg>
inline void XyzFromAngles(const double *abc, double *r) {
    double sA = 0.0, cA = 0.0, sB = 0.0, cB = 0.0, sC = 0.0, cC = 0.0;
    if (Deg) {
        SinCosDeg(abc[0], &sA, &cA);
        SinCosDeg(abc[1], &sB, &cB);
        SinCosDeg(abc[2], &sC, &cC);
    } else {
        SinCosArc(abc[0], &sA, &cA);
        SinCosArc(abc[1], &sB, &cB);
        SinCosArc(abc[2], &sC, &cC);
    }
    XyzBlock<Stride>(sA, cA, sB, cB, sC, cC, r);
}

}  // namespace qz::detail

#endif  // QZ_MATRIX_EULER_H
