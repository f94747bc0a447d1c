#!/usr/bin/env bash
# Sets up, builds for 64-bit Windows and takes the pictures of docs/screenshots: every form of the library in English
# and in German, under Wine on a virtual screen.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program windows

build=$PWD/build/win64
if [ "${1:-}" != --on-this-screen ]; then
  cmake --preset win64 >/dev/null
  cmake --build --preset win64 --target vtrlk_runtime forms_gallery
  exec cmake/xvfb.sh scripts/screenshots.sh --on-this-screen
fi

wine=(cmake/wine.sh "$build/wine-pictures")
pictures=$build/pictures
rm -rf "$pictures"
mkdir -p "$pictures" docs/screenshots
# The colour of tool tips that Windows comes with.
"${wine[@]}" reg add 'HKCU\Control Panel\Colors' /v InfoWindow /d '255 255 225' /f >/dev/null
for language in english german; do
  # On a desktop of its own the windows have the frames that Windows gives them.
  "${wine[@]}" explorer /desktop=pictures,1280x800 "Z:$build/forms_gallery.exe" "Z:$build/vtrlk_runtime.dll" \
    "Z:$PWD/examples/customers.csv" "$language" "Z:$pictures"
done
forms=(search search-error edit options-common options-books options-keyboard options-edit select-range about)
for form in "${forms[@]}"; do
  for language in english german; do
    # What Windows draws has no opacity of its own: texts would be seen through.
    convert "$pictures/$form-$language.bmp" -alpha off -strip -define png:compression-level=9 "docs/screenshots/$form-$language.png"
  done
done
ls -l docs/screenshots
