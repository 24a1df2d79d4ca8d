#!/usr/bin/env bash
# From an SVG to a machine file in one command: builds the strokeset tool (release) if needed,
# imports the SVG (millimetres on the page, a pen per layer), optimizes it with each pen drawn
# once, and exports it for the machine that OUT's extension and the profile name.
# Usage: scripts/plot.sh IN.svg OUT.gcode|OUT.hpgl [PROFILE] [export options...]
# PROFILE is a built-in name (gcode-servo, gcode-z, gcode-laser, hpgl-plotter, hpgl-cutter) or
# a TOML file; without it, gcode-servo or hpgl-plotter. On a fresh Debian 12 machine it first
# installs what is missing.
set -euo pipefail
if [ $# -lt 2 ]; then
    sed -n '2,8p' "$0" | sed 's/^# \{0,1\}//' >&2
    exit 2
fi
input=$(realpath "$1")
output=$(realpath -m "$2")
shift 2
profile=()
if [ $# -gt 0 ] && [ "${1#-}" = "$1" ]; then
    profile=(--profile "$1")
    shift
fi
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
dir=${LIBSTROKESET_BUILD_ROOT:-build}/plot
build_strokeset "$dir"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$strokeset" import "$input" "$work/drawing.stk" >/dev/null
"$strokeset" optimize "$work/drawing.stk" "$work/optimized.stk" --pens-together >/dev/null
"$strokeset" export "$work/optimized.stk" "$output" "${profile[@]}" "$@"
printf 'Written: %s\n' "$output"
