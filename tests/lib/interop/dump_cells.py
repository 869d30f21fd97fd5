"""Prints what openpyxl reads from the active sheet of a workbook, as JSON: the merged
ranges, the height of row 1 and, for every stored cell, its value, data type, alignment,
fill and borders."""

import json
import sys

import openpyxl
from openpyxl.cell.cell import MergedCell


def colour(value):
    rgb = getattr(value, "rgb", None)
    return rgb.upper() if isinstance(rgb, str) else None


def describe(cell):
    border = cell.border
    return {
        "ref": cell.coordinate,
        "value": cell.value,
        "type": cell.data_type,
        "horizontal": cell.alignment.horizontal,
        "vertical": cell.alignment.vertical,
        "fill": cell.fill.fill_type,
        "fillColour": colour(cell.fill.fgColor) if cell.fill.fill_type else None,
        "borders": [side.style for side in (border.left, border.right, border.top, border.bottom)],
    }


def main(path):
    sheet = openpyxl.load_workbook(path).active
    # The covered cells of a merge carry no style of their own in the file: openpyxl
    # lends them the border of the merge's first cell, so they are left out.
    cells = [describe(cell) for row in sheet.iter_rows() for cell in row
             if not isinstance(cell, MergedCell) and (cell.value is not None or cell.has_style)]
    json.dump({
        "sheet": sheet.title,
        "merges": sorted(str(r) for r in sheet.merged_cells.ranges),
        "row1Height": sheet.row_dimensions[1].height,
        "cells": cells,
    }, sys.stdout)


if __name__ == "__main__":
    main(sys.argv[1])
