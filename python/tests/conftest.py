# Imports the package from the source tree; the library comes from QZMATH_LIB (set by CTest) or
# the package's own search.
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
