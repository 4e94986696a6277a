"""The per-cycle filters as classes that own their record (in `.state`)."""
import ctypes

from ._api import lib
from . import _arrays as A
from .errors import InvalidArgumentError, StateError
from .records import QZAVGFState, QZSMVState


class AveragingFilter:
    """Moving average over the last `span` samples of up to eight channels sampled together,
    with the difference quotient of the average over dt."""

    def __init__(self, channels, span, dt):
        self.state = QZAVGFState()
        if not lib.QZAVGF_OnInit(ctypes.byref(self.state), channels, span, dt):
            raise InvalidArgumentError("channels must lie in 1..8 and span in 1..100")
        self._n = channels

    @property
    def channels(self):
        return self._n

    def filter(self, x):
        """One sample per channel; returns (averages, derivatives of the average). The first
        call after construction or reset() fills the window with x."""
        avg, davg = A.doubles(8), A.doubles(8)
        if not lib.QZAVGF_OnFilt(ctypes.byref(self.state), A.per_axis(x, self._n, "x"), avg,
                                 davg):
            raise StateError("filter refused: the record is not initialised")
        return A.to_list(avg, self._n), A.to_list(davg, self._n)

    def reset(self):
        if not lib.QZAVGF_OnEmpty(ctypes.byref(self.state)):
            raise StateError("reset refused: the record is not initialised")


class SmoothedValue:
    """A scalar moved towards a target by a fraction alpha of the remaining distance per update,
    by at most step_max and at least step_min, landing exactly once within step_min."""

    def __init__(self, start=0.0, alpha=0.002, step_max=0.01, step_min=0.002):
        self.state = QZSMVState()
        if not lib.QZSMV_OnInit(ctypes.byref(self.state), start, alpha, step_max, step_min):
            raise InvalidArgumentError(
                "need 1e-9 <= alpha <= 0.9999999999 and 1e-5 <= step_min <= step_max")

    def update(self, target):
        """One update towards target; returns the new value."""
        v = ctypes.c_double()
        lib.QZSMV_OnUpdateV(ctypes.byref(self.state), target, ctypes.byref(v))
        return v.value

    def update_flags(self, target):
        """One update towards target; returns (value, is_zero, is_one)."""
        v, z, o = ctypes.c_double(), ctypes.c_uint8(), ctypes.c_uint8()
        lib.QZSMV_OnUpdateVZO(ctypes.byref(self.state), target, ctypes.byref(v), ctypes.byref(z),
                              ctypes.byref(o))
        return v.value, bool(z.value), bool(o.value)

    value = property(lambda self: self.state.value, doc="value after the last update")
    is_zero = property(lambda self: bool(self.state.isZero))
    is_one = property(lambda self: bool(self.state.isOne))
