#!/bin/sh
# Runs a program for Windows: wine.sh PREFIX PROGRAM [ARGUMENTS...]. The prefix, which holds Wine's C: drive and
# registry, is made when it is missing. ROWLARK_WINE is another loader than that of 64 bits.
set -eu
mkdir -p "$1"
WINEPREFIX=$(cd "$1" && pwd)
shift
export WINEPREFIX
# No messages of its own, no offers to download browsers; the language, and with it the ANSI code page, is fixed.
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
wine=${ROWLARK_WINE:-/usr/lib/wine/wine64}

made=$WINEPREFIX/.made
if [ ! -e "$made" ]; then
  (
    flock 9
    [ -e "$made" ] || {
      "$wine" wineboot -i >"$WINEPREFIX/wineboot.log" 2>&1
      # That session runs the service manager twice, which then starts no services; the next one is sound.
      "${wine%64}server" -k
      cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts" # marks and arrows
      touch "$made"
    }
  ) 9>"$WINEPREFIX/.lock"
fi
# Starting the system takes seconds, so it stays up for a while after a program has ended; one that is up stays. Its own
# programs, the desktop among them, are started here: whoever reads what "$@" writes would wait for their end as well.
if "${wine%64}server64" -p30 </dev/null >/dev/null 2>&1; then
  "$wine" rundll32 user32.dll,GetDesktopWindow </dev/null >/dev/null 2>&1 || true
fi
exec "$wine" "$@"
