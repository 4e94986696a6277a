"""Rotations, Euler angles, poses, Denavit-Hartenberg frames and Jacobian frame changes.

Rotation matrices are 3x3 and transforms 4x4, given and returned as lists of rows. Angles are
in radians unless a function takes degrees=True.

Euler conventions: XYZ (A, B, C) means R = Rz(C) Ry(B) Rx(A); ZYZ (a, b, c) means
R = Rz(a) Ry(b) Rz(c). A pose is x, y, z, A, B, C.
"""
import collections
import ctypes

from ._api import lib
from . import _arrays as A
from .errors import SingularError

ZYZ = collections.namedtuple("ZYZ", "a b c singular")


def _rot_or_transform(r, what):
    """C array of a 3x3 rotation or 4x4 transform, and whether it is the transform."""
    x, n = A.square(r, what, (3, 4))
    return x, n == 4


def rot_x(angle):
    """Rotation about x by angle (radians)."""
    r = A.doubles(9)
    lib.QZ_RotXARC(angle, r)
    return A.to_rows(r, 3, 3)


def rot_y(angle):
    r = A.doubles(9)
    lib.QZ_RotYARC(angle, r)
    return A.to_rows(r, 3, 3)


def rot_z(angle):
    r = A.doubles(9)
    lib.QZ_RotZARC(angle, r)
    return A.to_rows(r, 3, 3)


def xyz_to_matrix(abc, degrees=False):
    """Rotation Rz(C) Ry(B) Rx(A) of the XYZ angles (A, B, C)."""
    r = A.doubles(9)
    (lib.QZ_ABC2Matrix3DEG if degrees else lib.QZ_ABC2Matrix3ARC)(A.vector(abc, 3, "abc"), r)
    return A.to_rows(r, 3, 3)


def matrix_to_xyz(r):
    """XYZ angles (A, B, C) in radians of a rotation or of a transform's rotation block; A, C in
    (-pi, pi], B in [-pi/2, pi/2]. At B = +-pi/2 C is 0 and A carries the whole turn."""
    x, is4 = _rot_or_transform(r, "r")
    out = A.doubles(3)
    (lib.QZ_Matrix42XYZ if is4 else lib.QZ_Matrix2XYZ)(x, out)
    return A.to_list(out)


def zyz_to_matrix(a, b, c):
    """Rotation Rz(a) Ry(b) Rz(c) (radians)."""
    r = A.doubles(9)
    lib.QZ_ZYZ2Matrix(a, b, c, r)
    return A.to_rows(r, 3, 3)


def matrix_to_zyz(r):
    """ZYZ angles in radians of a rotation or a transform's rotation block, as ZYZ(a, b, c,
    singular). b lies in [0, pi]; singular is True when |b| < 0.5 degree, where a is 0 and c
    carries the whole turn about z."""
    x, is4 = _rot_or_transform(r, "r")
    out = A.doubles(3)
    ok = (lib.QZ_Matrix42ZYZ if is4 else lib.QZ_Matrix2ZYZ)(x, out)
    return ZYZ(out[0], out[1], out[2], not ok)


def pose_to_matrix(pose, degrees=False):
    """4x4 transform of a pose x, y, z, A, B, C (XYZ angles)."""
    t = A.doubles(16)
    fn = lib.QZ_XYZABC2Matrix4DEG if degrees else lib.QZ_XYZABC2Matrix4ARC
    fn(A.vector(pose, 6, "pose"), t)
    return A.to_rows(t, 4, 4)


def matrix_to_pose(t, degrees=False, convention="xyz"):
    """Pose x, y, z and Euler angles of a 4x4 transform, XYZ (A, B, C) or ZYZ (a, b, c).
    For ZYZ near b = 0 the library leaves the position unwritten: SingularError (use
    matrix_to_zyz for the angles there)."""
    x = A.matrix(t, 4, 4, "t")
    out = A.doubles(6)
    if convention == "xyz":
        # The library's XYZ extraction pair is named the other way round: ..ARC_XYZ gives degrees.
        (lib.QZ_Matrix2XYZABC4ARC_XYZ if degrees else lib.QZ_Matrix2XYZABC4DEG_XYZ)(x, out)
    elif convention == "zyz":
        fn = lib.QZ_Matrix2XYZABC4DEG_ZYZ if degrees else lib.QZ_Matrix2XYZABC4ARC_ZYZ
        if not fn(x, out):
            raise SingularError("ZYZ angles singular (b near 0)")
    else:
        raise ValueError("convention: 'xyz' or 'zyz'")
    return A.to_list(out)


def turn_about_z(t, c, s):
    """Transform t turned about its own z axis by the angle of cosine c and sine s."""
    out = A.doubles(16)
    lib.QZ_XYZMRot(A.matrix(t, 4, 4, "t"), c, s, out)
    return A.to_rows(out, 4, 4)


def dh(alpha, a, d, theta):
    """Modified Denavit-Hartenberg link transform RotX(alpha) TransX(a) RotZ(theta) TransZ(d)."""
    t = A.doubles(16)
    lib.QZ_DH2Matrix(alpha, a, d, theta, t)
    return A.to_rows(t, 4, 4)


def forward_kinematics(links, joints):
    """Flange transform of a serial arm: the product of dh(alpha, a, d, theta + q) over the links
    (alpha, a, d, theta offset) and joint angles q, base first."""
    from .linalg import matmul
    if len(links) != len(joints):
        raise ValueError("one joint angle per link")
    t = None
    for (alpha, a, d, theta), q in zip(links, joints):
        link = dh(alpha, a, d, theta + q)
        t = link if t is None else matmul(t, link)
    return t


def skew(v):
    """Cross-product matrix S of v: S x = v x x."""
    s = A.doubles(9)
    lib.QZ_Skew(A.vector(v, 3, "v"), s)
    return A.to_rows(s, 3, 3)


def l_operator(v):
    """3x6 L with L (Ixx, Ixy, Ixz, Iyy, Iyz, Izz) = I v for a symmetric inertia I."""
    out = A.doubles(18)
    lib.QZ_LOperator(A.vector(v, 3, "v"), out)
    return A.to_rows(out, 3, 6)


def line_cross(p1, d1, p2, d2):
    """Crossing of the lines p1 + s d1 and p2 + t d2, or the midpoint of their common
    perpendicular; SingularError for parallel lines or a zero direction."""
    x = A.doubles(3)
    if not lib.QZ_LineCross(A.vector(p1, 3, "p1"), A.vector(d1, 3, "d1"), A.vector(p2, 3, "p2"),
                            A.vector(d2, 3, "d2"), x):
        raise SingularError("parallel lines or zero direction")
    return A.to_list(x)


def jacobian_rotate(j, r):
    """diag(R, R) J for a 6x6 or 6x7 Jacobian J: its rows expressed in the frame turned by R."""
    shape = A.shape_of(j)
    if shape not in ((6, 6), (6, 7)):
        raise ValueError("jacobian_rotate: a 6x6 or 6x7 Jacobian given as rows")
    cols = shape[1]
    out = A.doubles(6 * cols)
    fn = lib.QZ_JACOB_TRAN_T66 if cols == 6 else lib.QZ_JACOB_TRAN_T67
    fn(A.matrix(j, 6, cols, "j"), A.matrix(r, 3, 3, "r"), out)
    return A.to_rows(out, 6, cols)
