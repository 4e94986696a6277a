"""Cost of the Python binding's batch runs: seconds for a run of N cycles of each tracker class,
a Python loop calling the C step with addresses into preallocated numpy buffers. Reported, not
checked.

    QZMATH_LIB=build/libQZMath.so.1 PYTHONPATH=python python3 bench/bench_python.py [cycles]
"""
import sys
import time

import numpy as np

import qzmath

CYCLES = int(sys.argv[1]) if len(sys.argv) > 1 else 100000
MAKE = {
    "Tracker": (lambda: qzmath.Tracker(4.0, 98.0, 300.0), 10.0),
    "SmoothedTracker, 7 axes": (
        lambda: qzmath.SmoothedTracker(4.0, [98.0] * 7, [300.0] * 7, [3000.0] * 7),
        np.full(7, 10.0)),
    "SmoothedMultiStageTracker, 7 axes": (
        lambda: qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 7, [200.0] * 7, [1e4] * 7),
        np.full(7, 10.0)),
}
print(f"{CYCLES} cycles, best of 5")
for name, (new, target) in MAKE.items():
    best = float("inf")
    for _ in range(5):
        tracker = new()
        start = time.perf_counter()
        path = tracker.run(target, cycles=CYCLES)
        best = min(best, time.perf_counter() - start)
    assert path.pos.shape[0] == CYCLES
    print(f"{name:36s} {best:8.4f} s  {best / CYCLES * 1e9:8.0f} ns per cycle")
