#!/usr/bin/env bash
# The library's main job on the shipped sample drawing: builds the strokeset tool (release),
# optimizes examples/sample.stk, draws it before and after as SVG with the pen-up travel as
# dashed lines, and prints what the optimizer did. On a fresh Debian 12 machine it first
# installs what is missing. Everything it writes goes to build/demo/.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages cmake make g++ libeigen3-dev libcli11-dev libpugixml-dev

dir=${LIBSTROKESET_BUILD_ROOT:-build}/demo
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DLIBSTROKESET_BUILD_TOOLS=ON \
    -DLIBSTROKESET_BUILD_TESTS=OFF -DLIBSTROKESET_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$dir" -j "$(nproc)" --target strokeset >/dev/null
strokeset=$dir/tools/strokeset

printf '\n== The sample drawing ==\n'
"$strokeset" info examples/sample.stk
"$strokeset" render examples/sample.stk "$dir/before.svg" --travel

printf '\n== strokeset optimize examples/sample.stk %s ==\n' "$dir/optimized.stk"
"$strokeset" optimize examples/sample.stk "$dir/optimized.stk"
"$strokeset" render "$dir/optimized.stk" "$dir/after.svg" --travel

printf '\nPictures, pen-up travel dashed: %s and %s\n' "$dir/before.svg" "$dir/after.svg"
