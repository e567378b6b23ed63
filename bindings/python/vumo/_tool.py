"""The program `vumo`, which does for many files what it does for one."""

from __future__ import annotations

import functools
import os
import shutil
import subprocess
import tempfile
from collections.abc import Sequence
from pathlib import Path

from .errors import Error, NoFileError

_MISUSED = 2  # the exit code for options that there are not


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


def scan(files: Sequence[bytes]) -> bytes:
    """The lines of docs/formats/scan.md for these files.

    A file that stops the program in the middle costs the others nothing: it gets no line.
    """
    names = b"".join(name + b"\0" for name in files)
    with tempfile.TemporaryFile() as lines:  # a pipe would be full while this process has other work
        command = [program(), "scan", "--brief", "--quiet", "-0", "--files-from", "-"]
        done = subprocess.run(command, input=names, stdout=lines, stderr=subprocess.DEVNULL, check=False)
        lines.seek(0)
        if done.returncode == _MISUSED:
            raise Error(f"{program()} is another version of vumo")
        if done.returncode >= 0:
            return lines.read()
    return b"".join(scan([name]) for name in files) if len(files) > 1 else b""
