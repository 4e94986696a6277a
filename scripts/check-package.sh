#!/usr/bin/env bash
# Builds the Debian package, installs it on this machine (again if already installed, so the
# fresh build is what gets checked), then builds and runs a small consumer against the installed
# package only: once through find_package(QZMath), once through pkg-config. The consumer is
# copied to a scratch directory and built without any path into the source or build tree; each
# binary must resolve libQZMath from the system library directory.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES

bash scripts/package.sh >/dev/null
deb="$(ls -t "$PWD"/build-package/libqzmath-dev_*.deb | head -1)"
echo "== package: $(basename "$deb")"
dpkg-deb --contents "$deb" | awk '{print "   " $6}' | grep -E '\.(h|hpp|so[.0-9]*|a|cmake|pc)$'

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --reinstall "$deb" >/dev/null
echo "== installed: $(dpkg-query -W -f='${Package} ${Version} ${Status}' libqzmath-dev)"

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

echo "== the Python binding on the installed library"
if command -v python3 >/dev/null; then
  QZMATH_LIB="$(dpkg -L libqzmath-dev | grep -E '/libQZMath\.so\.1$')"
  export QZMATH_LIB
  python3 "$tree/python/examples/tune_seven_joint.py" --no-plot --jerk-scales 1 --cycles 400 \
    | sed 's/^/   /'
fi

echo "== package check passed: $(basename "$deb")"
