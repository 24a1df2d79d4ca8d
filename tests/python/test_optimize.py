import threading
import time

import numpy as np
import pytest
from conftest import DRAWINGS, SAMPLE, stk_words
from strokeset import NO_INDEX, Drawing


def before_after(text):
    """"12.5 -> 3.25  (-74.0%)" as (12.5, 3.25)."""
    return tuple(float(v) for v in text.split("  ")[0].split(" -> "))


def check_as_dict(results):
    as_dict = results.as_dict()
    assert {"changed", "aborted", "travel_before", "travel_after", "elapsed_ms"} <= set(as_dict)
    assert as_dict == {key: getattr(results, key) for key in as_dict}


def positions_by_index(d):
    """Every point's position at its opcode index, gathered by iterating."""
    items = [item for item in d if hasattr(item, "points")]
    table = np.full((d.opcode_count, 3), np.nan, dtype=np.float32)
    table[np.concatenate([i.indices for i in items])] = np.concatenate([i.points for i in items])
    return table


@pytest.mark.parametrize("path, options, flags", [
    (SAMPLE, {}, []),
    (DRAWINGS / "multi_skull.stk", {"tolerance": 0.2, "autojoin_reversed_paths": False},
     ["--tolerance", "0.2", "--no-reversed-join"]),
    (DRAWINGS / "7k_lines.stk",
     {"minimize_jump_distances": False, "remove_duplicated_reversed_paths": False},
     ["--no-ordering", "--no-reversed-duplicates"]),
], ids=["sample", "skull-no-reversed-join", "7k-no-ordering"])
def test_optimize_writes_what_the_tool_writes(path, options, flags, tool):
    out = tool.output(".stk")
    rows = tool.table(tool.run("optimize", path, out, *flags))
    d = Drawing.read_stk(path)
    old_count, collections = d.opcode_count, len(d)
    results = d.optimize(**options)
    words, index_map = d.serialize()
    np.testing.assert_array_equal(words, stk_words(out))
    assert index_map.dtype == np.uint32 and len(index_map) == old_count
    assert ((index_map < d.opcode_count) | (index_map == NO_INDEX)).all()

    assert results.changed and not results.aborted
    assert results.start_collection_size == collections
    assert (results.duplicated_paths, results.autojoined_paths, results.degenerated_lines,
            results.closed_subpaths, results.passes) == tuple(int(rows[label]) for label in (
                "Removed duplicated paths", "Joined paths", "Removed degenerate lines",
                "Closed paths", "Passes"))
    if flags[:1] == ["--no-ordering"]:
        assert results.travel_before == 0
    else:
        assert (results.travel_before, results.travel_after) == pytest.approx(
            before_after(rows["Travel in ordering phase"]), abs=1e-3)
    check_as_dict(results)


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
    assert (results.reversed_paths, results.rotated_paths, results.applied_moves) == (
        int(rows["Reversed paths"]), int(rows["Rotated closed paths"]),
        int(rows["Refinement moves"].split()[0]))
    check_as_dict(results)


def test_simplify_writes_what_the_tool_writes(tool):
    out = tool.output(".stk")
    tool.run("simplify", SAMPLE, out, "--tolerance", "1")
    d = Drawing.read_stk(SAMPLE)
    d.simplify(1)
    words = d.serialize()[0]
    assert len(words) < len(stk_words(SAMPLE))
    np.testing.assert_array_equal(words, stk_words(out))


def test_points_keep_their_positions_through_reordering():
    # The polylines neither meet nor nearly close: the run only reorders and reverses them,
    # and a reversed path's points keep their indices.
    d = Drawing.read_stk(DRAWINGS / "500_polylines.stk")
    before = positions_by_index(d)
    results = d.optimize()
    assert results.autojoined_paths == results.duplicated_paths == 0
    _, index_map = d.serialize()
    assert sorted(index_map) == list(range(d.opcode_count))
    np.testing.assert_array_equal(positions_by_index(d)[index_map], before)
    for old in (0, 1, 777, len(index_map) - 1):
        np.testing.assert_array_equal(d.get_position(int(index_map[old])), before[old])


class Stop(Exception):
    pass


def test_progress_reports_stages_and_its_exceptions_stop_the_run():
    calls = []
    d = Drawing.read_stk(SAMPLE)
    d.optimize(progress=lambda stage, percent: calls.append((stage, percent)))
    assert (4, 0.0) in calls  # the reordering announces its start
    assert all(type(s) is int and 1 <= s <= 4 and 0.0 <= p <= 100.0 for s, p in calls)
    calls.clear()
    d.optimize_travel(progress=lambda stage, percent: calls.append((stage, percent)))
    assert calls[0] == (1, 0.0)

    def stop(stage, percent):
        raise Stop(f"stage {stage}")

    d = Drawing.read_stk(SAMPLE)
    with pytest.raises(Stop, match="stage"):
        d.optimize(progress=stop)
    assert len(d) > 0 and not d.optimize().aborted  # still usable
    words = d.serialize()[0]
    with pytest.raises(Stop):
        d.optimize_travel(refine=True, progress=stop)
    np.testing.assert_array_equal(d.serialize()[0], words)  # stopped before any change


def random_lines(count, seed=1):
    """Words of `count` random lines in pen 1."""
    ends = np.random.default_rng(seed).uniform(0, 1000, (count, 2, 2)).astype(">f4")
    records = np.empty((count, 2, 5), dtype=np.uint16)
    records[:, :, 0] = [0x5416, 0x5417]
    records[:, :, 1:] = ends.view(">u2")
    return np.concatenate([[0x240A, 1], records.reshape(-1)]).astype(np.uint16)


def test_abort_from_another_thread_stops_a_long_run():
    d = Drawing.from_words(random_lines(200_000))  # refining this takes far beyond a second
    d.abort()
    assert not d.optimize(minimize_jump_distances=False).aborted  # a start clears the flag
    words = d.serialize()[0]
    started, outcome = threading.Event(), {}

    def run():
        try:
            outcome["results"] = d.optimize_travel(
                refine=True, time_limit=30, progress=lambda stage, percent: started.set())
        except BaseException as error:  # the main thread reports it
            outcome["error"] = error

    worker = threading.Thread(target=run, daemon=True)
    began = time.monotonic()
    worker.start()
    try:
        assert started.wait(30), "the run never reported progress"
        # The interpreter lock is free while the optimizer works, and the drawing is busy.
        with pytest.raises(RuntimeError):
            len(d)
        with pytest.raises(RuntimeError):
            d.serialize()
        time.sleep(0.3)
    finally:
        d.abort()
        worker.join(20)
    assert not worker.is_alive() and time.monotonic() - began < 20
    assert "error" not in outcome, outcome.get("error")
    results = outcome["results"]
    assert results.aborted and not results.changed and d.aborted
    np.testing.assert_array_equal(d.serialize()[0], words)
