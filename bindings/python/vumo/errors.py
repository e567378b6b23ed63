"""What can go wrong with scene files: `Error`, and a subclass for each kind of failure."""

from __future__ import annotations

import difflib
import os
from collections.abc import Iterable
from typing import Any


class Error(Exception):
    """A failure of a scene file.

    Attributes:
        text: what went wrong, in English.
        file: the scene file, or None.
        node: the node that it is about, "" for the scene's own metadata, or None.
        position: where in the file the metadata in question begin, in bytes, or None.
    """

    def __init__(
        self,
        text: str,
        file: str | None = None,
        node: str | None = None,
        position: int | None = None,
    ) -> None:
        super().__init__(text)
        self.text = text
        self.file = file
        self.node = node
        self.position = position

    def __str__(self) -> str:
        return self.text

    def __reduce__(self) -> tuple[Any, ...]:
        system_error = getattr(self, "errno", None) or 0  # which OSError would leave behind
        return _of, (type(self), self.text, self.file, self.node, self.position, system_error)


class NoFileError(Error, FileNotFoundError):
    """There is no such file."""


class NoAccessError(Error, PermissionError):
    """The file must not be read, or must not be written to."""


class NotSceneError(Error, ValueError):
    """The file is no scene, or none of the kind that its name says."""


class MalformedError(Error, ValueError):
    """The end of the scene, or its metadata, are damaged."""


class RefusedError(Error, ValueError):
    """What is to be written could not be read again."""


class LockedError(Error):
    """Somebody else is writing to the file."""


class ChangedError(Error):
    """Somebody else has changed the metadata since they were read."""


class NotRestoredError(Error):
    """An earlier save was interrupted, and the file cannot be restored."""


class SystemCallError(Error, OSError):
    """Another call of the system failed; `errno` says how."""


class ClosedError(Error, ValueError):
    """The scene was closed already."""


class ReadOnlyError(Error):
    """The scene was opened to be read only."""


class BusyError(Error, RuntimeError):
    """Another thread is reading or writing the same scene object."""


class CatalogError(Error):
    """What is to be a catalogue is none, or cannot be read, or must not be written to."""


class NotFoundError(Error, KeyError):
    """There is no node, channel, stream, member or element of that name; the text has the nearest names."""


def make(
    kind: str, text: str, file: str | None, node: str | None, position: int | None, system_error: int
) -> Error:
    """The exception of the class of that name, for the extension module."""
    text = text.strip()
    if file is not None and file not in text:
        text = f"{file}: {text}"
    return _of(globals()[kind], text, file, node, position, system_error)


def _of(
    kind: type[Error], text: str, file: str | None, node: str | None, position: int | None, system_error: int
) -> Error:
    error = kind(text, file, node, position)
    if isinstance(error, OSError):
        error.filename = file
        if system_error:
            error.errno = system_error
            error.strerror = os.strerror(system_error)
    return error


def not_found(what: str, name: object, names: Iterable[str], where: str, file: str, node: str | None) -> NotFoundError:
    """The error that there is no `what` of that name; `where` says among what the names are."""
    near = difflib.get_close_matches(str(name), list(names), n=3, cutoff=0.5)
    hint = f"; did you mean {' or '.join(map(repr, near))}?" if near else ""
    return NotFoundError(f"There is no {what} {name!r} in {where}{hint}", file, node)
