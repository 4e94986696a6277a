"""Loading libQZMath.so and declaring the C prototype of every exported function.

The library is the first of these that applies; there is no fallback to whatever the system
loader would find:
  1. the QZMATH_LIB environment variable: the library file, or a directory holding it;
  2. an installed package (pip, cmake --install, python3-qzmath) loads the library it was
     installed for, recorded in qzmath/_libpath.py as a path relative to the package (or
     absolute);
  3. the package used from a source tree loads that tree's build: build/ first, then the other
     build*/ directories, most recently built first, passing over sanitizer builds (they abort
     an interpreter that has not preloaded their runtime).
Where the one expected is missing or does not load, the import fails with an ImportError that
names what was looked for. The library found is then checked: its major version (QZ_Version)
must be the binding's own, or the import fails with an ImportError that names both versions and
the library's path.

Two views of the library are made: `lib` (qzmath.unchecked) with the C prototypes of the table
below, for callers who want the C functions themselves, and `raw`, the same functions with every
pointer declared void *, which the checked wrappers call with numpy addresses.

Prototypes are declared from the table of qzmath/_prototypes.py, written from the C headers by
the build: one function a line, name, result type, argument types. Types: D double, I32
int32_t, U8 uint8_t, U32 uint32_t, void; a trailing * is a pointer (const is immaterial to
ctypes), D** an array of row pointers; record names are the records of qzmath.records. A name
containing {N} stands for the sizes 2 to 8.
"""
import ctypes
import glob
import os

from . import records

__all__ = ["lib", "raw", "batch", "address", "prototypes", "LIBRARY_PATH", "LIBRARY_VERSION",
           "VERSION"]

from ._prototypes import PROTOTYPES

_SCALARS = {
    "D": ctypes.c_double,
    "I32": ctypes.c_int32,
    "U8": ctypes.c_uint8,
    "U32": ctypes.c_uint32,
}

_LIB_NAME = "libQZMath.so"
HERE = os.path.dirname(os.path.abspath(__file__))



def _own_version():
    """This package's version, the project's: recorded at install in qzmath/_version.py, or read
    from the source tree's CMakeLists.txt when the package is used from the tree; None if neither.
    """
    try:
        from ._version import VERSION as version
        return version
    except ImportError:
        from ._project import tree_version
        return tree_version(os.path.dirname(os.path.dirname(HERE)))


# The version of this binding; a library of another major version is refused.
VERSION = _own_version()


def ctype(code):
    """ctypes type of one type code of the table (None for void)."""
    stars = len(code) - len(code.rstrip("*"))
    base = code.rstrip("*")
    if base == "void":
        t = None
    elif base in _SCALARS:
        t = _SCALARS[base]
    else:
        t = records.RECORDS[base]
    for _ in range(stars):
        t = ctypes.c_void_p if t is None else ctypes.POINTER(t)
    return t


def prototypes():
    """Yields (name, result code, [argument codes]) for every function of the table."""
    for line in PROTOTYPES.splitlines():
        line = line.split("#", 1)[0].split()
        if not line:
            continue
        name, res, args = line[0], line[1], line[2:]
        names = [name.replace("{N}", str(n)) for n in range(2, 9)] if "{N}" in name else [name]
        for nm in names:
            yield nm, res, args


def _from_env(env):
    paths = sorted(glob.glob(os.path.join(env, _LIB_NAME + "*"))) if os.path.isdir(env) else [env]
    for path in paths:
        try:
            return ctypes.CDLL(path)
        except OSError as e:
            error = e
    raise ImportError("QZMATH_LIB=%s: %s" % (env, error if paths else "no libQZMath.so there"))


def _installed():
    """The library recorded at install time, or None for a package used from a source tree."""
    try:
        from ._libpath import LIBRARY
    except ImportError:
        return None
    return os.path.normpath(os.path.join(HERE, LIBRARY))


def _tree_builds():
    root = os.path.dirname(os.path.dirname(HERE))
    if not os.path.exists(os.path.join(root, "CMakeLists.txt")):
        return root, []
    main = os.path.join(root, "build", _LIB_NAME)
    others = [p for p in glob.glob(os.path.join(root, "build*", _LIB_NAME)) if p != main]
    found = [main] if os.path.exists(main) else []
    return root, found + sorted(others, key=os.path.getmtime, reverse=True)


def _sanitized(path):
    """True for a library built with a sanitizer."""
    with open(path, "rb") as f:
        data = f.read()
    return any(rt in data for rt in (b"libasan.so", b"libtsan.so", b"libubsan.so"))


def _load():
    env = os.environ.get("QZMATH_LIB")
    if env:  # asked for explicitly: that library or none
        return _from_env(env)
    installed = _installed()
    if installed is not None:
        try:
            return ctypes.CDLL(installed)
        except OSError as e:
            raise ImportError("qzmath was installed for the library %s, which does not load (%s);"
                              " reinstall qzmath, or set QZMATH_LIB" % (installed, e)) from None
    root, paths = _tree_builds()
    tried = []
    for path in paths:
        if _sanitized(path):
            tried.append("%s (a sanitizer build: set QZMATH_LIB and preload its runtime)" % path)
            continue
        try:
            return ctypes.CDLL(path)
        except OSError as e:
            tried.append("%s (%s)" % (path, e))
    raise ImportError("libQZMath.so not found: qzmath is not installed (no qzmath/_libpath.py)"
                      " and %s has no usable build/ or build*/ library%s. Build the library,"
                      " install qzmath, or set QZMATH_LIB to the library."
                      % (root, "".join("\n  tried " + t for t in tried)))


def loaded_path(lib):
    """The file the dynamic loader mapped for lib (its name may be a bare soname)."""
    if os.path.isabs(lib._name):
        return os.path.realpath(lib._name)
    try:
        with open("/proc/self/maps") as maps:
            for line in maps:
                path = line.split(None, 5)[-1].strip()
                if os.path.basename(path).startswith(_LIB_NAME):
                    return path
    except OSError:
        pass
    return lib._name


def check_version(lib):
    """Raises ImportError unless lib's major version is the binding's; returns 'M.m.p'."""
    if VERSION is None:
        raise ImportError("qzmath cannot tell its own version: it has no qzmath/_version.py"
                          " (written at install) and is not in a source tree with a CMakeLists.txt")
    want = int(VERSION.split(".")[0])
    fn = getattr(lib, "QZ_Version", None)
    if fn is None:
        raise ImportError("qzmath %s needs libQZMath %d.x, but %s has no version query (QZ_Version):"
                          " it is not a QZMath %d library" % (VERSION, want, loaded_path(lib), want))
    fn.restype, fn.argtypes = ctypes.c_uint32, []
    v = fn()
    have = "%d.%d.%d" % (v // 10000, v // 100 % 100, v % 100)
    if v // 10000 != want:
        raise ImportError("qzmath %s needs libQZMath %d.x, but %s is libQZMath %s"
                          % (VERSION, want, loaded_path(lib), have))
    return have


def _bind(lib, raw=False):
    for name, res, args in prototypes():
        fn = getattr(lib, name, None)
        if fn is None:  # an older library without this function: calls fail with AttributeError
            continue
        fn.restype = ctype(res)
        fn.argtypes = [ctypes.c_void_p if raw and a.endswith("*") else ctype(a) for a in args]
    return lib


_BATCH_NAME = "libQZMathBatch.so"
_I64, _VP = ctypes.c_int64, ctypes.c_void_p
# The batch helper's element loops (python/qzmath/_batch.c), by the C signature they call, with
# the number of (address, step) pairs each takes.
_BATCH_LOOPS = {
    "p": 1, "pp": 2, "ppp": 3, "pppp": 4, "sp": 2, "sssp": 4, "ssssp": 5, "ppsp": 4,
}


def _load_batch():
    """The batch helper: the package's own copy when installed, else the one built beside the
    library that was loaded (a build tree, or the directory QZMATH_LIB names)."""
    tried = []
    for d in (HERE, os.path.dirname(LIBRARY_PATH)):
        path = os.path.join(d, _BATCH_NAME)
        if os.path.exists(path):
            try:
                return ctypes.CDLL(path)
            except OSError as e:
                tried.append("%s (%s)" % (path, e))
        else:
            tried.append(path)
    raise ImportError("qzmath's batch helper %s was not found (looked for %s); it is built with"
                      " the library (cmake --build build --target QZMathBatch) and installed"
                      " with the package" % (_BATCH_NAME, ", ".join(tried)))


def _bind_batch(helper):
    for sig, pointers in _BATCH_LOOPS.items():
        fn = getattr(helper, "qzb_" + sig)
        fn.restype = None
        fn.argtypes = [_VP, ctypes.c_int, _I64] + [_VP, _I64] * pointers + [_VP]
    fn = helper.qzb_ppspr
    fn.restype, fn.argtypes = None, [_VP, ctypes.c_int, _I64] + [_VP, _I64] * 4 + [_VP, _VP]
    fn = helper.qzb_quat_rotate
    fn.restype, fn.argtypes = None, [_VP, _VP, _I64] + [_VP, _I64] * 3
    runs = {"qzb_run_tracker": [_VP, _VP, _I64, _VP, _I64, _VP, _VP],
            "qzb_run_tracker_m": [_VP, _VP, _I64, _VP, _I64, _VP],
            "qzb_run_rows": [_VP, _VP, _I64, _I64, _VP, _I64] + [_VP] * 3,
            "qzb_run_rows_query": [_VP, _VP, _VP, _I64, _I64, _VP, _I64] + [_VP] * 4}
    for name, argtypes in runs.items():
        fn = getattr(helper, name)
        fn.restype, fn.argtypes = _I64, argtypes
    return helper


def address(name):
    """Address of the library's function `name`, for the batch helper to call."""
    return ctypes.cast(getattr(lib, name), _VP).value


lib = _load()
LIBRARY_VERSION = check_version(lib)
LIBRARY_PATH = loaded_path(lib)
_bind(lib)
# The same loaded library (dlopen hands back the one mapping) with its own function objects.
raw = _bind(ctypes.CDLL(lib._name), raw=True)
batch = _bind_batch(_load_batch())
