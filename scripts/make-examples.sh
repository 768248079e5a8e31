#!/usr/bin/env bash
# Writes examples/der/<record>.der, the buffer of every record type's JSON example
# (examples/json/<record>.json), with the kelmasn tool of a build (default: build/default).
# The suite checks that the committed buffers are what the tool makes of the examples.
set -euo pipefail
cd "$(dirname "$0")/.."
tool=${1:-build/default/kelmasn}
mkdir -p examples/der
for json in examples/json/*.json; do
  record=$(basename "$json" .json)
  "$tool" encode "$record" "$json" -o "examples/der/$record.der"
done
echo "wrote $(ls examples/der/*.der | wc -l) buffers to examples/der/"
