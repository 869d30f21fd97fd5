#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for the given number of seconds
# (default 60), seeded from the workbook corpus. What a target finds goes to
# <build>/crashes/<target>/; the script fails when any target found something.
#   scripts/fuzz.sh [seconds-per-target]
# BUILD_DIR (default build/fuzz), CORPUS_DIR and JOBS override the defaults.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
build=${BUILD_DIR:-$here/build/fuzz}
jobs=${JOBS:-$(nproc)}
corpus=${CORPUS_DIR:-$here/../shared/corpus/excel-made}
targets=(fuzz_workbook fuzz_resave fuzz_templates fuzz_dxf)

"$here/scripts/install-deps.sh" --fuzz
CC=clang-14 CXX=clang++-14 cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVYGIS_BUILD_FUZZERS=ON -DVYGIS_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j "$jobs" --target "${targets[@]}"
/usr/bin/python3 "$here/fuzz/make_seeds.py" "$corpus" "$build/seeds"

export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$here/scripts/lsan.supp:print_suppressions=0
export QT_QPA_PLATFORM=offscreen

found=0
for target in "${targets[@]}"; do
  seeds=$build/seeds/workbook
  options=(-max_len=131072 -dict="$here/fuzz/workbook.dict")
  case $target in
    fuzz_templates) seeds=$build/seeds/templates ;;
    fuzz_dxf) seeds=$build/seeds/dxf; options=(-max_len=4096) ;;
  esac
  # The target's own corpus keeps what earlier runs learnt; the seeds are read only.
  mkdir -p "$build/corpus/$target" "$build/crashes/$target"
  echo "== $target for ${seconds}s" >&2
  "$build/fuzz/$target" "${options[@]}" -max_total_time="$seconds" -timeout=20 \
      -rss_limit_mb=3072 -print_final_stats=1 \
      -artifact_prefix="$build/crashes/$target/" "$build/corpus/$target" "$seeds" \
      2> "$build/$target.log" || found=1
  tail -n 12 "$build/$target.log" >&2
done
[ "$found" -eq 0 ] || echo "Inputs that failed are in $build/crashes/" >&2
exit "$found"
