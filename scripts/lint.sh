#!/usr/bin/env bash
# Checks the format of all sources and runs clang-tidy over the program and its libraries; every finding is an error.
#   scripts/lint.sh            everything
#   scripts/lint.sh --changed  of what differs from origin/main, or from the commit LINT_BASE, and where nothing does of
#                              the last commit: clang-tidy over eight sources at most
#   scripts/lint.sh --fix      formats in place
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program windows lint

mapfile -t sources < <(git ls-files '*.h' '*.cpp')
if [ "${1:-}" = --fix ]; then
  clang-format -i "${sources[@]}"
  exit
fi
printf '%s\0' "${sources[@]}" | xargs -0 -P "$(nproc)" -n 40 clang-format --dry-run -Werror

wanted=("${sources[@]}")
most=${#sources[@]}
if [ "${1:-}" = --changed ]; then
  most=8
  head=$(git rev-parse HEAD)
  base=${LINT_BASE:-$(git merge-base HEAD origin/main 2>/dev/null || echo "$head")}
  [ "$(git rev-parse "$base")" != "$head" ] || base=$(git rev-parse -q --verify HEAD~1 || git hash-object -t tree /dev/null)
  # With a header the source of its name is looked at.
  mapfile -t wanted < <(git diff --name-only --diff-filter=d "$base" -- '*.h' '*.cpp' | sed 's/\.h$/.cpp/' | sort -u)
fi

# tidy PRESET ARGUMENTS...: over those of the wanted sources that the configuration compiles and none before it did.
declare -A seen=()
tidy() {
  local preset=$1 source some=()
  cmake --preset "$preset" -B "build/lint-$preset" -DBUILD_TESTING=OFF -DROWLARK_BENCHMARK=ON \
    -DROWLARK_PRECOMPILED_HEADERS=OFF >/dev/null
  [ "$preset" != win64 ] || cmake --build "build/lint-$preset" --target rowlark_idl >/dev/null
  for source in "${wanted[@]}"; do
    [ -z "${seen[$source]:-}" ] && grep -q "\"file\": \"$PWD/$source\"" "build/lint-$preset/compile_commands.json" || continue
    seen[$source]=1
    [ ${#seen[@]} -gt "$most" ] || some+=("$source")
  done
  [ ${#some[@]} -gt 0 ] || return 0
  printf '%s\0' "${some[@]}" | xargs -0 -P "$(nproc)" -n 2 clang-tidy --quiet -p "build/lint-$preset" \
    --extra-arg=-Wno-unknown-warning-option "${@:2}"
}

# What the cross compiler includes, so that its headers are the system's for clang as well.
system=()
while read -r folder; do
  system+=("--extra-arg-before=-isystem$folder")
done < <(x86_64-w64-mingw32-g++-posix -xc++ -E -v /dev/null 2>&1 >/dev/null | sed -n '/^#include </,/^End/{s/^ //p}' | grep -v '/lib/gcc/.*/include\(-fixed\)\?$')

tidy linux-release
tidy win64 --extra-arg-before=--target=x86_64-w64-mingw32 "${system[@]}"
[ ${#seen[@]} -le "$most" ] || echo "clang-tidy has looked at $most of ${#seen[@]} sources; scripts/lint.sh looks at all."
