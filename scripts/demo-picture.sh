#!/usr/bin/env bash
# Makes docs/demo.png from the pictures of scripts/demo.sh (run it first): before and after
# side by side on white, each with its caption, rendered with rsvg-convert. Other pictures
# give their folder, captions and output: demo-picture.sh DIR BEFORE-CAPTION AFTER-CAPTION OUT.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages librsvg2-bin

dir=${1:-${LIBSTROKESET_BUILD_ROOT:-build}/demo}
before_caption=${2:-before: as imported}
after_caption=${3:-after: strokeset optimize}
output=${4:-docs/demo.png}
for picture in before after; do
    [ -f "$dir/$picture.svg" ] || { echo "No $dir/$picture.svg: run scripts/demo.sh first" >&2; exit 1; }
done

# Each picture goes in as a nested svg of 600 x 600 (its own viewBox keeps its proportions).
inner() {
    sed -e '/^<?xml/d' \
        -e "/^<svg /s/ width=\"[0-9]*\" height=\"[0-9]*\"/ x=\"$1\" y=\"40\" width=\"600\" height=\"600\"/" "$2"
}
{
    echo '<svg xmlns="http://www.w3.org/2000/svg" width="1220" height="650">'
    echo '<rect width="1220" height="650" fill="white"/>'
    echo '<g font-family="sans-serif" font-size="20" text-anchor="middle">'
    echo "<text x=\"305\" y=\"28\">$before_caption</text>"
    echo "<text x=\"915\" y=\"28\">$after_caption</text></g>"
    inner 5 "$dir/before.svg"
    inner 615 "$dir/after.svg"
    echo '</svg>'
} >"$dir/demo.svg"
rsvg-convert "$dir/demo.svg" -o "$output"
echo "Wrote $output"
