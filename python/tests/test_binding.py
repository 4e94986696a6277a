"""The binding against the C side: record layouts, prototypes, argument checks."""
import ctypes
import ctypes.util
import os
import re
import shutil
import subprocess
import sys

import pytest

import qzmath
from qzmath import _api, records

HERE = os.path.dirname(os.path.abspath(__file__))


def c_layout():
    probe = os.environ.get("QZMATH_RECORD_LAYOUT")
    if not probe:
        pytest.skip("QZMATH_RECORD_LAYOUT (the record_layout program) not set")
    layout = {}
    for line in subprocess.run([probe], check=True, capture_output=True,
                               text=True).stdout.splitlines():
        rec, field, offset, size = line.split()
        layout.setdefault(rec, []).append((field, int(offset), int(size)))
    return layout


def test_every_record_matches_the_c_layout_field_for_field():
    layout = c_layout()
    assert sorted(layout) == sorted(records.RECORDS)
    for name, cls in records.RECORDS.items():
        expected = layout[name]
        assert expected[0] == ("-", 0, ctypes.sizeof(cls)), name
        mirrored = [(f, getattr(cls, f).offset, getattr(cls, f).size) for f, _ in cls._fields_]
        assert mirrored == expected[1:], name


def header_prototypes():
    dirs = os.environ.get("QZMATH_INCLUDE", os.path.join(HERE, "..", "..", "include"))
    dirs = dirs.split(os.pathsep)  # the public headers, then the generated version header
    if not all(os.path.isdir(d) for d in dirs):
        pytest.skip("public headers not found")
    found = {}
    for h in sorted(os.path.join(d, f) for d in dirs for f in os.listdir(d) if f.endswith(".h")):
        text = open(h).read()
        text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
        for m in re.finditer(r"QZ_API\s+([^;#]*?)\b(\w+)\s*\(([^)]*)\)\s*;", text):
            args = [a for a in m.group(3).split(",") if a.strip() not in ("", "void")]
            found[m.group(2)] = (code(m.group(1)), [code(a, named=True) for a in args])
    return found


def code(decl, named=False):
    """Type code of the binding's table for a C declaration."""
    decl = decl.replace("const", " ")
    if named:
        decl = re.sub(r"\w+\s*$", "", decl.strip())
    stars = decl.count("*")
    base = decl.replace("*", " ").split()[0]
    base = {"double": "D", "int32_t": "I32", "uint8_t": "U8", "uint32_t": "U32"}.get(base, base)
    return base + "*" * stars


def test_prototypes_declare_every_header_function_with_its_c_types():
    headers = header_prototypes()
    table = {name: (res, args) for name, res, args in _api.prototypes()}
    assert sorted(table) == sorted(headers)
    for name, (res, args) in headers.items():
        assert table[name] == (res, args), name
        fn = getattr(qzmath.unchecked, name)  # present in the library loaded
        assert fn.restype == _api.ctype(res), name
        assert fn.argtypes == [_api.ctype(a) for a in args], name


def test_the_library_asked_for_is_the_one_loaded_and_the_unchecked_table_is_its_prototypes():
    env = os.environ.get("QZMATH_LIB")
    if not env or os.path.isdir(env):
        pytest.skip("QZMATH_LIB does not name a library file")
    assert os.path.samefile(qzmath.LIBRARY_PATH, env)
    assert qzmath.unchecked is _api.lib and qzmath.unchecked.QZ_Sqrt(4.0) == 2.0


def test_a_library_of_another_major_version_or_none_is_refused_by_name():
    class Foreign:
        _name = "/opt/other/libQZMath.so.2"
        QZ_Version = staticmethod(lambda: 20103)
    expected = (r"qzmath %s needs libQZMath 1\.x, but /opt/other/libQZMath\.so\.2 is "
                r"libQZMath 2\.1\.3" % re.escape(_api.VERSION))
    with pytest.raises(ImportError, match=expected):
        _api.check_version(Foreign())
    # A library that is no QZMath at all, named by QZMATH_LIB, fails the import itself.
    assert "has no version query" in import_error(os.path.join(HERE, ".."),
                                                  QZMATH_LIB=ctypes.util.find_library("m"))


def import_error(path, **env):
    env = dict({k: v for k, v in os.environ.items() if k != "QZMATH_LIB"}, PYTHONPATH=path, **env)
    run = subprocess.run([sys.executable, "-c", "import qzmath"], env=env, capture_output=True,
                         text=True, cwd="/")
    assert run.returncode != 0
    return run.stderr.splitlines()[-1]


def test_no_fallback_when_the_expected_library_is_missing(tmp_path):
    pkg = shutil.copytree(os.path.dirname(qzmath.__file__), tmp_path / "tree" / "python" / "qzmath",
                          ignore=shutil.ignore_patterns("_libpath.py", "__pycache__"))
    (tmp_path / "tree" / "CMakeLists.txt").write_text("")  # a source tree without a build
    msg = import_error(pkg.parent)
    assert "%s has no usable build/ or build*/ library" % (tmp_path / "tree") in msg
    (pkg / "_libpath.py").write_text("LIBRARY = '../../lib/libQZMath.so.1'\n")  # installed
    msg = import_error(pkg.parent)
    assert "installed for the library %s, which does not load" % (tmp_path / "tree" / "lib"
                                                                    / "libQZMath.so.1") in msg
