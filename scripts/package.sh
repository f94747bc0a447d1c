#!/usr/bin/env bash
# Makes all that users download in build/packages, with SHA-256 sums, and prints their sizes and what is new in this
# version. The same commit makes the same bytes, wherever and whenever.
#   scripts/package.sh          everything
#   scripts/package.sh PART...  of linux, addin, help, setup, calc; for trying
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program windows packages calc
umask 022
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export LC_ALL=C.UTF-8 TZ=UTC SOURCE_DATE_EPOCH

version=$(scripts/version.sh)
packages=$PWD/build/packages
work=$PWD/build/packages.work
made=$work/made
news=$(awk -v title="## $version" '/^## / {wanted = index($0 " ", title " ") == 1 || index($0, title ",") == 1} wanted' CHANGELOG.md)
[ -n "$news" ] || { echo "package.sh: CHANGELOG.md tells nothing of version $version" >&2; exit 1; }

# zipped NAME FOLDER: what is in a folder, in the order of names.
zipped() {
  find "$2" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
  (cd "$2" && find . -type f -printf '%P\n' | LC_ALL=C sort | zip -q -X -9 -@ "$made/$1")
}

# For Debian, for other Linux systems, and the core for other programs.
linux() {
  cmake --preset linux-release >/dev/null
  cmake --build --preset linux-release --target rowlark rowlark_languages rowlark_core rowlark_changelogs rowlark_manual
  cpack --config build/linux-release/CPackConfig.cmake -B "$work/linux"
  mv "$work"/linux/*.deb "$work"/linux/*.tar.gz "$made"
}

# The workbook that makes the library an add-in; the set-up brings it as well.
addin() {
  scripts/addin.sh "$work/addin"
  zipped "rowlark-$version-addin.zip" "$work/addin"
}

# The help to read without the program: for Windows, and as web pages.
help() {
  scripts/help.sh "$work/help"
  rm -r "$work/help/rowlark.1" "$work/help/text"
  zipped "rowlark-$version-help.zip" "$work/help"
}

# For Windows.
setup() {
  scripts/installer.sh "$work/setup"
  mv "$work"/setup/* "$made"
}

# The extension of LibreOffice Calc.
calc() {
  scripts/calc-package.sh "$work/calc"
  mv "$work/calc/rowlark.oxt" "$made/rowlark-$version-linux-$(uname -m).oxt"
}

rm -rf "$work"
mkdir -p "$made"
[ $# -gt 0 ] || set -- linux addin help setup calc
for part in "$@"; do
  case $part in
    linux | addin | help | setup | calc) "$part" ;;
    *) echo "package.sh: no part '$part'" >&2; exit 2 ;;
  esac
done

cd "$made"
sha256sum -- * >"$work/SHA256SUMS"
mv "$work/SHA256SUMS" .
cd ..
rm -rf "$packages"
mv "$made" "$packages"
printf '\n%s\n\n' "$news"
printf '%10s  %s\n' bytes build/packages
(cd "$packages" && stat --format='%s %n' -- *) | while read -r size name; do printf '%10d  %s\n' "$size" "$name"; done
