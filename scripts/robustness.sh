#!/usr/bin/env bash
# The slow robustness checks, each in its own build directory:
#   1. ThreadSanitizer: the two-thread reentrancy test (and the rest of the suite) built with
#      -fsanitize=thread;
#   2. Valgrind memcheck over the whole default suite (Release build, no sanitizers);
#   3. the long tracker soak (10 million cycles);
#   4. every fuzz target for QZ_FUZZ_SECONDS seconds (default 300) each, on one core.
# Usage: scripts/robustness.sh [tsan|memcheck|soak|fuzz]...   (no argument: all four)
# Each step prints its run time. Exits non-zero if any step finds something.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_TEST_PACKAGES valgrind clang libclang-rt-14-dev
steps="${*:-tsan memcheck soak fuzz}"
jobs="${QZ_JOBS:-2}"
status=0

timed() {
  local name="$1"; shift
  local start; start=$(date +%s)
  echo "== $name"
  if "$@"; then echo "   $name: clean"; else echo "   $name: FAILED"; status=1; fi
  echo "   $name took $(( $(date +%s) - start )) s"
}

tsan() {
  local b=build-tsan
  cmake -S . -B $b -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQZ_SANITIZE=thread -DQZ_BUILD_EXAMPLES=OFF \
    -DQZ_BUILD_TESTS=ON -DQZ_BUILD_CONFORMANCE=ON >/dev/null
  cmake --build $b -j"$jobs" >/dev/null
  # halt_on_error makes any report fail the run, not just the test that saw it.
  (cd $b && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" ctest --output-on-failure -j"$jobs" \
     -LE soak -E "install_and_consume" >ctest.log 2>&1; rc=$?
   grep -E "tests passed|tests failed|WARNING: ThreadSanitizer" ctest.log | sed 's/^/   /'; exit $rc)
}

memcheck() {
  local b=build-memcheck
  cmake -S . -B $b -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQZ_BUILD_EXAMPLES=OFF -DQZ_BUILD_TESTS=ON \
    >/dev/null
  cmake --build $b -j"$jobs" >/dev/null
  # Every test program of the default suite once under valgrind (all of its cases in one process),
  # in parallel; any memory error or definite leak fails the step. Logs: $b/memcheck/<test>.log.
  mkdir -p $b/memcheck
  find $b/tests -maxdepth 1 -type f -executable \( -name 'test_*' -o -name c_api \) -printf '%f\n' | sort |
    xargs -P "$jobs" -I{} sh -c "valgrind --error-exitcode=99 --leak-check=full \
      --errors-for-leak-kinds=definite --log-file=$b/memcheck/{}.log $b/tests/{} >$b/memcheck/{}.out 2>&1 \
      && echo '   {}: clean' || { echo '   {}: FAILED (see $b/memcheck/{}.log)'; exit 1; }"
}

soak() {
  local b=build-soak
  cmake -S . -B $b -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_EXAMPLES=OFF -DQZ_BUILD_TESTS=ON \
    -DQZ_BUILD_ROBUSTNESS=ON >/dev/null
  cmake --build $b -j"$jobs" --target test_soak >/dev/null
  (cd $b && ctest -L soak --output-on-failure)
}

fuzz() {
  QZ_BUILD_DIR=build-fuzz bash scripts/fuzz.sh "${QZ_FUZZ_SECONDS:-300}"
}

for s in $steps; do timed "$s" "$s"; done
exit $status
