#!/usr/bin/env bash
# Installs the Linux build into a temporary prefix, then builds and runs examples/consumer
# against it through find_package(ZULFNDUTI CONFIG), and checks the pkg-config file.
set -euo pipefail
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install build/linux --prefix "$work/prefix" >/dev/null
cmake -S examples/consumer -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/build" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib:${LD_LIBRARY_PATH:-}" "$work/build/consumer"

PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig" pkg-config --cflags --libs ZULFNDUTI >/dev/null
echo "consumer: ok"
