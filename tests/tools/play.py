#!/usr/bin/python3
"""Plays the commands of a transcript and compares all that comes of them with what stands there.

usage: play.py [--update] TRANSCRIPT FOLDER...   (the folders have the programs)

A line of a transcript that begins with "  $ " is a command for bash. What it prints stands after it, indented alike:
standard output, then standard error after "! ", then the exit code after "? " unless it is 0. Bytes that are neither
printable nor UTF-8 are escaped, and "\\ no newline" ends an output that has none at its end. Other lines are prose.
The commands run in a folder of their own that holds the golden scenes and those of the examples, after prelude.sh.

In a page, a Markdown file, commands stand in ```console blocks after "$ ", on to the next line after a backslash, and what
a terminal would show stands after them. Any other block that begins with the name of a file in a comment
("// grid.cpp", "# edits.txt") is written to that file.
"""
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]


def golden_bytes(text):
    """The bytes that a file of tests/golden spells out: hex digits, or text between double quotes."""
    pieces = re.findall(r'"([^"]*)"|([0-9a-f]{2})', re.sub(r"#.*", "", text))
    return b"".join(quoted.encode() or bytes.fromhex(digits) for quoted, digits in pieces)


def lay_out(folder):
    for scene in [*ROOT.glob("examples/scenes/*.o?"), *ROOT.glob("tests/golden/*.oa")]:
        shutil.copy(scene, folder)
    for dump in ROOT.glob("tests/golden/*.ob.hex"):
        (folder / dump.stem).write_bytes(golden_bytes(dump.read_text()))


def printable(output):
    escapes = lambda found: found.group().encode("unicode_escape").decode()
    return re.sub(r"[\x00-\x09\x0b-\x1f\x7f]", escapes, output.decode(errors="backslashreplace").replace("\t", "→"))


def indented(mark, output):
    if output and not output.endswith("\n"):
        output += "\\ no newline\n"
    return "".join(f"  {mark}{line}\n" for line in output.split("\n")[:-1])


def play(transcript, folder, environment):
    """The transcript with what its commands print today."""
    played = ""
    for line in transcript.splitlines(keepends=True):
        if line.startswith("  $ "):
            done = subprocess.run(["bash", "-c", line[4:]], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                  capture_output=True)
            played += line + indented("", printable(done.stdout)) + indented("! ", printable(done.stderr))
            played += indented("? ", f"{done.returncode}\n" if done.returncode else "")
        elif not line.startswith("  "):
            played += line
    return played


def run(command, folder, environment):
    """What a terminal would show of it."""
    done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.stdout.decode(errors="backslashreplace").replace("\t", "    ")


def play_block(kind, block, folder, environment):
    """The block of a page with what its commands print today."""
    if kind != "console":
        name = re.match(r"(?://|#) (\w+\.\w+)\n", block)
        if name:
            pathlib.Path(folder, name[1]).write_text(block)
        return block
    commands = re.findall(r"^\$ (?:.*\\\n)*.*\n", block, re.MULTILINE)
    return "".join(command + run(command[2:], folder, environment) for command in commands)


def play_page(page, folder, environment):
    """The page with what its commands print today."""
    blocks = re.compile(r"^```(\w*)\n(.*?)^```\n", re.MULTILINE | re.DOTALL)
    return blocks.sub(lambda found: f"```{found[1]}\n{play_block(found[1], found[2], folder, environment)}```\n", page)


def main(arguments):
    is_update = arguments[0] == "--update"
    path, *folders = arguments[is_update:]
    path = pathlib.Path(path)
    programs = ":".join([*map(os.path.abspath, folders), os.environ["PATH"]])
    environment = {**os.environ, "LC_ALL": "C", "PATH": programs, "BASH_ENV": str(ROOT / "tests/tools/prelude.sh")}
    with tempfile.TemporaryDirectory() as folder:
        lay_out(pathlib.Path(folder))
        expected = path.read_text()
        played = (play_page if path.suffix == ".md" else play)(expected, folder, environment)
    if is_update:
        path.write_text(played)
    elif played != expected:
        sys.stdout.writelines(difflib.unified_diff(expected.splitlines(keepends=True), played.splitlines(keepends=True),
                                                   str(path), "played"))
        sys.exit(1)


main(sys.argv[1:])
