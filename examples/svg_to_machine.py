"""Reads an SVG, optimizes it for a pen plotter and writes G-code, HPGL or SVG.

Usage: python3 svg_to_machine.py IN.svg OUT.gcode|OUT.hpgl|OUT.svg
"""
import sys

import strokeset

source, target = sys.argv[1], sys.argv[2]
drawing = strokeset.Drawing.read_svg(source)  # millimetres, a pen per layer
cleanup = drawing.optimize(tolerance=0.05)  # duplicates, joins, short lines, order
travel = drawing.optimize_travel(pens_together=True, closed_starts=True, refine=True, time_limit=2)
print(f"{len(drawing)} paths, pen-up travel {cleanup.travel_before:.0f} -> {travel.travel_after:.0f} mm")
profile = "hpgl-plotter" if target.endswith((".hpgl", ".plt")) else "gcode-servo"
if target.endswith(".svg"):
    drawing.write_svg(target)
else:
    drawing.write_machine(target, profile=profile)
machine = drawing.info(profile=profile)["machine"]
print(f"{profile}: {machine['pen_lifts']} pen lifts, {machine['tool_changes']} tool changes, "
      f"about {machine['seconds'] / 60:.0f} min")
