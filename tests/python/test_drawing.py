import array
import gc
import json

import numpy as np
import pytest
import strokeset
from conftest import DRAWINGS, RECORD, SAMPLE, TINY, TINY_POSITIONS, stk_words
from strokeset import NO_INDEX, Drawing, OpcodeType as T

SHIFT = [[1, 0, 0, 5], [0, 1, 0, -2], [0, 0, 1, 0]]


def same_figures(ours, theirs, where="info"):
    """info() against the tool's JSON (camelCase keys, ten significant digits)."""
    if isinstance(theirs, dict):
        for key, value in theirs.items():
            key = "".join("_" + c.lower() if c.isupper() else c for c in key)
            same_figures(ours[key], value, f"{where}.{key}")
    elif isinstance(theirs, list):
        assert len(ours) == len(theirs), where
        for a, b in zip(ours, theirs):
            same_figures(a, b, where)
    elif isinstance(theirs, float):
        assert ours == pytest.approx(theirs, rel=1e-9, abs=1e-12), where
    else:
        assert ours == theirs, where


@pytest.mark.parametrize("path", [*sorted(DRAWINGS.glob("*.stk")), SAMPLE], ids=lambda p: p.name)
def test_shipped_drawings_round_trip_and_match_tool_info(path, tool):
    d = Drawing.read_stk(path)
    out = tool.output(".stk")  # every phase off: the tool only loads and writes
    tool.run("optimize", path, out, "--no-duplicates", "--no-reversed-duplicates", "--no-join",
             "--no-reversed-join", "--no-degenerate", "--no-close", "--no-ordering")
    words, index_map = d.serialize()
    assert words.dtype == np.uint16 and index_map.dtype == np.uint32
    np.testing.assert_array_equal(words, stk_words(out))
    np.testing.assert_array_equal(words, stk_words(path))
    np.testing.assert_array_equal(index_map, np.arange(d.opcode_count))

    theirs = json.loads(tool.run("info", path, "--json", "--profile", "hpgl-plotter"))
    del theirs["file"], theirs["cutRecord"]
    same_figures(d.info(profile="hpgl-plotter"), theirs)
    assert d.info().get("machine") is None
    assert d.points_count == theirs["points"] + theirs["unsupportedRecords"]
    assert (d.pen_change_count, d.unsupported_count) == (
        theirs["penChanges"], theirs["unsupportedRecords"])


def test_iteration_covers_every_point_and_the_bounds():
    d = Drawing.read_stk(SAMPLE)
    info, items = d.info(), list(d)
    assert len(items) == len(d) == sum(info["collections"].values())
    records = [item for item in items if isinstance(item, strokeset.Records)]
    assert sum(len(r.records) for r in records) == info["unsupported_records"] == 1
    assert all(r.indices.dtype == np.uint32 and r.records[0].dtype == np.uint16 for r in records)
    drawn = [item for item in items if not isinstance(item, strokeset.Records)]
    for item in drawn:
        assert isinstance(item, (strokeset.Path, strokeset.Dots))
        n = len(item.points)
        assert item.points.shape == (n, 3) and item.points.dtype == np.float32
        assert item.pens.shape == item.indices.shape == (n,)
        assert item.pens.dtype == np.uint16 and item.indices.dtype == np.uint32
        if isinstance(item, strokeset.Path):
            assert item.pen == item.pens[0]
            # A zero-length line or a there-and-back is not closed: that takes three lines.
            ends_meet = np.array_equal(item.points[0], item.points[-1])
            assert item.closed == (ends_meet and n >= 4)
    every = np.concatenate([item.points for item in drawn])
    assert len(every) == info["points"] == d.points_count - 1
    low, high = d.bounds
    np.testing.assert_array_equal(low, every.min(axis=0))
    np.testing.assert_array_equal(high, every.max(axis=0))
    assert (info["bounding_box"]["min"], info["bounding_box"]["max"]) == (low, high)
    assert Drawing().bounds is None


def test_tiny_drawing_reads_as_encoded_and_failures_change_nothing(tiny):
    assert (len(tiny), tiny.opcode_count, tiny.points_count) == (4, 9, 9)
    assert (tiny.unsupported_count, tiny.pen_change_count) == (1, 2)
    kinds = [T.SUBPATH_START, T.SUBPATH_POINT, T.SUBPATH_POINT, T.SUBPATH_END, T.DOT, T.DOT,
             T.UNSUPPORTED, T.SUBPATH_START, T.SUBPATH_END]
    np.testing.assert_array_equal(tiny.opcode_types(), kinds)
    assert [tiny.opcode_type(i) for i in range(10)] == kinds + [T.NONE]
    assert isinstance(tiny.opcode_type(0), T) and tiny.opcode_types().dtype == np.uint8
    for i, (x, y) in TINY_POSITIONS.items():
        np.testing.assert_array_equal(tiny.get_position(i), [x, y, 0])
    assert tiny.get_position(6) is None and tiny.get_position(9) is None
    assert (tiny.get_pen(1), tiny.get_pen(8), tiny.get_pen(6)) == (1, 2, None)
    assert [tiny.collection_index_of_point(i) for i in (0, 3, 5, 6, 8, 9)] == [0, 0, 1, 2, 3, None]
    record = list(tiny)[2]
    assert [list(r) for r in record.records] == [RECORD] and list(record.indices) == [6]

    assert not tiny.set_position(9, (1, 2, 3)) and not tiny.set_position(6, (1, 2, 3))
    assert not tiny.delete_points([9]) and not tiny.delete_point(9)
    assert not tiny.change_pen([6], 3)  # records have no pen
    assert not tiny.close_subpath(7) and not tiny.close_subpath(1)  # one line; not a start
    assert not tiny.split_subpath(0) and not tiny.reverse_subpath(2)
    assert tiny.copy([9]) is None
    np.testing.assert_array_equal(tiny.serialize()[0], TINY)


def test_edits_copy_paste_and_renumbering(tiny):
    assert tiny.set_position(2, np.array([1, 2, 3], dtype=np.float64))
    np.testing.assert_array_equal(tiny.get_position(2), [1, 2, 3])
    assert tiny.set_pen(2, 7) and tiny.get_pen(2) == 7
    assert tiny.change_pen([0, 1], 5) and tiny.get_pen(0) == tiny.get_pen(1) == 5
    before = {i: tiny.get_position(i) for i in TINY_POSITIONS}
    assert tiny.transform_points(np.array([7, 8], dtype=np.int64), SHIFT)
    for i, position in before.items():
        np.testing.assert_array_equal(tiny.get_position(i),
                                      position + ([5, -2, 0] if i in (7, 8) else 0))

    assert tiny.paste(tiny.copy([7, 8]))
    assert len(tiny) == 5 and tiny.opcode_count == 11
    np.testing.assert_array_equal(tiny.get_position(10), tiny.get_position(8))
    # A dot and a whole sub-path go; points inside a sub-path would renumber its end copies.
    assert tiny.delete_points([4, 7, 8]) and len(tiny) == 4
    kept = {i: tiny.get_position(i) for i in (0, 1, 2, 3, 5, 9, 10)}
    _, index_map = tiny.serialize()
    assert len(index_map) == 11 and tiny.opcode_count == 8
    assert index_map[4] == index_map[7] == index_map[8] == NO_INDEX
    assert len(set(index_map[list(kept)])) == len(kept)
    for old, position in kept.items():
        np.testing.assert_array_equal(tiny.get_position(int(index_map[old])), position)
    assert not tiny.transform(np.array(SHIFT, dtype=np.float32))  # a record stays unmapped
    np.testing.assert_array_equal(tiny.get_position(0), [5, -2, 0])


A, B = [(0, 0), (10, 0), (10, 10), (0, 10)], [(20, 0), (30, 0)]


@pytest.mark.parametrize("command, args, paths", [
    ("close_subpath", (0,), [A + A[:1], B]),
    ("split_subpath", (2,), [A[:3], A[2:], B]),
    ("open_subpath", (1,), [A[:2], A[2:], B]),
    ("reverse_subpath", (0,), [A[::-1], B]),
    ("join_subpath", (3, 7), [A[:3] + [(10, 5), (30, 0)]]),  # the ends meet half-way
    ("connect_subpath", (3, 7), [A + B]),
    ("insert_line_point", (1, (5, 5, 0)), [A[:2] + [(5, 5)] + A[2:], B]),
    ("prepend_line", (0, (-1, -1, 0)), [[(-1, -1)] + A, B]),
    ("append_line", ((9, 9, 0), 7), [A, B + [(9, 9)]]),
    ("insert_line", (3, (1, 1, 0), (2, 2, 0)), [A, [(1, 1), (2, 2)], B]),
])
def test_subpath_commands(tiny, command, args, paths):
    assert getattr(tiny, command)(*args)
    drawn = [item for item in tiny if isinstance(item, strokeset.Path)]
    assert [p.points[:, :2].tolist() for p in drawn] == [list(map(list, p)) for p in paths]
    assert len(tiny) == 2 + len(paths)
    assert drawn[0].closed == (command == "close_subpath")
    if command == "reverse_subpath":
        assert list(drawn[0].indices) == [3, 2, 1, 0]  # points keep their indices


def test_new_points_have_no_index_until_serialized():
    d = Drawing()
    assert d.new_line((0, 0, 0), (1, 2, 0)) and d.append_line((3, 3, 0)) and d.new_dot((4, 4, 4))
    assert d.opcode_types() is None
    assert all((item.indices == NO_INDEX).all() for item in d)
    assert [len(item.points) for item in d] == [3, 1]
    assert len(d.serialize()[1]) == 0 and d.opcode_count == 4
    np.testing.assert_array_equal(d.opcode_types(), [1, 2, 3, 4])
    np.testing.assert_array_equal(d.get_position(3), [4, 4, 4])


def test_arrays_are_the_callers_own():
    d = Drawing.read_stk(SAMPLE)
    words, index_map = d.serialize()
    first = next(iter(d))
    arrays = (words, index_map, first.points, first.indices, d.get_position(0))
    kept = [a.copy() for a in arrays]
    for a in arrays:
        a[:] = 0  # writing into them must not reach the drawing
    np.testing.assert_array_equal(d.serialize()[0], kept[0])
    np.testing.assert_array_equal(next(iter(d)).points, kept[2])
    np.testing.assert_array_equal(d.get_position(0), kept[4])
    for a, b in zip(arrays, kept):
        a[:] = b
    d.set_position(0, (9, 9, 9))
    d.transform(SHIFT)
    del d
    gc.collect()
    filler = [Drawing.read_stk(SAMPLE).serialize() for _ in range(3)]  # reuses freed memory
    for a, b in zip(arrays, kept):
        np.testing.assert_array_equal(a, b)
    assert len(filler) == 3


def test_words_are_copied_and_any_uint16_buffer_loads():
    words = stk_words(SAMPLE)
    source = words.copy()
    d = Drawing.from_words(source)
    source[:] = 0
    np.testing.assert_array_equal(d.serialize()[0], words)
    wide = np.zeros(2 * len(words), dtype=np.uint16)
    wide[::2] = words
    for strided in (wide[::2], words[::-1].copy()[::-1]):
        assert not strided.flags.c_contiguous
        np.testing.assert_array_equal(Drawing.from_words(strided).serialize()[0], words)
    for other in (array.array("H", TINY), [int(w) for w in TINY]):
        np.testing.assert_array_equal(Drawing(other).serialize()[0], TINY)


def test_bad_inputs_are_refused(tiny):
    for wrong in (TINY.astype(np.float64), TINY.astype(np.int64)):
        with pytest.raises(TypeError, match="uint16|16-bit"):
            Drawing.from_words(wrong)
    with pytest.raises(ValueError):
        Drawing.from_words(TINY[:12].reshape(4, 3))
    for values in ([0x240A, 70000], [0x240A, -1]):
        with pytest.raises((ValueError, TypeError), match="(?i)uint16|16-bit|65535|range"):
            Drawing.from_words(values)
    with pytest.raises(ValueError, match=r"3\s*[x×]\s*4"):
        tiny.transform_points([7], np.eye(3))
    for position in ((1, 2), (1, 2, 3, 4)):
        with pytest.raises(ValueError):
            tiny.set_position(0, position)
    with pytest.raises((ValueError, TypeError), match="(?i)negative|range|indic|index|outside"):
        tiny.delete_points([-1])
    np.testing.assert_array_equal(tiny.serialize()[0], TINY)


def test_cut_records_and_unreadable_files(tmp_path, tool):
    cut = np.concatenate([TINY, [0x5416, 0, 0]]).astype(np.uint16)  # a move-to cut short
    assert Drawing.cut_record_position(TINY) is None
    with pytest.raises(ValueError):
        Drawing.from_words(cut)
    np.testing.assert_array_equal(Drawing.from_words(cut, salvage=True).serialize()[0], TINY)
    d = Drawing()
    assert d.load_words(cut) is False
    np.testing.assert_array_equal(d.serialize()[0], TINY)
    path = tmp_path / "cut.stk"
    cut.astype(">u2").tofile(path)
    with pytest.raises(ValueError):
        Drawing.read_stk(path)
    theirs = json.loads(tool.run("info", path, "--json", "--salvage"))["cutRecord"]["word"]
    assert Drawing.cut_record_position(cut) == theirs == len(TINY)
    np.testing.assert_array_equal(Drawing.read_stk(str(path), salvage=True).serialize()[0], TINY)
    with pytest.raises(OSError):
        Drawing.read_stk(tmp_path / "missing.stk")
    with pytest.raises(OSError):
        d.write_stk(tmp_path / "no" / "such" / "folder.stk")
    assert len(d.write_stk(tmp_path / "out.stk")) == 9
    np.testing.assert_array_equal(stk_words(tmp_path / "out.stk"), TINY)
