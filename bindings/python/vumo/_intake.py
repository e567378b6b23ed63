"""Puts the lines of scans into the tables of a catalogue."""

from __future__ import annotations

import base64
import itertools
import json
import operator
import sqlite3
import time
from collections import defaultdict
from collections.abc import Callable, Iterable, Iterator
from typing import Any

from ._rows import as_bytes, as_text

Line = dict[str, Any]

#: What tells whether a file is the one that was scanned, and as it was.
IDENTITY = ("device", "inode", "size", "mtime", "ctime")

#: The tool's exit code for what cannot be read while it is as it is.
MALFORMED = 3

_PIECE = 100_000  # characters

_ROWS_AT_ONCE = 50  # each statement costs as much as two rows

_STOPPED = "vumo stopped in the middle of it"

_UPDATE = "UPDATE files SET device = ?, inode = ?, size = ?, mtime = ?, ctime = ?, tail = ?, code = ?, scanned = ? WHERE id = ?"


def take_in(database: sqlite3.Connection, texts: Iterable[bytes | str], names: Iterable[bytes] = ()) -> int:
    """Puts in the lines, in place of what there was of their files; a file of `names` without a line has a fault.

    Each text has one line or several. To be done in a transaction. Returns how many files have other metadata than
    before. Raises ValueError for what is no line of a scan.
    """
    changed = 0
    missing = set(names)
    batch = _Batch(database)
    for name, lines in itertools.groupby(itertools.chain.from_iterable(_parsed(texts)), operator.itemgetter("file")):
        if name in batch.names:  # of another scan: it takes the place of what the first one said
            batch.write()
            batch = _Batch(database)
        changed += batch.add(name, lines)
        missing.discard(as_bytes(name))
    for unread in missing:
        changed += batch.add(as_text(unread), [{"kind": "fault", "code": MALFORMED, "error": _STOPPED}])
    batch.write()
    return changed


def put_fault(database: sqlite3.Connection, name: bytes, error: str) -> None:
    """Says that nothing of that name can be read."""
    batch = _Batch(database)
    batch.add(as_text(name), [{"kind": "fault", "code": MALFORMED, "error": error}])
    batch.write()


class _Batch:
    """What is to be done to the database for some files, all rows of a table together."""

    def __init__(self, database: sqlite3.Connection) -> None:
        self.names: set[str | bytes] = set()
        self._database = database
        self._rows: dict[str, list[tuple[Any, ...]]] = defaultdict(list)  # new ones by their table
        self._updates: list[tuple[Any, ...]] = []
        self._left: list[tuple[int]] = []  # files of which nothing stays
        self._structures: dict[str | bytes, int] = {}  # by their texts
        self._described: set[int] = set()  # structures of which the members are known
        self._next_file = self._next("files")
        self._next_stream = self._next("streams")

    def write(self) -> None:
        """Does it."""
        execute_many = self._database.executemany
        execute_many("DELETE FROM faults WHERE name = ?", ((name,) for name in self.names))
        execute_many("DELETE FROM files WHERE id = ?", self._left)
        execute_many(_UPDATE, self._updates)
        execute_many("DELETE FROM content WHERE file = ?", ((values[-1],) for values in self._updates))
        for table, rows in self._rows.items():
            for begin in range(0, len(rows), _ROWS_AT_ONCE):
                self._insert(table, rows[begin : begin + _ROWS_AT_ONCE])

    def _insert(self, table: str, rows: list[tuple[Any, ...]]) -> None:
        """A failure rolls all back: SQLite need not be able to take back these rows alone, for which it would write a file."""
        row = f"({', '.join('?' * len(rows[0]))})"
        values = list(itertools.chain.from_iterable(rows))
        self._database.execute(f"INSERT OR ROLLBACK INTO {table} VALUES {', '.join([row] * len(rows))}", values)

    def _next(self, table: str) -> int:
        (largest,) = self._database.execute(f"SELECT coalesce(max(id), 0) FROM {table}").fetchone()
        return int(largest) + 1

    def add(self, name: str | bytes, lines: Iterable[Line]) -> bool:
        """Notes what to do for one more file; returns whether its metadata are others than before."""
        self.names.add(name)
        of_kind: dict[str, list[Line]] = defaultdict(list)
        for line in lines:
            of_kind[line["kind"]].append(line)
        self._rows["faults"] += [_fault(name, line) for line in of_kind["fault"]]
        old = self._database.execute("SELECT id, tail FROM files WHERE name = ?", (name,)).fetchone()
        if not of_kind["file"]:
            self._left += [old[:1]] if old else []
            return old is not None
        [head] = of_kind["file"]
        tail = head.get("tail")
        values = (*map(number_for_database, map(head.get, IDENTITY)), tail, head["code"], time.time_ns())
        is_same = old is not None and tail is not None and old[1] == tail
        if is_same:
            file = old[0]
            self._updates.append((*values, file))
        else:
            self._left += [old[:1]] if old else []
            file = self._next_file
            self._next_file += 1
            self._rows["files"].append((file, name, *values))
            self._add_metadata(file, of_kind)
        self._rows["content"] += [_content(file, line) for line in of_kind["external"]]
        return not is_same

    def _add_metadata(self, file: int, of_kind: dict[str, list[Line]]) -> None:
        declared = {self._structures.get(line["layout"]) or self._structure(line) for line in of_kind["structure"]}
        self._rows["declarations"] += [(file, structure) for structure in declared]
        nodes = of_kind["node"]
        self._rows["nodes"] += [(file, line["node"]) for line in nodes]
        self._rows["channels"] += [(file, line["node"], channel) for line in nodes for channel in line["channels"]]
        streams, ranges = self._rows["streams"], self._rows["ranges"]
        for line in of_kind["stream"]:
            stream = self._next_stream
            self._next_stream += 1
            structure = self._structures.get(line["layout"]) or self._structure(line)
            members = line["members"]
            if structure not in self._described:
                self._describe(structure, members)
            streams.append((stream, file, line["node"], line["channel"], line["stream"], structure,
                            line["indexType"], line["elements"], line["bytes"]))  # fmt: skip
            for place, member in enumerate(members):
                if "least" in member:
                    least, greatest = member["least"], member["greatest"]
                    if stored := _STORED.get(member["type"]):
                        least, greatest = stored(least), stored(greatest)
                    ranges.append((stream, place, least, greatest))

    def _structure(self, line: Line) -> int:
        """The number of the structure of that text, which is put in if it is new."""
        values = (line["structure"], line["layout"])
        self._database.execute("INSERT OR IGNORE INTO structures (name, layout) VALUES (?, ?)", values)
        row = self._database.execute("SELECT id FROM structures WHERE layout = ?", values[1:]).fetchone()
        number = self._structures[line["layout"]] = int(row[0])
        return number

    def _describe(self, structure: int, members: list[Line]) -> None:
        rows = [(structure, place, *map(each.get, ("name", "type", "length"))) for place, each in enumerate(members)]
        self._database.executemany("INSERT OR IGNORE INTO members VALUES (?, ?, ?, ?, ?)", rows)
        self._described.add(structure)


def _parsed(texts: Iterable[bytes | str]) -> Iterator[list[Line]]:
    """The objects of the lines; texts that are not UTF-8 are bytes in them."""
    for text in texts:
        for piece in _pieces(text if isinstance(text, str) else text.decode()):
            has_bytes = '{"base64": ' in piece  # can stand in no other place; to ask for each object takes time
            yield json.loads(f"[{piece}]", object_hook=_text_or_object if has_bytes else None)


def _pieces(text: str) -> Iterator[str]:
    """The lines with commas between them, in parts of which the objects stay in the processor's cache."""
    begin = 0
    while begin < len(text):
        end = text.find("\n", begin + _PIECE)
        end = len(text) if end < 0 else end
        yield text[begin:end].strip("\n").replace("\n", ",")
        begin = end + 1


def _text_or_object(found: Line) -> Line | bytes:
    return base64.b64decode(found["base64"]) if found.keys() == {"base64"} else found


def _fault(name: str | bytes, line: Line) -> tuple[Any, ...]:
    parts = ("error", "code", "block", "name", "format", "position", "length")
    return (None, name, *map(line.get, parts))


def _content(file: int, line: Line) -> tuple[Any, ...]:
    texts = [line[part] for part in ("index", "node", "key", "unresolvedPath", "resolvedPath")]
    roles = json.dumps(line["roles"], ensure_ascii=False, default=lambda role: {"base64": base64.b64encode(role).decode()})
    return (file, *texts, roles, line["missing"])


def number_for_database(value: Any) -> Any:
    """A whole number as the database has it: beyond its range as 20 digits, which come after all numbers in its order."""
    return value if value is None or value < 1 << 63 else f"{value:020}"


#: How numbers of these types become what the database has, others of which are as they are. The texts of floating-point
#: ones can be those of whole numbers, of any size.
_STORED: dict[str, Callable[[Any], Any]] = {
    "uint64": number_for_database,
    **dict.fromkeys(("float", "double", "flt4x4", "dbl4x4"), float),
}
