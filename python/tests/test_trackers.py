"""Tracker classes: limits respected, ownership of the record, failures as exceptions."""
import pytest

import qzmath

CYCLE_MS = 4.0
DT = CYCLE_MS / 1000.0


def diffs(xs):
    return [(b - a) / DT for a, b in zip(xs, xs[1:])]


def test_single_axis_reaches_its_target_within_its_limits():
    axis = qzmath.Tracker(CYCLE_MS, 50.0, 100.0)
    assert axis.step(0.0) == 0.0  # the first step outputs the target itself
    path = axis.run([10.0] * 600)
    vel = diffs([0.0] + path)
    acc = diffs(vel)
    assert path[-1] == pytest.approx(10.0, abs=1e-12)
    assert max(abs(v) for v in vel) <= 50.0 * (1 + 1e-12)
    assert max(abs(a) for a in acc) <= 100.0 * (1 + 1e-9)
    assert axis.position == path[-1] and abs(axis.velocity) < 1e-9
    assert axis.cycle_s == DT


def test_set_limits_changes_only_what_is_given():
    axis = qzmath.Tracker(CYCLE_MS, 50.0, 100.0)
    axis.set_limits(acc=40.0)
    assert (axis.vel_limit, axis.acc_limit) == (50.0, 40.0)
    axis.set_limits(vel=120.0)
    assert (axis.vel_limit, axis.acc_limit) == (120.0, 40.0)
    axis.set_limits(vel=20.0, acc=60.0)
    assert (axis.vel_limit, axis.acc_limit) == (20.0, 60.0)


def test_a_cleared_record_is_refused_with_a_state_error():
    axis = qzmath.Tracker(CYCLE_MS, 50.0, 100.0)
    axis.state.isInit = 0
    for call in (lambda: axis.step(1.0), axis.reset, lambda: axis.set_limits(vel=1.0)):
        with pytest.raises(qzmath.StateError):
            call()


def test_smoothed_axes_are_the_moving_average_of_independent_single_axis_trackers():
    vel, acc, jerk = [50.0, 80.0, 30.0], [100.0, 300.0, 50.0], [1000.0, 2000.0, 5000.0]
    arm = qzmath.SmoothedTracker(CYCLE_MS, vel, acc, jerk)
    # Span: the time the acceleration takes to build up at the jerk limit, in cycles (25, 37.5
    # capped at 30, 2.5 raised to 3).
    assert arm.spans == [25, 30, 3]
    singles = [qzmath.Tracker(CYCLE_MS, v, a) for v, a in zip(vel, acc)]
    start, goal = [1.0, -2.0, 3.0], [9.0, 4.0, -1.0]
    assert arm.step(start) == start
    raw = [[s.step(x)] * span for s, x, span in zip(singles, start, arm.spans)]
    for _ in range(400):
        pva = arm.step_pva(goal)
        for i, s in enumerate(singles):
            raw[i] = raw[i][1:] + [s.step(goal[i])]
            assert pva.pos[i] == pytest.approx(sum(raw[i]) / arm.spans[i], abs=1e-9)
    assert arm.current().target == goal


def test_averaging_bounds_the_jerk_that_the_single_axis_leaves_unbounded():
    single = qzmath.Tracker(CYCLE_MS, 50.0, 100.0)
    arm = qzmath.SmoothedTracker(CYCLE_MS, [50.0], [100.0], [1000.0])
    single.step(0.0)
    arm.step([0.0])

    def jerk(xs):
        return max(abs(j) for j in diffs(diffs(diffs(xs))))

    # A long move: each change of acceleration is at most the limit A, spread over the span.
    raw = [single.step(40.0) for _ in range(800)]
    smooth = [arm.step([40.0])[0] for _ in range(800)]
    assert jerk(raw) > 10000.0
    assert jerk(smooth) <= 1000.0 * 1.01
    # A short move reverses the acceleration from +A to -A: twice the jerk limit.
    raw = [single.step(35.0) for _ in range(800)]
    smooth = [arm.step([35.0])[0] for _ in range(800)]
    assert jerk(smooth) <= 2000.0 * 1.01


def test_n_axis_queries_and_failures():
    arm = qzmath.SmoothedTracker(CYCLE_MS, [50.0] * 2, [100.0] * 2, [1000.0] * 2)
    with pytest.raises(qzmath.StateError):
        arm.current()  # a reset is pending until the first step
    arm.step([1.0, 2.0])
    arm.step([3.0, 2.0])
    assert arm.hold() == arm.current().pos
    arm.set_limits(vel=[10.0, 10.0])
    assert [arm.state.axis[i].velLmtTarget for i in range(2)] == [10.0, 10.0]
    with pytest.raises(qzmath.InvalidArgumentError):
        qzmath.SmoothedTracker(CYCLE_MS, [50.0], [100.0], [0.5])  # jerk limit below 1


def test_multistage_tracker_keeps_its_mode_and_settles():
    for mode in (0, 1, 2):
        axis = qzmath.MultiStageTracker(CYCLE_MS, 90.0, 200.0, mode=mode)
        assert axis.mode == mode
        axis.step(0.0)
        path = axis.run([20.0] * 1500)
        assert path[-1] == pytest.approx(20.0, abs=1e-9)
        axis.set_limits(45.0, 200.0)
        expected = (45.0 * 69.0) / 90.0 if mode == 1 else 45.0
        assert axis.state.stage[0].velLmtTarget == expected


def test_n_axis_multistage_clamps_jerk_and_reports_target_jumps():
    arm = qzmath.SmoothedMultiStageTracker(CYCLE_MS, [90.0, 90.0], [200.0, 200.0],
                                           [10.0, 1e9], mode=0)
    assert arm.jerk_limits == [1000.0, 1e7]
    with pytest.raises(qzmath.StateError):
        arm.hold()  # nothing to hold before the first step
    arm.step([0.0, 0.0])
    arm.step([0.8, 0.0])  # within 1% of 90 per cycle: a target the axis may follow
    assert arm.target_jumps == [False, False]
    arm.step([2.0, 0.0])  # moved by 1.2, beyond 1% of 90: faster than the axis may follow
    assert arm.target_jumps == [True, False]
    arm.clear_target_jumps()
    assert arm.target_jumps == [False, False]
    frames = arm.run([2.0, 0.0], 1000)
    assert frames[-1].pos == pytest.approx([2.0, 0.0], abs=1e-9)
    assert frames[-1].vel == pytest.approx([0.0, 0.0], abs=1e-9)
