#!/usr/bin/env python3
"""Line and branch coverage of src/ from the gcov counters of an instrumented build, per file,
with every line and branch that no test reaches and the reason for it (scripts/coverage.sh runs
this).

Usage: coverage-report.py OBJECT_DIR REASONS.tsv PAGE.md [--check]

The counters are read with gcov's JSON output, which keeps the branches of every template
instantiation and of every translation unit that emits a copy of an inline function (gcovr 5.2
reads gcov's text output instead, where a line of a template shows only the branches of the
copies that never ran, and so reports branches taken millions of times as never taken); the counts
of one source line are summed over all of them, so a branch counts as taken when any size of a
family takes it. Branches that only exception handling creates ("throw") and branches on lines
without code of their own (a closing brace) are not counted, as gcovr's
--exclude-throw-branches --exclude-unreachable-branches would.

REASONS.tsv has one line per uncovered place: the file, the source line's text (trimmed) and the
reason, separated by tabs; keyed by text rather than line number, a reason survives edits
elsewhere in the file. Fails when a gap has no reason, or when the line or branch percentage is
below the one committed in PAGE.md. Without --check, PAGE.md is rewritten when both hold.
"""
import json
import os
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

GOAL = {"lines": 99.0, "branches": 95.0}
TOTAL = re.compile(r"^Total: lines ([0-9.]+)% .*, branches ([0-9.]+)% ", re.M)
ROOT = Path(__file__).resolve().parent.parent


def percent(hit, total):
    return 100.0 * hit / total if total else 100.0


def load_reasons(path):
    reasons = {}
    for n, raw in enumerate(Path(path).read_text().splitlines(), 1):
        if not raw.strip() or raw.startswith("#"):
            continue
        parts = raw.split("\t")
        if len(parts) != 3:
            sys.exit(f"{path}:{n}: expected the file, the line's text and the reason, tab-separated")
        reasons[(parts[0], parts[1].strip())] = parts[2].strip()
    return reasons


def read_counters(object_dir):
    """Summed counts per (file, line) and per (file, line, branch index), files under src/."""
    lines = defaultdict(int)
    branches = defaultdict(int)
    for gcda in sorted(Path(object_dir).rglob("*.gcda")):
        out = subprocess.run(["gcov", "--stdout", "--json-format", "--branch-probabilities", str(gcda)],
                             check=True, capture_output=True, text=True).stdout
        for doc in out.splitlines():
            report = json.loads(doc)
            cwd = report["current_working_directory"]
            for f in report["files"]:
                name = os.path.relpath(os.path.join(cwd, f["file"]), ROOT)
                if not name.startswith("src/"):
                    continue
                for line in f["lines"]:
                    key = (name, line["line_number"])
                    lines[key] += line["count"]
                    for i, b in enumerate(line["branches"]):
                        if not b["throw"]:
                            branches[key + (i,)] += b["count"]
    return lines, branches


def measure(object_dir):
    """Per file: line and branch counts, and the gaps (line number, text, what is missed)."""
    lines, branches = read_counters(object_dir)
    per_line = defaultdict(list)
    for (name, number, _), count in branches.items():
        per_line[(name, number)].append(count)
    files = {}
    sources = {}
    for (name, number), count in sorted(lines.items()):
        if name not in sources:
            sources[name] = (ROOT / name).read_text().splitlines()
            files[name] = {"file": name, "lines": [0, 0], "branches": [0, 0], "gaps": []}
        row = files[name]
        text = sources[name][number - 1].strip()
        counts = per_line[(name, number)] if re.search(r"\w", text) else []
        taken = sum(1 for c in counts if c > 0)
        row["lines"][0] += count > 0
        row["lines"][1] += 1
        row["branches"][0] += taken
        row["branches"][1] += len(counts)
        if count == 0:
            row["gaps"].append((number, text, "line not run"))
        elif taken < len(counts):
            row["gaps"].append((number, text, f"{len(counts) - taken} of {len(counts)} branches"))
    return list(files.values())


def cell(text):
    return text.replace("|", "\\|")


def page(files, totals, reasons):
    out = [
        "# Coverage",
        "",
        "What the tests execute of the library's own code, `src/`: the unit tests, the Python",
        "binding's tests and the golden-vector replay, counted by gcov in an unoptimised build of",
        "the library. A line's counts are summed over every template instantiation and every copy",
        "of an inline function, so a branch is taken when any size of a family takes it. Branches",
        "that only exception handling creates, and branches on lines without code of their own (a",
        "closing brace), are not counted, as with gcovr's `--exclude-throw-branches",
        "--exclude-unreachable-branches`; the library is built without exceptions.",
        "",
        "Written by `bash scripts/coverage.sh`; CI runs `scripts/coverage.sh --check`, which fails",
        "when either figure falls below the total on this page or when a line or branch that no test",
        "reaches has no reason in `scripts/coverage-reasons.tsv`.",
        "",
        f"Total: lines {totals['lines'][2]:.2f}% ({totals['lines'][0]} of {totals['lines'][1]}), "
        f"branches {totals['branches'][2]:.2f}% ({totals['branches'][0]} of "
        f"{totals['branches'][1]}). Goal: {GOAL['lines']:.0f}% of lines, "
        f"{GOAL['branches']:.0f}% of branches.",
        "",
        "| File | Lines | Branches |",
        "|---|---:|---:|",
    ]
    for f in files:
        (lh, lt), (bh, bt) = f["lines"], f["branches"]
        out.append(
            f"| `{f['file']}` | {percent(lh, lt):.1f}% ({lh}/{lt}) | "
            f"{percent(bh, bt):.1f}% ({bh}/{bt}) |"
        )
    out += [
        "",
        "## What no test reaches, and why",
        "",
        "| Where | Code | Not reached | Why |",
        "|---|---|---|---|",
    ]
    for f in files:
        for number, text, missed in f["gaps"]:
            why = reasons[(f["file"], text)]
            out.append(f"| `{f['file']}:{number}` | `{cell(text)}` | {missed} | {cell(why)} |")
    return "\n".join(out) + "\n"


def main():
    if len(sys.argv) not in (4, 5) or sys.argv[4:] not in ([], ["--check"]):
        sys.exit(__doc__)
    object_dir, reasons_path, page_path = sys.argv[1:4]
    check = sys.argv[4:] == ["--check"]
    files = measure(object_dir)
    reasons = load_reasons(reasons_path)
    totals = {}
    for kind in ("lines", "branches"):
        hit = sum(f[kind][0] for f in files)
        total = sum(f[kind][1] for f in files)
        totals[kind] = (hit, total, percent(hit, total))
    failed = False
    print(f"coverage of src/: lines {totals['lines'][2]:.2f}% ({totals['lines'][0]} of "
          f"{totals['lines'][1]}), branches {totals['branches'][2]:.2f}% "
          f"({totals['branches'][0]} of {totals['branches'][1]})")

    gaps = {(f["file"], text) for f in files for _, text, _ in f["gaps"]}
    for f in files:
        for number, text, missed in f["gaps"]:
            if (f["file"], text) not in reasons:
                print(f"{f['file']}:{number}: {missed} reached by no test, and no reason in "
                      f"{reasons_path}: {text}")
                failed = True
    for file, text in sorted(set(reasons) - gaps):
        print(f"note: {reasons_path} explains a place the tests now reach: {file}: {text}")

    committed = TOTAL.search(Path(page_path).read_text()) if Path(page_path).exists() else None
    if committed:
        for kind, floor in zip(("lines", "branches"), map(float, committed.groups())):
            if round(totals[kind][2], 2) < floor:
                print(f"{kind} coverage {totals[kind][2]:.2f}% is below the committed {floor:.2f}%")
                failed = True
    if failed:
        sys.exit(1)
    if not check:
        Path(page_path).write_text(page(files, totals, reasons))
        print(f"wrote {page_path}")


if __name__ == "__main__":
    main()
