#!/usr/bin/env bash
# Installs the Debian packages of cmake/packages.txt that are missing; returns at once when none is.
#   scripts/setup.sh PURPOSE...    of program, tests, windows, lint, benchmark, packages, win32, calc, calc-tests
set -euo pipefail
cd "$(dirname "$0")/.."

packages=()
for purpose in "$@"; do
  mapfile -t -O ${#packages[@]} packages < <(sed -n "/^\[$purpose\]/,/^$/{/^[a-z0-9]/p}" cmake/packages.txt)
done
missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
