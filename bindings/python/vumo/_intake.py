"""Puts the lines of scans into the tables of a catalogue."""

from __future__ import annotations

import base64
import itertools
import json
import operator
import sqlite3
import time
from collections import defaultdict
from collections.abc import Iterable
from typing import Any

from ._rows import as_bytes, as_text

Line = dict[str, Any]

#: What tells whether a file is the one that was scanned, and as it was.
IDENTITY = ("device", "inode", "size", "mtime", "ctime")

#: The tool's exit code for what cannot be read while it is as it is.
MALFORMED = 3

_STOPPED = "vumo stopped in the middle of it"

_UPDATE = "UPDATE files SET device = ?, inode = ?, size = ?, mtime = ?, ctime = ?, tail = ?, code = ?, scanned = ? WHERE id = ?"


def take_in(database: sqlite3.Connection, lines: Iterable[bytes | str], names: Iterable[bytes] = ()) -> int:
    """Puts in the lines, in place of what there was of their files; a file of `names` without a line has a fault.

    Each text has one line or several. To be done in a transaction. Returns how many files have other metadata than before. Raises ValueError for what is
    no line of a scan.
    """
    changed = 0
    waiting: dict[str | bytes, list[Line]] = {}
    missing = set(names)
    for name, group in itertools.groupby(_parsed(lines), operator.itemgetter("file")):
        if name in waiting:  # of another scan: it takes the place of what the first one said
            changed += _Batch(database).put(waiting)
            waiting = {}
        waiting[name] = list(group)
        missing.discard(as_bytes(name))
    for unread in missing:
        waiting[as_text(unread)] = [{"kind": "fault", "code": MALFORMED, "error": _STOPPED}]
    return changed + _Batch(database).put(waiting)


def put_fault(database: sqlite3.Connection, name: bytes, error: str) -> None:
    """Says that nothing of that name can be read."""
    _Batch(database).put({as_text(name): [{"kind": "fault", "code": MALFORMED, "error": error}]})


class _Batch:
    """What is to be done to the database for some files, one statement for many rows."""

    def __init__(self, database: sqlite3.Connection) -> None:
        self._database = database
        self._rows: dict[str, list[tuple[Any, ...]]] = defaultdict(list)  # new ones by their table
        self._updates: list[tuple[Any, ...]] = []
        self._left: list[tuple[int]] = []  # files of which nothing stays
        self._structures: dict[str | bytes, int] = {}  # by their texts
        self._described: set[int] = set()  # structures of which the members are known
        self._next_file = self._next("files")
        self._next_stream = self._next("streams")

    def put(self, files: dict[str | bytes, list[Line]]) -> int:
        """Puts in the lines of each file; returns how many have other metadata than before."""
        changed = sum([self._add_file(name, lines) for name, lines in files.items()])
        execute_many = self._database.executemany
        execute_many("DELETE FROM faults WHERE name = ?", ((name,) for name in files))
        execute_many("DELETE FROM files WHERE id = ?", self._left)
        execute_many(_UPDATE, self._updates)
        execute_many("DELETE FROM content WHERE file = ?", ((values[-1],) for values in self._updates))
        for table, rows in ((table, rows) for table, rows in self._rows.items() if rows):
            execute_many(f"INSERT INTO {table} VALUES ({', '.join('?' * len(rows[0]))})", rows)
        return changed

    def _next(self, table: str) -> int:
        (largest,) = self._database.execute(f"SELECT coalesce(max(id), 0) FROM {table}").fetchone()
        return int(largest) + 1

    def _add_file(self, name: str | bytes, lines: list[Line]) -> bool:
        """Notes what to do for one file; returns whether its metadata are others than before."""
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
        declared = {self._structure(line) for line in of_kind["structure"]}
        self._rows["declarations"] += [(file, structure) for structure in declared]
        nodes = of_kind["node"]
        self._rows["nodes"] += [(file, line["node"]) for line in nodes]
        self._rows["channels"] += [(file, line["node"], channel) for line in nodes for channel in line["channels"]]
        streams, ranges = self._rows["streams"], self._rows["ranges"]
        for line in of_kind["stream"]:
            stream = self._next_stream
            self._next_stream += 1
            structure = self._structure(line)
            members = line["members"]
            if structure not in self._described:
                self._describe(structure, members)
            streams.append((stream, file, line["node"], line["channel"], line["stream"], structure,
                            line["indexType"], line["elements"], line["bytes"]))  # fmt: skip
            ranges += [
                (stream, place, number_for_database(member["least"]), number_for_database(member["greatest"]))
                for place, member in enumerate(members)
                if "least" in member
            ]

    def _structure(self, line: Line) -> int:
        """The number of the structure of that text."""
        layout = line["layout"]
        number = self._structures.get(layout)
        if number is None:
            values = (line["structure"], layout)
            self._database.execute("INSERT OR IGNORE INTO structures (name, layout) VALUES (?, ?)", values)
            row = self._database.execute("SELECT id FROM structures WHERE layout = ?", (layout,)).fetchone()
            number = self._structures[layout] = int(row[0])
        return number

    def _describe(self, structure: int, members: list[Line]) -> None:
        rows = [(structure, place, *map(each.get, ("name", "type", "length"))) for place, each in enumerate(members)]
        self._database.executemany("INSERT OR IGNORE INTO members VALUES (?, ?, ?, ?, ?)", rows)
        self._described.add(structure)


def _parsed(lines: Iterable[bytes | str]) -> list[Line]:
    """The objects of the lines; texts that are not UTF-8 are bytes in them."""
    texts = (line if isinstance(line, str) else line.decode() for line in lines)
    text = ",".join(filter(None, (text.rstrip("\n") for text in texts))).replace("\n", ",")
    has_bytes = '{"base64": ' in text  # in no other place of a line can that stand; asking for each object takes time
    found: list[Line] = json.loads(f"[{text}]", object_hook=_text_or_object if has_bytes else None)
    return found


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
    """A number as the database has it: beyond its range as 20 digits, which come after all numbers in its order."""
    return f"{value:020}" if isinstance(value, int) and value >= 1 << 63 else value
