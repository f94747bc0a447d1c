#!/usr/bin/env bash
# Sets up, builds (release) and prints, for generated tables of 10 thousand to 1 million rows, the time of one
# keystroke (show all rows, find, hide) beside ripgrep and grep counting the same text in the same file. Last, what a
# search through the Excel adapter costs beside a bare loop of the same calls, for Windows under Wine.
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

# ours FILTER TABLE: milliseconds and rows found, or the time alone for a load.
ours() {
  "$bin/bench_search" --benchmark_filter="$1" --benchmark_min_time=0.3 --benchmark_format=csv "$2" 2>/dev/null |
    awk -F, '/^"(Search|Load)/ {printf "%.1f %d\n", $3, $NF}'
}

for rows in "$@"; do
  table=$bin/bench_$rows.csv
  [ -f "$table" ] || "$bin/make_table" "$rows" "$table"
  read -r load _ < <(ours "^Load/" "$table")
  memory=$(/usr/bin/time -f %M "$bin/bench_search" --benchmark_filter='no hit' --benchmark_min_time=0.01 "$table" 2>&1 >/dev/null |
    tail -n 1)
  size=$(stat -c %s "$table")
  printf '\n%s rows, %d MB; loaded in %s ms; peak memory %s times the file\n' "$rows" $((size / 1000000)) "$load" \
    "$(awk -v m="$memory" -v s="$size" 'BEGIN {printf "%.1f", m * 1024 / s}')"
  printf '%-32s %9s %9s %9s %9s %6s %6s\n' query rows ours/ms rg/ms grep/ms /rg /grep
  while IFS=$'\t' read -r -a query; do
    patterns=()
    for pattern in "${query[@]:1}"; do patterns+=(-e "$pattern"); done
    name=${query[0]}
    rg=$(median_ms 7 rg -i -c -F "${patterns[@]}" "$table")
    read -r time found < <(ours "^Search/.*/$(sed 's/[()%]/./g' <<<"$name")$" "$table")
    grep=$(median_ms 3 grep -i -c -F "${patterns[@]}" "$table")
    printf '%-32s %9d %9s %9s %9s %6s %6s\n' "$name" "$found" "$time" "$rg" "$grep" \
      "$(awk -v a="$time" -v b="$rg" 'BEGIN {printf "%.2f", a / b}')" \
      "$(awk -v a="$time" -v b="$grep" 'BEGIN {printf "%.2f", a / b}')"
  done < <("$bin/make_table" --queries)
done

printf '\nThrough the Excel adapter\n'
cmake --preset win64 -DROWLARK_BENCHMARK=ON >/dev/null
cmake --build --preset win64 --target bench_adapter
cmake/wine.sh build/win64/wine build/win64/bench_adapter.exe
