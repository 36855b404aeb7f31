#!/usr/bin/env bash
# Builds static PCRE2 10.42 (8-bit, JIT on) for the Windows cross build from Debian's pcre2
# source package, with the MinGW toolchain, and installs it into a cache directory where the
# Windows configure finds it (cmake/ZulPcre2.cmake). scripts/deps.sh runs it.
#   scripts/pcre2-mingw.sh [<cache-dir> [<toolchain-file>]]
# The cache defaults to ~/.cache/zulfnduti/pcre2, the toolchain to cmake/mingw-w64-x86_64.cmake.
# Installs into <cache-dir>/<version>-mingw64/{include,lib}, leaves a stamp file there when done
# and prints that directory; with the stamp already present it only prints the directory. Needs a
# deb-src entry (scripts/deps.sh adds one).
set -euo pipefail

cache=${1:-$HOME/.cache/zulfnduti/pcre2}
toolchain=${2:-$(cd "$(dirname "$0")/.." && pwd)/cmake/mingw-w64-x86_64.cmake}
want=10.42

mkdir -p "$cache/src"
cd "$cache/src"

# The newest 10.42 source the archive can deliver: try the listed versions newest first, as
# a listed version may be missing from the mirror actually reached.
dsc=$(ls pcre2_${want}-*.dsc 2>/dev/null | sort -V | tail -n 1 || true)
if [ -z "$dsc" ]; then
  versions=$(apt-cache showsrc pcre2 2>/dev/null | sed -n 's/^Version: //p' | grep "^${want}-" | sort -rV || true)
  if [ -z "$versions" ]; then
    echo "pcre2-mingw: no pcre2 ${want} source package known to apt (deb-src entry and apt-get update needed)" >&2
    exit 1
  fi
  for v in $versions; do
    if apt-get source --download-only -qq "pcre2=$v" >/dev/null 2>&1; then
      break
    fi
  done
  dsc=$(ls pcre2_${want}-*.dsc 2>/dev/null | sort -V | tail -n 1 || true)
  if [ -z "$dsc" ]; then
    echo "pcre2-mingw: could not download the pcre2 ${want} source package" >&2
    exit 1
  fi
fi
version=${dsc#pcre2_}
version=${version%.dsc}

prefix="$cache/$version-mingw64"
stamp="$prefix/.built"
if [ -f "$stamp" ]; then
  echo "$prefix"
  exit 0
fi

work=$(mktemp -d "$cache/work.XXXXXX")
trap 'rm -rf "$work"' EXIT
dpkg-source --no-check -x "$dsc" "$work/src" >/dev/null

echo >&2 "pcre2-mingw: building pcre2 $version (static, 8-bit, JIT) into $prefix"
rm -rf "$prefix"
cmake -S "$work/src" -B "$work/build" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" \
  -DBUILD_SHARED_LIBS=OFF -DBUILD_STATIC_LIBS=ON \
  -DPCRE2_BUILD_PCRE2_8=ON -DPCRE2_BUILD_PCRE2_16=OFF -DPCRE2_BUILD_PCRE2_32=OFF \
  -DPCRE2_SUPPORT_JIT=ON -DPCRE2_SUPPORT_UNICODE=ON \
  -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF -DPCRE2_SHOW_REPORT=OFF \
  >"$work/configure.log" 2>&1 || { cat "$work/configure.log" >&2; exit 1; }
cmake --build "$work/build" -j2 >"$work/build.log" 2>&1 || { tail -50 "$work/build.log" >&2; exit 1; }
cmake --install "$work/build" >/dev/null
touch "$stamp"
echo "$prefix"
