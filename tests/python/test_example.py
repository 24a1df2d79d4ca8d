"""The Python example in examples/ runs as the README shows and writes what it says."""

import os
import subprocess
import sys

from conftest import A4_SVG, ROOT

import strokeset


def run_example(target):
    environment = dict(os.environ, PYTHONWARNINGS="ignore")
    result = subprocess.run([sys.executable, str(ROOT / "examples" / "svg_to_machine.py"),
                             str(A4_SVG), str(target)], capture_output=True, text=True,
                            env=environment, timeout=120)
    assert result.returncode == 0, result.stderr
    return result.stdout.splitlines()


def test_example_writes_gcode_and_svg_that_read_back(tmp_path):
    summary, machine = run_example(tmp_path / "a4.gcode")
    assert summary.startswith("400 paths, pen-up travel 51972 -> ")
    before, after = summary.split("travel ")[1].split(" mm")[0].split(" -> ")
    assert float(after) < 0.1 * float(before)
    assert machine.startswith("gcode-servo: 400 pen lifts, 2 tool changes")
    gcode = (tmp_path / "a4.gcode").read_text()
    assert "G21" in gcode and gcode.count("G1 ") >= 400

    run_example(tmp_path / "a4.svg")
    again = strokeset.Drawing.read_svg(tmp_path / "a4.svg")
    assert again.info()["lines"] == 400
