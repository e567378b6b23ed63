"""Streams of one structure become streams of another."""

from __future__ import annotations

import functools
import os
import re
from collections.abc import Mapping
from dataclasses import dataclass
from typing import Any

import numpy as np
import numpy.typing as npt

from ._layout import Member, Structure, as_values
from ._rows import Rows
from ._scene import Scene
from ._scene import open as open_scene
from ._stream import Stream
from ._tree import Paths, Tree
from ._work import Workers
from .errors import Error

_COLUMNS = ("file", "node", "channel", "stream", "member", "elements", "loss")
_MEMBER = re.compile(r"(?P<type>[^\[=]+)(?:\[(?P<length>\d+)\])?=(?P<name>.+)", re.DOTALL)


@dataclass(frozen=True)
class Loss:
    """Values that a migration does not take over.

    Attributes:
        elements: how many have one.
        text: what becomes of them.
    """

    node: str
    channel: str
    stream: str
    member: str
    elements: int
    text: str


class Migration:
    """Makes streams of the structure `new` of those of the structure `old`. Made by `vumo.migrate`.

    Call it with a scene to edit that; so it is a function for `vumo.campaign`.
    """

    def __init__(
        self, old_structure: Structure | str, new_structure: Structure | str, rules: Mapping[str, Any] | None = None
    ) -> None:
        """Each is a structure, or its text as a catalogue has it; they may have the same name.

        Args:
            rules: what happens to members that the other one has not:
                "rename": {old: new}, which are the same member;
                "default": {new: value}, for members that nothing comes from, a value or an array of an element's shape;
                "drop": [old], which go with their values;
                "reorder": True, when members that stay may stand in another order.

        Raises ValueError that lists all members for which there is no rule, or a wrong one.
        """
        self.old = _structure(old_structure)
        self.new = _structure(new_structure)
        given = dict(rules or {})
        renamed = dict(given.pop("rename", {}))
        self._defaults = dict(given.pop("default", {}))
        self._dropped = list(given.pop("drop", []))
        may_reorder = bool(given.pop("reorder", False))
        kept = [name for name in self.old.members if name not in self._dropped]
        self._sources = {renamed.get(name, name): name for name in kept}
        faults = [f"there is no rule {name!r}" for name in given]
        faults += self._faults(renamed, may_reorder)
        if faults:
            raise ValueError("; ".join(faults))

    def losses(self, scene: Scene) -> list[Loss]:
        """The values of the scene that would be lost: those of dropped members that are not the default, and those that
        another type or length cannot hold as they are. The scene is only read."""
        return [loss for stream in self._streams(scene) for loss in self._losses_of(stream)]

    def plan(self, files: Paths, workers: int = 1, *, client: Any = None, scheduler: str | None = None) -> Rows:
        """A row for each loss in these scenes, and in folders of them, and for each file that cannot be migrated.

        Nothing is written.
        """
        tree = Tree(files)
        work = functools.partial(_plan_file, self)
        found = dict(Workers(workers, client, scheduler).each(work, list(tree.files), in_process=True))
        return Rows(_COLUMNS, [row for file in tree.files for row in found[file]])

    def __call__(self, scene: Scene) -> None:
        """Edits the scene; saving it is the caller's. Raises ValueError for a number that the new type cannot hold."""
        moved = [(stream, self._columns_of(stream)) for stream in self._streams(scene)]
        if self.old.name in scene.structures and scene.structures[self.old.name] == self.old:
            scene.undeclare(self.old.name)
            scene.declare(self.new)
        for stream, (indices, columns) in moved:
            channel = scene[stream.node][stream.channel]
            kind = stream.index_type
            del channel[stream.name]
            fresh = channel.create(stream.name, self.new, index_type=kind)
            fresh.add_elements(indices)
            for member, values in columns.items():
                fresh.scatter(member, indices, values)

    def __repr__(self) -> str:
        rules = {"from": self._sources, "default": self._defaults, "drop": self._dropped}
        return f"<vumo.Migration of {self.old!r} to {self.new!r}, {rules!r}>"

    def _faults(self, renamed: Mapping[str, str], may_reorder: bool) -> list[str]:
        old, new = self.old.members, self.new.members
        faults = [f"there is no old member {name!r}" for name in [*renamed, *self._dropped] if name not in old]
        faults += [f"there is no new member {name!r}" for name in self._defaults if name not in new]
        faults += [fault for name, value in self._defaults.items() if name in new and (fault := _misfit(value, new[name]))]
        faults += [f"no rule says what becomes of {old!r}" for new_, old in self._sources.items() if new_ not in new]
        taken = [name for name in self._sources if name in new]
        faults += [f"no rule says where {name!r} comes from" for name in new if name not in [*taken, *self._defaults]]
        faults += [f"{name!r} has a default and is taken over" for name in taken if name in self._defaults]
        if len(self._sources) + len(self._dropped) < len(old):
            faults.append("two old members become the same one")
        pairs = [(old[self._sources[name]], new[name]) for name in taken if self._sources[name] in old]
        faults += [f"{was} does not become {now}" for was, now in pairs if _kind(was) != _kind(now)]
        if not may_reorder and taken != [name for name in new if name in taken]:
            faults.append("members stand in another order, and no rule says that they may")
        return faults

    def _streams(self, scene: Scene) -> list[Stream]:
        channels = [channel for node in scene.values() for channel in node.values()]
        return [stream for channel in channels for stream in channel.values() if stream.structure == self.old]

    def _columns_of(self, stream: Stream) -> tuple[Any, dict[str, Any]]:
        """The indices, and the new values of the new members, in that order."""
        indices = stream.indices
        columns = {}
        for name, member in self.new.members.items():
            if name in self._sources:
                columns[name] = _converted(stream.gather(self._sources[name], indices)[1], member)
            else:
                columns[name] = np.broadcast_to(_as_array(self._defaults[name], member), (len(indices), *member.shape))
        return indices, columns

    def _losses_of(self, stream: Stream) -> list[Loss]:
        losses = []
        for name in self.old.members:
            values = stream.gather(name, stream.indices)[1]
            if name in self._dropped:
                lost, text = _is_set(values), "dropped"
            else:
                target = next(new for new, old in self._sources.items() if old == name)
                lost, text = _is_changed(values, self.new.members[target]), f"not as it is in {self.new.members[target]}"
            count = int(lost.reshape(len(values), -1).any(axis=1).sum()) if len(values) else 0
            if count:
                losses.append(Loss(stream.node, stream.channel, stream.name, name, count, text))
        return losses


def _kind(member: Member) -> str:
    """Members of one kind can become each other."""
    is_matrix = member.shape[-2:] == (4, 4)
    return "text" if member.type == "string" else "matrix" if is_matrix else "number"


def _structure(given: Structure | str) -> Structure:
    if isinstance(given, Structure):
        return given
    fields = given.split(":")
    names = [field.removeprefix("name=") for field in fields if field.startswith("name=")]
    found = [_MEMBER.fullmatch(field) for field in fields if not field.startswith("name=")]
    if len(names) != 1 or not all(found):
        raise ValueError(f"{given!r} is no text of a structure")
    members = [(each["name"], each["type"], int(each["length"] or 1)) for each in found if each]
    return Structure.of_types(names[0], members)


def _plan_file(migration: Migration, file: bytes) -> list[tuple[Any, ...]]:
    """The rows of a plan for one file."""
    name = os.fsdecode(file)
    try:
        with open_scene(name) as scene:
            return [(name, *vars(loss).values()) for loss in migration.losses(scene)]
    except Error as error:
        return [(name, error.node, None, None, None, None, str(error))]


def _by_value(values: npt.NDArray[Any], member: Member) -> npt.NDArray[Any]:
    """A column with an axis for the values of an element, also where there is one: (n, k) or (n, k, 4, 4)."""
    return values.reshape(len(values), -1, *(member.shape[-2:] if member.shape[-2:] == (4, 4) else ()))


def _converted(values: npt.NDArray[Any], member: Member) -> npt.NDArray[Any]:
    """The column as one of that member: what is too much is cut off, and what is missing has the default value."""
    given = _by_value(values, member)[:, : member.dimension]
    missing = [(0, 0)] * given.ndim
    missing[1] = (0, member.dimension - given.shape[1])
    if member.type == "string":
        return np.pad(given, missing, constant_values="").reshape(len(values), *member.shape)
    return as_values(np.pad(given, missing).reshape(len(values), *member.shape), member.dtype, (len(values), *member.shape))


def _is_changed(values: npt.NDArray[Any], member: Member) -> npt.NDArray[np.bool_]:
    """Where the column does not stay as it is when it becomes one of that member."""
    given = _by_value(values, member)
    lost = _is_set(given)
    lost[:, : member.dimension] = False
    if member.type != "string":
        with np.errstate(all="ignore"):
            new = given.astype(member.dtype)
            lost |= (new != given) | (new.astype(given.dtype) != given)
    return lost


def _is_set(values: npt.NDArray[Any]) -> npt.NDArray[np.bool_]:
    """Where the values are not those of a new element."""
    if values.dtype != object:
        return np.asarray(values != 0)
    return np.array([bool(value) for value in values.ravel()], dtype=bool).reshape(values.shape)


def _misfit(value: Any, member: Member) -> str | None:
    """Why the value is none for that member."""
    try:
        values = _as_array(value, member)
    except (TypeError, ValueError) as error:
        return f"{member.name!r} cannot have the default {value!r}: {error}"
    if member.type == "string" and not all(isinstance(text, str) for text in values.flat):
        return f"{member.name!r} cannot have the default {value!r}: it is no text"
    return None


def _as_array(value: Any, member: Member) -> npt.NDArray[Any]:
    if member.type != "string":
        return as_values(value, member.dtype, member.shape)
    texts = np.empty(member.shape, dtype=object)
    texts[...] = value
    return texts
