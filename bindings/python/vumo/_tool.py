"""The program `vumo`, which does for many files what it does for one."""

from __future__ import annotations

import functools
import os
import shutil
import subprocess
from collections.abc import Sequence
from pathlib import Path

from .errors import NoFileError


@functools.cache
def program() -> str:
    """Where the tool is: what VUMO_TOOL says, that of the prefix in which this package lies, or the one of PATH."""
    of_prefix = next((str(folder / "bin/vumo") for folder in Path(__file__).parents if (folder / "bin/vumo").exists()), None)
    found = os.environ.get("VUMO_TOOL") or of_prefix or shutil.which("vumo")
    if found is None:
        raise NoFileError("the program vumo is not in PATH; set VUMO_TOOL to where it is")
    return found


def run(arguments: Sequence[str | bytes], given: bytes = b"") -> subprocess.CompletedProcess[bytes]:
    """Runs it with that on its standard input."""
    return subprocess.run([program(), *arguments], input=given, capture_output=True, check=False)


def scan(files: Sequence[bytes]) -> list[bytes]:
    """The lines of docs/formats/scan.md for these files, each with its end.

    A file that stops the program in the middle costs the others nothing: it gets no line.
    """
    done = run(["scan", "--quiet", "-0", "--files-from", "-"], b"".join(name + b"\0" for name in files))
    if done.returncode >= 0:
        return done.stdout.splitlines(keepends=True)
    return [line for name in files for line in scan([name])] if len(files) > 1 else []
