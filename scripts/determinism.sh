#!/usr/bin/env bash
# Determinism matrix: builds the library and the conformance runner with several compilers,
# optimisation levels and CPUs, and replays the committed golden vectors on each, bit for bit.
#
#   scripts/determinism.sh [--reduced] [CONFIG...]
#
# Configurations: gcc-O0 gcc-O2 clang-O2 aarch64-O2 (all by default). --reduced runs gcc-O0 and
# aarch64-O2 only: the pair that differs most from the g++ -O2 build that CI already checks (no
# optimisation at all, and another CPU with its own libm and fused multiply-add available to the
# compiler). Build directories are build-det-<config>; QZ_DET_JOBS sets the parallel jobs (2).
#
# A NaN matches any NaN (CPUs differ in the sign and payload of the NaNs they produce); each
# configuration is also replayed with --strict-nan, and its NaN-bit differences are reported
# without failing the matrix.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_DETERMINISM_PACKAGES

jobs="${QZ_DET_JOBS:-2}"
configs=()
for a in "$@"; do
  case "$a" in
    --reduced) configs+=(gcc-O0 aarch64-O2) ;;
    gcc-O0|gcc-O2|clang-O2|aarch64-O2) configs+=("$a") ;;
    *) echo "unknown configuration: $a" >&2; exit 2 ;;
  esac
done
[ ${#configs[@]} -eq 0 ] && configs=(gcc-O0 gcc-O2 clang-O2 aarch64-O2)

vectors=(conformance/vectors/*.qzv)
failed=()
start=$(date +%s)
for c in "${configs[@]}"; do
  t0=$(date +%s)
  build="build-det-$c"
  emulator=()
  args=(-DCMAKE_BUILD_TYPE=None -DQZ_BUILD_CONFORMANCE=ON -DQZ_BUILD_EXAMPLES=OFF)
  case "$c" in
    gcc-O0)   args+=(-DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ "-DCMAKE_C_FLAGS=-O0"
                     "-DCMAKE_CXX_FLAGS=-O0") ;;
    gcc-O2)   args+=(-DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ "-DCMAKE_C_FLAGS=-O2"
                     "-DCMAKE_CXX_FLAGS=-O2") ;;
    clang-O2) args+=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ "-DCMAKE_C_FLAGS=-O2"
                     "-DCMAKE_CXX_FLAGS=-O2") ;;
    aarch64-O2)
      args+=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64
             -DCMAKE_C_COMPILER=aarch64-linux-gnu-gcc -DCMAKE_CXX_COMPILER=aarch64-linux-gnu-g++
             -DCMAKE_FIND_ROOT_PATH=/usr/aarch64-linux-gnu
             -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER
             "-DCMAKE_C_FLAGS=-O2" "-DCMAKE_CXX_FLAGS=-O2")
      emulator=(qemu-aarch64 -L /usr/aarch64-linux-gnu) ;;
  esac
  # The host's g++ and clang++ hold the library's own sources to its warnings, at -O0 and -O2.
  [ "$c" = aarch64-O2 ] || args+=(-DQZ_WARNINGS_AS_ERRORS=ON)
  echo "== $c"
  cmake -S . -B "$build" "${args[@]}" >/dev/null
  cmake --build "$build" -j"$jobs" --target qzc_runner >/dev/null
  runner=("${emulator[@]}" "$build/conformance/qzc_runner")
  if "${runner[@]}" --require-all "${vectors[@]}" > "$build/conformance.log"; then
    echo "   bit-exact: $(tail -1 "$build/conformance.log")"
  else
    echo "   MISMATCH:"
    grep -E "^FAIL" "$build/conformance.log" | sed 's/^/   /'
    tail -1 "$build/conformance.log" | sed 's/^/   /'
    failed+=("$c")
  fi
  if ! "${runner[@]}" --strict-nan "${vectors[@]}" > "$build/conformance-strict-nan.log"; then
    echo "   note: NaN sign or payload differs from the vectors in:"
    grep -E "^FAIL" "$build/conformance-strict-nan.log" | sed -E 's/^FAIL +([^ ]+) .* ([0-9]+) mismatches.*/     \1 (\2)/'
  fi
  echo "   $(( $(date +%s) - t0 )) s"
done
echo "== determinism matrix: ${configs[*]} in $(( $(date +%s) - start )) s"
if [ ${#failed[@]} -ne 0 ]; then
  echo "FAILED: ${failed[*]}"
  exit 1
fi
