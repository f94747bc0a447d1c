#!/usr/bin/env bash
# Sets up, builds (release) and prints, for generated tables of 10 thousand to 1 million rows, the time of one
# keystroke (show all rows, find, hide) beside ripgrep and grep counting the same text in the same file: medians of
# three, seven and three runs on the machine named first, and how long messages had to wait. Last, what a search through
# the Excel adapter costs beside a bare loop of the same calls, for Windows under Wine.
#   scripts/bench.sh [ROWS...]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program windows benchmark
export LC_ALL=C.UTF-8

cmake --preset linux-release -DROWLARK_BENCHMARK=ON >/dev/null
cmake --build --preset linux-release --target make_table bench_search
bin=build/linux-release
[ $# -gt 0 ] || set -- 10000 100000 1000000

# median_ms RUNS COMMAND...: the median wall time of a command, in milliseconds, after one warm-up. Through a
# pipe, since grep gives up counting when it writes to /dev/null.
median_ms() {
  local runs=$1 i start
  shift
  "$@" | cat >/dev/null || true
  for ((i = 0; i < runs; i++)); do
    start=${EPOCHREALTIME/./}
    "$@" | cat >/dev/null || true
    echo $((${EPOCHREALTIME/./} - start))
  done | sort -n | awk '{t[NR] = $1} END {printf "%.1f", t[int((NR + 1) / 2)] / 1000}'
}

# ours FILTER TABLE: milliseconds (the median of three runs), rows found and the longest time without a stop check; the
# first alone counts for a load.
ours() {
  "$bin/bench_search" --benchmark_filter="$1" --benchmark_min_time=0.3 --benchmark_repetitions=3 \
    --benchmark_format=csv "$2" 2>/dev/null |
    awk -F, '/^"(Search|Load).*_median"/ {printf "%.1f %d %.1f\n", $3, $NF, $(NF - 1)}'
}

# The state of the machine, without which figures say little.
printf '%s, %s processors, load %s\n' "$(sed -n 's/^model name.*: //p' /proc/cpuinfo | head -n 1)" "$(nproc)" \
  "$(cut -d ' ' -f 1-3 /proc/loadavg)"

for rows in "$@"; do
  table=$bin/bench_$rows.csv
  [ -f "$table" ] || "$bin/make_table" "$rows" "$table"
  read -r load _ < <(ours "^Load/" "$table")
  memory=$(/usr/bin/time -f %M "$bin/bench_search" --benchmark_filter='no hit' --benchmark_min_time=0.01 "$table" 2>&1 >/dev/null |
    tail -n 1)
  size=$(stat -c %s "$table")
  printf '\n%s rows, %d MB; loaded in %s ms; peak memory %s times the file\n' "$rows" $((size / 1000000)) "$load" \
    "$(awk -v m="$memory" -v s="$size" 'BEGIN {printf "%.1f", m * 1024 / s}')"
  printf '%-32s %9s %9s %9s %9s %6s %6s %7s\n' query rows ours/ms rg/ms grep/ms /rg /grep wait/ms
  while IFS=$'\t' read -r -a query; do
    patterns=()
    for pattern in "${query[@]:1}"; do patterns+=(-e "$pattern"); done
    name=${query[0]}
    rg=$(median_ms 7 rg -i -c -F "${patterns[@]}" "$table")
    read -r time found wait < <(ours "^Search/.*/$(sed 's/[()%]/./g' <<<"$name")$" "$table")
    grep=$(median_ms 3 grep -i -c -F "${patterns[@]}" "$table")
    printf '%-32s %9d %9s %9s %9s %6s %6s %7s\n' "$name" "$found" "$time" "$rg" "$grep" \
      "$(awk -v a="$time" -v b="$rg" 'BEGIN {printf "%.2f", a / b}')" \
      "$(awk -v a="$time" -v b="$grep" 'BEGIN {printf "%.2f", a / b}')" "$wait"
  done < <("$bin/make_table" --queries)
done

printf '\nThrough the Excel adapter\n'
cmake --preset win64 -DROWLARK_BENCHMARK=ON >/dev/null
cmake --build --preset win64 --target bench_adapter
cmake/wine.sh build/win64/wine build/win64/bench_adapter.exe
