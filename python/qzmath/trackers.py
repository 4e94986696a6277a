"""The tracker families as classes that own their record.

Units: cycle times in milliseconds, positions in the caller's unit, limits in units/s, units/s^2
and units/s^3. Cycle times and limits must be finite and positive (InvalidArgumentError). At
construction the library clamps the cycle time to [1, 1000] ms, velocity limits to [0.1, 200]
units/s and acceleration limits to [1, 1000] units/s^2 (docs/units-and-limits.md shows how to
scale the unit to stay inside them); a clamped setting raises one QZMathWarning naming the values
in effect. At run time (set_limits) limits are taken unclamped, but a request within 0.1 of the
current one is ignored by the library, and that too raises a QZMathWarning.

Targets must be finite: a NaN or infinite target raises InvalidArgumentError (naming the first
bad cycle of a run) before anything is stepped, so the record stays as it was and the next
finite target carries on from there. Should a step ever give a non-finite output, the record is
put back as it was before that call and InvalidArgumentError is raised.

Every tracker has step(target) for one cycle and run(targets) or run(target, cycles) for many,
returning a Path of (N, axes) arrays ((N,) for the single-axis trackers). `.state` is a copy of
the C record (a ctypes Structure from qzmath.records), to inspect field by field.
"""
import collections
import ctypes
import math

import numpy as np

from ._api import address, batch, raw
from . import _arrays as A
from .errors import InvalidArgumentError, StateError
from .records import QZNSyncDTSMState, QZNSyncDTSState, QZVDTMState, QZVDTState

__all__ = ["Path", "TargetPVA", "Tracker", "MultiStageTracker", "SmoothedTracker",
           "SmoothedMultiStageTracker"]

Path = collections.namedtuple("Path", "pos vel acc")
Path.__doc__ = """Result of run(): commanded positions, and velocities and accelerations where the
tracker's record holds them (None where it does not), one row per cycle."""
TargetPVA = collections.namedtuple("TargetPVA", "target pos vel acc")
TargetPVA.__doc__ = """Result of current(): last targets, and smoothed positions, velocities and
accelerations, one value per axis."""

VEL_RANGE = (0.1, 200.0)     # units/s, clamped at construction
ACC_RANGE = (1.0, 1000.0)    # units/s^2, clamped at construction
CYCLE_RANGE = (1.0, 1000.0)  # ms, clamped at construction
_MAX_CYCLES = 2 ** 31 - 1


def _refused(what):
    raise StateError("%s refused: the record is not initialised" % what)


class _Record:
    """Owner of one C record; `.state` hands out copies, so the record itself cannot be put in a
    state that the library's functions would misread."""

    _Rec = None

    def __init__(self):
        self._rec = self._Rec()
        self._p = ctypes.addressof(self._rec)

    @property
    def state(self):
        """A copy of the C record."""
        return type(self._rec).from_buffer_copy(self._rec)

    def _guarded(self, call, *outputs):
        """call() with the record put back as it was, and InvalidArgumentError raised, when it
        leaves a non-finite value in outputs (arrays whose first axis counts cycles). Runs check
        their positions only: a velocity or acceleration gone bad shows in the next position."""
        saved = bytes(self._rec)
        result = call()
        for out in outputs:
            if out is not None and not A.all_finite(out):
                ctypes.memmove(self._p, saved, len(saved))
                cycle = int(np.argmin(np.isfinite(out).reshape(len(out), -1).all(axis=1))) \
                    if out.ndim else 0
                raise InvalidArgumentError("the output of cycle %d is not finite: the record is"
                                           " put back as it was before this call" % cycle)
        return result


class _Clamps:
    """Collects, per setting, the values the library will clamp, so that each clamped setting
    gives one warning however many axes, stages and limits it covers."""

    def __init__(self):
        self._messages = {}

    def check(self, setting, value, low, high, label, unit=""):
        """Notes label's value when it lies outside [low, high], with the value in effect."""
        took = low if value < low else high if value > high else value
        if took != value:
            self.add(setting, "%s %g%s is outside the accepted range [%g, %g]: %g takes effect"
                     % (label, value, unit, low, high, took))

    def add(self, setting, message):
        """Notes a message about setting."""
        self._messages.setdefault(setting, []).append(message)

    def warn(self):
        """Issues one QZMathWarning per setting noted."""
        for messages in self._messages.values():
            A.warn("; ".join(messages))


def _positive(x, name):
    v = A.finite(x, name)
    if not v > 0:
        raise InvalidArgumentError("%s: must be positive, got %g" % (name, v))
    return v


def _init_limits(clamps, cycle_ms, vel, acc, vname, aname):
    """Checks construction parameters and notes where the library will clamp them."""
    cycle = _positive(cycle_ms, "cycle_ms")
    clamps.check("cycle_ms", cycle, *CYCLE_RANGE, "cycle_ms", " ms")
    for i, (v, a) in enumerate(zip(vel, acc)):
        clamps.check(vname, v, *VEL_RANGE, vname.replace("%d", str(i)), " units/s")
        clamps.check(aname, a, *ACC_RANGE, aname.replace("%d", str(i)), " units/s^2")
    return cycle


def _positive_limits(values, name):
    a = A.array(values, name)
    if not (a > 0).all():
        raise InvalidArgumentError("%s: limits must be positive, got %s" % (name, a.tolist()))
    return a


def _dead_band(axis, before, vel, acc, label):
    """The warning text when a run-time request left an axis's (requested velocity,
    acceleration) limits unchanged though it asked for other values (the library's 0.1 dead
    band), else None."""
    after = (axis.velLmtTarget, axis.accLmt)
    asked = (before[0] if vel is None else vel, before[1] if acc is None else acc)
    if after == before and asked != before:
        return ("%sthe request (vel %s, acc %s) lies within 0.1 of the current one and is"
                " ignored: vel %g, acc %g stay in effect"
                % (label, "-" if vel is None else "%g" % vel, "-" if acc is None else "%g" % acc,
                   after[0], after[1]))
    return None


def _warn_all(messages):
    messages = [m for m in messages if m]
    if messages:
        A.warn("set_limits: " + "; ".join(messages))


class _Tracker(_Record):
    """run() shared by every tracker: _one is the shape of one target, and _run(t, n, tstep) steps
    n cycles, cycle i towards the target at row i * tstep of t (tstep 0: one target held)."""

    _one = ()

    def run(self, targets, cycles=None):
        """Steps once per target of an (N, axes) array (N values for a single axis), or `cycles`
        times towards one target; returns a Path of (N, axes) arrays. A non-finite target
        anywhere refuses the whole run before its first cycle (InvalidArgumentError naming the
        cycle), so the record is left as it was."""
        if cycles is None:
            t = A.array(targets, "targets", self._one, batch=True, copy=False)
            if t.ndim != len(self._one) + 1:
                want = "(N, %d)" % self._one[0] if self._one else "(N,)"
                raise ValueError("targets: expected shape %s, got %s (or give one target and"
                                 " cycles)" % (want, t.shape))
            return self._run(t, len(t), int(np.prod(self._one, dtype=np.int64)))
        # one target held: the loop reads the same row every cycle
        return self._run(A.array(targets, "targets", self._one),
                         A.integer(cycles, "cycles", 0, _MAX_CYCLES), 0)


class Tracker(_Tracker):
    """One axis moved towards its target within a velocity and an acceleration limit by the
    time-optimal law. The first step after construction or reset() outputs the target itself at
    rest."""

    _Rec = QZVDTState

    def __init__(self, cycle_ms: float, vel_limit: float, acc_limit: float):
        super().__init__()
        v, a = _positive(vel_limit, "vel_limit"), _positive(acc_limit, "acc_limit")
        clamps = _Clamps()
        cycle = _init_limits(clamps, cycle_ms, [v], [a], "vel_limit", "acc_limit")
        clamps.warn()
        raw.QZVDT_OnInit(self._p, cycle, v, a)
        self._out = np.zeros(1)

    def step(self, target: float) -> float:
        """One control cycle towards target; returns the commanded position. A NaN or infinite
        target raises InvalidArgumentError and the cycle is not stepped."""
        t = A.finite(target, "target")
        if not self._guarded(lambda: raw.QZVDT_OnDT(self._p, t, A.addr(self._out)), self._out):
            _refused("step")
        return float(self._out[0])

    def _run(self, t, n, tstep):
        pos, vel = np.empty(n), np.empty(n)
        done = self._guarded(lambda: batch.qzb_run_tracker(
            address("QZVDT_OnDT"), self._p, n, t.ctypes.data, tstep, pos.ctypes.data,
            vel.ctypes.data), pos)
        if done < n:
            _refused("run")
        return Path(pos, vel, None)

    def reset(self) -> None:
        """Makes the next step snap to its target (after the axis was moved by other means)."""
        if not raw.QZVDT_OnEmpty(self._p):
            _refused("reset")

    def set_limits(self, vel: float = None, acc: float = None) -> None:
        """Requests run-time limits (units/s, units/s^2), taken unclamped; either may be left out.
        A lowered velocity limit takes effect after a ramp down. The library ignores a request
        within 0.1 of the current one (QZMathWarning)."""
        v = None if vel is None else float(_positive_limits([vel], "vel")[0])
        a = None if acc is None else float(_positive_limits([acc], "acc")[0])
        before = (self._rec.velLmtTarget, self._rec.accLmt)
        if v is not None and a is not None:
            ok = raw.QZVDT_OnSetRunTimeLmt(self._p, v, a)
        elif v is not None:
            ok = raw.QZVDT_OnSetRunTimeVel(self._p, v)
        elif a is not None:
            ok = raw.QZVDT_OnSetRunTimeAcc(self._p, a)
        else:
            return
        if not ok:
            _refused("set_limits")
        _warn_all([_dead_band(self._rec, before, v, a, "")])

    position = property(lambda self: self._rec.pos, doc="commanded position (units)")
    velocity = property(lambda self: self._rec.vel, doc="velocity (units/s)")
    vel_limit = property(lambda self: self._rec.velLmt, doc="active velocity limit (units/s)")
    acc_limit = property(lambda self: self._rec.accLmt, doc="acceleration limit (units/s^2)")
    cycle_s = property(lambda self: self._rec.baseDt, doc="cycle time (s)")


def _stage_shares(v, a, mode):
    """Velocity and acceleration limits of the four stages of a multi-stage tracker."""
    v0 = (v * 69.0) / 90.0 if mode == 1 else v
    return [(v0, a), (v / 6.0, 2.0 * a), (v / 18.0, 2.0 * a), (v / 90.0, a)]


def _stage_clamps(clamps, v, a, mode, label, vname, aname):
    for k, (vs, as_) in enumerate(_stage_shares(v, a, mode)):
        clamps.check(vname, vs, *VEL_RANGE, "%sstage %d's share of the velocity limit"
                     % (label, k), " units/s")
        clamps.check(aname, as_, *ACC_RANGE, "%sstage %d's share of the acceleration limit"
                     % (label, k), " units/s^2")


class MultiStageTracker(_Tracker):
    """One axis: a main tracker and three correction stages that track the error it leaves.
    mode 0 is the plain tracker; other modes run the cascade (mode 1 also slows the main stage to
    69/90 of the velocity limit). The stages get V (69V/90 in mode 1), V/6, V/18, V/90 with A, 2A,
    2A, A, each clamped to the tracker's ranges."""

    _Rec = QZVDTMState

    def __init__(self, cycle_ms: float, vel_limit: float, acc_limit: float, mode: int = 1):
        super().__init__()
        v, a = _positive(vel_limit, "vel_limit"), _positive(acc_limit, "acc_limit")
        m = A.integer(mode, "mode", -2 ** 31, 2 ** 31 - 1)
        clamps = _Clamps()
        cycle = _init_limits(clamps, cycle_ms, [], [], "vel_limit", "acc_limit")
        _stage_clamps(clamps, v, a, m, "", "vel_limit", "acc_limit")
        clamps.warn()
        raw.QZVDT_OnInitM(self._p, cycle, v, a, m)
        self._rec.mode = m  # the initialiser leaves the mode to the owner of a stand-alone record
        self._out = np.zeros(1)

    @property
    def mode(self) -> int:
        """The cascade mode (0: the plain tracker)."""
        return self._rec.mode

    def step(self, target: float) -> float:
        """One control cycle towards target; returns the commanded position (sum of stages). A
        NaN or infinite target raises InvalidArgumentError and the cycle is not stepped."""
        t = A.finite(target, "target")
        if not self._guarded(lambda: raw.QZVDT_OnDT_BM(self._p, t, A.addr(self._out)),
                             self._out):
            _refused("step")
        return float(self._out[0])

    def _run(self, t, n, tstep):
        pos = np.empty(n)
        done = self._guarded(lambda: batch.qzb_run_tracker_m(
            address("QZVDT_OnDT_BM"), self._p, n, t.ctypes.data, tstep, pos.ctypes.data), pos)
        if done < n:
            _refused("run")
        return Path(pos, None, None)

    def reset(self) -> None:
        """Makes every stage snap on its next step."""
        raw.QZVDT_OnEmptyM(self._p)

    def set_limits(self, vel: float, acc: float) -> None:
        """Run-time velocity and acceleration limits for all four stages (units/s, units/s^2);
        a request that stage 0 ignores (within 0.1) raises a QZMathWarning."""
        v, a = _positive_limits([vel, acc], "vel, acc").tolist()
        stage0 = self._rec.stage[0]
        before = (stage0.velLmtTarget, stage0.accLmt)
        raw.QZVDT_OnSetRunTimeLmtM(self._p, v, a, self.mode)
        _warn_all([_dead_band(stage0, before, _stage_shares(v, a, self.mode)[0][0], a,
                              "stage 0: ")])


class _NAxis(_Tracker):
    """Shared calls of the two N-axis smoothed trackers."""

    _SPAN = (3, 30)

    def _setup(self, cycle_ms, vel_limits, acc_limits, jerk_limits):
        n = len(A.array(vel_limits, "vel_limits"))
        vel = A.per_axis(_positive_limits(vel_limits, "vel_limits"), "vel_limits")
        acc = A.per_axis(_positive_limits(acc_limits, "acc_limits"), "acc_limits", n=n)
        jerk = A.per_axis(_positive_limits(jerk_limits, "jerk_limits"), "jerk_limits", n=n)
        self._n, self._one = n, (n,)
        return _positive(cycle_ms, "cycle_ms"), vel, acc, jerk

    def _span_warnings(self, clamps, cycle, acc, jerk):
        """Notes where an averaging span, trunc(1000 acc / jerk / cycle_ms) cycles, is clamped:
        the jerk the smoothing allows is then about acc / (span * cycle) instead."""
        lo, hi = self._SPAN
        dt = min(max(cycle, CYCLE_RANGE[0]), CYCLE_RANGE[1]) / 1000.0
        msgs = []
        for i in range(self._n):
            want = (1000.0 * float(acc[i]) / float(jerk[i])) / cycle  # inf, no numpy warning
            span = self._rec.avgLen[i]
            if not (math.isfinite(want) and lo <= math.trunc(want) <= hi):  # subnormal cycle
                a = min(max(acc[i], ACC_RANGE[0]), ACC_RANGE[1])
                msgs.append("axis %d: %.4g cycles clamped to %d (jerk about %.4g instead of %g)"
                            % (i, want, span, a / (span * dt), jerk[i]))
        if msgs:
            clamps.add("jerk_limits", "jerk_limits: averaging spans outside [%d, %d] cycles: %s"
                       % (lo, hi, "; ".join(msgs)))

    @property
    def axes(self) -> int:
        """Number of axes."""
        return self._n

    @property
    def spans(self) -> np.ndarray:
        """Averaging span of each axis, in cycles."""
        return np.array(self._rec.avgLen[: self._n])

    def _targets(self, targets):
        return A.per_axis(targets, "targets", n=self._n)

    def _run(self, t, n, tstep):
        """n cycles through the class's compiled loop (_loop), positions, velocities and
        accelerations for every axis."""
        out = [np.empty((n, self._n)) for _ in range(3)]
        done = self._guarded(lambda: self._loop(n, t.ctypes.data, tstep,
                                                *[a.ctypes.data for a in out]), out[0])
        if done < n:
            _refused("run")
        return Path(*out)

    def _stepped(self, fn, *args):
        """One cycle of fn(record, *args, positions) under the guard; the positions."""
        if not self._guarded(lambda: fn(self._p, *args, A.addr(self._pos)), self._pos):
            return None
        return self._pos[:self._n].copy()

    def _current(self, fn):
        t, pos, vel, acc = (np.zeros(8) for _ in range(4))
        if not fn(self._p, A.addr(t), A.addr(pos), A.addr(vel), A.addr(acc)):
            raise StateError("current() refused: a reset is pending until the next step")
        n = self._n
        return TargetPVA(t[:n], pos[:n], vel[:n], acc[:n])

    def _set_limits(self, vel, acc, both, vel_only, acc_only):
        v = None if vel is None else _positive_limits(vel, "vel")
        a = None if acc is None else _positive_limits(acc, "acc")
        for name, x in (("vel", v), ("acc", a)):
            if x is not None and len(x) != self._n:
                raise ValueError("%s: expected %d values (one per axis), got %d"
                                 % (name, self._n, len(x)))
        pad = lambda x: np.concatenate([x, np.zeros(8 - self._n)])  # noqa: E731
        axes = [self._stage0(i) for i in range(self._n)]
        before = [(ax.velLmtTarget, ax.accLmt) for ax in axes]
        if v is not None and a is not None:
            ok = both(self._p, A.addr(pad(v)), A.addr(pad(a)))
        elif v is not None:
            ok = vel_only(self._p, A.addr(pad(v)))
        elif a is not None:
            ok = acc_only(self._p, A.addr(pad(a)))
        else:
            return
        if not ok:
            _refused("set_limits")
        _warn_all([_dead_band(ax, before[i], None if v is None else self._share(v)[i],
                              None if a is None else a[i], "axis %d: " % i)
                   for i, ax in enumerate(axes)])

    def _share(self, v):
        return v


class SmoothedTracker(_NAxis):
    """Up to eight axes, each a single-axis tracker whose output passes a moving average sized
    from its jerk limit (span trunc(1000 acc / jerk / cycle_ms) cycles, clamped to [3, 30]), so
    the smoothed motion is limited in jerk too. The axes are not synchronised in time. Jerk
    limits must lie in [1, 1e12] units/s^3.

    The jerk limit bounds a ramp of the acceleration from 0 to its limit; a swing from -acc to
    +acc is spread over the same span, so the jerk can reach about twice the parameter (a little
    more where the span is truncated): give half the jerk the arm may take."""

    _Rec = QZNSyncDTSState

    def __init__(self, cycle_ms: float, vel_limits, acc_limits, jerk_limits):
        super().__init__()
        cycle, vel, acc, jerk = self._setup(cycle_ms, vel_limits, acc_limits, jerk_limits)
        for i in range(self._n):
            if not 1.0 <= jerk[i] <= 1e12:
                raise InvalidArgumentError("jerk_limits[%d]: must lie in [1, 1e12], got %g"
                                           % (i, jerk[i]))
        clamps = _Clamps()
        _init_limits(clamps, cycle, vel[:self._n], acc[:self._n], "vel_limits[%d]",
                     "acc_limits[%d]")
        if not raw.QZNSyncDTS_OnInit(self._p, self._n, cycle, A.addr(vel), A.addr(acc),
                                     A.addr(jerk)):
            raise InvalidArgumentError("the library refused the limits")
        self._span_warnings(clamps, cycle, acc, jerk)
        clamps.warn()
        self._pos = np.zeros(8)

    def _stage0(self, i):
        return self._rec.axis[i]

    def step(self, targets) -> np.ndarray:
        """One control cycle towards the targets; returns the smoothed positions. A NaN or
        infinite target raises InvalidArgumentError and the cycle is not stepped."""
        out = self._stepped(raw.QZNSyncDTS_OnDT, A.addr(self._targets(targets)))
        return _refused("step") if out is None else out

    def _loop(self, n, t, tstep, pos, vel, acc):
        return batch.qzb_run_rows(address("QZNSyncDTS_OnDT2"), self._p, n, self._n, t, tstep,
                                  pos, vel, acc)

    def hold(self) -> np.ndarray:
        """One control cycle towards the targets of the last step."""
        out = self._stepped(raw.QZNSyncDTS_OnDT_NoChange)
        return _refused("hold") if out is None else out

    def reset(self) -> None:
        """Makes the next step start every axis afresh at its target."""
        if not raw.QZNSyncDTS_OnEmpty(self._p):
            _refused("reset")

    def set_limits(self, vel=None, acc=None) -> None:
        """Per-axis run-time limits (units/s, units/s^2), unclamped; either may be left out.
        Spans are kept. An axis that ignores its request (within 0.1) raises a QZMathWarning."""
        self._set_limits(vel, acc, raw.QZNSyncDTS_OnSetRunTimeLmt, raw.QZNSyncDTS_OnSetRunTimeVel,
                         raw.QZNSyncDTS_OnSetRunTimeAcc)

    def current(self) -> TargetPVA:
        """Last targets and smoothed positions, velocities and accelerations. Raises StateError
        while a reset is pending."""
        return self._current(raw.QZNSyncDTS_OnGetCurPVA)


class SmoothedMultiStageTracker(_NAxis):
    """Up to eight axes, each a multi-stage tracker, smoothed by a moving average as in
    SmoothedTracker. One mode for all axes; jerk limits are clamped to [1000, 1e7] units/s^3 and
    spans to [5, 100] cycles (mode 0; mode 1 uses 5, other modes 20)."""

    _Rec = QZNSyncDTSMState
    _SPAN = (5, 100)

    def __init__(self, cycle_ms: float, vel_limits, acc_limits, jerk_limits, mode: int = 0):
        super().__init__()
        cycle, vel, acc, jerk = self._setup(cycle_ms, vel_limits, acc_limits, jerk_limits)
        m = A.integer(mode, "mode", -2 ** 31, 2 ** 31 - 1)
        clamps = _Clamps()
        _init_limits(clamps, cycle, [], [], "vel_limits", "acc_limits")
        for i in range(self._n):
            _stage_clamps(clamps, vel[i], acc[i], m, "axis %d: " % i, "vel_limits", "acc_limits")
            clamps.check("jerk_limits", jerk[i], 1000.0, 1e7, "jerk_limits[%d]" % i, " units/s^3")
        if not raw.QZNSyncDTS_OnInitM(self._p, self._n, cycle, A.addr(vel), A.addr(acc),
                                      A.addr(jerk), m):
            raise InvalidArgumentError("the library refused the limits")
        if m == 0:
            self._span_warnings(clamps, cycle, acc, jerk)
        clamps.warn()
        self.jerk_limits = jerk[:self._n].copy()  # as clamped by the initialiser
        self._pos, self._scratch = np.zeros(8), np.zeros(16)

    def _stage0(self, i):
        return self._rec.axis[i].stage[0]

    def _share(self, v):
        return np.array([_stage_shares(x, 1.0, self.mode)[0][0] for x in v])

    @property
    def mode(self) -> int:
        """The cascade mode of every axis (0: the plain tracker with smoothing)."""
        return self._rec.axis[0].mode

    @property
    def target_jumps(self) -> np.ndarray:
        """Per axis, whether a target has moved faster than the axis may follow (sticky)."""
        return np.array([bool(self._rec.axis[i].targetJump) for i in range(self._n)])

    def clear_target_jumps(self) -> None:
        """Clears the sticky target-jump flags of every axis."""
        for i in range(self._n):
            self._rec.axis[i].targetJump = 0

    def step(self, targets) -> np.ndarray:
        """One control cycle towards the targets; returns the smoothed positions. A NaN or
        infinite target raises InvalidArgumentError and the cycle is not stepped."""
        out = self._stepped(raw.QZNSyncDTS_OnDTM, A.addr(self._targets(targets)))
        return _refused("step") if out is None else out

    def _loop(self, n, t, tstep, pos, vel, acc):
        return batch.qzb_run_rows_query(address("QZNSyncDTS_OnDTM"),
                                        address("QZNSyncDTS_OnGetCurPVAM"), self._p, n, self._n,
                                        t, tstep, pos, vel, acc, self._scratch.ctypes.data)

    def hold(self) -> np.ndarray:
        """One control cycle towards the stored targets. Raises StateError while a reset is
        pending."""
        out = self._stepped(raw.QZNSyncDTS_OnDT_UM)
        if out is None:
            raise StateError("hold() refused: a reset is pending until the next step")
        return out

    def reset(self) -> None:
        """Makes the next step start every axis afresh at its target."""
        if not raw.QZNSyncDTS_OnEmptyM(self._p):
            _refused("reset")

    def set_limits(self, vel, acc) -> None:
        """Per-axis run-time velocity and acceleration limits; spans are kept. An axis whose
        stage 0 ignores its request (within 0.1) raises a QZMathWarning."""
        if vel is None or acc is None:
            raise TypeError("set_limits: vel and acc are both needed, got None")
        self._set_limits(vel, acc, raw.QZNSyncDTS_OnSetRunTimeLmtM, None, None)
