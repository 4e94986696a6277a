"""The tracker families as classes that own their record.

Every class keeps its C record in `.state` (a ctypes Structure from qzmath.records), so a
tracker tuned here can be inspected field by field, or copied into a controller's memory
unchanged. Cycle times are in milliseconds, limits in units/s, units/s^2 and units/s^3.
"""
import collections
import ctypes

from ._api import lib
from . import _arrays as A
from .errors import InvalidArgumentError, StateError
from .records import QZNSyncDTSMState, QZNSyncDTSState, QZVDTMState, QZVDTState

PVA = collections.namedtuple("PVA", "pos vel acc")
TargetPVA = collections.namedtuple("TargetPVA", "target pos vel acc")


def _check(ok, what):
    if not ok:
        raise StateError("%s refused: the record is not initialised" % what)


class Tracker:
    """Single axis moved towards its target within a velocity and an acceleration limit.

    The first step after construction or reset() outputs the target itself at rest.
    """

    def __init__(self, cycle_ms, vel_limit, acc_limit):
        self.state = QZVDTState()
        lib.QZVDT_OnInit(ctypes.byref(self.state), cycle_ms, vel_limit, acc_limit)
        self._out = ctypes.c_double()

    def step(self, target):
        """One control cycle towards target; returns the commanded position."""
        _check(lib.QZVDT_OnDT(ctypes.byref(self.state), target, ctypes.byref(self._out)),
               "step")
        return self._out.value

    def run(self, targets):
        """Steps once per target of an iterable; returns the commanded positions."""
        return [self.step(t) for t in targets]

    def reset(self):
        """Makes the next step snap to its target (after the axis was moved by other means)."""
        _check(lib.QZVDT_OnEmpty(ctypes.byref(self.state)), "reset")

    def set_limits(self, vel=None, acc=None):
        """Requests new run-time limits; a lowered velocity limit takes effect after a ramp
        down. Either may be left out to keep it."""
        s = ctypes.byref(self.state)
        if vel is not None and acc is not None:
            ok = lib.QZVDT_OnSetRunTimeLmt(s, vel, acc)
        elif vel is not None:
            ok = lib.QZVDT_OnSetRunTimeVel(s, vel)
        elif acc is not None:
            ok = lib.QZVDT_OnSetRunTimeAcc(s, acc)
        else:
            return
        _check(ok, "set_limits")

    position = property(lambda self: self.state.pos, doc="commanded position")
    velocity = property(lambda self: self.state.vel, doc="velocity (units/s)")
    vel_limit = property(lambda self: self.state.velLmt, doc="active velocity limit")
    acc_limit = property(lambda self: self.state.accLmt, doc="acceleration limit")
    cycle_s = property(lambda self: self.state.baseDt, doc="cycle time (s)")


class MultiStageTracker:
    """Single axis: a main tracker and three correction stages that track the error it leaves.

    mode 0 is the plain tracker; other modes run the cascade (mode 1 also slows the main stage
    to 69/90 of the velocity limit).
    """

    def __init__(self, cycle_ms, vel_limit, acc_limit, mode=1):
        self.state = QZVDTMState()
        lib.QZVDT_OnInitM(ctypes.byref(self.state), cycle_ms, vel_limit, acc_limit, mode)
        # The initialiser leaves the mode to the owner of a stand-alone record.
        self.state.mode = mode
        self._out = ctypes.c_double()

    @property
    def mode(self):
        return self.state.mode

    def step(self, target):
        """One control cycle towards target; returns the commanded position (sum of stages)."""
        _check(lib.QZVDT_OnDT_BM(ctypes.byref(self.state), target, ctypes.byref(self._out)),
               "step")
        return self._out.value

    def run(self, targets):
        return [self.step(t) for t in targets]

    def reset(self):
        """Makes every stage snap on its next step."""
        _check(lib.QZVDT_OnEmptyM(ctypes.byref(self.state)), "reset")

    def set_limits(self, vel, acc):
        """Run-time velocity and acceleration limits for all four stages."""
        _check(lib.QZVDT_OnSetRunTimeLmtM(ctypes.byref(self.state), vel, acc, self.mode),
               "set_limits")


class _NAxis:
    """Shared calls of the two N-axis smoothed trackers."""

    _n = 0

    @property
    def axes(self):
        return self._n

    @property
    def spans(self):
        """Averaging span of each axis, in cycles."""
        return list(self.state.avgLen[: self._n])

    def _targets(self, targets):
        return A.per_axis(targets, self._n, "targets")

    def _limits(self, values, what):
        return A.per_axis(values, self._n, what)

    def _outs(self, count):
        return [A.doubles(8) for _ in range(count)]

    def run(self, targets, cycles):
        """Steps `cycles` times towards fixed targets; returns a list of PVA per cycle."""
        return [self.step_pva(targets) for _ in range(cycles)]


class SmoothedTracker(_NAxis):
    """Up to eight axes, each a single-axis tracker whose output passes a moving average sized
    from its jerk limit, so the smoothed motion is limited in jerk too. The axes are not
    synchronised in time: each reaches its target on its own schedule."""

    def __init__(self, cycle_ms, vel_limits, acc_limits, jerk_limits):
        vel, n = A.axes(vel_limits, "vel_limits")
        acc = A.per_axis(acc_limits, n, "acc_limits")
        jerk = A.per_axis(jerk_limits, n, "jerk_limits")
        self.state = QZNSyncDTSState()
        self._n = n
        if not lib.QZNSyncDTS_OnInit(ctypes.byref(self.state), n, cycle_ms, vel, acc, jerk):
            raise InvalidArgumentError("jerk limits must lie in [1, 1e12]")

    def step(self, targets):
        """One control cycle towards the targets; returns the smoothed positions."""
        pos, = self._outs(1)
        _check(lib.QZNSyncDTS_OnDT(ctypes.byref(self.state), self._targets(targets), pos), "step")
        return A.to_list(pos, self._n)

    def step_pva(self, targets):
        """One control cycle; returns the smoothed positions, velocities and accelerations."""
        pos, vel, acc = self._outs(3)
        _check(lib.QZNSyncDTS_OnDT2(ctypes.byref(self.state), self._targets(targets), pos, vel,
                                    acc), "step_pva")
        n = self._n
        return PVA(A.to_list(pos, n), A.to_list(vel, n), A.to_list(acc, n))

    def hold(self):
        """One control cycle towards the targets of the last step."""
        pos, = self._outs(1)
        _check(lib.QZNSyncDTS_OnDT_NoChange(ctypes.byref(self.state), pos), "hold")
        return A.to_list(pos, self._n)

    def reset(self):
        """Makes the next step start every axis afresh at its target."""
        _check(lib.QZNSyncDTS_OnEmpty(ctypes.byref(self.state)), "reset")

    def set_limits(self, vel=None, acc=None):
        """Per-axis run-time limits; either may be left out to keep it. Spans are kept."""
        s = ctypes.byref(self.state)
        if vel is not None and acc is not None:
            ok = lib.QZNSyncDTS_OnSetRunTimeLmt(s, self._limits(vel, "vel"),
                                                self._limits(acc, "acc"))
        elif vel is not None:
            ok = lib.QZNSyncDTS_OnSetRunTimeVel(s, self._limits(vel, "vel"))
        elif acc is not None:
            ok = lib.QZNSyncDTS_OnSetRunTimeAcc(s, self._limits(acc, "acc"))
        else:
            return
        _check(ok, "set_limits")

    def current(self):
        """Last targets and smoothed positions, velocities and accelerations. Raises StateError
        while a reset is pending."""
        t, pos, vel, acc = self._outs(4)
        if not lib.QZNSyncDTS_OnGetCurPVA(ctypes.byref(self.state), t, pos, vel, acc):
            raise StateError("current() refused: not initialised or a reset is pending")
        n = self._n
        return TargetPVA(A.to_list(t, n), A.to_list(pos, n), A.to_list(vel, n), A.to_list(acc, n))


class SmoothedMultiStageTracker(_NAxis):
    """Up to eight axes, each a multi-stage tracker, smoothed by a moving average as in
    SmoothedTracker. One mode for all axes; jerk limits are clamped to [1000, 1e7]."""

    def __init__(self, cycle_ms, vel_limits, acc_limits, jerk_limits, mode=0):
        vel, n = A.axes(vel_limits, "vel_limits")
        acc = A.per_axis(acc_limits, n, "acc_limits")
        jerk = A.per_axis(jerk_limits, n, "jerk_limits")
        self.state = QZNSyncDTSMState()
        self._n = n
        if not lib.QZNSyncDTS_OnInitM(ctypes.byref(self.state), n, cycle_ms, vel, acc, jerk,
                                      mode):
            raise InvalidArgumentError("axis count must lie in 1..8")
        self.jerk_limits = A.to_list(jerk, n)  # as clamped by the initialiser

    @property
    def mode(self):
        return self.state.axis[0].mode

    @property
    def target_jumps(self):
        """Per axis, whether a target has moved faster than the axis may follow (sticky)."""
        return [bool(self.state.axis[i].targetJump) for i in range(self._n)]

    def clear_target_jumps(self):
        for i in range(self._n):
            self.state.axis[i].targetJump = 0

    def step(self, targets):
        """One control cycle towards the targets; returns the smoothed positions."""
        pos, = self._outs(1)
        _check(lib.QZNSyncDTS_OnDTM(ctypes.byref(self.state), self._targets(targets), pos),
               "step")
        return A.to_list(pos, self._n)

    def step_pva(self, targets):
        """One control cycle; returns the smoothed positions, velocities and accelerations."""
        self.step(targets)
        c = self.current()
        return PVA(c.pos, c.vel, c.acc)

    def hold(self):
        """One control cycle towards the stored targets. Raises StateError while a reset is
        pending."""
        pos, = self._outs(1)
        if not lib.QZNSyncDTS_OnDT_UM(ctypes.byref(self.state), pos):
            raise StateError("hold() refused: not initialised or a reset is pending")
        return A.to_list(pos, self._n)

    def reset(self):
        _check(lib.QZNSyncDTS_OnEmptyM(ctypes.byref(self.state)), "reset")

    def set_limits(self, vel, acc):
        """Per-axis run-time velocity and acceleration limits; spans are kept."""
        _check(lib.QZNSyncDTS_OnSetRunTimeLmtM(ctypes.byref(self.state), self._limits(vel, "vel"),
                                               self._limits(acc, "acc")), "set_limits")

    def current(self):
        """Last targets and smoothed positions, velocities and accelerations. Raises StateError
        while a reset is pending."""
        t, pos, vel, acc = self._outs(4)
        if not lib.QZNSyncDTS_OnGetCurPVAM(ctypes.byref(self.state), t, pos, vel, acc):
            raise StateError("current() refused: not initialised or a reset is pending")
        n = self._n
        return TargetPVA(A.to_list(t, n), A.to_list(pos, n), A.to_list(vel, n), A.to_list(acc, n))
