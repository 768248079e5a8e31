#!/usr/bin/env bash
# Builds the fuzz preset and runs every libFuzzer target for SECONDS seconds (default 60) on a
# fresh copy of its seed corpus plus the regression inputs. Fails if any target crashes, leaks,
# trips a sanitizer or breaks one of its properties; the input that did it is kept under
# build/fuzz-work/<target>/ as crash-*, leak-*, timeout-* or oom-*.
#
# usage: fuzz/run-fuzzers.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
case $seconds in
  '' | *[!0-9]*) echo "usage: $0 [SECONDS]" >&2; exit 2 ;;
esac
# One line: fuzz/campaign.sh reads the list from here.
targets=(fuzz_der_inspect fuzz_der_walk fuzz_records fuzz_ber_tree fuzz_runtime_objects fuzz_check_inspect fuzz_direct_codec)
work=build/fuzz-work

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

status=0
for target in "${targets[@]}"; do
  dir=$work/$target
  rm -rf "$dir"
  mkdir -p "$dir/corpus"
  cp fuzz/corpus/"$target"/* "$dir/corpus/"
  echo "== $target for ${seconds}s (log: $dir/fuzz.log)"
  # New inputs go to the copied corpus (the first folder); the regression inputs are read only.
  if build/fuzz/fuzz/"$target" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
      -artifact_prefix="$dir/" "$dir/corpus" fuzz/regressions >"$dir/fuzz.log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$dir/fuzz.log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$dir/fuzz.log")
    echo "   clean: $runs runs, $rate per second, corpus of $(ls "$dir/corpus" | wc -l) inputs"
  else
    status=1
    echo "   FAILED; the end of its log:" >&2
    tail -n 40 "$dir/fuzz.log" >&2
    ls "$dir"/crash-* "$dir"/leak-* "$dir"/timeout-* "$dir"/oom-* 2>/dev/null >&2 || true
  fi
done
exit $status
