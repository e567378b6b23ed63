"""Measures the catalogue of many scenes against a scan alone.

    production.py WRITE_SCENE TOOL [--quick]

Each row is a work, with what it took by the clock and of the processors, and for those with a goal the ratio of the
clock to that of another one: the catalogue to the scan alone, the second update after 1 % of the files have changed to
the first, two workers to one. Works that are compared take turns; medians are shown. Campaigns are measured, too. Fails
when a result is wrong; a missed goal is only shown.
"""

from __future__ import annotations

import itertools
import os
import resource
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable, Sequence
from pathlib import Path
from statistics import median
from typing import Any

import numpy as np

import vumo

write_scene, tool = sys.argv[1:3]
quick = "--quick" in sys.argv
count = 200 if quick else 10_000
edited = 20 if quick else 500
rounds = 1 if quick else 3
os.environ["VUMO_TOOL"] = tool

Cost = tuple[float, float]  # seconds by the clock, and of the processors


def processor_seconds() -> float:
    """Of this process, and of the others that it has waited for."""
    uses = [resource.getrusage(who) for who in (resource.RUSAGE_SELF, resource.RUSAGE_CHILDREN)]
    return sum(use.ru_utime + use.ru_stime for use in uses)


def cost(work: Callable[[], Any]) -> Cost:
    """What the work takes."""
    before = processor_seconds()
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin, processor_seconds() - before


def show(title: str, files: int, costs: Sequence[Cost], others: Sequence[Cost], goal: float) -> None:
    """Prints a row; `others` is what is compared with the costs, round by round, if anything."""
    taken, used = (median(each) for each in zip(*costs))
    verdict = ""
    if others:
        ratio = median(mine[0] / theirs[0] for mine, theirs in zip(costs, others))
        verdict = f"{ratio:8.2f} {goal:6.2f}  {'met' if ratio <= goal else 'missed'}"
    print(f"{title:50} {taken:8.2f} {used:10.2f} {files / taken:10.0f} {verdict}", flush=True)


def row(title: str, work: Callable[[], Any], files: int) -> None:
    show(title, files, [cost(work)], [], 0)


def make_scene(path: Path, number: int) -> None:
    """Four nodes with two streams of 250 elements each: some 50 KB of metadata."""
    subprocess.run([write_scene, path], check=True)
    random = np.random.default_rng(number)
    size = 250
    with vumo.open(path, "r+", durable=False) as scene:
        scene.clear()
        for node in ("Body", "Head", "Hand", f"Prop {number}"):
            channel = scene.create(node).create("vertex")
            skin = channel.create("skin", {"Weight": "f4", "Bone": "u2", "Locked": bool}, size=size)
            skin["Weight"] = random.integers(0, 1000, size) / 1024
            skin["Bone"] = random.integers(0, 60, size)
            uv = channel.create("uv", {"uv": ("f4", 2), "Label": str}, size=size)
            uv["uv"] = random.integers(0, 4096, (size, 2)) / 4096
            uv["Label"] = [f"patch {i % 12}" for i in range(size)]


def make_show(root: Path) -> list[Path]:
    """Scenes of 25 kinds, a hundred in a folder."""
    kinds = []
    for number in range(25):
        make_scene(root / "kind.ob", number)
        kinds.append((root / "kind.ob").read_bytes())
        (root / "kind.ob").unlink()
    scenes = [root / f"{number // 100:03}" / f"{number:05}.ob" for number in range(count)]
    for number, scene in enumerate(scenes):
        scene.parent.mkdir(exist_ok=True)
        scene.write_bytes(kinds[number % len(kinds)])
    return scenes


def lighten(scene: vumo.Scene) -> None:
    scene["Body"]["vertex"]["skin"]["Weight"] *= 0.5


def main() -> None:
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder, "show")
        root.mkdir()
        scenes = make_show(root)
        time.sleep(2.1)  # what was changed less than two seconds ago is read again
        print(f"{count} scenes of {scenes[0].stat().st_size} bytes{'':24} seconds  processor    files/s    ratio   goal")

        def scan() -> None:
            with open(os.devnull, "wb") as nowhere:
                subprocess.run([tool, "scan", root], check=True, stdout=nowhere)

        def update(name: str, workers: int, scanned: int) -> None:
            with vumo.catalog(Path(folder, name)) as catalog:
                assert catalog.update(root, workers).scanned == scanned

        scan()  # the files are in memory from here on
        names = map(str, itertools.count())
        works = (scan, lambda: update(next(names), 1, count), lambda: update(next(names), 2, count))
        alone, one, two = zip(*([cost(work) for work in works] for _ in range(rounds)))
        show("scan alone", count, alone, [], 0)
        show("catalogue, one worker / scan alone", count, one, alone, 1.3)
        show("catalogue, two workers / one", count, two, one, 0.6)
        row("second update, nothing changed", lambda: update("0", 1, 0), count)
        for scene in scenes[::100]:
            with vumo.open(scene, "r+", durable=False) as opened:
                lighten(opened)
        second = [cost(lambda: update("0", 1, count // 100))]
        show("second update, 1 % changed / the first", count, second, one, 0.1)

        campaign = vumo.campaign(lighten, scenes[:edited], record=Path(folder, "record"))
        row("campaign with a function: its plan and its run", campaign.run, edited)
        row("its undo", campaign.undo, edited)
        script = "set Body vertex skin 7 Weight=0.25\n"
        campaign = vumo.campaign(script, scenes[:edited], record=Path(folder, "script"))
        row("campaign with a script: its plan and its run", campaign.run, edited)
        assert len(campaign.report()) == edited


main()
