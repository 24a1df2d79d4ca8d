"""Holds, edits and optimizes vector drawings for plotters, cutters and lasers.

A drawing is a stream of 16-bit words; its points are addressed by opcode index, the
ordinal of their record in the stream last loaded or serialized. Only ``serialize`` (and
the writers, which serialize) renumbers.
"""

from enum import IntEnum
from os import PathLike
from typing import Callable, Iterator, Mapping, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

Words = Union[npt.NDArray[np.uint16], Sequence[int], memoryview]
"""A 1-D buffer of 16-bit unsigned integers (NumPy uint16, array('H'), ...) or a sequence of
ints from 0 to 65535."""
Indices = Union[npt.NDArray[np.integer], Sequence[int]]
Point = Union[npt.NDArray[np.floating], Sequence[float]]
"""x, y, z."""
Matrix = Union[npt.NDArray[np.floating], Sequence[Sequence[float]]]
"""A 3x4 affine matrix: (x, y, z) becomes matrix @ (x, y, z, 1)."""
Progress = Callable[[int, float], object]
"""Called with (stage, percent), at most every 0.33 s."""
FileName = Union[str, PathLike[str]]

NO_INDEX: int
"""4294967295: the index of a point that has none yet, and "none" wherever an index is asked."""
NO_PEN: int
"""65535: the pen of a point drawn with the pen in force."""

class OpcodeType(IntEnum):
    """Kind of the element that holds an opcode index."""

    UNSUPPORTED = 0
    SUBPATH_START = 1
    SUBPATH_POINT = 2
    SUBPATH_END = 3
    DOT = 4
    NONE = 5

class Path:
    """A sub-path, as it was when the drawing was iterated (a copy)."""

    points: npt.NDArray[np.float32]
    """(n, 3): the first point and the end of every line."""
    pens: npt.NDArray[np.uint16]
    """(n,): the pen of each point."""
    indices: npt.NDArray[np.uint32]
    """(n,): the opcode index of each point (NO_INDEX for new points)."""
    def __len__(self) -> int:
        """Number of points."""
    @property
    def pen(self) -> int:
        """The pen of the first point."""
    @property
    def closed(self) -> bool:
        """Whether the sub-path is closed: at least three lines, its last point on its first."""

class Dots:
    """A run of dots, as it was when the drawing was iterated (a copy)."""

    points: npt.NDArray[np.float32]
    """(n, 3)."""
    pens: npt.NDArray[np.uint16]
    indices: npt.NDArray[np.uint32]
    def __len__(self) -> int:
        """Number of dots."""

class Records:
    """A run of records the library carries through unchanged."""

    records: list[npt.NDArray[np.uint16]]
    """The words of each record."""
    indices: npt.NDArray[np.uint32]
    def __len__(self) -> int:
        """Number of records."""

Item = Union[Path, Dots, Records]

class OptimizeResults:
    """What an optimize run did."""

    changed: bool
    """Whether the run changed the drawing and was not aborted."""
    aborted: bool
    passes: int
    estimated_runs: int
    performed_runs: int
    start_collection_size: int
    end_collection_size: int
    duplicated_paths: int
    autojoined_paths: int
    degenerated_lines: int
    closed_subpaths: int
    travel_before: float
    """Pen-up travel before the reordering; 0 when it did not run."""
    travel_after: float
    elapsed_ms: int
    def as_dict(self) -> dict[str, object]: ...

class TravelResults:
    """What an optimize_travel run did."""

    changed: bool
    aborted: bool
    travel_before: float
    travel_after: float
    pen_changes_before: int
    pen_changes_after: int
    reversed_paths: int
    rotated_paths: int
    applied_moves: int
    refinement_timed_out: bool
    elapsed_ms: int
    def as_dict(self) -> dict[str, object]: ...

class Drawing:
    """A drawing: collections (sub-paths, runs of dots, runs of records) in drawing order.

    Not safe for concurrent use: while ``optimize`` or ``optimize_travel`` runs (with the
    interpreter lock released), every call on the same drawing but ``abort`` and ``aborted``
    raises RuntimeError.
    """

    def __init__(self, words: Optional[Words] = None) -> None:
        """An empty drawing, or one loaded from words as ``from_words`` does."""
    # Loading and writing.
    @staticmethod
    def from_words(words: Words, salvage: bool = False) -> Drawing:
        """Loads a stream. ValueError when it ends in a cut record, unless ``salvage``: then
        the records before it are loaded."""
    @staticmethod
    def read_stk(path: FileName, salvage: bool = False) -> Drawing:
        """Reads an Stk file. OSError when it cannot be read, ValueError as from_words."""
    @staticmethod
    def from_svg(text: str, tolerance: float = 0.01, units: str = "mm", pens: str = "layer") -> Drawing:
        """Imports an SVG document held in ``text``, curves flattened within ``tolerance``
        (greater than 0). ``units``: "mm" or "user"; ``pens``:
        "layer", "stroke" or "none". What was skipped or repaired is warned about
        (UserWarning); ValueError when the document cannot be used."""
    @staticmethod
    def read_svg(path: FileName, tolerance: float = 0.01, units: str = "mm", pens: str = "layer") -> Drawing:
        """from_svg on the file's contents."""
    @staticmethod
    def cut_record_position(words: Words) -> Optional[int]:
        """Word position at which a cut record starts; None when the words have none."""
    def load_words(self, words: Words) -> bool:
        """Replaces the drawing by the words; False when they end in a cut record (the
        records before it are loaded)."""
    def paste(self, words: Words) -> bool:
        """Appends the words, numbered on from the opcode count; False as load_words."""
    def serialize(self) -> tuple[npt.NDArray[np.uint16], npt.NDArray[np.uint32]]:
        """Writes the drawing, renumbering it: the words, and at every old index its new one
        (NO_INDEX for points that are gone). The arrays are the caller's own."""
    def write_stk(self, path: FileName) -> npt.NDArray[np.uint32]:
        """Serializes and writes an Stk file; returns the index map. OSError on failure."""
    def to_svg(self, units: str = "mm") -> str:
        """An SVG document of the drawing, a layer per run of a pen."""
    def write_svg(self, path: FileName, units: str = "mm") -> None: ...
    def to_machine(self, profile: str = "gcode-servo", overrides: Union[Mapping[str, object], Sequence[str]] = ()) -> str:
        """The drawing as a machine file (G-code or HPGL) under a device profile: a built-in
        name (see device_profiles()) or a TOML file. ``overrides`` replace keys:
        {"draw_feed": 1500} or ["draw_feed=1500"]. Warnings (records left out, points
        outside the bed) are warned about; ValueError when nothing can be written."""
    def write_machine(self, path: FileName, profile: str = "gcode-servo", overrides: Union[Mapping[str, object], Sequence[str]] = ()) -> None: ...
    # Reading.
    def __len__(self) -> int:
        """Number of collections."""
    def __iter__(self) -> Iterator[Item]:
        """The collections in drawing order, each copied when iteration starts."""
    @property
    def bounds(self) -> Optional[tuple[tuple[float, float, float], tuple[float, float, float]]]:
        """((xmin, ymin, zmin), (xmax, ymax, zmax)) of the points; None when there are none."""
    def info(self, profile: Optional[str] = None, overrides: Union[Mapping[str, object], Sequence[str]] = ()) -> dict[str, object]:
        """The figures of ``strokeset info``: collections by kind, points, sub_paths, lines,
        dots, unsupported_records, pens, pen_changes, bounding_box, drawn_length,
        travel_length; with a profile or overrides (under "gcode-servo" then) also "machine":
        profile, error, draw_length, travel_length, pen_lifts, tool_changes, seconds."""
    @property
    def opcode_count(self) -> int: ...
    @property
    def points_count(self) -> int:
        """Dots, sub-path points and records."""
    @property
    def pen_change_count(self) -> int: ...
    @property
    def unsupported_count(self) -> int: ...
    def opcode_type(self, index: int) -> OpcodeType: ...
    def opcode_types(self) -> Optional[npt.NDArray[np.uint8]]:
        """The OpcodeType of every index below the opcode count; None while an edit has
        added points that have no index yet."""
    def collection_index_of_point(self, index: int) -> Optional[int]: ...
    # Editing by opcode index; False (or None) where the C++ API answers false.
    def get_position(self, index: int) -> Optional[npt.NDArray[np.float32]]: ...
    def set_position(self, index: int, position: Point) -> bool: ...
    def get_pen(self, index: int) -> Optional[int]: ...
    def set_pen(self, index: int, pen: int) -> bool: ...
    def transform_point(self, index: int, matrix: Matrix) -> bool: ...
    def transform_points(self, indices: Indices, matrix: Matrix) -> bool: ...
    def transform(self, matrix: Matrix) -> bool:
        """Maps every point; False when the drawing holds records (every point is mapped)."""
    def delete_point(self, index: int) -> bool: ...
    def delete_points(self, indices: Indices) -> bool: ...
    def change_pen(self, indices: Indices, pen: int) -> bool: ...
    def copy(self, indices: Indices) -> Optional[npt.NDArray[np.uint16]]:
        """The selected points as a new stream for paste; None when the copy fails."""
    def insert_dot(self, index: int, position: Point) -> bool: ...
    def new_dot(self, position: Point) -> bool: ...
    def new_line(self, start: Point, end: Point) -> bool: ...
    def append_line(self, position: Point, index: int = ...) -> bool:
        """Extends the sub-path whose first point is ``index`` (or the drawing's last one)."""
    def prepend_line(self, index: int, position: Point) -> bool: ...
    def insert_line(self, index: int, start: Point, end: Point) -> bool: ...
    def insert_line_point(self, index: int, position: Point) -> bool: ...
    def close_subpath(self, index: int) -> bool: ...
    def open_subpath(self, index: int) -> bool: ...
    def split_subpath(self, index: int) -> bool: ...
    def join_subpath(self, end_index: int, start_index: int) -> bool: ...
    def connect_subpath(self, end_index: int, start_index: int) -> bool: ...
    def reverse_subpath(self, index: int) -> bool: ...
    def set_closed_subpath_start(self, start_index: int, new_start_index: int) -> bool: ...
    def collection_make_first(self, index: int) -> bool: ...
    def collection_make_last(self, index: int) -> bool: ...
    def collection_move_down(self, index: int) -> bool: ...
    def collection_move_up(self, index: int) -> bool: ...
    # Optimizing.
    def optimize(
        self,
        tolerance: float = 0.05,
        remove_duplicated_paths: bool = True,
        remove_duplicated_reversed_paths: bool = True,
        autojoin_paths: bool = True,
        autojoin_reversed_paths: bool = True,
        remove_degenerated_lines: bool = True,
        close_subpaths: bool = True,
        minimize_jump_distances: bool = True,
        progress: Optional[Progress] = None,
    ) -> OptimizeResults:
        """Removes duplicated paths and short lines, joins paths whose ends meet, closes
        almost closed paths and reorders to cut pen-up travel. Releases the interpreter lock;
        ``abort()`` from another thread stops it. An exception raised by ``progress`` aborts
        the run and is raised again once it has stopped. Serialize before addressing points
        by index again."""
    def optimize_travel(
        self,
        pens_together: bool = False,
        closed_starts: bool = False,
        refine: bool = False,
        time_limit: float = 10.0,
        inner_first: bool = False,
        progress: Optional[Progress] = None,
    ) -> TravelResults:
        """Shortens pen-up travel further without changing what is drawn; runs as optimize
        does. An aborted run leaves the drawing as it was."""
    def abort(self) -> None:
        """Asks a running optimize on another thread to stop; safe from any thread."""
    @property
    def aborted(self) -> bool: ...
    def shuffle(self) -> None: ...
    def simplify(self, tolerance: float) -> None: ...

def device_profiles() -> list[str]:
    """The names of the built-in device profiles."""
