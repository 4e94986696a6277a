// Inverses: the fixed-size family (one elimination, stamped for every size) and the closed-form
// inverse of a rigid homogeneous transform.
#include "QZMatrix/inverse.h"

#include "QZMatrix.h"
#include "internal/family.h"

namespace qz::detail {

namespace {

// A rigid transform (R, p) is undone by (R^T, -R^T p). Each position element is the negated dot
// product of a column of R with p; the last row is written, never read.
std::uint8_t PGMatrixInv(const double *T, double *Tinv) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) Tinv[i * 4 + j] = T[j * 4 + i];
    }
    Tinv[12] = 0.0;
    Tinv[13] = 0.0;
    Tinv[14] = 0.0;
    Tinv[15] = 1.0;
    const double p0 = T[3], p1 = T[7], p2 = T[11];
    for (int i = 0; i < 3; ++i) {
        Tinv[i * 4 + 3] = -(T[i] * p0 + T[4 + i] * p1 + T[8 + i] * p2);
    }
    return 1;
}

}  // namespace

}  // namespace qz::detail

extern "C" {

#define QZ_STAMP_INV(N)                                             \
    QZ_API uint8_t QZ_MatrixInv##N(const double *A, double *Ainv) { \
        return qz::detail::MatrixInv<N>(A, Ainv);                   \
    }
QZ_SIZES_2_8(QZ_STAMP_INV)
#undef QZ_STAMP_INV

QZ_API uint8_t QZ_PGMatrixInv(const double *T, double *Tinv) {
    return qz::detail::PGMatrixInv(T, Tinv);
}

}  // extern "C"
