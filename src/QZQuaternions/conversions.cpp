// Conversions between quaternions, rotation matrices, homogeneous transforms and poses.
//
// A PosQuat pose is (x, y, z, qx, qy, qz, qw); an XYZABC pose holds the angles A, B, C in degrees
// with R = Rz(C) Ry(B) Rx(A).
#include "QZQuaternions.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZMatrix/euler.h"
#include "QZQuaternions/quaternion.h"

namespace qz::detail {
namespace {

// Transform from a pose whose quaternion is already in the form to use.
void PoseToTransform(const double *pose, const double *q, double *m) {
    QuatToRotation<4>(q, m);
    m[3] = pose[0];
    m[7] = pose[1];
    m[11] = pose[2];
    m[12] = 0.0;
    m[13] = 0.0;
    m[14] = 0.0;
    m[15] = 1.0;
}

}  // namespace
}  // namespace qz::detail

using namespace qz::detail;

extern "C" {

QZ_API void QZ_Matrix2Quaternion3(const double *r, double *q) { RotationToQuat<3>(r, q); }

QZ_API void QZ_Matrix2Quaternion4(const double *m, double *q) { RotationToQuat<4>(m, q); }

QZ_API void QZ_Quaternion2Matrix3(const double *q, double *r) { QuatToRotation<3>(q, r); }

// Element 15 is left 0 like the rest of the bottom row and the position column: the result is a
// rotation block padded with zeros, not a complete transform.
QZ_API void QZ_Quaternion2Matrix4(const double *q, double *m) {
    QuatToRotation<4>(q, m);
    m[3] = 0.0;
    m[7] = 0.0;
    m[11] = 0.0;
    m[12] = 0.0;
    m[13] = 0.0;
    m[14] = 0.0;
    m[15] = 0.0;
}

QZ_API void QZ_Matrix2PosQuat(const double *m, double *pose) {
    pose[0] = m[3];
    pose[1] = m[7];
    pose[2] = m[11];
    RotationToQuat<4>(m, pose + 3);
}

// The normalised quaternion is written back into the pose even when it was too short to
// normalise, in which case it is unchanged.
QZ_API uint32_t QZ_PosQuat2Matrix_UnNorm(double *pose, double *m) {
    double q[4] = {pose[3], pose[4], pose[5], pose[6]};
    QuatNormalize(q);
    pose[3] = q[0];
    pose[4] = q[1];
    pose[5] = q[2];
    pose[6] = q[3];
    PoseToTransform(pose, q, m);
    return 1;
}

QZ_API void QZ_PosQuat2Matrix(const double *pose, double *m) { PoseToTransform(pose, pose + 3, m); }

// The rotation is the XYZ block of the Euler conversions, from the angles in degrees.
QZ_API uint32_t QZ_XYZABC2XYZQ(double *buf) {
    double r[9];
    XyzFromAngles<3, true>(buf + 3, r);
    double q[4];
    RotationToQuat<3>(r, q);
    const uint32_t ok = QuatNormalize(q);
    buf[3] = q[0];
    buf[4] = q[1];
    buf[5] = q[2];
    buf[6] = q[3];
    buf[7] = 0.0;
    return ok;
}

}  // extern "C"
