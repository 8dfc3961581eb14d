#!/usr/bin/env bash
# Plots the throughput of FIR filters against the number of taps, from the figures of
#   scripts/bench.sh --family fir --csv FIGURES.csv
# usage: scripts/plot_fir.sh FIGURES.csv PLOT.png
set -euo pipefail
[[ $# -eq 2 ]] || { sed -n '2,4s/^# //p' "$0" >&2; exit 2; }

data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
# series <operations> <names>: taps and samples a second, blocks of 65536, the best of the names.
series() {
  awk -F, -v operations="^($1)\$" -v names="^($2)\$" '
    $2 ~ operations && $6 ~ names {
      split($3, size, " ")
      if (size[4] == 65536 && $8 > best[size[1]]) best[size[1]] = $8
    }
    END { for (taps in best) print taps, best[taps] }' "$figures" | sort -n
}
figures=$1
series '32f direct|32f by FFT' KeloZov >"$data/ours32f"
series '64f direct|64f by FFT' KeloZov >"$data/ours64f"
series '32f direct' 'plain.*' >"$data/plain"
series '32f by FFT' FFTW >"$data/fftw"
series '32f direct' liquid-dsp >"$data/liquid"

cat >"$data/plot" <<END
set terminal pngcairo size 900,540 font 'sans,11'
set output '$2'
set title 'FIR filters, level 6, blocks of 65536 samples, one thread'
set xlabel 'taps'
set ylabel 'million samples per second'
set logscale xy
set xtics (8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096)
set xrange [6:5500]
set yrange [20:10000]
set grid
set key top right
set style data linespoints
END
plots=()
for name in 'ours32f:KeloZov 32f' 'ours64f:KeloZov 64f' 'plain:plain loop 32f' \
  'fftw:overlap-save on FFTW 32f' 'liquid:liquid-dsp 32f'; do
  file=$data/${name%%:*}
  [[ ! -s $file ]] || plots+=("'$file' title '${name#*:}' linewidth 2 pointtype 7")
done
(IFS=,; echo "plot ${plots[*]}") >>"$data/plot"
gnuplot "$data/plot"
