#!/usr/bin/env bash
# Builds the benchmark programs of the linux preset (when needed), runs every one of them twice
# over (the whole program, and each library row together with its anchors on its own), takes
# medians of interleaved repetitions and rewrites the tables of bench/README.md.
#
#   bench/run.sh                 the full run (about 12 minutes on 2 cores)
#   bench/run.sh --quick         shorter runs, for a look while working (README left alone)
#   bench/run.sh --help          every option
set -euo pipefail
exec python3 "$(dirname "$0")/bench_tables.py" "$@"
