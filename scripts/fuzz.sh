#!/usr/bin/env bash
# Builds the fuzz preset (clang, libFuzzer, address and undefined-behaviour sanitizers) and
# runs every fuzz target for SECONDS seconds (default 60), one after another, each on a scratch
# copy of its seed corpus under build/fuzz/corpus (the committed seeds are never modified).
# Inputs that make a target fail are left under build/fuzz/crashes/<target>/. Fails when any
# target finds a crash, a leak, a timeout, a broken property or an allocation beyond its memory
# limits: no single allocation above 64 MiB for any target (inputs are at most 4 KiB), and for
# the container reader, which must cost what the file holds, a total of 1 GiB.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
case "$seconds" in
  ''|*[!0-9]*) echo "usage: scripts/fuzz.sh [SECONDS]" >&2; exit 2 ;;
esac

scripts/deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

build=build/fuzz
failed=()
for seeds in fuzz/corpus/*/; do
  target="$(basename "$seeds")"
  binary="$build/bin/$target"
  if [ ! -x "$binary" ]; then
    echo "fuzz: no binary for $target" >&2
    failed+=("$target")
    continue
  fi
  scratch="$build/corpus/$target"
  crashes="$build/crashes/$target"
  rm -rf "$scratch" "$crashes"
  mkdir -p "$scratch" "$crashes"
  cp "$seeds"* "$scratch"/
  log="$build/logs/$target.log"
  mkdir -p "$(dirname "$log")"
  echo "== $target: ${seconds}s"
  rss=2048
  case "$target" in
    fuzz_multisection) rss=1024 ;;
  esac
  status=0
  ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}" \
    "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb="$rss" -malloc_limit_mb=64 -max_len=4096 \
      -print_final_stats=1 -artifact_prefix="$crashes/" "$scratch" >"$log" 2>&1 || status=$?
  grep -E "^#[0-9]+[[:space:]]+DONE|stat::number_of_executed_units|stat::peak_rss_mb" "$log" | sed 's/^/   /' || true
  if [ "$status" -ne 0 ] || ls "$crashes" | grep -q .; then
    echo "fuzz: $target FAILED (exit $status); see $log and $crashes" >&2
    grep -E "ERROR:|property violated|unexpected|SUMMARY" "$log" | head -5 >&2 || true
    failed+=("$target")
  fi
done

if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzz: failures in ${failed[*]}" >&2
  exit 1
fi
echo "fuzz: all targets ran ${seconds}s without a finding"
