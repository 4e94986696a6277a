"""Hostile input through every wrapper family: NaN, infinities, zeros, negative and huge values
raise a named error, never a silent finite answer, and never leave a record that gives NaN."""
import importlib
import inspect
import pkgutil
import warnings

import numpy as np
import pytest

import qzmath
from qzmath import geometry as G
from qzmath import linalg as L
from qzmath import quaternions as Q

NAN, INF = float("nan"), float("inf")
BAD, WARN = qzmath.InvalidArgumentError, qzmath.QZMathWarning
I3, Q1 = np.eye(3), np.array([0.0, 0.0, 0.0, 1.0])


RECORDS = {  # each made fresh, at rest after one step where it has one
    "tracker": lambda: qzmath.Tracker(4.0, 2.0, 20.0), "fitter": lambda: qzmath.OneFitter([0.5]),
    "multi": lambda: qzmath.MultiStageTracker(4.0, 90.0, 200.0),
    "smoothed": lambda: qzmath.SmoothedTracker(4.0, [2.0] * 2, [20.0] * 2, [200.0] * 2),
    "smoothed_multi": lambda: qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 2, [200.0] * 2,
                                                               [1e4] * 2),
    "filter": lambda: qzmath.AveragingFilter(2, 4, 0.004), "value": qzmath.SmoothedValue,
    "estimator": lambda: qzmath.Estimator(4.0, [100.0] * 2), "comparator": lambda: nan_gain()}


def nan_gain():
    comparator = qzmath.ErrorComparator()
    comparator.gains.kProp[0] = NAN  # the gains are the caller's to set
    return comparator


HOSTILE = [  # (record or None, call, error, message)
    (None, lambda r: qzmath.atan2(1.0, NAN), BAD, "^x: must be finite"),
    (None, lambda r: qzmath.sqrt(-1.0), BAD, "not finite"),
    (None, lambda r: L.cholesky([[NAN, 0.0], [0.0, 1.0]]), BAD, r"^m: .* index \(0, 0\)"),
    (None, lambda r: L.matmul(np.full((3, 3), 1e300), np.full((3, 3), 1e300)), BAD, "not finite"),
    (None, lambda r: L.dot([0.0, -INF], [1.0, 1.0]), BAD, r"^a: .* index 1"),
    (None, lambda r: G.matrix_to_xyz(np.stack([I3, I3 * NAN])), BAD, "batch index 1"),
    (None, lambda r: G.matrix_to_zyz(np.zeros((3, 3))), BAD, "^r: not a rotation"),
    (None, lambda r: Q.from_matrix(np.zeros((2, 4, 4))), BAD, "^r: not a rotation at batch"),
    (None, lambda r: Q.to_matrix([Q1, Q1, np.zeros(4)]), BAD, "^q: zero-norm .* index 2"),
    (None, lambda r: Q.angle(Q1, np.zeros(4)), BAD, "^q2: zero-norm"),
    (None, lambda r: Q.to_matrix([1e-5, 0.0, 0.0, 0.0]), BAD, "^q: not a rotation"),
    (None, lambda r: qzmath.SmoothedTracker(1e-310, [1.0], [1.0], [9.0]), WARN, "^cycle_ms"),
    (None, lambda r: Q.multiply(np.full(4, 1e300), np.full(4, 1e300)), BAD, "not finite"),
    (None, lambda r: Q.slerp(Q1, Q1, [0.5, NAN]), BAD, "^t: .* batch index 1"),
    (None, lambda r: Q.rotate(np.zeros(4), [1.0, 0.0, 0.0]), BAD, "^q: zero-norm"),
    (None, lambda r: qzmath.Tracker(4.0, -1.0, 20.0), BAD, "^vel_limit: must be positive"),
    (None, lambda r: qzmath.Tracker(0.0, 1.0, 20.0), BAD, "^cycle_ms: must be positive"),
    (None, lambda r: qzmath.SmoothedTracker(4.0, [1.0, 0.0], [1.0] * 2, [9.0] * 2), BAD, "^vel"),
    ("tracker", lambda r: r.step(NAN), BAD, "^target: must be finite"),
    ("tracker", lambda r: r.run([0.5, 1.0, INF]), BAD, r"^targets: .* batch index 2"),
    ("tracker", lambda r: r.set_limits(acc=0.0), BAD, "^acc: limits must be positive"),
    ("multi", lambda r: r.step(-INF), BAD, "^target: "),
    ("smoothed", lambda r: r.step([1.0, NAN]), BAD, r"^targets: .* index 1"),
    ("smoothed", lambda r: r.set_limits(vel=[NAN, 1.0]), BAD, "^vel: must be finite"),
    ("smoothed_multi", lambda r: r.run([[0.0, 0.0], [INF, 0.0]]), BAD, "batch index 1"),
    ("filter", lambda r: r.filter([1.0, NAN]), BAD, "^x: "),
    ("value", lambda r: r.update(INF), BAD, "^target: "),
    ("estimator", lambda r: r.step(1, [NAN, 0.0]), BAD, "^samples: "),
    ("fitter", lambda r: r.run([INF]), BAD, "^x: "),
    ("comparator", lambda r: r.compare([1.0] * 7, [2.0] * 7), BAD, "not finite: .* put back"),
]


@pytest.mark.parametrize("record, call, error, message", HOSTILE)
def test_hostile_input_raises_and_leaves_the_record_finite(record, call, error, message):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # the multi-stage trackers' clamped stage shares
        r = RECORDS[record]() if record else None
    if record and "tracker" in type(r).__name__.lower():
        r.step(np.zeros(r.axes) if hasattr(r, "axes") else 0.0)
    before = bytes(r._rec) if r else None
    with pytest.raises(error, match=message), warnings.catch_warnings():
        warnings.simplefilter("error", WARN)
        call(r)
    assert r is None or bytes(r._rec) == before  # not advanced: it stays finite

@pytest.mark.parametrize("kind", ["Tracker", "SmoothedTracker"])
def test_nan_targets_for_two_seconds_while_moving_do_not_run_away(kind):
    """A joint moving at speed towards 1.0 gets 500 NaN targets (2 s of 4 ms cycles), each one
    refused, while the cycle goes on with the last valid target; then finite targets again."""
    one = (1,) if kind == "SmoothedTracker" else ()
    arm = qzmath.SmoothedTracker(4.0, [2.0], [20.0], [200.0]) if one else qzmath.Tracker(4, 2, 20)
    arm.step(np.zeros(one))
    pos = list(arm.run(np.full((100,) + one, 1.0)).pos.ravel())  # moving: 0.4 s into the move
    for _ in range(500):
        with pytest.raises(BAD):
            arm.step(np.full(one, NAN))
        pos.append(float(np.ravel(arm.step(np.ones(one)))[0]))
    pos += list(arm.run(np.full((300,) + one, 1.0)).pos.ravel())
    v = np.diff(pos) / 0.004
    assert max(pos) <= 1.0 + 1e-12 and pos[-1] == pytest.approx(1.0) and pos[100] > pos[99]
    assert np.abs(v).max() <= 2.0 * (1 + 1e-9) and np.abs(np.diff(v) / 0.004).max() <= 20.0 * 1.01


def test_every_public_module_declares_its_api_and_documents_it():
    for info in pkgutil.iter_modules(qzmath.__path__):
        if info.module_finder.find_spec(info.name).origin.endswith(".py"):  # not the helper
            mod = importlib.import_module("qzmath." + info.name)
            for name in [] if info.name.startswith("_") else mod.__all__:
                obj = getattr(mod, name)
                members = list(vars(obj).items()) if inspect.isclass(obj) else []
                for what, x in [(name, obj)] + members:
                    if not what.startswith("_") and (callable(x) or isinstance(x, property)):
                        assert inspect.getdoc(x), "%s.%s %s" % (info.name, name, what)
    # a window that overflows raises, but forgets its huge sample (the average's derivative
    # spans one sample more than the window)
    f = qzmath.AveragingFilter(1, 2, 0.004)
    f.filter([1.7e308])
    for x in (1.0, 1.0, 1.0):
        with pytest.raises(BAD, match="^x: "):
            f.filter([x])
    assert f.filter([1.0])[0][0] == 1.0
    # a quaternion whose squared length overflows keeps its direction
    assert Q.normalize([1e300, 1e300, 0.0, 0.0])[0] == pytest.approx(0.5 ** 0.5, abs=1e-15)
    assert "np" not in G.__all__ and type(Q.length(Q1)) is type(Q.angle(Q1, Q1)) is float
