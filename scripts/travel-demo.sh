#!/usr/bin/env bash
# The travel switches on examples/sample.stk: optimize alone, then optimize with
# --pens-together --closed-starts --refine, each drawn with its pen-up travel dashed, side by
# side in docs/travel.png (through scripts/demo-picture.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
dir=${LIBSTROKESET_BUILD_ROOT:-build}/travel-demo
build_strokeset "$dir"

printf '\n== strokeset optimize examples/sample.stk ==\n'
"$strokeset" optimize examples/sample.stk "$dir/greedy.stk"
"$strokeset" render "$dir/greedy.stk" "$dir/before.svg" --travel

printf '\n== strokeset optimize examples/sample.stk --pens-together --closed-starts --refine 10 ==\n'
"$strokeset" optimize examples/sample.stk "$dir/travel.stk" --pens-together --closed-starts \
    --refine 10
"$strokeset" render "$dir/travel.stk" "$dir/after.svg" --travel

# Captions with the figures info gives: pen changes and pen-up travel.
figures() {
    "$strokeset" info "$1" | awk '/^Pen changes/ {c = $3} /^Pen-up travel/ {t = $3}
        END {printf "%d pen changes, travel %.0f", c, t}'
}
scripts/demo-picture.sh "$dir" "optimize: $(figures "$dir/greedy.stk")" \
    "+ the three switches: $(figures "$dir/travel.stk")" docs/travel.png
