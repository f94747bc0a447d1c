#!/usr/bin/env bash
# Writes rowlark.oxt, the extension for LibreOffice Calc, into a folder. The same sources make the same package:
# SOURCE_DATE_EPOCH is the time of what is in it.
#   scripts/calc-package.sh OUTPUT_DIR
set -euo pipefail
output=$(realpath -m "${1:?the folder for rowlark.oxt}")
cd "$(dirname "$0")/.."
scripts/setup.sh program calc

cmake --preset calc >/dev/null
cmake --build --preset calc --target rowlark_calc
library=build/calc/package/rowlarkcalc.uno.so
mkdir -p "$(dirname "$library")"
strip -o "$library" build/calc/rowlarkcalc.uno.so
python3 packaging/calc/extension.py "$library" "$(scripts/version.sh)" "$output/rowlark.oxt"
