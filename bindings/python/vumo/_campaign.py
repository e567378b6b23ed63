"""The same edit over many files, which can be undone as a whole."""

from __future__ import annotations

import functools
import json
import os
import time
from collections.abc import Callable, Iterable
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from ._edits import Change, Edit, checksum, edit_of, is_busy
from ._record import SAVED, SAVING, UNDONE, Entry, Record, write
from ._rows import Rows
from ._scene import Scene
from ._tree import Path as AnyPath
from ._tree import Paths, Tree
from ._work import Progress, Workers
from .errors import Error, NoFileError

_ABOUT = "campaign.json"  # in the folder of the record: which edit it is of
_VERSION = 1

_PAUSE = 1.0  # seconds before files that were busy are tried again


@dataclass(frozen=True)
class Outcome:
    """What came of one file.

    Attributes:
        file: its name.
        state: "saved", "unchanged" when it had all that already, "undone"; "planned" for what would be saved; "busy" for
            what is locked or was changed meanwhile, "failed".
        bytes: that were, or would be, written.
        growth: of the file, in bytes.
        error: what went wrong, in English.
    """

    file: str
    state: str
    bytes: int = 0
    growth: int = 0
    error: str = ""


class Report(list[Outcome]):
    """What came of each file.

    Attributes:
        left: how many files were not looked at, as too many others had failed.
    """

    def __init__(self, outcomes: Iterable[Outcome], left: int = 0) -> None:
        super().__init__(outcomes)
        self.left = left

    @property
    def bytes(self) -> int:
        """Written in all files."""
        return sum(outcome.bytes for outcome in self)

    @property
    def growth(self) -> int:
        """Of all files, in bytes."""
        return sum(outcome.growth for outcome in self)

    @property
    def failures(self) -> list[Outcome]:
        """The files that are not as they should be."""
        return [outcome for outcome in self if outcome.error]

    def of(self, state: str) -> list[Outcome]:
        """The files that came to that state."""
        return [outcome for outcome in self if outcome.state == state]

    def rows(self) -> Rows:
        return Rows(list(Outcome.__dataclass_fields__), ([*vars(outcome).values()] for outcome in self))

    def __repr__(self) -> str:
        states = sorted({outcome.state for outcome in self})
        counts = [f"{len(self.of(state))} {state}" for state in states] + [f"{self.left} left"] * bool(self.left)
        lines = [f"{', '.join(counts) or 'no files'}: {self.bytes} bytes written, {self.growth:+} in the files"]
        return "\n".join(lines + [f"{outcome.file}: {outcome.error}" for outcome in self.failures[:20]])


class Campaign:
    """One edit for many files, with a record in a folder. Made by `vumo.campaign`."""

    def __init__(
        self,
        script: str | Callable[[Scene], Any] | Edit | None = None,
        files: Paths = (),
        workers: int = 1,
        *,
        record: AnyPath = "campaign",
        client: Any = None,
        scheduler: str | None = None,
        max_failures: int = 10,
        retries: int = 3,
    ) -> None:
        """Nothing is read or written yet.

        Args:
            script: the lines of a script (docs/formats/script.md), or a function that edits a scene; None for a campaign
                that is only to be undone.
            files: scenes, and folders of them. One that has several names, by links, is edited once.
            workers: processes of this machine that work, unless there is a Dask `client`, or the address of a Dask
                `scheduler`.
            record: the folder that says what was done to each file. All workers have to see it under this name.
            max_failures: so many files may fail before no more are begun.
            retries: how often files are tried again that are locked, or were changed meanwhile.

        Raises ValueError when the record is that of another script, damaged or of another version.
        """
        self.record = Path(os.fsdecode(record)).absolute()
        self._edit = None if script is None else edit_of(script)
        self._files = Tree(files).once()
        self._workers = Workers(workers, client, scheduler)
        self._max_failures = max_failures
        self._retries = retries
        self._check_record()

    def plan(self) -> Report:
        """What a run would do to each file, and what that costs. Nothing is written."""
        return self._work_on(functools.partial(_plan, self._given_edit, self.record), self._files, None)

    def run(self) -> Report:
        """Edits the files, each of them as a whole or not at all; first plans it, and edits none if too many would fail.

        Files of which the record says that they were saved are done, whatever they are now. Run a campaign that was
        stopped once more, and it goes on.
        """
        plan = self.plan()
        if len(plan.failures) >= self._max_failures:
            return Report(plan.failures, len(plan) - len(plan.failures))
        self._note_edit()
        return self._work_on(functools.partial(_edit_file, self._given_edit, self.record), self._files, self._max_failures)

    def undo(self) -> Report:
        """Puts the old metadata back, byte by byte, into all files that the campaign has saved.

        A file that was changed since stays as it is, and is reported; so does one of which the record is damaged.
        """
        records, damaged = self._records()
        report = self._work_on(functools.partial(_undo_file, self.record), [record.file for record in records], None)
        return Report([*report, *(Outcome(str(path), "failed", error=error) for path, error in damaged.items())])

    def report(self) -> Rows:
        """What the record says of each file: its state and the checksums before and after."""
        records, damaged = self._records()
        columns = ("file", "state", "before", "after", "old_length", "new_length")
        entries = [entry for record in records if (entry := record.load())]
        rows = [[getattr(entry, column) for column in columns] for entry in entries]
        return Rows(columns, rows + [[str(path), "damaged", *[None] * 4] for path in damaged])

    def __repr__(self) -> str:
        return f"<vumo.Campaign {str(self.record)!r}: {self._edit!r} in {len(self._files)} files>"

    @property
    def _given_edit(self) -> Edit:
        if self._edit is None:
            raise ValueError("the campaign has no script")
        return self._edit

    def _records(self) -> tuple[list[Record], dict[Path, str]]:
        if not self.record.is_dir():
            raise NoFileError(f"{self.record}: there is no record of a campaign", str(self.record))
        return Record.all(self.record)

    def _check_record(self) -> None:
        """Raises ValueError when the folder has the record of another edit, or one that cannot be read."""
        path = self.record / _ABOUT
        if not path.exists():
            return
        try:
            found = json.loads(path.read_bytes())
            version = found.pop("version")
        except (ValueError, KeyError, AttributeError):
            raise ValueError(f"{path} is damaged: nobody knows which campaign the record is of") from None
        if version != _VERSION:
            raise ValueError(f"{path} is of version {version}, not {_VERSION}")
        if self._edit and found != self._edit.describe():
            raise ValueError(f"{self.record} is the record of another campaign: choose another folder")

    def _note_edit(self) -> None:
        self._check_record()  # once more, as another campaign may have begun in the same folder
        about = json.dumps({"version": _VERSION, **self._given_edit.describe()}).encode()
        write(self.record / _ABOUT, about, end=f".{os.getpid()}")

    def _work_on(self, work: Callable[[bytes], Outcome], files: list[bytes], max_failures: int | None) -> Report:
        """What comes of the files, those that are busy after some more tries."""
        outcomes: dict[bytes, Outcome] = {}
        waiting = files
        in_process = self._edit is None or self._edit.in_process
        with Progress("files", len(files)) as progress:
            for round in range(self._retries + 1):
                for file, outcome in self._workers.each(work, waiting, in_process=in_process, lost=_lost):
                    outcomes[file] = outcome
                    progress.add(round == 0)
                    failures = sum(bool(outcome.error) and outcome.state != "busy" for outcome in outcomes.values())
                    if max_failures is not None and failures >= max_failures:
                        return _report(files, outcomes)
                waiting = [file for file, outcome in outcomes.items() if outcome.state == "busy"]
                if not waiting:
                    break
                if round < self._retries:
                    time.sleep(_PAUSE)
        return _report(files, outcomes)


def _report(files: list[bytes], outcomes: dict[bytes, Outcome]) -> Report:
    return Report([outcomes[file] for file in files if file in outcomes], len(files) - len(outcomes))


def _lost(file: bytes, error: str) -> Outcome:
    return Outcome(os.fsdecode(file), "failed", error=error)


def _failed(file: bytes, error: Exception) -> Outcome:
    text = str(error) or type(error).__name__
    return Outcome(os.fsdecode(file), "busy" if is_busy(error) else "failed", error=text)


def _plan(edit: Edit, folder: Path, file: bytes) -> Outcome:
    try:
        entry = Record(folder, file).load()
        if entry and entry.state == SAVED:
            return Outcome(entry.file, SAVED)
        with edit.prepare(file) as change:
            cost = change.cost
    except Exception as error:  # whatever a function raises is about this file alone
        return _failed(file, error)
    growth = cost.new_length - cost.old_length
    return Outcome(os.fsdecode(file), "unchanged" if cost.is_nothing else "planned", cost.bytes, growth)


def _edit_file(edit: Edit, folder: Path, file: bytes) -> Outcome:
    """Edits one file, unless its record says that this was done; safe to be done again at any time."""
    record = Record(folder, file)
    try:
        with record.locked():
            entry = record.load()
            if entry and entry.state == SAVING:
                entry = _resolve(edit, record, entry)
            if entry and entry.state == SAVED:
                return _outcome(entry, 0)
            with edit.prepare(file) as change:
                return _save(record, change)
    except Exception as error:
        return _failed(file, error)


def _save(record: Record, change: Change) -> Outcome:
    cost = change.cost
    before = f"{change.before:016x}"
    old_digest = record.keep(cost.position)
    name = os.fsdecode(record.file)
    entry = Entry(name, SAVING, before, "", cost.position, cost.old_length, cost.new_length, old_digest, "")
    record.store(entry)
    if not cost.is_nothing:
        try:
            change.save()
        except Error:
            record.forget()
            raise
    record.note_saved(entry, change.after())
    return _outcome(entry, cost.bytes)


def _outcome(entry: Entry, written: int) -> Outcome:
    growth = entry.new_length - entry.old_length
    return Outcome(entry.file, "unchanged" if entry.is_empty else SAVED, written, growth)


def _resolve(edit: Edit, record: Record, entry: Entry) -> Entry | None:
    """Finds out whether the save was made before which the record was written; None when it was not.

    Whoever wrote it did not come to the end. The old bytes tell what the save makes of them.
    """
    after = checksum(record.file)  # also restores a file whose save was interrupted
    if record.has_old_bytes(entry):
        record.forget()
        return None

    def apply(copy: bytes) -> None:
        with edit.prepare(copy) as change:
            change.save()

    if not record.is_old_edited(entry, apply):
        raise RuntimeError("somebody else has changed it while it was saved")
    record.note_saved(entry, after)
    return entry


def _undo_file(folder: Path, file: bytes) -> Outcome:
    record = Record(folder, file)
    try:
        with record.locked():
            entry = record.load()
            if entry is None or entry.state == UNDONE:
                return Outcome(os.fsdecode(file), UNDONE)
            return _undo(record, entry)
    except Exception as error:
        return _failed(file, error)


def _undo(record: Record, entry: Entry) -> Outcome:
    now = f"{checksum(record.file):016x}"
    if entry.state == SAVING and not record.has_old_bytes(entry):
        raise RuntimeError("the save was interrupted: run the campaign once more before it is undone")
    if entry.state == SAVED and now not in (entry.before, entry.after):
        raise RuntimeError("somebody else has changed it since it was saved")
    if now != entry.before:
        record.put_back(entry)
        if f"{checksum(record.file):016x}" != entry.before:
            raise RuntimeError("somebody else has changed it while it was restored")
    entry.state = UNDONE
    record.store(entry)
    return Outcome(entry.file, UNDONE, entry.old_length - entry.position, entry.old_length - entry.new_length)
