#!/usr/bin/env bash
# Builds the benchmark programs in Release and runs the workloads beside their peers,
# printing one table (bench/README.md explains it). Not part of the test run.
#
#     scripts/bench.sh [--quick] [--only write,read,export,join,elevation,dxf,vygis]
#                      [--scratch DIR] [--keep] [--output FILE] [--qxlsx PATH]
#
# --qxlsx PATH builds the QXlsx peers of the write and read workloads from a QXlsx source
# tree (the folder holding QXlsx/CMakeLists.txt); the build directory keeps it for later
# runs, and --qxlsx "" forgets it.
# BUILD_DIR (default build/bench) and JOBS (default 2) choose where and how wide to build.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build/bench}
jobs=${JOBS:-2}

qxlsx=()
arguments=()
while (($#)); do
  case $1 in
    --qxlsx)
      (($# >= 2)) || { echo "bench.sh: --qxlsx needs a path" >&2; exit 2; }
      qxlsx=("-DVYGIS_QXLSX_SOURCE_DIR=${2:+$(realpath -m -- "$2")}")
      shift 2 ;;
    *) arguments+=("$1"); shift ;;
  esac
done

cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVYGIS_BUILD_BENCHMARKS=ON \
      -DVYGIS_BUILD_TESTS=OFF "${qxlsx[@]}" >/dev/null
targets=(bench_write bench_read bench_export bench_join bench_elevation bench_dxf_rewrite vygis)
pkg-config --exists xlsxwriter 2>/dev/null && targets+=(libxlsxwriter_write)
grep -q '^VYGIS_QXLSX_SOURCE_DIR:PATH=.' "$build/CMakeCache.txt" && targets+=(qxlsx_peers)
cmake --build "$build" -j "$jobs" --target "${targets[@]}" >/dev/null
exec /usr/bin/python3 "$here/bench/bench.py" --build-dir "$build" "${arguments[@]}"
