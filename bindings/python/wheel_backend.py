"""Builds the wheel, with CMake, for the Python that asks for it: the backend that pyproject.toml names.

Needs what building vumo needs and pybind11, and nothing from the network:

    pip wheel --no-build-isolation .

The extension module in the wheel contains the library. `--config-settings=build-dir=FOLDER` keeps the build for the
next time.
"""

from __future__ import annotations

import base64
import hashlib
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile
from pathlib import Path

ROOT = Path(__file__).parents[2]
PROJECT = tomllib.loads((ROOT / "pyproject.toml").read_text())["project"]
VERSION = re.search(r"project\(vumo VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
DIST_INFO = f"vumo-{VERSION}.dist-info"


def get_requires_for_build_wheel(config_settings: dict[str, str] | None = None) -> list[str]:
    return []


def prepare_metadata_for_build_wheel(directory: str, config_settings: dict[str, str] | None = None) -> str:
    target = Path(directory, DIST_INFO)
    target.mkdir()
    for name, text in _metadata().items():
        (target / name).write_text(text)
    return DIST_INFO


def build_wheel(
    directory: str, config_settings: dict[str, str] | None = None, metadata_directory: str | None = None
) -> str:
    name = f"vumo-{VERSION}-{_tag()}.whl"
    with tempfile.TemporaryDirectory() as scratch:
        build = (config_settings or {}).get("build-dir", f"{scratch}/build")
        site = Path(scratch, "site")
        _build_package(build, site)
        files = {path.relative_to(site).as_posix(): path.read_bytes() for path in sorted(site.rglob("*.*"))}
    files |= {f"{DIST_INFO}/{file}": text.encode() for file, text in _metadata().items()}
    record = "".join(f"{file},sha256={_digest(content)},{len(content)}\n" for file, content in files.items())
    files[f"{DIST_INFO}/RECORD"] = f"{record}{DIST_INFO}/RECORD,,\n".encode()
    with zipfile.ZipFile(Path(directory, name), "w", zipfile.ZIP_DEFLATED) as wheel:
        for file, content in files.items():
            wheel.writestr(file, content)
    return name


def _build_package(build: str, site: Path) -> None:
    """Leaves the package in the folder, as it is to lie among others."""
    options = {
        "CMAKE_BUILD_TYPE": "Release",
        "BUILD_SHARED_LIBS": "OFF",
        "Python3_EXECUTABLE": sys.executable,
        "VUMO_BUILD_PYTHON": "ON",
        "VUMO_BUILD_TOOLS": "OFF",
        "VUMO_BUILD_EXAMPLES": "OFF",
        "VUMO_BUILD_TESTS": "OFF",
        "VUMO_PYTHON_INSTALL_DIR": ".",
    }
    # Scripts set up Ninja and need no Make. A folder that was configured before keeps what it has.
    environment = {"CMAKE_GENERATOR": "Ninja"} if shutil.which("ninja") else {}
    for command in (
        ["-S", str(ROOT), "-B", build, *(f"-D{name}={value}" for name, value in options.items())],
        ["--build", build, "--target", "vumo_python", "--parallel", str(os.cpu_count() or 1)],
        ["--install", build, "--prefix", str(site), "--component", "python"],
    ):
        subprocess.run(["cmake", *command], check=True, env=environment | os.environ)


def _tag() -> str:
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{python}-{python}-{re.sub('[-.]', '_', sysconfig.get_platform())}"


def _metadata() -> dict[str, str]:
    required = "".join(f"Requires-Dist: {each}\n" for each in PROJECT["dependencies"])
    return {
        "METADATA": f"Metadata-Version: 2.1\nName: {PROJECT['name']}\nVersion: {VERSION}\n"
        f"Summary: {PROJECT['description']}\nRequires-Python: {PROJECT['requires-python']}\n{required}",
        "WHEEL": f"Wheel-Version: 1.0\nGenerator: vumo\nRoot-Is-Purelib: false\nTag: {_tag()}\n",
    }


def _digest(content: bytes) -> str:
    return base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
