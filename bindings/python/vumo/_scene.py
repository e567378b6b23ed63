"""Scenes, their nodes, and the channels on them."""

from __future__ import annotations

import json
import os
from collections.abc import Iterable, Iterator, Mapping, MutableMapping
from dataclasses import dataclass
from types import TracebackType
from typing import Any, Literal

import numpy as np

from . import _json, _vumo
from ._column import Views
from ._layout import Structure, as_count
from ._stream import Stream
from ._tree import Path
from .errors import not_found


@dataclass(frozen=True)
class Fault:
    """Metadata in a file that cannot be read.

    Attributes:
        kind: "structure" or "node".
        name: its name; "" for the scene's own metadata, and for a structure that nobody could make out.
        position: where it begins in the file, in bytes.
        text: what is wrong with it.
    """

    kind: Literal["structure", "node"]
    name: str
    position: int
    text: str


@dataclass(frozen=True)
class Cost:
    """What a save does to a file, in bytes.

    Attributes:
        position: of the first byte that changes, from 0.
        bytes: how many are written; 0 when nothing has to be.
        old_length: of the file.
        new_length: of the file after the save.
    """

    position: int
    bytes: int
    old_length: int
    new_length: int

    @property
    def is_nothing(self) -> bool:
        """Whether the file has all that already."""
        return self.bytes == 0 and self.old_length == self.new_length


class Channel(MutableMapping[str, Stream]):
    """The streams over one kind of component of a node, by their names.

    `channel["copy"] = stream` puts a copy there, of any scene's stream; both share the elements until one is edited.
    """

    def __init__(self, scene: Scene, node: str, name: str) -> None:
        self._scene = scene
        self.node = node
        self.name = name

    def create(
        self,
        name: str,
        members: Mapping[str, Any] | np.dtype[Any] | Structure,
        size: int = 0,
        *,
        structure: str | None = None,
        index_type: str = "numeric",
    ) -> Stream:
        """A new stream with these members (see `Structure`), of `size` elements of default values.

        Its structure has the name `structure`, or that of the stream. Raises RefusedError when the scene has another
        structure of that name, ValueError when there is a stream of the name already, or a size without numbers as
        indices, and BusyError, ClosedError or ReadOnlyError where nothing can be changed.
        """
        if name in self:
            raise ValueError(f"There is a stream {name!r} already in {self._where}")
        if size and index_type != "numeric":
            raise ValueError("only numbers are given to elements that nobody has named")
        if not isinstance(members, Structure):
            members = Structure(name if structure is None else structure, members)
        self._address(name).create(members._layout, index_type, as_count("the size", size))
        return self[name]

    def to_dict(self) -> dict[str, Any]:
        """The channel in the form of docs/formats/json.md. Raises ValueError for numbers that are not finite."""
        return _json.channel_out(self)

    def __getitem__(self, name: str) -> Stream:
        address = self._address(name)
        if not address.exists():
            raise not_found("stream", name, self, self._where, self._scene.file, self.node)
        return Stream(self._scene, address, self.node, self.name, name)

    def __setitem__(self, name: str, stream: Stream) -> None:
        self._address(name).copy(stream._address)

    def __delitem__(self, name: str) -> None:
        self[name]
        self._scene._file.remove_stream(self.node, self.name, name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._scene._file.streams(self.node, self.name))

    def __len__(self) -> int:
        return len(self._scene._file.streams(self.node, self.name))

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and self._address(name).exists()

    def __repr__(self) -> str:
        if self._scene.closed or self.name not in self._scene.get(self.node, ()):
            return f"<vumo.Channel {self.name!r} of {self.node!r}, no longer there>"
        lines = [f"<vumo.Channel {self.name!r} of {self.node!r}: {_counted(len(self), 'stream')}"]
        lines += [f"  {name}: {len(stream)} × {stream.structure!r}" for name, stream in self.items()]
        return "\n".join(lines) + ">"

    @property
    def _where(self) -> str:
        return f"the channel {self.name!r} of the node {self.node!r}"

    def _address(self, stream: str) -> _vumo.StreamAddress:
        return _vumo.StreamAddress(self._scene._file, self.node, self.name, stream)


class Node(MutableMapping[str, Channel]):
    """The metadata of one node: its channels by their names, such as "vertex" or "face".

    `node["vertex"] = channel` puts copies there of all streams of that channel, in place of those that are there.
    """

    def __init__(self, scene: Scene, name: str) -> None:
        self._scene = scene
        self.name = name

    def create(self, channel: str) -> Channel:
        """The channel of that name, made if there is none."""
        self._scene._file.add_channel(self.name, channel)
        return Channel(self._scene, self.name, channel)

    def to_dict(self) -> dict[str, Any]:
        """The node in the form of docs/formats/json.md. Raises ValueError for numbers that are not finite."""
        return _json.node_out(self)

    def __getitem__(self, channel: str) -> Channel:
        channels = self._scene._file.channels(self.name)
        if channel not in channels:
            raise not_found("channel", channel, channels, f"the node {self.name!r}", self._scene.file, self.name)
        return Channel(self._scene, self.name, channel)

    def __setitem__(self, name: str, channel: Channel) -> None:
        streams = dict(channel)
        target = self.create(name)
        for old in set(target) - set(streams):
            del target[old]
        target.update(streams)

    def __delitem__(self, channel: str) -> None:
        self[channel]
        self._scene._file.remove_channel(self.name, channel)

    def __iter__(self) -> Iterator[str]:
        return iter(self._scene._file.channels(self.name))

    def __len__(self) -> int:
        return len(self._scene._file.channels(self.name))

    def __repr__(self) -> str:
        if self._scene.closed or self.name not in self._scene:
            return f"<vumo.Node {self.name!r}, no longer there>"
        lines = [f"<vumo.Node {self.name!r}: {_counted(len(self), 'channel')}"]
        lines += [f"  {name}: {', '.join(channel)}" for name, channel in self.items()]
        return "\n".join(lines) + ">"


class Scene(MutableMapping[str, Node]):
    """The metadata of a scene file: its nodes by their names, the scene's own metadata under "". Made by `vumo.open`.

    As a context manager it saves at the end what was edited, and nothing when the block raises; then it is closed.
    Without `with`, call `save` and `close`.

    `scene["copy"] = node` puts a copy of a node there, of any scene's.
    """

    def __init__(self, file: _vumo.SceneFile, path: str, mode: str) -> None:
        self._file = file
        self._views = Views()
        self.file = path
        self.mode = mode

    @property
    def closed(self) -> bool:
        return self._file.closed

    @property
    def edited(self) -> bool:
        """Whether there is something to be saved. Arrays that can be written to count: nobody sees when they are."""
        return self._file.edited

    @property
    def checksum(self) -> int:
        """A number for all metadata of the file as they were read or saved last."""
        return self._file.checksum

    @property
    def structures(self) -> dict[str, Structure]:
        """The structures that the file declares, and those of new streams, by name."""
        return {layout.name: Structure._of(layout) for layout in self._file.structures()}

    @property
    def faults(self) -> list[Fault]:
        """What in the file cannot be read; saves leave it as it is. Reads all of the file to find out."""
        found = _vumo.faults(os.fsencode(self.file))
        return [
            Fault("structure" if is_structure else "node", name, position, text.strip())
            for is_structure, name, position, text in found
        ]

    def load(self, nodes: Iterable[str]) -> None:
        """Reads these nodes at once, which is faster than to touch one after the other. Raises MalformedError."""
        self._file.load(list(nodes))

    def create(self, node: str) -> Node:
        """The node of that name, made if there is none; one without streams is not saved.

        Raises RefusedError for one of the file that is not among the nodes that it was opened with.
        """
        self._file.add_node(node)
        return self[node]

    def declare(self, structure: Structure) -> None:
        """Adds a structure that is saved even where no stream uses it.

        Raises RefusedError when the scene has another one of its name.
        """
        self._file.declare(structure._layout)

    def undeclare(self, structure: str) -> None:
        """Takes the structure of that name out of the scene, so that another may have its name.

        A save reads and writes all nodes then, and raises RefusedError while a stream uses another structure of that
        name than the new one, or a node cannot be read. Raises KeyError when there is none of the name.
        """
        self._file.undeclare(structure)

    def to_dict(self) -> dict[str, Any]:
        """All metadata in the form of docs/formats/json.md. Raises ValueError for numbers that are not finite."""
        return _json.scene_out(self)

    def from_dict(self, document: dict[str, Any]) -> None:
        """Puts in what a document of that form holds, in place of the streams that are there.

        Raises ValueError for what is no such document; the scene has then what came before the fault.
        """
        try:
            _json.scene_in(self, document)
        except (TypeError, IndexError) as error:  # of a value or an index
            raise ValueError(f"the document is not of the form of docs/formats/json.md: {error}") from error

    def to_json(self) -> str:
        """The text of `to_dict`."""
        return json.dumps(self.to_dict(), ensure_ascii=False)

    def from_json(self, text: str | bytes) -> None:
        """`from_dict` with the document of that text, such as `vumo export` writes."""
        self.from_dict(_json.load_json(text))

    def save(self) -> None:
        """Saves what was edited, all or nothing. The scene stays open.

        Raises RefusedError for what could not be read back, ChangedError when somebody else has saved meanwhile,
        LockedError while somebody does, and others of `vumo.Error`; the file is then as it was.
        """
        self._file.save()

    def cost(self) -> Cost:
        """What a save would do to the file as it is now; the file is left alone. Raises what `save` would refuse."""
        return Cost(*self._file.estimate_save())

    def close(self) -> None:
        """Ends all use of the scene; nothing is saved. Arrays that look at it stay valid, but become read only."""
        self._file.close()
        self._views.end_writing()

    def __enter__(self) -> Scene:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        try:
            if kind is None and not self.closed and self.edited:
                self.save()
        finally:
            self.close()

    def __getitem__(self, node: str) -> Node:
        if not self._file.has_node(node):
            raise not_found("node", node, self._file.nodes(), self.file, self.file, None)
        return Node(self, node)

    def __setitem__(self, name: str, node: Node) -> None:
        channels = dict(node)
        target = self.create(name)
        for old in set(target) - set(channels):
            del target[old]
        target.update(channels)

    def __delitem__(self, node: str) -> None:
        self[node]
        self._file.remove_node(node)

    def __iter__(self) -> Iterator[str]:
        return iter(self._file.nodes())

    def __len__(self) -> int:
        return len(self._file.nodes())

    def __contains__(self, node: object) -> bool:
        return isinstance(node, str) and self._file.has_node(node)

    def __repr__(self) -> str:
        if self.closed:
            return f"<vumo.Scene {self.file!r}, closed>"
        names = list(self)
        shown = ", ".join(map(repr, names[:20])) + (", …" if len(names) > 20 else "")
        return f"<vumo.Scene {self.file!r}, mode {self.mode!r}: {_counted(len(names), 'node')}: {shown}>"


def open(
    path: Path,
    mode: Literal["r", "r+"] = "r",
    nodes: Iterable[str] | None = None,
    *,
    exact: bool = True,
    overwrite: bool = False,
    durable: bool = True,
    lock_wait: float = 0,
) -> Scene:
    """Opens a scene file (.oa or .ob) to look at its metadata ("r") or to edit them ("r+").

    The file is listed; a node is read when it is first touched. With `nodes`, those are read at once, and the scene has
    no others. What was not edited stays in the file as it is, byte by byte.

    Args:
        exact: save floating-point numbers with all the digits that they need, not with six.
        overwrite: save even when somebody else has changed the metadata meanwhile, which are lost then.
        durable: let no crash in the middle of a save harm the file.
        lock_wait: how many seconds to wait for somebody else who is writing to the file.

    Raises NoFileError, NoAccessError, NotSceneError, MalformedError and others of `vumo.Error`.
    """
    if mode not in ("r", "r+"):
        raise ValueError(f"the mode is 'r' or 'r+', not {mode!r}")
    name = os.fsdecode(path)
    if "\0" in name:
        raise ValueError(f"a name of a file has no zero character: {name!r}")
    names = None if nodes is None else list(nodes)
    wait = round(lock_wait * 1000)
    file = _vumo.SceneFile(os.fsencode(name), names, mode == "r+", exact, overwrite, durable, wait)
    return Scene(file, name, mode)


def _counted(count: int, thing: str) -> str:
    return f"{count} {thing}" + ("" if count == 1 else "s")
