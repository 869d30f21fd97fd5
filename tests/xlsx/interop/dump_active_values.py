"""Prints, as one JSON object, the values openpyxl finds on the active sheet of each
workbook named on the command line: {path: {"sheet": name, "cells": [[row, col, kind, value]]}}.

Kinds: "n" number (dates and times as serials), "s" text, "b" boolean, "e" error.
Formulas give their cached results. Only stored cells are visited, so workbooks whose
used range reaches the far corners of the grid cost no more than their cells.
"""
import datetime
import json
import re
import sys
import warnings

import openpyxl
from openpyxl.utils.datetime import to_excel

warnings.simplefilter("ignore")


ESCAPE = re.compile(r"_x([0-9A-Fa-f]{4})_")


def unescaped(text):
    """openpyxl leaves the _xHHHH_ escapes of a file's text as they are; decode them
    as Excel does, so that the texts compare with what a user sees."""
    if "_x" not in text:
        return text
    decoded = ESCAPE.sub(lambda m: chr(int(m.group(1), 16)), text)
    return decoded.encode("utf-16", "surrogatepass").decode("utf-16", "replace")


def cell_entry(cell, epoch):
    value = cell.value
    if value is None:
        return None
    if cell.data_type == "e":
        return ["e", str(value)]
    if isinstance(value, bool):
        return ["b", value]
    if isinstance(value, datetime.timedelta):
        return ["n", value.total_seconds() / 86400.0]
    if isinstance(value, (datetime.datetime, datetime.date, datetime.time)):
        return ["n", float(to_excel(value, epoch))]
    if isinstance(value, (int, float)):
        return ["n", float(value)]
    return ["s", unescaped(str(value))]


def dump(path):
    book = openpyxl.load_workbook(path, data_only=True)
    sheet = book.active
    result = {"sheet": sheet.title if sheet is not None else None, "cells": []}
    cells = getattr(sheet, "_cells", None)
    if cells is None:
        return result
    for (row, column), cell in sorted(cells.items()):
        entry = cell_entry(cell, book.epoch)
        if entry is not None:
            result["cells"].append([row, column] + entry)
    return result


def main():
    out = {}
    for path in sys.argv[1:]:
        try:
            out[path] = dump(path)
        except Exception as error:  # a file openpyxl cannot read is reported, not fatal
            out[path] = {"error": "%s: %s" % (type(error).__name__, error)}
    json.dump(out, sys.stdout)


if __name__ == "__main__":
    main()
