"""Linear algebra, geometry and quaternions through the binding, against numpy as the oracle:
shape dispatch, row order of results, and failures raised."""
import math
import random

import pytest

import qzmath
from qzmath import geometry as G
from qzmath import linalg as L
from qzmath import quaternions as Q

np = pytest.importorskip("numpy")
SEED = 20240611


@pytest.fixture
def rng():
    print("seed", SEED)
    return np.random.default_rng(SEED)


def close(a, b, tol=1e-9):
    return np.allclose(np.array(a, dtype=float), np.array(b, dtype=float), rtol=tol, atol=tol)


def test_products_and_transposes_of_every_shape_match_numpy(rng):
    for n in range(2, 9):
        a, b = rng.normal(size=(n, n)), rng.normal(size=(n, n))
        assert close(L.matmul(a.tolist(), b.tolist()), a @ b)
        assert close(L.matmul(a.ravel().tolist(), b.ravel().tolist()), a @ b)  # flat square
        assert L.transpose(a.tolist()) == a.T.tolist()
    for (m, k, p) in ((3, 5, 2), (6, 7, 6), (1, 4, 1), (9, 9, 9)):
        a, b = rng.normal(size=(m, k)), rng.normal(size=(k, p))
        assert close(L.matmul(a, b), a @ b)
        assert L.transpose(a) == a.T.tolist()
    for shape in ((3, 3), (4, 4), (6, 6), (7, 7), (6, 7), (7, 6), (5, 5), (2, 9)):
        m, v = rng.normal(size=shape), rng.normal(size=shape[1])
        assert close(L.matvec(m.tolist(), v.tolist()), m @ v)
    with pytest.raises(ValueError):
        L.matmul([[1, 2, 3]], [[1, 2, 3]])


def test_inverse_determinant_and_lup_match_numpy(rng):
    for n in range(2, 9):
        a = rng.normal(size=(n, n))
        assert close(L.inverse(a), np.linalg.inv(a), 1e-8)
        assert L.det(a) == pytest.approx(np.linalg.det(a), rel=1e-9)
        lup = L.LUP(a)
        b = rng.normal(size=n)
        assert close(lup.solve(b), np.linalg.solve(a, b), 1e-8)
        assert lup.det() == pytest.approx(np.linalg.det(a), rel=1e-9)
        assert close(lup.inverse(), np.linalg.inv(a), 1e-8)
    singular = [[1.0, 2.0, 3.0], [2.0, 4.0, 6.0], [0.0, 1.0, 1.0]]
    with pytest.raises(qzmath.SingularError):
        L.inverse(singular)
    with pytest.raises(qzmath.SingularError):
        L.LUP(singular)
    t = G.pose_to_matrix([1.0, -2.0, 3.0, 0.3, -0.4, 1.1])
    assert close(L.rigid_inverse(t), np.linalg.inv(np.array(t)))


def test_pseudo_inverses_of_both_jacobian_shapes(rng):
    j = rng.normal(size=(6, 7))
    assert close(j @ np.array(L.pinv(j)), np.eye(6), 1e-8)
    assert close(np.array(L.pinv(j.T)) @ j.T, np.eye(6), 1e-8)
    j[5] = j[4]  # rank 5
    with pytest.raises(qzmath.SingularError):
        L.pinv(j)
    with pytest.raises(ValueError):
        L.pinv(np.zeros((6, 6)))


def test_cholesky_eig_and_generalized_eig_satisfy_their_equations(rng):
    for n in (1, 3, 6, 7):
        m = rng.normal(size=(n, n))
        spd = m @ m.T + n * np.eye(n)
        f = np.array(L.cholesky(spd))
        assert close(f @ f.T, spd) and np.all(np.triu(f, 1) == 0)
        v = rng.normal(size=n)
        assert L.vmv(v, spd) == pytest.approx(v @ spd @ v)
    with pytest.raises(qzmath.SingularError):
        L.cholesky([[1.0, 2.0], [2.0, 1.0]])
    for n in (2, 5, 8):
        m = rng.normal(size=(n, n))
        sym = m + m.T
        values, vectors = L.eig(sym)
        for lam, x in zip(values, vectors):  # vectors[k] belongs to values[k]
            assert close(sym @ np.array(x), lam * np.array(x), 1e-8)
    for n in (6, 7):
        m, k = rng.normal(size=(n, n)), rng.normal(size=(n, n))
        a, b = m + m.T, k @ k.T + n * np.eye(n)
        values, vectors = L.generalized_eig(a, b)
        for lam, x in zip(values, vectors):
            x = np.array(x)
            assert close(a @ x, lam * (b @ x), 1e-7)
            assert x @ b @ x == pytest.approx(1.0)
        with pytest.raises(qzmath.SingularError):
            L.generalized_eig(a, -b)


def test_vector_helpers():
    assert L.cross([1, 0, 0], [0, 1, 0]) == [0.0, 0.0, 1.0]
    assert L.normalize([3.0, 4.0]) == [0.6, 0.8]
    assert L.normalized([0.0, 1e-7]) == [0.0, 0.0]
    with pytest.raises(qzmath.SingularError):
        L.normalize([0.0, 0.0, 0.0])
    assert L.angle_deg([1, 0, 0], [0, 0, 2]) == pytest.approx(90.0)
    assert L.direction([1, 1, 1], [1, 1, 3]) == ([0.0, 0.0, 1.0], 2.0)
    with pytest.raises(qzmath.SingularError):
        L.direction([1, 1, 1], [1, 1, 1])
    assert L.projection([2.0, 3.0, 0.0], [5.0, 0.0, 0.0]) == [2.0, 0.0, 0.0]


def test_euler_angles_and_poses_round_trip_in_both_units():
    pose = [10.0, -20.0, 30.0, 0.3, -0.5, 2.0]
    t = G.pose_to_matrix(pose)
    assert close(G.matrix_to_pose(t), pose)
    deg = pose[:3] + [math.degrees(a) for a in pose[3:]]
    assert close(G.pose_to_matrix(deg, degrees=True), t)
    assert close(G.matrix_to_pose(t, degrees=True), deg)  # the unit-swapped pair, hidden
    r = np.array(G.rot_z(2.0)) @ np.array(G.rot_y(-0.5)) @ np.array(G.rot_x(0.3))
    assert close(G.xyz_to_matrix(pose[3:]), r)
    assert close(G.matrix_to_xyz(r.tolist()), pose[3:])
    assert close(G.matrix_to_xyz(t), pose[3:])
    zyz = G.matrix_to_zyz(G.zyz_to_matrix(0.4, 1.2, -0.7))
    assert not zyz.singular and close(zyz[:3], [0.4, 1.2, -0.7])
    flat = G.matrix_to_zyz(G.zyz_to_matrix(0.4, 0.001, -0.7))
    assert flat.singular and flat.a == 0.0 and flat.c == pytest.approx(-0.3, abs=1e-6)
    with pytest.raises(qzmath.SingularError):
        G.matrix_to_pose(G.pose_to_matrix([1, 2, 3, 0, 0, 0.5]), convention="zyz")


def test_frames_and_jacobian_rotation(rng):
    links = [(0.0, 0.0, 0.34, 0.0), (-math.pi / 2, 0.0, 0.0, 0.0), (math.pi / 2, 0.0, 0.4, 0.0)]
    q = [0.3, -0.7, 1.1]
    expected = np.eye(4)
    for (alpha, a, d, theta), qi in zip(links, q):
        c, s = math.cos(theta + qi), math.sin(theta + qi)
        rx = np.array(G.rot_x(alpha))
        link = np.eye(4)
        link[:3, :3] = rx @ np.array([[c, -s, 0], [s, c, 0], [0, 0, 1]])
        link[:3, 3] = rx @ np.array([a, 0.0, 0.0]) + link[:3, :3] @ np.array([0, 0, d])
        expected = expected @ link
    assert close(G.forward_kinematics(links, q), expected)
    assert G.line_cross([0, 0, 0], [1, 0, 0], [1, -1, 0], [0, 1, 0]) == [1.0, 0.0, 0.0]
    with pytest.raises(qzmath.SingularError):
        G.line_cross([0, 0, 0], [1, 0, 0], [0, 1, 0], [2, 0, 0])
    j, r = rng.normal(size=(6, 7)), np.array(G.xyz_to_matrix([0.1, 0.2, 0.3]))
    block = np.zeros((6, 6))
    block[:3, :3] = block[3:, 3:] = r
    assert close(G.jacobian_rotate(j, r), block @ j)
    assert close(G.jacobian_rotate(j[:, :6], r), block @ j[:, :6])
    v = [1.0, 2.0, 3.0]
    assert close(np.array(G.skew(v)) @ np.array([4.0, 5.0, 6.0]), np.cross(v, [4.0, 5.0, 6.0]))


def test_quaternions_agree_with_their_matrices():
    r1 = G.xyz_to_matrix([0.3, -0.2, 1.0])
    r2 = G.xyz_to_matrix([-1.2, 0.5, 0.1])
    q1, q2 = Q.normalize(Q.from_matrix(r1)), Q.normalize(Q.from_matrix(r2))
    assert close(Q.to_matrix(q1), r1)
    assert close(Q.to_matrix(Q.multiply(q1, q2)), np.array(r1) @ np.array(r2))
    assert close(Q.multiply(q1, Q.inverse(q1)), [0, 0, 0, 1])
    with pytest.raises(qzmath.SingularError):
        Q.inverse([0.0, 0.0, 0.0, 0.0])
    full = Q.angle(q1, q2)
    mid = Q.slerp(q1, q2, 0.5)
    assert Q.angle(q1, mid) == pytest.approx(full / 2, abs=1e-9)
    path = Q.Slerp(q1, q2)
    assert [path(t) for t in (0.0, 0.25, 1.0)] == [Q.slerp(q1, q2, t) for t in (0.0, 0.25, 1.0)]
    assert Q.angle(q1, Q.slerp(q1, q2, 0.5, longer=True), degrees=True) == \
        pytest.approx(180.0 - math.degrees(full) / 2, abs=1e-6)
    t = G.pose_to_matrix([1.0, 2.0, 3.0, 0.3, -0.2, 1.0])
    pose = Q.pose_from_matrix(t)
    assert close(Q.pose_to_matrix(pose), t)
    assert close(Q.pose_from_xyzabc([1.0, 2.0, 3.0] + [math.degrees(a) for a in (0.3, -0.2, 1.0)]),
                 pose)
    rv = [0.2, -0.4, 0.9]
    assert close(Q.matrix_to_rotvec(Q.rotvec_to_matrix(rv)), rv)
    assert close(Q.relative_rotation(r1, r2), np.array(r1).T @ np.array(r2))
