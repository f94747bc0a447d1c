#!/usr/bin/env bash
# Sets up, builds for 64-bit Windows, registers the library in a Wine prefix of the build folder and opens the workbench: a
# spreadsheet window with the add-in in it. Without a display it runs on a virtual one and leaves a picture instead.
#   scripts/demo-windows.sh [TABLE.CSV...]
set -euo pipefail
tables=()
[ $# -eq 0 ] || mapfile -t tables < <(realpath "$@")
cd "$(dirname "$0")/.."
scripts/setup.sh program windows

build=$PWD/build/win64
if [ -z "${DISPLAY:-}" ]; then
  export ROWLARK_PICTURE=$build/workbench.png
  cmake/xvfb.sh scripts/demo-windows.sh "${tables[@]}"
  echo "There is no display; a picture of the workbench is $ROWLARK_PICTURE"
  exit
fi

cmake --preset win64 >/dev/null
cmake --build --preset win64 --target vtrlk_runtime workbench
# Its own prefix: a session of Wine that began without a display shows no windows.
wine=(cmake/wine.sh "$build/wine-desktop")
"${wine[@]}" regsvr32 /s "Z:$build/vtrlk_runtime.dll"
workbench=("${wine[@]}" "$build/workbench.exe" "${tables[@]/#/Z:}")
[ -n "${ROWLARK_PICTURE:-}" ] || exec "${workbench[@]}"

# Opens the search form with its hotkey and searches.
"${workbench[@]}" &
trap 'kill $!; wait $! || true' EXIT
window=$(timeout 60 xdotool search --sync --onlyvisible --name 'Rowlark Workbench$')
xdotool windowactivate --sync "$window"
sleep 1
xdotool key ctrl+f
timeout 20 xdotool search --sync --onlyvisible --name '^Search - ' >/dev/null || true
xdotool type --delay 50 germany
sleep 2
import -window root "$ROWLARK_PICTURE"
