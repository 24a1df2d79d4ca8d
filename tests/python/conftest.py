"""Shared helpers: the shipped drawings, a hand-encoded stream, and the strokeset tool, whose
output the bindings must reproduce."""

import os
import re
import subprocess
import warnings
from pathlib import Path

import numpy as np
import pytest

ROOT = Path(__file__).resolve().parents[2]
DRAWINGS = ROOT / "tests" / "data" / "drawings"
SVGS = ROOT / "tests" / "data" / "svg"
SAMPLE = ROOT / "examples" / "sample.stk"
A4_SVG = ROOT / "examples" / "two_layers_a4.svg"


def stk_words(path):
    """An Stk file's words, read without the library."""
    return np.fromfile(path, dtype=">u2").astype(np.uint16)


def point_record(opcode, x, y):
    return [opcode] + list(np.array([x, y], dtype=">f4").view(">u2"))


RECORD = [0x2100, 0x0007]  # an opcode the library does not know, two words long
# Indices 0-3: a sub-path of three lines; 4, 5: dots; 6: the record; 7, 8: a one-line path.
TINY = np.array(
    [0x240A, 1] + point_record(0x5416, 0, 0) + point_record(0x5417, 10, 0)
    + point_record(0x5417, 10, 10) + point_record(0x5417, 0, 10) + point_record(0x541A, 5, 5)
    + point_record(0x541A, 6, 6) + RECORD + [0x240A, 2] + point_record(0x5416, 20, 0)
    + point_record(0x5417, 30, 0), dtype=np.uint16)
TINY_POSITIONS = {0: (0, 0), 1: (10, 0), 2: (10, 10), 3: (0, 10), 4: (5, 5), 5: (6, 6),
                  7: (20, 0), 8: (30, 0)}


def quiet(call, *args, **kwargs):
    """Calls with the library's warnings (points off the bed, skipped SVG elements) muted."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return call(*args, **kwargs)


class Tool:
    def __init__(self, path, workdir):
        self.path, self.workdir, self.outputs = path, workdir, 0

    def run(self, *args):
        result = subprocess.run([self.path, *map(str, args)], capture_output=True, text=True,
                                timeout=120)
        assert result.returncode == 0, result.stderr
        return result.stdout

    def output(self, suffix):
        self.outputs += 1
        return self.workdir / f"out{self.outputs}{suffix}"

    @staticmethod
    def table(stdout):
        """The rows "Label   value" of a report, by label."""
        return dict(re.findall(r"^(\S.*?)\s{2,}(\S.*)$", stdout, re.MULTILINE))


@pytest.fixture(scope="session")
def tool(tmp_path_factory):
    path = os.environ.get("STROKESET_TOOL")
    if not path or not Path(path).is_file():
        pytest.skip("STROKESET_TOOL does not name the strokeset tool")
    return Tool(path, tmp_path_factory.mktemp("tool"))


@pytest.fixture
def tiny():
    import strokeset

    return strokeset.Drawing.from_words(TINY)
