"""A process of Python that works for this one.

It is started anew, as a program of its own: a copy of a process that has threads, as hosts and NumPy have, may wait for
ever. The program that runs here is not run again in it, so a script needs no guard at its start.
"""

from __future__ import annotations

import multiprocessing.spawn
import pickle
import signal
import subprocess
import sys
from collections.abc import Callable
from multiprocessing.connection import Connection, Pipe
from typing import Any

_PROGRAM = "import sys; sys.path[:] = {!r}; from vumo._process import serve; serve({})"


class WorkerDied(RuntimeError):
    """A worker process ended in the middle of its work."""


def packed(work: Callable[[Any], Any]) -> bytes:
    """The work for other processes: functions of a script or a notebook with all that they use, others by their names.

    Raises ValueError when it holds what is of this process alone.
    """
    import cloudpickle

    try:
        return bytes(cloudpickle.dumps(work))
    except (TypeError, pickle.PicklingError) as error:
        raise ValueError(f"the function uses what cannot be sent to another process, so use one worker: {error}") from error


class Process:
    """One that does the same work on many things; started with the first of them, and again if it has died.

    It runs the Python that `multiprocessing.set_executable` says, for hosts that are no Python themselves.
    """

    def __init__(self, work: bytes) -> None:
        self._work = work
        self._program: subprocess.Popen[bytes] | None = None
        self._connection: Connection | None = None

    def do(self, task: Any) -> Any:
        """What comes of the task; raises what the work raises, and WorkerDied."""
        try:
            connection = self._connection or self._start()
            connection.send(task)
            is_done, result = connection.recv()
        except (EOFError, ConnectionError):
            self.close()
            raise WorkerDied("a worker process died over it") from None
        if not is_done:
            raise result
        return result

    def close(self) -> None:
        """Ends the process after what it is doing."""
        if self._connection and self._program:
            self._connection.close()
            self._program.wait()
        self._connection = None

    def _start(self) -> Connection:
        ours, theirs = Pipe()
        with theirs:
            program = _PROGRAM.format(sys.path, theirs.fileno())
            command = [multiprocessing.spawn.get_executable(), "-c", program]
            self._program = subprocess.Popen(command, stdin=subprocess.DEVNULL, pass_fds=[theirs.fileno()])
        self._connection = ours
        ours.send_bytes(self._work)
        return ours


def serve(descriptor: int) -> None:
    """What such a process does, until the other end is closed."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # a key stops who waits for it, and never an edit in the middle
    with Connection(descriptor) as connection:
        packed_work = connection.recv_bytes()
        work: Callable[[Any], Any] | None = None
        while True:
            try:
                task = connection.recv()
            except EOFError:
                return
            try:
                work = work or _unpacked(packed_work)
                result = (True, work(task))
            except Exception as error:
                result = (False, error)
            connection.send(result)


def _unpacked(work: bytes) -> Callable[[Any], Any]:
    try:
        found: Callable[[Any], Any] = pickle.loads(work)
        return found
    except (ImportError, AttributeError) as error:
        raise ValueError(f"a worker process cannot import the function, so put its module into sys.path: {error}") from error
