#!/usr/bin/env bash
# The main job: installs what is missing, builds the Linux target and runs zulutil on the
# bundled sample container: its listing, then a check of every section.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset linux >/dev/null
cmake --build --preset linux
build/linux/bin/zulutil msf list examples/sample.msf
build/linux/bin/zulutil msf verify examples/sample.msf
