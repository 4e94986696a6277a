// orientation.hpp: rotations and their representations in the C++ interface (rotation matrices,
// quaternions, XYZ and ZYZ Euler angles, rotation vectors, poses and transforms), over the
// conversions of QZMatrix.h and QZQuaternions.h.
//
// Families (namespace qz): rotation rotation4 transform to_quat to_posquat to_rotvec euler_xyz
//   euler_zyz pose_xyz pose_zyz rot_x rot_y rot_z compose relative turn_z
#ifndef QZMATH_ORIENTATION_HPP
#define QZMATH_ORIENTATION_HPP

#include <cmath>
#include <cstddef>
#include <type_traits>

#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "core.hpp"

namespace qz {

namespace detail {
// The value a conversion writes through fn, or zeros with the status that refused its input
// (non_finite too for a NaN result of finite input).
template <class T, class F>
Result<T> convert(Status status, F fn) noexcept {
    if (status != Status::ok) return {T{}, status};
    T out{};
    fn(out);
    return finite_result(out);
}
// The status of a transform read as a pose: its rotation block a rotation, its position finite.
inline Status pose_status(const Mat4 &t) noexcept {
    const Status s = rotation_matrix_status<4>(t.data());
    return s != Status::ok ? s : finite_status(t(0, 3), t(1, 3), t(2, 3));
}
}  // namespace detail

// Every conversion between representations returns a Result: non_finite, zeros, when what it
// reads holds a NaN or an infinity; zero_length for a quaternion of length 1e-9 or less and
// not_a_rotation for one whose length is not within 1e-3 of 1 or for a matrix whose rows are not
// orthonormal within 1e-3 or that mirrors. Nothing is turned into a plausible finite answer.

// Quaternion of a rotation matrix, or of a transform's rotation block (not normalised).
[[nodiscard]] inline Result<Quat> to_quat(const Mat3 &r) noexcept {
    return detail::convert<Quat>(detail::rotation_matrix_status<3>(r.data()),
                                 [&](Quat &q) { QZ_Matrix2Quaternion3(r.data(), q.data()); });
}
[[nodiscard]] inline Result<Quat> to_quat(const Mat4 &t) noexcept {
    return detail::convert<Quat>(detail::rotation_matrix_status<4>(t.data()),
                                 [&](Quat &q) { QZ_Matrix2Quaternion4(t.data(), q.data()); });
}
// Rotation matrix of a unit quaternion, of a rotation vector, of Euler angles.
[[nodiscard]] inline Result<Mat3> rotation(const Quat &q) noexcept {
    return detail::convert<Mat3>(detail::rotation_status(q),
                                 [&](Mat3 &r) { QZ_Quaternion2Matrix3(q.data(), r.data()); });
}
[[nodiscard]] inline Result<Mat3> rotation(const RotVec &v) noexcept {
    return detail::convert<Mat3>(detail::finite_status(v),
                                 [&](Mat3 &r) { axis_angle_to_rotmat(v.data(), r.data()); });
}
template <class U>
[[nodiscard]] Result<Mat3> rotation(const EulerXYZ<U> &abc) noexcept {
    const auto fn = std::is_same_v<U, Deg> ? QZ_ABC2Matrix3DEG : QZ_ABC2Matrix3ARC;
    return detail::convert<Mat3>(detail::finite_status(abc),
                                 [&](Mat3 &r) { (void)fn(abc.data(), r.data()); });
}
[[nodiscard]] inline Result<Mat3> rotation(const EulerZYZ &abc) noexcept {
    return detail::convert<Mat3>(detail::finite_status(abc),
                                 [&](Mat3 &r) { QZ_ZYZ2Matrix(abc[0], abc[1], abc[2], r.data()); });
}
// 4x4 matrix with the rotation of q and zeros elsewhere: element (3, 3) is 0 as well.
[[nodiscard]] inline Result<Mat4> rotation4(const Quat &q) noexcept {
    return detail::convert<Mat4>(detail::rotation_status(q),
                                 [&](Mat4 &m) { QZ_Quaternion2Matrix4(q.data(), m.data()); });
}
// Elementary rotations (a NaN or infinite angle gives NaN elements).
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
[[nodiscard]] inline Result<EulerXYZ<Rad>> euler_xyz(const Mat3 &r) noexcept {
    return detail::convert<EulerXYZ<Rad>>(
        detail::rotation_matrix_status<3>(r.data()),
        [&](EulerXYZ<Rad> &abc) { (void)QZ_Matrix2XYZ(r.data(), abc.data()); });
}
[[nodiscard]] inline Result<EulerXYZ<Rad>> euler_xyz(const Mat4 &t) noexcept {
    return detail::convert<EulerXYZ<Rad>>(
        detail::rotation_matrix_status<4>(t.data()),
        [&](EulerXYZ<Rad> &abc) { (void)QZ_Matrix42XYZ(t.data(), abc.data()); });
}
// ZYZ angles in radians; zyz_singular below |b| = 0.5 degree, with a = 0 and usable b, c.
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat3 &r) noexcept {
    if (const Status s = detail::rotation_matrix_status<3>(r.data()); s != Status::ok)
        return {EulerZYZ{}, s};
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (QZ_Matrix2ZYZ(r.data(), abc.value().data()) == 0) abc.fail(Status::zyz_singular, false);
    return abc;
}
[[nodiscard]] inline Result<EulerZYZ> euler_zyz(const Mat4 &t) noexcept {
    if (const Status s = detail::rotation_matrix_status<4>(t.data()); s != Status::ok)
        return {EulerZYZ{}, s};
    Result<EulerZYZ> abc{Result<EulerZYZ>::Unwritten{}};
    if (QZ_Matrix42ZYZ(t.data(), abc.value().data()) == 0) abc.fail(Status::zyz_singular, false);
    return abc;
}
// Rotation vector of a rotation matrix, angle in [0, pi].
[[nodiscard]] inline Result<RotVec> to_rotvec(const Mat3 &r) noexcept {
    return detail::convert<RotVec>(detail::rotation_matrix_status<3>(r.data()),
                                   [&](RotVec &v) { rotmat_to_axis_angle(r.data(), v.data()); });
}
// Rotation vector of R(a) R(b): b applied first, both in the fixed frame.
[[nodiscard]] inline Result<RotVec> compose(const RotVec &a, const RotVec &b) noexcept {
    return detail::convert<RotVec>(detail::finite_status(a, b),
                                   [&](RotVec &v) { AngleMult(a.data(), b.data(), v.data()); });
}
// The rotation from orientation a to orientation b, expressed in frame a: Ra^T Rb (a product:
// NaN in, NaN out).
[[nodiscard]] inline Mat3 relative(const Mat3 &a, const Mat3 &b) noexcept {
    Mat3 out;
    relative_rotation(a.data(), b.data(), out.data());
    return out;
}
[[nodiscard]] inline Result<RotVec> relative(const RotVec &a, const RotVec &b) noexcept {
    return detail::convert<RotVec>(detail::finite_status(a, b), [&](RotVec &v) {
        relative_Angle(a.data(), b.data(), v.data());
    });
}

// Transform of a pose.
[[nodiscard]] inline Result<Mat4> transform(const PosQuat &p) noexcept {
    const Quat q{{p[3], p[4], p[5], p[6]}};
    const Status s = !detail::all_finite(p) ? Status::non_finite : detail::rotation_status(q);
    return detail::convert<Mat4>(s, [&](Mat4 &t) { QZ_PosQuat2Matrix(p.data(), t.data()); });
}
template <class U>
[[nodiscard]] Result<Mat4> transform(const PoseXYZ<U> &p) noexcept {
    const auto fn = std::is_same_v<U, Deg> ? QZ_XYZABC2Matrix4DEG : QZ_XYZABC2Matrix4ARC;
    return detail::convert<Mat4>(detail::finite_status(p),
                                 [&](Mat4 &t) { fn(p.data(), t.data()); });
}
// PosQuat pose of a transform.
[[nodiscard]] inline Result<PosQuat> to_posquat(const Mat4 &t) noexcept {
    return detail::convert<PosQuat>(detail::pose_status(t),
                                    [&](PosQuat &p) { QZ_Matrix2PosQuat(t.data(), p.data()); });
}
// PosQuat pose of an XYZABC pose in degrees, quaternion normalised; zero_length when it could
// not be (then it is unnormalised).
[[nodiscard]] inline Result<PosQuat> to_posquat(const PoseXYZ<Deg> &p) noexcept {
    if (!detail::all_finite(p)) return {PosQuat{}, Status::non_finite};
    double buf[8] = {p[0], p[1], p[2], p[3], p[4], p[5], 0.0, 0.0};
    const bool ok = QZ_XYZABC2XYZQ(buf) != 0;
    PosQuat out;
    for (std::size_t i = 0; i < 7; ++i) out[i] = buf[i];
    return {out, ok ? Status::ok : Status::zero_length};
}
// XYZ pose of a transform, angles in the unit asked for.
template <class U>
[[nodiscard]] Result<PoseXYZ<U>> pose_xyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_xyz<U>: the unit is qz::Rad or qz::Deg");
    // The C names carry the opposite unit: the ARC form answers in degrees, the DEG form in radians.
    const auto fn = std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4ARC_XYZ : QZ_Matrix2XYZABC4DEG_XYZ;
    return detail::convert<PoseXYZ<U>>(detail::pose_status(t),
                                       [&](PoseXYZ<U> &p) { (void)fn(t.data(), p.data()); });
}
// ZYZ pose of a transform, angles in the unit asked for; zyz_singular below |b| = 0.5 degree,
// with a = 0 and usable b, c, and the position, as on the regular branch.
template <class U>
[[nodiscard]] Result<PoseZYZ<U>> pose_zyz(const Mat4 &t) noexcept {
    static_assert(detail::is_unit<U>, "qz::pose_zyz<U>: the unit is qz::Rad or qz::Deg");
    if (const Status s = detail::pose_status(t); s != Status::ok) return {PoseZYZ<U>{}, s};
    Result<PoseZYZ<U>> p{PoseZYZ<U>{}};
    const auto fn = std::is_same_v<U, Deg> ? QZ_Matrix2XYZABC4DEG_ZYZ : QZ_Matrix2XYZABC4ARC_ZYZ;
    if (fn(t.data(), p.value().data())) return p;
    // The C function writes only the angles, in radians, on this branch: the position and the
    // unit are completed here as its regular branch would.
    auto &v = p.value();
    v[0] = t(0, 3), v[1] = t(1, 3), v[2] = t(2, 3);
    if constexpr (std::is_same_v<U, Deg>)
        for (std::size_t i = 3; i < 6; ++i) v[i] = to_deg(Rad{v[i]}).value;
    p.fail(Status::zyz_singular, false);
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
