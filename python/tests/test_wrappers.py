"""The wrappers over the library: arguments reach the right parameters (asymmetric inputs), shapes
dispatch to the right routine, results come back in order, and failures become exceptions. The
mathematics itself is tested in C++ and pinned by the golden vectors."""
import math

import pytest

import qzmath
from qzmath import geometry as G
from qzmath import linalg as L
from qzmath import quaternions as Q

np = pytest.importorskip("numpy")


def close(a, b, tol=1e-9):
    return np.allclose(np.array(a, dtype=float), np.array(b, dtype=float), rtol=tol, atol=tol)


def test_linear_algebra_dispatches_by_shape_and_raises_on_singular_input():
    rng = np.random.default_rng(20240611)
    for n in range(2, 9):  # the fixed sizes, flat or as rows
        a, b = rng.normal(size=(n, n)), rng.normal(size=(n, n))
        assert close(L.matmul(a.ravel().tolist(), b.tolist()), a @ b)
        assert close(L.inverse(a), np.linalg.inv(a), 1e-8) and L.transpose(a) == a.T.tolist()
    a, b = rng.normal(size=(3, 5)), rng.normal(size=(5, 2))
    assert close(L.matmul(a, b), a @ b)  # the row-pointer product
    for shape in ((6, 7), (7, 6), (2, 9)):
        m, v = rng.normal(size=shape), rng.normal(size=shape[1])
        assert close(L.matvec(m.tolist(), v.tolist()), m @ v)
    j = rng.normal(size=(6, 7))
    assert close(j @ np.array(L.pinv(j)) @ j, j, 1e-8)
    sym = np.array([[2.0, 1.0, 0.0], [1.0, 3.0, 0.5], [0.0, 0.5, 1.0]])
    for lam, x in zip(*L.eig(sym)):  # vectors[k] belongs to values[k]
        assert close(sym @ np.array(x), lam * np.array(x), 1e-8)
    assert L.vmv([1.0, 2.0, 0.0], sym) == 18.0
    singular = [[1.0, 2.0, 3.0], [2.0, 4.0, 6.0], [0.0, 1.0, 1.0]]
    for call in (lambda: L.inverse(singular), lambda: L.LUP(singular), lambda: L.normalize([0.0] * 3),
                 lambda: L.cholesky([[1.0, 2.0], [2.0, 1.0]]), lambda: Q.inverse([0.0] * 4)):
        with pytest.raises(qzmath.SingularError):
            call()
    with pytest.raises(ValueError):
        L.matmul([[1, 2, 3]], [[1, 2, 3]])


def test_geometry_and_quaternions_take_their_arguments_in_order():
    assert L.direction([1, 1, 1], [1, 1, 3]) == ([0.0, 0.0, 1.0], 2.0)
    pose = [10.0, -20.0, 30.0, 0.3, -0.5, 2.0]
    t = G.pose_to_matrix(pose)
    deg = pose[:3] + [math.degrees(a) for a in pose[3:]]
    assert close(G.pose_to_matrix(deg, degrees=True), t) and close(G.matrix_to_pose(t, degrees=True), deg)
    r = np.array(G.rot_z(2.0)) @ np.array(G.rot_y(-0.5)) @ np.array(G.rot_x(0.3))
    assert close(G.xyz_to_matrix(pose[3:]), r)
    flat = G.matrix_to_zyz(G.zyz_to_matrix(0.4, 0.001, -0.7))
    assert flat.singular and flat.a == 0.0 and flat.c == pytest.approx(-0.3, abs=1e-6)
    assert G.line_cross([0, 0, 0], [1, 0, 0], [1, -1, 0], [0, 1, 0]) == [1.0, 0.0, 0.0]
    q1, q2 = Q.from_matrix(G.rot_x(0.4)), Q.from_matrix(G.rot_z(1.0))
    assert close(Q.to_matrix(Q.multiply(q1, q2)), np.array(G.rot_x(0.4)) @ np.array(G.rot_z(1.0)))
    assert Q.angle(q1, Q.slerp(q1, q2, 0.25)) == pytest.approx(Q.angle(q1, q2) / 4, abs=1e-9)


def test_scalars_solvers_filters_and_estimator():
    assert qzmath.sin_cos_arc(0.5) == (qzmath.sin_arc(0.5), qzmath.cos_arc(0.5))
    assert qzmath.min_dif_circle(10.0, 350.0) == (20.0, -10.0)
    assert qzmath.square_solve(1, -3, 2) == [1.0, 2.0] and qzmath.square_solve(1, 0, 1) == []
    assert qzmath.cubic_solve_max_neg(1, -6, 11, -6) is None
    assert qzmath.OneFitter([0.25, 1.0]).run([4.0, 3.0]) == [1.0, 3.0]
    flt = qzmath.AveragingFilter(2, 4, 0.001)
    assert flt.filter([1.0, 2.0]) == ([1.0, 2.0], [0.0, 0.0])
    assert flt.filter([5.0, 2.0]) == ([2.0, 2.0], [pytest.approx(1000.0), 0.0])
    with pytest.raises(qzmath.InvalidArgumentError):
        qzmath.AveragingFilter(9, 4, 0.001)
    with pytest.raises(qzmath.InvalidArgumentError):
        qzmath.SmoothedValue(0.0, step_min=0.02)
    est = qzmath.Estimator(4.0, [100.0, 100.0])
    est.step(0, [0.0, 0.0])
    assert est.step(2, [0.08, -0.04]) == [0.08, -0.04]
    assert est.measured_velocity == pytest.approx([10.0, -5.0])


def test_trackers_expose_their_records_and_raise_state_errors():
    axis = qzmath.Tracker(4.0, 50.0, 100.0)
    assert axis.step(3.0) == 3.0 and axis.cycle_s == 0.004
    axis.set_limits(acc=40.0)
    assert (axis.vel_limit, axis.acc_limit) == (50.0, 40.0)
    axis.state.isInit = 0
    with pytest.raises(qzmath.StateError):
        axis.step(1.0)
    arm = qzmath.SmoothedTracker(4.0, [50.0, 80.0, 30.0], [100.0, 300.0, 50.0], [1000.0, 2000.0, 5000.0])
    assert arm.spans == [25, 30, 3]
    with pytest.raises(qzmath.StateError):
        arm.current()  # a reset is pending until the first step
    assert arm.step([1.0, -2.0, 3.0]) == [1.0, -2.0, 3.0]
    assert arm.step_pva([9.0, 4.0, -1.0]).pos == arm.current().pos
    arm.set_limits(vel=[10.0, 20.0, 30.0])
    assert [arm.state.axis[i].velLmtTarget for i in range(3)] == [10.0, 20.0, 30.0]
    stage = qzmath.MultiStageTracker(4.0, 90.0, 200.0, mode=1)
    stage.set_limits(45.0, 200.0)
    assert stage.state.stage[0].velLmtTarget == (45.0 * 69.0) / 90.0
    multi = qzmath.SmoothedMultiStageTracker(4.0, [90.0, 90.0], [200.0, 200.0], [10.0, 1e9], mode=0)
    assert multi.jerk_limits == [1000.0, 1e7]
    multi.step([0.0, 0.0])
    multi.step([2.0, 0.0])
    assert multi.target_jumps == [True, False]
