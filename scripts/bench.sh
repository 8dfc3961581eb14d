#!/usr/bin/env bash
# Builds the benchmarks and prints a table per family; see --help.
set -euo pipefail

usage() {
  cat <<'END'
usage: scripts/bench.sh [option]...

Measures KeloZov and its peers in turns, on one thread, and prints for each family the throughput of
every operation and size, the best peer and the ratio to it, and the means of the ratios.

  --family F      only the family F: entry, memory, arithmetic, search, resize, fft, fir, conversion,
                  statistics, vm, vm_special, elementary or integer
  --filter REGEX  only the cases whose operation/size matches; one operation takes seconds:
                    scripts/bench.sh --filter '^zovsAdd_32f/'
                    scripts/bench.sh --family resize --filter '8u C1 linear'
                    scripts/bench.sh --filter 'zovsSqrt_32f/(4|64) KiB'
  --level N       level N (0 to 6) against peers held to the same instructions
  --levels        every level against the one below, without peers
  --unheld        lets OpenCV and the C library use all instructions of the processor
  --quick         a quarter of the time for each case
  --brief         one row for each operation, none for its sizes
  --csv FILE      writes all figures to FILE
  --list          lists the cases and measures none
  --no-install    does not look for missing packages

The build is in build/bench. A ratio above 1 means that KeloZov is faster.
FFTW plans by measuring, which takes minutes the first time; its plans are kept there too.
END
}

root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build/bench
family='[^/]*' filter='' level='' csv='' install=1 hold=1 list=0
program_options=() report_options=()
while [[ $# -gt 0 ]]; do
  case $1 in
    --family | --filter | --level | --csv)
      [[ $# -ge 2 ]] || { usage >&2; exit 2; }
      printf -v "${1#--}" %s "$2"
      shift ;;
    --levels) program_options+=(--levels) ;;
    --unheld) hold=0 ;;
    --brief) report_options+=(--brief) ;;
    --quick) program_options+=(--budget=30) ;;
    --list) list=1 ;;
    --no-install) install=0 ;;
    --help | -h) usage; exit ;;
    *) usage >&2; exit 2 ;;
  esac
  shift
done
[[ -z $level ]] || program_options+=(--level="$level")

# A filter is for the operation and the size, so an anchor in it means the start of the operation.
if [[ $filter == ^* ]]; then pattern="^$family/(${filter#^})"; else pattern="^$family/.*($filter)"; fi

[[ $install -eq 0 ]] || "$root/scripts/install_deps.sh" build bench
log=$(mktemp)
result=$(mktemp)
trap 'rm -f "$log" "$result"' EXIT
{ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DKELOZOV_BUILD_TESTS=OFF -DKELOZOV_BUILD_BENCH=ON &&
  cmake --build "$build" --target kelozov_bench; } >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
program=$build/bench/kelozov_bench

if [[ $list -eq 1 ]]; then
  "$program" --benchmark_list_tests --benchmark_filter="$pattern" | cut -d/ -f1-3
  exit
fi

# OpenCV and the C library look at the processor when they are loaded, so they are held to the level
# from outside.
if [[ $hold -eq 1 ]]; then
  opencv=AVX512-SKX libc=-AVX512F,-AVX512VL,-AVX512BW
  if [[ ${level:-6} -lt 6 ]]; then opencv+=,AVX2,FMA3 libc+=,-AVX2; fi
  if [[ ${level:-6} -lt 5 ]]; then
    opencv+=,AVX,FP16,SSE4.2,POPCNT libc+=,-AVX,-AVX_Fast_Unaligned_Load,-SSE4_2
  fi
  if [[ ${level:-6} -lt 4 ]]; then opencv+=,SSE4.1 libc+=,-SSE4_1; fi
  if [[ ${level:-6} -lt 2 ]]; then libc+=,-SSSE3; fi
  export OPENCV_CPU_DISABLE=$opencv GLIBC_TUNABLES=glibc.cpu.hwcaps=$libc
fi
"$program" --benchmark_filter="$pattern" --benchmark_out="$result" --benchmark_out_format=json \
  "${program_options[@]}"
python3 "$root/bench/report.py" "$result" "${report_options[@]}" ${csv:+--csv "$csv"}
