"""Catalogues and campaigns on the command line: vumo catalog ..., vumo campaign ...

Where there is no tool beside the package, python3 -m vumo has the same commands.
"""

from __future__ import annotations

import argparse
import json
import os
import sqlite3
import sys
from collections.abc import Callable, Sequence
from typing import Any

from ._campaign import Campaign
from ._catalog import Catalog
from ._rows import Rows
from .errors import Error, LockedError

_BAD_INPUT, _BUSY, _SOME_FAILED = 3, 5, 7  # exit codes as of the program vumo

_Commands = Any  # argparse does not name its type


def _add_workers(command: argparse.ArgumentParser) -> None:
    command.add_argument("--workers", type=int, default=1, metavar="N", help="processes on this machine")
    command.add_argument("--scheduler", metavar="ADDRESS", help="of a Dask cluster, whose workers work then")


def _update(catalog: Catalog, given: argparse.Namespace) -> None:
    done = catalog.update(given.root, given.workers, scheduler=given.scheduler, anew=given.anew)
    if done.faulty:
        print(f"{done.faulty} of {done.files} files are faulty", file=sys.stderr)
    print(" ".join(f"{name}={count}" for name, count in vars(done).items()))


def _add_catalog(commands: _Commands) -> None:
    catalog = commands.add_parser("catalog", help="what the scenes of a whole production hold, in an SQLite database")
    catalog.add_argument("database")
    catalog.set_defaults(run=_run_catalog)
    verbs = catalog.add_subparsers(required=True, metavar="COMMAND")
    update = verbs.add_parser("update", help="read what is new or changed in these scenes, and in folders of them")
    update.add_argument("root", nargs="+")
    update.add_argument("--anew", action="store_true", help="read all files")
    _add_workers(update)
    update.set_defaults(verb=_update)

    def add_query(name: str, help: str, query: Callable[[Catalog, argparse.Namespace], Rows]) -> argparse.ArgumentParser:
        parser: argparse.ArgumentParser = verbs.add_parser(name, help=help)
        parser.add_argument("--json", action="store_true", help="a JSON object for each row")
        parser.set_defaults(verb=lambda catalog, given: _print(query(catalog, given), given.json))
        return parser

    parts = ("node", "channel", "stream", "structure", "layout")
    streams = add_query(
        "streams", "streams with these names", lambda catalog, given: catalog.streams(**{p: getattr(given, p) for p in parts})
    )
    for part in parts:
        streams.add_argument(f"--{part}")
    versions = add_query("versions", "the layouts of structures", lambda catalog, given: catalog.versions(given.structure))
    versions.add_argument("structure", nargs="?")
    carriers = add_query("carriers", "files with that node", lambda catalog, given: catalog.carriers(given.node))
    carriers.add_argument("node")
    sql = add_query("sql", "what that query gives", lambda catalog, given: catalog.sql(given.query))
    sql.add_argument("query")
    add_query("files", "all files", lambda catalog, given: catalog.files())
    add_query("conflicts", "structures with several layouts", lambda catalog, given: catalog.conflicts())
    add_query("orphans", "declared structures that nothing uses", lambda catalog, given: catalog.orphans())
    add_query("missing-content", "external content that was not found", lambda catalog, given: catalog.missing_content())
    add_query("faults", "what could not be read", lambda catalog, given: catalog.faults())


def _print(rows: Rows, as_json: bool) -> None:
    for line in map(json.dumps, rows) if as_json else rows.lines():
        print(line)


def _run_catalog(given: argparse.Namespace) -> None:
    with Catalog(given.database) as catalog:
        given.verb(catalog, given)


def _add_campaign(commands: _Commands) -> None:
    campaign = commands.add_parser("campaign", help="the same edits in many files, which can be undone")
    campaign.add_argument("record", help="the folder that says what was done")
    verbs = campaign.add_subparsers(required=True, metavar="COMMAND")

    def add_verb(name: str, help: str) -> argparse.ArgumentParser:
        parser: argparse.ArgumentParser = verbs.add_parser(name, help=help)
        parser.set_defaults(run=_run_campaign, verb=name, script=None, file=[], max_failures=1)
        return parser

    for name, help in (("plan", "what the script would do to the files, and what that costs"), ("run", "do it")):
        verb = add_verb(name, help)
        verb.add_argument("script", help='lines as "vumo apply" takes them; "-" for standard input')
        verb.add_argument("file", nargs="+", help="scenes, and folders of them")
        verb.add_argument("--max-failures", type=int, default=10, metavar="K", help="stop after so many")
        _add_workers(verb)
    _add_workers(add_verb("undo", "put back what the campaign has changed"))
    report = add_verb("report", "what was done to each file")
    report.add_argument("--json", action="store_true", help="a JSON object for each row")
    report.set_defaults(workers=1, scheduler=None)


def _run_campaign(given: argparse.Namespace) -> None:
    script = None
    if given.script is not None:
        with open(0 if given.script == "-" else given.script, encoding="utf-8", errors="surrogateescape") as file:
            script = file.read()
    campaign = Campaign(
        script, given.file, given.workers,
        record=given.record, scheduler=given.scheduler, max_failures=given.max_failures,
    )  # fmt: skip
    if given.verb == "report":
        return _print(campaign.report(), given.json)
    report = {"plan": campaign.plan, "run": campaign.run, "undo": campaign.undo}[given.verb]()
    print(str(report).encode(errors="backslashreplace").decode())
    if report.failures or report.left:
        sys.exit(_SOME_FAILED)


def main(arguments: Sequence[str] | None = None, program: str = "python3 -m vumo") -> None:
    parser = argparse.ArgumentParser(program, description="Work on the scenes of whole productions.")
    commands = parser.add_subparsers(required=True, metavar="COMMAND")
    _add_catalog(commands)
    _add_campaign(commands)
    given = parser.parse_args(arguments)
    try:
        given.run(given)
        sys.stdout.flush()
    except BrokenPipeError:  # whoever reads the rows has enough
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
    except (Error, ValueError, OSError, sqlite3.Error) as error:
        text = str(error).encode(errors="backslashreplace").decode()
        print(f"vumo: {text}", file=sys.stderr)
        sys.exit(_BUSY if isinstance(error, LockedError) else _BAD_INPUT)


if __name__ == "__main__":
    main()
