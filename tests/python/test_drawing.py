import array
import gc
import json

import numpy as np
import pytest
import strokeset
from conftest import DRAWINGS, RECORD, SAMPLE, TINY, TINY_POSITIONS, move, stk_words
from strokeset import NO_INDEX, Drawing, OpcodeType

SHIPPED = [DRAWINGS / "500_polylines.stk", DRAWINGS / "7k_lines.stk",
           DRAWINGS / "multi_skull.stk", SAMPLE]
SHIFT = [[1, 0, 0, 5], [0, 1, 0, -2], [0, 0, 1, 0]]


def snake(key):
    return "".join("_" + c.lower() if c.isupper() else c for c in key)


def same_figures(ours, theirs, where):
    """Compares info() with the tool's JSON, which prints ten significant digits."""
    if isinstance(theirs, dict):
        for key, value in theirs.items():
            same_figures(ours[snake(key)], value, f"{where}.{snake(key)}")
    elif isinstance(theirs, list):
        assert len(ours) == len(theirs), where
        for i, (a, b) in enumerate(zip(ours, theirs)):
            same_figures(a, b, f"{where}[{i}]")
    elif isinstance(theirs, float):
        assert ours == pytest.approx(theirs, rel=1e-9, abs=1e-12), where
    else:
        assert ours == theirs, where


@pytest.mark.parametrize("path", SHIPPED, ids=lambda p: p.name)
def test_shipped_drawings_round_trip_and_match_tool_info(path, tool):
    words = stk_words(path)
    d = Drawing.read_stk(path)
    # The shipped files are canonical: the tool writes them back unchanged (checked here too).
    out = tool.output(".stk")
    tool.run("optimize", path, out, "--no-duplicates", "--no-reversed-duplicates", "--no-join",
             "--no-reversed-join", "--no-degenerate", "--no-close", "--no-ordering")
    written, index_map = d.serialize()
    assert written.dtype == np.uint16 and index_map.dtype == np.uint32
    np.testing.assert_array_equal(written, stk_words(out))
    np.testing.assert_array_equal(written, words)
    np.testing.assert_array_equal(index_map, np.arange(d.opcode_count))

    theirs = json.loads(tool.run("info", path, "--json", "--profile", "hpgl-plotter"))
    for key in ("file", "cutRecord"):
        del theirs[key]
    for key in ("profile", "error"):
        del theirs["machine"][key]
    same_figures(d.info(profile="hpgl-plotter"), theirs, "info")
    assert d.info().get("machine") is None
    assert d.points_count == theirs["points"] + theirs["unsupportedRecords"]
    assert d.pen_change_count == theirs["penChanges"]
    assert d.unsupported_count == theirs["unsupportedRecords"]


def test_iteration_covers_every_point_and_the_bounds():
    d = Drawing.read_stk(SAMPLE)
    info = d.info()
    items = list(d)
    assert len(items) == len(d) == sum(info["collections"].values())
    points, records = [], 0
    for item in items:
        assert isinstance(item, (strokeset.Path, strokeset.Dots, strokeset.Records))
        if isinstance(item, strokeset.Records):
            assert all(r.dtype == np.uint16 for r in item.records)
            assert item.indices.dtype == np.uint32 and len(item.indices) == len(item.records)
            records += len(item.records)
            continue
        n = len(item.points)
        assert item.points.shape == (n, 3) and item.points.dtype == np.float32
        assert item.pens.shape == (n,) and item.pens.dtype == np.uint16
        assert item.indices.shape == (n,) and item.indices.dtype == np.uint32
        if isinstance(item, strokeset.Path):
            assert item.pen == item.pens[0]
            assert item.closed == bool(np.array_equal(item.points[0], item.points[-1]))
        points.append(item.points)
    every = np.concatenate(points)
    assert len(every) == info["points"] and records == info["unsupported_records"] == 1
    assert len(every) + records == d.points_count
    low, high = d.bounds
    np.testing.assert_array_equal(low, every.min(axis=0))
    np.testing.assert_array_equal(high, every.max(axis=0))
    box = info["bounding_box"]
    np.testing.assert_allclose(box["min"], low, rtol=1e-6)
    np.testing.assert_allclose(box["max"], high, rtol=1e-6)
    assert Drawing().bounds is None


def test_tiny_drawing_reads_as_encoded(tiny):
    assert len(tiny) == 4 and tiny.opcode_count == 9 and tiny.points_count == 9
    assert tiny.unsupported_count == 1 and tiny.pen_change_count == 2
    np.testing.assert_array_equal(tiny.serialize()[0], TINY)
    kinds = [OpcodeType.SUBPATH_START] + [OpcodeType.SUBPATH_POINT] * 2 + [
        OpcodeType.SUBPATH_END, OpcodeType.DOT, OpcodeType.DOT, OpcodeType.UNSUPPORTED,
        OpcodeType.SUBPATH_START, OpcodeType.SUBPATH_END]
    np.testing.assert_array_equal(tiny.opcode_types(), kinds)
    assert [tiny.opcode_type(i) for i in range(9)] == kinds
    assert tiny.opcode_type(9) == OpcodeType.NONE
    for i, (x, y) in TINY_POSITIONS.items():
        np.testing.assert_array_equal(tiny.get_position(i), [x, y, 0])
    assert tiny.get_position(6) is None and tiny.get_position(9) is None
    assert tiny.get_pen(1) == 1 and tiny.get_pen(8) == 2 and tiny.get_pen(6) is None
    assert [tiny.collection_index_of_point(i) for i in (0, 3, 5, 6, 8)] == [0, 0, 1, 2, 3]
    assert tiny.collection_index_of_point(9) is None
    records = list(tiny)[2]
    assert [list(r) for r in records.records] == [RECORD] and list(records.indices) == [6]


def test_failed_commands_change_nothing(tiny):
    assert not tiny.set_position(9, (1, 2, 3))
    assert not tiny.set_position(6, (1, 2, 3))
    assert not tiny.delete_points([9])
    assert not tiny.delete_point(9)
    assert not tiny.change_pen([6], 3)
    assert not tiny.close_subpath(7)  # a single line cannot be closed
    assert not tiny.close_subpath(1)  # not a first point
    assert not tiny.split_subpath(0)
    assert not tiny.reverse_subpath(2)
    assert tiny.copy([9]) is None
    np.testing.assert_array_equal(tiny.serialize()[0], TINY)


def test_edits_by_index(tiny):
    assert tiny.set_position(2, np.array([1, 2, 3], dtype=np.float64))
    np.testing.assert_array_equal(tiny.get_position(2), [1, 2, 3])
    assert tiny.set_pen(2, 7) and tiny.get_pen(2) == 7
    assert tiny.change_pen([0, 1], 5) and tiny.get_pen(0) == tiny.get_pen(1) == 5
    before = {i: tiny.get_position(i) for i in TINY_POSITIONS}
    assert tiny.transform_points(np.array([7, 8], dtype=np.int64), SHIFT)
    for i, position in before.items():
        expected = position + ([5, -2, 0] if i in (7, 8) else 0)
        np.testing.assert_array_equal(tiny.get_position(i), expected)
    assert not tiny.transform(np.array(SHIFT, dtype=np.float32))  # the record has no position
    np.testing.assert_array_equal(tiny.get_position(0), [5, -2, 0])


def test_copy_paste_and_delete_renumber(tiny):
    words = tiny.copy([7, 8])
    assert words is not None and words.dtype == np.uint16
    assert tiny.paste(words)
    assert len(tiny) == 5 and tiny.opcode_count == 11
    np.testing.assert_array_equal(tiny.get_position(9), tiny.get_position(7))
    np.testing.assert_array_equal(tiny.get_position(10), tiny.get_position(8))
    assert tiny.delete_points([4, 1])
    kept = {i: tiny.get_position(i) for i in range(11) if i not in (1, 4, 6)}
    _, index_map = tiny.serialize()
    assert len(index_map) == 11 and tiny.opcode_count == 9
    assert index_map[1] == index_map[4] == NO_INDEX
    assert len(set(index_map[list(kept)])) == len(kept)  # survivors stay distinct
    for old, position in kept.items():
        np.testing.assert_array_equal(tiny.get_position(int(index_map[old])), position)


def test_subpath_commands(tiny):
    assert tiny.close_subpath(0)
    first = list(tiny)[0]
    assert first.closed and len(first.points) == 5
    np.testing.assert_array_equal(first.points[-1], first.points[0])

    d = Drawing.from_words(TINY)
    assert d.split_subpath(2) and len(d) == 5
    a, b = list(d)[:2]
    np.testing.assert_array_equal(a.points[:, :2], [(0, 0), (10, 0), (10, 10)])
    np.testing.assert_array_equal(b.points[:, :2], [(10, 10), (0, 10)])

    d = Drawing.from_words(TINY)
    assert d.open_subpath(1) and len(d) == 5
    a, b = list(d)[:2]
    assert list(a.indices) == [0, 1] and list(b.indices) == [2, 3]

    d = Drawing.from_words(TINY)
    assert d.reverse_subpath(0)
    path = list(d)[0]
    assert list(path.indices) == [3, 2, 1, 0]
    np.testing.assert_array_equal(path.points[:, :2], [(0, 10), (10, 10), (10, 0), (0, 0)])


def test_new_points_have_no_index_until_serialized():
    d = Drawing()
    assert d.new_line((0, 0, 0), (1, 2, 0)) and d.append_line((3, 3, 0))
    assert d.new_dot((4, 4, 4))
    assert d.opcode_types() is None
    path, dots = list(d)
    assert len(path.points) == 3 and (path.indices == NO_INDEX).all()
    assert (dots.indices == NO_INDEX).all()
    _, index_map = d.serialize()
    assert len(index_map) == 0 and d.opcode_count == 4
    np.testing.assert_array_equal(d.opcode_types(), [1, 2, 3, 4])
    np.testing.assert_array_equal(d.get_position(1), [1, 2, 0])
    np.testing.assert_array_equal(d.get_position(3), [4, 4, 4])


def test_arrays_are_the_callers_own():
    d = Drawing.read_stk(SAMPLE)
    words, index_map = d.serialize()
    first = next(iter(d))
    position = d.get_position(0)
    kept = [a.copy() for a in (words, index_map, first.points, first.indices, position)]
    for a in (words, first.points, position):
        a[:] = 0  # writing into them must not reach the drawing
    np.testing.assert_array_equal(d.serialize()[0], kept[0])
    np.testing.assert_array_equal(next(iter(d)).points, kept[2])
    np.testing.assert_array_equal(d.get_position(0), kept[4])
    words[:] = kept[0]
    first.points[:] = kept[2]
    position[:] = kept[4]
    d.set_position(0, (9, 9, 9))
    d.transform(SHIFT)
    del d
    gc.collect()
    filler = [Drawing.read_stk(SAMPLE).serialize() for _ in range(3)]  # reuses freed memory
    for a, b in zip((words, index_map, first.points, first.indices, position), kept):
        np.testing.assert_array_equal(a, b)
    assert filler


def test_words_are_copied_and_any_uint16_buffer_loads():
    words = stk_words(SAMPLE)
    source = words.copy()
    d = Drawing.from_words(source)
    source[:] = 0
    np.testing.assert_array_equal(d.serialize()[0], words)
    wide = np.zeros(2 * len(words), dtype=np.uint16)
    wide[::2] = words
    for strided in (wide[::2], words[::-1][::-1]):
        np.testing.assert_array_equal(Drawing.from_words(strided).serialize()[0], words)
    np.testing.assert_array_equal(Drawing(array.array("H", TINY)).serialize()[0], TINY)
    np.testing.assert_array_equal(Drawing([int(w) for w in TINY]).serialize()[0], TINY)


def test_bad_inputs_are_refused(tiny):
    for wrong in (TINY.astype(np.float64), TINY.astype(np.int64)):
        with pytest.raises(TypeError, match="uint16|16-bit"):
            Drawing.from_words(wrong)
    with pytest.raises(ValueError):
        Drawing.from_words(TINY.reshape(-1, 3)[:4])
    for values in ([0x240A, 70000], [0x240A, -1]):
        with pytest.raises((ValueError, TypeError), match="(?i)uint16|16-bit|65535|range"):
            Drawing.from_words(values)
    with pytest.raises(ValueError, match=r"3\s*[x×]\s*4"):
        tiny.transform_points([7], np.eye(3))
    for position in ((1, 2), (1, 2, 3, 4)):
        with pytest.raises(ValueError):
            tiny.set_position(0, position)
    with pytest.raises((ValueError, TypeError), match="(?i)negative|range|index|unsigned"):
        tiny.delete_points([-1])
    np.testing.assert_array_equal(tiny.serialize()[0], TINY)


def test_cut_records_and_unreadable_files(tmp_path, tool):
    whole = np.concatenate([TINY, move(1, 1)[:3]]).astype(np.uint16)  # a move-to cut short
    assert Drawing.cut_record_position(TINY) is None
    assert Drawing.cut_record_position(whole) == len(TINY)
    with pytest.raises(ValueError):
        Drawing.from_words(whole)
    np.testing.assert_array_equal(Drawing.from_words(whole, salvage=True).serialize()[0], TINY)
    d = Drawing()
    assert d.load_words(whole) is False
    np.testing.assert_array_equal(d.serialize()[0], TINY)
    path = tmp_path / "cut.stk"
    whole.astype(">u2").tofile(path)
    with pytest.raises(ValueError):
        Drawing.read_stk(path)
    info = json.loads(tool.run("info", path, "--json", "--salvage"))
    assert info["cutRecord"]["word"] == Drawing.cut_record_position(whole)
    salvaged = Drawing.read_stk(str(path), salvage=True)
    np.testing.assert_array_equal(salvaged.serialize()[0], TINY)
    with pytest.raises(OSError):
        Drawing.read_stk(tmp_path / "missing.stk")
    with pytest.raises(OSError):
        Drawing.from_words(TINY).write_stk(tmp_path / "no" / "such" / "folder.stk")
    index_map = Drawing.from_words(TINY).write_stk(tmp_path / "out.stk")
    np.testing.assert_array_equal(stk_words(tmp_path / "out.stk"), TINY)
    assert len(index_map) == 9
