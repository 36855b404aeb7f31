#!/usr/bin/env bash
# Makes the packages from build trees that are already built (scripts/test.sh builds them):
# for each preset the API reference (the docs target, Doxygen) and then CPack:
#   linux    build/linux/packages/zulfnduti_<version>_amd64.deb
#   windows  build/windows/packages/ZULFNDUTI-<version>-win64.zip
#
#   scripts/package.sh [PRESET...]     (default: linux windows)
#
# Doxygen's warnings are collected in build/<preset>/docs/warnings.log and counted here. A warning
# about docs/mainpage.md fails the run; warnings about the headers fail it only when the tree was
# configured with -DZUL_DOCS_WERROR=ON (then the docs target itself fails).
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
  cmake --build --preset "$preset" --target docs >/dev/null
  log="$build/docs/warnings.log"
  warnings=$(grep -c "warning:" "$log" || true)
  echo "docs: $build/docs/html/index.html, $warnings Doxygen warnings (in $log)"
  if grep -q "mainpage.md" "$log"; then
    grep "mainpage.md" "$log" >&2
    echo "package: docs/mainpage.md has Doxygen warnings" >&2
    exit 1
  fi
  echo "== $preset: package"
  rm -rf "$build/packages"
  cpack --preset "$preset" >"$build/cpack.log" 2>&1 || { cat "$build/cpack.log" >&2; exit 1; }
  ls "$build"/packages/*.deb "$build"/packages/*.zip 2>/dev/null || true
done
