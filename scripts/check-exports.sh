#!/usr/bin/env bash
# Lists the dynamic symbols of an installed LibStrokeset shared library and fails when one of
# them names something of the library's namespace that no public header declares (an internal
# class or function leaking into the library's ABI).
# Usage: check-exports.sh LIBRARY [INCLUDE_DIR [NAMESPACE]]
# (the core library: include/LibStrokeset and LibStrokeset; the formats library:
# include/LibStrokeset/Formats and LibStrokeset::Formats).
set -euo pipefail
library=$1
include=${2:-$(dirname "$0")/../include/LibStrokeset}
namespace=${3:-LibStrokeset}

# The public names: classes, structs, interfaces and enums of the installed headers, the
# functions they export, and the writer that the elements' public emitters take.
public=$( (grep -hoE '^(class|struct|enum( class)?) +([A-Z_]+_API +)?[A-Z][A-Za-z0-9_]*' \
    "$include"/*.h | awk '{print $NF}'
    cat "$include"/*.h | tr '\n' ' ' | grep -oE '[A-Z_]+_API [^;(){}]*\(' |
        grep -oE '[a-z][A-Za-z0-9_]*\($' | tr -d '('
    echo CSerializationState) | sort -u)

symbols=$(nm -D --defined-only -C "$library")
named=$(grep -oE "(^|[^:A-Za-z_])$namespace::[A-Za-z_][A-Za-z0-9_]*" <<<"$symbols" |
    sed "s/.*$namespace:://" | sort -u)
leaked=$(comm -23 <(echo "$named") <(echo "$public"))

echo "$(wc -l <<<"$symbols") exported symbols in $library"
if [ -n "$leaked" ]; then
    echo "Internal names among the exported symbols:" >&2
    for name in $leaked; do
        grep -m 3 "$namespace::$name\b" <<<"$symbols" | sed 's/^/  /' >&2
    done
    exit 1
fi
