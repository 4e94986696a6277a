#!/usr/bin/env bash
# Builds the measuring programs of the guides docs/streaming.md, docs/singularities.md and
# docs/orientation-and-jacobians.md against the library, runs each one, keeps its printed tables in
# the build directory (QZ_BUILD_DIR, default build-docs) as <tool>.txt, and renders the tracker lag
# against the target speed into docs/streaming_lag.png. Every figure those guides quote comes from
# these tables. (The other programs in docs/tools print generated blocks of the docs, which
# scripts/check-docs.sh checks.)
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PLOT_PACKAGES
build="${QZ_BUILD_DIR:-build-docs}"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_EXAMPLES=OFF \
  -DQZ_BUILD_CONFORMANCE=OFF -DQZ_BUILD_ROBUSTNESS=OFF >/dev/null
cmake --build "$build" -j2 --target QZMath
lib="$(cd "$build" && pwd)"
for src in docs/tools/streaming.c docs/tools/singularities.c docs/tools/orientation.c; do
  name="$(basename "$src" .c)"
  cc -std=c99 -O2 -ffp-contract=off -Wall -Wextra -Iinclude -Iexamples "$src" -L"$lib" -lQZMath -lm \
    -Wl,-rpath,"$lib" -o "$build/$name"
  "./$build/$name" "$build/$name.csv" | tee "$build/$name.txt"
done

gnuplot <<GP
set terminal png size 800,520 font "DejaVu Sans,10"
set output "docs/streaming_lag.png"
set datafile separator ","
set title "Single-axis tracker behind a target moving at constant speed (1 ms cycle)"
set xlabel "target speed v [units/s]"
set ylabel "lag [ms]: the output trails the target by v x lag"
set grid lc rgb "#dddddd"
set key top left box opaque
set xrange [0:3]
set yrange [0:420]
plot "$build/streaming.csv" using 1:2 with points pt 7 ps 0.6 lc rgb "#0055aa" title "A = 3.75 units/s², measured", \
     "" using 1:3 with lines lc rgb "#0055aa" dt 2 title "(max(v, A h) + A h) / 2A + h - cycle, h = 10 ms", \
     "" using 1:4 with points pt 7 ps 0.6 lc rgb "#cc5500" title "A = 7.5, measured", \
     "" using 1:5 with lines lc rgb "#cc5500" dt 2 notitle, \
     "" using 1:6 with points pt 7 ps 0.6 lc rgb "#228822" title "A = 30, measured", \
     "" using 1:7 with lines lc rgb "#228822" dt 2 notitle
GP
echo "wrote docs/streaming_lag.png"
