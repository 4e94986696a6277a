#!/usr/bin/env python3
"""Mutation measure of the test suite: how many small faults in src/ the unit tests catch.

  mutate.py generate [--seed S] [--count N]     write the seeded mutant list (scripts/mutants.txt)
  mutate.py run [--golden] [--only ID,...]      build and test every mutant of the list

Each mutant is one small change on one line of src/: a flipped comparison (cmp), a swapped
operand order of '-' or '/' (swap), a changed arithmetic operator (arith), a changed numeric
constant (const), a dropped assignment (drop), or a changed start of a loop or of a sum (start).

A run copies the tree into a scratch directory (src/ itself is never written), builds it there
once, then per mutant rewrites one file of the copy, rebuilds only the shared library and runs
`ctest -L 'unit|robustness'` (the unit tests and the soak's short run; they link the shared
library, so nothing else relinks). A mutant that
survives them is replayed against the golden vectors: if they see changed bits it is "missed",
otherwise "equivalent" (no golden vector sees a difference). A mutant that does not compile is
"compile-fail" and skipped; a test that times out counts as caught. Without --golden the summary
counts what the unit tests catch; with it, what the unit tests or the golden vectors catch, and
it lists the mutants that only the golden vectors catch. A list that no longer matches src/ (a
mutant's line and column no longer hold its original text) is refused before anything is built:
regenerate it. Built mutant libraries are cached by
content, so a second run against the same mutants (after the tests change) only reruns tests.
"""
import argparse
import hashlib
import os
import random
import re
import runpy
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DEFAULT_LIST = os.path.join(ROOT, "scripts", "mutants.txt")
SEED = 20261216
COUNT = 240

# ---- finding mutation sites -------------------------------------------------------------------

ATOM = r"(?:[A-Za-z_]\w*(?:(?:->|\.)[A-Za-z_]\w*|\[[^\[\]]+\])*|\d+(?:\.\d*)?(?:[eE][+-]?\d+)?)"
SWAP_RE = re.compile(r"(?<![\w.\]>)])(" + ATOM + r") ([-/]) (" + ATOM + r")(?![\w\[(.]|->)")
ARITH_RE = re.compile(r"(?<=\S) ([-+*/]) (?=\S)")
CMP_RE = re.compile(r"(?<=\S) (<=|>=|==|!=|<|>) (?=\S)")
NUM_RE = re.compile(r"(?<![\w.])(\d+\.\d*(?:[eE][+-]?\d+)?|\d+[eE][+-]?\d+|\d+)(?![\w.])")
DROP_RE = re.compile(r"^(\s*)(\*?[A-Za-z_][\w\[\]\.\->*]*)\s*(=|\+=|-=|\*=|/=)\s*(?!=)(.*);\s*$")
FOR_RE = re.compile(r"\bfor \((?:[\w:]+ )?\w+ = (\d+);")
SUM0_RE = re.compile(r"\bdouble \w+ = (-?0\.0);")
DECL_BRACKET_RE = re.compile(r"\b(?:double|int|bool|char|u?int\d+_t|std::u?int\d+_t)\s+\w+\[$")

FLIP = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
ARITH = {"+": "-", "-": "+", "*": "/", "/": "*"}


def code_lines(text):
    """The lines of a C++ file with comments and literals blanked, columns kept."""
    out, in_block = [], False
    for line in text.split("\n"):
        chars, i = list(line), 0
        while i < len(chars):
            if in_block:
                if line.startswith("*/", i):
                    chars[i] = chars[i + 1] = " "
                    in_block = False
                    i += 2
                    continue
                chars[i] = " "
                i += 1
            elif line.startswith("/*", i):
                in_block = True
            elif line.startswith("//", i):
                for k in range(i, len(chars)):
                    chars[k] = " "
                break
            elif chars[i] in "\"'":
                q, k = chars[i], i + 1
                while k < len(chars) and chars[k] != q:
                    k += 2 if chars[k] == "\\" else 1
                for m in range(i, min(k + 1, len(chars))):
                    chars[m] = " "
                i = k + 1
            else:
                i += 1
        code = "".join(chars)
        out.append("" if code.lstrip().startswith("#") else code)
    return out


def number_mutant(tok):
    if re.fullmatch(r"\d+", tok):
        return str(int(tok) + 1)
    v = float(tok)
    return "1.0" if v == 0.0 else repr(v * 2.0)


def sites(path, rel):
    """Every mutation of one file: (kind, file, line, column, original, replacement)."""
    with open(path) as f:
        lines = code_lines(f.read())
    found = []
    for n, code in enumerate(lines, 1):
        if not code.strip() or re.match(r"\s*(namespace|template|static_assert|using|extern)\b", code):
            continue
        for m in CMP_RE.finditer(code):
            found.append(("cmp", rel, n, m.start(1), m.group(1), FLIP[m.group(1)]))
        for m in SWAP_RE.finditer(code):
            orig = m.group(0)
            found.append(("swap", rel, n, m.start(), orig, f"{m.group(3)} {m.group(2)} {m.group(1)}"))
        for m in ARITH_RE.finditer(code):
            found.append(("arith", rel, n, m.start(1), m.group(1), ARITH[m.group(1)]))
        for_inits = {m.start(1) for m in FOR_RE.finditer(code)}
        sum_inits = {m.start(1) for m in SUM0_RE.finditer(code)}
        for m in NUM_RE.finditer(code):
            if m.start() in for_inits or DECL_BRACKET_RE.search(code[: m.start()]):
                continue
            if m.start() in sum_inits or m.start() - 1 in sum_inits:
                continue
            found.append(("const", rel, n, m.start(), m.group(1), number_mutant(m.group(1))))
        for m in FOR_RE.finditer(code):
            k = int(m.group(1))
            found.append(("start", rel, n, m.start(1), m.group(1), str(k + 1 if k == 0 else k - 1)))
        for m in SUM0_RE.finditer(code):
            v = m.group(1)
            found.append(("start", rel, n, m.start(1), v, "0.0" if v.startswith("-") else "-0.0"))
        m = DROP_RE.match(code)
        if m and not re.match(r"\s*(return|case|default|else|do)\b", code):
            stmt = code[m.start(2): code.index(";", m.start(2)) + 1]
            found.append(("drop", rel, n, m.start(2), stmt, ";"))
    return found


def generate(args):
    all_sites = []
    for d, _, files in sorted(os.walk(os.path.join(ROOT, "src"))):
        for name in sorted(files):
            if name.endswith((".cpp", ".h")):
                path = os.path.join(d, name)
                all_sites += sites(path, os.path.relpath(path, ROOT))
    # The same number of each kind, so that the plentiful constants do not crowd out the rest.
    rng, picked = random.Random(args.seed), []
    kinds = sorted({s[0] for s in all_sites})
    for k, kind in enumerate(kinds):
        of_kind = [s for s in all_sites if s[0] == kind]
        want = args.count // len(kinds) + (1 if k < args.count % len(kinds) else 0)
        picked += rng.sample(of_kind, min(want, len(of_kind)))
    picked.sort(key=lambda s: (s[1], s[2], s[3], s[0]))  # by file: consecutive mutants share rebuilds
    with open(args.list, "w") as f:
        f.write(f"# {len(picked)} of {len(all_sites)} mutation sites of src/, seed {args.seed}.\n")
        f.write("# id<TAB>kind<TAB>file<TAB>line<TAB>column<TAB>original<TAB>replacement\n")
        for i, (kind, rel, n, col, orig, new) in enumerate(picked, 1):
            f.write(f"{i}\t{kind}\t{rel}\t{n}\t{col}\t{orig}\t{new}\n")
    kinds = {}
    for s in picked:
        kinds[s[0]] = kinds.get(s[0], 0) + 1
    print(f"{len(picked)} of {len(all_sites)} sites written to {os.path.relpath(args.list, ROOT)}: {kinds}")


def read_list(path):
    mutants = []
    with open(path) as f:
        for line in f:
            if line.startswith("#") or not line.strip():
                continue
            i, kind, rel, n, col, orig, new = line.rstrip("\n").split("\t")
            mutants.append(dict(id=int(i), kind=kind, file=rel, line=int(n), col=int(col), orig=orig, new=new))
    return mutants


# ---- running ----------------------------------------------------------------------------------

def sh(cmd, cwd=None, timeout=None):
    try:
        r = subprocess.run(cmd, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                           timeout=timeout, text=True)
        return r.returncode, r.stdout
    except subprocess.TimeoutExpired:
        return "timeout", ""


def sync_tree(dst):
    """Copies the tracked and new files of the tree into dst, rewriting only files that differ so
    that the scratch build stays incremental."""
    files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                           stdout=subprocess.PIPE, text=True).stdout.split("\n")
    for rel in filter(None, files):
        src, out = os.path.join(ROOT, rel), os.path.join(dst, rel)
        if not os.path.isfile(src):
            continue
        with open(src, "rb") as f:
            data = f.read()
        if os.path.exists(out):
            with open(out, "rb") as f:
                if f.read() == data:
                    continue
        os.makedirs(os.path.dirname(out), exist_ok=True)
        with open(out, "wb") as f:
            f.write(data)
        shutil.copymode(src, out)


def original(rel):
    with open(os.path.join(ROOT, rel)) as f:
        return f.read()


def apply(m):
    """The mutated text of the mutant's file, or None if the list no longer matches src/."""
    if not os.path.isfile(os.path.join(ROOT, m["file"])):
        return None
    with open(os.path.join(ROOT, m["file"])) as f:
        lines = f.read().split("\n")
    line = lines[m["line"] - 1]
    c = m["col"]
    if line[c: c + len(m["orig"])] != m["orig"]:
        return None
    lines[m["line"] - 1] = line[:c] + m["new"] + line[c + len(m["orig"]):]
    return "\n".join(lines)


def check_fresh(path, mutants):
    """Stops the run, before anything is built, if the list no longer matches src/: a mutant whose
    line and column no longer hold its original text would otherwise be skipped, and the figures
    would silently count fewer mutants than the list holds."""
    stale = [m for m in mutants if apply(m) is None]
    if not stale:
        return
    rel = os.path.relpath(path, ROOT)
    lines = [f"{len(stale)} of the {len(mutants)} mutants of {rel} no longer match src/ "
             "(their file, line and column no longer hold the original text), so its figures would "
             "not be comparable; the first of them:"]
    for m in stale[:10]:
        lines.append(f"  {m['id']:4d} {m['file']}:{m['line']}:{m['col']} {m['kind']} {m['orig']!r}")
    if len(stale) > 10:
        lines.append(f"  ... and {len(stale) - 10} more")
    lines.append("Regenerate the list from the current src/ (same seed and count unless you mean to "
                 "change them):\n  python3 scripts/mutate.py generate")
    sys.exit("\n".join(lines))


def run(args):
    mutants = read_list(args.list)
    check_fresh(args.list, mutants)
    if args.only:
        keep = {int(x) for x in args.only.split(",")}
        mutants = [m for m in mutants if m["id"] in keep]
    scratch = os.path.abspath(args.scratch)
    tree, build, cache = (os.path.join(scratch, d) for d in ("tree", "build", "cache"))
    os.makedirs(cache, exist_ok=True)
    sync_tree(tree)
    jobs = str(args.jobs)
    if not os.path.exists(os.path.join(build, "CMakeCache.txt")):
        rc, out = sh(["cmake", "-S", tree, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                      "-DQZ_BUILD_EXAMPLES=OFF", "-DQZ_BUILD_TESTS=ON", "-DQZ_BUILD_CONFORMANCE=ON",
                      "-DQZ_BUILD_ROBUSTNESS=ON", "-DQZ_BUILD_BENCH=OFF"])
        if rc != 0:
            sys.exit(out)
    # The real file behind libQZMath.so, named by the project's version.
    tree_version = runpy.run_path(os.path.join(tree, "python", "qzmath", "_project.py"))
    lib = os.path.join(build, "libQZMath.so." + tree_version["tree_version"](tree))

    def build_lib():
        if os.path.exists(lib):
            os.remove(lib)  # a library copied in from the cache must never look up to date
        return sh(["cmake", "--build", build, "--target", "QZMath", "-j", jobs])

    rc, out = sh(["cmake", "--build", build, "-j", jobs])
    if rc != 0:
        sys.exit("the unmutated tree does not build:\n" + out)
    rc, out = build_lib()
    unit_cmd = ["ctest", "--test-dir", build, "-L", "unit|robustness", "-j", jobs, "--stop-on-failure",
                "--timeout", "60", "-Q"]
    golden_cmd = [os.path.join(build, "conformance", "qzc_runner"), "--require-all"] + sorted(
        os.path.join(tree, "conformance", "vectors", v)
        for v in os.listdir(os.path.join(tree, "conformance", "vectors")) if v.endswith(".qzv"))
    if sh(unit_cmd)[0] != 0 or sh(golden_cmd)[0] != 0:
        sys.exit("the unmutated tree fails its tests")
    with open(lib, "rb") as f:
        pristine_lib = f.read()
    base_hash = hashlib.sha256()
    for d, _, files in sorted(os.walk(os.path.join(ROOT, "src"))):
        for name in sorted(files):
            with open(os.path.join(d, name), "rb") as f:
                base_hash.update(name.encode() + f.read())

    results, t0, dirty = [], time.time(), None
    out_path = args.out or os.path.join(scratch, "results-" + ("golden" if args.golden else "unit") + ".tsv")
    try:
        for m in mutants:
            if dirty and dirty != m["file"]:
                with open(os.path.join(tree, dirty), "w") as f:
                    f.write(original(dirty))
                dirty = None
            text = apply(m)  # never None: check_fresh ran first and src/ is only read
            key = hashlib.sha256(base_hash.digest() + repr(sorted(m.items())).encode()).hexdigest()[:20]
            cached, failed = os.path.join(cache, key + ".so"), os.path.join(cache, key + ".fail")
            target = os.path.join(tree, m["file"])
            if os.path.exists(failed):
                results.append((m, "compile-fail"))
                continue
            if os.path.exists(cached):
                if os.path.exists(lib):
                    os.remove(lib)
                shutil.copyfile(cached, lib)
            else:
                with open(target, "w") as f:
                    f.write(text)
                dirty = m["file"]
                rc, _ = build_lib()
                if rc != 0:
                    open(failed, "w").close()
                    results.append((m, "compile-fail"))
                    continue
                shutil.copyfile(lib, cached)
            rc, _ = sh(unit_cmd, timeout=900)
            if rc != 0:
                status = "caught"
            else:
                rc, _ = sh(golden_cmd, timeout=120)
                status = "golden-only" if rc != 0 else "equivalent"
            results.append((m, status))
            print(f"[{len(results)}/{len(mutants)} {time.time() - t0:5.0f}s] {m['id']:4d} {status:12s} "
                  f"{m['file']}:{m['line']} {m['kind']} {m['orig']!r} -> {m['new']!r}", flush=True)
    finally:
        # Leave the scratch tree and its library as the unmutated source built them.
        sync_tree(tree)
        for d, _, files in os.walk(os.path.join(tree, "src")):
            for name in files:
                p = os.path.join(d, name)
                with open(os.path.join(ROOT, os.path.relpath(p, tree)), "rb") as f:
                    data = f.read()
                with open(p, "rb") as f:
                    same = f.read() == data
                if not same:
                    with open(p, "wb") as f:
                        f.write(data)
        build_lib()
        with open(lib, "rb") as f:
            if f.read() != pristine_lib:
                print("note: the rebuilt library differs from the one built before the run", file=sys.stderr)

    with open(out_path, "w") as f:
        for m, status in results:
            f.write(f"{m['id']}\t{status}\t{m['file']}:{m['line']}\t{m['kind']}\t{m['orig']}\t{m['new']}\n")
    count = {s: sum(1 for _, st in results if st == s)
             for s in ("caught", "golden-only", "equivalent", "compile-fail")}
    if args.golden:
        print("golden-only (caught by the golden vectors, missed by the unit tests):")
        for m, status in results:
            if status == "golden-only":
                print(f"  {m['file']}:{m['line']}  {m['kind']}: {m['orig']!r} -> {m['new']!r}")
    print(f"unit: {count['caught']} caught, {count['golden-only']} missed, {count['equivalent']} equivalent, "
          f"{count['compile-fail']} compile-fail")
    if args.golden:
        print(f"unit+golden: {count['caught'] + count['golden-only']} caught "
              f"({count['golden-only']} only by the golden vectors), 0 missed, "
              f"{count['equivalent']} equivalent, {count['compile-fail']} compile-fail")
    print(f"results: {out_path}")


def main():
    p = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = p.add_subparsers(dest="cmd", required=True)
    g = sub.add_parser("generate")
    g.add_argument("--seed", type=int, default=SEED)
    g.add_argument("--count", type=int, default=COUNT)
    g.add_argument("--list", default=DEFAULT_LIST)
    r = sub.add_parser("run")
    r.add_argument("--golden", action="store_true", help="count what the golden vectors catch too")
    r.add_argument("--list", default=DEFAULT_LIST)
    r.add_argument("--only", help="comma-separated mutant ids")
    r.add_argument("--scratch", default=os.path.join(ROOT, "build-mutants"))
    r.add_argument("--jobs", type=int, default=2)
    r.add_argument("--out", help="results file (default: in the scratch directory)")
    args = p.parse_args()
    generate(args) if args.cmd == "generate" else run(args)


if __name__ == "__main__":
    main()
