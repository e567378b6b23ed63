"""A real cluster over loopback: a scheduler and two workers as processes, of which one is killed in the middle."""

import subprocess
import sys
import threading
import time

import pytest
from conftest import write_scene

import vumo
from vumo import _catalog

COUNT = 30


@pytest.fixture
def cluster(tmp_path):
    """The address of the scheduler, and the processes of the workers."""
    started = []

    def start(program, *options):
        command = [sys.executable, "-m", f"distributed.cli.dask_{program}", "--no-dashboard", *options]
        log = open(tmp_path / "log", "ab")
        started.append(subprocess.Popen(command, cwd=tmp_path, stdout=log, stderr=log))
        return started[-1]

    start("scheduler", "--host=127.0.0.1", "--port=0", "--scheduler-file=cluster.json")
    workers = [start("worker", "--scheduler-file=cluster.json", "--nthreads=1", "--no-nanny", "--host=127.0.0.1") for _ in "12"]
    import distributed

    with distributed.Client(scheduler_file=str(tmp_path / "cluster.json")) as client:
        client.wait_for_workers(2, timeout=60)
        yield client, workers
    for process in started:
        process.kill()
        process.wait()


def test_a_worker_that_dies_loses_nothing_and_repeats_nothing(cluster, tmp_path, monkeypatch):
    client, workers = cluster
    show = tmp_path / "show"
    show.mkdir()
    first = write_scene(tmp_path / "first.ob").read_bytes()
    for number in range(COUNT):
        (show / f"{number:02}.ob").write_bytes(first)
    monkeypatch.setattr(_catalog, "_FILES_AT_ONCE", 3)

    def add_one(scene):
        scene["Body"]["vertex"]["weights"]["Weight"] += 1
        time.sleep(0.02)

    def kill_in_the_middle():
        while len(list((tmp_path / "record").glob("??/*.json"))) < COUNT // 3:
            time.sleep(0.01)
        workers[0].kill()

    killer = threading.Thread(target=kill_in_the_middle, daemon=True)
    killer.start()
    campaign = vumo.campaign(add_one, show, client=client, record=tmp_path / "record")
    report = campaign.run()
    killer.join(60)
    assert workers[0].wait(60) != 0
    assert not report.failures
    assert len(report.of("saved")) == COUNT
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        assert catalog.update(show, scheduler=client.scheduler.address).changed == COUNT
        query = "SELECT least, greatest, count(*) AS files FROM all_members WHERE stream = 'weights' AND node = 'Body' AND least NOT NULL"
        assert [tuple(row.values()) for row in catalog.sql(query + " GROUP BY 1, 2")] == [(1, 2, COUNT)]
    assert not campaign.undo().failures
    assert {path.read_bytes() for path in show.iterdir()} == {first}
