#!/usr/bin/env bash
# API reference. `docs-api.sh` renders the comments of the public headers as HTML into
# build-docs/html with Doxygen (docs/Doxyfile), failing on any warning (an undocumented function,
# record, field, macro or parameter, or a malformed command), then rewrites the index docs/api.md
# from the same comments. `docs-api.sh --check`, for CI, changes nothing in the tree: it fails
# when Doxygen warns or when docs/api.md differs from what would be written.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_DOCS_PACKAGES

case "${1:-write}" in
  write) mode=--write ;;
  --check) mode=--check ;;
  *) echo "usage: $0 [--check]" >&2; exit 2 ;;
esac

rm -rf build-docs/html
mkdir -p build-docs
if ! doxygen docs/Doxyfile; then
  echo "docs: Doxygen found undocumented or malformed API comments (above)" >&2
  exit 1
fi
echo "docs: API reference in build-docs/html/index.html"
python3 scripts/gen_api_index.py "$mode"
