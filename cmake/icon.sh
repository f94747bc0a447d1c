#!/bin/sh
# Makes an icon of all the sizes that Windows asks for, and 256 pixels as a PNG: icon.sh DRAWING.svg ICON.ico
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for size in 16 20 24 32 40 48 256; do
  rsvg-convert --width "$size" --height "$size" "$1" --output "$folder/$size.png"
done
icotool --create --output "$2" "$folder/16.png" "$folder/20.png" "$folder/24.png" "$folder/32.png" "$folder/40.png" \
  "$folder/48.png" --raw="$folder/256.png"
