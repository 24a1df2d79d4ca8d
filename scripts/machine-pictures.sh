#!/usr/bin/env bash
# Pictures of what the HPGL interpreter hp2xx draws from our HPGL beside our own rendering of
# the same drawing: each SVG is imported, optimized with each pen drawn once, exported with the
# hpgl-plotter profile, drawn by hp2xx (its SVG output) and by strokeset render, and the two go
# side by side into docs/machine-NAME.png. Prints the machine estimate of each.
# Usage: scripts/machine-pictures.sh [SVG...] (default: the example and voronoi)
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages librsvg2-bin hp2xx

dir=${LIBSTROKESET_BUILD_ROOT:-build}/plot
build_strokeset "$dir"
work=$dir/pictures
mkdir -p "$work"

# A picture as a nested svg of 560 x 560 at x (its own viewBox keeps its proportions).
inner() {
    sed -e '/^<?xml/d' \
        -e "0,/<svg /s/<svg \(.*\) width=\"[^\"]*\" height=\"[^\"]*\"/<svg \1 x=\"$1\" y=\"40\" width=\"560\" height=\"560\"/" \
        -e "0,/<svg /s/<svg width=\"[^\"]*\" height=\"[^\"]*\"/<svg x=\"$1\" y=\"40\" width=\"560\" height=\"560\"/" \
        "$2"
}

[ $# -gt 0 ] || set -- examples/two_layers_a4.svg tests/data/svg/voronoi.svg
for svg in "$@"; do
    name=$(basename "$svg" .svg)
    "$strokeset" import "$svg" "$work/$name.stk" >/dev/null
    "$strokeset" optimize "$work/$name.stk" "$work/$name-optimized.stk" --pens-together >/dev/null
    printf '\n== %s ==\n' "$name"
    "$strokeset" export "$work/$name-optimized.stk" "$work/$name.hpgl" --profile hpgl-plotter
    "$strokeset" render "$work/$name-optimized.stk" "$work/$name-ours.svg" >/dev/null
    hp2xx -q -m svg -t -f "$work/$name-hp2xx.svg" "$work/$name.hpgl"
    {
        echo '<svg xmlns="http://www.w3.org/2000/svg" width="1140" height="610">'
        echo '<rect width="1140" height="610" fill="white"/>'
        echo '<g font-family="sans-serif" font-size="20" text-anchor="middle">'
        echo "<text x=\"285\" y=\"28\">$name: strokeset render</text>"
        echo "<text x=\"855\" y=\"28\">$name.hpgl drawn by hp2xx</text></g>"
        inner 5 "$work/$name-ours.svg"
        inner 575 "$work/$name-hp2xx.svg"
        echo '</svg>'
    } >"$work/$name-pair.svg"
    rsvg-convert "$work/$name-pair.svg" -o "docs/machine-$name.png"
    echo "Wrote docs/machine-$name.png"
done
