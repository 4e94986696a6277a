"""What the binding does on top of the C calls: arguments reach the right parameters, shapes
dispatch to the right routine, batches broadcast, results come back as arrays, and bad input
raises or warns (test_batch.py checks the bits of every batch form, test_hostile.py the refusal
of non-finite and meaningless input). The mathematics itself is tested in C++."""
import warnings

import numpy as np
import pytest

import qzmath
from qzmath import geometry as G
from qzmath import linalg as L
from qzmath import quaternions as Q

RNG = np.random.default_rng(20240611)


def unit_quats(*shape):
    q = RNG.normal(size=shape + (4,))
    return q / np.linalg.norm(q, axis=-1, keepdims=True)


def test_batches_broadcast_and_follow_the_conventions():
    q, r = unit_quats(10), unit_quats(10)
    m = Q.to_matrix(q)
    assert np.allclose(Q.to_matrix(Q.multiply(q, r)), m @ Q.to_matrix(r))  # a first, then b
    # a batch of 2 x 5 against one quaternion: each element as the single call
    assert np.array_equal(Q.multiply(q.reshape(2, 5, 4), r[0])[1, 3], Q.multiply(q[8], r[0]))
    abc = RNG.uniform(-1.0, 1.0, size=(4, 3))
    rx = G.xyz_to_matrix(abc)
    assert np.allclose(rx[1], G.rot_z(abc[1, 2]) @ G.rot_y(abc[1, 1]) @ G.rot_x(abc[1, 0]))
    assert np.allclose(G.matrix_to_xyz(rx), abc) and G.matrix_to_zyz(rx).angles.shape == (4, 3)
    flat = G.matrix_to_zyz(G.zyz_to_matrix([0.4, 0.001, -0.7]))
    assert flat.singular is True and flat.angles[0] == 0.0
    pose = np.array([10.0, -20.0, 30.0, 0.3, -0.5, 2.0])
    t4 = G.pose_to_matrix(pose)
    assert np.allclose(G.matrix_to_pose(t4), pose) and np.allclose(t4[:3, 3], pose[:3])
    assert np.allclose(Q.pose_from_xyzabc(pose, degrees=False), Q.pose_from_matrix(t4))


def test_matrix_shapes_dispatch_and_come_back_as_arrays():
    for n in range(2, 9):
        a, b = RNG.normal(size=(n, n)), RNG.normal(size=(n, n))
        assert np.allclose(L.matmul(a, b.tolist()), a @ b) and np.array_equal(L.transpose(a), a.T)
        assert np.allclose(L.inverse(a), np.linalg.inv(a)) and L.identity(n).shape == (n, n)
    for m, k, p in ((3, 5, 2), (9, 9, 9)):  # the row-pointer product
        a, b = RNG.normal(size=(m, k)), RNG.normal(size=(k, p))
        assert np.allclose(L.matmul(a, b), a @ b) and np.array_equal(L.transpose(a), a.T)
    for shape in ((3, 3), (4, 4), (6, 6), (7, 7), (6, 7), (7, 6), (2, 9)):
        m, v = RNG.normal(size=shape), RNG.normal(size=shape[1])
        assert np.allclose(L.matvec(m, v), m @ v)
    for j in (RNG.normal(size=(6, 7)), RNG.normal(size=(7, 6))):
        assert L.pinv(j).shape == j.shape[::-1] and np.allclose(j @ L.pinv(j) @ j, j)
    sym = np.array([[2.0, 1.0, 0.0], [1.0, 3.0, 0.5], [0.0, 0.5, 1.0]])
    assert np.allclose(L.LUP(sym).solve([1, 2, 3]), np.linalg.solve(sym, [1, 2, 3]))
    h, g = np.eye(6) + 0.1, np.diag([1.0, -2.0, 3.0, 4.0, -5.0, 6.0])
    for (lam, x), a, b in ((L.eig(sym), sym, np.eye(3)), (L.generalized_eig(g, h), g, h)):
        assert np.allclose(a @ x.T, (b @ x.T) * lam)  # vectors[k] belongs to values[k]
    assert np.allclose(L.cholesky(sym) @ L.cholesky(sym).T, sym) and L.vmv([1, 2, 0], sym) == 18.0
    assert L.cross([1, 0, 0], [0, 1, 0]).tolist() == [0.0, -0.0, 1.0]
    assert np.hstack(L.direction([1, 1, 1], [1, 1, 3])).tolist() == [0.0, 0.0, 1.0, 2.0]
    assert qzmath.point_to_line([0, 0, 0], [2, 0, 0], [1, 3, 4]).tolist() == [1.0, 0.0, 0.0]
    assert qzmath.square_solve(1, -3, 2).tolist() == [1.0, 2.0]
    assert qzmath.min_dif_circle(10.0, 350.0) == (20.0, -10.0)


def test_failures_raise_their_errors():
    singular = [[1.0, 2.0, 3.0], [2.0, 4.0, 6.0], [0.0, 1.0, 1.0]]
    for call in (lambda: L.inverse(singular), lambda: L.LUP(singular),
                 lambda: L.normalize([0.0] * 3), lambda: L.cholesky([[1.0, 2.0], [2.0, 1.0]]),
                 lambda: L.pinv(np.zeros((6, 7))), lambda: Q.inverse(np.zeros((3, 4))),
                 lambda: G.line_cross([0, 0, 0], [1, 0, 0], [0, 1, 0], [2, 0, 0])):
        with pytest.raises(qzmath.SingularError):
            call()


BAD = [  # call, exception, message naming the parameter
    (lambda: Q.slerp([0, 0, 0, 1], [0, 0, 0, 1], t=None), TypeError, "^t: "),
    (lambda: qzmath.Tracker(4, "a", 1), TypeError, "^vel_limit: "),
    (lambda: qzmath.sqrt(None), TypeError, "^x: "),
    (lambda: qzmath.AveragingFilter(2.0, 4, 0.001), TypeError, "^channels: "),
    (lambda: Q.to_matrix(np.ones((10, 3))), ValueError, r"^q: expected shape \(\.\.\., 4\)"),
    (lambda: Q.multiply(np.ones((2, 4)), np.ones((3, 4))), ValueError, "^a, b: batch shapes"),
    (lambda: L.inverse(np.ones(49)), ValueError, "^m: "),
    (lambda: qzmath.SmoothedTracker(4, [1] * 3, [1] * 2, [1] * 3), ValueError, "^acc_limits: "),
    (lambda: qzmath.Tracker(4, 50, 100).run(np.ones((5, 2))), ValueError, "^targets: "),
    (lambda: qzmath.Tracker(4, 50, 100).run(1.0, cycles=2.5), TypeError, "^cycles: "),
    (lambda: qzmath.SmoothedTracker(4, [1], [1], [np.nan]), qzmath.InvalidArgumentError,
     r"^jerk_limits: must be finite"),
    (lambda: qzmath.SmoothedTracker(4, [1], [1], [0.5]), qzmath.InvalidArgumentError,
     r"^jerk_limits\[0\]"),
    (lambda: qzmath.Tracker(np.inf, 50, 100), qzmath.InvalidArgumentError, "^cycle_ms: "),
    (lambda: qzmath.Tracker(4, 50, 100).run(1.0, cycles=-1), qzmath.InvalidArgumentError,
     "^cycles: "),
    (lambda: qzmath.AveragingFilter(2, 101, 0.001), qzmath.InvalidArgumentError, "^span: "),
    (lambda: qzmath.AveragingFilter(2, 4, np.nan), qzmath.InvalidArgumentError, "^dt: "),
    (lambda: qzmath.SmoothedValue(0.0, step_min=0.02), qzmath.InvalidArgumentError, "step_min"),
    (lambda: L.pinv(np.full((6, 7), np.nan)), qzmath.InvalidArgumentError, "^m: must be finite"),
    (lambda: L.eig(np.eye(3), eps=np.nan), qzmath.InvalidArgumentError, "^eps: "),
]


@pytest.mark.parametrize("call, error, message", BAD)
def test_bad_input_raises_naming_the_parameter(call, error, message):
    with pytest.raises(error, match=message):
        call()


def test_clamped_or_ignored_values_warn_with_the_value_in_effect():
    with pytest.warns(qzmath.QZMathWarning, match=r"vel_limit 500 .* 200 takes effect"):
        axis = qzmath.Tracker(4, 500, 100)
    assert axis.vel_limit == 200.0
    with pytest.warns(qzmath.QZMathWarning, match=r"within 0\.1 .* vel 200, acc 100 stay"):
        axis.set_limits(vel=199.95)
    with pytest.warns(qzmath.QZMathWarning, match=r"jerk_limits\[1\] 1e\+09 .* 1e\+07 takes"):
        multi = qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 2, [200.0] * 2, [1e4, 1e9], mode=1)
    assert multi.jerk_limits.tolist() == [1e4, 1e7]
    with pytest.warns(qzmath.QZMathWarning, match=r"axis 1: 250 cycles clamped to 30"):
        qzmath.SmoothedTracker(4.0, [50.0] * 2, [100.0] * 2, [1000.0, 100.0])
    with pytest.warns(qzmath.QZMathWarning, match=r"stage 3's share .* 0\.1 takes effect"):
        qzmath.MultiStageTracker(4.0, 5.0, 100.0)
    est = qzmath.Estimator(4.0, [100.0, 100.0])
    with pytest.warns(qzmath.QZMathWarning, match=r"vel_cur\[1\] 150 .* 100 takes effect"):
        est.set_limits([50.0, 150.0])
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        axis.set_limits(vel=150.0, acc=40.0)  # outside the dead band: taken silently
    assert (axis.state.velLmtTarget, axis.acc_limit) == (150.0, 40.0)


@pytest.mark.filterwarnings("ignore:jerk_limits")
def test_every_tracker_runs_both_forms_into_arrays():
    three = np.array([3.0, -2.0, 1.0])
    make = [(lambda: qzmath.Tracker(4.0, 50.0, 100.0), 3.0),
            (lambda: qzmath.MultiStageTracker(4.0, 90.0, 200.0, mode=1), 3.0),
            (lambda: qzmath.SmoothedTracker(4.0, [50.0, 80.0, 30.0], [100.0, 300.0, 50.0],
                                            [1000.0, 2000.0, 5000.0]), three),
            (lambda: qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 3, [200.0] * 3, [1e4] * 3),
             three)]
    for new, target in make:
        one = new().run(target, cycles=50)
        rows = new().run(np.broadcast_to(target, (50,) + np.shape(target)))
        assert one.pos.shape == (50,) + np.shape(target)
        assert all((a is None and b is None) or np.array_equal(a, b) for a, b in zip(one, rows))
        step = new().step
        assert np.array_equal([step(target) for _ in range(50)], one.pos)
    arm = make[2][0]()
    assert arm.spans.tolist() == [25, 30, 3]
    with pytest.raises(qzmath.StateError):
        arm.current()  # a reset is pending until the first step
    path = arm.run([[1.0, -2.0, 3.0], [9.0, 4.0, -1.0]])
    assert np.array_equal(path.pos[0], [1.0, -2.0, 3.0]) and path.vel[1].any()
    now = arm.current()
    assert np.array_equal(now.pos, path.pos[-1]) and np.array_equal(now.acc, path.acc[-1])
    arm.state.axisNum = 100  # a copy: the record itself cannot be corrupted
    assert arm.hold().shape == (3,)


def test_kinematics_batches_and_refusals():
    from qzmath import kinematics as K
    h = np.pi / 2
    dh = [[0, 0, 333, 0], [-h, 0, 0, 0], [h, 0, 316, 0], [h, 82.5, 0, 0], [-h, -82.5, 384, 0],
          [h, 0, 0, 0], [h, 88, 0, 0]]
    tool = np.eye(4)
    tool[2, 3] = 107.0
    arm = K.Chain(dh, tool=tool)
    q = RNG.uniform(-2.0, 2.0, size=(3, 4, 7))
    poses, t = arm.pose(q), arm.forward(q)
    assert poses.shape == (3, 4, 7) and np.array_equal(poses[2, 1], arm.pose(q[2, 1]))
    assert np.array_equal(poses[..., :3], t[..., :3, 3]) and arm.jacobian(q).shape == (3, 4, 6, 7)
    v = arm.solve(arm.jacobian(q[0, 0]), [10, 0, 0, 0, 0, 0.1])
    assert np.allclose(arm.jacobian(q[0, 0]) @ v.qdot, [10, 0, 0, 0, 0, 0.1]) and v.damping == 0
    ik = arm.solve_position(poses[0, 0], q[0, 0] + 0.05, tol_pos=1e-6, tol_rot=1e-9)
    assert ik.converged and np.allclose(arm.pose(ik.q)[:3], poses[0, 0, :3], atol=1e-6)
    r = K.orientation_error(unit_quats(5), unit_quats(5))
    assert r.shape == (5, 3) and np.all(np.linalg.norm(r, axis=-1) <= np.pi)
    tracker = qzmath.SmoothedTracker(1.0, [2.0] * 2, [10.0] * 2, [200.0] * 2)
    assert K.tracker_lead(tracker, [1.0, 0.0]).tolist()[1] == 0.0
    q[1, 2, 3] = np.nan
    with pytest.raises(qzmath.InvalidArgumentError, match=r"q: .*batch index \(1, 2\)"):
        arm.pose(q)
    with pytest.raises(qzmath.InvalidArgumentError, match="tool"):
        K.Chain(dh, tool=2 * tool)
    with pytest.raises(ValueError, match="dh"):
        K.Chain(np.zeros((9, 4)))
    with pytest.raises(qzmath.InvalidArgumentError, match="q_target"):
        K.orientation_error([0, 0, 0, 0], [0, 0, 0, 1])
