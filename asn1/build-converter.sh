#!/usr/bin/env bash
# Builds the converter of the records' module: asn1c compiles the module into C types and its
# sample converter (BER, DER and XER both ways), and the C compiler builds them into one program
# that takes the type with -p TYPE. asn1c's generated C is built with its own, relaxed flags: its
# warnings are not the project's to fix.
#
# build-converter.sh ASN1C COMPILER MODULE WORK_FOLDER OUTPUT
set -euo pipefail
asn1c=$1
compiler=$2
module=$3
work=$4
output=$5
rm -rf "$work"
mkdir -p "$work"
cd "$work"
if ! "$asn1c" -fcompound-names -pdu=all "$module" >asn1c.log 2>&1; then
  cat asn1c.log >&2
  exit 1
fi
# -DPDU names the type the converter takes without -p; -DASN_PDU_COLLECTION lets -p pick any.
"$compiler" -std=gnu11 -O1 -w -DPDU=IntValue -DASN_PDU_COLLECTION -I. -o "$output" ./*.c
