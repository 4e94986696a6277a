// orientation.hpp: rotations and their representations in the C++ interface (rotation matrices,
// quaternions, XYZ and ZYZ Euler angles, rotation vectors, poses and transforms), over the
// conversions of QZMatrix.h and QZQuaternions.h.
//
// Families (namespace qz): rotation rotation4 transform to_quat to_posquat to_rotvec euler_xyz
//   euler_zyz pose_xyz pose_zyz rot_x rot_y rot_z compose relative turn_z
#ifndef QZMATH_ORIENTATION_HPP
#define QZMATH_ORIENTATION_HPP

#include <cstddef>
#include <type_traits>

#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "core.hpp"

namespace qz {

// Quaternion of a rotation matrix, or of a transform's rotation block (not normalised).
[[nodiscard]] inline Quat to_quat(const Mat3 &r) noexcept {
    Quat q;
    QZ_Matrix2Quaternion3(r.data(), q.data());
    return q;
}
[[nodiscard]] inline Quat to_quat(const Mat4 &t) noexcept {
    Quat q;
    QZ_Matrix2Quaternion4(t.data(), q.data());
    return q;
}
// Rotation matrix of a unit quaternion, of a rotation vector, of Euler angles.
[[nodiscard]] inline Mat3 rotation(const Quat &q) noexcept {
    Mat3 r;
    QZ_Quaternion2Matrix3(q.data(), r.data());
    return r;
}
[[nodiscard]] inline Mat3 rotation(const RotVec &v) noexcept {
    Mat3 r;
    axis_angle_to_rotmat(v.data(), r.data());
    return r;
}
template <class U>
[[nodiscard]] Mat3 rotation(const EulerXYZ<U> &abc) noexcept {
    Mat3 r;
    (void)(std::is_same_v<U, Deg> ? QZ_ABC2Matrix3DEG : QZ_ABC2Matrix3ARC)(abc.data(), r.data());
    return r;
}
[[nodiscard]] inline Mat3 rotation(const EulerZYZ &abc) noexcept {
    Mat3 r;
    QZ_ZYZ2Matrix(abc[0], abc[1], abc[2], r.data());
    return r;
}
// 4x4 matrix with the rotation of q and zeros elsewhere: element (3, 3) is 0 as well.
[[nodiscard]] inline Mat4 rotation4(const Quat &q) noexcept {
    Mat4 m;
    QZ_Quaternion2Matrix4(q.data(), m.data());
    return m;
}
// Elementary rotations.
[[nodiscard]] inline Mat3 rot_x(Rad a) noexcept {
    Mat3 r;
    QZ_RotXARC(a.value, r.data());
    return r;
}
[[nodiscard]] inline Mat3 rot_y(Rad a) noexcept {
    Mat3 r;
    QZ_RotYARC(a.value, r.data());
    return r;
}
[[nodiscard]] inline Mat3 rot_z(Rad a) noexcept {
    Mat3 r;
    QZ_RotZARC(a.value, r.data());
    return r;
}
// XYZ angles in radians of a rotation or of a transform's rotation block.
[[nodiscard]] inline EulerXYZ<Rad> euler_xyz(const Mat3 &r) noexcept {
    EulerXYZ<Rad> abc;
    (void)QZ_Matrix2XYZ(r.data(), abc.data());
    return abc;
}
[[nodiscard]] inline EulerXYZ<Rad> euler_xyz(const Mat4 &t) noexcept {
    EulerXYZ<Rad> abc;
    (void)QZ_Matrix42XYZ(t.data(), abc.data());
    return abc;
}
// ZYZ angles in radians; zyz_singular below |b| = 0.5 degree, with a = 0 and usable b, c.
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat3 &r) noexcept {
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (!QZ_Matrix2ZYZ(r.data(), abc.value().data())) abc.fail(Status::zyz_singular, false);
    return abc;
}
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat4 &t) noexcept {
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (!QZ_Matrix42ZYZ(t.data(), abc.value().data())) abc.fail(Status::zyz_singular, false);
    return abc;
}
// Rotation vector of a rotation matrix, angle in [0, pi].
[[nodiscard]] inline RotVec to_rotvec(const Mat3 &r) noexcept {
    RotVec v;
    rotmat_to_axis_angle(r.data(), v.data());
    return v;
}
// Rotation vector of R(a) R(b): b applied first, both in the fixed frame.
[[nodiscard]] inline RotVec compose(const RotVec &a, const RotVec &b) noexcept {
    RotVec out;
    AngleMult(a.data(), b.data(), out.data());
    return out;
}
// The rotation from orientation a to orientation b, expressed in frame a: Ra^T Rb.
[[nodiscard]] inline Mat3 relative(const Mat3 &a, const Mat3 &b) noexcept {
    Mat3 out;
    relative_rotation(a.data(), b.data(), out.data());
    return out;
}
[[nodiscard]] inline RotVec relative(const RotVec &a, const RotVec &b) noexcept {
    RotVec out;
    relative_Angle(a.data(), b.data(), out.data());
    return out;
}

// Transform of a pose.
[[nodiscard]] inline Mat4 transform(const PosQuat &p) noexcept {
    Mat4 t;
    QZ_PosQuat2Matrix(p.data(), t.data());
    return t;
}
template <class U>
[[nodiscard]] Mat4 transform(const PoseXYZ<U> &p) noexcept {
    Mat4 t;
    (std::is_same_v<U, Deg> ? QZ_XYZABC2Matrix4DEG : QZ_XYZABC2Matrix4ARC)(p.data(), t.data());
    return t;
}
// PosQuat pose of a transform.
[[nodiscard]] inline PosQuat to_posquat(const Mat4 &t) noexcept {
    PosQuat p;
    QZ_Matrix2PosQuat(t.data(), p.data());
    return p;
}
// PosQuat pose of an XYZABC pose in degrees, quaternion normalised; zero_length when it could
// not be (then it is unnormalised).
[[nodiscard]] inline Result<PosQuat> to_posquat(const PoseXYZ<Deg> &p) noexcept {
    double buf[8] = {p[0], p[1], p[2], p[3], p[4], p[5], 0.0, 0.0};
    const bool ok = QZ_XYZABC2XYZQ(buf) != 0;
    PosQuat out;
    for (std::size_t i = 0; i < 7; ++i) out[i] = buf[i];
    return {out, ok ? Status::ok : Status::zero_length};
}
// XYZ pose of a transform, angles in the unit asked for.
template <class U>
[[nodiscard]] PoseXYZ<U> pose_xyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_xyz<U>: the unit is qz::Rad or qz::Deg");
    PoseXYZ<U> p;
    // The C names carry the opposite unit: the ARC form answers in degrees, the DEG form in radians.
    (void)(std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4ARC_XYZ : QZ_Matrix2XYZABC4DEG_XYZ)(t.data(),
                                                                                         p.data());
    return p;
}
// ZYZ pose of a transform; zyz_singular below |b| = 0.5 degree, when only the angles are written
// (a = 0; with Deg, b and c stay in radians, as the C function leaves them).
template <class U>
[[nodiscard]] Result<PoseZYZ<U>> pose_zyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_zyz<U>: the unit is qz::Rad or qz::Deg");
    Result<PoseZYZ<U>> p{PoseZYZ<U>{}};  // the singular branch leaves the position unwritten
    const auto fn = std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4DEG_ZYZ : QZ_Matrix2XYZABC4ARC_ZYZ;
    if (!fn(t.data(), p.value().data())) p.fail(Status::zyz_singular, false);
    return p;
}
// T turned about its own z axis by the angle of cosine c and sine s.
[[nodiscard]] inline Mat4 turn_z(const Mat4 &t, double c, double s) noexcept {
    Mat4 out;
    QZ_XYZMRot(t.data(), c, s, out.data());
    return out;
}

}  // namespace qz

#endif  // QZMATH_ORIENTATION_HPP
