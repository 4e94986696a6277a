"""The per-cycle filters as classes that own their record (`.state` is a copy of it). Samples and
targets must be finite (InvalidArgumentError), and a call whose output would not be finite puts
the record back as it was and raises InvalidArgumentError."""
import ctypes

import numpy as np

from ._api import raw
from . import _arrays as A
from .errors import InvalidArgumentError, StateError
from .records import QZAVGFState, QZSMVState
from .trackers import _Record

__all__ = ["AveragingFilter", "SmoothedValue"]


class AveragingFilter(_Record):
    """Moving average over the last `span` samples (1..100) of up to eight channels sampled
    together, with the difference quotient of the average over dt."""

    _Rec = QZAVGFState

    def __init__(self, channels: int, span: int, dt: float):
        super().__init__()
        self._n = A.integer(channels, "channels", 1, 8)
        n = A.integer(span, "span", 1, 100)
        d = A.finite(dt, "dt")
        if not d > 0:
            raise InvalidArgumentError("dt: must be positive (it divides the derivative), got %r"
                                       % d)
        if not raw.QZAVGF_OnInit(self._p, self._n, n, d):
            raise InvalidArgumentError("the library refused channels=%d, span=%d" % (self._n, n))
        self._avg, self._davg = np.zeros(8), np.zeros(8)

    @property
    def channels(self) -> int:
        """Number of channels."""
        return self._n

    def filter(self, x):
        """One sample per channel; returns (averages, derivatives of the average). The first
        call after construction or reset() fills the window with x. Where finite samples
        overflow the average or its derivative (values near the largest float, a tiny dt),
        InvalidArgumentError is raised and the last outputs kept, but the sample stays in the
        window, which forgets it after `span` samples: put back, it would make every later
        sample overflow too."""
        xs = A.per_axis(x, "x", n=self._n)
        last = self._avg.copy(), self._davg.copy()
        if not raw.QZAVGF_OnFilt(self._p, A.addr(xs), A.addr(self._avg), A.addr(self._davg)):
            raise StateError("filter refused: the record is not initialised")
        if not (A.all_finite(self._avg) and A.all_finite(self._davg)):
            self._avg, self._davg = last
            raise InvalidArgumentError("x: the average or its derivative is not finite (the"
                                       " window's values are too large for dt)")
        return self._avg[:self._n].copy(), self._davg[:self._n].copy()

    def reset(self) -> None:
        """Makes the next sample fill the window afresh."""
        raw.QZAVGF_OnEmpty(self._p)


class SmoothedValue(_Record):
    """A scalar moved towards a target by a fraction alpha of the remaining distance per update,
    by at most step_max and at least step_min, landing exactly once within step_min. Needs
    1e-9 <= alpha <= 0.9999999999 and 1e-5 <= step_min <= step_max."""

    _Rec = QZSMVState

    def __init__(self, start: float = 0.0, alpha: float = 0.002, step_max: float = 0.01,
                 step_min: float = 0.002):
        super().__init__()
        s = A.finite(start, "start")
        args = [A.finite(x, n) for x, n in ((alpha, "alpha"), (step_max, "step_max"),
                                             (step_min, "step_min"))]
        if not raw.QZSMV_OnInit(self._p, s, *args):
            raise InvalidArgumentError(
                "need 1e-9 <= alpha <= 0.9999999999 and 1e-5 <= step_min <= step_max, got"
                " alpha=%g, step_max=%g, step_min=%g" % tuple(args))

    def update(self, target: float) -> float:
        """One update towards target; returns the new value."""
        t, v = A.finite(target, "target"), np.zeros(1)
        self._guarded(lambda: raw.QZSMV_OnUpdateV(self._p, t, A.addr(v)), v)
        return float(v[0])

    def update_flags(self, target: float):
        """One update towards target; returns (value, is_zero, is_one)."""
        t, v, z, o = A.finite(target, "target"), np.zeros(1), ctypes.c_uint8(), ctypes.c_uint8()
        self._guarded(lambda: raw.QZSMV_OnUpdateVZO(self._p, t, A.addr(v), ctypes.addressof(z),
                                                    ctypes.addressof(o)), v)
        return float(v[0]), bool(z.value), bool(o.value)

    value = property(lambda self: self._rec.value, doc="value after the last update")
    is_zero = property(lambda self: bool(self._rec.isZero),
                       doc="whether the value is 0 (to 1e-8)")
    is_one = property(lambda self: bool(self._rec.isOne), doc="whether the value is 1 (to 1e-8)")
