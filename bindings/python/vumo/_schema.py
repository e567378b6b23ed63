"""The tables of a catalogue; docs/catalogue.md describes them."""

from __future__ import annotations

import os
import sqlite3
from pathlib import Path

from .errors import CatalogError, Error, LockedError

_APPLICATION = 0x56554D4F  # "VUMO": by this number a file of SQLite's says whose it is
_VERSION = 1

_WAIT = 60.0  # seconds for another process that is writing

_SCHEMA = f"""
BEGIN IMMEDIATE;
CREATE TABLE IF NOT EXISTS files (
    id INTEGER PRIMARY KEY,
    name UNIQUE NOT NULL,
    device, inode, size, mtime, ctime,
    tail TEXT,
    code INTEGER NOT NULL,
    scanned INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS structures (
    id INTEGER PRIMARY KEY,
    name NOT NULL,
    layout UNIQUE NOT NULL);
CREATE TABLE IF NOT EXISTS members (
    structure INTEGER NOT NULL,
    place INTEGER NOT NULL,
    member NOT NULL,
    type TEXT NOT NULL,
    length INTEGER NOT NULL,
    PRIMARY KEY (structure, place)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS declarations (
    file INTEGER NOT NULL,
    structure INTEGER NOT NULL,
    PRIMARY KEY (file, structure)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS nodes (
    file INTEGER NOT NULL,
    node NOT NULL,
    PRIMARY KEY (file, node)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS channels (
    file INTEGER NOT NULL,
    node NOT NULL,
    channel NOT NULL,
    PRIMARY KEY (file, node, channel)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS streams (
    id INTEGER PRIMARY KEY,
    file INTEGER NOT NULL,
    node NOT NULL,
    channel NOT NULL,
    stream NOT NULL,
    structure INTEGER NOT NULL,
    index_type TEXT NOT NULL,
    elements INTEGER NOT NULL,
    bytes INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS ranges (
    stream INTEGER NOT NULL,
    place INTEGER NOT NULL,
    least, greatest,
    PRIMARY KEY (stream, place)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS content (
    file INTEGER NOT NULL,
    entry NOT NULL,
    node, key, unresolved_path, resolved_path, roles,
    missing INTEGER NOT NULL,
    PRIMARY KEY (file, entry)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS faults (
    id INTEGER PRIMARY KEY,
    name NOT NULL,
    error NOT NULL,
    code INTEGER NOT NULL,
    block, block_name, format, position, length);
CREATE INDEX IF NOT EXISTS streams_of_file ON streams (file);
CREATE INDEX IF NOT EXISTS streams_of_structure ON streams (structure);
CREATE INDEX IF NOT EXISTS nodes_by_name ON nodes (node);
CREATE INDEX IF NOT EXISTS faults_of_file ON faults (name);
-- In place of foreign keys, which would look for the parents of every row that is put in.
CREATE TRIGGER IF NOT EXISTS file_leaves AFTER DELETE ON files BEGIN
    DELETE FROM declarations WHERE file = old.id;
    DELETE FROM nodes WHERE file = old.id;
    DELETE FROM channels WHERE file = old.id;
    DELETE FROM ranges WHERE stream IN (SELECT id FROM streams WHERE file = old.id);
    DELETE FROM streams WHERE file = old.id;
    DELETE FROM content WHERE file = old.id;
END;
CREATE VIEW IF NOT EXISTS all_streams AS
    SELECT files.name AS file, node, channel, stream, structures.name AS structure, layout, index_type, elements, bytes
    FROM streams JOIN files ON files.id = streams.file JOIN structures ON structures.id = streams.structure;
CREATE VIEW IF NOT EXISTS all_members AS
    SELECT files.name AS file, node, channel, streams.stream AS stream, member, type, length, least, greatest
    FROM streams JOIN files ON files.id = streams.file JOIN members USING (structure)
    LEFT JOIN ranges ON ranges.stream = streams.id AND ranges.place = members.place;
PRAGMA application_id = {_APPLICATION};
PRAGMA user_version = {_VERSION};
COMMIT;
"""


def open_database(path: str) -> sqlite3.Connection:
    """The catalogue in that file, which is made if there is none.

    Whoever must not write there can still ask. Raises CatalogError for what is no catalogue of this version, and
    LockedError when another process keeps it for a minute.
    """
    try:
        database = _connect(path)
        try:
            _require_catalog(path, database)
        except BaseException:
            database.close()
            raise
    except sqlite3.Error as error:
        raise failure(path, error) from error
    return database


def failure(path: str, error: sqlite3.Error) -> Error:
    """What it means that SQLite gives this error."""
    if error.sqlite_errorcode == sqlite3.SQLITE_BUSY:
        return LockedError(f"{path}: another process is writing to the catalogue", path)
    return CatalogError(f"{path}: the catalogue cannot be used: {error}", path)


def _connect(path: str) -> sqlite3.Connection:
    folder = os.path.dirname(os.path.abspath(path))
    if os.path.exists(path) and not (os.access(path, os.W_OK) and os.access(folder, os.W_OK)):
        # SQLite notes readers in a file beside it, unless nothing can change: so it is while nobody has a journal there.
        mode = "mode=ro" if os.path.exists(f"{path}-wal") else "immutable=1"
        return sqlite3.connect(f"{Path(path).absolute().as_uri()}?{mode}", uri=True, timeout=_WAIT, isolation_level=None)
    return sqlite3.connect(path, timeout=_WAIT, isolation_level=None)


def _require_catalog(path: str, database: sqlite3.Connection) -> None:
    (application,) = database.execute("PRAGMA application_id").fetchone()
    (version,) = database.execute("PRAGMA user_version").fetchone()
    (is_empty,) = database.execute("SELECT count(*) = 0 FROM sqlite_master").fetchone()
    if is_empty and (application, version) == (0, 0):
        database.execute("PRAGMA journal_mode = WAL")
        database.executescript(_SCHEMA)
    elif application != _APPLICATION:
        raise CatalogError(f"{path} is a database, but no catalogue", path)
    elif version != _VERSION:
        raise CatalogError(f"{path} is a catalogue of version {version}, not {_VERSION}: make a new one in its place", path)
    database.execute("PRAGMA synchronous = NORMAL")  # a crash of the machine costs the last files, no more
