"""Scenes as dictionaries and lists, in the form of docs/formats/json.md."""

from __future__ import annotations

import base64
import json
import os
from collections.abc import Callable, Iterator
from typing import TYPE_CHECKING, Any

import numpy as np

from ._layout import Member, Structure, as_count, as_values

if TYPE_CHECKING:
    from ._scene import Channel, Node, Scene
    from ._stream import Stream

Json = dict[str, Any]


def text_out(text: str) -> Any:
    """A text; one whose bytes are not UTF-8 as an object."""
    data = os.fsencode(text)
    try:
        return data.decode()
    except UnicodeDecodeError:
        return {"base64": base64.b64encode(data).decode()}


def text_in(value: Any) -> str:
    if isinstance(value, dict) and list(value) == ["base64"]:
        return os.fsdecode(base64.b64decode(value["base64"], validate=True))
    if not isinstance(value, str):
        raise ValueError(f"{value!r} is no text")
    return value


def scene_out(scene: Scene) -> Json:
    nodes = [node_out(scene[name]) for name in sorted(scene, key=os.fsencode) if len(scene[name])]
    return {"vumo": 1, "structures": [structure_out(each) for each in scene.structures.values()], "nodes": nodes}


def node_out(node: Node) -> Json:
    return {"node": text_out(node.name), "channels": [channel_out(channel) for channel in node.values()]}


def channel_out(channel: Channel) -> Json:
    return {"channel": text_out(channel.name), "streams": [stream_out(stream) for stream in channel.values()]}


def structure_out(structure: Structure) -> Json:
    return {"structure": text_out(structure.name), "members": [_member_out(m) for m in structure.members.values()]}


def stream_out(stream: Stream) -> Json:
    members = stream.structure.members.values()
    names = [text_out(member.name) for member in members]
    columns = [_column_out(member, stream.gather(member.name)[1]) for member in members]
    rows = zip(*columns) if columns else [()] * len(stream)
    is_keyed = all(isinstance(name, str) for name in names)
    elements = [
        {"index": index, "values": dict(zip(names, row)) if is_keyed else list(row)}
        for index, row in zip(_indices_out(stream), rows)
    ]
    return {
        "stream": text_out(stream.name),
        "structure": text_out(stream.structure.name),
        "indexType": stream.index_type,
        "elements": elements,
    }


def _member_out(member: Member) -> Json:
    length = {} if member.dimension == 1 else {"length": member.dimension}
    return {"name": text_out(member.name), "type": member.type, **length}


def _indices_out(stream: Stream) -> list[Any]:
    indices = stream.indices
    return [text_out(index) for index in indices] if isinstance(indices, list) else list(indices.tolist())


def _column_out(member: Member, values: Any) -> list[Any]:
    _require_finite(member, values)
    if member.type == "string":
        values = _each(text_out, values)
    elif values.dtype == np.float32:
        values = _each(_shortened, values)
    return list(values.tolist())


def _require_finite(member: Member, values: Any) -> None:
    if values.dtype.kind == "f" and not np.isfinite(values).all():
        raise ValueError(f"a value of the member {member.name!r} is not finite")


def _shortened(value: np.float32) -> float:
    """The number with no more digits than a float needs; with six if they do, as the tool writes subnormal ones."""
    six = float(f"{value:.6g}")
    return six if np.float32(six) == value else float(str(value))


def _each(function: Callable[[Any], Any], values: Any) -> Any:
    result = np.empty(values.shape, dtype=object)
    for i, value in enumerate(values.flat):
        result.flat[i] = function(value)
    return result


def scene_in(scene: Scene, document: Any) -> None:
    version, structures, nodes = _take(document, "the document", "vumo", "structures", "nodes")
    if version != 1:
        raise ValueError(f"version {version!r} of the format is not known")
    layouts = {name: _structure_in(name, each) for name, each in _named(structures, "structure", "members")}
    for structure in layouts.values():
        scene.declare(structure)
    for node, (channels,) in _named(nodes, "node", "channels"):
        scene.create(node)
        for channel, (streams,) in _named(channels, "channel", "streams"):
            target = scene[node].create(channel)
            for stream, content in _named(streams, "stream", "structure", "indexType", "elements"):
                _stream_in(target, stream, layouts, *content)


def load_json(text: str | bytes) -> Any:
    """The document of that text; refuses a key that comes twice."""

    def unique(pairs: list[tuple[str, Any]]) -> Json:
        result = dict(pairs)
        if len(result) < len(pairs):
            raise ValueError("a key comes twice in an object")
        return result

    def refuse(constant: str) -> Any:
        raise ValueError(f"{constant} is no number in JSON")

    return json.loads(text, object_pairs_hook=unique, parse_constant=refuse)


def _structure_in(name: str, content: tuple[Any, ...]) -> Structure:
    members = []
    for member in _list(content[0], f"members in the structure {name!r}"):
        length = member.get("length", 1) if isinstance(member, dict) else None
        fields = {key: value for key, value in member.items() if key != "length"} if length is not None else member
        member_name, member_type = _take(fields, f"a member of the structure {name!r}", "name", "type")
        if not isinstance(member_type, str):
            raise ValueError(f"{member_type!r} is no type of members")
        members.append((text_in(member_name), member_type, as_count("a length", length)))
    return Structure.of_types(name, members)


def _stream_in(
    channel: Channel, name: str, layouts: dict[str, Structure], structure: Any, index_type: str, elements: Any
) -> None:
    layout = layouts.get(text_in(structure))
    if layout is None:
        raise ValueError(f"there is no structure {structure!r} for the stream {name!r}")
    if not isinstance(index_type, str):
        raise ValueError(f"{index_type!r} is no type of indices")
    if name in channel:
        del channel[name]
    stream = channel.create(name, layout, index_type=index_type)
    if not _list(elements, f"elements in the stream {name!r}"):
        return
    members = list(layout.members.values())
    indices, rows = [], []
    for element in elements:
        index, values = _take(element, f"an element of the stream {name!r}", "index", "values")
        indices.append(index if index_type in ("numeric", "pair") else text_in(index))
        if isinstance(values, dict):
            values = _take(values, f"the element {index!r} of {name!r}", *(member.name for member in members))
        elif not isinstance(values, list) or len(values) != len(members):
            raise ValueError(f"the element {index!r} of {name!r} does not have {len(members)} values")
        rows.append(values)
    if len(set(map(repr, indices))) < len(indices):
        raise ValueError(f"an index comes twice in the stream {name!r}")
    stream.add_elements(indices)
    for place, member in enumerate(members):
        values = [row[place] for row in rows]
        if member.type == "string":
            values = _each(lambda value: None if value is None else text_in(value), _objects(values, member))
        else:
            values = as_values(values, member.dtype, (len(values), *member.shape))
            _require_finite(member, values)
        stream.scatter(member.name, indices, values)


def _objects(values: list[Any], member: Member) -> Any:
    """The texts as an array of objects, which NumPy alone would take dictionaries apart for."""
    result = np.empty((len(values), *member.shape), dtype=object)
    for i, value in enumerate(values):
        result[i] = value
    return result


def _named(entries: Any, kind: str, *keys: str) -> Iterator[tuple[str, tuple[Any, ...]]]:
    """The names of these objects, each of them once, and what they hold under the other keys."""
    seen = set()
    for entry in _list(entries, f"{kind}s"):
        name, *content = _take(entry, f"a {kind}", kind, *keys)
        name = text_in(name)
        if name in seen:
            raise ValueError(f"the {kind} {name!r} comes twice")
        seen.add(name)
        yield name, tuple(content)


def _list(entries: Any, of: str) -> list[Any]:
    if not isinstance(entries, list):
        raise ValueError(f"there is no list of {of}")
    return entries


def _take(entry: Any, what: str, *keys: str) -> tuple[Any, ...]:
    """What the object holds under these keys, which must be all that it has."""
    if not isinstance(entry, dict):
        raise ValueError(f"{what} is no object")
    for key in [*keys, *entry]:
        if (key in entry) != (key in keys):
            raise ValueError(f"{what} {'has no' if key in keys else 'must not have a'} key {key!r}")
    return tuple(entry[key] for key in keys)
