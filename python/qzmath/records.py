"""ctypes mirrors of the library's records, field for field in the C order and types.

Written from the C headers by the build (cmake/QZRecords.cmake): do not edit. After a change
to a record, `cmake --build build --target update_python_mirrors` rewrites this file.

A record is plain data owned by the caller; a fresh ctypes instance is zero-filled, which is
what the library expects of a record before its initialiser runs.
"""
import ctypes

_d = ctypes.c_double
_i = ctypes.c_int32
_u = ctypes.c_uint8


class QZVDTState(ctypes.Structure):
    """The record QZVDTState of QZDT.h."""
    _fields_ = [
        ("pos", _d),
        ("vel", _d),
        ("accLmt", _d),
        ("dt", _d),
        ("lawStep", _d),
        ("accStep2", _d),
        ("isInit", _u),
        ("resetPending", _u),
        ("velLmt", _d),
        ("velLmtPending", _u),
        ("velLmtTarget", _d),
        ("baseDt", _d),
    ]


class QZNSyncDTSState(ctypes.Structure):
    """The record QZNSyncDTSState of QZDT.h."""
    _fields_ = [
        ("axis", QZVDTState * 8),
        ("axisNum", _i),
        ("isInit", _u),
        ("resetPending", _u),
        ("vel", _d * 8),
        ("acc", _d * 8),
        ("pos", _d * 8),
        ("target", _d * 8),
        ("ringBuf", _d * 100 * 8),
        ("avgLen", _i * 8),
        ("avgLenD", _d * 8),
        ("avgSum", _d * 8),
        ("avgResum", _d * 8),
        ("ringIdx", _i * 8),
    ]


class QZVDTMState(ctypes.Structure):
    """The record QZVDTMState of QZDT.h."""
    _fields_ = [
        ("stage", QZVDTState * 4),
        ("blend", _d),
        ("corrScale", _d),
        ("mode", _i),
        ("targetJump", _i),
    ]


class QZNEstState(ctypes.Structure):
    """The record QZNEstState of QZDT.h."""
    _fields_ = [
        ("axisNum", _i),
        ("heldPos", _d * 8),
        ("velEst", _d * 8),
        ("velMeas", _d * 8),
        ("lastSample", _d * 8),
        ("velRaw", _d * 8),
        ("velLmtCur", _d * 8),
        ("velLmtMax", _d * 8),
        ("dt", _d),
        ("ticksSinceSample", _i),
        ("cycleMsInt", _i),
        ("holdLimit", _i),
        ("resetPending", _i),
        ("lastStamp", _i),
        ("nearLimit", _u * 8),
        ("sampleCount", _i),
        ("jitterSum", _i),
        ("jitterScore", _d),
    ]


class OneFitterState(ctypes.Structure):
    """The record OneFitterState of QZDT.h."""
    _fields_ = [
        ("axisNum", _i),
        ("state", _d * 8),
        ("lastOut", _d * 8),
        ("alpha", _d * 8),
    ]


class QZDCTRLErrorState(ctypes.Structure):
    """The record QZDCTRLErrorState of QZDT.h."""
    _fields_ = [
        ("err", _d * 8),
        ("integ", _d * 8),
        ("kInteg", _d * 8),
        ("kProp", _d * 8),
        ("outLmt", _d * 8),
        ("errLmt", _d * 8),
        ("integLmt", _d * 8),
    ]


class QZNSyncDTSMState(ctypes.Structure):
    """The record QZNSyncDTSMState of QZDT.h."""
    _fields_ = [
        ("axis", QZVDTMState * 8),
        ("axisNum", _i),
        ("isInit", _u),
        ("resetPending", _u),
        ("vel", _d * 8),
        ("acc", _d * 8),
        ("rawPos", _d * 8),
        ("pos", _d * 8),
        ("target", _d * 8),
        ("prevTarget", _d * 8),
        ("ringBuf", _d * 100 * 8),
        ("avgLen", _i * 8),
        ("avgLenD", _d * 8),
        ("avgSum", _d * 8),
        ("resumCount", _i * 8),
        ("ringIdx", _i * 8),
    ]


class QZAVGFState(ctypes.Structure):
    """The record QZAVGFState of QZFLT.h."""
    _fields_ = [
        ("ringBuf", _d * 100 * 8),
        ("avgSum", _d * 8),
        ("avgResum", _d * 8),
        ("prevAvg", _d * 8),
        ("chNum", _i),
        ("ringIdx", _i),
        ("avgLen", _i),
        ("isInit", _i),
        ("resetPending", _u),
        ("dt", _d),
    ]


class QZSMVState(ctypes.Structure):
    """The record QZSMVState of QZFLT.h."""
    _fields_ = [
        ("value", _d),
        ("alpha", _d),
        ("stepMax", _d),
        ("stepMin", _d),
        ("isZero", _u),
        ("isOne", _u),
    ]


class QZKinChain(ctypes.Structure):
    """The record QZKinChain of QZKinematics.h."""
    _fields_ = [
        ("jointNum", _i),
        ("isInit", _u),
        ("alpha", _d * 8),
        ("a", _d * 8),
        ("d", _d * 8),
        ("offset", _d * 8),
        ("sinAlpha", _d * 8),
        ("cosAlpha", _d * 8),
        ("tool", _d * 16),
        ("qMin", _d * 8),
        ("qMax", _d * 8),
        ("lengthScale", _d),
        ("sigmaThreshold", _d),
        ("lambdaMax", _d),
    ]


class QZSlerpFactorState(ctypes.Structure):
    """The record QZSlerpFactorState of QZQuaternions.h."""
    _fields_ = [
        ("initialized", _u),
        ("theta", _d),
        ("sinTheta", _d),
        ("useSpherical", _u),
    ]


# Every record, for layout checks and for the prototype table.
RECORDS = {cls.__name__: cls for cls in (
    QZVDTState,
    QZNSyncDTSState,
    QZVDTMState,
    QZNEstState,
    OneFitterState,
    QZDCTRLErrorState,
    QZNSyncDTSMState,
    QZAVGFState,
    QZSMVState,
    QZKinChain,
    QZSlerpFactorState,
)}
__all__ = ["RECORDS"] + list(RECORDS)
