#!/usr/bin/env bash
# Installs what is missing, builds every configuration and runs every test. Stops at the first
# failure and shows its output; ends with the number of tests passed and failed. Logs: build/logs.
set -euo pipefail
cd "$(dirname "$0")/.."
export CMAKE_BUILD_PARALLEL_LEVEL CTEST_PARALLEL_LEVEL
CMAKE_BUILD_PARALLEL_LEVEL=$(nproc)
CTEST_PARALLEL_LEVEL=$(nproc)
mkdir -p build/logs
passed=0

# stage <name> <command>: runs the command in a shell that stops at its first error. Counts the
# tests of each ctest summary in its output; a stage without one is a check by itself.
stage() {
  local name=$1 command=$2 log="build/logs/$1.log" start=$SECONDS status=0
  printf '%-20s' "$name"
  bash -euo pipefail -c "$command" >"$log" 2>&1 </dev/null || status=$?
  local counts failed=0 total=0 part whole
  counts=$(sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log")
  while read -r part whole; do
    failed=$((failed + ${part:-0})) total=$((total + ${whole:-0}))
  done <<<"$counts"
  if [[ $status -ne 0 ]]; then
    [[ $failed -gt 0 ]] || failed=1 total=$((total + 1))
  elif [[ $total -eq 0 ]]; then
    total=1
  fi
  passed=$((passed + total - failed))
  printf '%5d passed %4d s\n' "$((total - failed))" "$((SECONDS - start))"
  if [[ $status -ne 0 ]]; then
    tail -n 300 "$log"
    echo "failed: $name (whole output in $log)"
    echo "$passed passed, $failed failed"
    exit 1
  fi
}

stage packages 'scripts/install_deps.sh build test windows examples docs'

stage format '
  find bench examples include src tests -name "*.[ch]" -o -name "*.cpp" |
    xargs clang-format --dry-run -Werror'

stage release '
  cmake --preset release
  cmake --build --preset release
  ctest --preset release --no-tests=error -LE emulated'

# Every export, at every level, on processors that have no more than that level.
stage processors 'ctest --preset release --no-tests=error -L emulated'

# The README's program against an installed and moved tree, and the comments of the header.
stage install scripts/check_install.sh
stage manual scripts/docs.sh

# Unoptimised code is where inline functions come out of line and could be shared by levels.
stage debug '
  cmake --preset debug
  cmake --build --preset debug --target kelozov smoke
  ctest --preset debug --no-tests=error -L boundary'

# Built by clang, whose warnings and optimised code are tested with it. Leaks are looked for where the
# system lets the sanitizer stop the process.
stage sanitizers '
  cmake --preset asan
  cmake --build --preset asan
  build/asan/tests/core/core_test --gtest_filter=none || export ASAN_OPTIONS=detect_leaks=0
  ctest --preset asan --no-tests=error'

# Wine makes its prefix once, before programs start side by side.
stage windows '
  cmake --preset windows
  cmake --build --preset windows
  export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  /usr/lib/wine/wine64 wineboot --init
  ctest --preset windows --no-tests=error
  scripts/check_install.sh windows'

echo "$passed passed, 0 failed"
