#!/usr/bin/env bash
# Sets up, builds and runs every test: as a debug build, under the address and undefined-behaviour sanitizers, and
# the fuzz targets for half a minute each. Last, builds the library for Windows.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

for preset in linux linux-asan fuzz; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
for preset in win64 win32; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
done
