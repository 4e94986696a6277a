"""Build step of the qzmath package (metadata in pyproject.toml): records in qzmath/_libpath.py
the libQZMath the installed package loads, so that it never picks up another one.

The library is $QZMATH_LIB when set at install time, else the build of the source tree this
package sits in (build/libQZMath.so); the install stops with an error when neither exists.
"""
import os

from setuptools import setup
from setuptools.command.build_py import build_py

HERE = os.path.dirname(os.path.abspath(__file__))


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


setup(cmdclass={"build_py": RecordLibrary})
