"""The same work on many things: by processes of this machine, or by the workers of a Dask cluster."""

from __future__ import annotations

import concurrent.futures
import contextlib
import functools
import itertools
import queue
import sys
import time
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from typing import Any, TypeVar

from ._process import Process, WorkerDied, packed

Task = TypeVar("Task")
Result = TypeVar("Result")

#: What gives tasks to workers, how many they do at once, and the error when workers die over one.
_Submitting = tuple[Callable[[Any], "concurrent.futures.Future[Any]"], int, type[Exception]]

_WAITING = 3  # tasks for each worker that wait for it, so that it need not wait for them


@dataclass(frozen=True)
class Workers:
    """Who works.

    Attributes:
        count: how many on this machine.
        client: a Dask client in place of them, whose workers work then.
        scheduler: the address of a Dask scheduler, for a client of our own.
    """

    count: int = 1
    client: Any = None
    scheduler: str | None = None

    def __post_init__(self) -> None:
        if self.count < 1:
            raise ValueError(f"there must be a worker, not {self.count}")

    def each(
        self,
        work: Callable[[Task], Result],
        tasks: Iterable[Task],
        *,
        in_process: bool = False,
        lost: Callable[[Task, str], Result] | None = None,
    ) -> Iterator[tuple[Task, Result]]:
        """What comes of each task, as soon as it is done.

        `in_process` has Python's own work done in processes, unless there is one worker: that is this one. What only
        waits for another program is done in threads. `lost` says what comes of a task over which workers die; otherwise
        that is an error. Tasks are begun as results are taken: who stops taking them stops the rest.
        """
        is_remote = self.client is not None or self.scheduler is not None
        if in_process and self.count == 1 and not is_remote:
            yield from ((task, work(task)) for task in tasks)
            return
        with self._cluster(work) if is_remote else self._machine(work, in_process) as (submit, count, died):
            waiting = iter(tasks)
            running: dict[concurrent.futures.Future[Result], Task] = {}
            while True:
                for task in itertools.islice(waiting, count * _WAITING - len(running)):
                    running[submit(task)] = task
                if not running:
                    return
                done = concurrent.futures.wait(running, return_when=concurrent.futures.FIRST_COMPLETED).done
                for future in done:
                    task = running.pop(future)
                    try:
                        result = future.result()
                    except died as error:
                        if lost is None:
                            raise
                        result = lost(task, str(error))
                    yield task, result

    @contextlib.contextmanager
    def _machine(self, work: Callable[[Any], Any], in_process: bool) -> Iterator[_Submitting]:
        """Threads, each of which waits for a program or for a process of Python."""
        idle: queue.SimpleQueue[Process] = queue.SimpleQueue()
        processes = [Process(packed(work)) for _ in range(self.count)] if in_process else []
        for process in processes:
            idle.put(process)

        def do(task: Any) -> Any:
            process = idle.get()
            try:
                return process.do(task)
            finally:
                idle.put(process)

        executor = concurrent.futures.ThreadPoolExecutor(self.count)
        try:
            yield functools.partial(executor.submit, do if in_process else work), self.count, WorkerDied
        finally:
            executor.shutdown(cancel_futures=True)
            for process in processes:
                process.close()

    @contextlib.contextmanager
    def _cluster(self, work: Callable[[Any], Any]) -> Iterator[_Submitting]:
        """The workers of Dask."""
        import distributed

        with contextlib.ExitStack() as stack:
            client = self.client
            if client is None:
                client = stack.enter_context(distributed.Client(self.scheduler))  # type: ignore[no-untyped-call]
            submit = functools.partial(client.get_executor(pure=False).submit, work)
            yield submit, max(1, sum(client.ncores().values())), distributed.scheduler.KilledWorker


class Progress:
    """A line on a terminal that says how far some work of more than a second has come."""

    def __init__(self, what: str, total: int) -> None:
        self._what = what
        self._total = total
        self._done = 0
        self._next = time.monotonic() + 1
        self._is_shown = False

    def __enter__(self) -> Progress:
        return self

    def __exit__(self, *error: object) -> None:
        if self._is_shown:
            sys.stderr.write("\r\033[K")
            sys.stderr.flush()

    def add(self, count: int) -> None:
        self._done += count
        if time.monotonic() >= self._next and sys.stderr.isatty():
            self._next = time.monotonic() + 0.2
            self._is_shown = True
            sys.stderr.write(f"\r\033[K{self._what}: {self._done} of {self._total}")
            sys.stderr.flush()
