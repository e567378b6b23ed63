"""The record of one file of a campaign: what it was before and after, and how that is undone."""

from __future__ import annotations

import contextlib
import fcntl
import hashlib
import itertools
import json
import os
import struct
from collections.abc import Callable, Iterator
from dataclasses import asdict, dataclass
from pathlib import Path
from typing import IO

from .errors import ChangedError, LockedError

SAVING, SAVED, UNDONE = "saving", "saved", "undone"


@dataclass
class Entry:
    """What a record says.

    Attributes:
        file: its name.
        state: SAVING from before the save until after it, SAVED then, UNDONE after that was undone.
        before: the checksum of its metadata before the save, in hexadecimal digits.
        after: that after the save; empty before.
        position: of the first byte that the save changes. All in front of it stays.
        old_length: of the file before the save.
        new_length: of the file after it.
        old_digest: of the bytes from `position` on, before the save.
        new_digest: of those after it; empty before.
    """

    file: str
    state: str
    before: str
    after: str
    position: int
    old_length: int
    new_length: int
    old_digest: str
    new_digest: str

    @property
    def is_empty(self) -> bool:
        """Whether the file had all that the edit would have made."""
        return self.before == self.after


class Record:
    """The record of a file in the folder of a campaign: an entry, and the old bytes that the save replaces.

    Each is written beside its place and then renamed, so that it is there as a whole or not at all.
    """

    def __init__(self, folder: Path, file: bytes) -> None:
        self.file = file
        name = hashlib.sha256(file).hexdigest()[:32]
        self._entry = folder / name[:2] / f"{name}.json"
        self._old = self._entry.with_suffix(".old")

    @classmethod
    def all(cls, folder: Path) -> tuple[list[Record], dict[Path, str]]:
        """Those of all files, in the order of their names, and what is wrong with entries that cannot be read."""
        names: list[str] = []
        damaged: dict[Path, str] = {}
        for path in sorted(folder.glob("??/*.json")):
            try:
                names.append(_load(path).file)
            except ValueError as error:
                damaged[path] = str(error)
        return [cls(folder, os.fsencode(name)) for name in sorted(names)], damaged

    def load(self) -> Entry | None:
        """Raises ValueError for one that cannot be read."""
        return _load(self._entry) if self._entry.exists() else None

    def store(self, entry: Entry, *, must_stay: bool = True) -> None:
        write(self._entry, json.dumps(asdict(entry)).encode(), must_stay=must_stay)

    def forget(self) -> None:
        """Removes the entry: the file was not saved."""
        self._entry.unlink(missing_ok=True)

    @contextlib.contextmanager
    def locked(self) -> Iterator[None]:
        """Keeps the file from other workers of the campaign, as when one counts as dead and is not."""
        self._entry.parent.mkdir(parents=True, exist_ok=True)
        with open(self._entry.with_suffix(".lock"), "wb") as file, _locked(file, self.file):
            yield

    def keep(self, position: int) -> str:
        """Stores the bytes of the file from that position on, to stay there as the entry does that is stored next.

        Returns their digest.
        """
        with open(self.file, "rb") as file:
            old = _bytes_from(file, position)
        write(self._old, old, must_stay=False)
        return _digest(old)

    def old_bytes(self, entry: Entry) -> bytes:
        """Raises ValueError when they are not the ones that were kept."""
        old = self._old.read_bytes() if self._old.exists() else b""
        if _digest(old) != entry.old_digest:
            raise ValueError(f"{self._old}: the old bytes of {entry.file} are damaged")
        return old

    def note_saved(self, entry: Entry, after: int) -> None:
        """Raises ChangedError when somebody else has changed the file since."""
        with open(self.file, "rb") as file:
            new = _bytes_from(file, entry.position)
        if entry.position + len(new) != entry.new_length:
            raise ChangedError(f"{entry.file} was changed by somebody else after it was saved", entry.file)
        entry.state, entry.after, entry.new_digest = SAVED, f"{after:016x}", _digest(new)
        self.store(entry, must_stay=False)  # the next run would find out by the old bytes

    def has_old_bytes(self, entry: Entry) -> bool:
        with open(self.file, "rb") as file:
            return _bytes_from(file, entry.position) == self.old_bytes(entry)

    def is_old_edited(self, entry: Entry, edit: Callable[[bytes], object]) -> bool:
        """Whether the file is what the edit makes of the old bytes; found out with a copy of it."""
        suffix = os.path.splitext(self.file)[1].decode()
        copy = self._entry.with_suffix(f".copy{suffix}")
        try:
            with open(self.file, "rb") as file:
                write(copy, file.read(entry.position) + self.old_bytes(entry))
            edit(os.fsencode(copy))
            return copy.read_bytes() == Path(os.fsdecode(self.file)).read_bytes()
        finally:
            copy.unlink(missing_ok=True)

    def put_back(self, entry: Entry) -> None:
        """Leaves the file in the state of a write that was interrupted and is to be undone.

        The next read of it, by anybody, restores the old bytes, all or nothing: so they are put back by those who also
        restore files after a crash. Raises ChangedError when the file is not as the save has left it, and LockedError
        while somebody writes to it.
        """
        path = os.path.realpath(self.file)
        with open(path, "rb") as file, _locked(file, path):
            new = _bytes_from(file, entry.position)
            if _digest(new) != entry.new_digest or entry.position + len(new) != entry.new_length:
                raise ChangedError(f"{os.fsdecode(path)} was changed since it was saved", os.fsdecode(path))
            file.seek(0)
            undo = _undo_record(file, entry, self.old_bytes(entry), new)
            _put_beside(path, undo)


def _load(path: Path) -> Entry:
    try:
        return Entry(**json.loads(path.read_bytes()))
    except (ValueError, TypeError) as error:
        raise ValueError(f"{path}: the entry is damaged, or of another version: {error}") from None


def _digest(content: bytes) -> str:
    return hashlib.sha256(content).hexdigest()


def _bytes_from(file: IO[bytes], position: int) -> bytes:
    file.seek(position)
    return file.read()


@contextlib.contextmanager
def _locked(file: IO[bytes], path: bytes) -> Iterator[None]:
    """Keeps others from writing to the file by way of the library."""
    try:
        fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        raise LockedError(f"{os.fsdecode(path)} is being written by somebody else", os.fsdecode(path)) from None
    try:
        yield
    finally:
        fcntl.flock(file, fcntl.LOCK_UN)


def write(path: Path, content: bytes, mode: int = 0o666, *, must_stay: bool = True, end: str = ".new") -> None:
    """Writes the file, as a whole or not at all. Unless it must stay, a crash of the machine may bring back the old one.

    Until it is whole its name has that `end`. Nobody else may write to the same file meanwhile, unless with another end;
    what somebody has left there who was killed is overwritten.
    """
    path.parent.mkdir(parents=True, exist_ok=True)
    beside = path.with_name(path.name + end)
    with open(os.open(beside, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, mode), "wb") as file:
        file.write(content)
        file.flush()
        os.fsync(file.fileno())
    beside.replace(path)
    if must_stay:
        _sync(path.parent)


def _sync(folder: str | bytes | Path) -> None:
    descriptor = os.open(folder, os.O_RDONLY)
    os.fsync(descriptor)
    os.close(descriptor)


def _put_beside(path: bytes, undo: bytes) -> None:
    """Makes the undo record of the file, which is locked."""
    name = path + b".vumo-undo"
    if os.path.lexists(name):
        raise LockedError(f"{os.fsdecode(name)} is there already", os.fsdecode(path))
    write(Path(os.fsdecode(name)), undo, os.stat(path).st_mode & 0o666)


_HEAD = struct.Struct(">8sIIQQ")  # see docs/formats/undo-record.md
_SURROUNDINGS = 4096


def _undo_record(file: IO[bytes], entry: Entry, old: bytes, new: bytes) -> bytes:
    """The undo record that makes the old bytes of the new ones, which the file has from the entry's position on.

    A record whose change is complete is only removed. So the change begins one byte further to the front, with a byte
    that it would have made another one of: this one says that the write was not completed.
    """
    position = entry.position - 1
    before = file.read(entry.position)
    last = before[-1]
    old, new = bytes([last]) + old, bytes([last ^ 0xFF]) + new
    head = _HEAD.pack(b"VUMOUNDO", 1, 1, entry.old_length, entry.new_length)
    head += struct.pack(">Q", _checksum(before[: min(position, _SURROUNDINGS)], before[max(0, position - _SURROUNDINGS) : -1]))
    head += struct.pack(">QQQ", position, len(old), len(new))
    return head + old + new + struct.pack(">Q", _checksum(head, old, new))


def _checksum(*pieces: bytes) -> int:
    state = 0
    for piece in pieces:
        padded = piece + bytes(-len(piece) % 8)
        words = (word for (word,) in struct.iter_unpack(">Q", padded))
        for word in itertools.chain([len(piece)], words):
            state = ((state ^ word) * 0x9E3779B97F4A7C15) & 0xFFFFFFFFFFFFFFFF
            state ^= state >> 32
    return state
