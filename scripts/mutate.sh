#!/usr/bin/env bash
# Mutation measure of the unit tests (see scripts/mutate.py for the details):
#   bash scripts/mutate.sh            unit tests only, against the saved list scripts/mutants.txt
#   bash scripts/mutate.sh --golden   counting the golden vectors as well, listing what only they catch
#   bash scripts/mutate.sh --only 3,17
# The mutants are applied in a scratch copy of the tree (build-mutants/), never in src/.
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/mutate.py run "$@"
