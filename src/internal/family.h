// Size families: every size-suffixed exported function (QZ_VectNorm2 ... QZ_VectNorm8) is one
// template instantiated here for each size, so that an algorithm lives in exactly one place.
//
//   #define STAMP(N) QZ_API int32_t QZ_VectNorm##N(double *v) { return VectNormFixed<N>(v); }
//   QZ_SIZES_2_8(STAMP)
#ifndef QZ_INTERNAL_FAMILY_H
#define QZ_INTERNAL_FAMILY_H

#define QZ_SIZES_2_8(X) X(2) X(3) X(4) X(5) X(6) X(7) X(8)

#endif
