#!/usr/bin/env bash
# QZMath inside a parent project (tests/parent), once through add_subdirectory and once through
# FetchContent from this checkout. For each: the parent's build type stays as the parent left it
# (unset), its CPackConfig.cmake names the parent's package or does not exist, its install tree
# holds only the parent's files, and a C and a C++ program (C++17 from the target, the parent
# itself asks for C++14) build and run through QZMath::QZMath.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES
tree="$PWD"
work="$(mktemp -d)"
trap "rm -rf $work" EXIT
fail() { echo "subproject ($via): $*" >&2; exit 1; }

for via in add_subdirectory FetchContent; do
  b="$work/$via"
  cmake -S tests/parent -B "$b" -DQZMATH_VIA="$via" -DQZMATH_SOURCE="$tree" \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$work/$via.log"
  grep -q "parent: CMAKE_BUILD_TYPE=''" "$work/$via.log" || fail "the build type was changed"
  grep -qx "CMAKE_BUILD_TYPE:STRING=" "$b/CMakeCache.txt" || fail "the cached build type was changed"
  if [ -e "$b/CPackConfig.cmake" ]; then
    grep -q 'CPACK_PACKAGE_NAME "parent-controller"' "$b/CPackConfig.cmake" \
      || fail "CPackConfig.cmake does not name the parent's package"
    ! grep -qi 'qzmath' "$b/CPackConfig.cmake" || fail "CPackConfig.cmake mentions QZMath"
  fi
  [ "$via" = add_subdirectory ] && [ -e "$b/CPackConfig.cmake" ] && fail "a CPackConfig.cmake appeared"
  cmake --build "$b" -j"$(nproc)" --target parent_c parent_cpp >/dev/null
  grep -q -- '-std=c++17.*consumer\.cpp' "$b/compile_commands.json" \
    || fail "the C++ program was not compiled as C++17"
  "$b/parent_c" | sed 's/^/   /'
  "$b/parent_cpp" | sed 's/^/   /'
  cmake --install "$b" --prefix "$work/prefix-$via" >/dev/null
  installed="$(cd "$work/prefix-$via" && find . -type f | sort | paste -sd' ')"
  [ "$installed" = "./bin/parent_c" ] || fail "the install tree holds more than the parent's: $installed"
  echo "subproject ($via): build type, packaging and install tree untouched; C and C++ run"
done
