#!/usr/bin/env bash
# Sets up, builds and prints what a key costs in LibreOffice Calc beside its own standard filter over all columns, for
# generated tables: medians of three runs on the machine named first, in processor time of the office's main thread, and
# how long messages had to wait.
#   scripts/bench-calc.sh [ROWS...]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program tests calc benchmark
[ $# -gt 0 ] || set -- 100000

cmake --preset calc -DROWLARK_BENCHMARK=ON >/dev/null
cmake --build --preset calc --target tests_calc make_table
printf '%s, %s processors, load %s\n' "$(sed -n 's/^model name.*: //p' /proc/cpuinfo | head -n 1)" "$(nproc)" \
  "$(cut -d ' ' -f 1-3 /proc/loadavg)"
for rows in "$@"; do
  table=$PWD/build/calc/bench_$rows.csv
  [ -f "$table" ] || build/calc/make_table "$rows" "$table"
  ROWLARK_BENCH_TABLE=$table tests/calc/run.py \
    "$(sed -n 's/^UNO_SDK:PATH=//p' build/calc/CMakeCache.txt)/../program" "$PWD/build/calc/test_extensions" \
    --gtest_also_run_disabled_tests '--gtest_filter=CalcSpeed.*' | grep -v '^\[\|^$\|^Note' || true
done
