"""Other programs open a scanned store with the module: otherprograms.py MODULE DBSERVICE SQLITE3 SQLITE-UTILS"""

import json
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

module, dbservice, shell, utils = sys.argv[1:]
NAMES = ["a1", "A2", "a10", "B", "straße 3", "Straße 20", "\u00e4", "\u03a9mega 7"]


def run(*command):
    return subprocess.run(command, capture_output=True, check=True, encoding="utf-8").stdout


def with_shell(store, sql):
    return run(shell, "-cmd", f".load {module}", str(store), sql).splitlines()


def with_python(store, sql):
    with sqlite3.connect(store) as connection:
        connection.enable_load_extension(True)
        connection.load_extension(module)
        return [str(row[0]) for row in connection.execute(sql)]


def with_utils(store, sql):
    rows = run(utils, "query", str(store), sql, "--load-extension", module)
    return [str(next(iter(row.values()))) for row in json.loads(rows) if "rows_affected" not in row]


def expect(what, found, wanted):
    if found != wanted:
        sys.exit(f"{what}: {found}, not {wanted}")


with tempfile.TemporaryDirectory() as folder:
    source = pathlib.Path(folder, "source")
    store = pathlib.Path(folder, "store", "DriveModuleData.dat")
    source.mkdir()
    for name in reversed(NAMES):
        (source / name).touch()
    run(dbservice, "--folder", str(store.parent), "scan", str(source))
    order = run(dbservice, "--version").splitlines()[-1].removeprefix("order of names ")

    without = subprocess.run([shell, str(store), "REINDEX"], capture_output=True, encoding="utf-8")
    expect("without the module", "no such collation sequence: NameCompare" in without.stderr, True)
    for program in (with_shell, with_python, with_utils):
        told = program.__name__
        ordered = program(store, "SELECT name FROM DriveDataTable WHERE parentId <> '' ORDER BY name COLLATE NameCompare")
        expect(told, ordered, NAMES)
        expect(told, program(store, "SELECT namecompare_version() AS version"), [order])
        # An index that another order has sorted, to be brought into this one.
        with sqlite3.connect(store) as connection:
            connection.create_collation("NameCompare", lambda left, right: (left < right) - (left > right))
            connection.execute("REINDEX nameIndex")
        expect(told, program(store, "PRAGMA integrity_check") == ["ok"], False)
        program(store, "REINDEX")
        expect(told, program(store, "PRAGMA integrity_check"), ["ok"])
        run(dbservice, "check", str(store))
