"""The scene files in folders."""

from __future__ import annotations

import os
from collections.abc import Iterable

Path = str | bytes | os.PathLike[str] | os.PathLike[bytes]
Paths = Path | Iterable[Path]


_NEW_FILE_START = b".vumo-"  # of what the tool leaves that was killed while it made a new file


class Tree:
    """The scenes in folders and those below them, and files that are named.

    Attributes:
        files: their names, whole ones, without any twice; not all named ones need to be there.
        unreadable: folders that cannot be listed, with the reason.
    """

    def __init__(self, roots: Paths) -> None:
        named = [roots] if isinstance(roots, (str, bytes, os.PathLike)) else roots
        self._roots = [os.path.abspath(os.fsencode(root)) for root in named]
        self.files: dict[bytes, None] = {}
        self.unreadable: dict[bytes, str] = {}
        for root in self._roots:
            if os.path.isdir(root):
                self._walk(root)
            else:
                self.files[root] = None

    def covers(self, name: bytes) -> bool:
        """Whether the name is one of the roots, or below one."""
        return any(_is_below(name, root) for root in self._roots)

    def hides(self, name: bytes) -> bool:
        """Whether nobody can say if there is a file of that name."""
        return any(_is_below(name, folder) for folder in self.unreadable)

    def once(self) -> list[bytes]:
        """The files, each of them under one name: where links lead to, and of several names of one file the first."""
        found: dict[object, bytes] = {}
        for name in self.files:
            target = os.path.realpath(name) if os.path.islink(name) else name
            try:
                status = os.stat(target)
            except OSError:
                found[target] = target
            else:
                found.setdefault((status.st_dev, status.st_ino), target)
        return list(found.values())

    def _walk(self, folder: bytes) -> None:
        try:
            entries = sorted(os.scandir(folder), key=lambda entry: entry.name)
        except OSError as error:
            self.unreadable[folder] = error.strerror
            return
        for entry in entries:
            if entry.is_dir(follow_symlinks=False):
                self._walk(entry.path)
            elif entry.name.lower().endswith((b".oa", b".ob")) and not entry.name.startswith(_NEW_FILE_START):
                self.files[entry.path] = None


def _is_below(name: bytes, root: bytes) -> bool:
    return name == root or name.startswith(root.rstrip(b"/") + b"/")
