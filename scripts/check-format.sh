#!/usr/bin/env bash
# The C and C++ sources follow .clang-format. `check-format.sh` fails and lists the files that do
# not; `check-format.sh --fix` rewrites them in place.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh clang-format
files=$(git ls-files '*.c' '*.h' '*.cpp' '*.hpp' | grep -v '^fuzz/corpus/')
if [ "${1:-}" = "--fix" ]; then
  echo "$files" | xargs clang-format -i
  exit 0
fi
bad=""
for f in $files; do
  clang-format --dry-run --Werror "$f" >/dev/null 2>&1 || bad="$bad $f"
done
if [ -n "$bad" ]; then
  echo "format: these files differ from .clang-format (bash scripts/check-format.sh --fix):" >&2
  printf '  %s\n' $bad >&2
  exit 1
fi
echo "format: $(echo "$files" | wc -w) files follow .clang-format"
