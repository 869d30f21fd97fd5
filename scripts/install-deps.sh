#!/usr/bin/env bash
# Installs the Debian packages the project needs to build, test and benchmark, skipping
# those already there. Runs apt-get as root (through sudo when not root).
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qtbase5-dev zlib1g-dev libexpat1-dev libzip-dev
  # Deflates saved workbooks and checks the CRC-32 of every entry; the engine falls back
  # to zlib without it.
  libisal-dev
  # libzip's CMake package checks that its command-line tools are there.
  zipcmp zipmerge ziptool
  googletest libgtest-dev
  # The GDAL provider of the host classes, its tests and the demo's sample files.
  libgdal-dev gdal-bin
  # Real readers and writers the tests check the workbooks against.
  python3 python3-openpyxl libreoffice-calc-nogui
)
case "${1:-}" in
  # libdeflate only for bench_crc, which compares its CRC-32 with ISA-L's and zlib's.
  --bench) packages+=(libxlsxwriter-dev python3-xlsxwriter libbenchmark-dev valgrind xlsx2csv libdeflate-dev) ;;
  # libFuzzer and the sanitizer runtimes come with clang.
  --fuzz) packages+=(clang-14 libclang-rt-14-dev) ;;
esac

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}" >&2
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
