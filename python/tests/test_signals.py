"""Estimator, fitter, comparator, filters and the plain scalar functions."""
import math

import pytest

import qzmath


def test_estimator_holds_samples_and_tracks_the_slope_of_a_ramp():
    est = qzmath.Estimator(4.0, [100.0, 100.0])
    slope = [10.0, -5.0]  # units/s; a sample every 4 calls of 1 ms
    held = []
    for call in range(800):
        stamp = call // 4
        x = [s * 0.004 * stamp for s in slope]
        held.append(est.step(stamp, x))
    assert held[-1] == [s * 0.004 * 199 for s in slope]
    assert held[-2] == held[-1]  # held between samples
    assert est.velocity == pytest.approx(slope, abs=0.8)
    est.reset()
    assert est.velocity == [0.0, 0.0]


def test_estimator_cuts_the_measured_velocity_near_the_velocity_limit():
    est = qzmath.Estimator(4.0, [100.0])
    for call in range(40):
        est.step(call // 4, [0.04 * (call // 4)], ref_vel=[99.0])
    assert est.measured_velocity == [0.0]


def test_one_fitter_is_the_one_pole_recursion():
    fit = qzmath.OneFitter([0.25, 1.0])
    y = [0.0, 0.0]
    for k in range(20):
        x = [math.sin(k), k * 0.5]
        y = [x[0] * 0.25 + (1 - 0.25) * y[0], x[1]]
        assert fit.run(x) == y


def test_error_comparator_has_a_dead_band_and_clamped_corrections():
    cmp = qzmath.ErrorComparator()
    zero = [0.0] * 7
    assert cmp.compare(zero, [0.1] * 7) == zero  # inside the dead band of 0.15
    for _ in range(2000):
        corr = cmp.compare(zero, [5.0, -5.0, 5.0, 5.0, 5.0, -5.0, 5.0])
    # The saturated integral times its gain (0.03 * 30 rounds just below 0.9) within the limits.
    assert corr == pytest.approx([0.9, -0.9, 0.9, 0.9, 0.6, -0.6, 0.6], abs=1e-15)
    assert cmp.integral == [30.0, -30.0, 30.0, 30.0, 30.0, -30.0, 30.0]


def test_averaging_filter_averages_and_differentiates():
    flt = qzmath.AveragingFilter(2, 4, 0.001)
    assert flt.filter([1.0, 2.0]) == ([1.0, 2.0], [0.0, 0.0])  # the first call fills the window
    avg, davg = flt.filter([5.0, 2.0])
    assert avg == [2.0, 2.0]
    assert davg == pytest.approx([1000.0, 0.0])
    flt.reset()
    assert flt.filter([7.0, 7.0])[0] == [7.0, 7.0]
    for bad in ((0, 4), (9, 4), (2, 0), (2, 101)):
        with pytest.raises(qzmath.InvalidArgumentError):
            qzmath.AveragingFilter(*bad, 0.001)


def test_smoothed_value_lands_on_its_target_and_refuses_bad_parameters():
    sv = qzmath.SmoothedValue(0.0, alpha=0.1, step_max=0.05, step_min=0.001)
    values = [sv.update(1.0) for _ in range(200)]
    assert max(b - a for a, b in zip([0.0] + values, values)) <= 0.05 + 1e-15
    assert values[-1] == 1.0 and sv.is_one and not sv.is_zero
    assert sv.update_flags(0.0)[1:] == (False, False)
    for bad in (dict(alpha=0.0), dict(alpha=1.0), dict(step_max=1e-6), dict(step_min=0.02)):
        with pytest.raises(qzmath.InvalidArgumentError):
            qzmath.SmoothedValue(0.0, **bad)


def test_scalar_functions_return_what_the_library_computes():
    assert qzmath.sin_cos_arc(0.5) == (qzmath.sin_arc(0.5), qzmath.cos_arc(0.5))
    assert qzmath.cos_deg(60.0) == pytest.approx(0.5)
    assert qzmath.acos(2.0) == 0.0 and qzmath.atan2(1.0, 0.0) == pytest.approx(math.pi / 2)
    assert (qzmath.is_zero(1e-16), qzmath.is_zero(2e-16), qzmath.is_zero_loose(1e-15)) == \
        (True, False, True)
    assert math.copysign(1.0, qzmath.fmax(-0.0, 0.0)) == 1.0
    assert qzmath.floor(-2.5) == -3.0 and qzmath.value_sig(-3.0) == -1.0
    assert qzmath.min_dif_circle(10.0, 350.0) == (20.0, -10.0)
    assert qzmath.value_to_target(0.0, 1.0, 0.3) == pytest.approx(0.3)
    assert qzmath.point_to_line([0, 0, 0], [2, 0, 0], [1, 3, 4]) == [1.0, 0.0, 0.0]
    assert qzmath.cal_angle_c_deg(1.0, 1.0, 2.0) == pytest.approx(0.0, abs=1e-6)


def test_polynomial_roots():
    assert qzmath.square_solve(1, -3, 2) == [1.0, 2.0]
    assert qzmath.square_solve(1, 0, 1) == []
    assert sorted(qzmath.cubic_solve(1, -6, 11, -6)) == pytest.approx([1, 2, 3])
    assert qzmath.cubic_solve_min_pos(1, -6, 11, -6) == pytest.approx(1.0)
    assert qzmath.cubic_solve_max_neg(1, -6, 11, -6) is None
    roots = qzmath.solve2(1, 0, 4)
    assert roots == [complex(0, 2), complex(0, -2)] or roots == [complex(-0.0, 2), complex(-0.0, -2)]
    quartic = (1, -10, 35, -50, 24)  # (x-1)(x-2)(x-3)(x-4)
    assert sorted(r.real for r in qzmath.solve4(*quartic)) == pytest.approx([1, 2, 3, 4])
    assert sorted(qzmath.solve4_real(*quartic)) == pytest.approx([1, 2, 3, 4])
    for r in qzmath.solve3(2, -3, 4, -5):
        assert abs(((2 * r - 3) * r + 4) * r - 5) < 1e-9
    assert qzmath.polynomial_value([1.0, 2.0, 3.0], 2.0) == 17.0
    assert qzmath.polynomial_value([], 2.0) == 0.0
