#!/usr/bin/env bash
# Installs what building, testing, benchmarking and packaging kelmasn needs on a Debian machine
# (dpkg-dev gives dpkg-shlibdeps, which computes the Debian package's dependencies), and nothing
# when all of it is already there. Safe to run again.
set -euo pipefail
packages=(g++ cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          libcli11-dev nlohmann-json3-dev clang libclang-rt-14-dev binutils locales dpkg-dev
          help2man libb64-dev abigail-tools doxygen asn1c libfmt-dev python3)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
