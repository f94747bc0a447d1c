#!/usr/bin/env bash
# Makes the set-up program for Windows: installer.sh OUTPUT_DIR writes rowlark-VERSION-setup.exe there. It builds the
# libraries, the add-in workbook and the help that go into it. The same sources give the same bytes, where SOURCE_DATE_EPOCH
# is not set with the time of the last commit. ROWLARK_SIGN is a command that signs the file whose name it gets behind
# its own arguments; it is given the libraries, the uninstaller and the set-up.
set -euo pipefail
mkdir -p "$1"
output=$(realpath "$1")
cd "$(dirname "$0")/.."
scripts/setup.sh windows packages

SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
parts=$PWD/build/installer
stage=$parts/stage
rm -rf "$parts"
mkdir -p "$stage"
for cpu in x64:win64 x86:win32; do
  preset=${cpu#*:}
  folder=$stage/${cpu%:*}
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" --target vtrlk_runtime
  install -D -m 644 -t "$folder" "build/$preset/vtrlk_runtime.dll" languages/*.lng
  [ -z "${ROWLARK_SIGN:-}" ] || sh -c "$ROWLARK_SIGN \"\$1\"" sh "$folder/vtrlk_runtime.dll"
done
scripts/addin.sh "$parts/addin"
scripts/help.sh "$parts/help"
install -m 644 -t "$stage" "$parts/addin/vt_rowlark.xlam" "$parts/help/"*.chm

find "$stage" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
packaging/windows/make-setup.sh "$stage" "$output/rowlark-$(scripts/version.sh)-setup.exe"
