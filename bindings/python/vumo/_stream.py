"""Streams, and the elements in them."""

from __future__ import annotations

from collections.abc import Iterator, Mapping, MutableMapping
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from . import _vumo
from ._column import Column
from ._json import stream_out
from ._layout import Member, Structure, as_count, as_indices, as_strings, as_values
from .errors import not_found

if TYPE_CHECKING:
    import pandas

    from ._scene import Scene

_ROWS_SHOWN = 5


class Stream:
    """An indexed list of elements that all have the members of one structure.

    `stream["Weight"]` is the column of a member: its values in all elements, in the order of `stream.indices`. Where
    `stream.dense` is true, it is an array that looks at the elements themselves: what is written to it is written to
    the stream. Elsewhere, and for strings, it is a copy that is read only.

    `stream["Weight"] = values` writes all values; one value stands for all of them. With a pair,
    `stream["Weight"] = indices, values`, it writes those at the indices, as `scatter` does.

    `stream[7]`, or `stream[0, 3]` where indices are pairs, is one element; `stream[7] = {"Weight": 0.5}` makes it if
    there is none; `del stream[7]` removes it. Use `element` where indices are strings.

    `len(stream)` is the number of elements, and `for name in stream` goes over the members.
    """

    def __init__(self, scene: Scene, address: _vumo.StreamAddress, node: str, channel: str, name: str) -> None:
        self._scene = scene
        self._address = address
        self.node = node
        self.channel = channel
        self.name = name

    @property
    def structure(self) -> Structure:
        return Structure._of(self._address.structure)

    @property
    def index_type(self) -> str:
        """The name of the type of the indices: "numeric", "pair", "string" or one that a plug-in has registered."""
        return self._address.index_type

    @property
    def dense(self) -> bool:
        """Whether the indices are the numbers from 0, without gaps, so that columns look at the elements themselves."""
        return self._address.make_dense()

    @property
    def indices(self) -> Any:
        """The indices in ascending order: uint32 (n,), for pairs (n, 2), for others a list of their texts. A copy."""
        return self._address.indices()

    @property
    def records(self) -> npt.NDArray[Any]:
        """The elements as a structured array (n,) of the type `structure.dtype`, which leaves strings out.

        It looks at the elements themselves where the stream is dense, and can be written to if there are no strings.
        """
        structure = self.structure
        if not self.dense:
            records = np.zeros(len(self), structure.dtype)
            for name in structure.dtype.names or ():
                records[name] = self._address.gather(name, None)
            records.flags.writeable = False
            return records
        has_strings = any(member.type == "string" for member in structure.members.values())
        return self._watched(self._address.records(structure.dtype, has_strings))

    def gather(self, member: str, indices: Any = None) -> tuple[Any, npt.NDArray[Any]]:
        """A member's values at some indices, or at all: the indices, and a new array (n, …) in their order.

        Strings are an array of objects. Raises KeyError where there is no such member or element.
        """
        self._member(member)
        if indices is None:
            return self.indices, self._address.gather(member, None)
        places = as_indices(self.index_type, indices)
        return places, self._address.gather(member, places)

    def scatter(self, member: str, indices: Any, values: Any) -> None:
        """Writes a member's values at the indices, in their order; makes the elements that are missing.

        `values` has the shape (n, …), or is one value for all. Raises KeyError where there is no such member,
        TypeError or ValueError for values that the member cannot hold, and BufferError where elements would have to
        move at which arrays look.
        """
        self._write(member, as_indices(self.index_type, indices), values)

    def element(self, index: Any) -> Element:
        """The element at that index. Raises KeyError when there is none."""
        if not self.has_element(index):
            raise not_found("element", index, self._texts_of_indices(), repr(self.name), self._scene.file, self.node)
        return Element(self, index)

    def has_element(self, index: Any) -> bool:
        return self._address.has_element(as_indices(self.index_type, [index]))

    def set_element(self, index: Any, values: Mapping[str, Any]) -> Element:
        """Writes these members of the element at the index, which is made if there is none."""
        for member in values:
            self._member(member)
        self._address.add_elements(as_indices(self.index_type, [index]))
        element = Element(self, index)
        element.update(values)
        return element

    def add_elements(self, indices: Any) -> None:
        """Makes the elements at the indices that are missing, with default values.

        Raises BufferError where elements would have to move at which arrays look.
        """
        self._address.add_elements(as_indices(self.index_type, indices))

    def remove_element(self, index: Any) -> None:
        """Removes the element. Raises KeyError when there is none, and BufferError while arrays look at elements."""
        self.element(index)
        self._address.remove_element(as_indices(self.index_type, [index]))

    def elements(self) -> Iterator[tuple[Any, Element]]:
        """All indices and elements in ascending order."""
        for index in self.indices:
            key = tuple(index.tolist()) if self.index_type == "pair" else index
            yield key, Element(self, key)

    def resize(self, size: int) -> None:
        """Gives a dense stream `size` elements; new ones have default values.

        Raises ValueError for other streams, and BufferError while arrays look at the elements.
        """
        self._address.resize(as_count("the size", size))

    def to_frame(self) -> pandas.DataFrame:
        """A copy as a pandas frame: a column for each number or string of an element, the indices as its index."""
        import pandas

        index: Any = self.indices
        if self.index_type == "pair":
            index = pandas.MultiIndex.from_arrays([index[:, 0], index[:, 1]], names=["first", "second"])
        columns: dict[str, Any] = {}
        for member in self.structure.members.values():
            values = self._address.gather(member.name, None)
            for place in np.ndindex(*values.shape[1:]):
                suffix = f"[{','.join(map(str, place))}]" if place else ""
                key: Any = (..., *place)
                columns[member.name + suffix] = values[key]
        return pandas.DataFrame(columns, index=index)

    def to_dict(self) -> dict[str, Any]:
        """The stream in the form of docs/formats/json.md. Raises ValueError for numbers that are not finite."""
        return stream_out(self)

    def keys(self) -> list[str]:
        """The names of the members."""
        return list(self.structure.members)

    def __len__(self) -> int:
        return len(self._address)

    def __iter__(self) -> Iterator[str]:
        return iter(self.keys())

    def __contains__(self, key: object) -> bool:
        return key in self.structure.members if isinstance(key, str) else self.has_element(key)

    def __getitem__(self, key: Any) -> Any:
        if not isinstance(key, str):
            return self.element(key)
        if self._member(key).type == "string" or not self.dense:
            values = self._address.gather(key, None)
            values.flags.writeable = False
            return values
        return self._watched(self._address.view(key))

    def __setitem__(self, key: Any, value: Any) -> None:
        if not isinstance(key, str):
            self.set_element(key, value)
        elif isinstance(value, tuple) and len(value) == 2:
            self.scatter(key, *value)
        elif self._member(key).type != "string" and self.dense:
            column = self[key]
            if not _is_same(column, value):
                column[...] = as_values(value, column.dtype, column.shape)
        else:
            self._write(key, None, value)

    def __delitem__(self, index: Any) -> None:
        self.remove_element(index)

    def __eq__(self, other: object) -> bool:
        """Whether both have the same structure, and the same values at the same indices."""
        if not isinstance(other, Stream):
            return NotImplemented
        return (
            self.structure == other.structure
            and self.index_type == other.index_type
            and np.array_equal(self.indices, other.indices)
            and all(np.array_equal(self.gather(name)[1], other.gather(name)[1]) for name in self)
        )

    __hash__ = None  # type: ignore[assignment]  # what it holds can change

    def __repr__(self) -> str:
        if self._is_gone:
            return f"<vumo.Stream {self.name!r}, no longer there>"
        members = self.structure.members.values()
        lines = [
            f"<vumo.Stream {self.name!r} in {self.node!r}/{self.channel!r}: {len(self)} elements at {self.index_type} "
            f"indices, structure {self.structure.name!r}",
            "  index: " + ", ".join(map(str, members)),
        ]
        for index, element in self.elements():
            if len(lines) == _ROWS_SHOWN + 2:
                lines.append("  …")
                break
            lines.append(f"  {index}: " + ", ".join(repr(_plain(value)) for value in element.values()))
        return "\n".join(lines) + ">"

    @property
    def _is_gone(self) -> bool:
        return self._scene.closed or not self._address.exists()

    def _member(self, name: str) -> Member:
        members = self.structure.members
        if name not in members:
            where = f"the structure {self.structure.name!r}"
            raise not_found("member", name, members, where, self._scene.file, self.node)
        return members[name]

    def _write(self, name: str, indices: Any, values: Any) -> None:
        member = self._member(name)
        shape = (len(self) if indices is None else len(indices), *member.shape)
        if member.type == "string":
            self._address.scatter_strings(name, indices, as_strings(values, shape))
        else:
            self._address.scatter(name, indices, as_values(values, member.dtype, shape))

    def _watched(self, array: npt.NDArray[Any]) -> npt.NDArray[Any]:
        return Column.over(array, self._scene._views) if array.flags.writeable else array

    def _texts_of_indices(self) -> list[str]:
        return list(self.indices) if self.index_type == "string" else []


class Element(MutableMapping[str, Any]):
    """One element of a stream: its members and their values.

    A value is a number, a string, or a new array (k,), (4, 4) or (k, 4, 4) that is read only: assign a whole one to
    change it.
    """

    def __init__(self, stream: Stream, index: Any) -> None:
        self._stream = stream
        self.index = index

    def __getitem__(self, member: str) -> Any:
        values = self._stream.gather(member, [self.index])[1]
        if values.ndim == 1:
            return values[0]
        values.flags.writeable = False
        return values[0]

    def __setitem__(self, member: str, value: Any) -> None:
        self._stream.element(self.index)
        is_text = isinstance(value, str) or value is None
        self._stream.scatter(member, [self.index], value if is_text else [value])

    def __delitem__(self, member: str) -> None:
        raise TypeError("members cannot be removed from an element")

    def __iter__(self) -> Iterator[str]:
        return iter(self._stream)

    def __len__(self) -> int:
        return len(self._stream.keys())

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mapping):
            return NotImplemented
        return self.keys() == other.keys() and all(np.array_equal(value, other[name]) for name, value in self.items())

    def __repr__(self) -> str:
        if self._stream._is_gone or not self._stream.has_element(self.index):
            return f"<vumo.Element {self.index!r} of {self._stream.name!r}, no longer there>"
        values = ", ".join(f"{name}={_plain(value)!r}" for name, value in self.items())
        return f"<vumo.Element {self.index!r} of {self._stream.name!r}: {values}>"


def _is_same(column: npt.NDArray[Any], value: Any) -> bool:
    """Whether the value is the column itself, as at the end of `stream["Weight"] += 1`."""
    return isinstance(value, np.ndarray) and value.__array_interface__ == column.__array_interface__


def _plain(value: Any) -> Any:
    """A value in Python's own types."""
    return value.tolist() if isinstance(value, (np.ndarray, np.generic)) else value
