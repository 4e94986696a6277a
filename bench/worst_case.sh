#!/usr/bin/env bash
# Worst case per call: runs bench/worst_case timed (CALLS calls per function, default 10^6,
# pinned to one core) and then under callgrind (COUNT_CALLS per function, default 10^5), and
# prints both tables. Usage: bench/worst_case.sh BUILD_DIR [CALLS] [COUNT_CALLS]
set -euo pipefail
build="${1:?usage: worst_case.sh BUILD_DIR [CALLS] [COUNT_CALLS]}"
calls="${2:-1000000}"
count_calls="${3:-100000}"
exe="$build/bench/worst_case"
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT

echo "== time per call (TSC ticks)"
LD_BIND_NOW=1 "$exe" --calls "$calls"

echo
echo "== instructions per call (callgrind; sampled calls and every call with an adversarial input)"
LD_BIND_NOW=1 valgrind --tool=callgrind --collect-atstart=no --combine-dumps=yes --dump-line=no \
  --callgrind-out-file="$out/cg" "$exe" --count --calls "$count_calls" 2>"$out/valgrind.log" ||
  { cat "$out/valgrind.log"; exit 1; }
python3 - "$out/cg" <<'PY'
import collections, statistics, sys
counts = collections.defaultdict(list)   # function -> [(instructions, call, input)]
empty = {}
label = None
with open(sys.argv[1]) as f:
    for line in f:
        if line.startswith("desc: Trigger: Client Request: "):
            label = line.split("Client Request: ", 1)[1].strip()
        elif line.startswith("summary: ") and label:
            name, k, kind = label.rsplit("|", 2)
            n = int(line.split()[1])
            if kind == "empty":
                empty[name] = n
            else:
                counts[name].append((n, int(k), kind))
            label = None
print("%-36s %7s %7s %7s %6s  %s" % ("function", "calls", "median", "max", "max/md", "input at max (call)"))
for name, rows in counts.items():
    base = empty.get(name, 0)
    ins = [n - base for n, _, _ in rows]
    med = statistics.median(ins)
    top = max(rows)
    print("%-36s %7d %7d %7d %6.2f  %s (%d)" % (name, len(ins), med, top[0] - base,
          (top[0] - base) / med if med else float("nan"), top[2], top[1]))
PY
