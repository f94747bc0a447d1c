#!/usr/bin/env bash
# Sets up, builds the program (release) and opens the example table; without a terminal, searches it instead.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program

cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target rowlark

# What matches shows while you type; Escape shows all rows again, F1 the keys, Ctrl+Q ends it.
if [ -t 0 ] && [ -t 1 ]; then exec build/linux-release/rowlark examples/customers.csv; fi

run() {
  printf '\n$'
  for word in "$@"; do [[ $word == *\ * ]] && printf ' "%s"' "$word" || printf ' %s' "$word"; done
  printf '\n'
  "$@"
}
run build/linux-release/rowlark search examples/customers.csv münchen
run build/linux-release/rowlark search examples/customers.csv ΑΘΉΝΑ --print json
run build/linux-release/rowlark search examples/customers.csv open --words cell --columns I --filter G=Germany
run build/linux-release/rowlark search examples/customers.csv "киев praha" --words any --go-to --jump C
