#!/usr/bin/env bash
# The plain recipe (configure, build, install) on a machine that has only a C++ compiler and
# CMake: the peers that tests and benchmarks use are hidden from CMake, the default options must
# build and install without them, the installed tree must hold the headers in include/qzmath/,
# and a consumer must build against it. Asking for the tests without their peers must stop the
# configure with one line that names what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
hide=(--no-warn-unused-cli)
for p in GTest Eigen3 GSL orocos_kdl benchmark Python3; do hide+=("-DCMAKE_DISABLE_FIND_PACKAGE_$p=ON"); done

cmake -S . -B "$work/build" "${hide[@]}" >"$work/configure.log"
cmake --build "$work/build" -j"$(nproc)" >/dev/null
cmake --install "$work/build" --prefix "$work/prefix" >/dev/null
for f in include/qzmath/QZDT.h include/qzmath/QZVersion.h include/qzmath/qzmath.hpp \
         include/qzmath/core.hpp include/qzmath/trackers.hpp lib/libQZMath.so.1 \
         lib/cmake/QZMath/QZMathConfig.cmake lib/pkgconfig/qzmath.pc share/doc/qzmath/copyright; do
  [ -e "$work/prefix/$f" ] || { echo "plain install: $f missing" >&2; exit 1; }
done
cmake -S tests/consumer -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/consumer" >/dev/null
"$work/consumer/consumer"
echo "plain install: built and installed with the default options, consumer built against it"

if cmake -S . -B "$work/tests" "${hide[@]}" -DQZ_BUILD_TESTS=ON >"$work/tests.log" 2>&1; then
  echo "plain install: QZ_BUILD_TESTS=ON configured without its peers" >&2
  exit 1
fi
grep -A3 "CMake Error" "$work/tests.log" | grep -v "^ *$"
