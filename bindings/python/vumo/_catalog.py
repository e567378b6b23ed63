"""What the scenes of a whole production hold, in an SQLite database."""

from __future__ import annotations

import errno
import os
import sqlite3
from collections.abc import Iterable, Iterator, Sequence
from contextlib import contextmanager
from dataclasses import dataclass
from types import TracebackType
from typing import Any

from . import _tool
from ._intake import IDENTITY, MALFORMED, number_for_database, put_fault, take_in
from ._rows import Rows, as_bytes, as_text
from ._schema import failure, open_database
from ._tree import Path, Paths, Tree
from ._work import Progress, Workers

_VERSIONS = """
WITH used AS (
    SELECT structures.name AS name, layout, count(DISTINCT file) AS files, sum(streams) AS streams
    FROM (SELECT file, structure, 0 AS streams FROM declarations
          UNION ALL SELECT file, structure, 1 FROM streams)
    JOIN structures ON structures.id = structure
    GROUP BY structure)
SELECT name AS structure, layout, files, streams FROM used"""
_BY_LAYOUT = " ORDER BY name, files DESC, layout"

#: File systems and servers count time in steps of up to two seconds. Whoever changes a file twice in one step leaves the
#: same times, so a file that was scanned so soon after its last change is scanned again.
_TIME_STEP = 2_000_000_000

_SURE = (0, MALFORMED)  # exit codes that will be the same while the file is; others say that it is worth a new try

#: For one run of the tool: so many that its start does not count, and so few that all workers have some.
_FILES_AT_ONCE = 512
_BYTES_AT_ONCE = 64 << 20
_LEAST_AT_ONCE = 8
_PORTIONS = 32


@dataclass(frozen=True)
class Update:
    """What an update of a catalogue has found, in numbers of files.

    Attributes:
        files: that are there now.
        scanned: that were read.
        changed: whose metadata are others than before, new files among them.
        removed: that are no longer there.
        faulty: that could not be read, or not all of them.
    """

    files: int
    scanned: int
    changed: int
    removed: int
    faulty: int


class Catalog:
    """What many scenes hold, in the SQLite database `path`, which is made if there is none. Made by `vumo.catalog`.

    One process at a time updates it; others may ask meanwhile. `with` closes it at the end.

    Queries are methods, and `sql` for all others; docs/catalogue.md has the tables. Names in queries are exact.
    """

    def __init__(self, path: Path) -> None:
        self.path = os.fsdecode(path)
        self._database = open_database(self.path)

    def update(
        self,
        roots_or_files: Paths,
        workers: int = 1,
        *,
        client: Any = None,
        scheduler: str | None = None,
        anew: bool = False,
    ) -> Update:
        """Brings the catalogue up to date with these scenes, and with all scenes in these folders and below them.

        Only files are read that are new or look changed, by `workers` processes of the tool, by the workers of the Dask
        `client`, or by those of the Dask scheduler at that address; `anew` reads them all. Files that are no longer
        there leave the catalogue. A file that cannot be read has rows in `faults`. What was found is kept when the
        update is interrupted: the next one goes on from there.
        """
        tree = Tree(roots_or_files)
        known = self._known(tree)
        there = {name: identity for name in tree.files if (identity := _identity(name))}
        gone = [name for name in known if name not in there and not tree.hides(name)]
        wanted = [name for name in there if anew or known.get(name) != there[name]]
        with self._transaction():
            self._forget(gone)
            self._note_what_is_no_file(tree, there)
        changed = 0
        portions = _portions(wanted, there)
        with Progress("files", len(wanted)) as progress:
            for names, lines in Workers(workers, client, scheduler).each(_tool.scan, portions):
                changed += self.add_lines([lines], names)
                progress.add(len(names))
        faulty = sum(tree.covers(name) for name in self._names("SELECT DISTINCT name FROM faults"))
        return Update(len(there), len(wanted), changed, len(gone), faulty)

    def add_lines(self, lines: Iterable[bytes | str], names: Iterable[bytes] = ()) -> int:
        """Takes in lines of `vumo scan`, in place of what there was of their files; for scans that were run elsewhere.

        All lines of a file have to be among them. A file of `names` without a line stopped the tool, which is a fault.
        Returns how many files have other metadata than before. Raises ValueError for what is no such line.
        """
        with self._transaction():
            return take_in(self._database, lines, names)

    def sql(self, query: str, parameters: Sequence[Any] | dict[str, Any] = ()) -> Rows:
        """The rows that SQL gives, over the tables of docs/catalogue.md."""
        cursor = self._database.execute(query, parameters)
        return Rows([column[0] for column in cursor.description or ()], cursor)

    def files(self) -> Rows:
        """All files, by name."""
        return self.sql("SELECT name, size, mtime, tail, code FROM files ORDER BY name")

    def streams(
        self,
        *,
        node: str | None = None,
        channel: str | None = None,
        stream: str | None = None,
        structure: str | None = None,
        layout: str | None = None,
    ) -> Rows:
        """The streams with these names; `layout` is the text of a structure, of one version of it alone."""
        asked = {"node": node, "channel": channel, "stream": stream, "structure": structure, "layout": layout}
        given = {name: _from_user(value) for name, value in asked.items() if value is not None}
        where = " AND ".join(f"{name} = :{name}" for name in given) or "1"
        return self.sql(f"SELECT * FROM all_streams WHERE {where} ORDER BY file, node, channel, stream", given)

    def versions(self, structure: str | None = None) -> Rows:
        """The layouts of the structure of that name, or of all, and how many files and streams use each of them."""
        return self.sql(_VERSIONS + " WHERE ?1 IS NULL OR name = ?1" + _BY_LAYOUT, [_from_user(structure)])

    def conflicts(self) -> Rows:
        """The layouts of all structures of which there are several of one name."""
        several = " WHERE name IN (SELECT name FROM used GROUP BY name HAVING count(*) > 1)"
        return self.sql(_VERSIONS + several + _BY_LAYOUT)

    def orphans(self) -> Rows:
        """The structures that files declare without a stream that uses them."""
        return self.sql(
            "SELECT files.name AS file, structures.name AS structure, layout FROM declarations"
            " JOIN files ON files.id = declarations.file JOIN structures ON structures.id = declarations.structure"
            " WHERE NOT EXISTS (SELECT 1 FROM streams"
            " WHERE streams.file = declarations.file AND streams.structure = declarations.structure)"
            " ORDER BY 1, 2"
        )

    def missing_content(self) -> Rows:
        """The entries of external content where nothing was found when their file was scanned."""
        return self.sql(
            "SELECT files.name AS file, node, key, unresolved_path, resolved_path, roles"
            " FROM content JOIN files ON files.id = content.file WHERE missing ORDER BY 1, entry"
        )

    def carriers(self, node: str) -> Rows:
        """The files in which the node of that name has metadata, and how many streams."""
        return self.sql(
            "SELECT files.name AS file, count(streams.id) AS streams FROM nodes JOIN files ON files.id = nodes.file"
            " LEFT JOIN streams ON streams.file = nodes.file AND streams.node = nodes.node"
            " WHERE nodes.node = ? GROUP BY files.id ORDER BY 1",
            [_from_user(node)],
        )

    def faults(self) -> Rows:
        """What could not be read: files, folders, and blocks in files."""
        return self.sql("SELECT name AS file, error, code, block, block_name, position FROM faults ORDER BY name, position")

    def close(self) -> None:
        self._database.close()

    def __enter__(self) -> Catalog:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        counts = {table: self.sql(f"SELECT count(*) AS n FROM {table}")[0]["n"] for table in ("files", "streams", "faults")}
        return f"<vumo.Catalog {self.path!r}: " + ", ".join(f"{n} {table}" for table, n in counts.items()) + ">"

    @contextmanager
    def _transaction(self) -> Iterator[None]:
        try:
            self._database.execute("BEGIN IMMEDIATE")
            yield
            self._database.execute("COMMIT")
        except BaseException as error:
            if self._database.in_transaction:
                self._database.execute("ROLLBACK")
            if isinstance(error, sqlite3.Error):
                raise failure(self.path, error) from error
            raise

    def _names(self, query: str) -> Iterator[bytes]:
        return (as_bytes(name) for (name,) in self._database.execute(query))

    def _known(self, tree: Tree) -> dict[bytes, tuple[int, ...] | None]:
        """The files of the tree in the catalogue, with their identities, without one where a new try is worth it."""
        rows = self._database.execute(f"SELECT name, code, scanned, {', '.join(IDENTITY)} FROM files")
        known: dict[bytes, tuple[int, ...] | None] = {}
        for stored, code, scanned, *identity in rows:
            name = as_bytes(stored)
            if tree.covers(name):
                is_sure = code in _SURE and identity[-1] < scanned - _TIME_STEP
                known[name] = tuple(identity) if is_sure else None
        return known

    def _forget(self, names: Iterable[bytes]) -> None:
        for name in names:
            self._database.execute("DELETE FROM faults WHERE name = ?", [as_text(name)])
            self._database.execute("DELETE FROM files WHERE name = ?", [as_text(name)])

    def _note_what_is_no_file(self, tree: Tree, there: dict[bytes, tuple[int, ...]]) -> None:
        """The faults of names that lead to no file, and of folders that cannot be read, as they are now."""
        of_none = "SELECT DISTINCT name FROM faults WHERE name NOT IN (SELECT name FROM files)"
        self._forget([name for name in self._names(of_none) if tree.covers(name)])
        absent = {name: os.strerror(errno.ENOENT) for name in tree.files if name not in there}
        for name, error in {**absent, **tree.unreadable}.items():
            put_fault(self._database, name, error)


def _identity(name: bytes) -> tuple[int, ...] | None:
    """Which file that is and when it was changed last; None where there is none."""
    try:
        status = os.stat(name)
    except OSError:
        return None
    numbers = (status.st_dev, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns)
    return tuple(map(number_for_database, numbers))


def _portions(names: list[bytes], there: dict[bytes, tuple[int, ...]]) -> Iterator[list[bytes]]:
    """The names in portions for one run of the tool each."""
    count = min(max(_LEAST_AT_ONCE, len(names) // _PORTIONS), _FILES_AT_ONCE)
    portion: list[bytes] = []
    size = 0
    for name in names:
        portion.append(name)
        size += there[name][2]
        if len(portion) == count or size >= _BYTES_AT_ONCE:
            yield portion
            portion, size = [], 0
    if portion:
        yield portion


def _from_user(text: str | None) -> str | bytes | None:
    return None if text is None else as_text(text.encode(errors="surrogateescape"))
