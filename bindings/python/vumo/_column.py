"""Arrays that look at the memory of a scene."""

from __future__ import annotations

import weakref
from typing import Any

import numpy as np
import numpy.typing as npt


class Views:
    """All arrays that look at one scene and can be written to, as far as they are still in use."""

    def __init__(self) -> None:
        self._columns: weakref.WeakValueDictionary[int, Column] = weakref.WeakValueDictionary()

    def add(self, column: Column) -> None:
        self._columns[id(column)] = column

    def end_writing(self) -> None:
        """From here on writing through any of them is an error."""
        for column in list(self._columns.values()):
            column.flags.writeable = False


class Column(np.ndarray[Any, Any]):
    """An array over the values of one member of all elements, where they lie.

    What is written to it is written to the stream. It stays valid for as long as it is in use, and so do its slices;
    meanwhile the stream can be neither resized nor removed (`BufferError`). When the scene is closed they all become
    read only. A plain array made of one, as by `np.asarray`, does not know when that happens: what is written to it
    afterwards goes nowhere.

    What is computed from columns is a plain array.
    """

    _views: Views | None = None

    @classmethod
    def over(cls, array: npt.NDArray[Any], views: Views) -> Column:
        """A column over the memory of the array."""
        column = array.view(cls)
        column._views = views
        views.add(column)
        return column

    def __array_finalize__(self, source: Any) -> None:
        # A slice of a column has it as its base; a copy, or what was picked by indices, looks at nothing.
        if isinstance(source, Column) and isinstance(self.base, Column) and source._views is not None:
            self._views = source._views
            self._views.add(self)

    # NumPy calls these two for what it has computed. Only where it was to write to a column are they given one.
    def __array_prepare__(self, array: Any, context: Any = None) -> Any:
        return array

    def __array_wrap__(self, array: Any, context: Any = None) -> Any:
        if isinstance(array, Column):
            return array
        return array[()] if array.ndim == 0 else array
