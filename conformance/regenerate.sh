#!/usr/bin/env bash
# Rewrites conformance/vectors/*.qzv from the library as it now is. Run this only when a change
# is meant to alter results, review the diff, and explain the change in the commit message.
# Usage: conformance/regenerate.sh [BUILD_DIR]   (default build-conformance)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build-conformance}"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_EXAMPLES=OFF \
  -DQZ_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j2 --target qzc_gen qzc_runner
"$build/conformance/qzc_gen" conformance/vectors
"$build/conformance/qzc_runner" --require-all conformance/vectors/*.qzv | tail -1
git --no-pager diff --stat -- conformance/vectors || true
