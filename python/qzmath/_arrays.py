"""Argument checks and conversions between Python values and the C arrays the library reads and
writes.

Every check names the parameter as the Python signature spells it. Wrong types, None and wrong
shapes raise TypeError or ValueError; NaN or infinite parameters (limits, cycle times, windows,
counts) raise InvalidArgumentError; a value the library clamps or ignores is reported through
warnings.warn with a QZMathWarning that says which value took effect.

Arrays handed to C are float64, C-contiguous numpy arrays; the C functions take them through
void * prototypes (see _api.raw), so a batch loop costs one foreign call per element and no
conversions.
"""
import math
import numbers
import operator
import sys
import warnings

import numpy as np

from .errors import InvalidArgumentError, QZMathWarning

F8 = np.dtype(np.float64)


def real(x, name):
    """x as a Python float; TypeError for None, strings, booleans, complex numbers, arrays."""
    if isinstance(x, (bool, np.bool_)) or not isinstance(x, numbers.Real):
        if isinstance(x, np.ndarray) and x.shape == () and x.dtype.kind in "iuf":
            return float(x)
        raise TypeError("%s: expected a real number, got %s" % (name, _kind(x)))
    return float(x)


def finite(x, name):
    """x as a finite float; InvalidArgumentError for NaN or an infinity."""
    v = real(x, name)
    if not math.isfinite(v):
        raise InvalidArgumentError("%s: must be finite, got %r" % (name, v))
    return v


def integer(x, name, low, high):
    """x as an int in [low, high]: TypeError for a non-integer (a float included),
    InvalidArgumentError outside the range."""
    if isinstance(x, (bool, np.bool_)):
        raise TypeError("%s: expected an integer, got %s" % (name, _kind(x)))
    try:
        v = operator.index(x)
    except TypeError:
        raise TypeError("%s: expected an integer, got %s" % (name, _kind(x))) from None
    if not low <= v <= high:
        raise InvalidArgumentError("%s: must lie in %d..%d, got %d" % (name, low, high, v))
    return v


def array(x, name, shape=None, batch=False):
    """x as a float64, C-contiguous array.

    shape fixes the trailing axes (None: any 1-D length); with batch=True any number of leading
    axes may come first. A copy is always made, so the C side may write into the result."""
    if x is None or isinstance(x, (str, bytes)):
        raise TypeError("%s: expected an array of numbers, got %s" % (name, _kind(x)))
    try:
        a = np.array(x)
    except (TypeError, ValueError) as e:  # ragged nesting
        raise ValueError("%s: not a regular array (%s)" % (name, e)) from None
    if a.dtype.kind not in "biuf" or a.dtype.kind == "b":
        raise TypeError("%s: expected an array of real numbers, got dtype %s" % (name, a.dtype))
    a = np.array(a, dtype=F8, order="C")  # a copy: the C side may write into it
    if shape is None:
        if a.ndim != 1:
            raise ValueError("%s: expected a 1-D array, got shape %s" % (name, a.shape))
        return a
    k = len(shape)
    if a.ndim < k or a.shape[a.ndim - k:] != tuple(shape) or (not batch and a.ndim != k):
        parts = (["..."] if batch else []) + [str(s) for s in shape]
        want = "(%s%s)" % (", ".join(parts), "," if len(parts) == 1 else "")
        raise ValueError("%s: expected shape %s, got %s" % (name, want, a.shape))
    return a


def finite_array(x, name, shape=None):
    a = array(x, name, shape)
    if not np.isfinite(a).all():
        raise InvalidArgumentError("%s: must be finite, got %s" % (name, a.tolist()))
    return a


def per_axis(x, name, low=1, high=8, n=None):
    """A per-axis array of n values (or of low..high values when n is None), padded to eight
    slots as the library's axis arrays are."""
    a = array(x, name)
    if n is not None and len(a) != n:
        raise ValueError("%s: expected %d values (one per axis), got %d" % (name, n, len(a)))
    if not low <= len(a) <= high:
        raise ValueError("%s: expected %d to %d values, got %d" % (name, low, high, len(a)))
    out = np.zeros(8)
    out[:len(a)] = a
    return out


def out(*shape):
    """A zeroed float64 output array."""
    return np.zeros(shape)


def addr(a):
    """An array as a pointer argument of the raw prototypes. The argument holds the array, so a
    temporary array lives until the call returns."""
    return a.ctypes


def base(a):
    """Address of an array's first element as an int, for loops that step through an array the
    caller holds (a bare address does not keep the array alive)."""
    return a.ctypes.data


def mapped(fn, inputs, out_shape, scalars=(), inplace=None):
    """Calls fn once per element of the broadcast leading (batch) axes of its arguments, as
    fn(*input pointers, *scalars, output pointer), and returns (output, results): the output of
    shape leading + out_shape, and fn's return values of shape leading.

    inputs are (value, name, trailing shape), scalars (value, name) per-element reals. With
    inplace=(value, name, shape) fn takes only that array, which it rewrites, and it is returned
    as the output."""
    arrays = [array(x, name, shape, batch=True) for x, name, shape in inputs]
    tails = [shape for _, _, shape in inputs]
    if inplace is not None:
        arrays.append(array(inplace[0], inplace[1], inplace[2], batch=True))
        tails.append(inplace[2])
        out_shape = inplace[2]
    values = [array(x, name, (), batch=True) for x, name in scalars]
    leads = [a.shape[:a.ndim - len(t)] for a, t in zip(arrays, tails)] + [v.shape for v in values]
    try:
        lead = np.broadcast_shapes(*leads)
    except ValueError:
        names = [name for _, name, _ in inputs] + [name for _, name in scalars]
        raise ValueError("%s: batch shapes %s do not broadcast together"
                         % (", ".join(names), ", ".join(map(str, leads)))) from None
    count = int(np.prod(lead, dtype=np.int64))
    flat = [np.ascontiguousarray(np.broadcast_to(a, lead + tuple(t))).reshape((count,) + tuple(t))
            for a, t in zip(arrays, tails)]
    vals = [np.broadcast_to(v, lead).ravel().tolist() for v in values]
    if inplace is not None:
        out = flat.pop().copy()
    else:
        out = np.zeros((count,) + tuple(out_shape))
    step_in = [(base(a), a.itemsize * int(np.prod(t, dtype=np.int64))) for a, t in zip(flat, tails)]
    po, so = base(out), 8 * int(np.prod(out_shape, dtype=np.int64))
    results = []
    for i in range(count):
        results.append(fn(*[p + i * s for p, s in step_in], *[v[i] for v in vals], po + i * so))
    return out.reshape(lead + tuple(out_shape)), np.array(results).reshape(lead)


def square_shape(x, name, sizes):
    """The n of an (..., n, n) array-like whose n is one of sizes."""
    a = array(x, name, (), batch=True)
    n = a.shape[-1] if a.ndim >= 2 else None
    if a.ndim < 2 or a.shape[-2] != n or n not in sizes:
        raise ValueError("%s: expected shape (..., n, n) with n in %s, got %s"
                         % (name, "/".join(map(str, sizes)), a.shape))
    return n


def warn(message):
    """Issues a QZMathWarning attributed to the caller's line outside this package."""
    level, frame = 2, sys._getframe(1)
    while frame is not None and frame.f_globals.get("__name__", "").startswith("qzmath."):
        level, frame = level + 1, frame.f_back
    warnings.warn(message, QZMathWarning, stacklevel=level)


def clamped(value, low, high, name, unit=""):
    """Warns when value lies outside [low, high], naming the value that takes effect."""
    took = low if value < low else high if value > high else value
    if took != value:
        warn("%s %g%s is outside the accepted range [%g, %g]: %g takes effect"
             % (name, value, unit, low, high, took))
    return took


def _kind(x):
    return "None" if x is None else type(x).__name__
