"""Build step of the qzmath package (metadata in pyproject.toml): puts the libraries the package
loads inside it, so that an installed package (a virtual environment, say) is self-contained, and
records in qzmath/_version.py the package's version, which is the project's (project() in
CMakeLists.txt).

- With no library named, CMake builds libQZMath and the batch helper libQZMathBatch from the
  source tree this package sits in, with the project's own flags, and both are copied into the
  package; qzmath/_libpath.py records the library relative to the package.
- With QZMATH_LIB set to a library file at install time, the package records that library (by
  its absolute path) and loads it; only the batch helper is built and copied in, unless one lies
  beside that library already.

Building needs CMake and a C++ compiler (Debian: cmake g++), at install time only: the installed
package imports without them.
"""
import os
import runpy
import shutil
import subprocess

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
LIB, BATCH = "libQZMath.so.1", "libQZMathBatch.so"


def version():
    tree_version = runpy.run_path(os.path.join(HERE, "qzmath", "_project.py"))["tree_version"]
    v = tree_version(os.path.dirname(HERE))
    if v is None:
        raise SystemExit("qzmath takes its version from the source tree's CMakeLists.txt, which"
                         " %s does not have" % os.path.dirname(HERE))
    return v


def cmake_build(work, targets):
    """Builds targets of the source tree with CMake in work; returns the build directory."""
    if not os.path.exists(os.path.join(ROOT, "CMakeLists.txt")):
        raise SystemExit("qzmath: %s is not the QZMath source tree, so there is nothing to build"
                         " the library from; set QZMATH_LIB to a built libQZMath" % ROOT)
    for tool in ("cmake", "c++"):
        if shutil.which(tool) is None:
            raise SystemExit("qzmath: building the library needs %s (Debian: cmake g++), or set"
                             " QZMATH_LIB to a built libQZMath" % tool)
    build = os.path.join(work, "qzmath-cmake")
    subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                    "-DQZ_BUILD_EXAMPLES=OFF", "-DQZ_INSTALL_PYTHON=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", build, "-j", str(os.cpu_count() or 1), "--target"]
                   + targets, check=True, stdout=subprocess.DEVNULL)
    return build


class BuildWithLibraries(build_py):
    """build_py that also puts the libraries into the package and writes qzmath/_libpath.py."""

    def run(self):
        super().run()
        package = os.path.join(self.build_lib, "qzmath")
        work = os.path.abspath(self.get_finalized_command("build").build_temp)
        env = os.environ.get("QZMATH_LIB")
        if env:
            if not os.path.isfile(env):
                raise SystemExit("QZMATH_LIB=%s: not a library file" % env)
            recorded = os.path.abspath(env)
            beside = os.path.join(os.path.dirname(recorded), BATCH)
            batch = beside if os.path.exists(beside) else \
                os.path.join(cmake_build(work, ["QZMathBatch"]), BATCH)
        else:
            build = cmake_build(work, ["QZMath", "QZMathBatch"])
            shutil.copyfile(os.path.join(build, LIB), os.path.join(package, LIB))
            recorded, batch = LIB, os.path.join(build, BATCH)
        shutil.copyfile(batch, os.path.join(package, BATCH))
        with open(os.path.join(package, "_libpath.py"), "w") as f:
            f.write('"""Written at install: the library this package loads (relative to the'
                    ' package, or absolute)."""\n__all__ = ["LIBRARY"]\nLIBRARY = %r\n' % recorded)
        with open(os.path.join(package, "_version.py"), "w") as f:
            f.write('"""Written at install: the version of this package."""\n'
                    '__all__ = ["VERSION"]\nVERSION = %r\n' % version())


class WithLibraries(Distribution):
    """The package carries compiled libraries, so its wheel is tagged for this platform."""

    def has_ext_modules(self):
        return True


setup(version=version(), cmdclass={"build_py": BuildWithLibraries}, distclass=WithLibraries)
