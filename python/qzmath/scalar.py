"""Scalar primitives, polynomial roots and plane geometry as plain functions.

Each function returns exactly the bits of the C function it wraps. Angles are in radians for
names ending in _arc and degrees for names ending in _deg. Number arguments must be real numbers
(TypeError otherwise, naming the parameter) and finite (InvalidArgumentError otherwise); a
result that would be NaN or infinite (the square root of a negative number, an overflow) raises
InvalidArgumentError rather than being returned. Root lists are numpy arrays.
"""
import ctypes
import functools
import inspect

import numpy as np

from ._api import lib, raw as _raw
from . import _arrays as A

_D = ctypes.c_double


def _reals(fn):
    """Checks that every argument of fn is a finite real number before the C call, and that its
    result is finite."""
    sig = inspect.signature(fn)

    @functools.wraps(fn)
    def checked(*args, **kwargs):
        try:
            bound = sig.bind(*args, **kwargs)
        except TypeError as e:
            raise TypeError("%s: %s" % (fn.__name__, e)) from None
        bound.apply_defaults()
        return fn(*[A.finite(v, k) for k, v in bound.arguments.items()])
    return A.finite_result(checked)

__all__ = [
    "sqrt",
    "fabs",
    "root3",
    "sin_arc",
    "cos_arc",
    "sin_deg",
    "cos_deg",
    "sin_cos_arc",
    "sin_cos_deg",
    "sigmod",
    "atan2",
    "acos",
    "fmax",
    "fmin",
    "is_zero",
    "is_zero_loose",
    "floor",
    "value_sig",
    "square_solve",
    "cubic_solve",
    "cubic_solve_min_pos",
    "cubic_solve_max_neg",
    "solve2",
    "solve3",
    "solve4",
    "solve4_real",
    "polynomial_value",
    "cal_angle_c_deg",
    "point_to_line",
    "min_dif_circle",
    "value_to_target",
]


@_reals
def sqrt(x):
    """Square root; a negative x gives NaN."""
    return lib.QZ_Sqrt(x)


@_reals
def fabs(x):
    """Absolute value."""
    return lib.QZ_Fabs(x)


@_reals
def root3(x):
    """x ** 0.3333333333333333 (NaN for negative x; not an exact cube root)."""
    return lib.QZ_3Root(x)


@_reals
def sin_arc(a):
    """Sine of a in radians."""
    return lib.QZ_SIN_ARC(a)


@_reals
def cos_arc(a):
    """Cosine, formed as the sine of half pi minus a."""
    return lib.QZ_COS_ARC(a)


@_reals
def sin_deg(d):
    """Sine of d in degrees."""
    return lib.QZ_SIN_DEG(d)


@_reals
def cos_deg(d):
    """Cosine of d in degrees."""
    return lib.QZ_COS_DEG(d)


@_reals
def sin_cos_arc(a):
    """(sine, cosine) of a in radians."""
    s, c = _D(), _D()
    lib.QZ_SIN_COS_ARC(a, ctypes.byref(s), ctypes.byref(c))
    return s.value, c.value


@_reals
def sin_cos_deg(d):
    """(sine, cosine) of d in degrees."""
    s, c = _D(), _D()
    lib.QZ_SIN_COS_DEG(d, ctypes.byref(s), ctypes.byref(c))
    return s.value, c.value


@_reals
def sigmod(x):
    """Odd raised-cosine step from -1 to 1 over [-1, 1]."""
    return lib.QZ_Sigmod(x)


@_reals
def atan2(y, x):
    """Four-quadrant arc tangent of y / x, ordinate first."""
    return lib.QZ_ATan2(y, x)


@_reals
def acos(x):
    """Arc cosine of x clamped to [-1, 1]."""
    return lib.QZ_ACOS(x)


@_reals
def fmax(a, b):
    """The larger of a and b."""
    return lib.QZ_MAX(a, b)


@_reals
def fmin(a, b):
    """The smaller of a and b."""
    return lib.QZ_MIN(a, b)


@_reals
def is_zero(x):
    """True when |x| <= 1e-16."""
    return bool(lib.QZ_IsZero(x))


@_reals
def is_zero_loose(x):
    """True when |x| <= 1e-15."""
    return bool(lib.QZ_IsZeroL(x))


@_reals
def floor(x):
    """Largest whole number not above x, as a float."""
    return lib.QZ_Floor(x)


@_reals
def value_sig(x):
    """Sign of x: 1.0, -1.0, or 0.0 for zero and NaN."""
    return lib.QZ_Value_Sig(x)


# ---- Polynomial roots (coefficients highest degree first) -------------------------------------

@_reals
def square_solve(a, b, c):
    """Real roots of a x^2 + b x + c, ascending."""
    r = (_D * 2)()
    return np.array(r[:lib.QZ_SqureSolve(a, b, c, r)])


@_reals
def cubic_solve(a, b, c, d):
    """Real roots of a x^3 + b x^2 + c x + d, in the library's order."""
    r = (_D * 3)()
    return np.array(r[:lib.QZ_CubicSolve(a, b, c, d, r)])


@_reals
def cubic_solve_min_pos(a, b, c, d):
    """Smallest strictly positive real root of the cubic, or None when it has none."""
    out = _D()
    return out.value if lib.QZ_CubicSolve_Min_Pos(a, b, c, d, ctypes.byref(out)) else None


@_reals
def cubic_solve_max_neg(a, b, c, d):
    """Largest strictly negative real root of the cubic, or None when it has none."""
    out = _D()
    return out.value if lib.QZ_CubicSolve_Max_Nag(a, b, c, d, ctypes.byref(out)) else None


def _complex_roots(fn, n, coeffs):
    re, im = (_D * n)(), (_D * n)()
    count = fn(*coeffs, re, im)
    return np.array([complex(re[i], im[i]) for i in range(count)], dtype=complex)


@_reals
def solve2(a, b, c):
    """Complex roots of a x^2 + b x + c."""
    return _complex_roots(lib.QZ_Solve2OrderEq, 2, (a, b, c))


@_reals
def solve3(a, b, c, d):
    """Complex roots of a x^3 + b x^2 + c x + d."""
    return _complex_roots(lib.QZ_Solve3OrderEq, 3, (a, b, c, d))


@_reals
def solve4(a, b, c, d, e):
    """Complex roots of a x^4 + ... + e by Ferrari's method; empty when the method's resolvent
    degenerates (see QZ_Solve4OrderEq)."""
    return _complex_roots(lib.QZ_Solve4OrderEq, 4, (a, b, c, d, e))


@_reals
def solve4_real(a, b, c, d, e):
    """The real roots among those of solve4, imaginary parts dropped."""
    r = (_D * 4)()
    return np.array(r[:lib.QZ_Solve4OrderEqR(a, b, c, d, e, r)])


@A.finite_result
def polynomial_value(p, x):
    """p[0] + p[1] x + ... + p[n-1] x^(n-1): constant term first."""
    c = A.array(p, "p")
    return lib.QZ_SolvePolynomialResult(c.ctypes.data_as(ctypes.POINTER(_D)), A.finite(x, "x"),
                                         len(c))


# ---- Plane geometry and target helpers --------------------------------------------------------

@_reals
def cal_angle_c_deg(a, b, c):
    """180 minus the angle in degrees between sides a and b of a triangle with third side c."""
    return lib.QZ_CalAngleCDEG(a, b, c)


@A.finite_result
def point_to_line(a, b, p):
    """Foot of the perpendicular from point p to the line through a and b (3-vectors)."""
    f = np.zeros(3)
    args = [A.addr(A.array(v, n, (3,))) for v, n in ((a, "a"), (b, "b"), (p, "p"))]
    _raw.QZ_PointToLine(*args, A.addr(f))
    return f


@_reals
def min_dif_circle(a, b):
    """(distance, b') for angles a, b in degrees: the shortest angular distance, and the copy of
    b plus whole turns that lies within 180 of a."""
    bb = _D(b)
    dist = lib.QZ_MinDif_Circle(a, ctypes.byref(bb))
    return dist, bb.value


@_reals
def value_to_target(value, target, step):
    """value moved one step towards target (onto it once within half a step)."""
    v = _D(value)
    lib.ValueToTarget(ctypes.byref(v), target, step)
    return v.value
