"""Prints what openpyxl reads from the active sheet of a workbook, as JSON: the sheet name,
the merged ranges, the height of row 1 and, for every stored cell, its value, data type
and style (horizontal and vertical alignment, solid fill colour, left, right, top and
bottom border; an empty text where there is none)."""

import json
import sys

import openpyxl
from openpyxl.cell.cell import MergedCell


def style(cell):
    fill = cell.fill
    colour = fill.fgColor.rgb if fill.fill_type == "solid" else None
    border = cell.border
    parts = [cell.alignment.horizontal, cell.alignment.vertical,
             colour.upper() if isinstance(colour, str) else None,
             border.left.style, border.right.style, border.top.style, border.bottom.style]
    return [part or "" for part in parts]


def main(path):
    sheet = openpyxl.load_workbook(path).active
    # The covered cells of a merge have no style of their own in the file: openpyxl lends
    # them the border of the merge's first cell, so they are left out.
    cells = [{"ref": cell.coordinate, "value": cell.value, "type": cell.data_type,
              "style": style(cell)}
             for row in sheet.iter_rows() for cell in row
             if not isinstance(cell, MergedCell) and (cell.value is not None or cell.has_style)]
    json.dump({"sheet": sheet.title,
               "merges": sorted(str(r) for r in sheet.merged_cells.ranges),
               "row1Height": sheet.row_dimensions[1].height,
               "cells": cells}, sys.stdout)


if __name__ == "__main__":
    main(sys.argv[1])
