#!/usr/bin/env bash
# Rebuilds examples/sample.msf with zulutil itself: a text section, a binary section (a 10 x 10
# grid of little-endian doubles) and an empty one.
# Usage: examples/make_sample.sh [path/to/zulutil]   (default: build/linux/bin/zulutil)
set -euo pipefail
cd "$(dirname "$0")"
tool="${1:-../build/linux/bin/zulutil}"
out=sample.msf
rm -f "$out"

printf 'ZULFNDUTI sample container\nThree sections: this text, a 10 x 10 grid of doubles, and an empty one.\n' |
  "$tool" msf put "$out" readme
python3 -c '
import struct, sys
sys.stdout.buffer.write(b"".join(struct.pack("<d", i * 0.5 + j) for i in range(10) for j in range(10)))
' | "$tool" msf put "$out" grid
"$tool" msf put "$out" empty </dev/null
"$tool" msf list "$out"
