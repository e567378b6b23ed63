"""Uses the package as it was installed, away from the sources:

    check_installed.py SITE WRITE_SCENE

SITE is the folder that packages are in.
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

site, write_scene = sys.argv[1:]
sys.path.insert(0, site)

import vumo  # noqa: E402
from vumo import _tool  # noqa: E402

assert Path(vumo.__file__).is_relative_to(site), vumo.__file__
assert Path(vumo.__file__).with_name("py.typed").exists()
with tempfile.TemporaryDirectory() as folder:
    path = Path(folder, "scene.ob")
    subprocess.run([write_scene, path], check=True)
    with vumo.open(path, "r+") as scene:
        scene["Body"]["vertex"]["weights"]["Weight"] *= 2
    assert vumo.open(path)["Body"]["vertex"]["weights"]["Weight"].tolist() == [0, 0.5, 1, 2]

# The library comes from the same tree: no path to the build leads there.
libraries = {line.split()[-1] for line in Path("/proc/self/maps").read_text().splitlines() if "libvumo" in line}
root = Path(site).parents[2] if libraries else None
assert all(Path(library).is_relative_to(root) for library in libraries), libraries

# And so does the tool, which reads for catalogues.
os.environ.pop("VUMO_TOOL", None)
if root is not None:
    assert _tool.program() == str(root / "bin/vumo"), _tool.program()
    alone = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    command = [root / "bin/vumo", "catalog", ":memory:", "update", root / "share/vumo"]
    said = subprocess.run(command, env=alone, check=True, stdout=subprocess.PIPE, text=True).stdout
    assert said.startswith("files="), said

    # Away from the package the command says what it needs.
    with tempfile.TemporaryDirectory() as folder:
        lonely = shutil.copy(root / "bin/vumo-catalog", folder)
        done = subprocess.run([lonely, "--help"], env=alone, stderr=subprocess.PIPE, text=True)
    needs = "vumo: catalog needs the package vumo for Python, build or install that: No module named 'vumo'\n"
    assert (done.returncode, done.stderr) == (3, needs), done
