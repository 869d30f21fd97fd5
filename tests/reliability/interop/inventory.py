"""Prints, as JSON keyed by file, what openpyxl finds in each workbook given beyond the
cell values the engine models: sheets of every kind and their states, defined names,
and on each worksheet its images, charts, comments, data validations, conditional
formats, tables, hyperlinks, merges and stored values. Cells are walked as stored, never
over the used range, which may reach the last row of the grid."""

import json
import sys
import warnings

import openpyxl


def defined_names(book):
    names = book.defined_names
    items = names.definedName if hasattr(names, "definedName") else names.values()
    return sorted(f"{d.name}={d.attr_text}" for d in items)


def worksheet(sheet):
    cells = sheet._cells.values()
    return {
        "images": len(sheet._images),
        "charts": len(sheet._charts),
        "comments": sorted(f"{c.coordinate}:{c.comment.text}" for c in cells if c.comment),
        "validations": sorted(f"{v.sqref} {v.type} {v.formula1}"
                              for v in sheet.data_validations.dataValidation),
        "conditionalFormats": sorted(f"{f.sqref}:" + ",".join(r.type for r in f.rules)
                                     for f in sheet.conditional_formatting),
        "tables": sorted(sheet.tables.keys()),
        "hyperlinks": sorted(f"{c.coordinate}:{c.hyperlink.target or c.hyperlink.location}"
                             for c in cells if c.hyperlink),
        "merges": sorted(str(r) for r in sheet.merged_cells.ranges),
        "cells": {c.coordinate: str(c.value) for c in cells if c.value is not None},
    }


def inventory(path):
    book = openpyxl.load_workbook(path)
    return {
        "sheets": [[s.title, type(s).__name__, s.sheet_state] for s in book._sheets],
        "active": book.active.title,
        "definedNames": defined_names(book),
        "worksheets": {s.title: worksheet(s) for s in book.worksheets},
        "chartsheetCharts": {s.title: len(s._charts) for s in book.chartsheets},
    }


def main(paths):
    warnings.simplefilter("ignore")
    print(json.dumps({path: inventory(path) for path in paths}))


if __name__ == "__main__":
    main(sys.argv[1:])
