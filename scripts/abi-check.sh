#!/usr/bin/env bash
# Compares the ABI of a build's shared library with the committed baseline abi/kelmasn.abi.xz,
# using the ABI tools of the distribution (abigail: abidw, abidiff). The ABI is read from the
# library's debug information, restricted to the types that the installed headers declare: the
# exported functions and variables, the record layouts (sizes, field offsets and types) and the
# classes with their vtables.
#
#   scripts/abi-check.sh BUILD_DIR           fails on any incompatible change (a removed or changed
#                                            symbol, a record or class whose layout or vtable moved);
#                                            compatible additions pass and are listed
#   scripts/abi-check.sh BUILD_DIR --renew   records the build's ABI as the new baseline; refused when
#                                            the change is incompatible and the SONAME is the same:
#                                            raise the major version (project() in CMakeLists.txt)
#                                            in the same change first
#
# The build must carry debug information (the default preset's RelWithDebInfo does).
set -euo pipefail

usage() { echo "usage: $0 BUILD_DIR [--renew]" >&2; exit 2; }
[ $# -ge 1 ] && [ $# -le 2 ] || usage
build_dir=$1
renew=no
if [ $# -eq 2 ]; then
  [ "$2" = --renew ] || usage
  renew=yes
fi
source_dir=$(cd "$(dirname "$0")/.." && pwd)
baseline=$source_dir/abi/kelmasn.abi.xz
work=$build_dir/abi-check
for tool in abidw abidiff xz; do
  command -v "$tool" >/dev/null || { echo "$tool is missing: run scripts/install-deps.sh" >&2; exit 1; }
done

library=$(find "$build_dir/src" -maxdepth 1 -name 'libkelmasn.so.*.*.*' -type f | head -n 1)
[ -n "$library" ] || { echo "no libkelmasn.so.X.Y.Z under $build_dir/src: build first" >&2; exit 1; }

# The installed headers, as the install step lists them.
headers=()
while read -r line; do
  case $line in
    '#'* | '') ;;
    generated:*) headers+=(--header-file "$build_dir/${line#generated: }") ;;
    *) headers+=(--header-file "$source_dir/$line") ;;
  esac
done <"$source_dir/src/installed-headers.txt"

rm -rf "$work"
mkdir -p "$work"
abidw "${headers[@]}" --drop-private-types --no-show-locs --no-corpus-path "$library" \
  >"$work/current.abi"
soname_of() { sed -n "s/.*<abi-corpus [^>]*soname='\([^']*\)'.*/\1/p" "$1" | head -n 1; }
current_soname=$(soname_of "$work/current.abi")

if [ ! -f "$baseline" ]; then
  [ $renew = yes ] || { echo "no baseline $baseline: record one with --renew" >&2; exit 1; }
  xz -9 -c "$work/current.abi" >"$baseline"
  echo "recorded the first baseline ($current_soname)"
  exit 0
fi
xz -dc "$baseline" >"$work/baseline.abi"
baseline_soname=$(soname_of "$work/baseline.abi")

status=0
abidiff --no-show-locs "$work/baseline.abi" "$work/current.abi" >"$work/report.txt" 2>&1 || status=$?
if [ $((status & 3)) -ne 0 ]; then
  echo "abidiff could not compare (status $status):" >&2
  cat "$work/report.txt" >&2
  exit 1
fi
# abidiff flags a removed symbol as incompatible (status bit 8) but a changed layout or vtable only
# as a change (bit 4), since it cannot tell whether the callers use it. Here every change counts as
# incompatible except additions: the summaries must show nothing removed and nothing changed.
incompatible=$((status & 8))
if grep -Eq '(^|[^0-9])[1-9][0-9]* (Removed|Changed)' "$work/report.txt"; then
  incompatible=8
fi

if [ $renew = yes ]; then
  if [ $incompatible -ne 0 ] && [ "$baseline_soname" = "$current_soname" ]; then
    cat "$work/report.txt" >&2
    echo "refused: the change above is incompatible and the SONAME is still $current_soname;" \
      "raise the major version first" >&2
    exit 1
  fi
  xz -9 -c "$work/current.abi" >"$baseline"
  echo "renewed the baseline ($baseline_soname -> $current_soname)"
  exit 0
fi

if [ "$baseline_soname" != "$current_soname" ]; then
  echo "the library's SONAME is $current_soname but the baseline records $baseline_soname:" \
    "renew the baseline in the same change (scripts/abi-check.sh BUILD_DIR --renew)" >&2
  exit 1
fi
if [ $incompatible -ne 0 ]; then
  cat "$work/report.txt" >&2
  echo "FAIL: incompatible ABI change against abi/kelmasn.abi.xz (see above); either undo it, or" \
    "raise the major version and renew the baseline in the same change" >&2
  exit 1
fi
if [ $status -ne 0 ]; then
  cat "$work/report.txt"
  echo "compatible ABI changes (listed above); renew the baseline to record them"
else
  echo "ABI identical to the baseline ($current_soname)"
fi
