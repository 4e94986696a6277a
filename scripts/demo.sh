#!/usr/bin/env bash
# Builds the library and runs the demo: one axis, then a seven-joint arm whose full motion
# profile is written to build-demo/arm_profile.csv.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES
cmake -S . -B build-demo -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=OFF >/dev/null
cmake --build build-demo -j"$(nproc)" --target qz_demo
./build-demo/examples/qz_demo --csv build-demo/arm_profile.csv "$@"
