"""Shared helpers: the shipped drawings, a hand-encoded stream, and the strokeset tool, whose
output is the reference the bindings must reproduce."""

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
    """An Stk file's words, read independently of the library."""
    return np.fromfile(path, dtype=">u2").astype(np.uint16)


def _point(x, y):
    return list(np.array([x, y], dtype=">f4").view(">u2").astype(np.uint16))


def pen(n):
    return [0x240A, n]


def move(x, y):
    return [0x5416] + _point(x, y)


def line(x, y):
    return [0x5417] + _point(x, y)


def dot(x, y):
    return [0x541A] + _point(x, y)


RECORD = [0x2100, 0x0007]  # an opcode the library does not know, two words long

# Indices 0-3: a sub-path of three lines; 4, 5: dots; 6: the record; 7, 8: a one-line path.
TINY = np.array(
    pen(1) + move(0, 0) + line(10, 0) + line(10, 10) + line(0, 10)
    + dot(5, 5) + dot(6, 6) + RECORD + pen(2) + move(20, 0) + line(30, 0),
    dtype=np.uint16,
)
TINY_POSITIONS = {0: (0, 0), 1: (10, 0), 2: (10, 10), 3: (0, 10), 4: (5, 5), 5: (6, 6),
                  7: (20, 0), 8: (30, 0)}


def quiet(call, *args, **kwargs):
    """Calls with the library's warnings (points outside a bed, skipped SVG elements) muted."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return call(*args, **kwargs)


class Tool:
    def __init__(self, path, workdir):
        self.path = path
        self.workdir = workdir
        self._count = 0

    def run(self, *args):
        result = subprocess.run([self.path, *map(str, args)], capture_output=True, text=True,
                                timeout=120)
        assert result.returncode == 0, result.stderr
        return result.stdout

    def output(self, suffix):
        self._count += 1
        return self.workdir / f"out{self._count}{suffix}"

    def table(self, stdout):
        """The rows "Label   value" of a command's report, by label."""
        rows = {}
        for text in stdout.splitlines():
            match = re.match(r"(\S.*?)\s{2,}(\S.*)$", text)
            if match:
                rows[match.group(1)] = match.group(2)
        return rows


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
