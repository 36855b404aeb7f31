#!/usr/bin/env bash
# The full test run: dependencies, Linux build and tests, Windows cross build and tests
# under Wine, then the consumer example built against an installed copy of the library.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
export WINEDEBUG=-all

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
