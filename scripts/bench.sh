#!/usr/bin/env bash
# Builds the benchmark programs in Release and runs the workloads beside their peers,
# printing one table (bench/README.md explains it). Not part of the test run.
#
#     scripts/bench.sh [--quick] [--only write,read,export,join,elevation,dxf,vygis]
#                      [--scratch DIR] [--keep] [--output FILE]
#
# BUILD_DIR (default build/bench) and JOBS (default 2) choose where and how wide to build.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build/bench}
jobs=${JOBS:-2}

cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVYGIS_BUILD_BENCHMARKS=ON \
      -DVYGIS_BUILD_TESTS=OFF >/dev/null
targets=(bench_write bench_read bench_export bench_join bench_elevation bench_dxf_rewrite vygis)
pkg-config --exists xlsxwriter 2>/dev/null && targets+=(libxlsxwriter_write)
cmake --build "$build" -j "$jobs" --target "${targets[@]}" >/dev/null
exec /usr/bin/python3 "$here/bench/bench.py" --build-dir "$build" "$@"
