#!/usr/bin/env bash
# Installs the Python package into a fresh virtual environment, the way a user would (offline,
# Debian's numpy seen through --system-site-packages), and runs the binding's tests against the
# installed copy from outside the source tree. The library is the Release build in build/
# (QZ_BUILD_DIR to change), recorded by the install; QZMATH_LIB is unset for the tests, so they
# check that the installed package finds it by itself.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_PYTHON_PACKAGES python3-pytest python3-matplotlib
build="$(cd "${QZ_BUILD_DIR:-build}" && pwd)"
[ -e "$build/libQZMath.so" ] || { echo "no library in $build: build it first (scripts/test.sh)" >&2; exit 1; }
python=/usr/bin/python3  # Debian's interpreter, which has the packages above
tree="$PWD"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

"$python" -m venv --system-site-packages "$work/venv"
QZMATH_LIB="$build/libQZMath.so" "$work/venv/bin/pip" install -q --no-build-isolation --no-index \
  "$tree/python"
echo "== installed: $("$work/venv/bin/pip" show qzmath | awk '/^(Name|Version|Location)/' | paste -sd' ')"

cp -r python/tests python/examples "$work"/
cd "$work"
loaded="$(env -u QZMATH_LIB "$work/venv/bin/python" -c 'import qzmath; print(qzmath.LIBRARY_PATH)')"
echo "== loads: $loaded"
# The installed package's version (recorded at install) is the project's, as the library says.
env -u QZMATH_LIB "$work/venv/bin/python" -c \
  'import qzmath as q; assert q.__version__ == q.LIBRARY_VERSION, (q.__version__, q.LIBRARY_VERSION)'
[ "$(readlink -f "$loaded")" = "$(readlink -f "$build/libQZMath.so")" ] || {
  echo "the installed package loads $loaded, not the library it was installed for" >&2; exit 1; }
env -u QZMATH_LIB QZMATH_TEST_INSTALLED=1 PYTHONDONTWRITEBYTECODE=1 \
  QZMATH_RECORD_LAYOUT="$build/tests/record_layout" \
  QZMATH_INCLUDE="$tree/include:$build/include" \
  "$work/venv/bin/python" -m pytest -q -p no:cacheprovider tests
