#!/usr/bin/env bash
# Makes the help from the pages in docs/help: vt_rlk_en.chm and vt_rlk_de.chm for Windows, the pages of a web site in web,
# the man page rowlark.1, and in text what the program shows in a terminal. Of one commit (SOURCE_DATE_EPOCH) always the
# same bytes.
#   scripts/help.sh OUTPUT_DIR
set -euo pipefail
output=$(realpath -m "${1:?usage: scripts/help.sh OUTPUT_DIR}")
cd "$(dirname "$0")/.."
[ -n "$(command -v chmcmd)" ] || scripts/setup.sh packages
exec /usr/bin/python3 scripts/help.py "$output"
