#!/usr/bin/env bash
# ABI guard. `abi.sh` (or `abi.sh check`) builds the shared library with debug information and
# compares its public ABI (the exported functions and the types the public headers declare) with
# the committed baseline abi/libQZMath.abi: added functions pass, anything else fails (a removed
# function, a changed signature, a changed record layout). `abi.sh update` rewrites the baseline
# from the current tree: a deliberate act, for a new minor version (additions) or, after an
# incompatible change, a new major version and SONAME (CONTRIBUTING.md).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES abigail-tools
build="${QZ_BUILD_DIR:-build-abi}"
baseline=abi/libQZMath.abi
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQZ_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target QZMath >/dev/null
lib="$build/libQZMath.so"

case "${1:-check}" in
  update)
    mkdir -p abi
    abidw --headers-dir include --headers-dir "$build/include" --drop-private-types \
      --no-corpus-path --no-comp-dir-path --out-file "$baseline" "$lib"
    echo "abi: baseline $baseline rewritten ($(grep -c '<elf-symbol ' "$baseline") functions)"
    ;;
  check)
    if abidiff --no-added-syms --drop-private-types --headers-dir2 include \
         --headers-dir2 "$build/include" "$baseline" "$lib" >"$build/abidiff.txt"; then
      echo "abi: compatible with $baseline ($(grep -c '<elf-symbol ' "$baseline") functions)"
    else
      cat "$build/abidiff.txt"
      echo "abi: the library's ABI is not compatible with $baseline (see CONTRIBUTING.md)" >&2
      exit 1
    fi
    ;;
  *) echo "usage: $0 [check|update]" >&2; exit 2 ;;
esac
