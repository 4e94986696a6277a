"""Hostile input through every wrapper family: NaN, infinities, zeros, negative and huge values
raise a named error, never a silent finite answer, and never leave a record that gives NaN."""
import ctypes
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
BAD = qzmath.InvalidArgumentError
I3, Q1 = np.eye(3), np.array([0.0, 0.0, 0.0, 1.0])


def make_records():
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return {"tracker": qzmath.Tracker(4.0, 2.0, 20.0),
                "multi": qzmath.MultiStageTracker(4.0, 90.0, 200.0),
                "smoothed": qzmath.SmoothedTracker(4.0, [2.0] * 2, [20.0] * 2, [200.0] * 2),
                "smoothed_multi": qzmath.SmoothedMultiStageTracker(4.0, [90.0] * 2,
                                                                   [200.0] * 2, [1e4] * 2),
                "filter": qzmath.AveragingFilter(2, 4, 0.004), "value": qzmath.SmoothedValue(),
                "estimator": qzmath.Estimator(4.0, [100.0] * 2), "fitter": qzmath.OneFitter([0.5]),
                "comparator": qzmath.ErrorComparator()}


def finite_record(x):
    if isinstance(x, ctypes.Structure):
        return all(finite_record(getattr(x, name)) for name, _ in x._fields_)
    if isinstance(x, ctypes.Array):
        return all(finite_record(e) for e in x)
    return bool(np.isfinite(x))


HOSTILE = [  # (record or None, call, error, message)
    (None, lambda r: qzmath.sqrt(NAN), BAD, "^x: must be finite"),
    (None, lambda r: qzmath.sqrt(-1.0), BAD, "not finite"),
    (None, lambda r: qzmath.atan2(1.0, -INF), BAD, "^x: "),
    (None, lambda r: L.cholesky([[NAN, 0.0], [0.0, 1.0]]), BAD, r"^m: .* index \(0, 0\)"),
    (None, lambda r: L.inverse(np.full((3, 3), INF)), BAD, "^m: must be finite"),
    (None, lambda r: L.matmul(np.full((3, 3), 1e300), np.full((3, 3), 1e300)), BAD, "not finite"),
    (None, lambda r: L.dot([0.0, -INF], [1.0, 1.0]), BAD, r"^a: .* index 1"),
    (None, lambda r: G.matrix_to_xyz(np.full((3, 3), INF)), BAD, "^r: must be finite"),
    (None, lambda r: G.matrix_to_xyz(np.stack([I3, I3 * NAN])), BAD, "batch index 1"),
    (None, lambda r: G.matrix_to_zyz(np.zeros((3, 3))), BAD, "^r: not a rotation"),
    (None, lambda r: G.rot_x([0.0, 1.0, -INF]), BAD, "batch index 2"),
    (None, lambda r: Q.from_matrix(np.zeros((2, 4, 4))), BAD, "^r: not a rotation at batch"),
    (None, lambda r: Q.to_matrix([Q1, Q1, np.zeros(4)]), BAD, "^q: zero-norm .* index 2"),
    (None, lambda r: Q.angle(Q1, np.zeros(4)), BAD, "^q2: zero-norm"),
    (None, lambda r: Q.multiply(np.full(4, 1e300), np.full(4, 1e300)), BAD, "not finite"),
    (None, lambda r: Q.slerp(Q1, Q1, [0.5, NAN]), BAD, "^t: .* batch index 1"),
    (None, lambda r: Q.rotate(np.zeros(4), [1.0, 0.0, 0.0]), BAD, "^q: zero-norm"),
    (None, lambda r: Q.inverse(np.zeros((3, 4))), qzmath.SingularError, "batch index 0"),
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
    ("comparator", lambda r: (r.gains.kProp.__setitem__(0, NAN), r.compare([1.0] * 7, [2.0] * 7)),
     BAD, "not finite: the record is put back"),
]


@pytest.mark.parametrize("record, call, error, message", HOSTILE)
def test_hostile_input_raises_and_leaves_the_record_finite(record, call, error, message):
    r = make_records()[record] if record else None
    if r is not None and hasattr(r, "step") and record != "estimator":
        r.step(np.zeros(r.axes) if hasattr(r, "axes") else 0.0)
    with pytest.raises(error, match=message):
        call(r)
    if record == "comparator":
        r.gains.kProp[0] = 0.0  # the refused gain itself stays as the caller set it
    if r is not None:
        assert finite_record(r._rec)


@pytest.mark.parametrize("kind", ["Tracker", "SmoothedTracker"])
def test_nan_targets_for_two_seconds_while_moving_do_not_run_away(kind):
    """A joint moving at speed towards 1.0 gets 500 NaN targets (2 s of 4 ms cycles), each one
    refused, while the cycle goes on with the last valid target; then finite targets again."""
    vel, acc = 2.0, 20.0
    arm = qzmath.Tracker(4.0, vel, acc) if kind == "Tracker" else \
        qzmath.SmoothedTracker(4.0, [vel], [acc], [200.0])
    one = (1,) if kind == "SmoothedTracker" else ()
    arm.step(np.zeros(one))
    pos = list(arm.run(np.full((100,) + one, 1.0)).pos.ravel())  # moving: 0.4 s into the move
    for _ in range(500):
        with pytest.raises(BAD):
            arm.step(np.full(one, NAN))
        pos.append(float(np.ravel(arm.step(np.ones(one)))[0]))
    pos += list(arm.run(np.full((300,) + one, 1.0)).pos.ravel())
    v = np.diff(pos) / 0.004
    assert max(pos) <= 1.0 + 1e-12 and pos[-1] == pytest.approx(1.0) and pos[100] > pos[99]
    assert np.abs(v).max() <= vel * (1 + 1e-9) and np.abs(np.diff(v) / 0.004).max() <= acc * 1.01


def test_every_public_module_declares_its_api_and_documents_it():
    for info in pkgutil.iter_modules(qzmath.__path__):
        mod = importlib.import_module("qzmath." + info.name)
        assert hasattr(mod, "__all__"), info.name
        for name in [] if info.name.startswith("_") else mod.__all__:
            obj = getattr(mod, name)
            if callable(obj):
                assert inspect.getdoc(obj), "%s.%s" % (info.name, name)
            members = vars(obj).items() if inspect.isclass(obj) and obj.__module__ == \
                mod.__name__ else []
            for attr, member in members:
                if not attr.startswith("_") and (callable(member) or isinstance(member, property)):
                    assert inspect.getdoc(member), "%s.%s.%s" % (info.name, name, attr)
    assert "np" not in G.__all__ and isinstance(Q.length(Q1), float) and isinstance(
        Q.angle(Q1, Q1), float)
