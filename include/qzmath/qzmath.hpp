// qzmath.hpp: the whole C++17 interface of QZMath, header-only, over the C functions of
// QZBaseMath.h, QZDT.h, QZFLT.h, QZMatrix.h and QZQuaternions.h, and the version they belong to.
//
// Each group has its own header, whole on its own; include one of them for just that group:
//   core.hpp         angles, value types, Status, Result, LimitReport
//   vector.hpp       fixed-size vectors
//   matrix.hpp       matrices, inverses, LUP, pseudo-inverses, Cholesky, eigen decompositions
//   quaternion.hpp   quaternion algebra and interpolation
//   orientation.hpp  rotation matrices, Euler angles, rotation vectors, poses, transforms
//   frames.hpp       link transforms, line crossing, Jacobian frame transforms
//   trackers.hpp     trackers, estimator, one-pole fitter, joint error comparator
//   filters.hpp      averaging filter, smoothed value
// eigen.hpp (not included here) gives Eigen views of the value types.
#ifndef QZMATH_QZMATH_HPP
#define QZMATH_QZMATH_HPP

#include "QZVersion.h"
#include "core.hpp"
#include "filters.hpp"
#include "frames.hpp"
#include "kinematics.hpp"
#include "matrix.hpp"
#include "orientation.hpp"
#include "quaternion.hpp"
#include "trackers.hpp"
#include "vector.hpp"

#endif  // QZMATH_QZMATH_HPP
