#!/usr/bin/env bash
# Builds the library and runs the whole test suite. Extra arguments go to cmake's configure
# step (e.g. -DQZ_SANITIZE=address,undefined); QZ_BUILD_DIR picks the build directory.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_TEST_PACKAGES
build="${QZ_BUILD_DIR:-build}"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=ON -DQZ_BUILD_CONFORMANCE=ON \
  -DQZ_BUILD_ROBUSTNESS=ON -DQZ_BUILD_BENCH=ON -DQZ_INSTALL_PYTHON=ON -DQZ_WARNINGS_AS_ERRORS=ON \
  "$@" >/dev/null
cmake --build "$build" -j"$(nproc)"
(cd "$build" && ctest --output-on-failure -j"$(nproc)" -LE soak)
