#!/usr/bin/env bash
# Makes the Debian package of a kelmasn build into a fresh folder and checks what a machine that
# installs it receives: the package's name, version, maintainer and dependencies; the shared
# library with its link and the exports of the committed list; exactly the installed headers, the
# generated version header among them; the pkg-config file, the CMake package and the licence;
# no test program or benchmark; and no path of the machine that built it.
#
# A build with sanitizers cannot keep its binaries free of the build machine's paths: the
# instrumentation names each source by the path the compiler was given (AddressSanitizer's global
# descriptors, UndefinedBehaviorSanitizer's source locations), in data, not debug information.
# For such a build only the package's other files are checked for paths; the package that is
# shipped is made from a build without sanitizers.
#
# usage: check-package.sh SOURCE_DIR BUILD_DIR WORK_DIR VERSION CPACK LIBDIR sanitize=[LIST]
set -euo pipefail

if [ $# -ne 7 ]; then
  echo "usage: $0 SOURCE_DIR BUILD_DIR WORK_DIR VERSION CPACK LIBDIR sanitize=[LIST]" >&2
  exit 2
fi
source_dir=$1 build_dir=$2 work=$3 version=$4 cpack=$5 libdir=$6 sanitize=${7#sanitize=}
# The package installs under /usr.
prefix=usr

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
"$cpack" --config "$build_dir/CPackConfig.cmake" -G DEB -B "$work" >"$work/cpack.log" 2>&1 ||
  fail "cpack failed: $(cat "$work/cpack.log")"
shopt -s nullglob
debs=("$work"/*.deb)
[ ${#debs[@]} -eq 1 ] || fail "expected one .deb in $work, found ${#debs[@]}"
deb=${debs[0]}
[ "$(basename "$deb")" = "kelmasn_${version}_$(dpkg --print-architecture).deb" ] ||
  fail "the package is named $(basename "$deb")"

# The control fields.
field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = kelmasn ] || fail "Package: $(field Package)"
[ "$(field Version)" = "$version" ] || fail "Version: $(field Version), expected $version"
[ "$(field Maintainer)" = "The kelmasn developers" ] || fail "Maintainer: $(field Maintainer)"
depends=$(field Depends)
for package in libc6 libstdc++6; do
  echo "$depends" | tr ',' '\n' | sed 's/^ *//; s/ .*//' | grep -qxF "$package" ||
    fail "Depends does not name $package: $depends"
done
field Description | grep -q "Licence: MIT" || fail "the description does not state the licence"
echo "ok: kelmasn $version, maintained by The kelmasn developers, depends on $depends"

# The contents, as dpkg-deb -c lists them: "MODE OWNER SIZE DATE TIME ./PATH[ -> TARGET]".
dpkg-deb -c "$deb" >"$work/contents.txt"
paths=$(awk '{ sub(/^\.\//, "", $6); print $6 }' "$work/contents.txt")
entry() { # the listing line of PATH
  awk -v path="./$1" '$6 == path' "$work/contents.txt"
}
has_file() {
  entry "$1" | grep -q '^-' || fail "the package has no file $1"
}
lib=$prefix/$libdir
has_file "$lib/libkelmasn.so.$version"
entry "$lib/libkelmasn.so.1" | grep -q "^l.* -> libkelmasn.so.$version\$" ||
  fail "the package has no link $lib/libkelmasn.so.1 -> libkelmasn.so.$version"
has_file "$lib/pkgconfig/kelmasn.pc"
has_file "$lib/cmake/kelmasn/kelmasnConfig.cmake"
has_file "$prefix/share/doc/kelmasn/copyright"
has_file "$prefix/share/kelmasn/kelmasn.asn"

# Exactly the headers of the committed list, flat, the generated ones ("generated: PATH") too.
expected_headers=$(grep -v '^#' "$source_dir/src/installed-headers.txt" | sed 's/^generated: *//' |
  xargs -n1 basename | sort)
echo "$expected_headers" | grep -qx kelmasn_version.h || fail "the list lacks kelmasn_version.h"
packaged_headers=$(echo "$paths" | sed -n "s|^$prefix/include/kelm/\\(.\\+\\)|\\1|p" | sort)
[ "$packaged_headers" = "$expected_headers" ] || fail "packaged headers:
$packaged_headers
expected:
$expected_headers"
echo "ok: the library and its link, $(echo "$packaged_headers" | wc -l) headers, pkg-config file, CMake package, licence"

# No test program, benchmark, fuzz target or consumer of the suite.
if echo "$paths" | grep -E '(^|/)(kelmasn_tests|kelmasn_bench|fuzz_[a-z_]+|consumer_[a-z]+)$'; then
  fail "the package holds test programs or benchmarks"
fi
echo "ok: no test program or benchmark"

# The files themselves: the licence, the library's SONAME and exports, and no path of the build
# machine anywhere (the binaries carry no debug information that would name the sources).
root=$work/root
dpkg-deb -x "$deb" "$root"
dpkg-deb -e "$deb" "$work/control"
cmp -s "$source_dir/LICENSE" "$root/$prefix/share/doc/kelmasn/copyright" ||
  fail "share/doc/kelmasn/copyright is not the LICENSE file"
cmp -s "$source_dir/asn1/kelmasn.asn" "$root/$prefix/share/kelmasn/kelmasn.asn" ||
  fail "share/kelmasn/kelmasn.asn is not asn1/kelmasn.asn"
library=$root/$lib/libkelmasn.so.$version
readelf -d "$library" | grep -q 'Library soname: \[libkelmasn\.so\.1\]' ||
  fail "the packaged library's SONAME is not libkelmasn.so.1"
nm -D --defined-only "$library" | awk '{ sub(/@.*/, "", $3); if ($3 != "KELMASN_1") print $3 }' |
  LC_ALL=C sort >"$work/exported.txt"
grep -v '^#' "$source_dir/src/kelmasn.symbols" | LC_ALL=C sort >"$work/committed.txt"
diff "$work/committed.txt" "$work/exported.txt" >"$work/symbols.diff" ||
  fail "the packaged library's exports differ from src/kelmasn.symbols: $(cat "$work/symbols.diff")"
echo "ok: the packaged library exports exactly the committed symbols"
if [ -z "$sanitize" ]; then
  if grep -rlF -e "$source_dir" -e "$build_dir" "$root" "$work/control"; then
    fail "the package names the source or build tree"
  fi
  echo "ok: no path of the build machine in the package"
else
  if grep -rlIF -e "$source_dir" -e "$build_dir" "$root" "$work/control"; then
    fail "the package's text files name the source or build tree"
  fi
  echo "ok: no path of the build machine in the package's text files (binaries built with $sanitize)"
fi
