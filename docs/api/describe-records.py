#!/usr/bin/env python3
"""Gives a public header as Doxygen is to read it: describe-records.py HEADER

Members of records that have no comment of their own get what docs/stores.md says of their column. Constructors,
assignments and destructors without a comment are left out: they do what their declaration says. Lines keep their
numbers.
"""
import pathlib
import re
import sys

STORES = pathlib.Path(__file__).parent.parent / "stores.md"

# Where docs/stores.md describes the columns of a header's records: the file's heading and the table's. A record that
# has a table other than the header's usual one stands behind a colon.
TABLES = {
    "carditems": "main.dat/T_NotepadCard",
    "cloudfiletable": "main.dat/T_CloudFileTable",
    "driveconftable": "DriveModuleData.dat/DriveConfTable",
    "drivedatatable": "DriveModuleData.dat/DriveDataTable",
    "drivefulltask": "DriveModuleData.dat/DriveFullTask",
    "fastaccesstable": "FastAccess.dat/FastAccess",
    "gallerytables:AlbumTable": "The gallery file/Album",
    "gallerytables:AlbumVersionTable": "The gallery file/AlbumLocalVersion",
    "gallerytables:GalleryFileTable": "The gallery file/GalleryFile",
    "gallerytables": "The gallery file/DownloadTask",
    "legacyrecords:Album": "The gallery file/Album",
    "legacyrecords:AlbumLocalVersion": "The gallery file/AlbumLocalVersion",
    "legacyrecords:GalleryFile": "The gallery file/GalleryFile",
    "legacyrecords:UserProperties": "main.dat/UserProperties",
    "legacyrecords:UserLogFields": "main.dat/UserLogTable",
    "legacyrecords": "The gallery file/DownloadTask",
    "transferrecords:DbTransferTask": "transmission.dat/TransferTask",
    "transferrecords:CompletedTaskProperty": "transmission.dat/CompletedTaskTable",
    "transferrecords:DownloadTaskProperty": "transmission.dat/DownloadTaskTable",
    "transferrecords:UploadTaskProperty": "transmission.dat/UploadTaskTable",
    "userlog": "main.dat/UserLogTable",
    "userproperties": "main.dat/UserProperties",
}


def meanings():
    """What each column means, by "file/table" and the column's name in lower case."""
    found = {}
    file = tables = ""
    for line in STORES.read_text(encoding="utf-8").splitlines():
        if line.startswith("# "):
            file = line[2:].replace("`", "")
        elif line.startswith("## "):
            tables = re.findall(r"`(\w+)`", line)
        elif line.startswith("| `"):
            cells = line.strip("| ").split(" | ")
            for table in tables:
                columns = found.setdefault(f"{file}/{table}", {})
                for column in re.findall(r"`(\w+)`", cells[0]):
                    columns.setdefault(column.lower(), cells[-1])
    return found


def described(path):
    columns = {}
    record = previous = ""
    for line in path.read_text(encoding="utf-8").splitlines():
        commented = "///" in line or re.match(r"\s*//(?!/@)", previous)
        previous = line
        opened = re.match(r"(?:template <.*> )?(?:class|struct) (?:\w+_EXPORT )?(\w+)(?: : .*)? \{", line)
        if opened:
            record = opened[1]
            table = TABLES.get(f"{path.stem}:{record}") or TABLES.get(path.stem)
            columns = meanings()[table] if table else {}
        if not commented and record:
            special = rf"\s+(?:explicit |virtual )?(?:~?{record}|{record}& operator=)\((?:const {record}&|{record}&&)?\)"
            if re.match(special + r"(?: noexcept)?(?: override)?(?: = \w+)?;", line):
                line = ""
            member = re.match(r"(\s+)(?!using|return|friend)\S+ (?:Set|Get)?(\w+)(?:;| = .*;|\(.*\{.*\})$", line)
            meaning = columns.get(member[2].lower()) if member else None
            if meaning:
                meaning = re.sub(r", see \[.*", "", meaning)
                line = f"{member[1]}/** {meaning[0].upper()}{meaning[1:]}. */ {line.strip()}"
        yield line


print("\n".join(described(pathlib.Path(sys.argv[1]))))
