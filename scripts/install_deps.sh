#!/usr/bin/env bash
# Installs the Debian 12 packages that the named groups of work need and that are not there yet:
#   scripts/install_deps.sh build test windows examples demo bench docs
# Asks nothing. Needs root or sudo only when something is missing.
set -euo pipefail

declare -A groups=(
  [build]="cmake ninja-build g++ zlib1g-dev"
  [test]="libgtest-dev googletest python3 binutils clang libclang-rt-dev clang-format qemu-user git pkg-config"
  [windows]="g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64"
  [examples]="pkg-config libpng-dev libsndfile1-dev gnuplot-nox"
  [demo]="graphicsmagick lomiri-wallpapers-16.04 alsa-utils"
  [docs]="doxygen"
  [bench]="libbenchmark-dev libfftw3-dev libopencv-core-dev libopencv-imgproc-dev libvolk2-dev
           libswscale-dev libzimg-dev libsleef-dev libliquid-dev gnuplot-nox pkg-config python3"
)

if [[ $# -eq 0 ]]; then
  echo "usage: $0 <group>...   groups: ${!groups[*]}" >&2
  exit 2
fi

missing=()
for group in "$@"; do
  if [[ ! -v groups[$group] ]]; then
    echo "$0: no group '$group'; groups: ${!groups[*]}" >&2
    exit 2
  fi
  for package in ${groups[$group]}; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $state == installed ]] || missing+=("$package")
  done
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

as_root=()
if [[ $EUID -ne 0 ]]; then
  if ! command -v sudo >/dev/null; then
    echo "$0: missing packages: ${missing[*]}; run as root or install sudo" >&2
    exit 1
  fi
  as_root=(sudo -n)
fi
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300)

echo "installing: ${missing[*]}"
"${apt[@]}" update </dev/null
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null
