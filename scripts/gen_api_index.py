#!/usr/bin/env python3
"""Writes docs/api.md, the index of the exported API, from the comments of the public headers.

Each header is read in order: its @file @brief names the module, a "/* ---- Title ---- */" line
opens a section, and every exported declaration (one that starts with QZ_API) is listed with the
@brief of the /** */ block above it. A size family (a "@name" member group) is one entry, its
members listed first to last, with the documentation of its first member.

The headers are also checked on the way, so that the index cannot be built from a header that
Doxygen would pass over (Doxygen reports nothing about the functions of an undocumented file):
every header needs a @file block, every exported function a documentation block with a @brief,
and each of its parameters a @param naming it, and no @param may name a parameter it lacks.

Usage: gen_api_index.py            rewrite docs/api.md
       gen_api_index.py --check    exit 1 when docs/api.md differs from what would be written
       gen_api_index.py --stdout   print the index
"""
import difflib
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUTPUT = "docs/api.md"
# The headers in the order of the index, with the name a program includes.
HEADERS = [
    ("include/QZBaseMath.h", "QZBaseMath.h"),
    ("include/QZDT.h", "QZDT.h"),
    ("include/QZFLT.h", "QZFLT.h"),
    ("include/QZKinematics.h", "QZKinematics.h"),
    ("include/QZMatrix.h", "QZMatrix.h"),
    ("include/QZQuaternions.h", "QZQuaternions.h"),
    ("cmake/QZVersion.h.in", "QZVersion.h"),
]

TOKEN = re.compile(
    r"(?P<doc>/\*\*(?!<).*?\*/)"                      # documentation block
    r"|(?P<section>/\*\s*-{3,}\s*(?P<title>[^-*][^*]*?)\s*-{3,}\s*\*/)"  # section line
    r"|(?P<comment>/\*.*?\*/|//[^\n]*)"               # any other comment
    r"|(?P<decl>\bQZ_API\b[^;{]*;)",                  # exported declaration
    re.S,
)
DECL = re.compile(r"QZ_API\s+(?P<ret>[^;]*?)\b(?P<name>[A-Za-z_]\w*)\s*\((?P<args>[^)]*)\)\s*;", re.S)
PARAM = re.compile(r"@param(?:\[[a-z, ]+\])?\s+(\w+)")


def doc_text(block):
    """The text of a /** */ block without its delimiters and leading asterisks."""
    body = block[3:-2]
    return "\n".join(re.sub(r"^\s*\*? ?", "", line) for line in body.split("\n"))


def brief_of(text):
    """The @brief paragraph: up to a blank line or the next command at the start of a line."""
    m = re.search(r"@brief\s+(.*?)(?:\n\s*\n|\n\s*@|\Z)", text, re.S)
    return re.sub(r"\s+", " ", m.group(1)).strip() if m else None


def arg_names(args):
    args = args.strip()
    if args in ("", "void"):
        return []
    return [re.findall(r"[A-Za-z_]\w*", a)[-1] for a in args.split(",")]


class Problems(list):
    def add(self, path, text, pos, message):
        self.append(f"{path}:{text.count(chr(10), 0, pos) + 1}: {message}")


def parse(path, problems):
    """Returns (module brief, [(section, [entry])]) with entry = (names, brief)."""
    text = open(os.path.join(ROOT, path), encoding="utf-8").read()
    module = None
    sections = [[None, []]]
    pending = None          # documentation block waiting for its declaration
    group = None            # open member group: {"doc": text of its first member, "entry": ...}
    for m in TOKEN.finditer(text):
        if m.group("doc"):
            body = doc_text(m.group("doc"))
            if re.search(r"@file\b", body):
                module = brief_of(body)
                continue
            if re.search(r"@name\b", body):
                group = {"doc": None, "entry": None}
                continue
            if re.fullmatch(r"\s*@\{\s*", body):
                continue
            if re.fullmatch(r"\s*@\}\s*", body):
                group = None
                continue
            if re.search(r"@def\b", body):
                continue
            pending = (body, m.end())
        elif m.group("section"):
            sections.append([m.group("title"), []])
        elif m.group("decl"):
            d = DECL.search(m.group("decl"))
            if not d:
                problems.add(path, text, m.start(), "cannot read this declaration")
                continue
            name, names = d.group("name"), arg_names(d.group("args"))
            if pending is not None and text[pending[1]:m.start()].strip():
                pending = None  # that block documents a record or macro in between
            if pending is None and group is not None and group["doc"] is not None:
                group["entry"][0].append(name)
                body = group["doc"]
            elif pending is None:
                problems.add(path, text, m.start(), f"{name} has no documentation block")
                continue
            else:
                body = pending[0]
                pending = None
                brief = brief_of(body)
                if not brief:
                    problems.add(path, text, m.start(), f"{name} has no @brief")
                    brief = ""
                entry = ([name], brief)
                sections[-1][1].append(entry)
                if group is not None:
                    group["doc"], group["entry"] = body, entry
            documented = PARAM.findall(body)
            for a in names:
                if a not in documented:
                    problems.add(path, text, m.start(), f"{name}: parameter {a} has no @param")
            for a in documented:
                if a not in names:
                    problems.add(path, text, m.start(), f"{name}: @param {a} names no parameter")
    if module is None:
        problems.append(f"{path}: no @file block (Doxygen would skip the file's functions)")
    return module, [s for s in sections if s[1]]


def md(text):
    """Brief text as Markdown table cell: asterisks, pipes and angle brackets escaped."""
    return text.replace("\\", "\\\\").replace("*", "\\*").replace("|", "\\|").replace("<", "&lt;")


def anchor(title):
    return re.sub(r"[^a-z0-9 -]", "", title.lower()).replace(" ", "-")


def render(problems):
    modules = []
    total = 0
    for path, shown in HEADERS:
        brief, sections = parse(path, problems)
        modules.append((shown, brief or "", sections))
        total += sum(len(e[0]) for s in sections for e in s[1])
    out = [
        "# QZMath API index",
        "",
        "<!-- Generated by scripts/gen_api_index.py from the header comments; do not edit by hand.",
        "     `bash scripts/docs-api.sh` rewrites it, and CI checks that it is current. -->",
        "",
        f"Every exported function ({total} in all), by module and section, with the one-line summary",
        "from its header. The comment above each declaration in `include/` gives the whole rule: each",
        "parameter's direction, length and unit, which arguments may share storage, and the result",
        "values. `bash scripts/docs-api.sh` renders those comments as HTML into `build-docs/html/`.",
        "Conventions that hold everywhere (layouts, units, results, aliasing, threads) are in",
        "[conventions.md](conventions.md). A row that names two functions joined by `..` is a size",
        "family: one function per size in between, sharing one description.",
        "",
    ]
    for shown, brief, _ in modules:
        title = f"{shown}"
        out.append(f"- [{title}](#{anchor(title)}): {md(brief.split(': ', 1)[-1].rstrip('.'))}")
    for shown, brief, sections in modules:
        purpose = brief.split(": ", 1)[-1]
        out += ["", f"## {shown}", "", md(purpose[:1].upper() + purpose[1:]), ""]
        for title, entries in sections:
            if title:
                out += [f"### {title}", ""]
            out += ["| Function | Purpose |", "|---|---|"]
            for names, summary in entries:
                label = f"`{names[0]}`" if len(names) == 1 else f"`{names[0]}` .. `{names[-1]}`"
                out.append(f"| {label} | {md(summary)} |")
            out.append("")
        out.pop()
    return "\n".join(out) + "\n"


def main(argv):
    mode = argv[1] if len(argv) > 1 else "--write"
    if mode not in ("--write", "--check", "--stdout"):
        print(__doc__, file=sys.stderr)
        return 2
    problems = Problems()
    text = render(problems)
    if problems:
        print("\n".join(problems), file=sys.stderr)
        print(f"api index: {len(problems)} documentation problem(s) in the headers", file=sys.stderr)
        return 1
    target = os.path.join(ROOT, OUTPUT)
    if mode == "--stdout":
        sys.stdout.write(text)
        return 0
    current = open(target, encoding="utf-8").read() if os.path.exists(target) else ""
    if mode == "--check":
        if current != text:
            sys.stdout.writelines(difflib.unified_diff(
                current.splitlines(True), text.splitlines(True), OUTPUT, OUTPUT + " (from headers)"))
            print(f"api index: {OUTPUT} is not current; run bash scripts/docs-api.sh", file=sys.stderr)
            return 1
        print(f"api index: {OUTPUT} is current")
        return 0
    if current != text:
        with open(target, "w", encoding="utf-8") as f:
            f.write(text)
        print(f"api index: {OUTPUT} rewritten")
    else:
        print(f"api index: {OUTPUT} unchanged")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
