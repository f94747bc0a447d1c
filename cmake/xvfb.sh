#!/bin/sh
# Runs a program on a virtual screen of its own, with a window manager: xvfb.sh PROGRAM [ARGUMENTS...].
set -eu
number=$(mktemp)
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$number" 2>/dev/null &
screen=$!
manager=
trap 'kill $manager $screen 2>/dev/null || true; rm -f "$number"' EXIT
trap 'exit 1' HUP INT TERM
while [ ! -s "$number" ]; do
  kill -0 "$screen"
  sleep 0.05
done
DISPLAY=:$(cat "$number")
export DISPLAY
openbox --sm-disable >/dev/null 2>&1 &
manager=$!
"$@"
