#!/usr/bin/env bash
# The full test run: dependencies, Linux build and tests, Windows cross build and tests under
# Wine, the packages (API reference, .deb and .zip) made from those two builds and checked as a
# user meets them (examples built against each and run), then the sanitizer suites
# (address + undefined behaviour over every test; the thread sanitizer over every test program
# that starts threads or child processes, listed in tests/README.md) and a short fuzz run of
# every fuzz target.
#
#   scripts/test.sh              what CI runs
#   scripts/test.sh --extended   the same with a minute per fuzz target and a minute of load runs
set -euo pipefail
cd "$(dirname "$0")/.."

fuzz_seconds=15
export ZUL_STRESS_SECONDS=3
if [ "${1:-}" = "--extended" ]; then
  fuzz_seconds=60
  export ZUL_STRESS_SECONDS=60
fi

scripts/deps.sh
export WINEDEBUG=-all

# One Wine server for the whole run: a test program started while the previous program's server
# is shutting down can fail to start. Wine's own background services are started here, with
# their output going nowhere: started by the first test instead, they would inherit its output
# pipe and keep ctest waiting for it to close.
wineserver=/usr/lib/wine/wineserver
if [ -x "$wineserver" ]; then
  # deps.sh may have just created the prefix: let that short-lived server exit first, or the
  # persistent one cannot start. A server that is already persistent never exits: then it serves.
  timeout 30 "$wineserver" -w 2>/dev/null || true
  "$wineserver" -p 2>/dev/null || true
  trap '"$wineserver" -k 2>/dev/null || true' EXIT
  timeout 300 /usr/lib/wine/wine64 cmd /c exit </dev/null >/dev/null 2>&1 || true
fi

for preset in linux windows; do
  echo "== $preset: configure and build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  echo "== $preset: test"
  ctest --preset "$preset"
done

echo "== packages: API reference, .deb and .zip, checked with the examples built against them"
scripts/package.sh linux windows
scripts/package-check.sh linux windows

for preset in linux-asan linux-tsan; do
  echo "== $preset: configure, build and test"
  cmake --preset "$preset" >/dev/null
  mkdir -p build
  if ! cmake --build --preset "$preset" >"build/$preset-build.log" 2>&1; then
    tail -50 "build/$preset-build.log"
    exit 1
  fi
  ctest --preset "$preset"
done

if [ -x scripts/fuzz.sh ]; then
  echo "== fuzz targets, ${fuzz_seconds} s each"
  scripts/fuzz.sh "$fuzz_seconds"
fi
echo "== all tests passed"
