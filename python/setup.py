"""Build step of the qzmath package (metadata in pyproject.toml): records in qzmath/_libpath.py
the libQZMath the installed package loads, so that it never picks up another one, and in
qzmath/_version.py the package's version, which is the project's (project() in CMakeLists.txt).

The library is $QZMATH_LIB when set at install time, else the build of the source tree this
package sits in (build/libQZMath.so); the install stops with an error when neither exists.
"""
import os
import runpy

from setuptools import setup
from setuptools.command.build_py import build_py

HERE = os.path.dirname(os.path.abspath(__file__))


def version():
    tree_version = runpy.run_path(os.path.join(HERE, "qzmath", "_project.py"))["tree_version"]
    v = tree_version(os.path.dirname(HERE))
    if v is None:
        raise SystemExit("qzmath takes its version from the source tree's CMakeLists.txt, which"
                         " %s does not have" % os.path.dirname(HERE))
    return v


def library():
    env = os.environ.get("QZMATH_LIB")
    if env:
        if not os.path.isfile(env):
            raise SystemExit("QZMATH_LIB=%s: not a library file" % env)
        return os.path.abspath(env)
    built = os.path.join(os.path.dirname(HERE), "build", "libQZMath.so")
    if not os.path.exists(built):
        raise SystemExit("qzmath needs a built libQZMath: %s does not exist. Build the library "
                         "(cmake --build build) or set QZMATH_LIB to the library to use."
                         % built)
    return built


class RecordLibrary(build_py):
    def run(self):
        super().run()
        path = os.path.join(self.build_lib, "qzmath", "_libpath.py")
        with open(path, "w") as f:
            f.write('"""Written at install: the library this package loads."""\n'
                    "LIBRARY = %r\n" % library())
        with open(os.path.join(self.build_lib, "qzmath", "_version.py"), "w") as f:
            f.write('"""Written at install: the version of this package."""\n'
                    "VERSION = %r\n" % version())


setup(version=version(), cmdclass={"build_py": RecordLibrary})
