// Jacobian frame transforms: a 6-row Jacobian (two stacked 3-vectors per joint column)
// re-expressed in another frame, out = diag(R, R) * J, and the transpose and matrix-vector
// product of the 6x7 shape.
#include "QZMatrix.h"

#include <cstddef>

#include "QZMatrix/matrix.h"

namespace qz::detail {
namespace {

// Rotates both halves of every column. Each half-column is copied into a local vector before its
// rotated image is stored, so out may be J itself.
template <int Cols>
void JacobRotate(const double *J, const double *R, double *out) {
    for (int j = 0; j < Cols; ++j) {
        for (int half = 0; half < 6; half += 3) {
            double a[3], ra[3];
            for (int i = 0; i < 3; ++i) a[i] = J[(half + i) * Cols + j];
            MatrixMultVect3(R, a, ra);
            for (int i = 0; i < 3; ++i) out[(half + i) * Cols + j] = ra[i];
        }
    }
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void QZ_JACOB_TRAN_T66(const double *J, const double *R, double *out) {
    JacobRotate<6>(J, R, out);
}

QZ_API void QZ_JACOB_TRAN_T67(const double *J, const double *R, double *out) {
    JacobRotate<7>(J, R, out);
}

// The same rotation with the sums formed straight from J into out, one element after another:
// no local copy, so out must be separate from J.
QZ_API void QZ_JACOBI_TRANS_T67(const double *J, const double *R, double *out) {
    for (std::ptrdiff_t j = 0; j < 7; ++j) {
        for (std::ptrdiff_t half = 0; half < 6; half += 3) {
            const double *c = J + half * 7 + j;
            double *o = out + half * 7 + j;
            for (std::ptrdiff_t i = 0; i < 3; ++i) {
                o[i * 7] = R[3 * i] * c[0] + R[3 * i + 1] * c[7] + R[3 * i + 2] * c[14];
            }
        }
    }
}

QZ_API void Mat67Transpose(const double *A, double *B) { MatTranspose<6, 7>(A, B); }

// y = M x with every row sum starting from 0.0.
QZ_API void MVmult677(const double *M, const double *x, double *y) {
    MatVec<6, 7, Start::kZero>(M, x, y);
}

}  // extern "C"
