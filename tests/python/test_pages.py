"""What the pages show is run."""

import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from conftest import ROOT, tool, write_scene

import vumo

PAGE = (ROOT / "docs/python.md").read_text()
EXAMPLE = ROOT / "examples/python/first_look.py"


def blocks(page: str, kind: str) -> list[str]:
    return re.findall(rf"^```{kind}\n(.*?)^```", page, re.DOTALL | re.MULTILINE)


def test_the_example_runs_and_stands_on_the_page(path):
    assert f"```python\n{EXAMPLE.read_text()}```" in PAGE
    shown = subprocess.run([sys.executable, EXAMPLE, path], check=True, stdout=subprocess.PIPE, text=True).stdout
    assert "mean weight 0.4375 of 4\n[[0, 3], [1, 2]] zig-zag" in shown
    assert "\n[[0.0, 0.0, 1.0], [0.0, 0.0, 1.0], [0.0, 0.0, 1.0], [0.0, 0.0, 1.0]]\n[0.    0.125 0.25  0.5  ]\n" in shown
    assert "\nplan: 1 planned: " in shown and "\nundo: 1 undone: " in shown
    assert "Update(files=1, scanned=1, changed=1, removed=0, faulty=0)\nstructure     layout" in shown


def test_the_code_of_the_page_runs(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    write_scene(tmp_path / "shot.ob")
    with vumo.open("shot.ob", "r+") as scene:
        scene["Body"]["vertex"]["skin"] = scene["Body"]["vertex"]["weights"]
    variables = {"locked": [1, 3], "baked": np.ones((4, 2)), "names": list("abcd")}
    for code in blocks(PAGE, "python"):
        if not code.startswith("# A first look"):
            exec(code, variables)
    scene = vumo.open("shot.ob")
    assert scene["Body"]["vertex"]["skin"]["Weight"].tolist() == [0, 0, 0.5, 0]
    assert scene["Body"]["vertex"]["uv"]["label"].tolist() == list("abcd")
    assert scene["Body"]["edge"]["seams"]["Stitch"].tolist() == ["plain", 'zig-zag, the "good" one', "plain"]


def test_the_page_names_all_errors():
    assert all(f"`{name}`" in PAGE for name in vumo.__all__ if name.endswith("Error") and name not in ("Error", "NotFoundError"))


def test_the_page_of_productions_runs(tmp_path, monkeypatch, capsys):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "show").mkdir()
    scenes = [write_scene(tmp_path / "show" / name) for name in ("a.ob", "b.oa")]
    before = [scene.read_bytes() for scene in scenes]
    for code in blocks((ROOT / "docs/production.md").read_text(), "python"):
        exec(code, {"vumo": vumo})
    shown = capsys.readouterr().out
    assert "\n2 saved: " in shown and "\n2 undone: " in shown
    assert " Locked  " in shown
    assert all(vumo.open(scene).structures["VertexWeight"].members["layer"].type == "uint8" for scene in scenes)
    assert not vumo.campaign(record="migration").undo().failures
    assert [scene.read_bytes() for scene in scenes] == before


@pytest.mark.parametrize("page", ["README.md", "docs/catalogue.md", "docs/production.md", "docs/formats/scan.md"])
def test_the_commands_of_the_pages_run(page, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    monkeypatch.setenv("PATH", f"{Path(os.environ['VUMO_TOOL']).parent}:{os.environ['PATH']}")
    (tmp_path / "shots").mkdir()
    (tmp_path / "last").touch()
    for name in ("scene.ob", "other.oa", "shots/a.ob", "shots/b.oa"):
        write_scene(tmp_path / name)
    point = "name=Point:float[3]=Position:string=Label"
    tool("set", "--add", "--structure", point, "scene.ob", "Head", "vertex", "points", 7)
    (tmp_path / "lighten.script").write_text("set Body vertex weights 2 Weight=0.25\n")
    text = (ROOT / page).read_text()
    # No cluster is started here, and the pages' other commands are for building.
    commands = re.findall(r"^(?:vumo|find) (?:(?!--scheduler).)*$", "\n".join(blocks(text, "sh")), re.MULTILINE)
    script = "\n".join(commands).replace(" /shots", f" {tmp_path}/shots")
    subprocess.run(["bash", "-euo", "pipefail"], input=script, check=True, text=True, stdout=subprocess.DEVNULL)
    for code in blocks(text, "py"):
        exec(code, {})
