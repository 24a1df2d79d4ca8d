import threading
import time

import numpy as np
import pytest
from conftest import DRAWINGS, SAMPLE, stk_words
from strokeset import NO_INDEX, Drawing

OPTIMIZE_FIELDS = {"changed", "aborted", "passes", "estimated_runs", "performed_runs",
                   "start_collection_size", "end_collection_size", "duplicated_paths",
                   "autojoined_paths", "degenerated_lines", "closed_subpaths", "travel_before",
                   "travel_after", "elapsed_ms"}
TRAVEL_FIELDS = {"changed", "aborted", "travel_before", "travel_after", "pen_changes_before",
                 "pen_changes_after", "reversed_paths", "rotated_paths", "applied_moves",
                 "refinement_timed_out", "elapsed_ms"}


class Stop(Exception):
    pass


def before_after(text):
    before, after = text.split("  ")[0].split(" -> ")
    return float(before), float(after)


def check_as_dict(results, fields):
    as_dict = results.as_dict()
    assert fields <= set(as_dict)
    assert as_dict == {key: getattr(results, key) for key in as_dict}


def check_index_map(index_map, old_count, new_count):
    assert index_map.dtype == np.uint32 and len(index_map) == old_count
    assert ((index_map < new_count) | (index_map == NO_INDEX)).all()


def positions_by_index(d):
    """Every point's position at its opcode index, gathered by iterating."""
    items = [item for item in d if hasattr(item, "points")]
    indices = np.concatenate([item.indices for item in items])
    points = np.concatenate([item.points for item in items])
    table = np.full((d.opcode_count, 3), np.nan, dtype=np.float32)
    table[indices] = points
    return table


def random_lines(count, seed=1):
    """A drawing of `count` random lines in one pen, as words."""
    rng = np.random.default_rng(seed)
    ends = rng.uniform(0, 1000, (count, 2, 2)).astype(">f4").view(">u2").astype(np.uint16)
    opcodes = np.tile(np.array([0x5416, 0x5417], dtype=np.uint16)[:, None], (count, 1, 1))
    records = np.concatenate([opcodes, ends.reshape(count, 2, 4)], axis=2).reshape(-1)
    return np.concatenate([[0x240A, 1], records]).astype(np.uint16)


OPTIMIZE_CASES = [
    (SAMPLE, {}, []),
    (DRAWINGS / "multi_skull.stk", {"tolerance": 0.2, "autojoin_reversed_paths": False},
     ["--tolerance", "0.2", "--no-reversed-join"]),
    (DRAWINGS / "7k_lines.stk",
     {"minimize_jump_distances": False, "remove_duplicated_reversed_paths": False},
     ["--no-ordering", "--no-reversed-duplicates"]),
]


@pytest.mark.parametrize("path, options, flags", OPTIMIZE_CASES,
                         ids=["sample", "skull-no-reversed-join", "7k-no-ordering"])
def test_optimize_writes_what_the_tool_writes(path, options, flags, tool):
    out = tool.output(".stk")
    rows = tool.table(tool.run("optimize", path, out, *flags))
    d = Drawing.read_stk(path)
    old_count, collections = d.opcode_count, len(d)
    results = d.optimize(**options)
    words, index_map = d.serialize()
    np.testing.assert_array_equal(words, stk_words(out))
    check_index_map(index_map, old_count, d.opcode_count)

    assert results.changed and not results.aborted
    assert results.start_collection_size == collections
    assert results.duplicated_paths == int(rows["Removed duplicated paths"])
    assert results.autojoined_paths == int(rows["Joined paths"])
    assert results.degenerated_lines == int(rows["Removed degenerate lines"])
    assert results.closed_subpaths == int(rows["Closed paths"])
    assert results.passes == int(rows["Passes"])
    if options.get("minimize_jump_distances", True):
        expected = before_after(rows["Travel in ordering phase"])
        assert (results.travel_before, results.travel_after) == pytest.approx(expected, abs=1e-3)
    else:
        assert results.travel_before == 0
    check_as_dict(results, OPTIMIZE_FIELDS)


def test_optimize_travel_writes_what_the_tool_writes(tool):
    out = tool.output(".stk")
    rows = tool.table(tool.run("optimize", SAMPLE, out, "--pens-together", "--closed-starts",
                               "--inner-first", "--refine", "20"))
    d = Drawing.read_stk(SAMPLE)
    d.optimize()
    results = d.optimize_travel(pens_together=True, closed_starts=True, inner_first=True,
                                refine=True, time_limit=20)
    np.testing.assert_array_equal(d.serialize()[0], stk_words(out))
    assert results.changed and not results.aborted and not results.refinement_timed_out
    assert (results.travel_before, results.travel_after) == pytest.approx(
        before_after(rows["Travel run"]), abs=1e-3)
    assert (results.pen_changes_before, results.pen_changes_after) == before_after(
        rows["Travel run pen changes"])
    assert results.reversed_paths == int(rows["Reversed paths"])
    assert results.rotated_paths == int(rows["Rotated closed paths"])
    assert results.applied_moves == int(rows["Refinement moves"].split()[0])
    check_as_dict(results, TRAVEL_FIELDS)


def test_points_keep_their_positions_through_reordering():
    # The polylines neither meet nor nearly close: the run only reorders and reverses them,
    # and reversing keeps every point's index on the point.
    d = Drawing.read_stk(DRAWINGS / "500_polylines.stk")
    before = positions_by_index(d)
    results = d.optimize()
    assert results.autojoined_paths == results.duplicated_paths == 0
    _, index_map = d.serialize()
    assert sorted(index_map) == list(range(d.opcode_count))
    after = positions_by_index(d)
    np.testing.assert_array_equal(after[index_map], before)
    for old in (0, 1, 777, len(index_map) - 1):
        np.testing.assert_array_equal(d.get_position(int(index_map[old])), before[old])


def test_progress_reports_stages_and_its_exceptions_stop_the_run():
    calls = []
    d = Drawing.read_stk(SAMPLE)
    d.optimize(progress=lambda stage, percent: calls.append((stage, percent)))
    assert (4, 0.0) in calls
    assert all(type(s) is int and 1 <= s <= 4 and 0.0 <= p <= 100.0 for s, p in calls)
    calls.clear()
    d.optimize_travel(progress=lambda stage, percent: calls.append((stage, percent)))
    assert calls[0] == (1, 0.0)

    def stop(stage, percent):
        raise Stop(f"stage {stage}")

    d = Drawing.read_stk(SAMPLE)
    with pytest.raises(Stop, match="stage"):
        d.optimize(progress=stop)
    assert len(d) > 0 and not d.optimize().aborted  # the drawing is still usable

    words = d.serialize()[0]
    with pytest.raises(Stop):
        d.optimize_travel(refine=True, progress=stop)
    np.testing.assert_array_equal(d.serialize()[0], words)  # stopped before any change


def test_abort_from_another_thread_stops_a_long_run():
    words = random_lines(200_000)
    d = Drawing.from_words(words)
    d.abort()
    assert not d.optimize(minimize_jump_distances=False).aborted  # a start clears the flag
    words = d.serialize()[0]

    started = threading.Event()
    outcome = {}

    def run():
        try:
            outcome["results"] = d.optimize_travel(
                refine=True, time_limit=30, progress=lambda stage, percent: started.set())
        except BaseException as error:  # reported by the main thread
            outcome["error"] = error

    worker = threading.Thread(target=run, daemon=True)
    began = time.monotonic()
    worker.start()
    try:
        assert started.wait(30), "the run never reported progress"
        # The main thread runs while the optimizer works, and finds the drawing busy.
        with pytest.raises(RuntimeError):
            len(d)
        with pytest.raises(RuntimeError):
            d.serialize()
        time.sleep(0.3)
    finally:
        d.abort()
        worker.join(20)
    assert not worker.is_alive()
    assert time.monotonic() - began < 20
    assert "error" not in outcome, outcome.get("error")
    results = outcome["results"]
    assert results.aborted and not results.changed and d.aborted
    np.testing.assert_array_equal(d.serialize()[0], words)
