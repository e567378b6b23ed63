"""Compares the package for Python with NumPy, with Python's own lists and with a C++ program.

    bench.py WRITE_SCENE PEER [--quick]

Each row is a work: what vumo and the other side took of a processor, where threads work of the clock, and the median
ratio of rounds in which they took turns. Fails when a result is wrong; a missed goal is only shown.
"""

from __future__ import annotations

import gc
import shutil
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from statistics import median
from typing import Any

import numpy as np

import vumo

write_scene, peer_program = sys.argv[1:3]
quick = "--quick" in sys.argv
count = 10_000 if quick else 1_000_000
rounds = 1 if quick else 9


def seconds(work: Callable[[], Any], clock: Callable[[], float] = time.process_time) -> float:
    """How much time the work takes of a processor, or by another clock."""
    gc.collect()
    gc.disable()  # it would walk over a million strings in the middle
    begin = clock()
    kept = work()
    taken = clock() - begin
    del kept  # freed outside of the time
    gc.enable()
    return taken


def row(title: str, ours: Callable[[], float], theirs: Callable[[], float], goal: float | None) -> None:
    pairs = [(ours(), theirs()) for _ in range(rounds)]
    ratio = median(a / b for a, b in pairs)
    a, b = (median(side) * 1000 for side in zip(*pairs))
    verdict = "" if goal is None else f"{goal:.2f}  {'met' if ratio <= goal else 'missed'}"
    print(f"{title:58} {a:10.2f} {b:10.2f} {ratio:7.2f}  {verdict}", flush=True)


def make_scene(path: Path) -> None:
    """A million records at the numbers from 0, as many with gaps, and as many strings."""
    subprocess.run([write_scene, path], check=True)
    random = np.random.default_rng(1)
    with vumo.open(path, "r+", durable=False) as scene:
        scene.clear()
        members = {"Position": ("f4", 3), "Weight": "f4", "Id": "i4"}
        records = scene.create("Body").create("vertex").create("records", members, size=count)
        records["Position"] = random.integers(0, 1000, (count, 3)) / 8
        records["Weight"] = random.integers(0, 1000, count) / 8
        records["Id"] = np.arange(count)
        sparse = scene.create("Sparse").create("vertex").create("sparse", members, structure="records")
        sparse.scatter("Weight", np.arange(count) * 3 + 1, records["Weight"])
        labels = scene.create("Labels").create("vertex").create("labels", {"Label": str}, size=count)
        labels["Label"] = [f"label {i:06}" for i in range(count)]


def main() -> None:
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "scene.ob")
        make_scene(path)
        peer = subprocess.Popen([peer_program, path], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        assert peer.stdin and peer.stdout

        def ask(word: str) -> float:
            print(word, file=peer.stdin, flush=True)
            return float(peer.stdout.readline())

        nodes = ["Body", "Sparse", "Labels"]

        def opened() -> vumo.Scene:
            return vumo.open(path, nodes=nodes)

        def touched() -> Any:
            scene = vumo.open(path)
            return scene, [list(scene[node]) for node in nodes]

        print(f"{count} records; milliseconds {'vumo':>39} {'other':>10} {'ratio':>7}  goal")
        row("open with its nodes / C++", lambda: seconds(opened), lambda: ask("open"), 1.1)
        row("open and touch one node after the other / C++", lambda: seconds(touched), lambda: ask("open"), 1.1)

        scene = vumo.open(path, "r+")
        records = scene["Body"]["vertex"]["records"]
        first = seconds(lambda: records["Weight"])
        print(f"{'the first column: its stream moves to dense storage':58} {first * 1000:10.2f}")
        for name in records:
            np.save(Path(folder, f"{name}.npy"), records[name])
        structured = np.array(records.records)

        def add_to_column() -> None:
            records["Weight"] += 1

        def add_to_structured() -> None:
            structured["Weight"] += 1

        def add_to_loaded(names: list[str]) -> Any:
            loaded = {name: np.load(Path(folder, f"{name}.npy")) for name in names}
            loaded["Weight"] += 1
            return loaded

        for title, goal, theirs in (
            ("np.load of all columns, and += 1", 1.3, lambda: add_to_loaded(list(records))),
            ("np.load of this one, and += 1", None, lambda: add_to_loaded(["Weight"])),
            ("+= 1 in a structured array of NumPy's", None, add_to_structured),
        ):
            row(f"column += 1 / {title}", lambda: seconds(add_to_column), lambda theirs=theirs: seconds(theirs), goal)

        labels = scene["Labels"]["vertex"]["labels"]
        text = "\n".join(labels["Label"])
        assert labels["Label"].tolist() == text.split("\n")
        row("strings out / the list of them out of one text", lambda: seconds(lambda: labels["Label"]),
            lambda: seconds(lambda: text.split("\n")), 2)  # fmt: skip

        sparse = scene["Sparse"]["vertex"]["sparse"]
        indices = sparse.indices
        assert not sparse.dense and len(indices) == count
        row("gather from mapped storage / C++", lambda: seconds(lambda: sparse.gather("Weight", indices)),
            lambda: ask("gather"), 1.1)  # fmt: skip

        second = Path(folder, "second.ob")
        shutil.copy(path, second)

        def both() -> list[vumo.Scene]:
            return [vumo.open(each, nodes=nodes) for each in (path, second)]

        def on_threads() -> list[vumo.Scene]:
            return list(executor.map(lambda each: vumo.open(each, nodes=nodes), (path, second)))

        clock = time.perf_counter
        with ThreadPoolExecutor(2) as executor:
            row("two files opened on two threads / one after the other", lambda: seconds(on_threads, clock),
                lambda: seconds(both, clock), 0.6)  # fmt: skip
        peer.stdin.close()
        peer.wait()


main()
