#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks to build and test ZULFNDUTI on Linux and,
# cross-compiled, for Windows under Wine. Safe to run again: installs only what is missing.
set -euo pipefail

packages=(
  build-essential dpkg-dev cmake pkg-config python3 gfortran
  libgtest-dev libbenchmark-dev libpcre2-dev zlib1g-dev libssl-dev
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix gfortran-mingw-w64-x86-64-posix
  wine64
  clang-14 libclang-rt-14-dev
  doxygen man-db groff-base file unzip
)

SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"

# The Windows build links PCRE2 compiled from Debian's source package (built below), which
# needs source entries: mirror the machine's own Debian entries as deb-src, once.
update_needed=0
src_list=/etc/apt/sources.list.d/zulfnduti-deb-src.sources
if [ ! -f "$src_list" ] && ! grep -rqsE '^[[:space:]]*(deb-src|Types:.*deb-src)' \
     /etc/apt/sources.list /etc/apt/sources.list.d/; then
  if [ -f /etc/apt/sources.list.d/debian.sources ]; then
    sed -E 's/^Types:.*$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources \
      | $SUDO tee "$src_list" >/dev/null
  elif [ -f /etc/apt/sources.list ]; then
    grep -E '^[[:space:]]*deb[[:space:]]' /etc/apt/sources.list | sed -E 's/^([[:space:]]*)deb/\1deb-src/' \
      | $SUDO tee /etc/apt/sources.list.d/zulfnduti-deb-src.list >/dev/null
  fi
  update_needed=1
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

export DEBIAN_FRONTEND=noninteractive
if [ ${#missing[@]} -gt 0 ] || [ "$update_needed" -eq 1 ]; then
  $SUDO apt-get update -qq
fi
if [ ${#missing[@]} -gt 0 ]; then
  echo "deps: installing ${missing[*]}"
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# Static PCRE2 for the Windows cross build, into ~/.cache/zulfnduti/pcre2 where the Windows
# configure looks for it (built once; later runs find its stamp).
bash "$(dirname "$0")/pcre2-mingw.sh" >/dev/null

# The first Wine start creates its prefix; do it once here so that no test pays for it.
wine=/usr/lib/wine/wine64
if [ -x "$wine" ] && [ ! -f "${WINEPREFIX:-$HOME/.wine}/system.reg" ]; then
  echo "deps: creating the Wine prefix"
  WINEDEBUG=-all timeout 300 "$wine" cmd /c exit >/dev/null 2>&1 || true
fi
echo "deps: ready"
