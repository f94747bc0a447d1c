#!/usr/bin/env bash
# Sets up and checks everything, and says what each part takes: lint of what changed last; the program as it is
# released, searching the example, on a terminal, and as it is packaged; all tests for Linux under the address and
# undefined-behaviour sanitizers; the fuzz targets; the tests for 64-bit Windows, set-up included, but for those that know
# no operating system (ctest --preset win64 has them all). Meanwhile builds the library for 32-bit Windows and the
# extension for LibreOffice Calc, which are not run and so not optimised. scripts/test-win32.sh and scripts/test-calc.sh do
# the rest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program tests windows lint packages calc

part() {
  local TIMEFORMAT="== $1: %0R s, of processors %0U s"
  time "${@:2}"
}

release() {
  scripts/demo.sh </dev/null
  cmake --preset linux-release -DBUILD_TESTING=ON >/dev/null
  cmake --build --preset linux-release --target rowlark_core rowlark_changelogs rowlark_manual
  ctest --preset linux-release
}

# build PRESET [OPTION...]
build() {
  cmake --preset "$@" >/dev/null
  part "$1, build" cmake --build --preset "$1"
}

# Several sources are compiled as one, which takes two thirds of the time. Source by source compile those of the program,
# of the library for 32 bits and of the extension.
together=-DCMAKE_UNITY_BUILD=ON

part lint scripts/lint.sh --changed
part program release
build linux-asan $together
part "linux-asan, tests" ctest --preset linux-asan
part fuzz ctest --preset fuzz
build win64 $together -DROWLARK_PORTABLE_TESTS=OFF
# These tests mostly wait for windows, so what is not run is compiled meanwhile.
log=$(mktemp)
trap 'rm "$log"' EXIT
{ build win32-check && build calc-check; } >"$log" 2>&1 &
tested=0 built=0
part "win64, tests" ctest --preset win64 || tested=$?
wait $! || built=$?
cat "$log"
exit $((tested | built))
