#!/usr/bin/env bash
# Sets up, builds the extension for LibreOffice Calc, and runs its tests inside the office without a
# screen, and on a virtual one with keys and mouse.
#   scripts/test-calc.sh [CTEST_OPTION...]    such as --repeat until-fail:50
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program tests calc calc-tests
cmake --preset calc >/dev/null
cmake --build --preset calc
ctest --preset calc "$@"
