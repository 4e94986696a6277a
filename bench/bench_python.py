"""Cost of the Python package's batch forms against scipy's Rotation, and of the trackers' run()
against the same cycles stepped by a C loop, in one run. Best of 9; reported, not checked.

    QZMATH_LIB=build/libQZMath.so.1 PYTHONPATH=python /usr/bin/python3 bench/bench_python.py [N]

N (default 100000) is the batch size and the number of cycles. scipy (Debian: python3-scipy) is
the peer; without it the scipy column is left empty.
"""
import sys
import time
import warnings

import numpy as np

import qzmath
from qzmath import _api
from qzmath import geometry as G
from qzmath import quaternions as Q

try:
    from scipy.spatial.transform import Rotation
except ImportError:
    Rotation = None

N = int(sys.argv[1]) if len(sys.argv) > 1 else 100000


def best(fn, repeat=9):
    """Least wall time of repeat calls of fn, in seconds."""
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        fn()
        times.append(time.perf_counter() - start)
    return min(times)


rng = np.random.default_rng(1)
q = rng.normal(size=(N, 4))
q /= np.linalg.norm(q, axis=1, keepdims=True)
q2 = np.roll(q, 1, axis=0)
m = Q.to_matrix(q)
rv = Q.matrix_to_rotvec(m)
v = rng.normal(size=(N, 3))
rows = [  # operation, qzmath, scipy (None where scipy has no such form)
    ("quaternion to matrix", lambda: Q.to_matrix(q), lambda: Rotation.from_quat(q).as_matrix()),
    ("matrix to quaternion", lambda: Q.from_matrix(m), lambda: Rotation.from_matrix(m).as_quat()),
    ("rotation vector to matrix", lambda: Q.rotvec_to_matrix(rv),
     lambda: Rotation.from_rotvec(rv).as_matrix()),
    ("rotate vectors", lambda: Q.rotate(q, v), lambda: Rotation.from_quat(q).apply(v)),
    ("multiply", lambda: Q.multiply(q, q2),
     lambda: (Rotation.from_quat(q) * Rotation.from_quat(q2)).as_quat()),
    ("matrix to XYZ angles", lambda: G.matrix_to_xyz(m),
     lambda: Rotation.from_matrix(m).as_euler("xyz")),
    ("slerp", lambda: Q.slerp(q, q2, 0.3), None),
]
print(f"batches of {N}, best of 9" + ("" if Rotation else " (scipy not installed)"))
print("| operation | qzmath ms | scipy ms | qzmath / scipy |\n|---|---:|---:|---:|")
for name, ours, theirs in rows:
    t = best(ours)
    s = best(theirs) if Rotation and theirs else None
    print(f"| {name} | {t * 1e3:.2f} | {'-' if s is None else '%.2f' % (s * 1e3)} | "
          f"{'-' if s is None else '%.2f' % (t / s)} |")

# Trackers: run() (checks, allocation, one call into the loop) against the loop itself called
# straight from C on a record in the same state, which is what stepping from C costs.
with warnings.catch_warnings():
    warnings.simplefilter("ignore")
    MAKE = {
        "Tracker": (lambda: qzmath.Tracker(4.0, 98.0, 300.0), 10.0),
        "SmoothedTracker, 7 axes": (
            lambda: qzmath.SmoothedTracker(4.0, [98.0] * 7, [300.0] * 7, [3000.0] * 7),
            np.full(7, 10.0)),
        "SmoothedMultiStageTracker, 7 axes": (
            lambda: qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 7, [200.0] * 7, [1e4] * 7),
            np.full(7, 10.0)),
    }


def c_loop(tracker, target):
    """The cycles of run(target, cycles=N) stepped by the C loop alone (one target held)."""
    t = np.array(target, dtype=float)
    pos, vel, acc = (np.empty((N,) + t.shape) for _ in range(3))
    h, p, at = _api.batch, tracker._p, _api.address  # the lambdas hold tracker, the record's owner
    if isinstance(tracker, qzmath.Tracker):
        return lambda: tracker and h.qzb_run_tracker(at("QZVDT_OnDT"), p, N, t.ctypes.data, 0,
                                                     pos.ctypes.data, vel.ctypes.data)
    if isinstance(tracker, qzmath.SmoothedTracker):
        return lambda: tracker and h.qzb_run_rows(at("QZNSyncDTS_OnDT2"), p, N, 7, t.ctypes.data,
                                                  0, pos.ctypes.data, vel.ctypes.data,
                                                  acc.ctypes.data)
    scratch = np.empty(16)
    return lambda: tracker and h.qzb_run_rows_query(
        at("QZNSyncDTS_OnDTM"), at("QZNSyncDTS_OnGetCurPVAM"), p, N, 7, t.ctypes.data, 0,
        pos.ctypes.data, vel.ctypes.data, acc.ctypes.data, scratch.ctypes.data)


print(f"\n{N} tracker cycles, best of 9, each from a freshly made tracker\n"
      "| class | run() ms | C loop ms | run() / C loop | step() loop ms |\n"
      "|---|---:|---:|---:|---:|")
for name, (new, target) in MAKE.items():
    trackers = [new() for _ in range(19)]
    ours = best(lambda: trackers.pop().run(target, cycles=N))
    loops = [c_loop(trackers.pop(), target) for _ in range(9)]
    c = best(lambda: loops.pop()())
    stepped = best(lambda: [trackers[-1].step(target) for _ in range(min(N, 10000))], 1)
    print(f"| {name} | {ours * 1e3:.2f} | {c * 1e3:.2f} | {ours / c:.2f} | "
          f"{stepped * N / min(N, 10000) * 1e3:.0f} |")
