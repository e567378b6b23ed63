"""A campaign edits each file as a whole or not at all, once, and all of that can be undone."""

import fcntl
import io
import itertools
import os
import re
import shutil
import subprocess
import sys
import threading
from pathlib import Path

import pytest
from conftest import tool, write_scene

import vumo
from vumo import _campaign, _record, _work


def add_one(scene):
    """Not to be done twice."""
    weights = scene["Body"]["vertex"]["weights"]
    weights["Weight"] += 1


def grow(scene):
    stream = scene["Body"]["vertex"].create("new", {"x": ("f8", 3), "name": str}, size=300)
    stream["name"] = "a name that takes room"


def shrink(scene):
    del scene["Body"], scene["Head"]


SCRIPT = "set Body vertex weights 1 Weight=7\nrm Head\n"


@pytest.fixture
def show(tmp_path, monkeypatch):
    """Four scenes."""
    monkeypatch.setattr(_campaign, "_PAUSE", 0)
    monkeypatch.chdir(tmp_path)
    root = tmp_path / "show"
    root.mkdir()
    for name in ("a.oa", "b.ob", "c d.ob", "\udcff.oa"):
        write_scene(tmp_path / f"new{name[-3:]}").rename(root / name)
    return root


def contents(root):
    return {path: path.read_bytes() for path in sorted(root.iterdir())}


def weights(path):
    return vumo.open(path)["Body"]["vertex"]["weights"]["Weight"].tolist()


EDITS = [(SCRIPT, 2), (add_one, 2), (grow, 1), (shrink, 1), (lambda scene: scene["Body"].create("face").create("e", {"x": "f4"}), 2)]


@pytest.mark.parametrize(("edit", "workers"), EDITS)
def test_a_campaign_is_planned_and_done_and_undone(show, edit, workers):
    (show / "bad.ob").write_bytes(b"no scene")
    before = contents(show)
    campaign = vumo.campaign(edit, show, workers, record="record")
    plan = campaign.plan()
    assert contents(show) == before
    assert not Path("record").exists()
    assert [outcome.file for outcome in plan.failures] == [str(show / "bad.ob")]

    done = campaign.run()
    after = contents(show)
    assert {path for path in before if before[path] == after[path]} == {show / "bad.ob"}
    assert (len(done.of("saved")), len(done.of("failed"))) == (4, 1)
    assert (done.bytes, done.growth) == (plan.bytes, plan.growth)
    assert done.growth == sum(map(len, after.values())) - sum(map(len, before.values()))
    assert len(campaign.report()) == 4
    assert campaign.run().bytes == 0
    assert contents(show) == after

    assert re.search("Campaign '.*/record': .*Edit.* in 5 files", repr(campaign))
    undone = vumo.campaign(record=b"record").undo()
    assert contents(show) == before
    assert (len(undone.of("undone")), undone.growth) == (4, -done.growth)
    assert len(campaign.run().of("saved")) == 4
    assert contents(show) == after


def test_a_file_of_several_names_is_edited_once(show):
    os.link(show / "b.ob", show / "z.ob")
    (show / "0.ob").symlink_to("c d.ob")
    before = contents(show)
    campaign = vumo.campaign(add_one, show)
    assert len(campaign.run().of("saved")) == 4
    vumo.campaign(add_one, show / "0.ob").run()
    assert [weights(path)[0] for path in before] == [1] * 6
    assert not campaign.undo().failures
    assert contents(show) == before


def test_what_somebody_else_has_changed_since_is_left_alone(show):
    campaign = vumo.campaign(add_one, show)
    before = contents(show)
    campaign.run()
    with vumo.open(show / "b.ob", "r+") as scene:
        scene["Body"]["vertex"]["weights"]["Weight"][0] = 9
    with open(show / "c d.ob", "r+b") as scene:
        scene.write(b"Q")  # in the scene itself
    changed = contents(show)
    report = campaign.undo()
    assert len(report.of("undone")) == 2
    assert len(report.failures) == 2
    assert {path.name for path in before if contents(show)[path] == changed[path]} == {"b.ob", "c d.ob"}
    assert len(campaign.run().of("saved")) == 4
    assert weights(show / "b.ob")[0] == 9  # done already, whatever it is now


def test_a_campaign_stops_when_too_many_files_fail_and_goes_on(show):
    def fail_on_binary(scene):
        add_one(scene)
        if scene.file.endswith(".ob") and not (show / "mended").exists():
            raise RuntimeError("not this one")

    before = contents(show)
    stopped = vumo.campaign(fail_on_binary, show, max_failures=2).run()
    assert (stopped.left, len(stopped.failures)) == (2, 2)
    assert contents(show) == before
    assert (len(vumo.campaign(fail_on_binary, show, max_failures=3).run().of("saved"))) == 2
    calls = itertools.count()
    late = vumo.campaign(lambda scene: 1 / (next(calls) < len(before)), show, max_failures=2, record="late").run()
    assert (late.left, len(late.failures)) == (2, 2)  # in the run itself
    (show / "mended").touch()
    assert not vumo.campaign(fail_on_binary, show).run().failures
    assert all(weights(path)[0] == 1 for path in before)
    with pytest.raises(ValueError, match="another campaign"):
        vumo.campaign(grow, bytes(show), record=b"campaign")
    with pytest.raises(TypeError, match="not 7"):
        vumo.campaign(7, show)


def test_a_script_without_a_guard_has_worker_processes(show):
    """One with threads, as hosts have, whose function uses what else the script has."""
    Path("script.py").write_text("""
import threading, numpy as np, vumo
print("begin")
factor = np.float32(3)
def edit(scene):
    scene["Body"]["vertex"]["weights"]["Weight"] *= factor
def run():
    print(vumo.campaign(edit, "show", workers=2).run())
other = threading.Thread(target=threading.Event().wait, daemon=True)
thread = threading.Thread(target=run)
other.start(), thread.start(), thread.join()
""")
    done = subprocess.run([sys.executable, "script.py"], stdout=subprocess.PIPE, text=True, check=True)
    assert done.stdout.startswith("begin\n4 saved: ")
    assert all(weights(path) == [0, 0.75, 1.5, 3] for path in show.iterdir())


def test_a_file_over_which_a_worker_dies_fails_alone(show):
    def die_over_one(scene):
        add_one(scene)
        if scene.file.endswith("b.ob"):
            os._exit(1)

    before = contents(show)
    done = vumo.campaign(die_over_one, show, workers=2, max_failures=9).run()
    assert [(outcome.file, outcome.error) for outcome in done.failures] == [(str(show / "b.ob"), "a worker process died over it")]
    assert [path.name for path in before if before[path] == path.read_bytes()] == ["b.ob"]
    lock = threading.Lock()
    local = vumo.campaign(lambda scene: lock.locked(), show, record="local")
    assert len(local.plan()) == 4
    with pytest.raises(ValueError, match="cannot be sent to another process, so use one worker: .*lock"):
        vumo.campaign(lambda scene: lock.locked(), show, workers=2, record="sent").plan()


@pytest.mark.parametrize("edit", [SCRIPT, add_one])
def test_locked_files_are_tried_again_and_then_reported(show, edit, monkeypatch):
    monkeypatch.setattr("vumo._edits.LOCK_WAIT", 0.01)
    campaign = vumo.campaign(edit, show / "b.ob")
    tries = []
    with open(show / "b.ob") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        monkeypatch.setattr(_campaign.time, "sleep", tries.append)
        assert [outcome.state for outcome in campaign.run()] == ["busy"]
    assert len(tries) == 3 + 3  # of the plan and of the run
    assert [outcome.state for outcome in campaign.run()] == ["saved"]


def test_a_file_that_is_changed_meanwhile_is_tried_again(show):
    def change_once(scene):
        if (show / "first").exists():
            (show / "first").unlink()
            with vumo.open(scene.file, "r+") as other:
                other["Head"]["face"]["weights"]["Weight"] = 5
        add_one(scene)

    campaign = vumo.campaign(change_once, show / "b.ob")
    (show / "first").touch()
    assert [outcome.state for outcome in campaign.run()] == ["saved"]
    assert weights(show / "b.ob") == [1, 1.25, 1.5, 2]
    assert vumo.open(show / "b.ob")["Head"]["face"]["weights"]["Weight"].tolist() == [5] * 4


class Terminal(io.StringIO):
    def isatty(self):
        return True


def test_a_terminal_shows_how_far_long_work_has_come(monkeypatch):
    clock = itertools.count(0, 0.5)
    monkeypatch.setattr(_work.time, "monotonic", lambda: next(clock))
    for stream, shown in ((Terminal(), "\r\033[Kfiles: 2 of 3\r\033[Kfiles: 3 of 3\r\033[K"), (io.StringIO(), "")):
        monkeypatch.setattr(sys, "stderr", stream)
        with _work.Progress("files", 3) as progress:
            for _ in range(3):
                progress.add(1)
        assert stream.getvalue() == shown


class Stopped(BaseException):
    """Like a process that is killed."""


def stop(*_):
    raise Stopped


@pytest.mark.parametrize("edit", [SCRIPT, add_one])
@pytest.mark.parametrize("moment", ["in the record", "before the save", "after it", "changed after it", "in the middle of the undo"])
def test_whoever_is_stopped_at_any_moment_goes_on(show, monkeypatch, moment, edit):
    file = show / "b.ob"
    before = file.read_bytes()
    names = sorted(show.iterdir())
    campaign = vumo.campaign(edit, file)
    work = (_campaign.edit_of(edit), campaign.record, bytes(file))
    with monkeypatch.context() as patch, pytest.raises(Stopped):
        if moment == "in the middle of the undo":
            campaign.run()
            put_back = _record.Record.put_back
            patch.setattr(_record.Record, "put_back", lambda *what: (put_back(*what), stop()))
            _campaign._undo_file(*work[1:])
        if moment == "in the record":
            patch.setattr(_record.os, "fsync", stop)
        keep = _record.Record.store
        store_and_stop = lambda *what: (keep(*what), stop())  # noqa: E731
        patch.setattr(_record.Record, *(("store", store_and_stop) if moment == "before the save" else ("note_saved", stop)))
        _campaign._edit_file(*work)
    if moment == "changed after it":
        with vumo.open(file, "r+") as scene:
            del scene["Body"]["edge"]
        changed = file.read_bytes()
        assert [outcome.state for outcome in campaign.run()] == ["failed"]
        assert [outcome.state for outcome in campaign.undo()] == ["failed"]
        assert file.read_bytes() == changed
        return
    if moment != "in the middle of the undo":
        assert [outcome.state for outcome in campaign.run()] == ["saved"]
        assert weights(file) == ([0, 7, 0.5, 1] if edit == SCRIPT else [1, 1.25, 1.5, 2])
    assert [outcome.state for outcome in campaign.undo()] == ["undone"]
    assert file.read_bytes() == before
    assert sorted(show.iterdir()) == names and not list(campaign.record.glob("**/*.new"))


DAMAGES = {  # what is damaged, how, what is said, and how many files are then undone
    "an entry": ("??/*.json", lambda path: path.write_text("{"), "entry is damaged", 3),
    "an entry of another version": ("??/*.json", lambda path: path.write_text('{"file": "b.ob", "more": 1}'), "another version", 3),
    "old bytes": ("??/*.old", lambda path: path.write_bytes(path.read_bytes()[:-1] + b"?"), "old bytes of .* are damaged", 3),
    "no old bytes": ("??/*.old", Path.unlink, "old bytes of .* are damaged", 3),
    "the edit": ("campaign.json", lambda path: path.write_text(""), "nobody knows", None),
    "another version": ("campaign.json", lambda path: path.write_text('{"version": 7}'), "of version 7", None),
    "all": (".", shutil.rmtree, "no record", None),
}


@pytest.mark.parametrize("case", DAMAGES)
def test_a_damaged_record_harms_no_file(show, case):
    place, damage, text, undone = DAMAGES[case]
    campaign = vumo.campaign(add_one, show)
    before = contents(show)
    campaign.run()
    after = contents(show)
    damage(sorted(campaign.record.glob(place))[0] if place != "." else campaign.record)
    if undone is None:
        with pytest.raises((ValueError, vumo.NoFileError), match=text):
            vumo.campaign(record="campaign").undo()
        assert contents(show) == after
        return
    if "entry" in case:
        assert [bool(outcome.error) for outcome in campaign.run()].count(True) == 1  # nobody knows if it was edited
        assert [row["state"] for row in campaign.report()] == ["saved"] * 3 + ["damaged"]
    assert contents(show) == after
    report = vumo.campaign(record="campaign").undo()
    assert len(report.of("undone")) == undone
    assert re.search(text, report.failures[0].error)
    assert sorted([contents(show)[path] == before[path] for path in before]) == [False] + [True] * undone
    assert all(contents(show)[path] in (before[path], after[path]) for path in before)


def test_campaigns_on_the_command_line(show):
    before = contents(show)
    Path("script").write_text(SCRIPT)

    def run(*words, code=0):
        done = subprocess.run([os.environ["VUMO_TOOL"], "campaign", "record", *words], stdout=subprocess.PIPE, text=True)
        assert done.returncode == code
        return done.stdout

    assert run("plan", "script", "show").startswith("4 planned: ")
    assert run("run", "script", "show", "none.ob", "--workers=2", code=7).startswith("1 failed, 4 saved: ")
    assert tool("get", show / "b.ob", "Body", "vertex", "weights", "1", "Weight") == "7\n"
    assert len(run("report", "--json").splitlines()) == 4
    assert run("undo").startswith("4 undone: ")
    assert contents(show) == before
