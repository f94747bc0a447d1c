#!/usr/bin/env bash
# Sets up, builds and runs every test: once as a debug build, once under the address and undefined-behaviour
# sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

for preset in linux linux-asan; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
