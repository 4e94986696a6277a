#!/usr/bin/env bash
# Line and branch coverage of src/ by the unit tests, the Python binding's tests and the golden-
# vector replay (not the fuzz targets, not the soak), counted by gcov.
#
#   scripts/coverage.sh          measure, and rewrite docs/coverage.md from the measurement
#   scripts/coverage.sh --check  measure, and leave docs/coverage.md as it is (CI)
#
# Either way it fails when line or branch coverage falls below the figures committed in
# docs/coverage.md, or when a line or branch that no test reaches has no reason in
# scripts/coverage-reasons.tsv. scripts/coverage-report.py reads the counters (how, and which
# branches it leaves out, is said there). The tests run one at a time, so that no two processes
# update the same counters. Build directory: build-coverage
# (QZ_COVERAGE_BUILD_DIR); QZ_COVERAGE_JOBS sets the build's parallel jobs (2).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_COVERAGE_PACKAGES

mode="${1:-}"
build="${QZ_COVERAGE_BUILD_DIR:-build-coverage}"
start=$(date +%s)
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=ON -DQZ_BUILD_CONFORMANCE=ON \
  -DQZ_BUILD_EXAMPLES=OFF -DQZ_COVERAGE=ON -DQZ_WARNINGS_AS_ERRORS=ON >/dev/null
# The build runs the test programs to list their tests, which writes counters (and, from a
# program linked before the library was rebuilt, complaints about them): those are discarded.
GCOV_ERROR_FILE=/dev/null cmake --build "$build" -j"${QZ_COVERAGE_JOBS:-2}" >/dev/null
find "$build" -name '*.gcda' -delete
# The labelled tests: the checks of the built library's imports and of its installation say
# nothing about src/ (and would see the profiling runtime), so they stay in the ordinary suite.
(cd "$build" && ctest -j1 --output-on-failure -L 'unit|conformance|python' | tail -3)
python3 scripts/coverage-report.py "$build/CMakeFiles/qzmath_objects.dir" \
  scripts/coverage-reasons.tsv docs/coverage.md $mode
echo "== coverage measured in $(( $(date +%s) - start )) s"
