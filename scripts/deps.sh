#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks to build and test ZULFNDUTI on Linux and,
# cross-compiled, for Windows under Wine. Safe to run again: installs only what is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config python3 gfortran
  libgtest-dev libbenchmark-dev libpcre2-dev zlib1g-dev libssl-dev
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix gfortran-mingw-w64-x86-64-posix
  wine64
  clang-14 libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "deps: installing ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The first Wine start creates its prefix; do it once here so that no test pays for it.
wine=/usr/lib/wine/wine64
if [ -x "$wine" ] && [ ! -f "${WINEPREFIX:-$HOME/.wine}/system.reg" ]; then
  echo "deps: creating the Wine prefix"
  WINEDEBUG=-all timeout 300 "$wine" cmd /c exit >/dev/null 2>&1 || true
fi
echo "deps: ready"
