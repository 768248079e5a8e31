#!/bin/bash
# Runs the C and the C++ layout printers and requires the same output, line for line, with a
# line for every record type the C++ side knows (it fails otherwise).
# Usage: compare-layouts.sh C_PRINTER CXX_PRINTER
set -u
c_layout=$("$1") || { echo "the C layout printer failed"; exit 1; }
cxx_layout=$("$2") || { echo "the C++ layout printer failed"; exit 1; }
if [ -z "$cxx_layout" ]; then
    echo "the C++ layout printer printed nothing"
    exit 1
fi
if [ "$c_layout" != "$cxx_layout" ]; then
    echo "C and C++ lay the records out differently (< C++, > C):"
    diff <(printf '%s\n' "$cxx_layout") <(printf '%s\n' "$c_layout")
    exit 1
fi
echo "$(printf '%s\n' "$c_layout" | grep -c ' align ') records and" \
     "$(printf '%s\n' "$c_layout" | grep -c ' offset ') fields laid out alike in C and C++"
