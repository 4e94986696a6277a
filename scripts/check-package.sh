#!/usr/bin/env bash
# Builds the Debian packages, installs them on this machine (again if already installed, so the
# fresh build is what gets checked), then builds and runs a small consumer against the installed
# libqzmath-dev only: once through find_package(QZMath), once through pkg-config. The consumer is
# copied to a scratch directory and built without any path into the source or build tree; each
# binary must resolve libQZMath from the system library directory. Last, the binding's tests and
# its example run against the installed python3-qzmath, from outside the tree.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PYTHON_PACKAGES python3-pytest

bash scripts/package.sh >/dev/null
deb="$(ls -t "$PWD"/build-package/libqzmath-dev_*.deb | head -1)"
pydeb="$(ls -t "$PWD"/build-package/python3-qzmath_*.deb | head -1)"
echo "== package: $(basename "$deb")"
dpkg-deb --contents "$deb" | awk '{print "   " $6}' | grep -E '\.(h|hpp|so[.0-9]*|a|cmake|pc)$'
echo "== package: $(basename "$pydeb") (Depends: $(dpkg-deb -f "$pydeb" Depends))"
dpkg-deb --contents "$pydeb" | awk '{print "   " $6}' | grep -E '\.py$' | head -3

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --reinstall "$deb" "$pydeb" >/dev/null
for p in libqzmath-dev python3-qzmath; do
  echo "== installed: $(dpkg-query -W -f='${Package} ${Version} ${Status}' $p)"
done

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp tests/consumer/CMakeLists.txt tests/consumer/consumer.c tests/consumer/consumer.cpp "$work"/
tree="$PWD"
cd "$work"
# Nothing from this shell may lead the tools back to the tree.
unset CMAKE_PREFIX_PATH PKG_CONFIG_PATH LD_LIBRARY_PATH CPATH LIBRARY_PATH C_INCLUDE_PATH

# The consumer must have linked the installed library, and nothing may point into the tree.
check_binary() {
  local bin="$1" lib
  lib="$(ldd "$bin" | awk '/libQZMath/ {print $3}')"
  [ -n "$lib" ] && lib="$(readlink -f "$lib")"
  case "$lib" in
    /usr/lib/*) echo "   $(basename "$bin") -> $lib" ;;
    *) echo "$(basename "$bin"): libQZMath resolved to '$lib', not the installed library" >&2
       exit 1 ;;
  esac
  if grep -q "$tree" "$bin"; then
    echo "$(basename "$bin") refers to the source tree $tree" >&2
    exit 1
  fi
}

echo "== consumer through find_package(QZMath)"
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build >/dev/null
grep -E '^QZMath_DIR' build/CMakeCache.txt | sed 's/^/   /'
check_binary build/consumer
./build/consumer | sed 's/^/   /'
check_binary build/consumer_cpp
./build/consumer_cpp | sed 's/^/   /'

echo "== consumer through pkg-config"
flags="$(pkg-config --cflags --libs qzmath)"
echo "   pkg-config --cflags --libs qzmath: $flags"
# shellcheck disable=SC2086 # the flags are a list of words
cc -std=c99 -Wall -Werror consumer.c $flags -o consumer_pc
check_binary consumer_pc
./consumer_pc | sed 's/^/   /'

echo "== the Python binding: python3-qzmath's tests and example, Debian's python3"
cp -r "$tree/python/tests" "$tree/python/examples" "$work"/
loaded="$(/usr/bin/python3 -c 'import qzmath as q; print(q.__file__, q.LIBRARY_PATH, q.__version__)')"
echo "   $loaded"
case "$loaded" in
  /usr/lib/python3/dist-packages/qzmath/*" /usr/lib/"*" $(dpkg-deb -f "$pydeb" Version)") ;;
  *) echo "qzmath is not the installed package, of the package's version, on the installed" \
          "library" >&2; exit 1 ;;
esac
QZMATH_TEST_INSTALLED=1 PYTHONDONTWRITEBYTECODE=1 QZMATH_INCLUDE=/usr/include/qzmath \
  /usr/bin/python3 -m pytest -q -p no:cacheprovider tests | tail -1 | sed 's/^/   /'
/usr/bin/python3 examples/tune_seven_joint.py --no-plot --jerk-scales 1 --cycles 400 | sed 's/^/   /'

echo "== package check passed: $(basename "$deb")"
