"""Opening, editing and saving scenes."""

import contextlib
import copy
import errno
import fcntl
import os
import pickle
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest
from conftest import tool, write_scene

import vumo


def test_the_first_lines_that_people_try(path, monkeypatch):
    locked, baked, names = [1, 2], np.arange(8).reshape(4, 2), ["left", "right", "ünïcode", ""]
    with vumo.open(path, "r+") as scene:
        scene["Body"]["vertex"]["skin"] = scene["Body"]["vertex"]["weights"]
    with vumo.open(path, "r+") as scene:
        skin = scene["Body"]["vertex"]["skin"]
        weight = skin["Weight"]
        weight[np.isin(skin.indices, locked)] = 0
        uv = scene["Body"]["vertex"].create("uv", {"uv": ("f4", 2), "seam": bool, "label": str}, size=len(weight))
        uv["uv"][:] = baked
        uv["label"] = names
        scene["Body"]["edge"]["seams"][0, 3]["Stitch"] = "zig-zag"
    scene = vumo.open(path)
    vertex = scene["Body"]["vertex"]
    assert vertex["skin"]["Weight"].tolist() == [0, 0, 0, 1]
    assert vertex["weights"]["Weight"].tolist() == [0, 0.25, 0.5, 1]
    assert vertex["uv"]["uv"].tolist() == baked.tolist() and vertex["uv"]["label"].tolist() == names
    assert scene["Body"]["edge"]["seams"].gather("Stitch", [(0, 3)])[1].tolist() == ["zig-zag"]


def test_only_what_was_edited_is_written_anew(path):
    before = path.read_bytes()
    with vumo.open(path, "r+") as scene:
        repr(list(scene.values())), scene.to_dict(), scene["Head"]["face"]["weights"].dense
    assert path.read_bytes() == before
    with pytest.raises(RuntimeError, match="mine"), vumo.open(path, "r+") as scene:
        scene["Body"]["vertex"]["weights"]["Weight"] = 1
        raise RuntimeError("mine")
    assert path.read_bytes() == before and scene.closed
    if path.suffix == ".oa":  # other text for the same number, in the first node
        path.write_bytes(before.replace(b"0.25", b"0.250", 1))
        with vumo.open(path, "r+") as scene:
            assert scene["Body"]["vertex"]["weights"][1]["Weight"] == 0.25
            scene["Head"]["face"]["weights"]["Weight"] = 1
        assert b"0.250" in path.read_bytes()


def test_what_cannot_be_read_is_named_and_kept(path):
    path.write_bytes(path.read_bytes().replace(b"0.25", b"0,25", 1))
    position = path.read_bytes().index(b"0,25")
    with vumo.open(path, "r+") as scene:
        [fault] = scene.faults
        assert (fault.kind, fault.name) == ("node", "Body") and 0 < fault.position < position
        with pytest.raises(vumo.MalformedError) as caught:
            scene["Body"]["vertex"]
        error = caught.value
        assert (error.file, error.node, error.position) == (str(path), "Body", fault.position)
        with pytest.raises(vumo.MalformedError) as caught:
            scene.load(["Head", "Body"])
        assert (caught.value.node, caught.value.position) == ("Body", fault.position)
        assert error.text and isinstance(error, ValueError)
        scene["Head"]["face"]["weights"]["Weight"] = 1
    assert b"0,25" in path.read_bytes()
    assert vumo.open(path)["Head"]["face"]["weights"]["Weight"].tolist() == [1, 1, 1, 1]


def test_nodes_can_be_chosen(path):
    scene = vumo.open(path, "r+", nodes=["Head", "nobody"])
    assert list(scene) == ["Head"] and "Body" not in scene
    with pytest.raises(vumo.RefusedError, match="not among") as caught:
        scene.create("Body")
    assert caught.value.node == "Body"
    scene["Head"]["face"]["weights"]["Weight"] = 1
    del scene["Head"]
    scene.create("Head").create("face").create("new", {"i": "i4"}, size=1)
    scene.save()
    assert list(vumo.open(os.fsencode(path))["Head"]["face"]) == ["new"]
    assert sorted(vumo.open(path)) == ["", "Body", "Head"]


def test_nodes_and_channels_come_and_go(path):
    with vumo.open(path, "r+") as scene:
        del scene["Body"]
        scene.create("New").create("channel").create("stream", {"i": "i4"}, size=2)
        del scene["Head"]["face"]
        scene.declare(vumo.Structure("Unused", {"f": "f8"}))
        scene["New"]["channel"].create("short-lived", {"i": "i4"})
        del scene["New"]["channel"]["short-lived"]
        document = scene.to_dict()
    scene = vumo.open(path)
    assert scene.to_dict() == document
    assert sorted(scene) == ["", "New"] and "Unused" in scene.structures
    assert tool("get", path, "New", "channel", "stream").count("\n") >= 2


FAILURES = {
    "no such file": (lambda s: vumo.open("missing.ob"), vumo.NoFileError, FileNotFoundError, "missing.ob"),
    "too long a name": (lambda s: vumo.open(300 * "x" + ".ob"), vumo.SystemCallError, OSError, "xx.ob"),
    "no scene by its name": (lambda s: vumo.open("scene.py"), vumo.NotSceneError, ValueError, "scene.py"),
    "zero byte in a name": (lambda s: vumo.open("scene\0.ob"), ValueError, ValueError, "zero character"),
    "no mode": (lambda s: vumo.open("scene.ob", "w"), ValueError, ValueError, "'w'"),
    "node": (lambda s: s["Bodi"], vumo.NotFoundError, KeyError, "There is no node 'Bodi' in .*; did you mean 'Body'?"),
    "channel": (lambda s: s["Body"]["vertx"], vumo.NotFoundError, KeyError, "the node 'Body'; did you mean 'vertex'?"),
    "stream": (lambda s: s["Body"]["edge"]["seam"], vumo.NotFoundError, KeyError, "did you mean 'seams'?"),
    "member": (lambda s: s["Body"]["edge"]["seams"]["stich"], KeyError, KeyError, "did you mean 'Stitch'?"),
    "element": (lambda s: s["Body"]["edge"]["seams"][9, 9], KeyError, KeyError, "no element \\(9, 9\\) in 'seams'"),
    "elements": (lambda s: s["Body"]["edge"]["seams"].gather("Stitch", [(0, 3), (7, 8)]), vumo.NotFoundError, KeyError, "7 8"),
    "index": (lambda s: s["Body"]["vertex"]["weights"][-1], IndexError, IndexError, "0 to 4294967295"),
    "half a pair": (lambda s: s["Body"]["edge"]["seams"][3], ValueError, ValueError, "shape"),
    "not whole": (lambda s: s["Body"]["vertex"]["weights"].gather("Weight", [0.5]), TypeError, TypeError, "whole"),
    "type": (lambda s: vumo.Structure("S", {"c": "c16"}), TypeError, TypeError, "complex128"),
    "ambiguous type": (lambda s: vumo.Structure("S", {"f": "float"}), TypeError, TypeError, '"f4" or "f8"'),
    "taken": (lambda s: s["Body"]["edge"].create("seams", {}), ValueError, ValueError, "already"),
    "index type": (
        lambda s: s["Body"]["edge"].create("x", {"f": "f4"}, index_type="grid"), ValueError, ValueError, "No such type"),
    "text": (lambda s: s["Body"]["vertex"]["weights"].__setitem__("Weight", "x"), TypeError, TypeError, "numbers"),
    "too large": (lambda s: s[""]["scene"]["notes"].__setitem__("Revision", -1), ValueError, ValueError, "uint64"),
    "too many": (lambda s: s["Body"]["vertex"]["weights"].__setitem__("Weight", [1] * 5), ValueError, ValueError, ""),
    "zero byte": (lambda s: s[""]["scene"]["notes"].__setitem__("Text", "a\0"), ValueError, ValueError, "zero"),
    "no string": (lambda s: s[""]["scene"]["notes"].__setitem__("Text", 7), TypeError, TypeError, "str or None"),
    "size": (lambda s: s["Body"]["edge"].create("x", {"f": "f4"}, size=-1), ValueError, ValueError, "size .* not -1"),
    "new size": (lambda s: s["Body"]["vertex"]["weights"].resize(2**32), ValueError, ValueError, "size .* not 42949"),
    "dimension": (lambda s: vumo.Structure("S", {"s": (str, -1)}), ValueError, ValueError, "dimension .* not -1"),
    "resized pairs": (lambda s: s["Body"]["edge"]["seams"].resize(9), ValueError, ValueError, "numbers from 0"),
}  # fmt: skip


@pytest.mark.parametrize("case", FAILURES)
def test_failures_say_what_is_wrong(editable, case):
    action, kind, base, text = FAILURES[case]
    with pytest.raises(kind, match=text) as caught:
        action(editable)
    error = caught.value
    assert isinstance(error, base) and "unknown" not in str(error).lower()
    fields = ("text", "file", "node", "position", "errno", "filename")
    for copied in (copy.copy(error), pickle.loads(pickle.dumps(error))):
        assert str(copied) == str(error) and [getattr(copied, f, 0) for f in fields] == [getattr(error, f, 0) for f in fields]
    if isinstance(error, vumo.NotFoundError):
        assert error.file == editable.file and (error.node == "Body") == (case != "node")
    if isinstance(error, OSError):
        assert error.errno in (errno.ENOENT, errno.ENAMETOOLONG) and error.filename == error.file


@contextlib.contextmanager
def locked(path):
    with open(path) as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        yield


@contextlib.contextmanager
def forbidden(path):
    path.chmod(0)
    if is_administrator := os.geteuid() == 0:
        os.seteuid(65534)
    yield
    if is_administrator:
        os.seteuid(0)


@contextlib.contextmanager
def beside(path, make):
    make(Path(f"{path}.vumo-undo"))
    yield


def edit(path, **options):
    with vumo.open(path, "r+", **options) as scene:
        scene["Body"]["vertex"]["weights"]["Weight"] = 1


KINDS = {
    "locked": (locked, vumo.LockedError),
    "forbidden": (forbidden, vumo.NoAccessError),
    "text in place of a journal": (lambda path: beside(path, lambda undo: undo.write_text("text")), vumo.NotRestoredError),
    "a folder in place of a journal": (lambda path: beside(path, Path.mkdir), vumo.NotRestoredError),
}


@pytest.mark.parametrize("case", KINDS)
def test_each_kind_of_failure_has_its_class(path, case):
    situation, kind = KINDS[case]
    with situation(path), pytest.raises(kind) as caught:
        edit(path)
    error = caught.value
    assert type(error) is kind and error.file == str(path) and str(path) in error.text


def test_whoever_waits_for_a_file_holds_up_no_other_thread(path):
    """The one that has the file could not give it back if the interpreter's lock were held."""
    with ThreadPoolExecutor(1) as executor:
        with locked(path):
            waiting = executor.submit(edit, path, lock_wait=60)
            time.sleep(0.1)
            assert not waiting.done()
        waiting.result()
    assert vumo.open(path)["Body"]["vertex"]["weights"]["Weight"][0] == 1


def test_a_scene_is_for_one_thread_at_a_time(editable):
    editable["Body"]["vertex"]["weights"]["Weight"] = 1
    with ThreadPoolExecutor(1) as executor, vumo.open(editable.file, "r+", lock_wait=60) as waiting:
        waiting["Body"]["vertex"]["weights"]["Weight"] = 2
        with locked(editable.file):
            saving = executor.submit(waiting.save)
            time.sleep(0.1)
            with pytest.raises(vumo.BusyError):
                waiting["Head"]
        saving.result()


def test_a_save_that_fails_leaves_the_file(path):
    before = path.read_bytes()
    with pytest.raises(vumo.RefusedError, match="Weight") as caught, vumo.open(path, "r+") as scene:
        scene["Body"]["vertex"]["weights"]["Weight"][0] = np.nan
    assert path.read_bytes() == before and (caught.value.file, caught.value.node) == (str(path), "Body")
    mine, theirs = vumo.open(path, "r+"), vumo.open(path, "r+")
    for value, scene in enumerate((theirs, mine)):
        scene["Body"]["vertex"]["weights"]["Weight"] = value
    theirs.save()
    with pytest.raises(vumo.ChangedError):
        mine.save()
    with pytest.raises(vumo.ChangedError):
        mine["Head"]["face"]
    with vumo.open(path, "r+", overwrite=True) as scene:
        scene["Body"]["vertex"]["weights"]["Weight"] = 2
    for scene in (vumo.open(path),):
        for change in (lambda: scene.save(), lambda: scene.create("x"), lambda: scene.__delitem__("Body"),
                       lambda: scene["Body"]["vertex"]["weights"].resize(3)):  # fmt: skip
            with pytest.raises(vumo.ReadOnlyError, match="r\\+"):
                change()
        stream = scene["Body"]["vertex"]["weights"]
        scene.close()
        for use in (lambda: scene["Body"], lambda: stream["Weight"], lambda: scene.save(), lambda: len(stream)):
            with pytest.raises(vumo.ClosedError, match="closed"):
                use()
        assert "closed" in repr(scene) and "no longer" in repr(stream)


def test_numbers_are_exact_unless_they_are_not_to_be(path):
    for exact, expected in ((True, np.float32(1 / 3)), (False, np.float32(0.333333))):
        with vumo.open(path, "r+", exact=exact) as scene:
            scene["Body"]["vertex"]["weights"]["Weight"] = 1 / 3
        assert vumo.open(path)["Body"]["vertex"]["weights"]["Weight"][0] == expected


def test_reprs_and_frames_show_what_is_there(editable):
    editable["Body"]["vertex"]["weights"].resize(9)
    expected = {
        "scene": "'Body'", "node": "vertex: weights", "channel": "9 × <vumo.Structure 'VertexWeight': Weight:float",
        "stream": "9 elements at numeric indices", "element": "<vumo.Element 1 of 'weights': Weight=0.25, Locked=False>",
    }  # fmt: skip
    node = editable["Body"]
    shown = {"scene": editable, "node": node, "channel": node["vertex"], "stream": node["vertex"]["weights"]}
    shown["element"] = shown["stream"][1]
    for name, text in expected.items():
        assert text in repr(shown[name])
    assert "  4: 0.0, False\n  …" in repr(shown["stream"])
    frame = node["edge"]["seams"].to_frame()
    assert list(frame.columns) == ["Stitch", "Offset[0]", "Offset[1]", "Offset[2]"]
    assert frame.loc[(0, 3), "Offset[2]"] == -2.5
    assert editable[""]["scene"]["notes"].to_frame().index.tolist() == ["ann"]
    del node["vertex"]
    editable.close()
    assert all("no longer there" in repr(part) for part in shown.values() if part is not editable)


def test_frames_alone_need_pandas(weights, monkeypatch):
    monkeypatch.setitem(sys.modules, "pandas", None)
    assert weights.records["Weight"].tolist() == [0, 0.25, 0.5, 1]
    with pytest.raises(ImportError, match="pandas"):
        weights.to_frame()


def test_threads_read_and_save_scenes_of_their_own(tmp_path):
    paths = [write_scene(tmp_path / f"{i}.ob") for i in range(4)]
    errors = []

    def work(path: Path) -> None:
        try:
            for i in range(20):
                with vumo.open(path, "r+") as scene:
                    column = scene["Body"]["vertex"]["weights"]["Weight"]
                    assert column[0] == i
                    column[0] += 1
        except BaseException as error:
            errors.append(error)

    threads = [threading.Thread(target=work, args=[path]) for path in paths]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not errors
