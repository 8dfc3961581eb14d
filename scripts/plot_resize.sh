#!/usr/bin/env bash
# Plots the time of a resize against the size of the result, for each method, from a photograph of
# one channel of 8 bits, 1920 x 1080. Needs what scripts/demo.sh has built.
# usage: scripts/plot_resize.sh PLOT.png
set -euo pipefail
[[ $# -eq 1 ]] || { sed -n '2,4s/^# //p' "$0" >&2; exit 2; }

root=$(cd "$(dirname "$0")/.." && pwd)
resize=$root/build/demo/examples/resize_image
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
gm convert "$root/build/demo/pictures/grey.png" -resize '1920x1080!' -colorspace GRAY -depth 8 \
  "$data/source.png"

# measure <name> <largest width> <option>...: megapixels of the result, milliseconds.
measure() {
  local width
  for width in 120 240 480 720 960 1280 1536 1920 2560 3840 5120; do
    [[ $width -le $2 ]] || break
    "$resize" --size "${width}x$((width * 9 / 16))" "${@:3}" --repeat 30 "$data/source.png" \
      "$data/result.png"
  done | sed -E 's/.*-> ([0-9]+) x ([0-9]+), .*: ([0-9.]+) ms.*/\1 \2 \3/' |
    awk '{ print $1 * $2 / 1e6, $3 }' >"$data/$1"
}
measure nearest 5120 --method nearest
measure linear 5120 --method linear
measure catmullrom 5120 --method catmullrom
measure lanczos 5120 --method lanczos
measure area 1920 --method area
measure antialiased 1920 --method lanczos --antialias

cat >"$data/plot" <<END
set terminal pngcairo size 900,540 font 'sans,11'
set output '$1'
set title '1920 x 1080 pixels of 8 bits resized, one thread'
set xlabel 'megapixels of the result'
set ylabel 'milliseconds'
set logscale xy
set xrange [0.006:20]
set grid
set key top left
set style data linespoints
set arrow from 2.0736, graph 0 to 2.0736, graph 1 nohead dashtype 2
plot '$data/antialiased' title 'Lanczos, antialiased' linewidth 2 pointtype 7, \
  '$data/lanczos' title 'Lanczos' linewidth 2 pointtype 7, \
  '$data/catmullrom' title 'Catmull-Rom' linewidth 2 pointtype 7, \
  '$data/area' title 'area' linewidth 2 pointtype 7, \
  '$data/linear' title 'linear' linewidth 2 pointtype 7, \
  '$data/nearest' title 'nearest' linewidth 2 pointtype 7
END
gnuplot "$data/plot"
