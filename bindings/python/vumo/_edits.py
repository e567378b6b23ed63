"""The edits of a campaign: what they would do to a file, and doing it."""

from __future__ import annotations

import contextlib
import hashlib
import inspect
import json
import os
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from typing import Any, Protocol

from . import _tool
from ._scene import Cost, Scene
from ._scene import open as open_scene
from .errors import ChangedError, Error, LockedError

#: How long an edit waits for somebody else who is saving the same file, in seconds.
LOCK_WAIT = 1.0

_BUSY = 5


@dataclass
class Change:
    """An edit of one file that has been tried and not been saved.

    Attributes:
        before: the checksum of the metadata that it was tried on.
        cost: what the save would do to the file.
        save: saves; raises subclasses of vumo.Error when it did not: ChangedError when somebody else has saved since the
            edit was tried.
        after: the checksum of the metadata after that.
    """

    before: int
    cost: Cost
    save: Callable[[], object]
    after: Callable[[], int]


class Edit(Protocol):
    """What is done to each file of a campaign."""

    #: Whether it is work for Python, and not only for the tool.
    in_process: bool

    def describe(self) -> dict[str, str]:
        """What tells it from other edits, for the campaign's record."""

    def prepare(self, file: bytes) -> contextlib.AbstractContextManager[Change]:
        """Tries it. Raises subclasses of vumo.Error, and whatever a function raises."""


@dataclass(frozen=True)
class ScriptEdit:
    """The lines of docs/formats/script.md."""

    script: str
    in_process = False

    def describe(self) -> dict[str, str]:
        return {"script": self.script}

    @contextlib.contextmanager
    def prepare(self, file: bytes) -> Iterator[Change]:
        before = checksum(file)
        document = json.loads(self._apply(file, before, "--dry-run", "--json"))
        said = document[0]["cost"]
        cost = Cost(said["position"], said["bytes"], said["oldLength"], said["newLength"])
        yield Change(before, cost, lambda: self._apply(file, before), lambda: checksum(file))

    def _apply(self, file: bytes, before: int, *options: str) -> bytes:
        """Runs the script on a file whose metadata are still the same; returns what the tool says."""
        wait = f"--lock-wait={LOCK_WAIT}"
        done = _tool.run(["apply", wait, f"--if-tail={before:016x}", *options, "--", "-", file], self.script.encode(errors="surrogateescape"))
        if done.returncode == 0:
            return done.stdout
        if done.returncode < 0:
            raise RuntimeError(f"vumo was stopped by signal {-done.returncode}")  # nobody knows what it has done
        kind = ChangedError if done.returncode == _BUSY else Error
        raise kind(done.stderr.decode(errors="surrogateescape").strip(), os.fsdecode(file))


@dataclass(frozen=True)
class FunctionEdit:
    """A function that edits a scene."""

    function: Callable[[Scene], Any]
    in_process = True

    def describe(self) -> dict[str, str]:
        name = getattr(self.function, "__qualname__", repr(self.function))
        with contextlib.suppress(OSError, TypeError):
            source = inspect.getsource(self.function)
            return {"function": name, "source": hashlib.sha256(source.encode()).hexdigest()}
        return {"function": name}

    @contextlib.contextmanager
    def prepare(self, file: bytes) -> Iterator[Change]:
        scene = open_scene(os.fsdecode(file), "r+", lock_wait=LOCK_WAIT)
        try:
            before = scene.checksum
            self.function(scene)
            yield Change(before, scene.cost(), scene.save, lambda: scene.checksum)
        finally:
            scene.close()


def edit_of(script: str | Callable[[Scene], Any] | Edit) -> Edit:
    if isinstance(script, str):
        return ScriptEdit(script)
    if hasattr(script, "prepare"):
        return script  # type: ignore[return-value]
    if not callable(script):
        raise TypeError(f"an edit is a function or the text of a script, not {script!r}")
    return FunctionEdit(script)


def checksum(file: bytes) -> int:
    """That of the metadata. Restores the file first if writing it was interrupted."""
    with open_scene(os.fsdecode(file), nodes=(), lock_wait=LOCK_WAIT) as scene:
        return scene.checksum


def is_busy(error: BaseException) -> bool:
    """Whether a new try may go better."""
    return isinstance(error, (ChangedError, LockedError))
