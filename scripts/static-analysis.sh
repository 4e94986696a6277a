#!/usr/bin/env bash
# Static analysis of the library's own code: clang-tidy with the profile in .clang-tidy, then
# cppcheck, over every source in src/ and over the C++ headers include/qzmath/*.hpp (through one
# translation unit that includes them all). Any finding fails. The compile commands come from a
# build directory of its own (QZ_ANALYSIS_BUILD_DIR, default build-analysis), configured for the
# library only; QZ_ANALYSIS_JOBS sets the parallel jobs (2).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_ANALYSIS_PACKAGES

build="${QZ_ANALYSIS_BUILD_DIR:-build-analysis}"
jobs="${QZ_ANALYSIS_JOBS:-2}"
start=$(date +%s)
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
  -DQZ_BUILD_EXAMPLES=OFF -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_CONFORMANCE=OFF >/dev/null

# The C++ headers have no translation unit of their own; this one includes every one of them,
# compiled with the library's language level and warning set.
mkdir -p "$build/analysis/cppcheck"
headers_tu="$PWD/$build/analysis/qzmath_headers.cpp"
for h in include/qzmath/*.hpp; do echo "#include <qzmath/$(basename "$h")>"; done > "$headers_tu"
strict=$(sed -n '/^set(QZ_STRICT_WARNINGS/,/)/p' cmake/QZFlags.cmake | grep -o -- '-W[a-z-]*' | tr '\n' ' ')
# shellcheck disable=SC2206
header_flags=(-std=c++17 -Wall -Wextra $strict -I"$PWD/include" -I"$PWD/$build/include"
  $(pkg-config --cflags-only-I eigen3 | sed 's/-I/-isystem /g'))
sources=$(ls src/*/*.cpp)
log="$build/analysis"

echo "== clang-tidy: $(echo "$sources" | wc -w) sources of src/ and $(ls include/qzmath/*.hpp | wc -w) C++ headers"
t0=$(date +%s)
tidy_failed=0
echo "$sources" | xargs -P"$jobs" -I{} sh -c \
  'clang-tidy -p "$0" --quiet "$1" > "$0/analysis/$(echo "$1" | tr / _).tidy" 2>/dev/null' \
  "$build" {} || tidy_failed=1
clang-tidy --quiet "$headers_tu" -- "${header_flags[@]}" > "$log/headers.tidy" 2>/dev/null ||
  tidy_failed=1
findings=$(cat "$log"/*.tidy | grep -E '^[^ ]+:[0-9]+:[0-9]+: (warning|error):' | sort -u || true)
if [ -n "$findings" ] || [ $tidy_failed -ne 0 ]; then
  cat "$log"/*.tidy
  echo "clang-tidy: $(echo "$findings" | grep -c . || true) findings (fix them, or disable a check in" \
    ".clang-tidy with its reason)" >&2
  exit 1
fi
echo "   no findings, $(( $(date +%s) - t0 )) s"

echo "== cppcheck: the same sources and headers"
t0=$(date +%s)
cppcheck_args=(--enable=warning,style,performance,portability --inline-suppr --error-exitcode=1
  --quiet --std=c++17 --template='{file}:{line}:{column}: {severity}: {message} [{id}]')
cppcheck "${cppcheck_args[@]}" -j"$jobs" --project="$build/compile_commands.json" \
  --cppcheck-build-dir="$log/cppcheck"
cppcheck "${cppcheck_args[@]}" --language=c++ -I include -I "$build/include" "$headers_tu"
echo "   no findings, $(( $(date +%s) - t0 )) s"
echo "== static analysis: clean in $(( $(date +%s) - start )) s"
