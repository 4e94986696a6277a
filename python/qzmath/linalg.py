"""Vectors, matrices, inverses, decompositions and pseudo-inverses.

Vectors are 1-D and matrices 2-D array-likes, in their natural shape (a flat array is not taken
for a matrix); results are numpy arrays. Each function calls the library's routine for the shape,
so results carry its exact bits: a square product of size 2 to 8 goes through QZ_MatrixMult<n>,
other shapes through QZ_MatrixMultXmX. NaN and infinite entries are refused
(InvalidArgumentError naming the first one), and so is a result that overflows.
"""
import ctypes

import numpy as np

from ._api import raw
from . import _arrays as A
from .errors import ConvergenceError, InvalidArgumentError, SingularError

__all__ = ["dot", "length", "normalize", "normalized", "angle_deg", "projection", "cross",
           "distance", "direction", "identity", "matmul", "matvec", "transpose", "inverse",
           "rigid_inverse", "det", "LUP", "pinv", "cholesky", "vmv", "eig", "generalized_eig"]

_SIZES = range(2, 9)
_checked = A.finite_result


def _fixed(name, n):
    return getattr(raw, "%s%d" % (name, n))


def _matrix(m, name, sizes=None, square=False):
    a = A.array(m, name, (), batch=True, finite=False)
    if a.ndim != 2 or (square and a.shape[0] != a.shape[1]):
        raise ValueError("%s: expected a %smatrix (2-D), got shape %s"
                         % (name, "square " if square else "", a.shape))
    if sizes is not None and a.shape[0] not in sizes:
        raise ValueError("%s: size %d not supported (%s)" % (name, a.shape[0],
                                                              ", ".join(map(str, sizes))))
    A.must_be_finite(a, name)
    return a


def _rows(a):
    """Array of row pointers into the C-contiguous 2-D array a."""
    base, stride = A.base(a), 8 * max(a.shape[1], 1)
    return (ctypes.c_void_p * max(a.shape[0], 1))(*[base + r * stride for r in range(a.shape[0])])


def _vectors(a, b):
    x = A.array(a, "a")
    return x, A.array(b, "b", (len(x),))


# ---- Vectors ----------------------------------------------------------------------------------

@_checked
def dot(a, b) -> float:
    """Sum of a[i]*b[i] in index order."""
    x, y = _vectors(a, b)
    return raw.QZ_VectDot(A.addr(x), A.addr(y), len(x))


@_checked
def length(v) -> float:
    """Euclidean length (root of the sum of squares in index order)."""
    x = A.array(v, "v")
    return raw.QZ_VectLength(A.addr(x), len(x))


@_checked
def normalize(v) -> np.ndarray:
    """v divided by its length; SingularError when the length is zero (to 1e-16)."""
    x = A.array(v, "v")
    if not raw.QZ_VectNorm(A.addr(x), len(x)):
        raise SingularError("zero-length vector")
    return x


@_checked
def normalized(v) -> np.ndarray:
    """v divided by its length, or zeros when the length is below 1e-6 (no error)."""
    x = A.array(v, "v")
    out = np.zeros(len(x))
    raw.VectNormalized(A.addr(x), len(x), A.addr(out))
    return out


@_checked
def angle_deg(a, b) -> float:
    """Angle between a and b in degrees, in [0, 180]; 0 when either is zero."""
    x, y = _vectors(a, b)
    return raw.QZ_VectAngle(A.addr(x), A.addr(y), len(x))


@_checked
def projection(a, b) -> np.ndarray:
    """Projection of a on the direction of b (1 to 3 elements); zeros when |b| < 1e-6."""
    x, y = _vectors(a, b)
    if not 1 <= len(x) <= 3:
        raise ValueError("a: expected 1 to 3 elements, got %d" % len(x))
    out = np.zeros(len(x))
    raw.CalShadowVector(A.addr(x), A.addr(y), A.addr(out), len(x))
    return out


def cross(a, b) -> np.ndarray:
    """a x b of (..., 3) vectors."""
    return A.mapped("QZ_VectCross", [(a, "a", (3,)), (b, "b", (3,))], (3,))[0]


@_checked
def distance(a, b) -> float:
    """Distance between points a and b (3-vectors)."""
    return raw.QZ_GetVectLenA2B(A.addr(A.array(a, "a", (3,))), A.addr(A.array(b, "b", (3,))))


@_checked
def direction(a, b):
    """(unit vector from a towards b, distance); SingularError for points closer than about
    3.2e-5."""
    out, d = np.zeros(3), np.zeros(1)
    if not raw.QZ_GetVectNormLenA2B(A.addr(A.array(a, "a", (3,))), A.addr(A.array(b, "b", (3,))),
                                    A.addr(out), A.addr(d)):
        raise SingularError("points too close for a direction")
    return out, float(d[0])


# ---- Matrices ---------------------------------------------------------------------------------

def identity(n: int) -> np.ndarray:
    """n-by-n identity, n = 2..8."""
    n = A.integer(n, "n", 2, 8)
    m = np.zeros((n, n))
    _fixed("QZ_MatrixIdentity", n)(A.addr(m))
    return m


@_checked
def matmul(a, b) -> np.ndarray:
    """Matrix product a . b of 2-D arrays."""
    x, y = _matrix(a, "a"), _matrix(b, "b")
    (n, m), (k, p) = x.shape, y.shape
    if m != k:
        raise ValueError("a, b: shapes %s and %s do not agree" % (x.shape, y.shape))
    out = np.zeros((n, p))
    if n == m == p and n in _SIZES:
        _fixed("QZ_MatrixMult", n)(A.addr(x), A.addr(y), A.addr(out))
    elif n and p:
        raw.QZ_MatrixMultXmX(_rows(x), n, m, _rows(y), p, _rows(out))
    return out


_MATVEC = {(3, 3): "QZ_MatrixMultVect3", (4, 4): "QZ_MatrixMultVect4",
           (6, 6): "QZ_MatrixMultVect6", (7, 7): "QZ_MatrixMultVect7",
           (6, 7): "QZ_Matrix67MultVect7", (7, 6): "QZ_Matrix76MultVect6"}


@_checked
def matvec(m, v) -> np.ndarray:
    """Matrix times vector m . v."""
    x = _matrix(m, "m")
    y = A.array(v, "v", (x.shape[1],))
    out = np.zeros(x.shape[0])
    if x.shape in _MATVEC:
        getattr(raw, _MATVEC[x.shape])(A.addr(x), A.addr(y), A.addr(out))
    elif x.size:
        raw.QZ_MatrixMultVectX(_rows(x), x.shape[0], x.shape[1], A.addr(y), A.addr(out))
    return out


@_checked
def transpose(m) -> np.ndarray:
    """Transpose."""
    x = _matrix(m, "m")
    rows, cols = x.shape
    out = np.zeros((cols, rows))
    if rows == cols and rows in _SIZES:
        _fixed("QZ_MatrixTranspose", rows)(A.addr(x), A.addr(out))
    elif x.size:
        raw.QZ_MatrixTransposeXX(_rows(x), rows, cols, _rows(out))
    return out


@_checked
def inverse(m) -> np.ndarray:
    """Inverse of an n-by-n matrix (n = 2..8) by LU with partial pivoting; SingularError when a
    pivot is at most 1e-16."""
    x = _matrix(m, "m", _SIZES, square=True)
    out = np.zeros(x.shape)
    if not _fixed("QZ_MatrixInv", len(x))(A.addr(x), A.addr(out)):
        _singular("singular matrix")
    return out


def _singular(what):
    raise SingularError("m: " + what)


@_checked
def rigid_inverse(t) -> np.ndarray:
    """Inverse of a rigid 4-by-4 transform in closed form (rotation transposed)."""
    out = np.zeros((4, 4))
    raw.QZ_PGMatrixInv(A.addr(A.array(t, "t", (4, 4))), A.addr(out))
    return out


@_checked
def det(m) -> float:
    """Determinant of an n-by-n matrix (n = 1..8) by cofactor expansion."""
    x = _matrix(m, "m", range(1, 9), square=True)
    buf = np.zeros((8, 8))
    buf[:len(x), :len(x)] = x
    return raw.QZ_MatrixDeterminant(A.addr(buf), len(x))


class LUP:
    """LU decomposition with partial pivoting of a 2-D matrix (row exchanges recorded in perm).
    Raises SingularError when a pivot is below 1e-16."""

    def __init__(self, m):
        self._lu = _matrix(m, "m")
        self.m, self.n = self._lu.shape
        if not self._lu.size:
            raise ValueError("m: empty matrix")
        self._ptrs = _rows(self._lu)
        self._perm = np.zeros(min(self.m, self.n) + 1, dtype=np.int32)
        if raw.QZ_MatLUPD(self._ptrs, self.m, self.n, A.addr(self._perm)):
            _singular("singular matrix")

    @property
    def lu(self) -> np.ndarray:
        """The factors in one matrix: L's multipliers below the diagonal, U on and above."""
        return self._lu.copy()

    @property
    def perm(self) -> np.ndarray:
        """perm[i] the input row now in row i; the last entry the number of exchanges."""
        return self._perm.copy()

    def _square(self):
        if self.m != self.n:
            raise ValueError("a square matrix's decomposition is needed, this one is %dx%d"
                             % (self.m, self.n))
        return self.n

    @_checked
    def solve(self, b) -> np.ndarray:
        """x with A x = b."""
        n = self._square()
        x = np.zeros(n)
        raw.QZ_LUPSolveEq(self._ptrs, n, A.addr(self._perm), A.addr(A.array(b, "b", (n,))),
                          A.addr(x))
        return x

    @_checked
    def det(self) -> float:
        """Determinant of the square matrix decomposed."""
        return raw.QZ_MatLUPDet(self._ptrs, self._square(), A.addr(self._perm))

    @_checked
    def inverse(self) -> np.ndarray:
        """Inverse of the square matrix decomposed."""
        n = self._square()
        out = np.zeros((n, n))
        raw.QZ_MatLUPInv(self._ptrs, n, A.addr(self._perm), _rows(out))
        return out


@_checked
def pinv(m) -> np.ndarray:
    """Moore-Penrose pseudo-inverse of a (6, 7) or (7, 6) Jacobian by the normal equations (no
    damping); SingularError when the Gram matrix is singular."""
    x = _matrix(m, "m")
    if x.shape not in ((6, 7), (7, 6)):
        raise ValueError("m: expected shape (6, 7) or (7, 6), got %s" % (x.shape,))
    out = np.zeros(x.shape[::-1])
    fn = raw.QZ_RightPsoInv67 if x.shape == (6, 7) else raw.QZ_LeftPsoInv76
    if not fn(A.addr(x), A.addr(out)):
        _singular("rank-deficient Jacobian")
    return out


@_checked
def cholesky(m) -> np.ndarray:
    """Lower Cholesky factor of a symmetric positive definite n-by-n matrix (n = 1..7); only
    the lower triangle is read. SingularError when not positive definite."""
    x = _matrix(m, "m", range(1, 8), square=True)
    n = len(x)
    stride = 6 if n <= 6 else 7
    buf, out = np.zeros((stride, stride)), np.zeros((stride, stride))
    buf[:n, :n] = x
    if (raw.Cholesky if stride == 6 else raw.Cholesky7)(A.addr(buf), A.addr(out), n) != 0:
        _singular("matrix not positive definite")
    return out[:n, :n].copy()


@_checked
def vmv(v, m) -> float:
    """v^T M v for an n-by-n M (n = 1..7)."""
    x = _matrix(m, "m", range(1, 8), square=True)
    buf = np.zeros((7, 7))
    buf[:len(x), :len(x)] = x
    return raw.VMV(A.addr(A.array(v, "v", (len(x),))), A.addr(buf), len(x))


@_checked
def eig(m, eps: float = 1e-15):
    """Eigenvalues and eigenvectors of a symmetric n-by-n matrix (n = 1..8) by the threshold
    Jacobi method: (values (n,), vectors (n, n)) with vectors[k] the unit eigenvector of
    values[k]; not sorted. ConvergenceError when the method is refused or stops."""
    x = _matrix(m, "m", range(1, 9), square=True)
    e = A.finite(eps, "eps")
    if not e > 0:
        raise InvalidArgumentError("eps: must be positive, got %g" % e)
    n = len(x)
    v = np.zeros((n, n))
    if not raw.eig(n, A.addr(x), A.addr(v), e):
        raise ConvergenceError("eig refused the matrix or did not converge")
    return np.diagonal(x).copy(), v.T.copy()


@_checked
def generalized_eig(a, b, eps: float = 1e-15):
    """A x = lambda B x for symmetric 6x6 or 7x7 A and positive definite B: (values, vectors)
    with vectors[k] belonging to values[k], scaled so that x^T B x = 1, in the library's order.
    SingularError for a B that is not positive definite or an eig that fails."""
    x = _matrix(a, "a", (6, 7), square=True)
    n = len(x)
    y = A.array(b, "b", (n, n))
    e = A.finite(eps, "eps")
    v, lam = np.zeros((n, n)), np.zeros(n)
    solve = raw.generalized_eig if n == 6 else raw.generalized_eig7
    if not solve(e, A.addr(x), A.addr(y), A.addr(v), A.addr(lam)):
        raise SingularError("B not positive definite, or the eigen decomposition failed")
    return lam, v.T.copy()
