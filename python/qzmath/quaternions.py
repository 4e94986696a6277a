"""Quaternions (x, y, z, w: scalar last), slerp, PosQuat poses and rotation vectors.

A rotation by phi about the unit axis k is (k sin(phi/2), cos(phi/2)); q and -q are the same
orientation; products are Hamilton products. A PosQuat pose is x, y, z, qx, qy, qz, qw. A rotation
vector is the unit axis times the angle in radians.

Functions take any array-like and return numpy arrays. Where a parameter's shape is written
(..., 4) it may carry leading batch axes, which broadcast against each other as in numpy: a
(10, 4) array of quaternions gives (10, 3, 3) matrices, and slerp over an array of t gives one
quaternion per t.
"""
import ctypes

import numpy as np

from ._api import raw
from . import _arrays as A
from .errors import SingularError
from .records import QZSlerpFactorState

Q = (4,)
M3 = (3, 3)


def multiply(a, b) -> np.ndarray:
    """Hamilton product a (x) b of (..., 4) quaternions: the rotation of b followed by that of
    a."""
    return A.mapped(raw.QZ_QuatMult, [(a, "a", Q), (b, "b", Q)], Q)[0]


def normalize(q) -> np.ndarray:
    """(..., 4) quaternions divided by their lengths; SingularError for a length <= 1e-16."""
    out, ok = A.mapped(raw.QZ_QuaternionNorm, [], Q, inplace=(q, "q", Q))
    if not ok.all():
        raise SingularError("zero quaternion")
    return out


def length(q) -> np.ndarray:
    """Lengths of (..., 4) quaternions."""
    return A.mapped(lambda p, _: raw.QZ_QuaternionSqrtNorm(p), [(q, "q", Q)], ())[1]


def conjugate(q) -> np.ndarray:
    """(-x, -y, -z, w) of (..., 4) quaternions."""
    return A.mapped(raw.QZ_QuaternionConjugate, [(q, "q", Q)], Q)[0]


def inverse(q) -> np.ndarray:
    """Conjugates divided by the lengths (the inverse rotations) of (..., 4) quaternions;
    SingularError for a length not above 1e-9."""
    out, ok = A.mapped(raw.QZ_QuaternionInverse, [(q, "q", Q)], Q)
    if not ok.all():
        raise SingularError("quaternion too short to invert")
    return out


def angle(q1, q2, degrees: bool = False) -> np.ndarray:
    """Angle of the shorter rotation between (..., 4) unit quaternions, radians (degrees with
    degrees=True). Equal orientations give a small positive floor (about 2.8e-5 rad), not 0."""
    fn = raw.QZ_QuaternionAngleDeg if degrees else raw.QZ_QuaternionAngleArc
    return A.mapped(lambda a, b, _: fn(a, b), [(q1, "q1", Q), (q2, "q2", Q)], ())[1]


def from_matrix(r) -> np.ndarray:
    """(..., 4) quaternions of (..., 3, 3) rotations or of the rotation blocks of (..., 4, 4)
    transforms (not normalised)."""
    n = A.square_shape(r, "r", (3, 4))
    fn = raw.QZ_Matrix2Quaternion4 if n == 4 else raw.QZ_Matrix2Quaternion3
    return A.mapped(fn, [(r, "r", (n, n))], Q)[0]


def to_matrix(q) -> np.ndarray:
    """(..., 3, 3) rotations of (..., 4) unit quaternions."""
    return A.mapped(raw.QZ_Quaternion2Matrix3, [(q, "q", Q)], M3)[0]


def rotate(q, v) -> np.ndarray:
    """(..., 3) vectors v turned by the (..., 4) unit quaternions q (the matrix of q times v)."""
    return A.mapped(raw.QZ_MatrixMultVect3, [(to_matrix(q), "q", M3), (v, "v", (3,))], (3,))[0]


def pose_from_matrix(t) -> np.ndarray:
    """(..., 7) PosQuat poses of (..., 4, 4) transforms."""
    return A.mapped(raw.QZ_Matrix2PosQuat, [(t, "t", (4, 4))], (7,))[0]


def pose_to_matrix(pose, normalize: bool = True) -> np.ndarray:
    """(..., 4, 4) transforms of (..., 7) PosQuat poses, the quaternion normalised first unless
    normalize=False (then taken as unit length)."""
    fn = raw.QZ_PosQuat2Matrix_UnNorm if normalize else raw.QZ_PosQuat2Matrix
    return A.mapped(fn, [(pose, "pose", (7,))], (4, 4))[0]


def pose_from_xyzabc(pose_deg) -> np.ndarray:
    """(..., 7) PosQuat poses of (..., 6) poses x, y, z, A, B, C with XYZ angles in degrees."""
    p = A.array(pose_deg, "pose_deg", (6,), batch=True)
    buf = np.concatenate([p, np.zeros(p.shape[:-1] + (2,))], axis=-1)
    out, ok = A.mapped(raw.QZ_XYZABC2XYZQ, [], (8,), inplace=(buf, "pose_deg", (8,)))
    if not ok.all():
        raise SingularError("quaternion too short to normalise")
    return out[..., :7].copy()


def slerp(q1, q2, t, longer: bool = False) -> np.ndarray:
    """Spherical interpolation from q1 (t = 0) to q2 (t = 1) along the shorter way, or the longer
    one; linear weights where the ends nearly coincide. q1, q2 are (..., 4) and t any shape, all
    broadcast together: slerp(q1, q2, np.linspace(0, 1, 50)) gives (50, 4). Neither the ends nor
    the result are normalised."""
    fn = raw.QZ_QuatSlerpL if longer else raw.QZ_QuatSlerp
    # QZ_QuatSlerp may negate q2 in place: each call gets its own copy from mapped().
    return A.mapped(fn, [(q1, "q1", Q), (q2, "q2", Q)], Q, scalars=[(t, "t")])[0]


class Slerp:
    """Slerp between one fixed pair of quaternions with their angle worked out once, for paths
    sampled at many t. q2 is kept as possibly negated for the chosen way round."""

    def __init__(self, q1, q2, longer: bool = False):
        self._q1, self._q2 = A.array(q1, "q1", Q), A.array(q2, "q2", Q)
        self._state = QZSlerpFactorState()
        self._fn = raw.QZ_QuatSlerpFactorL if longer else raw.QZ_QuatSlerpFactor

    def __call__(self, t) -> np.ndarray:
        """Quaternions at t (any shape): shape t.shape + (4,)."""
        ts = A.array(t, "t", (), batch=True)
        out = np.zeros(ts.shape + Q)
        a, b, po = A.base(self._q1), A.base(self._q2), A.base(out)
        st = ctypes.addressof(self._state)
        for i, x in enumerate(ts.ravel().tolist()):
            self._fn(a, b, x, po + 32 * i, st)
        return out

    @property
    def q2(self) -> np.ndarray:
        return self._q2.copy()


def turn_sense(q1, q2, axis) -> int:
    """-1 when the frame's x axis turns negatively about axis from q1 to q2, else +1."""
    return raw.QZ_QuatSlerpDir(A.addr(A.array(q1, "q1", Q)), A.addr(A.array(q2, "q2", Q)),
                               A.addr(A.array(axis, "axis", (3,))))


def rotvec_to_matrix(r) -> np.ndarray:
    """(..., 3, 3) rotations of (..., 3) rotation vectors (Rodrigues)."""
    return A.mapped(raw.axis_angle_to_rotmat, [(r, "r", (3,))], M3)[0]


def matrix_to_rotvec(m) -> np.ndarray:
    """(..., 3) rotation vectors of (..., 3, 3) rotations, angle in [0, pi]."""
    return A.mapped(raw.rotmat_to_axis_angle, [(m, "m", M3)], (3,))[0]


def rotvec_compose(r1, r2) -> np.ndarray:
    """Rotation vector of R(r1) R(r2): r2 first, then r1, both in the fixed frame."""
    return A.mapped(raw.AngleMult, [(r1, "r1", (3,)), (r2, "r2", (3,))], (3,))[0]


def relative_rotation(ra, rb) -> np.ndarray:
    """Ra^T Rb: the rotation from orientation a to b, in frame a."""
    return A.mapped(raw.relative_rotation, [(ra, "ra", M3), (rb, "rb", M3)], M3)[0]


def relative_rotvec(r1, r2) -> np.ndarray:
    """Rotation vector of relative_rotation(R(r1), R(r2))."""
    return A.mapped(raw.relative_Angle, [(r1, "r1", (3,)), (r2, "r2", (3,))], (3,))[0]
