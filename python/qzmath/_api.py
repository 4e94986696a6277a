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

Prototypes are declared from the table below, one function a line: name, result type, argument
types. Types: D double, I32 int32_t, U8 uint8_t, U32 uint32_t, void; a trailing * is a pointer
(const is immaterial to ctypes), D** an array of row pointers; record names are the records of
qzmath.records. A name containing {N} stands for the sizes 2 to 8.
"""
import ctypes
import glob
import os

from . import records

PROTOTYPES = """
# QZBaseMath
QZ_Version                   U32
QZ_Sqrt                      D    D
QZ_Fabs                      D    D
QZ_3Root                     D    D
QZ_SIN_ARC                   D    D
QZ_COS_ARC                   D    D
QZ_SIN_DEG                   D    D
QZ_COS_DEG                   D    D
QZ_SIN_COS_ARC               void D D* D*
QZ_SIN_COS_DEG               void D D* D*
QZ_Sigmod                    D    D
QZ_ATan2                     D    D D
QZ_ACOS                      D    D
QZ_MAX                       D    D D
QZ_MIN                       D    D D
QZ_IsZero                    U8   D
QZ_IsZeroL                   U8   D
QZ_Floor                     D    D
QZ_Value_Sig                 D    D
QZ_SqureSolve                I32  D D D D*
QZ_CubicSolve                I32  D D D D D*
QZ_CubicSolve_Min_Pos        U8   D D D D D*
QZ_CubicSolve_Max_Nag        U8   D D D D D*
QZ_Solve2OrderEq             I32  D D D D* D*
QZ_Solve3OrderEq             I32  D D D D D* D*
QZ_Solve4OrderEq             I32  D D D D D D* D*
QZ_Solve4OrderEqR            I32  D D D D D D*
QZ_SolvePolynomialResult     D    D* D I32
QZ_CalAngleCDEG              D    D D D
QZ_PointToLine               I32  D* D* D* D*
QZ_MinDif_Circle             D    D D*
ValueToTarget                void D* D D
# QZDT
QZVDT_OnInit                 U8   QZVDTState* D D D
QZVDT_OnEmpty                U8   QZVDTState*
QZVDT_OnDT                   U8   QZVDTState* D D*
QZVDT_OnSetRunTimeLmt        U8   QZVDTState* D D
QZVDT_OnSetRunTimeVel        U8   QZVDTState* D
QZVDT_OnSetRunTimeAcc        U8   QZVDTState* D
QZNSyncDTS_OnInit            U8   QZNSyncDTSState* I32 D D* D* D*
QZNSyncDTS_OnEmpty           U8   QZNSyncDTSState*
QZNSyncDTS_OnSetRunTimeLmt   U8   QZNSyncDTSState* D* D*
QZNSyncDTS_OnSetRunTimeVel   U8   QZNSyncDTSState* D*
QZNSyncDTS_OnSetRunTimeAcc   U8   QZNSyncDTSState* D*
QZNSyncDTS_OnDT              U8   QZNSyncDTSState* D* D*
QZNSyncDTS_OnDT2             U8   QZNSyncDTSState* D* D* D* D*
QZNSyncDTS_OnDT_NoChange     U8   QZNSyncDTSState* D*
QZNSyncDTS_OnGetCurPVA       U8   QZNSyncDTSState* D* D* D* D*
QZNSyncDTS_OnGetCurPVA_U     U8   QZNSyncDTSState* D* D* D*
QZVDT_OnInitM                U8   QZVDTMState* D D D I32
QZVDT_OnEmptyM               U8   QZVDTMState*
QZVDT_OnDT_BM                U8   QZVDTMState* D D*
QZVDT_OnSetRunTimeLmtM       U8   QZVDTMState* D D I32
QZOnInitEst                  void QZNEstState* I32 D D* D*
QZNEst_OnEmpty               I32  QZNEstState*
QZNEst_OnSetRunTimeLmt       I32  QZNEstState* D*
QZNEst_OnDT                  I32  QZNEstState* I32 D* D* D*
OneFitterInit                void OneFitterState* I32 D*
OneFitterRun                 I32  OneFitterState* D* D*
QZ_DCTRL_ErrorCompare_Init   I32  I32 QZDCTRLErrorState*
QZ_DCTRL_ErrorCompare        I32  I32 D* D* QZDCTRLErrorState* D*
QZNSyncDTS_OnInitM           U8   QZNSyncDTSMState* I32 D D* D* D* I32
QZNSyncDTS_OnEmptyM          U8   QZNSyncDTSMState*
QZNSyncDTS_OnSetRunTimeLmtM  U8   QZNSyncDTSMState* D* D*
QZNSyncDTS_OnDTM             U8   QZNSyncDTSMState* D* D*
QZNSyncDTS_OnDT_UM           U8   QZNSyncDTSMState* D*
QZNSyncDTS_OnGetCurPVAM      U8   QZNSyncDTSMState* D* D* D* D*
QZNSyncDTS_OnGetCurPVA_UM    U8   QZNSyncDTSMState* D* D* D*
# QZFLT
QZAVGF_OnInit                I32  QZAVGFState* I32 I32 D
QZAVGF_OnEmpty               I32  QZAVGFState*
QZAVGF_OnFilt                I32  QZAVGFState* D* D* D*
QZSMV_OnInit                 I32  QZSMVState* D D D D
QZSMV_OnUpdateV              void QZSMVState* D D*
QZSMV_OnUpdateVZO            void QZSMVState* D D* U8* U8*
QZSMV_OnUpdateZO             void QZSMVState* D U8* U8*
# QZKinematics
QZKin_ChainInit              I32  QZKinChain* I32 D* D* D* D*
QZKin_SetDamping             I32  QZKinChain* D D D
QZKin_Forward                I32  QZKinChain* D* D*
QZKin_ForwardPosQuat         I32  QZKinChain* D* D*
QZKin_Jacobian               I32  QZKinChain* D* D* D*
QZKin_OrientationError       I32  D* D* D*
QZKin_DampedLeastSquares     I32  QZKinChain* D* D* D* D*
QZKin_TrackerLead            I32  QZNSyncDTSState* D* D* D* D*
QZKin_SolvePosition          I32  QZKinChain* D* D* I32 D D D* D* I32*
# QZMatrix
QZ_VectNorm{N}               I32  D*
QZ_VectCpy{N}                void D* D*
QZ_VectAdd{N}                void D* D* D*
QZ_VectSA{N}                 void D* D D* D*
QZ_VectSub                   void D* I32 D* D*
QZ_VectAddX                  void D* I32 D* D*
QZ_VectDotMult               void D* I32 D* D*
QZ_VectSAX                   void D* I32 D D* D*
QZ_VectScale                 void D* I32 D D*
QZ_VectDot                   D    D* D* I32
QZ_VectLength                D    D* I32
QZ_VectNorm                  I32  D* I32
QZ_VectAngle                 D    D* D* I32
VectNormalized               void D* I32 D*
CalShadowVector              void D* D* D* I32
QZ_VectCross                 void D* D* D*
QZ_GetVectLenA2B             D    D* D*
QZ_GetVectNormA2B            I32  D* D* D*
QZ_GetVectNormLenA2B         I32  D* D* D* D*
QZ_MatrixMult{N}             void D* D* D*
QZ_MatrixCpy{N}              void D* D*
QZ_MatrixIdentity{N}         void D*
QZ_MatrixAdd{N}              void D* D* D*
QZ_MatrixTranspose{N}        void D* D*
QZ_MatrixMult6777            void D* D* D*
QZ_MatrixMult6776            void D* D* D*
QZ_MMM44                     void D* D* D*
QZ_MatrixMult3m4             void D* D* D*
QZ_MatrixSub67               void D* D* D*
QZ_MmultDiagM66              void D* D* D*
QZ_Mat67Transpose            void D* D*
Mat4433Transpose             void D* D*
MatTr33                      void D* D*
MatTr44                      void D* D*
QZ_MatrixMultVect3           void D* D* D*
QZ_MatrixMultVect4           void D* D* D*
QZ_MatrixMultVect6           void D* D* D*
QZ_MatrixMultVect7           void D* D* D*
QZ_Matrix67MultVect7         void D* D* D*
QZ_Matrix76MultVect6         void D* D* D*
QZ_MVmult43                  void D* D* D*
QZ_VMmult1666                void D* D* D*
QZ_VMmult1777                void D* D* D*
QZ_MatrixAddX                void D** I32 I32 D** D**
QZ_MatrixTransposeXX         void D** I32 I32 D**
QZ_MatrixMultXmX             void D** I32 I32 D** I32 D**
QZ_MatrixMultVectX           void D** I32 I32 D* D*
QZ_MatrixInv{N}              U8   D* D*
QZ_PGMatrixInv               U8   D* D*
QZ_MatrixDeterminant         D    D* I32
QZ_MatLUPD                   I32  D** I32 I32 I32*
QZ_LUPSolveEq                void D** I32 I32* D* D*
QZ_MatLUPDet                 D    D** I32 I32*
QZ_MatLUPInv                 void D** I32 I32* D**
QZ_LeftPsoInv76              U8   D* D*
QZ_RightPsoInv67             U8   D* D*
Cholesky                     I32  D* D* I32
Cholesky7                    I32  D* D* I32
VMV                          D    D* D* I32
eig                          U8   I32 D* D* D
eig7                         U8   D* D* D
generalized_eig              U8   D D* D* D* D*
generalized_eig7             U8   D D* D* D* D*
QZ_RotXARC                   void D D*
QZ_RotYARC                   void D D*
QZ_RotZARC                   void D D*
QZ_ZYZ2Matrix                void D D D D*
QZ_Matrix2ZYZ                U32  D* D*
QZ_Matrix42ZYZ               U32  D* D*
QZ_Matrix2XYZ                U32  D* D*
QZ_Matrix42XYZ               U32  D* D*
QZ_XYZABC2Matrix4ARC         void D* D*
QZ_XYZABC2Matrix4DEG         void D* D*
QZ_Matrix2XYZABC4ARC_ZYZ     U32  D* D*
QZ_Matrix2XYZABC4DEG_ZYZ     U32  D* D*
QZ_Matrix2XYZABC4ARC_XYZ     U32  D* D*
QZ_Matrix2XYZABC4DEG_XYZ     U32  D* D*
QZ_ABC2Matrix3ARC            U32  D* D*
QZ_ABC2Matrix3DEG            U32  D* D*
QZ_XYZMRot                   void D* D D D*
QZ_CALC_TRANS_FROM_Rotxyz    void D* D*
QZ_DH2Matrix                 void D D D D D*
QZ_Skew                      void D* D*
QZ_LOperator                 void D* D*
QZ_LineCross                 U32  D* D* D* D* D*
QZ_VectAddMV                 void D* D** I32 I32 D* D*
QZ_JACOB_TRAN_T66            void D* D* D*
QZ_JACOB_TRAN_T67            void D* D* D*
QZ_JACOBI_TRANS_T67          void D* D* D*
Mat67Transpose               void D* D*
MVmult677                    void D* D* D*
# QZQuaternions
QZ_QuatMult                  void D* D* D*
QZ_QuaternionNorm            U32  D*
QZ_QuaternionSqrtNorm        D    D*
QZ_QuaternionConjugate       void D* D*
QZ_QuaternionInverse         U32  D* D*
QZ_QuaternionAngleDeg        D    D* D*
QZ_QuaternionAngleArc        D    D* D*
QZ_Matrix2Quaternion3        void D* D*
QZ_Matrix2Quaternion4        void D* D*
QZ_Quaternion2Matrix3        void D* D*
QZ_Quaternion2Matrix4        void D* D*
QZ_Matrix2PosQuat            void D* D*
QZ_PosQuat2Matrix_UnNorm     U32  D* D*
QZ_PosQuat2Matrix            void D* D*
QZ_XYZABC2XYZQ               U32  D*
QZ_QuatSlerp                 void D* D* D D*
QZ_QuatSlerpL                void D* D* D D*
QZ_QuatSlerpFactor           void D* D* D D* QZSlerpFactorState*
QZ_QuatSlerpFactorL          void D* D* D D* QZSlerpFactorState*
QZ_QuatSlerpDir              I32  D* D* D*
axis_angle_to_rotmat         void D* D*
rotmat_to_axis_angle         void D* D*
AngleMult                    void D* D* D*
relative_rotation            void D* D* D*
relative_Angle               void D* D* D*
"""

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
        raise ImportError("qzmath cannot tell its own version: it has no qzmath/_version.py (written"
                          " at install) and is not in a source tree with a CMakeLists.txt")
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


lib = _load()
LIBRARY_VERSION = check_version(lib)
LIBRARY_PATH = loaded_path(lib)
_bind(lib)
# The same loaded library (dlopen hands back the one mapping) with its own function objects.
raw = _bind(ctypes.CDLL(lib._name), raw=True)
