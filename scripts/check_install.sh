#!/usr/bin/env bash
# Installs the library, moves the tree, and builds and runs the README's program against it, by
# pkg-config and by CMake, and the examples; or, as scripts/check_install.sh windows, runs the
# README's program with the cross-built DLL under Wine.
set -euo pipefail
cd "$(dirname "$0")/.."
export CMAKE_GENERATOR=Ninja  # which is installed; make may not be
version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
work=$PWD/build/check_install
stage=$work/moved
expected="status 0: the largest magnitude is 3.5"

fail() {
  echo "check_install: $*" >&2
  exit 1
}

# The first block of the README in the named language.
readme_block() {
  awk -v fence="\`\`\`$1" '$0 == fence { inside = 1; next } inside && /^```/ { exit } inside' README.md
}

# What the table of families says is exported.
exports_in_readme() {
  awk -F'|' '/^\| Family/ { inside = 1 } inside && !/^\|/ { exit } inside { n += $4 } END { print n }' \
    README.md
}

install_moved() {
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" --target kelozov >/dev/null
  rm -rf "$work"
  cmake --install "build/$1" --prefix "$work/here" >/dev/null
  mv "$work/here" "$stage"
  readme_block c >"$work/hello.c"
}

check_linux() {
  install_moved release
  local soname="libkelozov.so.${version%%.*}"
  [[ $(readelf -d "$stage/lib/libkelozov.so") == *"soname: [$soname]"* ]] ||
    fail "soname is not $soname"
  local claimed count
  claimed=$(exports_in_readme)
  count=$(wc -l <build/release/exports.txt)
  [[ $claimed -gt 0 && $claimed -le $count ]] ||
    fail "the README's families add up to $claimed exports, the library has $count"

  export PKG_CONFIG_PATH=$stage/lib/pkgconfig LD_LIBRARY_PATH=$stage/lib
  [[ $(pkg-config --modversion kelozov) == "$version" ]] || fail "pkg-config has another version"
  local flags
  flags=$(pkg-config --cflags --libs kelozov)
  # shellcheck disable=SC2086
  cc -std=c99 -pedantic -Wall -Werror "$work/hello.c" $flags -o "$work/hello"
  [[ $("$work/hello") == "$expected" ]] || fail "the program built by pkg-config prints something else"
  # shellcheck disable=SC2086
  c++ -x c++ -Wall -Werror "$work/hello.c" $flags -o "$work/hello_cpp"
  [[ $("$work/hello_cpp") == "$expected" ]] || fail "the program built as C++ prints something else"

  {
    echo "cmake_minimum_required(VERSION 3.16)"
    echo "project(hello LANGUAGES C)"
    echo "find_package(KeloZov 99 QUIET)"
    echo "if(KeloZov_FOUND)"
    echo "  message(FATAL_ERROR \"version ${version} passes for 99\")"
    echo "endif()"
    echo "find_package(KeloZov ${version%.*} REQUIRED)"
    echo "add_executable(hello hello.c)"
    readme_block cmake
  } >"$work/CMakeLists.txt"
  cmake -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$stage" >/dev/null
  cmake --build "$work/build" >/dev/null
  [[ $(env -u LD_LIBRARY_PATH "$work/build/hello") == "$expected" ]] ||
    fail "the program built by CMake prints something else"
  check_examples
}

# The examples build without a warning, and the stop band of filtered noise is what its design
# promises, which the program tells by its status.
check_examples() {
  cmake -S examples -B "$work/examples" -DCMAKE_PREFIX_PATH="$stage" -DCMAKE_C_FLAGS=-Werror >/dev/null
  cmake --build "$work/examples" >/dev/null
  python3 - "$work/noise.wav" <<'END'
import random, sys, wave
random.seed(1)
with wave.open(sys.argv[1], "wb") as file:
    file.setnchannels(2)
    file.setsampwidth(2)
    file.setframerate(44100)
    file.writeframes(random.randbytes(2 * 2 * 50000))
END
  local options
  for options in "--lowpass 3000" "--highpass 8000 --taps 100" "--bandpass 300,3000 --taps 1001" \
    "--bandstop 2000,9000 --window blackman --block 100"; do
    # shellcheck disable=SC2086
    "$work/examples/filter_sound" $options --plot "$work/noise.png" "$work/noise.wav" \
      "$work/filtered.wav" >"$work/filter.log" || fail "filter_sound $options: $(cat "$work/filter.log")"
    [[ -s $work/noise.png ]] || fail "filter_sound $options draws no plot"
  done
}

check_windows() {
  install_moved windows
  local wine
  wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
  x86_64-w64-mingw32-gcc -Wall -Werror "$work/hello.c" -I"$stage/include" -L"$stage/lib" -lkelozov \
    -o "$stage/bin/hello.exe"
  [[ $(WINEDEBUG=-all "$wine" "$stage/bin/hello.exe" | tr -d '\r') == "$expected" ]] ||
    fail "the program for Windows prints something else"
}

case ${1:-linux} in
  linux) check_linux ;;
  windows) check_windows ;;
  *) fail "linux or windows?" ;;
esac
echo "check_install: ${1:-linux} passed"
