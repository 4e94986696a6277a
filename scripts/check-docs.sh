#!/usr/bin/env bash
# Checks that every generated block in README.md and docs/*.md is exactly what its program in
# docs/tools prints (scripts/check_docs.py describes the block format). Builds only the library,
# in a build directory of its own (QZ_BUILD_DIR, default build-docs-check). With --update, the
# blocks are rewritten from the programs instead.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PYTHON_PACKAGES
build="${QZ_BUILD_DIR:-build-docs-check}"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_EXAMPLES=OFF \
  -DQZ_BUILD_CONFORMANCE=OFF -DQZ_BUILD_ROBUSTNESS=OFF >/dev/null
cmake --build "$build" -j2 --target QZMath QZMathBatch  # the Python package needs both
# Debian's interpreter runs the Python examples: it has the numpy that python3-numpy installed.
python=/usr/bin/python3
[ -x "$python" ] || python=python3
"$python" scripts/check_docs.py "$build" "$@"
