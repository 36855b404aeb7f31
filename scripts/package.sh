#!/usr/bin/env bash
# Makes the packages from build trees that are already built (scripts/test.sh builds them):
# for each preset the API reference (the docs target, Doxygen) and then CPack:
#   linux    build/linux/packages/zulfnduti_<version>_amd64.deb
#   windows  build/windows/packages/ZULFNDUTI-<version>-win64.zip
#
#   scripts/package.sh [PRESET...]     (default: linux windows)
#
# Doxygen's warnings are collected in build/<preset>/docs/warnings.log. Any warning (a comment in a
# public header or docs/mainpage.md that Doxygen misreads, an unresolved link, a wrong @param)
# fails the docs target and with it this run; the log is then shown.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(linux windows)

for preset in "${presets[@]}"; do
  build="build/$preset"
  if [ ! -f "$build/CMakeCache.txt" ]; then
    echo "package: $build is not configured (cmake --preset $preset && cmake --build --preset $preset)" >&2
    exit 2
  fi
  echo "== $preset: API reference"
  if ! cmake --build --preset "$preset" --target docs >"$build/docs-build.log" 2>&1; then
    cat "$build/docs-build.log" >&2
    if [ -s "$build/docs/warnings.log" ]; then cat "$build/docs/warnings.log" >&2; fi
    echo "package: the API reference failed (Doxygen warnings above, in $build/docs/warnings.log)" >&2
    exit 1
  fi
  echo "docs: $build/docs/html/index.html, no Doxygen warnings"
  echo "== $preset: package"
  rm -rf "$build/packages"
  cpack --preset "$preset" >"$build/cpack.log" 2>&1 || { cat "$build/cpack.log" >&2; exit 1; }
  ls "$build"/packages/*.deb "$build"/packages/*.zip 2>/dev/null || true
done
