#!/usr/bin/env bash
# Builds the example programs of examples/cpp as a project of their own against a fresh
# installation of a kelmasn build (find_package, this prefix only), runs each, and compares what
# it prints with examples/cpp/expected/<program>.txt. A program must exit 0 and write nothing to
# stderr.
#
# usage: check-examples.sh SOURCE_DIR BUILD_DIR WORK_DIR CXX GENERATOR
set -euo pipefail

if [ $# -ne 5 ]; then
  echo "usage: $0 SOURCE_DIR BUILD_DIR WORK_DIR CXX GENERATOR" >&2
  exit 2
fi
source_dir=$1 build_dir=$2 work=$3 cxx=$4 generator=$5
examples=$source_dir/examples/cpp
prefix=$work/prefix

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build_dir" --prefix "$prefix" >"$work/install.log" ||
  fail "cmake --install failed: $(cat "$work/install.log")"
cmake -S "$examples" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >"$work/configure.log" 2>&1 ||
  fail "the examples do not configure: $(cat "$work/configure.log")"
cmake --build "$work/build" >"$work/build.log" 2>&1 ||
  fail "the examples do not build: $(cat "$work/build.log")"

count=0
for expected in "$examples"/expected/*.txt; do
  program=$(basename "$expected" .txt)
  [ -x "$work/build/$program" ] || fail "no program $program for $expected"
  "$work/build/$program" >"$work/$program.out" 2>"$work/$program.err" ||
    fail "$program exited with status $?: $(cat "$work/$program.err")"
  [ ! -s "$work/$program.err" ] || fail "$program wrote to stderr: $(cat "$work/$program.err")"
  diff -u "$expected" "$work/$program.out" >&2 || fail "$program printed something else (above)"
  echo "ok: $program"
  count=$((count + 1))
done
# Every program of the examples' project has its expected output.
programs=$(sed -n 's/^foreach(program \(.*\))$/\1/p' "$examples/CMakeLists.txt" | wc -w)
[ "$count" -eq "$programs" ] || fail "$programs programs but $count expected outputs"
echo "$count example programs build against the installed tree and print what they should"
