"""Serial-chain kinematics: forward kinematics (also over many configurations at once, for
workspace studies), the geometric Jacobian, the orientation error, damped least squares, the
tracker lead and a bounded position IK. See docs/kinematics.md.

    arm = qzmath.kinematics.Chain(dh, tool=flange, lower=q_min, upper=q_max)
    poses = arm.pose(q_samples)          # (k, n) joint angles -> (k, 7) x, y, z, qx, qy, qz, qw
    j = arm.jacobian(q)                  # (6, n): linear rows, then angular, base axes
    v = arm.solve(j, twist)              # v.qdot, v.sigma (how close to singular), v.damping

A modified DH row is alpha, a, d, theta offset (radians, the length unit). The library refuses
NaN, infinite and absurd values; here they raise InvalidArgumentError naming the parameter, a
singular Jacobian with damping turned off raises SingularError.
"""
import collections
import ctypes

import numpy as np

from ._api import address, batch, raw
from . import _arrays as A
from .errors import InvalidArgumentError, SingularError, StateError
from .records import QZKinChain

__all__ = ["Chain", "IkResult", "Velocities", "orientation_error", "tracker_lead"]

Velocities = collections.namedtuple("Velocities", "qdot sigma damping")
Velocities.__doc__ = """Joint velocities (n,), the estimated smallest singular value of the
unitless Jacobian and the damping factor lambda applied."""
IkResult = collections.namedtuple(
    "IkResult", "q converged position_error orientation_error iterations")
IkResult.__doc__ = """Joint angles (n,), whether both tolerances were met, the errors left
(length unit, radians) and the Newton steps taken."""

_REFUSED = {-1: "the chain or tracker is not initialised",
            -2: "a DH entry is NaN, infinite or absurd",
            -3: "the tool is not a finite rigid transform",
            -4: "a joint limit is NaN or absurd, or a minimum lies above its maximum",
            -5: "NaN, infinite or absurd input"}


def _loop(name, inputs, out_shape, chain=None, tail=False):
    """The library's function `name`([chain,] *inputs, out[, NULL]) over the broadcast leading axes
    of the inputs ((array, trailing length) pairs, already checked) in one call of the batch
    helper; returns the output of shape leading + out_shape and the index of the first element
    the function refused (or None)."""
    lead = np.broadcast_shapes(*[a.shape[:-1] for a, _ in inputs])
    count = int(np.prod(lead, dtype=np.int64))
    flat = [np.ascontiguousarray(np.broadcast_to(a, lead + (k,))).reshape(count, k)
            for a, k in inputs]
    size = int(np.prod(out_shape, dtype=np.int64))
    out = np.zeros((count, size))
    pairs = ([chain, 0] if chain is not None else []) + \
        [x for f in flat for x in (A.base(f), f.shape[1])] + [A.base(out), size] + \
        ([None, 0] if tail else [])
    results = np.zeros(count)
    if count:
        getattr(batch, "qzb_" + "p" * (len(pairs) // 2))(address(name), 3, count, *pairs,
                                                          results.ctypes.data)
    refused = np.flatnonzero(results != 1)
    if refused.size:
        return None, list(np.unravel_index(int(refused[0]), lead)) if lead else []
    return out.reshape(lead + out_shape), None


def _at(where):
    return " at batch index %s" % A._index(where) if where else ""


def _check(rc, name):
    if rc == -6:
        raise SingularError("%s: the Jacobian lost rank and damping is off" % name)
    if rc == -1:
        raise StateError("%s: %s" % (name, _REFUSED[rc]))
    if rc < 0:
        raise InvalidArgumentError("%s: %s" % (name, _REFUSED.get(rc, "refused")))


class Chain:
    """A chain of 1 to 8 revolute joints, built once from a modified DH table (n, 4), an optional
    tool transform (4, 4) from the last joint's frame and optional joint limits (n,) each."""

    def __init__(self, dh, tool=None, lower=None, upper=None):
        table = A.array(dh, "dh", (), batch=True)
        if table.ndim != 2 or table.shape[1] != 4 or not 1 <= table.shape[0] <= 8:
            raise ValueError("dh: expected shape (n, 4) with n in 1..8, got %s" % (table.shape,))
        n = table.shape[0]
        args = [None if x is None else A.array(x, name, shape)
                for x, name, shape in ((tool, "tool", (4, 4)), (lower, "lower", (n,)),
                                       (upper, "upper", (n,)))]
        self._rec = QZKinChain()
        self._p = ctypes.addressof(self._rec)
        rc = raw.QZKin_ChainInit(self._p, n, A.addr(table), *[None if a is None else A.addr(a)
                                                                for a in args])
        _check(rc, {-2: "dh", -3: "tool", -4: "lower, upper"}.get(rc, "dh"))
        self.n = n

    @property
    def record(self):
        """The library's record (a ctypes structure)."""
        return self._rec

    def set_damping(self, length_scale: float, threshold: float, lambda_max: float):
        """Length scale (making the linear rows unitless), threshold of the smallest singular
        value where damping starts, and the damping factor at the singularity."""
        _check(raw.QZKin_SetDamping(self._p, A.finite(length_scale, "length_scale"),
                                    A.finite(threshold, "threshold"),
                                    A.finite(lambda_max, "lambda_max")),
               "length_scale, threshold, lambda_max")

    def _mapped(self, name, q, out_shape, tail=False):
        """The library's function `name`(chain, q, out) over the leading axes of q, one call of
        the batch helper for the whole batch."""
        qa = A.array(q, "q", (self.n,), batch=True)
        out, bad = _loop(name, [(qa, self.n)], out_shape, chain=self._p, tail=tail)
        if bad is not None:
            raise InvalidArgumentError("q: beyond 1e4 rad" + _at(bad))
        return out

    def forward(self, q) -> np.ndarray:
        """Tool transforms (..., 4, 4) for joint angles (..., n) in radians."""
        return self._mapped("QZKin_Forward", q, (4, 4))

    def pose(self, q) -> np.ndarray:
        """Tool poses (..., 7) x, y, z, qx, qy, qz, qw for joint angles (..., n)."""
        return self._mapped("QZKin_ForwardPosQuat", q, (7,))

    def jacobian(self, q) -> np.ndarray:
        """Geometric Jacobians (..., 6, n) at the tool point in base axes: rows 0-2 linear,
        3-5 angular velocity per rad/s of each joint."""
        return self._mapped("QZKin_Jacobian", q, (6, self.n), tail=True)

    def solve(self, j, twist) -> Velocities:
        """Joint velocities for a twist (6,) (linear, then angular) by damped least squares."""
        jac = A.array(j, "j", (6, self.n))
        v = A.array(twist, "twist", (6,))
        qdot, report = np.zeros(self.n), np.zeros(2)
        _check(raw.QZKin_DampedLeastSquares(self._p, A.addr(jac), A.addr(v), A.addr(qdot),
                                            A.addr(report)), "j, twist")
        return Velocities(qdot, float(report[0]), float(report[1]))

    def solve_position(self, pose, seed, max_iter: int = 100, tol_pos: float = 1e-6,
                       tol_rot: float = 1e-9) -> IkResult:
        """Joint angles that put the tool at pose (7,), Newton steps from seed (n,) within the
        joint limits; converged False after max_iter (1..1000) steps, with the last iterate."""
        p = A.array(pose, "pose", (7,))
        s = A.array(seed, "seed", (self.n,))
        it = A.integer(max_iter, "max_iter", 1, 1000)
        q, residual, steps = np.zeros(self.n), np.zeros(2), np.zeros(1, dtype=np.int32)
        rc = raw.QZKin_SolvePosition(self._p, A.addr(p), A.addr(s), it,
                                     A.finite(tol_pos, "tol_pos"), A.finite(tol_rot, "tol_rot"),
                                     A.addr(q), A.addr(residual), steps.ctypes)
        _check(rc, "pose, seed, tol_pos, tol_rot")
        return IkResult(q, rc == 1, float(residual[0]), float(residual[1]), int(steps[0]))


def orientation_error(q_target, q_actual) -> np.ndarray:
    """Rotation vectors (..., 3) in radians, base axes, that turn the (..., 4) quaternions
    q_actual into q_target (x, y, z, w), accurate near 0 and pi."""
    qt = A.array(q_target, "q_target", (4,), batch=True)
    qa = A.array(q_actual, "q_actual", (4,), batch=True)
    out, bad = _loop("QZKin_OrientationError", [(qt, 4), (qa, 4)], (3,))
    if bad is not None:
        raise InvalidArgumentError("q_target, q_actual: a quaternion of zero or absurd length"
                                   + _at(bad))
    return out


def tracker_lead(tracker, velocity, acceleration=None) -> np.ndarray:
    """Per axis of a SmoothedTracker, how far ahead of a path moving at velocity (and
    acceleration) to place its target so that the output lies on the path."""
    n = tracker.axes
    v = A.array(velocity, "velocity", (n,))
    a = None if acceleration is None else A.array(acceleration, "acceleration", (n,))
    lead = np.zeros(n)
    _check(raw.QZKin_TrackerLead(tracker._p, A.addr(v), None if a is None else A.addr(a),
                                 A.addr(lead), None), "velocity, acceleration")
    return lead
