#!/usr/bin/env bash
# Sets up, builds and runs every test: as a debug build, under the address and undefined-behaviour sanitizers, the fuzz
# targets for half a minute each, and for 64-bit Windows. Last, builds all but the tests for 32-bit Windows.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

for preset in linux linux-asan fuzz win64; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
cmake --preset win32 >/dev/null
cmake --build --preset win32
