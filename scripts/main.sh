#!/usr/bin/env bash
# The main job: installs what is missing, builds the Linux target and runs it on the
# bundled sample data.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset linux >/dev/null
cmake --build --preset linux
# Until the command-line tool lands, the main job is the consumer example: a client program
# built against an installed copy of the library that brings it up, uses it and takes it down.
scripts/consumer.sh
