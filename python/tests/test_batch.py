"""Every batch form gives, bit for bit, what its C function gives called once per element, also
where one argument is broadcast over the batch."""
import numpy as np
import pytest

from qzmath import _api
from qzmath import geometry as G
from qzmath import linalg as L
from qzmath import quaternions as Q
from qzmath.records import QZSlerpFactorState

N = 6
RNG = np.random.default_rng(7)
q, q2 = (x / np.linalg.norm(x, axis=1, keepdims=True) for x in RNG.normal(size=(2, N, 4)))
m3, v, ang = Q.to_matrix(q), RNG.normal(size=(N, 3)), RNG.uniform(-3.0, 3.0, size=(N, 3))
m4 = np.tile(np.eye(4), (N, 1, 1))
m4[:, :3, :3], m4[:, :3, 3] = m3, v
m4[0, :3, :3] = G.zyz_to_matrix([0.3, 0.001, 0.2])  # a singular ZYZ element
pose6, pose7 = np.hstack([v, ang]), np.hstack([v, q])
t = np.linspace(-0.2, 1.2, N)

CASES = [  # batch call, C function, pointer inputs, by-value inputs, output shape ("ret": the
    # function's result, "io": written into its one input); an input of one row is broadcast
    (lambda: Q.multiply(q, q2[0]), "QZ_QuatMult", [q, q2[:1]], [], (4,)),
    (lambda: Q.normalize(2 * q), "QZ_QuaternionNorm", [2 * q], [], "io"),
    (lambda: Q.length(q), "QZ_QuaternionSqrtNorm", [q], [], "ret"),
    (lambda: Q.conjugate(q), "QZ_QuaternionConjugate", [q], [], (4,)),
    (lambda: Q.inverse(q), "QZ_QuaternionInverse", [q], [], (4,)),
    (lambda: Q.angle(q, q2, degrees=True), "QZ_QuaternionAngleDeg", [q, q2], [], "ret"),
    (lambda: Q.from_matrix(m4), "QZ_Matrix2Quaternion4", [m4], [], (4,)),
    (lambda: Q.from_matrix(m3), "QZ_Matrix2Quaternion3", [m3], [], (4,)),
    (lambda: Q.to_matrix(q), "QZ_Quaternion2Matrix3", [q], [], (3, 3)),
    (lambda: Q.pose_from_matrix(m4), "QZ_Matrix2PosQuat", [m4], [], (7,)),
    (lambda: Q.pose_to_matrix(pose7), "QZ_PosQuat2Matrix_UnNorm", [pose7], [], (4, 4)),
    (lambda: Q.pose_to_matrix(pose7, normalize=False), "QZ_PosQuat2Matrix", [pose7], [], (4, 4)),
    (lambda: Q.pose_from_xyzabc(pose6, degrees=True)[:, :7], "QZ_XYZABC2XYZQ",
     [np.hstack([pose6, np.zeros((N, 2))])], [], "io"),
    (lambda: Q.slerp(q, q2, t), "QZ_QuatSlerp", [q, q2], [t], (4,)),
    (lambda: Q.slerp(q[0], q2, 0.25, longer=True), "QZ_QuatSlerpL", [q[:1], q2], [[0.25]], (4,)),
    (lambda: Q.rotvec_to_matrix(ang), "axis_angle_to_rotmat", [ang], [], (3, 3)),
    (lambda: Q.matrix_to_rotvec(m3), "rotmat_to_axis_angle", [m3], [], (3,)),
    (lambda: Q.rotvec_compose(ang, v), "AngleMult", [ang, v], [], (3,)),
    (lambda: Q.relative_rotation(m3, m3[0]), "relative_rotation", [m3, m3[:1]], [], (3, 3)),
    (lambda: Q.relative_rotvec(ang, v), "relative_Angle", [ang, v], [], (3,)),
    (lambda: G.rot_y(t), "QZ_RotYARC", [], [t], (3, 3)),
    (lambda: G.rotate(m3, v[0]), "QZ_MatrixMultVect3", [m3, v[:1]], [], (3,)),
    (lambda: G.xyz_to_matrix(ang, degrees=True), "QZ_ABC2Matrix3DEG", [ang], [], (3, 3)),
    (lambda: G.matrix_to_xyz(m4), "QZ_Matrix42XYZ", [m4], [], (3,)),
    (lambda: G.zyz_to_matrix(ang), "QZ_ZYZ2Matrix", [], list(ang.T), (3, 3)),
    (lambda: G.matrix_to_zyz(m3).angles, "QZ_Matrix2ZYZ", [m3], [], (3,)),
    (lambda: G.pose_to_matrix(pose6), "QZ_XYZABC2Matrix4ARC", [pose6], [], (4, 4)),
    (lambda: G.matrix_to_pose(m4, degrees=True), "QZ_Matrix2XYZABC4ARC_XYZ", [m4], [], (6,)),
    (lambda: G.dh(t, 0.1, t, 0.5), "QZ_DH2Matrix", [], [t, [0.1], t, [0.5]], (4, 4)),
    (lambda: G.skew(v), "QZ_Skew", [v], [], (3, 3)),
    (lambda: G.l_operator(v), "QZ_LOperator", [v], [], (3, 6)),
    (lambda: L.cross(v, ang), "QZ_VectCross", [v, ang], [], (3,)),
]


@pytest.mark.parametrize("batch, name, pointers, values, shape", CASES,
                         ids=[c[1] for c in CASES])
def test_batch_equals_the_c_function_element_by_element(batch, name, pointers, values, shape):
    fn = getattr(_api.raw, name)
    want = []
    for i in range(N):
        args = [np.array(p[i % len(p)]) for p in pointers]  # a copy: the call may write into it
        out = np.zeros(shape) if isinstance(shape, tuple) else None
        ret = fn(*[a.ctypes.data for a in args], *[x[i % len(x)] for x in values],
                 *([] if out is None else [out.ctypes.data]))
        want.append(ret if shape == "ret" else args[0] if shape == "io" else out)
    got, want = np.asarray(batch()), np.array(want)
    if shape == "io":
        want = want[..., :got.shape[-1]]
    assert got.shape == want.shape and got.tobytes() == want.tobytes()

def test_composed_and_stateful_batches_equal_their_element_calls():
    assert Q.rotate(q, v).tobytes() == G.rotate(Q.to_matrix(q), v).tobytes()
    state, want = QZSlerpFactorState(), []
    a, b = q[0].copy(), q2[0].copy()
    for x in t:
        out = np.zeros(4)
        _api.raw.QZ_QuatSlerpFactor(a.ctypes.data, b.ctypes.data, x, out.ctypes.data,
                                    _api.ctypes.addressof(state))
        want.append(out)
    assert Q.Slerp(q[0], q2[0])(t).tobytes() == np.array(want).tobytes()


def test_kinematics_batches_equal_their_element_calls():
    from qzmath import kinematics as K
    dh = np.hstack([RNG.uniform(-1.5, 1.5, (7, 1)), RNG.uniform(0, 300, (7, 2)), np.zeros((7, 1))])
    arm = K.Chain(dh)
    qs = RNG.uniform(-3.0, 3.0, size=(N, 7))
    for got, name, args in ((arm.forward(qs), "QZKin_Forward", lambda i: [arm._p, qs[i]]),
                            (arm.jacobian(qs), "QZKin_Jacobian", lambda i: [arm._p, qs[i]]),
                            (K.orientation_error(q, q2), "QZKin_OrientationError",
                             lambda i: [q[i], q2[i]])):
        want = np.zeros_like(got)
        for i in range(N):
            ptrs = [x if isinstance(x, int) else x.ctypes.data for x in args(i)]
            getattr(_api.raw, name)(*ptrs, want[i].ctypes.data, *[None][:name == "QZKin_Jacobian"])
        assert got.tobytes() == want.tobytes()
