"""What a query gives."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import Any

_SHOWN = 20


class Rows(list[dict[str, Any]]):
    """Rows of a table: dictionaries, all with the keys `columns`. Texts that are not UTF-8 have lone surrogates."""

    def __init__(self, columns: Sequence[str], rows: Iterable[Sequence[Any]]) -> None:
        super().__init__(dict(zip(columns, _with_texts(row))) for row in rows)
        self.columns = list(columns)

    def to_frame(self) -> Any:
        """The same as a frame of pandas, which has to be there."""
        import pandas

        return pandas.DataFrame(list(self), columns=self.columns)

    def lines(self) -> list[str]:
        """The names of the columns, then the rows, with tabulators between the values."""
        return ["\t".join(self.columns), *("\t".join(map(_shown, row.values())) for row in self)]

    def __repr__(self) -> str:
        shown = [line.split("\t") for line in self.lines()[: _SHOWN + 1]]
        widths = [max(map(len, column)) for column in zip(*shown)]
        lines = ["  ".join(map(str.ljust, row, widths)).rstrip() for row in shown]
        return "\n".join(lines + (["…"] if len(self) > _SHOWN else []) + [f"({len(self)} rows)"])


def _with_texts(row: Sequence[Any]) -> list[Any]:
    return [value.decode(errors="surrogateescape") if isinstance(value, bytes) else value for value in row]


def _shown(value: Any) -> str:
    """In one line that people can read, and that any terminal takes."""
    if value is None:
        return ""
    text = str(value).encode(errors="backslashreplace").decode()
    return text.replace("\t", r"\t").replace("\n", r"\n").replace("\r", r"\r")


def as_bytes(stored: str | bytes) -> bytes:
    """What the text of a database is a name of."""
    return stored if isinstance(stored, bytes) else stored.encode()


def as_text(name: bytes) -> str | bytes:
    """The name as a database has it: as bytes where it is not UTF-8."""
    try:
        return name.decode()
    except UnicodeDecodeError:
        return name
