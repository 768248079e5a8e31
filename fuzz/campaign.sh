#!/usr/bin/env bash
# A long fuzzing campaign, started by a person (CI runs the short fuzz/run-fuzzers.sh instead).
#
# Runs every fuzz target in turn for an equal share of HOURS, each on a working corpus kept across
# campaigns under build/fuzz-campaign/<target>/corpus and read together with the committed seed
# corpus and the regression inputs. At the end, merges the working corpus back into the committed
# seed corpus fuzz/corpus/<target>/ with libFuzzer's -merge=1, so that the seed corpus grows only by
# inputs that add coverage, and prints the line coverage of every library source file over the
# merged seed corpora (clang source-based coverage, from the fuzz-coverage preset).
#
# Stops at the first target that crashes, leaks, times out or breaks a property; the input that did
# it is kept under build/fuzz-campaign/<target>/. Review and commit fuzz/corpus/ afterwards.
#
# A timeout is measured in wall-clock time, which a loaded machine stretches: an input that timed
# out is run once more on its own, and only one that is slow again stops the campaign.
#
# usage: fuzz/campaign.sh HOURS [TARGET...]  (HOURS a decimal number, e.g. 2 or 0.5; every target
#                                             of fuzz/run-fuzzers.sh unless some are named)
#        fuzz/campaign.sh --coverage          (only the coverage report of the committed seeds)
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { echo "usage: $0 HOURS [TARGET...] | --coverage" >&2; exit 2; }
[ $# -ge 1 ] || usage
hours=$1
shift
if [ "$hours" != --coverage ]; then
  [[ $hours =~ ^[0-9]+([.][0-9]+)?$ ]] || usage
fi

# The targets are the ones that fuzz/run-fuzzers.sh runs.
read -r -a targets <<<"$(sed -n 's/^targets=(\(.*\))$/\1/p' fuzz/run-fuzzers.sh)"
[ ${#targets[@]} -gt 0 ] || { echo "no targets found in fuzz/run-fuzzers.sh" >&2; exit 1; }
if [ $# -gt 0 ]; then
  for named in "$@"; do
    [[ " ${targets[*]} " == *" $named "* ]] || { echo "no fuzz target $named" >&2; exit 2; }
  done
  targets=("$@")
fi
work=build/fuzz-campaign

if [ "$hours" != --coverage ]; then
  share=$(awk -v h="$hours" -v n=${#targets[@]} 'BEGIN { s = int(h * 3600 / n); print (s < 1 ? 1 : s) }')
  cmake --preset fuzz >/dev/null
  cmake --build --preset fuzz
  for target in "${targets[@]}"; do
    dir=$work/$target
    mkdir -p "$dir/corpus"
    echo "== $target for ${share}s (log: $dir/fuzz.log)"
    # New inputs go to the working corpus (the first folder); the others are read only.
    while ! build/fuzz/fuzz/"$target" -max_total_time="$share" -timeout=60 -print_final_stats=1 \
        -artifact_prefix="$dir/" "$dir/corpus" fuzz/corpus/"$target" fuzz/regressions \
        >"$dir/fuzz.log" 2>&1; do
      # (ls fails when nothing matches, which pipefail would make fatal before the report below.)
      slow=$(ls "$dir"/timeout-* 2>/dev/null | head -n 1 || true)
      others=$(ls "$dir"/crash-* "$dir"/leak-* "$dir"/oom-* 2>/dev/null | head -n 1 || true)
      if [ -n "$slow" ] && [ -z "$others" ] &&
          build/fuzz/fuzz/"$target" -timeout=60 "$slow" >"$dir/timeout-rerun.log" 2>&1; then
        echo "   $(basename "$slow") ran in time on its own (a loaded machine); going on"
        mv "$slow" "$dir/ran-in-time-$(basename "$slow")"
        continue
      fi
      echo "   FAILED; the end of its log:" >&2
      tail -n 40 "$dir/fuzz.log" >&2
      exit 1
    done
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$dir/fuzz.log")
    echo "   clean: $runs runs, working corpus of $(ls "$dir/corpus" | wc -l) inputs"
  done
  for target in "${targets[@]}"; do
    before=$(ls fuzz/corpus/"$target" | wc -l)
    build/fuzz/fuzz/"$target" -merge=1 -timeout=60 fuzz/corpus/"$target" "$work/$target/corpus" \
      >"$work/$target/merge.log" 2>&1 || { tail -n 20 "$work/$target/merge.log" >&2; exit 1; }
    echo "== $target: seed corpus $before -> $(ls fuzz/corpus/"$target" | wc -l) inputs"
  done
fi

# Coverage of the merged seed corpora: every target replays its seed corpus and the regression
# inputs once (-runs=0 executes the given inputs and stops).
cmake --preset fuzz-coverage >/dev/null
cmake --build --preset fuzz-coverage --target "${targets[@]}"
profiles=$work/coverage
rm -rf "$profiles"
mkdir -p "$profiles"
objects=()
for target in "${targets[@]}"; do
  binary=build/fuzz-coverage/fuzz/$target
  LLVM_PROFILE_FILE="$profiles/$target-%p.profraw" \
    "$binary" -runs=0 fuzz/corpus/"$target" fuzz/regressions >"$profiles/$target.log" 2>&1
  llvm-profdata merge -sparse "$profiles/$target"-*.profraw -o "$profiles/$target.profdata"
  echo "== $target: $(llvm-cov report "$binary" -instr-profile="$profiles/$target.profdata" \
        src api base_idls | awk '/^TOTAL/ { print "library lines covered " $(NF-3) ", regions " $4 }')"
  objects+=(-object "$binary")
done
llvm-profdata merge -sparse "$profiles"/*.profdata -o "$profiles/all.profdata"
echo "== line coverage of the library's sources over all targets"
llvm-cov report "${objects[@]:1}" -instr-profile="$profiles/all.profdata" src api base_idls \
  | tee "$profiles/report.txt"
echo "(full report: llvm-cov show ${objects[*]:1} -instr-profile=$profiles/all.profdata)"
