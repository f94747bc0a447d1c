#!/usr/bin/env bash
# Prints the version, which CMakeLists.txt alone tells.
exec sed -n 's/^project(rowlark VERSION \([0-9.]*\).*/\1/p' "$(dirname "$0")/../CMakeLists.txt"
