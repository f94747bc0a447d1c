#!/usr/bin/env bash
# Sets up, builds the extension and opens a copy of the example table, or a table of yours, in LibreOffice Calc with the
# search form, on a profile that is thrown away. Without a display it runs on a virtual one and leaves a picture instead.
#   scripts/demo-calc.sh [TABLE]
set -euo pipefail
tables=()
[ $# -eq 0 ] || tables=("$(realpath "$1")")
cd "$(dirname "$0")/.."
scripts/setup.sh program calc

cmake --preset calc >/dev/null
cmake --build --preset calc --target rowlark_calc
if [ -z "${DISPLAY:-}" ]; then
  export ROWLARK_PICTURE=$PWD/build/calc/calc.png
  scripts/setup.sh calc-tests
  cmake/xvfb.sh scripts/demo-calc.sh "${tables[@]}"
  echo "There is no display; a picture of Calc is $ROWLARK_PICTURE"
  exit
fi

profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
export XDG_CONFIG_HOME=$profile/config
cp examples/customers.csv "$profile"
table=${tables[0]:-$profile/customers.csv}
# A text file is read as UTF-8, with commas; anything else as what it is.
filter=()
[[ $table != *.csv ]] || filter=("--infilter=Text - txt - csv (StarCalc):44,34,76,1")
office=(soffice --norestore --nologo --nodefault --nolockcheck "-env:UserInstallation=file://$profile"
  "-env:BUNDLED_EXTENSIONS=file://$PWD/build/calc/extensions" --calc "${filter[@]}" "$table")
if [ -z "${ROWLARK_PICTURE:-}" ]; then
  "${office[@]}" "service:org.rowlark.AddIn?VantrelRLK_ShowSearch"
  exit
fi

# Opens the search form with its hotkey and searches. The office is a process of that script's, so all of them end.
SAL_USE_VCLPLUGIN=gen setsid "${office[@]}" &
trap 'kill -- -$! || true; wait $! || true; rm -rf "$profile"' EXIT
window=$(timeout 120 xdotool search --sync --onlyvisible --name 'LibreOffice Calc$' | tail -n 1)
xdotool windowactivate --sync "$window"
until xdotool search --onlyvisible --name '^Search - ' >/dev/null; do
  xdotool key ctrl+f
  sleep 1
done
xdotool type --delay 50 germany
sleep 3
import -window root "$ROWLARK_PICTURE"
