#!/usr/bin/env bash
# Line, branch and region coverage of the library's sources by the test suite together with the
# committed fuzz seed corpora, started by a person (CI does not run it: it builds two more trees).
#
# The test suite comes from the coverage preset (clang source-based coverage) and runs as one
# process, without the test of the exported symbols (their list is g++'s: clang emits a different
# set of constructor variants); the seed corpora and the regression inputs are replayed by fuzz/campaign.sh --coverage
# (fuzz-coverage preset). The profiles of both are merged, and the report covers src/, api/ and
# base_idls/.
#
# usage: scripts/coverage.sh [--show FILE]   (--show: also print FILE's annotated source, with the
#                                             lines and branches that nothing reached)
set -euo pipefail
cd "$(dirname "$0")/.."

show=
case "${1:-}" in
  --show) [ $# -eq 2 ] || { echo "usage: $0 [--show FILE]" >&2; exit 2; }; show=$2 ;;
  "") ;;
  *) echo "usage: $0 [--show FILE]" >&2; exit 2 ;;
esac

cmake --preset coverage >/dev/null
cmake --build --preset coverage --target kelmasn_tests
profiles=build/coverage/profiles
rm -rf "$profiles"
mkdir -p "$profiles"
LLVM_PROFILE_FILE="$PWD/$profiles/tests-%p.profraw" build/coverage/tests/kelmasn_tests \
  --gtest_brief=1 --gtest_filter=-Symbols.ExportedSymbolsAreExactlyTheCommittedList \
  >"$profiles/tests.log" 2>&1 || { tail -n 30 "$profiles/tests.log" >&2; exit 1; }
llvm-profdata merge -sparse "$profiles"/tests-*.profraw -o "$profiles/tests.profdata"

fuzz/campaign.sh --coverage >"$profiles/seeds.log" 2>&1 || { tail -n 30 "$profiles/seeds.log" >&2; exit 1; }
llvm-profdata merge -sparse "$profiles/tests.profdata" build/fuzz-campaign/coverage/all.profdata \
  -o "$profiles/all.profdata"

objects=(build/coverage/tests/kelmasn_tests)
for binary in build/fuzz-coverage/fuzz/fuzz_*; do
  [ -x "$binary" ] && objects+=(-object "$binary")
done
echo "== coverage of the library's sources by the test suite and the fuzz seeds"
llvm-cov report "${objects[@]}" -instr-profile="$profiles/all.profdata" src api base_idls \
  | tee "$profiles/report.txt"
if [ -n "$show" ]; then
  llvm-cov show "${objects[@]}" -instr-profile="$profiles/all.profdata" -show-branches=count \
    -show-line-counts-or-regions "$show"
fi
echo "(full report: llvm-cov show ${objects[*]} -instr-profile=$profiles/all.profdata)"
