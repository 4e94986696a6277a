# Tests the package of this source tree, or with QZMATH_TEST_INSTALLED=1 the installed one.
import os
import sys

if not os.environ.get("QZMATH_TEST_INSTALLED"):
    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
