"""A catalogue says what is in the files, however they come and go."""

import json
import os
import shutil
import sqlite3
import subprocess
import sys
import threading

import pytest
from conftest import ROOT, tool, write_scene

import vumo
from vumo import _catalog, _schema, _tool


@pytest.fixture
def show(tmp_path, monkeypatch):
    """Three scenes, of which one has its own layout of a structure, and what is no scene."""
    monkeypatch.setattr(_catalog, "_TIME_STEP", 0)  # all is changed and scanned within a second here
    root = tmp_path / "show"
    (root / "b").mkdir(parents=True)
    for name in ("a.oa", "b/b.ob", os.fsdecode(b"b/\xff\n.ob")):
        write_scene(tmp_path / f"new{name[-3:]}").rename(root / name)
    text = (root / "a.oa").read_text()
    assert "float=Weight" in text
    (root / "a.oa").write_text(text.replace("float=Weight", "double=Weight"))
    with vumo.open(root / "a.oa", "r+") as scene:
        scene["Body"]["edge"]["seams"][0, 3]["Offset"] = [-(2.0**70), 0, 0]  # in a scan a whole number, too large for SQLite
        members = dict.fromkeys(("node", "key", "upath", "rpath", "roles"), str)
        table = scene.create("").create("externalContentTable").create(
            "v1.0", members, structure="externalContentTable", index_type="string")  # fmt: skip
        for index, path in (("0", "b/b.ob"), ("1", "none.png")):
            table.set_element(index, {"node": "Body", "key": "tex", "upath": path, "roles": "color;bump"})
        scene.declare(vumo.Structure("Unused", {"f": "f8"}))
    (root / "bad.ob").write_bytes(b"no scene")
    for name in ("note.txt", ".vumo-aB3dE9.ob"):
        (root / name).write_bytes(b"no scene either")
    return root


def dump(catalog):
    """All that the catalogue says, without its own numbers."""
    queries = [catalog.files, catalog.streams, catalog.versions, catalog.orphans, catalog.missing_content, catalog.faults]
    return [query() for query in queries] + [catalog.sql("SELECT * FROM all_members ORDER BY 1, 2, 3, 4, 5")]


def test_queries_tell_what_the_files_hold(show, tmp_path):
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        assert catalog.update(show) == _catalog.Update(files=4, scanned=4, changed=4, removed=0, faulty=1)
        own, usual = (f"name=VertexWeight:{type}=Weight:bool=Locked" for type in ("double", "float"))
        assert [tuple(row.values()) for row in catalog.conflicts()] == [
            ("VertexWeight", usual, 2, 4),
            ("VertexWeight", own, 1, 2),
        ]
        assert [(row["node"], row["elements"]) for row in catalog.streams(layout=own)] == [("Body", 4), ("Head", 4)]
        files = [str(show / name) for name in ("a.oa", "b/b.ob", "b/\udcff\n.ob")]
        assert [tuple(row.values()) for row in catalog.carriers("Body")] == [(file, 2) for file in files]
        assert [(row["file"], row["code"]) for row in catalog.faults()] == [(str(show / "bad.ob"), 3)]
        orphans = [(row["file"], row["structure"]) for row in catalog.orphans()]
        assert orphans == [(files[0], "Unused")]
        missing = catalog.missing_content()
        assert [(row["unresolved_path"], json.loads(row["roles"])) for row in missing] == [("none.png", ["bump", "color"])]
        query = "SELECT member, least, greatest FROM all_members WHERE file = ? AND least NOT NULL ORDER BY stream"
        assert [tuple(row.values()) for row in catalog.sql(query, files[:1])] == [
            ("Revision", "18446744073709551615", "18446744073709551615"),
            ("Offset", -(2.0**70), 0.125),
            ("Weight", 0, 1),
            ("Weight", 0, 1),
        ]
        assert catalog.streams().to_frame()["elements"].sum() == 3 * (1 + 2 + 4 + 4) + 2


def test_an_updated_catalogue_is_as_a_new_one(show, tmp_path):
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        catalog.update(show)
        for same in (str(show), bytes(show), [bytes(show)]):
            assert catalog.update(same).scanned == 0
        with vumo.open(show / "a.oa", "r+") as scene:
            scene["Body"]["vertex"]["weights"]["Weight"][0] = 7
            del scene["Body"]["edge"], scene["Head"]
        os.utime(show / "b/b.ob", ns=(1, 1))
        (show / os.fsdecode(b"b/\xff\n.ob")).unlink()
        shutil.copy(show / "b/b.ob", show / "bad.ob")
        (show / "c").mkdir()
        shutil.copy(show / "a.oa", show / "c/c.OA")
        (show / "d.ob").symlink_to("nowhere")
        done = catalog.update(show, workers=2)
        assert (done.files, done.scanned, done.changed, done.removed, done.faulty) == (4, 4, 3, 1, 1)
        with vumo.catalog(tmp_path / "new.sqlite") as new:
            new.update(show)
            assert dump(catalog) == dump(new)
        shutil.rmtree(show)
        assert catalog.update(show).removed == 4
        assert [len(rows) for rows in dump(catalog)] == [0, 0, 0, 0, 0, 1, 0]
        tables = ("declarations", "nodes", "channels", "streams", "ranges", "content")
        assert not any(catalog.sql(f"SELECT * FROM {table}") for table in tables)


@pytest.mark.parametrize(("was", "scanned", "changed"), [
    *((f"{column} = 5", 1, 0) for column in ("device", "inode", "size", "mtime", "ctime", "code")),
    ("tail = 'x'", 0, 0), ("tail = 'x', size = 1", 1, 1),
])  # fmt: skip
def test_each_thing_that_tells_a_change_is_looked_at(show, tmp_path, was, scanned, changed):
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        catalog.update(show)
        before = dump(catalog)
        catalog.sql(f"UPDATE files SET {was} WHERE name GLOB '*/a.oa'")
        done = catalog.update(show)
        assert (done.scanned, done.changed) == (scanned, changed)
        catalog.update(show, anew=True)
        assert dump(catalog) == before


def test_the_page_has_all_tables_and_columns(tmp_path):
    page = (ROOT / "docs/catalogue.md").read_text()
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        for table in catalog.sql("SELECT name FROM sqlite_master WHERE type IN ('table', 'view')"):
            [line] = [line for line in page.splitlines() if line.startswith(f"| `{table['name']}` |")]
            columns = [row["name"] for row in catalog.sql(f"SELECT name FROM pragma_table_info('{table['name']}')")]
            assert not [column for column in columns if f"`{column}`" not in line]


def test_an_update_that_was_interrupted_goes_on(show, tmp_path, monkeypatch):
    scan = _tool.scan
    runs = []

    def scan_once(names):
        runs.append(names)
        if len(runs) == 3:
            raise KeyboardInterrupt
        return scan(names)

    monkeypatch.setattr(_catalog, "_FILES_AT_ONCE", 1)
    monkeypatch.setattr(_tool, "scan", scan_once)
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        with pytest.raises(KeyboardInterrupt):
            catalog.update(show)
        found = len(catalog.files())
        assert 0 < found < 4
        assert catalog.update(show).scanned == 4 - found


def test_a_file_that_stops_the_tool_is_a_fault_of_its_own(show, tmp_path, monkeypatch):
    """A tool that falls over one file."""
    broken = tmp_path / "vumo"
    real = _tool.program()
    broken.write_text(f'#!/bin/sh\nfiles=$(tr "\\0" "|")\ncase $files in *bad.ob*) kill -9 $$;; esac\n'
                      f'printf %s "$files" | tr "|" "\\0" | {real} "$@"\n')  # fmt: skip
    broken.chmod(0o755)
    monkeypatch.setattr(_tool, "program", lambda: str(broken))
    with vumo.catalog(tmp_path / "c.sqlite") as catalog:
        assert catalog.update(show).faulty == 1
        assert len(catalog.files()) == 3
        assert [row["error"] for row in catalog.faults()] == ["vumo stopped in the middle of it"]
        broken.write_text("#!/bin/sh\nexit 2\n")  # as of options that it does not know
        with pytest.raises(vumo.Error, match="another version"):
            catalog.update(show, anew=True)
        assert len(catalog.files()) == 3


def as_database(path, *statements):
    with sqlite3.connect(path) as database:
        for statement in statements:
            database.execute(statement)
    database.close()


NO_CATALOGUES = {
    "no database": (lambda path: path.write_bytes(b"no database" * 99), "not a database"),
    "of something else": (lambda path: as_database(path, "CREATE TABLE t (a)"), "no catalogue"),
    "of another version": (lambda path: (vumo.catalog(path).close(), as_database(path, "PRAGMA user_version = 99")), "version 99"),
    "cut off": (lambda path: (vumo.catalog(path).close(), os.truncate(path, 9000)), "malformed"),
    "a folder": (lambda path: path.mkdir(), "unable to open"),
    "in no folder": (lambda path: path.symlink_to("none/c.sqlite"), "unable to open"),
}


@pytest.mark.parametrize("case", NO_CATALOGUES)
def test_what_is_no_catalogue_is_left_alone(show, tmp_path, case):
    path = tmp_path / "c.sqlite"
    make, text = NO_CATALOGUES[case]
    make(path)
    before = path.read_bytes() if path.is_file() else None
    with pytest.raises(vumo.CatalogError, match=text) as caught, vumo.catalog(path) as catalog:
        catalog.update(show)
    assert caught.value.file == str(path)
    assert before == (path.read_bytes() if path.is_file() else None)
    done = subprocess.run([sys.executable, "-m", "vumo", "catalog", path, "update", show], stderr=subprocess.PIPE, text=True)
    assert done.returncode == 3
    assert done.stderr.startswith("vumo: ") and done.stderr.count("\n") == 1 and text in done.stderr


def test_a_catalogue_that_must_not_be_written_to_can_be_asked(show, tmp_path):
    path = tmp_path / "place/c.sqlite"
    path.parent.mkdir()
    with vumo.catalog(path) as catalog:
        catalog.update(show)
    path.chmod(0o444)
    path.parent.chmod(0o555)
    rights = "-dac_override,-dac_read_search"  # which the administrator has
    as_user = ["setpriv", f"--inh-caps={rights}", f"--bounding-set={rights}"] if os.geteuid() == 0 else []

    def ask(*words):
        return subprocess.run([*as_user, sys.executable, "-m", "vumo", "catalog", path, *words], capture_output=True, text=True)

    assert ask("carriers", "Body").stdout.count("\n") == 4
    done = ask("update", show)
    assert (done.returncode, done.stderr) == (3, f"vumo: {path}: the catalogue cannot be used: attempt to write a readonly database\n")


def test_several_may_update_at_once_and_ask_meanwhile(show, tmp_path, monkeypatch):
    for number in range(20):
        shutil.copy(show / "b/b.ob", show / f"{number}.ob")
    monkeypatch.setattr(_catalog, "_FILES_AT_ONCE", 2)
    path = tmp_path / "c.sqlite"
    done = []

    def update():
        with vumo.catalog(path) as catalog:
            done.append(catalog.update(show, workers=2))

    threads = [threading.Thread(target=update) for _ in range(3)]
    for thread in threads:
        thread.start()
    while any(thread.is_alive() for thread in threads):
        with vumo.catalog(path) as catalog:
            assert all(row["streams"] == 2 for row in catalog.carriers("Body"))
    assert [each.files for each in done] == [24, 24, 24]
    with vumo.catalog(path) as catalog, vumo.catalog(tmp_path / "new.sqlite") as new:
        new.update(show)
        assert dump(catalog) == dump(new)
        monkeypatch.setattr(_schema, "_WAIT", 0.01)
        with vumo.catalog(path) as other, catalog._transaction(), pytest.raises(vumo.LockedError, match="another process"):
            other.update(show)


def test_the_catalogue_is_fed_with_lines_and_asked_on_the_command_line(show, tmp_path):
    database = tmp_path / "c.sqlite"
    lines = tool("scan", show / "a.oa", show / "b/b.ob").splitlines()

    def ask(*words):
        command = [os.environ["VUMO_TOOL"], "catalog", database, *words]
        return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout

    with vumo.catalog(database) as catalog:
        assert catalog.add_lines(lines) == 2
        assert catalog.add_lines(lines) == 0
        other = [line.replace('"tail": "', '"tail": "x') for line in lines]
        assert catalog.add_lines(other + lines) == 4
        with pytest.raises(ValueError):
            catalog.add_lines(["{"])
    assert ask("carriers", "Body") == f"file\tstreams\n{show}/a.oa\t2\n{show}/b/b.ob\t2\n"
    rows = [json.loads(line) for line in ask("streams", "--node", "Head", "--json").splitlines()]
    assert [row["file"] for row in rows] == [f"{show}/a.oa", f"{show}/b/b.ob"]
    assert ask("update", str(show), "--workers", "2") == "files=4 scanned=4 changed=2 removed=0 faulty=1\n"
    assert ask("sql", "SELECT count(*) AS n FROM files") == "n\n4\n"
