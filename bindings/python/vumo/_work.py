"""The same work on many things: by processes of this machine, or by the workers of a Dask cluster."""

from __future__ import annotations

import concurrent.futures
import contextlib
import itertools
import multiprocessing
import sys
import time
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from typing import Any, TypeVar

Task = TypeVar("Task")
Result = TypeVar("Result")

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

    @contextlib.contextmanager
    def executor(self, work: Callable[[Any], Any], in_process: bool) -> Iterator[tuple[concurrent.futures.Executor, int]]:
        """An executor for the work, and how many tasks it does at once."""
        with contextlib.ExitStack() as stack:
            client = self.client
            if client is None and self.scheduler is not None:
                import distributed

                client = stack.enter_context(distributed.Client(self.scheduler))  # type: ignore[no-untyped-call]
            if client is not None:
                yield client.get_executor(pure=False), max(1, sum(client.ncores().values()))
                return
            executor: concurrent.futures.Executor
            if in_process:
                # Forked after the work was set, so that a function need not be one that can be sent to a process.
                executor = concurrent.futures.ProcessPoolExecutor(
                    self.count, multiprocessing.get_context("fork"), _set_work, (work,)
                )
            else:
                executor = concurrent.futures.ThreadPoolExecutor(self.count)
            try:
                yield executor, self.count
            finally:
                executor.shutdown(cancel_futures=True)

    def each(
        self, work: Callable[[Task], Result], tasks: Iterable[Task], *, in_process: bool = False
    ) -> Iterator[tuple[Task, Result]]:
        """What comes of each task, as soon as it is done.

        `in_process` has Python's own work done in processes; what only waits for another program is done in threads.
        Tasks are begun as results are taken: who stops taking them stops the rest.
        """
        with self.executor(work, in_process) as (executor, count):
            is_local = isinstance(executor, concurrent.futures.ProcessPoolExecutor)
            waiting = iter(tasks)
            running: dict[concurrent.futures.Future[Result], Task] = {}
            while True:
                for task in itertools.islice(waiting, count * _WAITING - len(running)):
                    running[executor.submit(_do_work, task) if is_local else executor.submit(work, task)] = task
                if not running:
                    return
                done = concurrent.futures.wait(running, return_when=concurrent.futures.FIRST_COMPLETED).done
                for future in done:
                    yield running.pop(future), future.result()


_work: Callable[[Any], Any]


def _set_work(work: Callable[[Any], Any]) -> None:
    global _work
    _work = work


def _do_work(task: Any) -> Any:
    return _work(task)


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
