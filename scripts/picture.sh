#!/usr/bin/env bash
# Sets up, builds the program (release) and draws the picture of it that the README shows.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program tests

cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target rowlark rowlark_languages
/usr/bin/python3 scripts/picture.py "$PWD/build/linux-release/rowlark" docs/screenshots/terminal.svg
