#!/usr/bin/env bash
# Tries the packages for Linux that scripts/package.sh has made, as root: in a clean Debian 12 (some minutes to make)
# installs the program, uses it in German, reads its manual, runs what the .tar.gz holds, and removes it; builds the
# example against the core.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh program packages
umask 022
packages=$PWD/build/packages
place=$(mktemp -d)
root=$place/debian
trap 'umount --quiet "$root/proc" || true; rm -rf --one-file-system "$place"' EXIT

say() { printf '== %s\n' "$*"; }
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
# apt ARGUMENTS... in there, silent unless it fails.
apt() { inside apt-get -qq -o Dpkg::Use-Pty=0 "$@" >"$place/apt" 2>&1 || { cat "$place/apt" >&2; exit 1; }; }
# The files of the system but for what programs remember; TEXT in German as "rowlark search" tells it.
files() { (cd "$root" && find . -xdev \( -path ./var -o -path ./proc -o -path ./etc/ld.so.cache \) -prune -o -print | LC_ALL=C sort); }
german() {
  local found
  found=$(inside env LC_ALL=de_DE.UTF-8 "$1" search /customers.csv "nowhere to be found" 2>&1 || true)
  [ "$found" = "rowlark: Text nicht gefunden" ] || { echo "$1: $found" >&2; exit 1; }
  [ "$(inside "$1" search /customers.csv münchen --words cell --print rows | head -n 1)" = 12 ]
}

say 'A clean Debian 12'
mmdebstrap --quiet --variant=minbase --include=man-db bookworm "$root"
mount -t proc proc "$root/proc"
cp examples/customers.csv "$packages"/rowlark_*.deb "$root"
apt update
# What the program needs comes first, so that only its own files are compared.
needed=$(dpkg-deb --field "$packages"/rowlark_*.deb Depends | sed 's/ ([^)]*)//g; s/,//g')
# shellcheck disable=SC2086
apt install -y --no-install-recommends $needed
files >"$place/before"

say 'The .deb'
apt install -y --no-install-recommends "/$(cd "$root" && ls rowlark_*.deb)"
inside rowlark --version
german rowlark
inside env MANWIDTH=80 man --warnings rowlark 2>&1 | head -n 12

say 'Removed'
apt purge -y rowlark
files | diff "$place/before" -

say 'The .tar.gz'
mkdir "$root/anywhere"
tar -xzf "$packages"/rowlark-*-linux-*.tar.gz -C "$root/anywhere"
german "/anywhere/$(ls "$root/anywhere")/bin/rowlark"

say 'The core'
dpkg-deb -x "$packages"/librowlark-dev_*.deb "$place/core"
cmake -S "$place/core/usr/share/doc/librowlark-dev/examples/embedding" -B "$place/build" -G Ninja \
  -D CMAKE_PREFIX_PATH="$place/core/usr" >/dev/null
cmake --build "$place/build" >/dev/null
"$place/build/search_table" examples/customers.csv münchen | head -n 1
say 'All of it works'
