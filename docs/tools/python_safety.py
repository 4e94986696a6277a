"""Prints the example of docs/python.md on refused input: its code, then what it prints."""
import contextlib
import io

EXAMPLE = '''\
import warnings
import numpy as np
import qzmath
from qzmath import quaternions as Q

arm = qzmath.Tracker(cycle_ms=4.0, vel_limit=2.0, acc_limit=20.0)
arm.step(0.0)                                # at rest at 0
arm.run(np.full(100, 1.0))                   # 0.4 s into a move to 1.0
print("moving:", round(arm.position, 4), "at", round(arm.velocity, 3), "units/s")
try:
    arm.step(float("nan"))
except qzmath.InvalidArgumentError as e:
    print("refused:", e)
print("record as it was:", round(arm.position, 4), "at", round(arm.velocity, 3), "units/s")
try:
    arm.run([1.0, 1.0, float("inf")])
except qzmath.InvalidArgumentError as e:
    print("refused:", e)
try:
    Q.to_matrix([[0.0, 0.0, 0.0, 1.0], [0.0, 0.0, 0.0, 0.0]])
except qzmath.InvalidArgumentError as e:
    print("refused:", e)
with warnings.catch_warnings(record=True) as caught:
    warnings.simplefilter("always")
    qzmath.SmoothedTracker(4.0, [500.0] * 3, [100.0] * 3, [1000.0] * 3)
print(len(caught), "warning:", caught[0].message)
'''

out = io.StringIO()
with contextlib.redirect_stdout(out):
    exec(EXAMPLE, {})
print("```python\n" + EXAMPLE + "```\n\nprints\n\n```text\n" + out.getvalue() + "```")
