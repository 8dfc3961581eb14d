#!/usr/bin/env bash
# Builds the API manual of the public header into build/manual/html. A comment that Doxygen finds
# wrong or incomplete fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_deps.sh docs

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
mkdir -p build
{ cat docs/Doxyfile; echo "PROJECT_NUMBER = $version"; } | doxygen -
echo "manual: $PWD/build/manual/html/index.html"
