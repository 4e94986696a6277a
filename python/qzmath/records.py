"""ctypes mirrors of the library's records, field for field in the C order and types.

A record is plain data owned by the caller; a fresh ctypes instance is zero-filled, which is
what the library expects of a record before its initialiser runs.
"""
import ctypes

__all__ = ["RECORDS", "QZVDTState", "QZNSyncDTSState", "QZVDTMState", "QZNEstState",
           "OneFitterState", "QZDCTRLErrorState", "QZNSyncDTSMState", "QZAVGFState",
           "QZSMVState", "QZSlerpFactorState"]

_d = ctypes.c_double
_i32 = ctypes.c_int32
_u8 = ctypes.c_uint8


def _arr(t, n):
    return t * n


class QZVDTState(ctypes.Structure):
    """Single-axis tracker."""
    _fields_ = [
        ("pos", _d),
        ("vel", _d),
        ("accLmt", _d),
        ("dt", _d),
        ("lawStep", _d),
        ("accStep2", _d),
        ("isInit", _u8),
        ("resetPending", _u8),
        ("velLmt", _d),
        ("velLmtPending", _u8),
        ("velLmtTarget", _d),
        ("baseDt", _d),
    ]


class QZNSyncDTSState(ctypes.Structure):
    """N-axis smoothed tracker."""
    _fields_ = [
        ("axis", _arr(QZVDTState, 8)),
        ("axisNum", _i32),
        ("isInit", _u8),
        ("resetPending", _u8),
        ("vel", _arr(_d, 8)),
        ("acc", _arr(_d, 8)),
        ("pos", _arr(_d, 8)),
        ("target", _arr(_d, 8)),
        ("ringBuf", _arr(_arr(_d, 100), 8)),
        ("avgLen", _arr(_i32, 8)),
        ("avgLenD", _arr(_d, 8)),
        ("avgSum", _arr(_d, 8)),
        ("avgResum", _arr(_d, 8)),
        ("ringIdx", _arr(_i32, 8)),
    ]


class QZVDTMState(ctypes.Structure):
    """Multi-stage single-axis tracker."""
    _fields_ = [
        ("stage", _arr(QZVDTState, 4)),
        ("blend", _d),
        ("corrScale", _d),
        ("mode", _i32),
        ("targetJump", _i32),
    ]


class QZNEstState(ctypes.Structure):
    """N-axis estimator."""
    _fields_ = [
        ("axisNum", _i32),
        ("heldPos", _arr(_d, 8)),
        ("velEst", _arr(_d, 8)),
        ("velMeas", _arr(_d, 8)),
        ("lastSample", _arr(_d, 8)),
        ("velRaw", _arr(_d, 8)),
        ("velLmtCur", _arr(_d, 8)),
        ("velLmtMax", _arr(_d, 8)),
        ("dt", _d),
        ("ticksSinceSample", _i32),
        ("cycleMsInt", _i32),
        ("holdLimit", _i32),
        ("resetPending", _i32),
        ("lastStamp", _i32),
        ("nearLimit", _arr(_u8, 8)),
        ("sampleCount", _i32),
        ("jitterSum", _i32),
        ("jitterScore", _d),
    ]


class OneFitterState(ctypes.Structure):
    """One-step (one-pole) fitter."""
    _fields_ = [
        ("axisNum", _i32),
        ("state", _arr(_d, 8)),
        ("lastOut", _arr(_d, 8)),
        ("alpha", _arr(_d, 8)),
    ]


class QZDCTRLErrorState(ctypes.Structure):
    """Control error comparator of a seven-joint arm."""
    _fields_ = [
        ("err", _arr(_d, 8)),
        ("integ", _arr(_d, 8)),
        ("kInteg", _arr(_d, 8)),
        ("kProp", _arr(_d, 8)),
        ("outLmt", _arr(_d, 8)),
        ("errLmt", _arr(_d, 8)),
        ("integLmt", _arr(_d, 8)),
    ]


class QZNSyncDTSMState(ctypes.Structure):
    """N-axis multi-stage tracker."""
    _fields_ = [
        ("axis", _arr(QZVDTMState, 8)),
        ("axisNum", _i32),
        ("isInit", _u8),
        ("resetPending", _u8),
        ("vel", _arr(_d, 8)),
        ("acc", _arr(_d, 8)),
        ("rawPos", _arr(_d, 8)),
        ("pos", _arr(_d, 8)),
        ("target", _arr(_d, 8)),
        ("prevTarget", _arr(_d, 8)),
        ("ringBuf", _arr(_arr(_d, 100), 8)),
        ("avgLen", _arr(_i32, 8)),
        ("avgLenD", _arr(_d, 8)),
        ("avgSum", _arr(_d, 8)),
        ("resumCount", _arr(_i32, 8)),
        ("ringIdx", _arr(_i32, 8)),
    ]


class QZAVGFState(ctypes.Structure):
    """Averaging filter."""
    _fields_ = [
        ("ringBuf", _arr(_arr(_d, 100), 8)),
        ("avgSum", _arr(_d, 8)),
        ("avgResum", _arr(_d, 8)),
        ("prevAvg", _arr(_d, 8)),
        ("chNum", _i32),
        ("ringIdx", _i32),
        ("avgLen", _i32),
        ("isInit", _i32),
        ("resetPending", _u8),
        ("dt", _d),
    ]


class QZSMVState(ctypes.Structure):
    """Smoothed value."""
    _fields_ = [
        ("value", _d),
        ("alpha", _d),
        ("stepMax", _d),
        ("stepMin", _d),
        ("isZero", _u8),
        ("isOne", _u8),
    ]


class QZSlerpFactorState(ctypes.Structure):
    """Cached angle of one pair of quaternions for repeated slerp."""
    _fields_ = [
        ("initialized", _u8),
        ("theta", _d),
        ("sinTheta", _d),
        ("useSpherical", _u8),
    ]


# Every record, for layout checks and for the prototype table.
RECORDS = {cls.__name__: cls for cls in (
    QZVDTState, QZNSyncDTSState, QZVDTMState, QZNEstState, OneFitterState, QZDCTRLErrorState,
    QZNSyncDTSMState, QZAVGFState, QZSMVState, QZSlerpFactorState)}
