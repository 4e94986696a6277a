"""Vectors, matrices, inverses, decompositions and pseudo-inverses.

Matrices are given as rows (a list of lists or a 2-D numpy array) or, where the shape is implied
(square matrices), flat in row-major order; results are lists of rows. Each function calls the
library's routine for the shape, so results carry its exact bits: for instance a square product
of size 2 to 8 goes through QZ_MatrixMult<n>, other shapes through QZ_MatrixMultXmX.
"""
import ctypes

from ._api import lib
from . import _arrays as A
from .errors import ConvergenceError, SingularError

_D = ctypes.c_double
_SIZES = range(2, 9)


def _fixed(name, n):
    return getattr(lib, "%s%d" % (name, n))


def _as_rows(m, what):
    """m as a list of rows, and its shape; a flat sequence is taken as a square matrix."""
    shape = A.shape_of(m)
    if shape is None:
        x, n = A.square(m, what)
        return A.to_rows(x, n, n), (n, n)
    return m, shape


# ---- Vectors ----------------------------------------------------------------------------------

def dot(a, b):
    """Sum of a[i]*b[i] in index order."""
    x, n = A.vector_any(a, "a")
    return lib.QZ_VectDot(x, A.vector(b, n, "b"), n)


def length(v):
    """Euclidean length (root of the sum of squares in index order)."""
    x, n = A.vector_any(v, "v")
    return lib.QZ_VectLength(x, n)


def normalize(v):
    """v divided by its length; SingularError when the length is zero (to 1e-16)."""
    x, n = A.vector_any(v, "v")
    if not lib.QZ_VectNorm(x, n):
        raise SingularError("zero-length vector")
    return A.to_list(x)


def normalized(v):
    """v divided by its length, or zeros when the length is below 1e-6 (no error)."""
    x, n = A.vector_any(v, "v")
    out = A.doubles(n)
    lib.VectNormalized(x, n, out)
    return A.to_list(out)


def angle_deg(a, b):
    """Angle between a and b in degrees, in [0, 180]; 0 when either is zero."""
    x, n = A.vector_any(a, "a")
    return lib.QZ_VectAngle(x, A.vector(b, n, "b"), n)


def projection(a, b):
    """Projection of a on the direction of b (1 to 3 elements); zeros when |b| < 1e-6."""
    x, n = A.vector_any(a, "a")
    if not 1 <= n <= 3:
        raise ValueError("projection: vectors of 1 to 3 elements")
    out = A.doubles(n)
    lib.CalShadowVector(x, A.vector(b, n, "b"), out, n)
    return A.to_list(out)


def cross(a, b):
    """a x b of two 3-vectors."""
    out = A.doubles(3)
    lib.QZ_VectCross(A.vector(a, 3, "a"), A.vector(b, 3, "b"), out)
    return A.to_list(out)


def distance(a, b):
    """Distance between points a and b (3-vectors)."""
    return lib.QZ_GetVectLenA2B(A.vector(a, 3, "a"), A.vector(b, 3, "b"))


def direction(a, b):
    """(unit vector from a towards b, distance); SingularError for points closer than about
    3.2e-5."""
    out, d = A.doubles(3), _D()
    if not lib.QZ_GetVectNormLenA2B(A.vector(a, 3, "a"), A.vector(b, 3, "b"), out,
                                    ctypes.byref(d)):
        raise SingularError("points too close for a direction")
    return A.to_list(out), d.value


# ---- Matrices ---------------------------------------------------------------------------------

def identity(n):
    """n-by-n identity, n = 2..8."""
    if n not in _SIZES:
        raise ValueError("identity: size 2 to 8")
    m = A.doubles(n * n)
    _fixed("QZ_MatrixIdentity", n)(m)
    return A.to_rows(m, n, n)


def matmul(a, b):
    """Matrix product a . b."""
    a, sa = _as_rows(a, "a")
    b, sb = _as_rows(b, "b")
    if sa[1] != sb[0]:
        raise ValueError("matmul: shapes %s and %s do not agree" % (sa, sb))
    if sa[0] == sa[1] == sb[1] and sa[0] in _SIZES:
        n = sa[0]
        out = A.doubles(n * n)
        _fixed("QZ_MatrixMult", n)(A.matrix(a, n, n, "a"), A.matrix(b, n, n, "b"), out)
        return A.to_rows(out, n, n)
    ra, pa, n, m = A.rows_of(a)
    rb, pb, _, p = A.rows_of(b)
    ro, po = A.row_pointers([0.0] * (n * p), n, p)
    lib.QZ_MatrixMultXmX(pa, n, m, pb, p, po)
    return [A.to_list(r, p) for r in ro]


def matvec(m, v):
    """Matrix times vector m . v."""
    m, shape = _as_rows(m, "m")
    rows, cols = shape
    fixed = {(3, 3): "QZ_MatrixMultVect3", (4, 4): "QZ_MatrixMultVect4",
             (6, 6): "QZ_MatrixMultVect6", (7, 7): "QZ_MatrixMultVect7",
             (6, 7): "QZ_Matrix67MultVect7", (7, 6): "QZ_Matrix76MultVect6"}.get(shape)
    x = A.vector(v, cols, "v")
    out = A.doubles(rows)
    if fixed:
        getattr(lib, fixed)(A.matrix(m, rows, cols, "m"), x, out)
    else:
        arrays, ptrs, _, _ = A.rows_of(m)
        lib.QZ_MatrixMultVectX(ptrs, rows, cols, x, out)
    return A.to_list(out)


def transpose(m):
    """Transpose."""
    m, (rows, cols) = _as_rows(m, "m")
    if rows == cols and rows in _SIZES:
        out = A.doubles(rows * rows)
        _fixed("QZ_MatrixTranspose", rows)(A.matrix(m, rows, rows, "m"), out)
        return A.to_rows(out, rows, rows)
    arrays, ptrs, _, _ = A.rows_of(m)
    ro, po = A.row_pointers([0.0] * (rows * cols), cols, rows)
    lib.QZ_MatrixTransposeXX(ptrs, rows, cols, po)
    return [A.to_list(r, rows) for r in ro]


def inverse(m):
    """Inverse of an n-by-n matrix (n = 2..8) by LU with partial pivoting; SingularError when a
    pivot is at most 1e-16."""
    x, n = A.square(m, "m", _SIZES)
    out = A.doubles(n * n)
    if not _fixed("QZ_MatrixInv", n)(x, out):
        raise SingularError("singular matrix")
    return A.to_rows(out, n, n)


def rigid_inverse(t):
    """Inverse of a rigid 4-by-4 transform in closed form (rotation transposed)."""
    out = A.doubles(16)
    lib.QZ_PGMatrixInv(A.matrix(t, 4, 4, "t"), out)
    return A.to_rows(out, 4, 4)


def det(m):
    """Determinant of an n-by-n matrix (n = 1..8) by cofactor expansion."""
    x, n = A.square(m, "m", range(1, 9))
    buf = A.doubles(64)
    for r in range(n):
        buf[8 * r:8 * r + n] = x[n * r:n * r + n]
    return lib.QZ_MatrixDeterminant(buf, n)


class LUP:
    """LU decomposition with partial pivoting of a matrix (row exchanges recorded in perm).
    Raises SingularError when a pivot is below 1e-16."""

    def __init__(self, m):
        self._rows, self._ptrs, self.m, self.n = A.rows_of(m)
        k = min(self.m, self.n)
        self._perm = (ctypes.c_int32 * (k + 1))()
        if lib.QZ_MatLUPD(self._ptrs, self.m, self.n, self._perm):
            raise SingularError("singular matrix")

    @property
    def lu(self):
        """The factors in one matrix: L's multipliers below the diagonal, U on and above."""
        return [A.to_list(r, self.n) for r in self._rows]

    @property
    def perm(self):
        """perm[i] the input row now in row i; the last entry the number of exchanges."""
        return list(self._perm)

    def _square(self):
        if self.m != self.n:
            raise ValueError("a square matrix's decomposition is needed")
        return self.n

    def solve(self, b):
        """x with A x = b."""
        n = self._square()
        x = A.doubles(n)
        lib.QZ_LUPSolveEq(self._ptrs, n, self._perm, A.vector(b, n, "b"), x)
        return A.to_list(x)

    def det(self):
        return lib.QZ_MatLUPDet(self._ptrs, self._square(), self._perm)

    def inverse(self):
        n = self._square()
        rows, ptrs = A.row_pointers([0.0] * (n * n), n, n)
        lib.QZ_MatLUPInv(self._ptrs, n, self._perm, ptrs)
        return [A.to_list(r, n) for r in rows]


def pinv(m):
    """Moore-Penrose pseudo-inverse of a 6x7 or 7x6 Jacobian by the normal equations (no
    damping); SingularError when the Gram matrix is singular."""
    shape = A.shape_of(m)
    if shape == (6, 7):
        out = A.doubles(42)
        ok = lib.QZ_RightPsoInv67(A.matrix(m, 6, 7, "m"), out)
        result = lambda: A.to_rows(out, 7, 6)  # noqa: E731
    elif shape == (7, 6):
        out = A.doubles(42)
        ok = lib.QZ_LeftPsoInv76(A.matrix(m, 7, 6, "m"), out)
        result = lambda: A.to_rows(out, 6, 7)  # noqa: E731
    else:
        raise ValueError("pinv: a 6x7 or 7x6 matrix given as rows")
    if not ok:
        raise SingularError("rank-deficient Jacobian")
    return result()


def cholesky(m):
    """Lower Cholesky factor of a symmetric positive definite n-by-n matrix (n = 1..7); only
    the lower triangle is read. SingularError when not positive definite."""
    x, n = A.square(m, "m", range(1, 8))
    stride = 6 if n <= 6 else 7
    buf = A.doubles(stride * stride)
    for r in range(n):
        buf[stride * r:stride * r + n] = x[n * r:n * r + n]
    out = A.doubles(stride * stride)
    fn = lib.Cholesky if stride == 6 else lib.Cholesky7
    if fn(buf, out, n) != 0:
        raise SingularError("matrix not positive definite")
    return [list(out[stride * r:stride * r + n]) for r in range(n)]


def vmv(v, m):
    """v^T M v for an n-by-n M (n = 1..7)."""
    x, n = A.square(m, "m", range(1, 8))
    buf = A.doubles(49)
    for r in range(n):
        buf[7 * r:7 * r + n] = x[n * r:n * r + n]
    return lib.VMV(A.vector(v, n, "v"), buf, n)


def eig(m, eps=1e-15):
    """Eigenvalues and eigenvectors of a symmetric n-by-n matrix (n = 1..8) by the threshold
    Jacobi method: (values, vectors) with vectors[k] the unit eigenvector of values[k]; not
    sorted. ConvergenceError when the method is refused or stops (see eig in QZMatrix.h)."""
    x, n = A.square(m, "m", range(1, 9))
    if not eps > 0:
        raise ValueError("eig: eps must be positive")
    v = A.doubles(n * n)
    if not lib.eig(n, x, v, eps):
        raise ConvergenceError("eig refused the matrix or did not converge")
    cols = A.to_rows(v, n, n)
    return [x[k * n + k] for k in range(n)], [[cols[i][k] for i in range(n)] for k in range(n)]


def generalized_eig(a, b, eps=1e-15):
    """A x = lambda B x for symmetric 6x6 or 7x7 A and positive definite B: (values, vectors)
    with vectors[k] belonging to values[k], scaled so that x^T B x = 1, in the library's order.
    SingularError for a B that is not positive definite or an eig that fails."""
    x, n = A.square(a, "a", (6, 7))
    y = A.vector(b, n * n, "b")
    v, lam = A.doubles(n * n), A.doubles(n)
    solve = lib.generalized_eig if n == 6 else lib.generalized_eig7
    ok = solve(eps, x, y, v, lam)
    if not ok:
        raise SingularError("B not positive definite, or the eigen decomposition failed")
    cols = A.to_rows(v, n, n)
    return A.to_list(lam), [[cols[i][k] for i in range(n)] for k in range(n)]
