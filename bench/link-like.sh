#!/usr/bin/env bash
# link-like.sh PROGRAM OBJECT OUTPUT: links an object with all shared libraries of a program, needed
# or not.
set -eu
program=$1 object=$2 output=$3
folder=$(dirname "$(ldd "$program" | sed -n 's/.*=> \(.*liblog[^ ]*\) .*/\1/p')")
mapfile -t libraries < <(readelf -d "$program" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/-l:\1/p')
"${CXX:-g++}" "$object" -o "$output" -L"$folder" -Wl,-rpath,"$folder" -Wl,--no-as-needed \
    "${libraries[@]}"
