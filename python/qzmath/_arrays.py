"""Argument checks and conversions between Python values and the C arrays the library reads and
writes.

Every check names the parameter as the Python signature spells it. Wrong types, None and wrong
shapes raise TypeError or ValueError; NaN or infinite values raise InvalidArgumentError naming
the first bad index (the batch index for batches), since no QZMath function gives a meaningful
answer for them; a value the library clamps or ignores is reported through warnings.warn with a
QZMathWarning that says which value took effect.

Arrays handed to C are float64, C-contiguous numpy arrays passed by address. A batch runs in one
call of the batch helper (python/qzmath/_batch.c), which calls the library's function once per
element.
"""
import functools
import math
import numbers
import operator
import sys
import warnings

import numpy as np

from ._api import address, batch as _batch, prototypes
from .errors import InvalidArgumentError, QZMathWarning

__all__ = []  # internal: the checks and conversions the public modules share

F8 = np.dtype(np.float64)
# A quaternion no longer than this has no direction: it stands for no rotation.
ZERO_QUAT = 1e-9
UNIT_SQ = (0.998, 1.002)  # squared lengths of a quaternion taken as unit length
ROTATION = "rotation"  # mapped(): an input that must be a rotation matrix or rigid transform


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


def array(x, name, shape=None, batch=False, copy=True, finite=True):
    """x as a float64, C-contiguous array, refused (InvalidArgumentError) where an element is NaN
    or infinite unless finite=False.

    shape fixes the trailing axes (None: any 1-D length); with batch=True any number of leading
    axes may come first. A copy is made unless copy=False, so the C side may write into it."""
    if x is None or isinstance(x, (str, bytes)):
        raise TypeError("%s: expected an array of numbers, got %s" % (name, _kind(x)))
    try:
        a = np.asarray(x)
    except (TypeError, ValueError) as e:  # ragged nesting
        raise ValueError("%s: not a regular array (%s)" % (name, e)) from None
    if a.dtype.kind not in "iuf":
        raise TypeError("%s: expected an array of real numbers, got dtype %s" % (name, a.dtype))
    a = np.array(a, dtype=F8, order="C") if copy else np.asarray(a, dtype=F8, order="C")
    if shape is None:
        if a.ndim != 1:
            raise ValueError("%s: expected a 1-D array, got shape %s" % (name, a.shape))
    else:
        k = len(shape)
        if a.ndim < k or a.shape[a.ndim - k:] != tuple(shape) or (not batch and a.ndim != k):
            parts = (["..."] if batch else []) + [str(s) for s in shape]
            want = "(%s%s)" % (", ".join(parts), "," if len(parts) == 1 else "")
            raise ValueError("%s: expected shape %s, got %s" % (name, want, a.shape))
    if finite:
        must_be_finite(a, name, a.ndim - len(shape) if batch and shape is not None else 0)
    return a


def all_finite(a):
    """Whether every element of the array a is finite; a small array (a step's targets or
    outputs) is checked element by element, which costs a fraction of a numpy reduction."""
    return all(map(math.isfinite, a.ravel().tolist())) if a.size <= 64 else np.isfinite(a).all()


def must_be_finite(a, name, lead=0, what="must be finite"):
    """InvalidArgumentError naming the first non-finite element of a, by its batch index when a
    has `lead` batch axes."""
    if all_finite(a):
        return
    ok = np.isfinite(a)
    where = np.unravel_index(int(np.argmin(ok.ravel())), a.shape)
    value = a[where]
    if lead:
        at = "batch index %s" % _index(where[:lead])
    elif a.ndim:
        at = "index %s" % _index(where)
    else:
        at = ""
    raise InvalidArgumentError("%s: %s, got %r%s" % (name, what, float(value),
                                                     " at " + at if at else ""))


def rotation_quats(q, name, lead, unit=True):
    """InvalidArgumentError at the first quaternion (the last axis of q) with no direction, which
    stands for no rotation, and with unit=True at the first whose length is not within 1e-3 of 1:
    the library takes it as unit length, and (1e-5, 0, 0, 0) would give the identity instead of
    a half turn."""
    sq = np.einsum("...i,...i->...", q, q)
    short = sq <= ZERO_QUAT * ZERO_QUAT
    if short.any():
        where = np.unravel_index(int(np.argmax(short.ravel())), short.shape)
        at = " at batch index %s" % _index(where[:lead]) if lead else ""
        raise InvalidArgumentError("%s: zero-norm quaternion%s (length not above %g): it is no"
                                   " rotation" % (name, at, ZERO_QUAT))
    off = ~((sq >= UNIT_SQ[0]) & (sq <= UNIT_SQ[1])) if unit else np.zeros(sq.shape, bool)
    if off.any():
        where = np.unravel_index(int(np.argmax(off.ravel())), off.shape)
        at = " at batch index %s" % _index(where[:lead]) if lead else ""
        raise InvalidArgumentError("%s: not a rotation%s (length %g, not 1 within 1e-3)"
                                   % (name, at, math.sqrt(sq[where])))


def length_in_range(q, name, shape):
    """A copy of the (..., n) array q with each row whose squared length overflows scaled by
    2^-256 (exactly) until it fits, at most three times: the direction is kept, so normalising or
    inverting it gives that direction rather than zeros."""
    a = array(q, name, shape, batch=True)
    for _ in range(3):
        big = ~(np.einsum("...i,...i->...", a, a) <= np.finfo(float).max) & np.isfinite(a).all(-1)
        if not big.any():
            break
        a[big] *= 2.0 ** -256
    return a


def rotations(r, name, lead):
    """InvalidArgumentError at the first (..., 3, 3) block of r whose determinant is not within
    0.1 of 1: a zero, scaled or mirroring matrix is no rotation, and the conversions would turn
    it into plausible angles or quaternions."""
    m = r[..., :3, :3]
    det = (m[..., 0, 0] * (m[..., 1, 1] * m[..., 2, 2] - m[..., 1, 2] * m[..., 2, 1])
           - m[..., 0, 1] * (m[..., 1, 0] * m[..., 2, 2] - m[..., 1, 2] * m[..., 2, 0])
           + m[..., 0, 2] * (m[..., 1, 0] * m[..., 2, 1] - m[..., 1, 1] * m[..., 2, 0]))
    bad = np.abs(det - 1.0) > 0.1
    if bad.any():
        where = np.unravel_index(int(np.argmax(bad.ravel())), bad.shape)
        at = " at batch index %s" % _index(where[:lead]) if lead else ""
        raise InvalidArgumentError("%s: not a rotation%s (determinant %g, not 1)"
                                   % (name, at, det[where]))


def unit_quats(q, name, lead):
    """InvalidArgumentError at the first quaternion (the last axis of q) computed from a matrix
    whose squared length is not within 0.1 of 1: the matrix was no rotation. Cheaper than the
    determinant for the conversions that give quaternions anyway."""
    sq = np.einsum("...i,...i->...", q, q)
    bad = np.abs(sq - 1.0) > 0.1
    if bad.any():
        where = np.unravel_index(int(np.argmax(bad.ravel())), bad.shape)
        at = " at batch index %s" % _index(where[:lead]) if lead else ""
        raise InvalidArgumentError("%s: not a rotation%s (its quaternion has length %g, not 1)"
                                   % (name, at, math.sqrt(sq[where])))


def finite_result(fn):
    """fn with its result checked: a NaN or infinite value in it (from an argument outside the
    function's domain, or one so large that the result overflows) raises InvalidArgumentError
    instead of being returned."""
    @functools.wraps(fn)
    def checked(*args, **kwargs):
        result = fn(*args, **kwargs)
        for x in result if isinstance(result, tuple) else (result,):
            if isinstance(x, (float, np.ndarray)) and not np.isfinite(x).all():
                raise InvalidArgumentError("%s: the result is not finite (an argument is outside"
                                           " the function's domain, or too large)" % fn.__name__)
        return result
    return checked


def _index(where):
    where = [int(i) for i in where]
    return str(where[0]) if len(where) == 1 else "(%s)" % ", ".join(map(str, where))


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


_SIGNATURES = {name: ("".join("p" if a.endswith("*") else "s" for a in args), res)
               for name, res, args in prototypes()}
_RESULTS = {"void": 0, "U8": 1, "U32": 2, "I32": 3, "D": 4}


def mapped(fn, inputs, out_shape, scalars=(), inplace=None, written=()):
    """Calls the library function named fn once per element of the broadcast leading (batch) axes
    of its arguments, as fn(*input pointers, *scalars, output pointer), in one call of the batch
    helper, and returns (output, results): the output of shape leading + out_shape (None when fn
    writes no output), and fn's return values of shape leading (a float for an unbatched call).

    inputs are (value, name, trailing shape) or (value, name, trailing shape, check): check is
    ROTATION for matrices that must be rotations (or transforms with a rotation block), or the
    slice of the last axis that holds a rotation quaternion, refused when of zero length.
    scalars are (value, name) per-element reals. With inplace=(value, name, shape) fn takes only
    that array, which it rewrites, and it is returned as the output. written names the inputs
    that fn writes into, which get a copy of their own per element. A result that is not finite
    (an overflow on huge input) raises InvalidArgumentError at its batch index."""
    sig, res_type = _SIGNATURES[fn]
    items = list(inputs) + ([inplace] if inplace is not None else [])
    arrays = [array(it[0], it[1], it[2], batch=True, copy=False) for it in items]
    tails = [tuple(it[2]) for it in items]
    values = [array(x, name, (), batch=True, copy=False) for x, name in scalars]
    leads = [a.shape[:a.ndim - len(t)] for a, t in zip(arrays, tails)] + [v.shape for v in values]
    try:
        lead = np.broadcast_shapes(*leads)
    except ValueError:
        names = [it[1] for it in items] + [name for _, name in scalars]
        raise ValueError("%s: batch shapes %s do not broadcast together"
                         % (", ".join(names), ", ".join(map(str, leads)))) from None
    for a, it, t in zip(arrays, items, tails):
        if len(it) > 3 and it[3] is ROTATION:
            rotations(a, it[1], a.ndim - len(t))
        elif len(it) > 3:  # a fifth item: any length but zero will do (normalised first)
            rotation_quats(a[..., it[3]], it[1], a.ndim - len(t), unit=len(it) == 4)
    count = int(np.prod(lead, dtype=np.int64))
    args = []
    for k, (a, t) in enumerate(zip(arrays + values, tails + [()] * len(values))):
        size = int(np.prod(t, dtype=np.int64))
        own = inplace is not None and k == len(items) - 1
        own = own or (items + list(scalars))[k][1] in written
        if own or a.shape[:a.ndim - len(t)] != lead:
            if a.size == size and not own:
                args.append((a, 0))  # one element for the whole batch: read in place
                continue
            a = np.array(np.broadcast_to(a, lead + t), order="C")
        args.append((a, size))
    if inplace is not None:
        out, out_shape = args[-1][0], tuple(inplace[2])
    elif out_shape is not None:
        out = np.zeros(lead + tuple(out_shape))
        args.append((out, int(np.prod(out_shape, dtype=np.int64))))
    else:
        out = None
    results = np.zeros(lead)
    loop = getattr(_batch, "qzb_" + sig)
    flat = [x for a, step in args for x in (a.ctypes.data, step)]
    if count:
        loop(address(fn), _RESULTS[res_type], count, *flat, results.ctypes.data)
    names = ", ".join([it[1] for it in items] + [name for _, name in scalars])
    overflow = "the result is not finite (the input is too large)"
    if out is not None:
        out = out.reshape(lead + tuple(out_shape))
        must_be_finite(out, names, len(lead), overflow)
    if res_type == "D":
        must_be_finite(results, names, len(lead), overflow)
    return out, (float(results) if results.ndim == 0 else results)


def square_shape(x, name, sizes):
    """The n of an (..., n, n) array-like whose n is one of sizes."""
    shape = x.shape if isinstance(x, np.ndarray) else array(x, name, (), batch=True,
                                                            finite=False).shape
    n = shape[-1] if len(shape) >= 2 else None
    if len(shape) < 2 or shape[-2] != n or n not in sizes:
        raise ValueError("%s: expected shape (..., n, n) with n in %s, got %s"
                         % (name, "/".join(map(str, sizes)), shape))
    return n


def warn(message):
    """Issues a QZMathWarning attributed to the caller's line outside this package."""
    level, frame = 2, sys._getframe(1)
    while frame is not None and frame.f_globals.get("__name__", "").startswith("qzmath."):
        level, frame = level + 1, frame.f_back
    warnings.warn(message, QZMathWarning, stacklevel=level)




def _kind(x):
    return "None" if x is None else type(x).__name__
