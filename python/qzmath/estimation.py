"""The estimator, the one-step fitter and the control error comparator as classes that own
their record (in `.state`)."""
import ctypes

from ._api import lib
from . import _arrays as A
from .records import OneFitterState, QZDCTRLErrorState, QZNEstState


class Estimator:
    """Sample-and-hold of position samples that arrive every cycle_ms control cycles of 1 ms
    (with jitter), for up to eight axes, with a measured and a smoothed velocity.

    Call step() once per 1 ms cycle; a stamp different from the last one marks new samples.
    """

    def __init__(self, cycle_ms, vel_max, vel_cur=None):
        if not cycle_ms > 0:
            raise ValueError("cycle_ms must be positive")
        vmax, n = A.axes(vel_max, "vel_max")
        vcur = vmax if vel_cur is None else A.per_axis(vel_cur, n, "vel_cur")
        self.state = QZNEstState()
        self._n = n
        lib.QZOnInitEst(ctypes.byref(self.state), n, cycle_ms, vmax, vcur)

    @property
    def axes(self):
        return self._n

    def step(self, stamp, samples, ref_vel=None):
        """One control cycle; returns the held positions. ref_vel, the reference velocities of
        the axes (zero when left out), cuts the measured velocity while near its maximum."""
        x = A.per_axis(samples, self._n, "samples")
        r = A.doubles(8) if ref_vel is None else A.per_axis(ref_vel, self._n, "ref_vel")
        out = A.doubles(8)
        lib.QZNEst_OnDT(ctypes.byref(self.state), stamp, x, out, r)
        return A.to_list(out, self._n)

    def reset(self):
        """Makes the next step start afresh; the jitter score survives."""
        lib.QZNEst_OnEmpty(ctypes.byref(self.state))

    def set_limits(self, vel_cur):
        """Current velocity limits, each capped at its maximum."""
        lib.QZNEst_OnSetRunTimeLmt(ctypes.byref(self.state),
                                   A.per_axis(vel_cur, self._n, "vel_cur"))

    velocity = property(lambda self: list(self.state.velEst[: self._n]),
                        doc="smoothed velocity estimate per axis (units/s)")
    measured_velocity = property(lambda self: list(self.state.velMeas[: self._n]),
                                 doc="measured velocity per axis after the cut and clamps")
    jitter_score = property(lambda self: self.state.jitterScore,
                            doc="arrival jitter, 0 (regular) to 100, refreshed every 200 samples")


class OneFitter:
    """One-pole low-pass filter on up to eight channels: y = x*alpha + (1 - alpha)*y_prev,
    starting from 0."""

    def __init__(self, alpha):
        a, n = A.axes(alpha, "alpha")
        self.state = OneFitterState()
        self._n = n
        lib.OneFitterInit(ctypes.byref(self.state), n, a)

    def run(self, x):
        """Filters one sample per channel; returns the outputs."""
        out = A.doubles(8)
        n = lib.OneFitterRun(ctypes.byref(self.state), A.per_axis(x, self._n, "x"), out)
        return A.to_list(out, n)


class ErrorComparator:
    """Per joint of a seven-joint arm: dead-banded, clamped error between two joint vectors,
    integrated, and turned into a clamped correction. Gains and limits live in `.state` and may
    be changed after construction."""

    JOINTS = 7

    def __init__(self):
        self.state = QZDCTRLErrorState()
        lib.QZ_DCTRL_ErrorCompare_Init(0, ctypes.byref(self.state))

    def compare(self, first, second):
        """One cycle: returns the seven corrections for the error second - first."""
        a = A.per_axis(first, 7, "first")
        b = A.per_axis(second, 7, "second")
        corr = A.doubles(8)
        lib.QZ_DCTRL_ErrorCompare(0, a, b, ctypes.byref(self.state), corr)
        return A.to_list(corr, 7)

    integral = property(lambda self: list(self.state.integ[:7]), doc="integrated error per joint")
