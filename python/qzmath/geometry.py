"""Rotations, Euler angles, poses, Denavit-Hartenberg frames and Jacobian frame changes.

Rotation matrices are (3, 3) and transforms (4, 4) numpy arrays. Every function that takes or
gives angles takes degrees=True for degrees; radians otherwise. Where a parameter's shape is
written (..., 3) it may carry leading batch axes (broadcast together as in numpy), and so does
the result.

Conversions from a matrix refuse one that is no rotation (its determinant not within 0.1 of 1),
as they refuse NaN and infinite values, with InvalidArgumentError naming the batch index.

Euler conventions: XYZ (A, B, C) means R = Rz(C) Ry(B) Rx(A); ZYZ (a, b, c) means
R = Rz(a) Ry(b) Rz(c). A pose is x, y, z, A, B, C.
"""
import collections

import numpy as np

from ._api import raw
from . import _arrays as A
from .errors import SingularError

__all__ = ["ZYZ", "rot_x", "rot_y", "rot_z", "rotate", "xyz_to_matrix", "matrix_to_xyz",
           "zyz_to_matrix", "matrix_to_zyz", "pose_to_matrix", "matrix_to_pose", "turn_about_z",
           "dh", "forward_kinematics", "skew", "l_operator", "line_cross", "jacobian_rotate"]

ZYZ = collections.namedtuple("ZYZ", "angles singular")
ZYZ.__doc__ = """ZYZ angles (..., 3) in radians and whether each orientation is singular."""
M3 = (3, 3)
M4 = (4, 4)


def radians(angle, name, degrees):
    """angle (any shape) checked, in radians."""
    a = A.array(angle, name, (), batch=True)
    return np.radians(a) if degrees else a


def _rot(fn, angle, degrees):
    return A.mapped(fn, [], M3, scalars=[(radians(angle, "angle", degrees), "angle")])[0]


def rot_x(angle, degrees: bool = False) -> np.ndarray:
    """Rotations about x by angle (any shape): shape angle.shape + (3, 3)."""
    return _rot("QZ_RotXARC", angle, degrees)


def rot_y(angle, degrees: bool = False) -> np.ndarray:
    """Rotations about y by angle (any shape): shape angle.shape + (3, 3)."""
    return _rot("QZ_RotYARC", angle, degrees)


def rot_z(angle, degrees: bool = False) -> np.ndarray:
    """Rotations about z by angle (any shape): shape angle.shape + (3, 3)."""
    return _rot("QZ_RotZARC", angle, degrees)


def rotate(r, v) -> np.ndarray:
    """(..., 3) vectors v turned by the (..., 3, 3) rotations r."""
    return A.mapped("QZ_MatrixMultVect3", [(r, "r", M3), (v, "v", (3,))], (3,))[0]


def xyz_to_matrix(abc, degrees: bool = False) -> np.ndarray:
    """(..., 3, 3) rotations Rz(C) Ry(B) Rx(A) of (..., 3) XYZ angles (A, B, C)."""
    fn = "QZ_ABC2Matrix3DEG" if degrees else "QZ_ABC2Matrix3ARC"
    return A.mapped(fn, [(abc, "abc", (3,))], M3)[0]


def _rot_or_transform(r, name, fn3, fn4):
    n = A.square_shape(r, name, (3, 4))
    return A.mapped(fn4 if n == 4 else fn3, [(r, name, (n, n), A.ROTATION)], (3,))


def matrix_to_xyz(r, degrees: bool = False) -> np.ndarray:
    """(..., 3) XYZ angles (A, B, C) of (..., 3, 3) rotations or of the rotation blocks of
    (..., 4, 4) transforms; A, C in (-pi, pi], B in [-pi/2, pi/2]. At B = +-pi/2 C is 0 and A
    carries the whole turn."""
    angles = _rot_or_transform(r, "r", "QZ_Matrix2XYZ", "QZ_Matrix42XYZ")[0]
    return np.degrees(angles) if degrees else angles


def zyz_to_matrix(abc, degrees: bool = False) -> np.ndarray:
    """(..., 3, 3) rotations Rz(a) Ry(b) Rz(c) of (..., 3) ZYZ angles (a, b, c)."""
    a = radians(A.array(abc, "abc", (3,), batch=True), "abc", degrees)
    return A.mapped("QZ_ZYZ2Matrix", [], M3,
                    scalars=[(a[..., 0], "abc"), (a[..., 1], "abc"), (a[..., 2], "abc")])[0]


def matrix_to_zyz(r, degrees: bool = False) -> ZYZ:
    """ZYZ angles of (..., 3, 3) rotations or (..., 4, 4) transforms' rotation blocks, as
    ZYZ(angles, singular). b lies in [0, pi]; singular is True where |b| < 0.5 degree, where a
    is 0 and c carries the whole turn about z."""
    angles, ok = _rot_or_transform(r, "r", "QZ_Matrix2ZYZ", "QZ_Matrix42ZYZ")
    singular = np.asarray(ok) == 0
    return ZYZ(np.degrees(angles) if degrees else angles,
               bool(singular) if singular.ndim == 0 else singular)


def pose_to_matrix(pose, degrees: bool = False) -> np.ndarray:
    """(..., 4, 4) transforms of (..., 6) poses x, y, z, A, B, C (XYZ angles)."""
    fn = "QZ_XYZABC2Matrix4DEG" if degrees else "QZ_XYZABC2Matrix4ARC"
    return A.mapped(fn, [(pose, "pose", (6,))], M4)[0]


def matrix_to_pose(t, degrees: bool = False, convention: str = "xyz") -> np.ndarray:
    """(..., 6) poses x, y, z and Euler angles of (..., 4, 4) transforms, XYZ (A, B, C) or ZYZ
    (a, b, c). For ZYZ near b = 0 the library leaves the position unwritten: SingularError (use
    matrix_to_zyz for the angles there)."""
    if convention == "xyz":
        # The library's XYZ extraction pair is named the other way round: ..ARC_XYZ gives degrees.
        fn = "QZ_Matrix2XYZABC4ARC_XYZ" if degrees else "QZ_Matrix2XYZABC4DEG_XYZ"
    elif convention == "zyz":
        fn = "QZ_Matrix2XYZABC4DEG_ZYZ" if degrees else "QZ_Matrix2XYZABC4ARC_ZYZ"
    else:
        raise ValueError("convention: 'xyz' or 'zyz', got %r" % (convention,))
    out, ok = A.mapped(fn, [(t, "t", M4, A.ROTATION)], (6,))
    if convention == "zyz" and not np.all(ok):
        bad = np.argwhere(np.asarray(ok) == 0)
        at = " at batch index %s" % A._index(bad[0]) if np.ndim(ok) else ""
        raise SingularError("t: ZYZ angles singular (b near 0)%s" % at)
    return out


def turn_about_z(t, c: float, s: float) -> np.ndarray:
    """Transform t turned about its own z axis by the angle of cosine c and sine s."""
    out = np.zeros(M4)
    raw.QZ_XYZMRot(A.addr(A.array(t, "t", M4)), A.finite(c, "c"), A.finite(s, "s"), A.addr(out))
    A.must_be_finite(out, "t, c, s", 0, "the result is not finite (the input is too large)")
    return out


def dh(alpha, a, d, theta, degrees: bool = False) -> np.ndarray:
    """Modified Denavit-Hartenberg link transforms RotX(alpha) TransX(a) RotZ(theta) TransZ(d);
    the parameters broadcast together, giving shape (..., 4, 4)."""
    return A.mapped("QZ_DH2Matrix", [], M4,
                    scalars=[(radians(alpha, "alpha", degrees), "alpha"), (a, "a"), (d, "d"),
                             (radians(theta, "theta", degrees), "theta")])[0]


def forward_kinematics(links, joints, degrees: bool = False) -> np.ndarray:
    """Flange transform of a serial arm: the product of dh(alpha, a, d, theta + q) over the links,
    an (n, 4) array of (alpha, a, d, theta offset), and the n joint angles q, base first. joints
    may carry leading batch axes: (..., n) gives (..., 4, 4). With degrees=True the link angles
    and the joints are in degrees."""
    from .linalg import matmul
    lk = A.array(links, "links", (4,), batch=True)
    if lk.ndim != 2:
        raise ValueError("links: expected shape (n, 4), got %s" % (lk.shape,))
    q = A.array(joints, "joints", (len(lk),), batch=True)
    t = None
    for (alpha, a, d, theta), qi in zip(lk, np.moveaxis(q, -1, 0)):
        link = dh(alpha, a, d, theta + qi, degrees=degrees)
        t = link if t is None else matmul(t, link)
    return t


def skew(v) -> np.ndarray:
    """Cross-product matrix S of v: S x = v x x."""
    return A.mapped("QZ_Skew", [(v, "v", (3,))], M3)[0]


def l_operator(v) -> np.ndarray:
    """(3, 6) L with L (Ixx, Ixy, Ixz, Iyy, Iyz, Izz) = I v for a symmetric inertia I."""
    return A.mapped("QZ_LOperator", [(v, "v", (3,))], (3, 6))[0]


def line_cross(p1, d1, p2, d2) -> np.ndarray:
    """Crossing of the lines p1 + s d1 and p2 + t d2, or the midpoint of their common
    perpendicular; SingularError for parallel lines or a zero direction."""
    x = np.zeros(3)
    args = [A.addr(A.array(v, n, (3,))) for v, n in ((p1, "p1"), (d1, "d1"), (p2, "p2"),
                                                     (d2, "d2"))]
    if not raw.QZ_LineCross(*args, A.addr(x)):
        raise SingularError("parallel lines or zero direction")
    return x


def jacobian_rotate(j, r) -> np.ndarray:
    """diag(R, R) J for a (6, 6) or (6, 7) Jacobian J: its rows expressed in the frame turned by
    R."""
    jj = A.array(j, "j", (6, 7) if np.shape(j) == (6, 7) else (6, 6))
    out = np.zeros(jj.shape)
    fn = raw.QZ_JACOB_TRAN_T66 if jj.shape[1] == 6 else raw.QZ_JACOB_TRAN_T67
    fn(A.addr(jj), A.addr(A.array(r, "r", M3)), A.addr(out))
    return out
