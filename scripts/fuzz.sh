#!/usr/bin/env bash
# Runs every fuzz target (fuzz/fuzz_<module>.cpp) for longer than the test suite does, one after
# the other on one core, starting from its committed corpus.
#
#   scripts/fuzz.sh [SECONDS]     each target for SECONDS (default 300)
#   QZ_FUZZ_RUNS=N scripts/fuzz.sh   each target for N executions instead
#   QZ_FUZZ_TARGETS="fuzz_dt"        only these targets
#   QZ_FUZZ_MAXLEN=256               shorter inputs (more executions per second; default 4096)
#   QZ_FUZZ_MERGE=1                  afterwards, fold the new inputs that add coverage into the
#                                    committed corpus (a deliberate act: review and commit it)
#
# New inputs go to <build>/fuzz/scratch/<target>, findings to <build>/fuzz/artifacts/ (crash-*,
# timeout-*, oom-*); replay one with `<build>/fuzz/<target> <file>`. Exits non-zero on a finding.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_TEST_PACKAGES clang libclang-rt-14-dev
seconds="${1:-300}"
build="${QZ_BUILD_DIR:-build-fuzz}"
CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_EXAMPLES=OFF \
  -DQZ_BUILD_TESTS=ON -DQZ_BUILD_ROBUSTNESS=ON >/dev/null
targets="${QZ_FUZZ_TARGETS:-$(cd fuzz && ls fuzz_*.cpp | sed 's/\.cpp$//')}"
cmake --build "$build" -j2 --target $targets >/dev/null
# Every function of each module's header must be called by the module's target.
(cd "$build" && ctest -R '_covers_its_header$' --output-on-failure | grep -E "tests passed|Failed|not called")

if [ -n "${QZ_FUZZ_RUNS:-}" ]; then limit="-runs=$QZ_FUZZ_RUNS"; else limit="-max_total_time=$seconds"; fi
status=0
for t in $targets; do
  scratch="$build/fuzz/scratch/$t"
  artifacts="$build/fuzz/artifacts"
  mkdir -p "$scratch" "$artifacts"
  log="$build/fuzz/$t.log"
  echo "== $t ($limit)"
  start=$(date +%s)
  if "$build/fuzz/$t" $limit -timeout=10 -rss_limit_mb=2048 -max_len="${QZ_FUZZ_MAXLEN:-4096}" -print_final_stats=1 \
       -artifact_prefix="$artifacts/$t-" "$scratch" "fuzz/corpus/$t" >"$log" 2>&1; then
    echo "   clean"
  else
    echo "   FINDING: see $log and $artifacts"; status=1
  fi
  grep -E "^stat::(number_of_executed_units|average_exec_per_sec|new_units_added)" "$log" | sed 's/^/   /'
  echo "   $(( $(date +%s) - start )) s"
  if [ "${QZ_FUZZ_MERGE:-0}" = 1 ]; then
    "$build/fuzz/$t" -merge=1 "fuzz/corpus/$t" "$scratch" 2>&1 | grep -E "new files" | sed 's/^/   /'
  fi
done
exit $status
