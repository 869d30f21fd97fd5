#!/usr/bin/env bash
# Builds the project with its tests and runs the whole suite, then builds it again with
# AddressSanitizer and UndefinedBehaviorSanitizer and runs the suite once more. Fails when
# any test fails or a sanitizer reports anything. SANITIZE=0 leaves out the second run.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build/test}
sanitized=${SANITIZE_BUILD_DIR:-$here/build/test-sanitize}
jobs=${JOBS:-$(nproc)}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVYGIS_BUILD_TESTS=ON \
      -DVYGIS_WARNINGS_AS_ERRORS=ON >/dev/null
cmake --build "$build" -j "$jobs"
(cd "$build" && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs" --timeout 900)

[ "${SANITIZE:-1}" = 0 ] && exit 0
# Warnings are the first build's business: GCC's instrumentation makes false ones.
cmake -S "$here" -B "$sanitized" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVYGIS_BUILD_TESTS=ON \
      -DVYGIS_SANITIZE=ON >/dev/null
cmake --build "$sanitized" -j "$jobs"
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$here/scripts/lsan.supp:print_suppressions=0
cd "$sanitized"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs" --timeout 1800
