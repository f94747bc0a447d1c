#!/usr/bin/env bash
# Makes the set-up program of a folder with the files to install, which may be tried without the libraries being built:
#   make-setup.sh STAGE SETUP.exe [VERSION [TARGET]]
# TARGET is NSIS's: x86-unicode, the default, runs on every Windows, amd64-unicode where only 64-bit programs do. Files
# that are installed, and so the set-up, carry the times that they have in STAGE. ROWLARK_SIGN is a command that signs
# the file whose name it gets behind its own arguments: the uninstaller and the set-up.
set -euo pipefail
stage=$(realpath "$1")
output=$(realpath "$2")
cd "$(dirname "$0")"
version=${3:-$(../../scripts/version.sh)}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
../../cmake/icon.sh ../../assets/icons/rowlark.svg "$work/rowlark.ico"
# Beside the first and the last page.
rsvg-convert --width 96 --height 96 ../../assets/icons/rowlark.svg --output "$work/rowlark.png"
convert -size 164x314 xc:'#e4f1f0' "$work/rowlark.png" -gravity center -composite "BMP3:$work/side.bmp"
./generate.py "$stage" ../../src/server/vtrlk_runtime.idl "$work/contents.nsh"
find "$work" -exec touch -r "$stage" {} +
makensis -V2 -WX -INPUTCHARSET UTF8 "-DVERSION=$version" "-DSTAGE=$stage" "-DCONTENTS=$work/contents.nsh" \
  "-DICON=$work/rowlark.ico" "-DSIDE=$work/side.bmp" "-DOUTPUT=$output" "-DTARGET=${4:-x86-unicode}" ${ROWLARK_SIGN:+"-DSIGN=$ROWLARK_SIGN"} \
  rowlark.nsi
