#!/usr/bin/env bash
# Installs a kelmasn build into a fresh prefix and checks the installed tree the way a caller
# meets it: the libraries with their SONAME and links, exactly the public headers, and a program
# built against the tree once with pkg-config and the plain compiler and once through
# find_package(kelmasn) in a CMake project of its own. Both programs must print the expected
# text, which ends with the version of the library they run with and of the headers they were
# compiled against.
#
# usage: check-install.sh SOURCE_DIR BUILD_DIR WORK_DIR CXX GENERATOR VERSION
set -euo pipefail

if [ $# -ne 7 ]; then
  echo "usage: $0 SOURCE_DIR BUILD_DIR WORK_DIR CXX GENERATOR VERSION CC" >&2
  exit 2
fi
source_dir=$1 build_dir=$2 work=$3 cxx=$4 generator=$5 version=$6 cc=$7
prefix=$work/prefix
consumer_src=$source_dir/tests/consumer

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

expected_output="length 256, definite 1, 0 bytes left
buffer holds 5 bytes: 04 6B 65 6C 6D
library $version, headers $version"

check_output() { # name, program
  local got
  got=$("$2") || fail "$1 exited with status $?"
  [ "$got" = "$expected_output" ] || fail "$1 printed:
$got
instead of:
$expected_output"
  echo "ok: $1 prints the expected text"
}

needs_shared_library() { # name, program, expected (yes or no)
  local needed=no
  readelf -d "$2" | grep -q 'Shared library: \[libkelmasn\.so\.1\]' && needed=yes
  [ "$needed" = "$3" ] || fail "$1: needs libkelmasn.so.1: $needed, expected $3"
}

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build_dir" --prefix "$prefix" >"$work/install.log" ||
  fail "cmake --install failed: $(cat "$work/install.log")"

# The libraries, wherever the build put its library folder.
pc_file=$(find "$prefix" -name kelmasn.pc -path '*/pkgconfig/*')
[ -n "$pc_file" ] || fail "no kelmasn.pc installed"
libdir=$(dirname "$(dirname "$pc_file")")
real=$libdir/libkelmasn.so.$version
[ -f "$real" ] && [ ! -L "$real" ] || fail "missing $real"
[ "$(readlink "$libdir/libkelmasn.so.1")" = "libkelmasn.so.$version" ] ||
  fail "libkelmasn.so.1 does not link to libkelmasn.so.$version"
[ "$(readlink "$libdir/libkelmasn.so")" = "libkelmasn.so.1" ] ||
  fail "libkelmasn.so does not link to libkelmasn.so.1"
readelf -d "$real" | grep -q 'Library soname: \[libkelmasn\.so\.1\]' || fail "SONAME is not libkelmasn.so.1"
[ -f "$libdir/libkelmasn.a" ] || fail "missing libkelmasn.a"
for f in kelmasnConfig.cmake kelmasnConfigVersion.cmake kelmasnTargets.cmake; do
  [ -f "$libdir/cmake/kelmasn/$f" ] || fail "missing lib/cmake/kelmasn/$f"
done
echo "ok: shared library with SONAME and links, static library, CMake package, pkg-config file"

# The records' ASN.1 module, for decoders in other languages, as the source tree has it.
cmp -s "$source_dir/asn1/kelmasn.asn" "$prefix/share/kelmasn/kelmasn.asn" ||
  fail "share/kelmasn/kelmasn.asn is missing or not asn1/kelmasn.asn"
echo "ok: the records' ASN.1 module"

# Exactly the headers of the committed list, flat: those of the source tree and those the build
# generates ("generated: PATH").
expected_headers=$(grep -v '^#' "$source_dir/src/installed-headers.txt" | sed 's/^generated: *//' |
  xargs -n1 basename | sort)
installed_headers=$(cd "$prefix/include/kelm" && ls | sort)
[ "$installed_headers" = "$expected_headers" ] || fail "installed headers:
$installed_headers
expected:
$expected_headers"
echo "ok: $(echo "$installed_headers" | wc -l) headers in include/kelm"

# The generated version header carries the version the build was configured with.
grep -qx "#define KELMASN_VERSION_STRING \"$version\"" "$prefix/include/kelm/kelmasn_version.h" ||
  fail "kelmasn_version.h does not define KELMASN_VERSION_STRING as \"$version\""
echo "ok: kelmasn_version.h gives version $version"

# Each installed header compiles on its own from the prefix: none reaches a header that is not
# installed.
for header in $installed_headers; do
  echo "#include <kelm/$header>" |
    "$cxx" -std=c++17 -fsyntax-only -Wall -Wextra -Werror -I"$prefix/include" -x c++ - ||
    fail "installed header $header does not compile on its own"
done
echo "ok: every installed header compiles alone"

# The package files must not point back into the source or build tree.
if grep -rlF -e "$source_dir" -e "$build_dir" "$libdir/pkgconfig" "$libdir/cmake"; then
  fail "installed package files name the source or build tree"
fi

# pkg-config and the plain compiler, seeing only this prefix.
export PKG_CONFIG_LIBDIR=$libdir/pkgconfig
unset PKG_CONFIG_PATH
[ "$(pkg-config --modversion kelmasn)" = "$version" ] || fail "pkg-config reports another version"
# shellcheck disable=SC2046 # the flags are meant to split into words
"$cxx" -std=c++17 -Wall -Wextra -Werror "$consumer_src/consumer.cpp" -o "$work/consumer_pkgconfig" \
  $(pkg-config --cflags --libs kelmasn) -Wl,-rpath,"$(pkg-config --variable=libdir kelmasn)" ||
  fail "the consumer does not build with pkg-config"
needs_shared_library "pkg-config consumer" "$work/consumer_pkgconfig" yes
check_output "pkg-config consumer" "$work/consumer_pkgconfig"

# A C caller, with pkg-config and the C compiler: 35 bytes are the header and the attribute list
# SEQUENCE { SEQUENCE OF { SEQUENCE { "groups", SEQUENCE OF { SEQUENCE { 1, "admins", ''H } } } } }.
# shellcheck disable=SC2046 # the flags are meant to split into words
"$cc" -std=c11 -Wall -Wextra -Werror "$consumer_src/consumer_c.c" -o "$work/consumer_c" \
  $(pkg-config --cflags --libs kelmasn) -Wl,-rpath,"$(pkg-config --variable=libdir kelmasn)" ||
  fail "the C consumer does not build with pkg-config"
needs_shared_library "C consumer" "$work/consumer_c" yes
c_expected="attrlist_s_t encoded in 35 bytes
groups = admins"
c_got=$("$work/consumer_c") || fail "the C consumer exited with status $?"
[ "$c_got" = "$c_expected" ] || fail "the C consumer printed:
$c_got
instead of:
$c_expected"
echo "ok: C consumer prints the expected text"

# A CMake project with find_package(kelmasn), searching this prefix only.
cmake -S "$consumer_src" -B "$work/cmake-build" -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >"$work/configure.log" 2>&1 ||
  fail "the consumer project does not configure: $(cat "$work/configure.log")"
found_dir=$(sed -n 's/^kelmasn_DIR:PATH=//p' "$work/cmake-build/CMakeCache.txt")
[ "$found_dir" = "$libdir/cmake/kelmasn" ] || fail "find_package used $found_dir"
cmake --build "$work/cmake-build" >"$work/build.log" 2>&1 ||
  fail "the consumer project does not build: $(cat "$work/build.log")"
needs_shared_library "find_package consumer (kelmasn::kelmasn)" "$work/cmake-build/consumer_shared" yes
needs_shared_library "find_package consumer (kelmasn::kelmasn_static)" \
  "$work/cmake-build/consumer_static" no
check_output "find_package consumer (kelmasn::kelmasn)" "$work/cmake-build/consumer_shared"
check_output "find_package consumer (kelmasn::kelmasn_static)" "$work/cmake-build/consumer_static"
