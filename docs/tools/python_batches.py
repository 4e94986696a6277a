"""Prints the batch example of docs/python.md: each line of its code, and in a comment the shape
of what that line gives, as it ran."""
import numpy as np

from qzmath import geometry as G
from qzmath import quaternions as Q

HEAD = "import numpy as np\nfrom qzmath import quaternions as Q, geometry as G\n"
LINES = [  # (code, what the shape means)
    ("q = Q.from_matrix(G.rot_z(np.linspace(0, np.pi, 10)))", ""),
    ("R = Q.to_matrix(q)", ""),
    ("Q.multiply(q, q[0])", ": each q times q[0]"),
    ("Q.slerp(q[0], q[-1], np.linspace(0, 1, 50))", ""),
    ("Q.rotate(q, [1.0, 0.0, 0.0])", ""),
    ("G.xyz_to_matrix(np.zeros((5, 3)))", ": Euler angles to rotations"),
    ("G.matrix_to_xyz(R)", ": and back"),
    ("G.dh(0.0, 0.1, 0.2, np.linspace(0, 1, 7))", ""),
]

env = {"np": np, "Q": Q, "G": G}
print("```python\n" + HEAD)
for code, note in LINES:
    if " = " in code:
        exec(code, env)
        value = env[code.split(" = ")[0]]
    else:
        value = eval(code, env)
    print("%-56s # %s%s" % (code, value.shape, note))
print("```")
