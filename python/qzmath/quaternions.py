"""Quaternions (x, y, z, w: scalar last), slerp, PosQuat poses and rotation vectors.

A rotation by phi about the unit axis k is (k sin(phi/2), cos(phi/2)); q and -q are the same
orientation; products are Hamilton products. A PosQuat pose is x, y, z, qx, qy, qz, qw. A rotation
vector is the unit axis times the angle (radians, or degrees with degrees=True).

Functions take any array-like and return numpy arrays (a single length or angle as a float).
Every function that takes or gives angles takes degrees=True for degrees; radians otherwise.
Where a quaternion stands for a rotation, a zero-norm one (length not above 1e-9) or one whose
length is not within 1e-3 of 1 is refused with InvalidArgumentError naming its batch index, as is
a matrix that is no rotation
(determinant not within 0.1 of 1) and NaN and infinite values everywhere.

Where a parameter's shape is written (..., 4) it may carry leading batch axes, which broadcast
against each other as in numpy: a (10, 4) array of quaternions gives (10, 3, 3) matrices, and
slerp over an array of t gives one quaternion per t.
"""
import ctypes

import numpy as np

from ._api import address, batch, raw
from . import _arrays as A
from .errors import SingularError
from .records import QZSlerpFactorState

__all__ = ["multiply", "normalize", "length", "conjugate", "inverse", "angle",
           "from_matrix", "to_matrix", "rotate", "pose_from_matrix", "pose_to_matrix",
           "pose_from_xyzabc", "slerp", "Slerp", "turn_sense", "rotvec_to_matrix",
           "matrix_to_rotvec", "rotvec_compose", "relative_rotation", "relative_rotvec"]

Q = (4,)
M3 = (3, 3)
ROT = slice(0, 4)       # a quaternion that stands for a rotation
POSE_ROT = slice(3, 7)  # the rotation of a PosQuat pose


def multiply(a, b) -> np.ndarray:
    """Hamilton product a (x) b of (..., 4) quaternions: the rotation of b followed by that of
    a."""
    # a product of quaternions of any length but zero: nothing here takes them as unit length
    return A.mapped("QZ_QuatMult", [(a, "a", Q, ROT, "any length"), (b, "b", Q, ROT, "any length")],
                    Q)[0]


def normalize(q) -> np.ndarray:
    """(..., 4) quaternions divided by their lengths; SingularError for a length <= 1e-16."""
    out, ok = A.mapped("QZ_QuaternionNorm", [], Q, inplace=(A.length_in_range(q, "q", Q), "q", Q))
    _refused(ok, "q: zero quaternion")
    return out


def length(q):
    """Lengths of (..., 4) quaternions (a float for one quaternion)."""
    return A.mapped("QZ_QuaternionSqrtNorm", [(q, "q", Q)], None)[1]


def conjugate(q) -> np.ndarray:
    """(-x, -y, -z, w) of (..., 4) quaternions."""
    return A.mapped("QZ_QuaternionConjugate", [(q, "q", Q)], Q)[0]


def inverse(q) -> np.ndarray:
    """Conjugates divided by the lengths (the inverse rotations) of (..., 4) quaternions;
    SingularError for a length not above 1e-9."""
    out, ok = A.mapped("QZ_QuaternionInverse", [(A.length_in_range(q, "q", Q), "q", Q)], Q)
    _refused(ok, "q: quaternion too short to invert")
    return out


def _refused(ok, what):
    """SingularError at the first batch element whose call returned 0."""
    if not np.all(ok):
        bad = np.argwhere(np.asarray(ok) == 0)
        raise SingularError(what + (" at batch index %s" % A._index(bad[0]) if np.ndim(ok) else ""))


def angle(q1, q2, degrees: bool = False):
    """Angle of the shorter rotation between (..., 4) unit quaternions (a float for one pair).
    Equal orientations give a small positive floor (about 2.8e-5 rad), not 0."""
    fn = "QZ_QuaternionAngleDeg" if degrees else "QZ_QuaternionAngleArc"
    return A.mapped(fn, [(q1, "q1", Q, ROT), (q2, "q2", Q, ROT)], None)[1]


def from_matrix(r) -> np.ndarray:
    """(..., 4) quaternions of (..., 3, 3) rotations or of the rotation blocks of (..., 4, 4)
    transforms (not normalised)."""
    n = A.square_shape(r, "r", (3, 4))
    fn = "QZ_Matrix2Quaternion4" if n == 4 else "QZ_Matrix2Quaternion3"
    out = A.mapped(fn, [(r, "r", (n, n))], Q)[0]
    A.unit_quats(out, "r", out.ndim - 1)
    return out


def to_matrix(q) -> np.ndarray:
    """(..., 3, 3) rotations of (..., 4) unit quaternions."""
    return A.mapped("QZ_Quaternion2Matrix3", [(q, "q", Q, ROT)], M3)[0]


def rotate(q, v) -> np.ndarray:
    """(..., 3) vectors v turned by the (..., 4) unit quaternions q: the matrix of q times v,
    element by element without a batch of matrices in between."""
    qq = A.array(q, "q", Q, batch=True, copy=False)
    vv = A.array(v, "v", (3,), batch=True, copy=False)
    A.rotation_quats(qq, "q", qq.ndim - 1)
    lead = np.broadcast_shapes(qq.shape[:-1], vv.shape[:-1])
    qq, vv = (np.ascontiguousarray(np.broadcast_to(x, lead + x.shape[-1:])) for x in (qq, vv))
    out = np.empty(lead + (3,))
    n = out.size // 3
    if n:
        batch.qzb_quat_rotate(address("QZ_Quaternion2Matrix3"), address("QZ_MatrixMultVect3"),
                              n, qq.ctypes.data, 4, vv.ctypes.data, 3, out.ctypes.data, 3)
    A.must_be_finite(out, "q, v", len(lead), "the result is not finite (the input is too large)")
    return out


def pose_from_matrix(t) -> np.ndarray:
    """(..., 7) PosQuat poses of (..., 4, 4) transforms."""
    out = A.mapped("QZ_Matrix2PosQuat", [(t, "t", (4, 4))], (7,))[0]
    A.unit_quats(out[..., 3:], "t", out.ndim - 1)
    return out


def pose_to_matrix(pose, normalize: bool = True) -> np.ndarray:
    """(..., 4, 4) transforms of (..., 7) PosQuat poses, the quaternion normalised first unless
    normalize=False (then taken as unit length)."""
    fn = "QZ_PosQuat2Matrix_UnNorm" if normalize else "QZ_PosQuat2Matrix"
    rot = (POSE_ROT, "any length") if normalize else (POSE_ROT,)
    return A.mapped(fn, [(pose, "pose", (7,)) + rot], (4, 4))[0]


def pose_from_xyzabc(pose, *, degrees: bool) -> np.ndarray:
    """(..., 7) PosQuat poses of (..., 6) poses x, y, z, A, B, C with XYZ angles. degrees must be
    given: the library's conversion takes degrees, and this function once took only degrees, so a
    call that does not say which unit it means is refused rather than guessed."""
    p = A.array(pose, "pose", (6,), batch=True)
    if not degrees:
        p[..., 3:] = np.degrees(p[..., 3:])
    buf = np.concatenate([p, np.zeros(p.shape[:-1] + (2,))], axis=-1)
    out, ok = A.mapped("QZ_XYZABC2XYZQ", [], (8,), inplace=(buf, "pose", (8,)))
    _refused(ok, "pose: quaternion too short to normalise")
    return out[..., :7].copy()


def slerp(q1, q2, t, longer: bool = False) -> np.ndarray:
    """Spherical interpolation from q1 (t = 0) to q2 (t = 1) along the shorter way, or the longer
    one; linear weights where the ends nearly coincide. q1, q2 are (..., 4) and t any shape, all
    broadcast together: slerp(q1, q2, np.linspace(0, 1, 50)) gives (50, 4). Neither the ends nor
    the result are normalised."""
    fn = "QZ_QuatSlerpL" if longer else "QZ_QuatSlerp"
    # QZ_QuatSlerp may negate q2 in place: each call gets its own copy.
    return A.mapped(fn, [(q1, "q1", Q, ROT), (q2, "q2", Q, ROT)], Q, scalars=[(t, "t")],
                    written=("q2",))[0]


class Slerp:
    """Slerp between one fixed pair of quaternions with their angle worked out once, for paths
    sampled at many t. q2 is kept as possibly negated for the chosen way round."""

    def __init__(self, q1, q2, longer: bool = False):
        self._q1, self._q2 = A.array(q1, "q1", Q), A.array(q2, "q2", Q)
        A.rotation_quats(self._q1, "q1", 0)
        A.rotation_quats(self._q2, "q2", 0)
        self._state = QZSlerpFactorState()
        self._fn = address("QZ_QuatSlerpFactorL" if longer else "QZ_QuatSlerpFactor")

    def __call__(self, t) -> np.ndarray:
        """Quaternions at t (any shape): shape t.shape + (4,)."""
        ts = A.array(t, "t", (), batch=True)
        out = np.zeros(ts.shape + Q)
        if ts.size:
            batch.qzb_ppspr(self._fn, 0, ts.size, self._q1.ctypes.data, 0, self._q2.ctypes.data,
                            0, ts.ctypes.data, 1, out.ctypes.data, 4,
                            ctypes.addressof(self._state), None)
        A.must_be_finite(out, "t", ts.ndim, "the result is not finite (t is too large)")
        return out

    @property
    def q2(self) -> np.ndarray:
        """The end quaternion as used: q2, or -q2 where that is the chosen way round."""
        return self._q2.copy()


def turn_sense(q1, q2, axis) -> int:
    """-1 when the frame's x axis turns negatively about axis from q1 to q2, else +1."""
    a, b = A.array(q1, "q1", Q), A.array(q2, "q2", Q)
    A.rotation_quats(a, "q1", 0)
    A.rotation_quats(b, "q2", 0)
    return raw.QZ_QuatSlerpDir(A.addr(a), A.addr(b), A.addr(A.array(axis, "axis", (3,))))


def _rotvec(r, name, degrees):
    a = A.array(r, name, (3,), batch=True, copy=degrees)
    return np.radians(a) if degrees else a


def rotvec_to_matrix(r, degrees: bool = False) -> np.ndarray:
    """(..., 3, 3) rotations of (..., 3) rotation vectors (Rodrigues)."""
    return A.mapped("axis_angle_to_rotmat", [(_rotvec(r, "r", degrees), "r", (3,))], M3)[0]


def matrix_to_rotvec(m, degrees: bool = False) -> np.ndarray:
    """(..., 3) rotation vectors of (..., 3, 3) rotations, angle in [0, pi]."""
    out = A.mapped("rotmat_to_axis_angle", [(m, "m", M3, A.ROTATION)], (3,))[0]
    return np.degrees(out) if degrees else out


def rotvec_compose(r1, r2, degrees: bool = False) -> np.ndarray:
    """Rotation vector of R(r1) R(r2): r2 first, then r1, both in the fixed frame."""
    out = A.mapped("AngleMult", [(_rotvec(r1, "r1", degrees), "r1", (3,)),
                                 (_rotvec(r2, "r2", degrees), "r2", (3,))], (3,))[0]
    return np.degrees(out) if degrees else out


def relative_rotation(ra, rb) -> np.ndarray:
    """Ra^T Rb: the rotation from orientation a to b, in frame a."""
    return A.mapped("relative_rotation", [(ra, "ra", M3), (rb, "rb", M3)], M3)[0]


def relative_rotvec(r1, r2, degrees: bool = False) -> np.ndarray:
    """Rotation vector of relative_rotation(R(r1), R(r2))."""
    out = A.mapped("relative_Angle", [(_rotvec(r1, "r1", degrees), "r1", (3,)),
                                      (_rotvec(r2, "r2", degrees), "r2", (3,))], (3,))[0]
    return np.degrees(out) if degrees else out
