"""Structures and the types of their members, in terms of NumPy."""

from __future__ import annotations

import operator
from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from typing import Any, SupportsIndex

import numpy as np
import numpy.typing as npt

from . import _vumo

_NUMBERS = {
    "bool": "?", "double": "f8", "float": "f4",
    "int8": "i1", "int16": "i2", "int32": "i4", "int64": "i8",
    "uint8": "u1", "uint16": "u2", "uint32": "u4", "uint64": "u8",
}  # fmt: skip
_MATRICES = {"dbl4x4": "f8", "flt4x4": "f4"}
_TYPE_OF_NUMBERS = {np.dtype(code): name for name, code in _NUMBERS.items()}
_TYPE_OF_MATRICES = {np.dtype(code): name for name, code in _MATRICES.items()}


@dataclass(frozen=True)
class Member:
    """A member of a structure.

    Attributes:
        name: its name.
        type: the name of its type, such as "float", "flt4x4" or "string".
        dimension: how many values of the type an element has.
        offset: where in an element's record the first of them lies, in bytes.
    """

    name: str
    type: str
    dimension: int
    offset: int

    @property
    def dtype(self) -> np.dtype[Any]:
        """The type of its numbers in arrays; that of objects for strings."""
        code = _NUMBERS.get(self.type) or _MATRICES.get(self.type)
        return np.dtype(code or "O")

    @property
    def shape(self) -> tuple[int, ...]:
        """The shape of an element's values: () for one number, (k,) for several, and 4, 4 after that for matrices."""
        values = () if self.dimension == 1 else (self.dimension,)
        return values + ((4, 4) if self.type in _MATRICES else ())

    def __str__(self) -> str:
        return f"{self.name}:{self.type}" + (f"[{self.dimension}]" if self.dimension > 1 else "")


class Structure:
    """A named record layout: the members that all elements of a stream have.

    `members` maps names to types: a NumPy type ("f4", bool, np.int32 …), `str`, or a pair of a type and how many values
    there are: ("f4", 3). Of floating-point numbers, (4, 4) makes a matrix, and (n, 4, 4) several. A NumPy dtype with
    fields is also taken. Raises TypeError for types that there are not.
    """

    def __init__(self, name: str, members: Mapping[str, Any] | np.dtype[Any]) -> None:
        if isinstance(members, np.dtype):
            members = {field: members[field] for field in members.names or ()}
        types = [(member, *_type_of(kind)) for member, kind in members.items()]
        self._layout = _vumo.Layout(name, types)

    @classmethod
    def of_types(cls, name: str, members: Iterable[tuple[str, str, int]]) -> Structure:
        """One of members of which each has a name, the name of its type in scenes, and a dimension.

        Raises ValueError where one of them makes no member.
        """
        return cls._of(_vumo.Layout(name, list(members)))

    @classmethod
    def _of(cls, layout: _vumo.Layout) -> Structure:
        structure = cls.__new__(cls)
        structure._layout = layout
        return structure

    @property
    def name(self) -> str:
        return self._layout.name

    @property
    def members(self) -> dict[str, Member]:
        """The members by name, in their order."""
        return {member[0]: Member(*member) for member in self._layout.members}

    @property
    def dtype(self) -> np.dtype[Any]:
        """The layout of a record, with explicit offsets. Strings are left out: what lies there is no text."""
        numbers = [member for member in self.members.values() if member.type != "string"]
        return np.dtype(
            {
                "names": [member.name for member in numbers],
                "formats": [(member.dtype, member.shape) for member in numbers],
                "offsets": [member.offset for member in numbers],
                "itemsize": self._layout.size,
            }
        )

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Structure) and self._layout == other._layout

    def __hash__(self) -> int:
        return hash(self.name)

    def __reduce__(self) -> tuple[Any, ...]:
        members = [(member.name, member.type, member.dimension) for member in self.members.values()]
        return Structure.of_types, (self.name, members)

    def __repr__(self) -> str:
        return f"<vumo.Structure {self.name!r}: {', '.join(map(str, self.members.values()))}>"


def _type_of(kind: Any) -> tuple[str, int]:
    """The name of the type and the dimension of a member that is described so."""
    if kind in (str, "string"):
        return "string", 1
    if isinstance(kind, tuple) and len(kind) == 2 and kind[0] in (str, "string"):
        return "string", as_count("a dimension", kind[1])
    if isinstance(kind, str) and kind == "float":
        raise TypeError('"float" means different types in NumPy and in scenes: say "f4" or "f8"')
    dtype = np.dtype(kind)
    base, shape = dtype.base, dtype.shape
    if shape[-2:] == (4, 4) and len(shape) <= 3 and base in _TYPE_OF_MATRICES:
        return _TYPE_OF_MATRICES[base], shape[0] if len(shape) == 3 else 1
    if len(shape) > 1 or base not in _TYPE_OF_NUMBERS:
        raise TypeError(f"no member can hold {dtype}")
    return _TYPE_OF_NUMBERS[base], shape[0] if shape else 1


def as_count(what: str, count: SupportsIndex) -> int:
    """The count as a number; ValueError for one that no stream can have."""
    number = operator.index(count)
    if not 0 <= number <= np.iinfo(np.uint32).max:
        raise ValueError(f"{what} is a number from 0 to 4294967295, not {number}")
    return number


def as_values(values: npt.ArrayLike, dtype: np.dtype[Any], shape: tuple[int, ...]) -> npt.NDArray[Any]:
    """The numbers as an array of that type and shape; raises where that would change one of them.

    Only digits that a floating-point type has not are lost without a word.
    """
    given = np.asarray(values)
    if dtype.kind in "iu" and given.dtype.kind in "fO" and not isinstance(values, np.ndarray):
        given = np.asarray(values, dtype=object)  # NumPy takes a list of large whole numbers for one of doubles
    elif given.dtype.kind not in "biuf":
        raise TypeError(f"numbers are expected, not {given.dtype}")
    converted = given if given.dtype == dtype else _converted(given, dtype)
    return np.ascontiguousarray(np.broadcast_to(converted, shape))


def _converted(given: npt.NDArray[Any], dtype: np.dtype[Any]) -> npt.NDArray[Any]:
    try:
        with np.errstate(all="ignore"):
            converted = given.astype(dtype)
        is_kept = np.isinf(converted) <= np.isinf(given) if dtype.kind == "f" else converted == given
    except OverflowError:
        is_kept = False
    if not np.all(is_kept):
        raise ValueError(f"a value does not fit into {dtype}")
    return converted


def as_strings(values: Any, shape: tuple[int, ...]) -> list[str | None]:
    """The strings, and None for those that are not set, of a list or an array of that shape, as a flat list."""
    if isinstance(values, str) or values is None:
        return [values] * int(np.prod(shape))
    array = np.empty(shape, dtype=object)
    array[...] = np.asarray(values, dtype=object)
    return list(array.ravel().tolist())


def as_indices(index_type: str, indices: Any) -> Any:
    """The indices of that type as the extension module takes them: an array of uint32, or a list of texts."""
    if index_type not in ("numeric", "pair"):
        if isinstance(indices, str):
            raise TypeError("a list of indices is expected, not one")
        return [str(index) for index in indices]
    numbers = np.asarray(indices)
    if numbers.size == 0:
        numbers = numbers.astype(np.uint32)
    if numbers.dtype.kind not in "iu":
        raise TypeError(f"indices are whole numbers, not {numbers.dtype}")
    if numbers.ndim != (1 if index_type == "numeric" else 2) and numbers.size:
        raise ValueError(f"indices of the type {index_type} do not have the shape {numbers.shape}")
    if index_type == "pair" and numbers.size and numbers.shape[1] != 2:
        raise ValueError(f"pairs have the shape (n, 2), not {numbers.shape}")
    if numbers.size and (numbers.min() < 0 or numbers.max() > np.iinfo(np.uint32).max):
        raise IndexError("an index is no number from 0 to 4294967295")
    return np.ascontiguousarray(numbers, dtype=np.uint32)
