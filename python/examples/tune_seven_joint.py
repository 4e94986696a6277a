#!/usr/bin/env python3
"""Tunes a seven-joint move offline: sweeps the jerk limit (and with it the averaging span of the
N-axis smoothed tracker) and reports, for each setting, how long the arm takes to settle on its
target and the largest jerk any joint sees.

    /usr/bin/python3 tune_seven_joint.py              # table, and tune_seven_joint.png
    /usr/bin/python3 tune_seven_joint.py --jerk-scales 0.5,1,2 --tracker multistage --out sweep.png

The PNG (velocity, acceleration and jerk of the slowest joint over time for each setting, and
settle time against peak jerk) needs matplotlib and numpy in the interpreter that runs it: on
Debian, `apt-get install python3-matplotlib python3-numpy` and run it with /usr/bin/python3.
Without matplotlib it prints the table, says what is missing and exits with status 1 (--no-plot
prints the table only). Run from a source tree it uses the tree's qzmath package, else the
installed one; the library is found as that package finds it (docs/python.md).
"""
import argparse
import os
import sys
import warnings

_TREE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
if os.path.isfile(os.path.join(_TREE, "qzmath", "__init__.py")):
    sys.path.insert(0, _TREE)
import numpy as np  # noqa: E402
import qzmath  # noqa: E402

# One arm, in degrees: per-joint limits, and a move from START to TARGET.
VEL = [98, 98, 100, 130, 140, 180, 180]              # deg/s
ACC = [300, 300, 350, 450, 500, 600, 600]            # deg/s^2
JERK = [3000, 3000, 3500, 5000, 6000, 8000, 8000]    # deg/s^3
START = [0, -30, 0, 60, 0, 45, 0]
TARGET = [90, 20, -45, 100, 60, -30, 120]
SETTLE_TOL = 1e-3  # deg


def simulate(tracker, cycle_ms, jerk_scale, cycles):
    """Runs the move; returns spans, times, and the Path of positions, velocities and
    accelerations, (cycles, 7) arrays."""
    jerk = [j * jerk_scale for j in JERK]
    if tracker == "multistage":
        arm = qzmath.SmoothedMultiStageTracker(cycle_ms, VEL, ACC, jerk, mode=0)
    else:
        arm = qzmath.SmoothedTracker(cycle_ms, VEL, ACC, jerk)
    arm.step(START)  # the first step puts the arm at rest where it is
    path = arm.run(TARGET, cycles)
    return arm.spans.tolist(), cycle_ms / 1000.0 * np.arange(1, cycles + 1), path


def settle_time(times, path):
    """First time from which every joint stays within SETTLE_TOL of its target."""
    out = np.flatnonzero((np.abs(path.pos - TARGET) > SETTLE_TOL).any(axis=1))
    last_out = out[-1] if len(out) else -1
    return times[last_out + 1] if last_out + 1 < len(times) else float("nan")


def jerk_profiles(path, dt):
    """Per cycle, the jerk of every joint: the difference of successive accelerations."""
    return np.diff(path.acc, axis=0) / dt


def sweep(args):
    rows = []
    dt = args.cycle_ms / 1000.0
    for scale in args.jerk_scales:
        spans, times, path = simulate(args.tracker, args.cycle_ms, scale, args.cycles)
        jerks = jerk_profiles(path, dt)
        peak_jerk = np.abs(jerks).max()
        peak_acc = np.abs(path.acc).max()
        # Averaging bounds the jerk by the acceleration change over the span: at most the jerk
        # limit where the acceleration starts or stops, twice it where it reverses.
        ratio = (np.abs(jerks) / (np.array(JERK) * scale)).max()
        rows.append(dict(scale=scale, spans=spans, times=times, path=path, jerks=jerks,
                         settle=settle_time(times, path), peak_jerk=peak_jerk,
                         peak_acc=peak_acc, jerk_ratio=ratio))
    return rows


def print_table(rows, tracker):
    print("seven-joint move, %s tracker: jerk limit scaled, span in cycles per joint" % tracker)
    print("%-8s %-26s %9s %10s %11s %12s" % ("jerk x", "spans", "settle s", "peak acc",
                                               "peak jerk", "jerk/limit"))
    for r in rows:
        print("%-8g %-26s %9.3f %10.1f %11.1f %12.2f" % (
            r["scale"], ",".join(map(str, r["spans"])), r["settle"], r["peak_acc"],
            r["peak_jerk"], r["jerk_ratio"]))


def plot(rows, path, joint):
    try:
        import matplotlib
        matplotlib.use("Agg")
        import matplotlib.pyplot as plt
    except ImportError:
        return False
    fig, ax = plt.subplots(2, 2, figsize=(12, 8))
    (av, aa), (aj, asum) = ax
    shown = 0.5 + max(r["settle"] for r in rows)  # seconds: the move and a little rest
    for r in rows:
        label = "jerk x%g (span %d)" % (r["scale"], r["spans"][joint])
        k = sum(1 for t in r["times"] if t <= shown)
        t = r["times"][:k]
        av.plot(t, r["path"].vel[:k, joint], label=label)
        aa.plot(t, r["path"].acc[:k, joint], label=label)
        line, = aj.plot(t[1:], r["jerks"][:k - 1, joint], label=label)
        for sign in (1, -1):
            aj.axhline(sign * JERK[joint] * r["scale"], color=line.get_color(), linestyle=":",
                       linewidth=0.8)
    for a, lim, name in ((av, VEL[joint], "velocity (deg/s)"),
                         (aa, ACC[joint], "acceleration (deg/s^2)"),
                         (aj, None, "jerk (deg/s^3), limits dotted")):
        if lim is not None:
            for s in (1, -1):
                a.axhline(s * lim, color="grey", linestyle="--", linewidth=0.8)
        a.set_xlabel("time (s)")
        a.set_ylabel(name)
        a.set_title("joint %d: %s" % (joint + 1, name.split(" ")[0]))
    av.legend(fontsize="small")
    asum.plot([r["peak_jerk"] for r in rows], [r["settle"] for r in rows], "o-")
    for r in rows:
        asum.annotate("x%g" % r["scale"], (r["peak_jerk"], r["settle"]),
                      textcoords="offset points", xytext=(4, 4))
    asum.set_xlabel("peak jerk, any joint (deg/s^3)")
    asum.set_ylabel("settle time (s)")
    asum.set_title("settle time against peak jerk")
    fig.tight_layout()
    fig.savefig(path, dpi=100)
    return True


def main(argv=None):
    p = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    p.add_argument("--tracker", choices=("smoothed", "multistage"), default="smoothed")
    p.add_argument("--cycle-ms", type=float, default=4.0)
    p.add_argument("--cycles", type=int, default=1000, help="cycles simulated per setting")
    p.add_argument("--jerk-scales", default="0.25,0.5,1,2,4",
                   type=lambda s: [float(x) for x in s.split(",")],
                   help="jerk limits are the arm's times each of these")
    p.add_argument("--out", default="tune_seven_joint.png", help="PNG to write")
    p.add_argument("--no-plot", action="store_true")
    args = p.parse_args(argv)
    # Low jerk scales clamp the averaging span at its maximum; the table shows the spans in effect.
    warnings.simplefilter("ignore", qzmath.QZMathWarning)
    rows = sweep(args)
    print_table(rows, args.tracker)
    slowest = max(range(7), key=lambda j: abs(TARGET[j] - START[j]) / VEL[j])
    if not args.no_plot:
        if not plot(rows, args.out, slowest):
            print("no plot: %s has no matplotlib. On Debian: apt-get install python3-matplotlib,"
                  " then run this with /usr/bin/python3 (or pass --no-plot)" % sys.executable,
                  file=sys.stderr)
            return 1
        print("plot: %s" % args.out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
