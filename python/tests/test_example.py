"""The tuning example runs against the library under test and reports what its table says."""
import os
import subprocess
import sys

import pytest

EXAMPLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples",
                       "tune_seven_joint.py")


def run(*args):
    return subprocess.run([sys.executable, EXAMPLE, *args], check=True, capture_output=True,
                          text=True, env=os.environ).stdout


def test_sweep_table_shows_spans_shrinking_as_the_jerk_limit_rises():
    out = run("--no-plot", "--jerk-scales", "1,4", "--cycles", "500")
    rows = [line.split() for line in out.splitlines()[2:4]]
    assert [r[0] for r in rows] == ["1", "4"]
    assert rows[0][1] == "25,25,25,22,20,18,18" and rows[1][1] == "6,6,6,5,5,4,4"
    settle = [float(r[2]) for r in rows]
    assert 0 < settle[1] < settle[0] < 2.0  # a higher jerk limit settles sooner


def test_sweep_writes_a_png_when_matplotlib_is_installed(tmp_path):
    pytest.importorskip("matplotlib")
    png = tmp_path / "sweep.png"
    run("--jerk-scales", "1", "--cycles", "400", "--out", str(png))
    assert png.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
