#!/usr/bin/env bash
# The library's main job on a real drawing: builds the strokeset tool (release), imports the
# SVG examples/two_layers_a4.svg (400 lines on an A4 page, two layers), optimizes it, draws it
# before and after as SVG with the pen-up travel as dashed lines, and prints what the optimizer
# did. On a fresh Debian 12 machine it first installs what is missing. Everything it writes
# goes to build/demo/; scripts/demo-picture.sh turns the pictures into docs/demo.png.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
dir=${LIBSTROKESET_BUILD_ROOT:-build}/demo
build_strokeset "$dir"

printf '\n== strokeset import examples/two_layers_a4.svg %s ==\n' "$dir/drawing.stk"
"$strokeset" import examples/two_layers_a4.svg "$dir/drawing.stk"
"$strokeset" info "$dir/drawing.stk"
"$strokeset" render "$dir/drawing.stk" "$dir/before.svg" --travel

printf '\n== strokeset optimize %s %s ==\n' "$dir/drawing.stk" "$dir/optimized.stk"
"$strokeset" optimize "$dir/drawing.stk" "$dir/optimized.stk"
"$strokeset" render "$dir/optimized.stk" "$dir/after.svg" --travel

printf '\n== strokeset export %s %s ==\n' "$dir/optimized.stk" "$dir/optimized.svg"
"$strokeset" export "$dir/optimized.stk" "$dir/optimized.svg"

printf '\nPictures, pen-up travel dashed: %s and %s\n' "$dir/before.svg" "$dir/after.svg"
printf 'The optimized drawing as SVG for plotting: %s\n' "$dir/optimized.svg"
