"""Quaternions (x, y, z, w: scalar last), slerp, PosQuat poses and rotation vectors.

A rotation by phi about the unit axis k is (k sin(phi/2), cos(phi/2)); q and -q are the same
orientation. A PosQuat pose is x, y, z, qx, qy, qz, qw. A rotation vector is the unit axis
times the angle in radians.
"""
import ctypes

from ._api import lib
from . import _arrays as A
from .errors import SingularError
from .records import QZSlerpFactorState


def _q(q, what="q"):
    return A.vector(q, 4, what)


def multiply(a, b):
    """Hamilton product a (x) b: the rotation of b followed by that of a."""
    out = A.doubles(4)
    lib.QZ_QuatMult(_q(a, "a"), _q(b, "b"), out)
    return A.to_list(out)


def normalize(q):
    """q divided by its length; SingularError for a length <= 1e-16."""
    x = _q(q)
    if not lib.QZ_QuaternionNorm(x):
        raise SingularError("zero quaternion")
    return A.to_list(x)


def length(q):
    return lib.QZ_QuaternionSqrtNorm(_q(q))


def conjugate(q):
    out = A.doubles(4)
    lib.QZ_QuaternionConjugate(_q(q), out)
    return A.to_list(out)


def inverse(q):
    """Conjugate divided by the length (the inverse rotation); SingularError for a length not
    above 1e-9."""
    out = A.doubles(4)
    if not lib.QZ_QuaternionInverse(_q(q), out):
        raise SingularError("quaternion too short to invert")
    return A.to_list(out)


def angle(q1, q2, degrees=False):
    """Angle of the shorter rotation between unit quaternions. Equal orientations give a small
    positive floor (about 2.8e-5 rad), not 0."""
    fn = lib.QZ_QuaternionAngleDeg if degrees else lib.QZ_QuaternionAngleArc
    return fn(_q(q1, "q1"), _q(q2, "q2"))


def from_matrix(r):
    """Quaternion of a 3x3 rotation or of a 4x4 transform's rotation block (not normalised)."""
    x, n = A.square(r, "r", (3, 4))
    q = A.doubles(4)
    (lib.QZ_Matrix2Quaternion4 if n == 4 else lib.QZ_Matrix2Quaternion3)(x, q)
    return A.to_list(q)


def to_matrix(q):
    """3x3 rotation of a unit quaternion."""
    r = A.doubles(9)
    lib.QZ_Quaternion2Matrix3(_q(q), r)
    return A.to_rows(r, 3, 3)


def pose_from_matrix(t):
    """PosQuat pose of a 4x4 transform."""
    out = A.doubles(7)
    lib.QZ_Matrix2PosQuat(A.matrix(t, 4, 4, "t"), out)
    return A.to_list(out)


def pose_to_matrix(pose, normalize=True):
    """4x4 transform of a PosQuat pose, its quaternion normalised first unless normalize=False
    (then taken as unit length)."""
    p = A.vector(pose, 7, "pose")
    t = A.doubles(16)
    (lib.QZ_PosQuat2Matrix_UnNorm if normalize else lib.QZ_PosQuat2Matrix)(p, t)
    return A.to_rows(t, 4, 4)


def pose_from_xyzabc(pose_deg):
    """PosQuat pose of x, y, z, A, B, C with XYZ angles in degrees."""
    buf = A.doubles(8)
    buf[:6] = A.to_list(A.vector(pose_deg, 6, "pose"))
    if not lib.QZ_XYZABC2XYZQ(buf):
        raise SingularError("quaternion too short to normalise")
    return A.to_list(buf, 7)


def slerp(q1, q2, t, longer=False):
    """Spherical interpolation from q1 (t = 0) to q2 (t = 1) along the shorter way, or the longer
    one; linear weights where the ends nearly coincide. Neither ends nor result are
    normalised."""
    a, b, out = _q(q1, "q1"), _q(q2, "q2"), A.doubles(4)
    (lib.QZ_QuatSlerpL if longer else lib.QZ_QuatSlerp)(a, b, t, out)
    return A.to_list(out)


class Slerp:
    """Slerp between one fixed pair of quaternions with their angle worked out once, for paths
    sampled at many t. q2 is kept as possibly negated for the chosen way round."""

    def __init__(self, q1, q2, longer=False):
        self._q1, self._q2 = _q(q1, "q1"), _q(q2, "q2")
        self.state = QZSlerpFactorState()
        self._fn = lib.QZ_QuatSlerpFactorL if longer else lib.QZ_QuatSlerpFactor
        self._out = A.doubles(4)

    def __call__(self, t):
        self._fn(self._q1, self._q2, t, self._out, ctypes.byref(self.state))
        return A.to_list(self._out)

    @property
    def q2(self):
        return A.to_list(self._q2)


def turn_sense(q1, q2, axis):
    """-1 when the frame's x axis turns negatively about axis from q1 to q2, else +1."""
    return lib.QZ_QuatSlerpDir(_q(q1, "q1"), _q(q2, "q2"), A.vector(axis, 3, "axis"))


def rotvec_to_matrix(r):
    """Rotation matrix of a rotation vector (Rodrigues)."""
    out = A.doubles(9)
    lib.axis_angle_to_rotmat(A.vector(r, 3, "r"), out)
    return A.to_rows(out, 3, 3)


def matrix_to_rotvec(m):
    """Rotation vector of a rotation matrix, angle in [0, pi]."""
    out = A.doubles(3)
    lib.rotmat_to_axis_angle(A.matrix(m, 3, 3, "m"), out)
    return A.to_list(out)


def rotvec_compose(r1, r2):
    """Rotation vector of R(r1) R(r2): r2 first, then r1, both in the fixed frame."""
    out = A.doubles(3)
    lib.AngleMult(A.vector(r1, 3, "r1"), A.vector(r2, 3, "r2"), out)
    return A.to_list(out)


def relative_rotation(ra, rb):
    """Ra^T Rb: the rotation from orientation a to b, in frame a."""
    out = A.doubles(9)
    lib.relative_rotation(A.matrix(ra, 3, 3, "ra"), A.matrix(rb, 3, 3, "rb"), out)
    return A.to_rows(out, 3, 3)


def relative_rotvec(r1, r2):
    """Rotation vector of relative_rotation(R(r1), R(r2))."""
    out = A.doubles(3)
    lib.relative_Angle(A.vector(r1, 3, "r1"), A.vector(r2, 3, "r2"), out)
    return A.to_list(out)
