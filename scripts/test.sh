#!/usr/bin/env bash
# The full test run: dependencies, Linux build and tests, Windows cross build and tests
# under Wine, then the consumer example built against an installed copy of the library.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
export WINEDEBUG=-all

# One Wine server for the whole run: a test program started while the previous program's server
# is shutting down can fail to start. Wine's own background services are started here, with
# their output going nowhere: started by the first test instead, they would inherit its output
# pipe and keep ctest waiting for it to close.
wineserver=/usr/lib/wine/wineserver
if [ -x "$wineserver" ]; then
  # deps.sh may have just created the prefix: let that short-lived server exit first, or the
  # persistent one cannot start.
  "$wineserver" -w 2>/dev/null || true
  "$wineserver" -p
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

echo "== consumer example against the installed package"
scripts/consumer.sh
echo "== all tests passed"
