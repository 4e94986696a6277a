"""QZMath from Python: ctypes over libQZMath.so, no compiled extension.

    import qzmath
    axis = qzmath.Tracker(cycle_ms=4.0, vel_limit=50.0, acc_limit=100.0)
    axis.step(0.0)                      # the first step outputs the target itself
    path = axis.run([10.0] * 500)       # one commanded position per 4 ms cycle

Classes own the library's records (trackers, estimator, filters); the scalar functions are plain
functions; vectors, matrices and decompositions are in qzmath.linalg, rotations, Euler angles,
poses and frames in qzmath.geometry, quaternions and slerp in qzmath.quaternions. Every exported
C function is also reachable with its C prototype as qzmath.lib.NAME.
Where a C function reports failure a QZMathError subclass is raised. numpy is optional: any
sequence is accepted, and results are lists (matrices lists of rows).
"""
from ._api import LIBRARY_VERSION, VERSION as __version__, lib, loaded_path
from .errors import (ConvergenceError, InvalidArgumentError, QZMathError, SingularError,
                     StateError)
from .estimation import ErrorComparator, Estimator, OneFitter
from .filters import AveragingFilter, SmoothedValue
from .scalar import *  # noqa: F401,F403 (the plain functions)

from .trackers import (PVA, MultiStageTracker, SmoothedMultiStageTracker, SmoothedTracker,
                       TargetPVA, Tracker)
from . import geometry, linalg, quaternions, records

