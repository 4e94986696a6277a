"""Checks the generated blocks of README.md and docs/*.md against the programs that print them.

A generated block is
    <!-- generated: docs/tools/NAME.EXT -->
    ...exactly what that program prints on stdout...
    <!-- end generated -->
where NAME.EXT is a C99 program (.c), a C++17 program (.cpp, may include qzmath/qzmath.hpp),
both linked with libQZMath, or a Python script (.py, run with the qzmath package importable).
Each program is built and run once, from the repository root; a block that differs from its
program's output fails the check with a diff, and --update rewrites the blocks instead.

Usage: check_docs.py BUILD_DIR [--update]   (BUILD_DIR holds a built libQZMath.so)
"""
import difflib
import glob
import os
import re
import subprocess
import sys

BLOCK = re.compile(
    r"(<!-- generated: (?P<prog>[^ ]+) -->\n)(?P<body>.*?)(<!-- end generated -->)", re.DOTALL)


def pages():
    found = ["README.md"] + sorted(glob.glob("docs/*.md"))
    return [p for p in found if os.path.isfile(p)]


def build(prog, build_dir, out_dir):
    """Compiles PROG (when it needs compiling) and returns the command that runs it."""
    lib = os.path.abspath(build_dir)
    name, ext = os.path.splitext(os.path.basename(prog))
    link = ["-L" + lib, "-lQZMath", "-lm", "-Wl,-rpath," + lib]
    incs = ["-Iinclude", "-I" + os.path.join(lib, "include"), "-Iexamples"]
    exe = os.path.join(out_dir, name + ext.replace(".", "_"))
    if ext == ".c":
        cmd = [os.environ.get("CC", "cc"), "-std=c99", "-O2", "-ffp-contract=off", "-Wall",
               "-Wextra", "-Werror"] + incs + [prog, "-o", exe] + link
    elif ext == ".cpp":
        cmd = [os.environ.get("CXX", "c++"), "-std=c++17", "-O2", "-ffp-contract=off", "-Wall",
               "-Wextra", "-Werror"] + incs + [prog, "-o", exe] + link
    elif ext == ".py":
        return [sys.executable, prog]
    else:
        raise SystemExit(f"check-docs: {prog}: unknown program kind '{ext}' (.c, .cpp or .py)")
    done = subprocess.run(cmd, capture_output=True, text=True)
    if done.returncode != 0:
        raise SystemExit(f"check-docs: building {prog} failed:\n{' '.join(cmd)}\n{done.stderr}")
    return [exe]


def run(prog, build_dir, out_dir):
    if not os.path.isfile(prog):
        raise SystemExit(f"check-docs: {prog} does not exist")
    env = dict(os.environ)
    env["PYTHONPATH"] = os.pathsep.join(filter(None, ["python", env.get("PYTHONPATH")]))
    env["QZMATH_LIB"] = os.path.abspath(build_dir)
    done = subprocess.run(build(prog, build_dir, out_dir), capture_output=True, text=True, env=env)
    if done.returncode != 0:
        raise SystemExit(f"check-docs: {prog} exited with {done.returncode}:\n{done.stderr}")
    out = done.stdout
    return out if out.endswith("\n") or not out else out + "\n"


def main():
    args = [a for a in sys.argv[1:] if a != "--update"]
    update = "--update" in sys.argv[1:]
    if len(args) != 1:
        raise SystemExit(__doc__)
    build_dir = args[0]
    out_dir = os.path.join(build_dir, "docs-check")
    os.makedirs(out_dir, exist_ok=True)
    outputs, stale, blocks = {}, [], 0
    for page in pages():
        with open(page, encoding="utf-8") as f:
            text = f.read()

        def check(m):
            nonlocal blocks
            blocks += 1
            prog = m.group("prog")
            if prog not in outputs:
                outputs[prog] = run(prog, build_dir, out_dir)
            want, have = outputs[prog], m.group("body")
            if want != have:
                stale.append((page, prog, have, want))
            return m.group(1) + want + m.group(4)

        new = BLOCK.sub(check, text)
        if text.count("<!-- generated:") != len(BLOCK.findall(text)):
            raise SystemExit(f"check-docs: {page}: a generated block has no end marker")
        if update and new != text:
            with open(page, "w", encoding="utf-8") as f:
                f.write(new)
            print(f"check-docs: rewrote {page}")
    for page, prog, have, want in stale:
        if not update:
            sys.stdout.writelines(difflib.unified_diff(
                have.splitlines(True), want.splitlines(True),
                f"{page} (block of {prog})", f"{prog} prints"))
    print(f"check-docs: {blocks} generated blocks, {len(outputs)} programs, "
          f"{len(stale)} {'rewritten' if update else 'stale'}")
    if stale and not update:
        print("check-docs: run scripts/check-docs.sh --update and commit the pages")
        sys.exit(1)


if __name__ == "__main__":
    main()
