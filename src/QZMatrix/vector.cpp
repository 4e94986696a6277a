// Vector operations: the exported layer over the inline templates of vector.h.
#include "QZMatrix.h"

#include "QZMatrix/vector.h"
#include "internal/family.h"

using namespace qz::detail;

extern "C" {

#define QZ_STAMP_VECT(N)                                                                \
    QZ_API int32_t QZ_VectNorm##N(double *v) { return VectNormFixed<N>(v); }            \
    QZ_API void QZ_VectCpy##N(const double *src, double *dst) { VectCpy<N>(src, dst); } \
    QZ_API void QZ_VectAdd##N(const double *a, const double *b, double *out) {          \
        VectAdd<N>(a, b, out);                                                          \
    }                                                                                   \
    QZ_API void QZ_VectSA##N(const double *a, double s, const double *b, double *out) { \
        VectSA<N>(a, s, b, out);                                                        \
    }
QZ_SIZES_2_8(QZ_STAMP_VECT)
#undef QZ_STAMP_VECT

QZ_API void QZ_VectSub(const double *a, int32_t n, const double *b, double *out) {
    VectSub(a, n, b, out);
}
QZ_API void QZ_VectAddX(const double *a, int32_t n, const double *b, double *out) {
    VectAddX(a, n, b, out);
}
QZ_API void QZ_VectDotMult(const double *a, int32_t n, const double *b, double *out) {
    VectDotMult(a, n, b, out);
}
QZ_API void QZ_VectSAX(const double *a, int32_t n, double s, const double *b, double *out) {
    VectSAX(a, n, s, b, out);
}
QZ_API void QZ_VectScale(const double *v, int32_t n, double s, double *out) {
    VectScale(v, n, s, out);
}
QZ_API double QZ_VectDot(const double *a, const double *b, int32_t n) { return VectDot(a, b, n); }
QZ_API double QZ_VectLength(const double *v, int32_t n) { return VectLength(v, n); }
QZ_API int32_t QZ_VectNorm(double *v, int32_t n) { return VectNorm(v, n); }
QZ_API double QZ_VectAngle(const double *a, const double *b, int32_t n) {
    return VectAngle(a, b, n);
}
QZ_API void VectNormalized(const double *v, int32_t n, double *out) {
    qz::detail::VectNormalized(v, n, out);
}
QZ_API void CalShadowVector(const double *a, const double *b, double *out, int32_t n) {
    qz::detail::CalShadowVector(a, b, out, n);
}

QZ_API void QZ_VectCross(const double *a, const double *b, double *out) { VectCross(a, b, out); }
QZ_API double QZ_GetVectLenA2B(const double *a, const double *b) { return GetVectLenA2B(a, b); }
QZ_API int32_t QZ_GetVectNormA2B(const double *a, const double *b, double *out) {
    return GetVectNormA2B(a, b, out);
}
QZ_API int32_t QZ_GetVectNormLenA2B(const double *a, const double *b, double *out, double *len) {
    return GetVectNormLenA2B(a, b, out, len);
}

}  // extern "C"
