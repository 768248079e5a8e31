#!/usr/bin/env bash
# Writes the kelmasn(1) manual page from the tool's own --help: the overview of `kelmasn --help`,
# then a section per subcommand from `kelmasn help SUBCOMMAND`.
# usage: make-man-page.sh TOOL OUTPUT
set -euo pipefail
tool=$1 output=$2
include=$(mktemp)
trap 'rm -f "$include"' EXIT
{
  echo "[SUBCOMMANDS]"
  for subcommand in der types decode encode inspect check canon diff craft sample str; do
    echo ".SS $subcommand"
    echo ".nf"
    "$tool" help "$subcommand" | sed -e 's/\\/\\\\/g' -e 's/^\./\\\&./'
    echo ".fi"
  done
  echo "[EXIT STATUS]"
  echo "0 success; 1 the input is refused (it does not decode, does not fit the type, cannot be"
  echo "read, or an output cannot be written); 2 a usage error."
} >"$include"
help2man --no-info --name="inspect and convert the ASN.1 encodings of access-control records" \
  --include="$include" --output="$output" "$tool"
