#!/usr/bin/env bash
# Installs the Python package into a fresh virtual environment with the one command a user runs
# (pip install ./python: offline, Debian's numpy seen through --system-site-packages, the
# libraries built by CMake and put inside the package), and runs the binding's tests against the
# installed copy from outside the source tree, with QZMATH_LIB unset, so they check that the
# installed package loads its own library. The tests' record-layout probe comes from the build in
# build/ (QZ_BUILD_DIR to change).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PYTHON_PACKAGES python3-pytest \
  python3-matplotlib
build="$(cd "${QZ_BUILD_DIR:-build}" && pwd)"
[ -e "$build/tests/record_layout" ] || {
  echo "no tests in $build: build them first (scripts/test.sh)" >&2; exit 1; }
python=/usr/bin/python3  # Debian's interpreter, which has the packages above
tree="$PWD"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

"$python" -m venv --system-site-packages "$work/venv"
# The one command, as docs/python.md gives it (--no-index: offline for certain).
(cd "$tree" && env -u QZMATH_LIB "$work/venv/bin/pip" install -q --no-index \
  --no-build-isolation ./python)
echo "== installed: $("$work/venv/bin/pip" show qzmath | awk '/^(Name|Version|Location)/' | paste -sd' ')"

cp -r python/tests python/examples "$work"/
cd "$work"
loaded="$(env -u QZMATH_LIB "$work/venv/bin/python" -c 'import qzmath; print(qzmath.LIBRARY_PATH)')"
echo "== loads: $loaded"
# The installed package's version (recorded at install) is the project's, as the library says.
env -u QZMATH_LIB "$work/venv/bin/python" -c \
  'import qzmath as q; assert q.__version__ == q.LIBRARY_VERSION, (q.__version__, q.LIBRARY_VERSION)'
case "$(readlink -f "$loaded")" in
  "$(readlink -f "$work/venv")"/*) ;;
  *) echo "the installed package loads $loaded, not its own library" >&2; exit 1 ;;
esac
env -u QZMATH_LIB QZMATH_TEST_INSTALLED=1 PYTHONDONTWRITEBYTECODE=1 \
  QZMATH_RECORD_LAYOUT="$build/tests/record_layout" \
  QZMATH_INCLUDE="$tree/include:$build/include" \
  "$work/venv/bin/python" -m pytest -q -p no:cacheprovider tests
