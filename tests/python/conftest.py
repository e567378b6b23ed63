"""Scenes to try things on."""

import os
import subprocess
from pathlib import Path

import pytest
from hypothesis import settings

import vumo

ROOT = Path(__file__).parents[2]

settings.register_profile("vumo", deadline=None, max_examples=25, stateful_step_count=25, derandomize=True, database=None)
settings.load_profile("vumo")


def write_scene(path: Path) -> Path:
    """Writes the scene of the example program: nodes Body and Head, and the scene's own metadata."""
    subprocess.run([os.environ["VUMO_WRITE_SCENE"], path], check=True)
    return path


def tool(*arguments: object, **options: object) -> str:
    """What the tool says."""
    command = [os.environ["VUMO_TOOL"], *map(str, arguments)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


@pytest.fixture(params=["ob", "oa"])
def path(request: pytest.FixtureRequest, tmp_path: Path) -> Path:
    """The example's scene, binary and ASCII."""
    return write_scene(tmp_path / f"shot.{request.param}")


@pytest.fixture
def editable(path: Path) -> vumo.Scene:
    return vumo.open(path, "r+")


@pytest.fixture
def weights(editable: vumo.Scene) -> vumo.Stream:
    """Four elements at the numbers from 0."""
    return editable["Body"]["vertex"]["weights"]
