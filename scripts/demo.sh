#!/usr/bin/env bash
# Builds the library and its command-line tool, then runs the demo on the bundled
# sample data. The results go to build/demo-output.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build/release}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVYGIS_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j "${JOBS:-$(nproc)}" --target vygis
# A fresh folder each run: the demo refuses a folder holding files it did not make.
rm -rf "$here/build/demo-output"
"$build/tools/vygis/vygis" demo "$here/build/demo-output"
