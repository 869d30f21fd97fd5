#!/usr/bin/env bash
# Builds the project with its tests and runs the whole suite. Fails when any test fails.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build/test}
jobs=${JOBS:-$(nproc)}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVYGIS_BUILD_TESTS=ON \
      -DVYGIS_WARNINGS_AS_ERRORS=ON >/dev/null
cmake --build "$build" -j "$jobs"
cd "$build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs" --timeout 900
