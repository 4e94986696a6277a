"""QZMath from Python: ctypes over libQZMath.so, with batches run in compiled loops that call the
library's own functions; numpy in and out.

    import numpy as np, qzmath
    arm = qzmath.SmoothedTracker(cycle_ms=4.0, vel_limits=[50.0] * 7, acc_limits=[100.0] * 7,
                                 jerk_limits=[1000.0] * 7)
    arm.step(np.zeros(7))               # the first step puts the arm at rest where it is
    path = arm.run(np.full(7, 10.0), cycles=500)   # path.pos, path.vel, path.acc: (500, 7)

Classes own the library's records (trackers, estimator, filters); the scalar functions are plain
functions; vectors, matrices and decompositions are in qzmath.linalg, rotations, Euler angles,
poses and frames in qzmath.geometry, quaternions and slerp in qzmath.quaternions, serial chains
(forward kinematics over many configurations, Jacobians, damped least squares, IK) in
qzmath.kinematics. Results are numpy arrays of their natural shape; conversions and products take
leading batch axes.

Errors: wrong types, None and wrong shapes raise TypeError or ValueError naming the parameter;
NaN or infinite values (targets, samples, array elements, limits), non-positive limits and cycle
times and zero-norm quaternions raise InvalidArgumentError, naming the first bad batch index; a
failure the library reports raises another QZMathError. No checked call leaves a record that
gives NaN from finite input. A value that the library clamps or ignores
raises a QZMathWarning (through the warnings module) naming the value in effect.

qzmath.unchecked is the library itself with its C prototypes: no checks, and wrong arguments
there can crash the interpreter.
"""
from ._api import LIBRARY_PATH, LIBRARY_VERSION, VERSION as __version__, lib as unchecked
from .errors import (ConvergenceError, InvalidArgumentError, QZMathError, QZMathWarning,
                     SingularError, StateError)
from .estimation import ErrorComparator, Estimator, OneFitter
from .filters import AveragingFilter, SmoothedValue
from .scalar import *  # noqa: F401,F403 (the plain functions)

from .trackers import (MultiStageTracker, Path, SmoothedMultiStageTracker, SmoothedTracker,
                       TargetPVA, Tracker)
from . import geometry, kinematics, linalg, quaternions, records
from . import scalar as _scalar

__all__ = ["LIBRARY_PATH", "LIBRARY_VERSION", "unchecked", "ConvergenceError",
           "InvalidArgumentError", "QZMathError", "QZMathWarning", "SingularError", "StateError",
           "ErrorComparator", "Estimator", "OneFitter", "AveragingFilter", "SmoothedValue",
           "MultiStageTracker", "Path", "SmoothedMultiStageTracker", "SmoothedTracker",
           "TargetPVA", "Tracker", "geometry", "kinematics", "linalg", "quaternions", "records"
           ] + _scalar.__all__
