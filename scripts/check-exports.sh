#!/usr/bin/env bash
# Lists the dynamic symbols of an installed LibStrokeset shared library and fails when one of
# them names a type of namespace LibStrokeset that no public header declares (an internal
# class leaking into the library's ABI). Usage: check-exports.sh LIBRARY [INCLUDE_DIR]
set -euo pipefail
library=$1
include=${2:-$(dirname "$0")/../include/LibStrokeset}

# The public types: classes, interfaces and enums of the installed headers, and the writer
# that the elements' public emitters take.
public=$( (grep -hoE '^(class|enum) +(LIBSTROKESET_API +)?[A-Z][A-Za-z0-9_]*' "$include"/*.h |
    awk '{print $NF}'; echo CSerializationState) | sort -u)

symbols=$(nm -D --defined-only -C "$library")
named=$(grep -oE 'LibStrokeset::[A-Za-z_][A-Za-z0-9_]*' <<<"$symbols" | cut -d: -f3 | sort -u)
leaked=$(comm -23 <(echo "$named") <(echo "$public"))

echo "$(wc -l <<<"$symbols") exported symbols in $library"
if [ -n "$leaked" ]; then
    echo "Internal names among the exported symbols:" >&2
    for name in $leaked; do
        grep -m 3 "LibStrokeset::$name\b" <<<"$symbols" | sed 's/^/  /' >&2
    done
    exit 1
fi
