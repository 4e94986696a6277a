#!/usr/bin/env bash
# Renders the motion profiles of the tracker examples: position, velocity, acceleration and jerk
# of joint 1 against time, with its limits drawn, for the plain tracker (example 01), the N-axis
# smoothed tracker (02) and the multi-stage tracker (03). Each run has a velocity limit change at
# 0.8 s and a target change at 1.6 s. The three figures share their scales so that they compare
# at a glance; a peak beyond the scale is written into its panel.
# Writes docs/profile_*.png; the CSV files stay in the build directory (QZ_BUILD_DIR, default
# build-plots).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PLOT_PACKAGES
build="${QZ_BUILD_DIR:-build-plots}"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQZ_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target 01_single_axis 02_seven_joints 03_multistage
mkdir -p docs

# plot NAME TITLE: renders $build/examples/NAME.csv into docs/profile_NAME.png.
plot() {
  local csv="$build/examples/$1.csv" png="docs/profile_$1.png"
  "./$build/examples/$1" "$csv" >/dev/null
  gnuplot <<EOF
set terminal png size 800,900 font "DejaVu Sans,10"
set output "$png"
set datafile separator ","
set datafile missing "nan"
set key autotitle columnhead
set multiplot layout 4,1 title "$2" font ",12"
set lmargin 12
set rmargin 3
set grid lc rgb "#dddddd"
set key top right opaque box lc rgb "#bbbbbb" font ",9" samplen 2
set style textbox opaque noborder
set xrange [0:4]
set format x ""
lim = "lc rgb '#e08080' lw 2"

# A peak beyond the panel's scale is written into the panel (stats runs before the panel sets
# its y range, which stats would otherwise keep to).
offscale(r) = (STATS_max > r || STATS_min < -r) ? \\
  sprintf("peaks %.0f and %.0f, beyond the scale", STATS_min, STATS_max) : ""

set ylabel "position [deg]"
set yrange [-10:130]
set ytics 40
plot "$csv" using "t":"target1" with steps lc rgb "#aaaaaa" title "target", \
     "" using "t":"pos1" with lines lc rgb "#0055aa" lw 2 title "position"

set ylabel "velocity [deg/s]"
set autoscale y
stats "$csv" using "vel1" nooutput
set yrange [-130:130]
set ytics 50
set label 1 offscale(130) at graph 0.01, graph 0.9 font ",9" tc rgb "#cc0000" boxed front
plot "$csv" using "t":"vlim1" with steps @lim title "limit", \
     "" using "t":(-column("vlim1")) with steps @lim notitle, \
     "" using "t":"vel1" with lines lc rgb "#0055aa" lw 2 title "velocity"

set ylabel "acceleration [deg/s²]"
set autoscale y
stats "$csv" using "acc1" nooutput
set yrange [-700:700]
set ytics 300
set label 1 offscale(700) at graph 0.01, graph 0.9 font ",9" tc rgb "#cc0000" boxed front
plot "$csv" using "t":"alim1" with steps @lim title "limit", \
     "" using "t":(-column("alim1")) with steps @lim notitle, \
     "" using "t":"acc1" with lines lc rgb "#0055aa" lw 2 title "acceleration"

set ylabel "jerk [deg/s³]"
set autoscale y
stats "$csv" using "jerk1" nooutput
set yrange [-6000:6000]
set ytics 3000
set format x "%.1f"
set xlabel "time [s]"
set label 1 offscale(6000) at graph 0.01, graph 0.9 font ",9" tc rgb "#cc0000" boxed front
plot "$csv" using "t":"jlim1" with lines @lim title "limit", \
     "" using "t":(-column("jlim1")) with lines @lim notitle, \
     "" using "t":"jerk1" with steps lc rgb "#0055aa" title "jerk"
unset multiplot
EOF
  echo "wrote $png"
}

plot 01_single_axis "Plain tracker (example 01): velocity and acceleration limited"
plot 02_seven_joints "N-axis smoothed tracker (example 02, joint 1): averaged over 25 cycles"
plot 03_multistage "Multi-stage tracker (example 03, mode 1): cascade averaged over 5 cycles"
