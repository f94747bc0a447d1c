#!/usr/bin/env bash
# Runs the tests of the 32-bit library, which need a Wine for 32 bits: in a Debian system of its own, made in FOLDER where
# there is none yet (some minutes, 2 GB; build/win32-system unless told). A set-up program in build/packages is installed
# there as well, and must bring Windows a library of either bitness. Mounts are gone when it ends; needs root.
#   scripts/test-win32.sh [FOLDER [CTEST-ARGUMENTS...]]
set -euo pipefail
system=$(realpath -m "${1:-$(dirname "$0")/../build/win32-system}")
cd "$(dirname "$0")/.."
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

if [ "${ROWLARK_MOUNTED:-}" != yes ]; then
  scripts/setup.sh program tests windows win32
  if [ ! -e "$system" ]; then
    # Only what has been made to the end gets the name. The packages come from where this system gets its own.
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mirror=$(apt-get indextargets --format '$(REPO_URI)' "Created-By: Packages" "Codename: $codename" "Component: main" |
      head -n 1)
    packages=$(sed -n '/^\[win32-system\]/,/^$/{/^[a-z0-9]/p}' cmake/packages.txt | paste -sd,)
    "${as_root[@]}" rm -rf --one-file-system "$system.part"
    mkdir -p "$(dirname "$system")"
    "${as_root[@]}" mmdebstrap --variant=apt --architectures=amd64,i386 --include="$packages" "$codename" "$system.part" \
      "$mirror"
    "${as_root[@]}" mv "$system.part" "$system"
  fi
  cmake --preset win32 -B build/win32-tests -DBUILD_TESTING=ON -DPython3_EXECUTABLE=/usr/bin/python3 \
    -DCMAKE_CROSSCOMPILING_EMULATOR="$PWD/cmake/wine.sh;$PWD/build/win32-tests/wine" >/dev/null
  cmake --build build/win32-tests
  exec "${as_root[@]}" unshare --mount env ROWLARK_MOUNTED=yes "$PWD/scripts/test-win32.sh" "$system" "${@:2}"
fi

mount -t proc proc "$system/proc"
mount --rbind /dev "$system/dev"
mkdir -p "$system$PWD"
mount --bind "$PWD" "$system$PWD"
inside() {
  chroot "$system" env -i HOME=/root LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1 \
    PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin "$@"
}

# Programs of the system without a path are those of the loader's bitness.
inside ROWLARK_WINE=/usr/lib/wine/wine ctest --test-dir "$PWD/build/win32-tests" --output-on-failure --timeout 600 \
  -j "$(nproc)" --no-tests=error "${@:2}"

wine() {
  inside "$PWD/cmake/wine.sh" "$PWD/build/win32-tests/wine-setup" "$@" | tr -d '\r'
}
class='HKLM\Software\Classes\CLSID\{5082DB8A-0A28-4C7F-BCB4-39A3E8746B0A}\InprocServer32'
for setup in build/packages/*setup.exe; do
  [ -e "$setup" ] || continue
  wine "Z:$PWD/$setup" /S /AllUsers
  echo 'WScript.Echo TypeName(CreateObject("vtrlk_runtime.clsVTRLKRuntime"))' >build/win32-tests/create.vbs
  for folder in x86:syswow64:32 x64:system32:64; do
    IFS=: read -r library programs bits <<<"$folder"
    wine reg query "$class" /ve "/reg:$bits" | grep -F "\\$library\\vtrlk_runtime.dll"
    wine "C:\\windows\\$programs\\cscript.exe" //nologo "Z:$PWD/build/win32-tests/create.vbs" | grep -F clsVTRLKRuntime
  done
  echo "$setup: both libraries are registered"
done
