import re
import warnings

import numpy as np
import pytest
import strokeset
from conftest import A4_SVG, DRAWINGS, ROOT, SAMPLE, SVGS, TINY, quiet, stk_words
from strokeset import Drawing


@pytest.fixture(scope="module")
def a4_stk(tool):
    out = tool.output(".stk")
    tool.run("import", A4_SVG, out)
    return out


@pytest.mark.parametrize("path, options, flags", [
    (A4_SVG, {}, []),
    (SVGS / "all_shapes.svg", {}, []),
    (SVGS / "multilayer_named_layers.svg", {"pens": "none"}, ["--pens", "none"]),
    (SVGS / "300_beziers.svg", {"tolerance": 0.1, "units": "user", "pens": "stroke"},
     ["--tolerance", "0.1", "--units", "user", "--pens", "stroke"]),
], ids=lambda c: getattr(c, "name", None))
def test_svg_import_matches_the_tool(path, options, flags, tool):
    out = tool.output(".stk")
    tool.run("import", path, out, *flags)
    for d in (quiet(Drawing.read_svg, path, **options),
              quiet(Drawing.from_svg, path.read_text(encoding="utf-8"), **options)):
        np.testing.assert_array_equal(d.serialize()[0], stk_words(out))


def test_svg_problems_are_reported(tmp_path):
    with pytest.warns(UserWarning, match="text"):
        assert len(Drawing.read_svg(SVGS / "text_element.svg")) == 0
    with pytest.raises(ValueError):
        Drawing.from_svg("<not svg")
    with pytest.raises(OSError):
        Drawing.read_svg(tmp_path / "missing.svg")


def test_svg_export_matches_the_tool_and_reads_back(tool, tmp_path):
    d = Drawing.read_stk(SAMPLE)
    for units in ("mm", "user"):
        out = tool.output(".svg")
        tool.run("export", SAMPLE, out, "--units", units)
        expected = out.read_text(encoding="utf-8")
        assert d.to_svg(units) == expected
        d.write_svg(tmp_path / "ours.svg", units=units)
        assert (tmp_path / "ours.svg").read_text(encoding="utf-8") == expected
    # Without records or z, an export read back in user units is the same drawing.
    a4 = quiet(Drawing.read_svg, A4_SVG)
    back = quiet(Drawing.from_svg, a4.to_svg("user"), units="user")
    np.testing.assert_array_equal(back.serialize()[0], a4.serialize()[0])


def test_device_profiles_are_the_tools(tool):
    listed = re.search(r"built-in name \(([^)]*)\)", tool.run("info", "--help")).group(1)
    assert strokeset.device_profiles() == [name.strip() for name in listed.split(",")]
    with pytest.raises(ValueError):
        Drawing.from_words(TINY).to_machine("no-such-profile")
    with pytest.raises(ValueError):
        Drawing.from_words(TINY).info(profile="no-such-profile")


@pytest.mark.parametrize("profile", strokeset.device_profiles())
def test_machine_export_matches_the_tool(profile, a4_stk, tool, tmp_path):
    out = tool.output(".hpgl" if profile.startswith("hpgl") else ".gcode")
    tool.run("export", a4_stk, out, "--profile", profile)
    expected = out.read_text(encoding="utf-8")
    d = Drawing.read_stk(a4_stk)
    with warnings.catch_warnings():
        warnings.simplefilter("error")  # the page fits every bed
        assert d.to_machine(profile) == expected
        d.write_machine(tmp_path / "ours", profile)
    assert (tmp_path / "ours").read_text(encoding="utf-8") == expected


def test_machine_profile_files_and_overrides(a4_stk, tool):
    d = Drawing.read_stk(a4_stk)
    profile = ROOT / "profiles" / "gcode-z.toml"
    out = tool.output(".gcode")
    tool.run("export", a4_stk, out, "--profile", profile, "--set", "draw_feed=1234")
    expected = out.read_text(encoding="utf-8")
    assert d.to_machine(str(profile), {"draw_feed": 1234}) == expected
    assert d.to_machine(str(profile), ["draw_feed=1234"]) == expected
    assert d.to_machine(str(profile)) != expected


def test_machine_export_warnings(tool):
    out = tool.output(".gcode")
    tool.run("export", DRAWINGS / "multi_skull.stk", out)
    d = Drawing.read_stk(DRAWINGS / "multi_skull.stk")
    with pytest.warns(UserWarning, match="outside the bed"):
        assert d.to_machine() == out.read_text(encoding="utf-8")
    with pytest.warns(UserWarning, match="unsupported"):
        Drawing.from_words(TINY).to_machine()
