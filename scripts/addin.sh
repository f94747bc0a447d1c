#!/usr/bin/env bash
# Makes the add-in workbook vt_rowlark.xlam (addin/README.md): addin.sh OUTPUT_DIR
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$1"
python3 "$project/addin/make_addin.py" "$("$project/scripts/version.sh")" "$1/vt_rowlark.xlam"
