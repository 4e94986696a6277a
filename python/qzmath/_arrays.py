"""Conversions between Python sequences and the C arrays the library reads and writes.

Inputs may be any sequence of numbers (lists, tuples, numpy arrays); matrices may be given as
rows (a list of lists, a 2-D numpy array) or flat in row-major order. Outputs are lists, and
matrices lists of rows.
"""
import ctypes

_D = ctypes.c_double


def doubles(n):
    """A zeroed C array of n doubles."""
    return (_D * n)()


def vector(seq, n, what="vector"):
    """C array of exactly n doubles from a sequence of n numbers."""
    values = [float(x) for x in _flat(seq)]
    if len(values) != n:
        raise ValueError("%s: expected %d values, got %d" % (what, n, len(values)))
    return (_D * n)(*values)


def vector_any(seq, what="vector"):
    """C array of doubles from a sequence of any length, and the length."""
    values = [float(x) for x in _flat(seq)]
    return (_D * len(values))(*values), len(values)


def matrix(m, rows, cols, what="matrix"):
    """C array of rows*cols doubles, row-major, from rows or a flat sequence."""
    values = [float(x) for x in _flat(m)]
    if len(values) != rows * cols:
        raise ValueError("%s: expected %dx%d = %d values, got %d"
                         % (what, rows, cols, rows * cols, len(values)))
    return (_D * (rows * cols))(*values)


def axes(seq, what, low=1, high=8):
    """C array of eight doubles holding a per-axis sequence of low..high values, and its count."""
    values = [float(x) for x in _flat(seq)]
    if not low <= len(values) <= high:
        raise ValueError("%s: expected %d to %d values, got %d" % (what, low, high, len(values)))
    buf = (_D * 8)()
    buf[:len(values)] = values
    return buf, len(values)


def per_axis(seq, n, what):
    """C array of eight doubles holding exactly n per-axis values."""
    values = [float(x) for x in _flat(seq)]
    if len(values) != n:
        raise ValueError("%s: expected %d values, got %d" % (what, n, len(values)))
    buf = (_D * 8)()
    buf[:n] = values
    return buf


def shape_of(m):
    """(rows, cols) of a matrix given as rows or as a 2-D numpy array; None for a flat
    sequence."""
    shape = getattr(m, "shape", None)
    if shape is not None:
        return tuple(shape) if len(shape) == 2 else None
    m = list(m)
    if m and not isinstance(m[0], (str, bytes)) and hasattr(m[0], "__iter__"):
        cols = {len(list(r)) for r in m}
        if len(cols) != 1:
            raise ValueError("matrix rows differ in length")
        return len(m), cols.pop()
    return None


def square(m, what="matrix", sizes=None):
    """C array of an n-by-n matrix (rows, or flat n*n) and n."""
    values = [float(x) for x in _flat(m)]
    shape = shape_of(m)
    n = int(round(len(values) ** 0.5))
    if shape is not None and shape[0] != shape[1] or n * n != len(values):
        raise ValueError("%s: not square" % what)
    if sizes is not None and n not in sizes:
        raise ValueError("%s: size %d not supported (%s)" % (what, n, ", ".join(map(str, sizes))))
    return (_D * (n * n))(*values), n


def rows_of(m, what="matrix"):
    """A matrix given as rows as separate C row arrays, an array of row pointers to them, and
    its shape. A flat sequence is taken as a single row."""
    shape = shape_of(m)
    values = [float(x) for x in _flat(m)]
    rows, cols = shape if shape is not None else (1, len(values))
    return row_pointers(values, rows, cols) + (rows, cols)


def row_pointers(values, rows, cols):
    """(row arrays, row-pointer array) holding values row-major; the row arrays must be kept
    alive as long as the pointers are used."""
    arrays = [(_D * max(cols, 1))(*values[r * cols:(r + 1) * cols]) for r in range(rows)]
    ptrs = (ctypes.POINTER(_D) * max(rows, 1))(*[ctypes.cast(a, ctypes.POINTER(_D))
                                                  for a in arrays])
    return arrays, ptrs


def to_list(arr, n=None):
    """The first n (default all) elements of a C array as a list of floats."""
    return list(arr[: len(arr) if n is None else n])


def to_rows(arr, rows, cols):
    """A row-major C array as a list of rows."""
    return [list(arr[r * cols:(r + 1) * cols]) for r in range(rows)]


def _flat(seq):
    if hasattr(seq, "ravel"):  # numpy arrays, without importing numpy
        return seq.ravel().tolist()
    out = []
    for x in seq:
        if not isinstance(x, (str, bytes)) and hasattr(x, "__iter__"):
            out.extend(_flat(x))
        else:
            out.append(x)
    return out
