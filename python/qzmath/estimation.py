"""The estimator, the one-step fitter and the control error comparator as classes that own their
record. Results are numpy arrays with one value per axis or channel. Samples, gains and limits
must be finite (InvalidArgumentError); a call whose output would not be finite puts the record
back as it was and raises InvalidArgumentError."""
import numpy as np

from ._api import raw
from . import _arrays as A
from .errors import InvalidArgumentError
from .trackers import _Record
from .records import OneFitterState, QZDCTRLErrorState, QZNEstState

__all__ = ["Estimator", "OneFitter", "ErrorComparator"]


class Estimator(_Record):
    """Sample-and-hold of position samples that arrive every cycle_ms control cycles of 1 ms
    (with jitter), for up to eight axes, with a measured and a smoothed velocity (units/s).

    Call step() once per 1 ms cycle; a stamp different from the last one marks new samples.
    A velocity estimate is dropped after trunc(5 cycle_ms) cycles without a sample, at most 50.
    """

    _Rec = QZNEstState

    def __init__(self, cycle_ms: float, vel_max, vel_cur=None):
        super().__init__()
        cycle = A.finite(cycle_ms, "cycle_ms")
        if not cycle > 0:
            raise InvalidArgumentError("cycle_ms: must be positive, got %g" % cycle)
        if 5 * cycle >= 51:
            A.warn("cycle_ms %g: the hold limit of %d cycles is capped at 50"
                   % (cycle, int(5 * cycle)))
        n = len(A.array(vel_max, "vel_max"))
        vmax = A.per_axis(vel_max, "vel_max")
        vcur = vmax if vel_cur is None else A.per_axis(vel_cur, "vel_cur", n=n)
        self._n = n
        raw.QZOnInitEst(self._p, n, cycle, A.addr(vmax), A.addr(vcur))
        self._out = np.zeros(8)

    @property
    def axes(self) -> int:
        """Number of axes."""
        return self._n

    def step(self, stamp: int, samples, ref_vel=None) -> np.ndarray:
        """One control cycle; returns the held positions. ref_vel, the reference velocities of
        the axes (zero when left out), cuts the measured velocity while near its maximum."""
        st = A.integer(stamp, "stamp", -2 ** 31, 2 ** 31 - 1)
        x = A.per_axis(samples, "samples", n=self._n)
        r = np.zeros(8) if ref_vel is None else A.per_axis(ref_vel, "ref_vel", n=self._n)
        self._guarded(lambda: raw.QZNEst_OnDT(self._p, st, A.addr(x), A.addr(self._out),
                                              A.addr(r)), self._out)
        return self._out[:self._n].copy()

    def reset(self) -> None:
        """Makes the next step start afresh; the jitter score survives."""
        raw.QZNEst_OnEmpty(self._p)

    def set_limits(self, vel_cur) -> None:
        """Current velocity limits (units/s); each is capped at its maximum (QZMathWarning)."""
        v = A.per_axis(vel_cur, "vel_cur", n=self._n)
        raw.QZNEst_OnSetRunTimeLmt(self._p, A.addr(v))
        capped = ["vel_cur[%d] %g is above the maximum: %g takes effect"
                  % (i, v[i], self._rec.velLmtCur[i])
                  for i in range(self._n) if self._rec.velLmtCur[i] != v[i]]
        if capped:
            A.warn("; ".join(capped))

    velocity = property(lambda self: np.array(self._rec.velEst[: self._n]),
                        doc="smoothed velocity estimate per axis (units/s)")
    measured_velocity = property(lambda self: np.array(self._rec.velMeas[: self._n]),
                                 doc="measured velocity per axis after the cut and clamps")
    jitter_score = property(lambda self: self._rec.jitterScore,
                            doc="arrival jitter, 0 (regular) to 100, refreshed every 200 samples")


class OneFitter(_Record):
    """One-pole low-pass filter on up to eight channels: y = x*alpha + (1 - alpha)*y_prev,
    starting from 0."""

    _Rec = OneFitterState

    def __init__(self, alpha):
        super().__init__()
        a = A.array(alpha, "alpha")
        self._n = len(a)
        raw.OneFitterInit(self._p, self._n, A.addr(A.per_axis(a, "alpha")))
        self._out = np.zeros(8)

    def run(self, x) -> np.ndarray:
        """Filters one sample per channel; returns the outputs."""
        xs = A.per_axis(x, "x", n=self._n)
        self._guarded(lambda: raw.OneFitterRun(self._p, A.addr(xs), A.addr(self._out)),
                      self._out)
        return self._out[:self._n].copy()


class ErrorComparator(_Record):
    """Per joint of a seven-joint arm: dead-banded (0.15), clamped error between two joint
    vectors, integrated, and turned into a clamped correction. Gains and limits are fields of
    `.gains` (the live record); gains that make a correction non-finite are refused at the
    next compare()."""

    _Rec = QZDCTRLErrorState
    JOINTS = 7

    def __init__(self):
        super().__init__()
        raw.QZ_DCTRL_ErrorCompare_Init(0, self._p)
        self._out = np.zeros(8)

    @property
    def gains(self) -> QZDCTRLErrorState:
        """The live record: kInteg, kProp, outLmt, errLmt, integLmt may be changed."""
        return self._rec

    def compare(self, first, second) -> np.ndarray:
        """One cycle: returns the seven corrections for the error second - first."""
        a = A.per_axis(first, "first", n=7)
        b = A.per_axis(second, "second", n=7)
        self._guarded(lambda: raw.QZ_DCTRL_ErrorCompare(0, A.addr(a), A.addr(b), self._p,
                                                        A.addr(self._out)), self._out)
        return self._out[:7].copy()

    integral = property(lambda self: np.array(self._rec.integ[:7]),
                        doc="integrated error per joint")
