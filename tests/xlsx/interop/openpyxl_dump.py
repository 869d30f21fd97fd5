"""Prints what openpyxl sees in a workbook as JSON, for the engine's interop tests.

Usage: openpyxl_dump.py WORKBOOK
"""
import datetime
import json
import sys

import openpyxl
from openpyxl.cell.cell import MergedCell


def color(c):
    return c.rgb if c is not None and c.type == "rgb" else None


def value(v):
    if isinstance(v, (datetime.datetime, datetime.date, datetime.time)):
        return {"datetime": v.isoformat()}
    return v


def cell(c):
    return {
        "value": value(c.value),
        "type": c.data_type,
        "numberFormat": c.number_format,
        "bold": bool(c.font.b),
        "fill": c.fill.fill_type,
        "fillColor": color(c.fill.fgColor),
        "border": [c.border.left.style, c.border.right.style,
                   c.border.top.style, c.border.bottom.style],
        "horizontal": c.alignment.horizontal,
        "vertical": c.alignment.vertical,
    }


def sheet(ws):
    out = {"title": ws.title, "type": type(ws).__name__}
    if not hasattr(ws, "iter_rows"):
        return out
    # The covered cells of a merge have no style of their own in the file: openpyxl lends
    # them the border of the merge's first cell, so they are left out.
    out["cells"] = {c.coordinate: cell(c) for row in ws.iter_rows() for c in row
                    if not isinstance(c, MergedCell) and (c.value is not None or c.has_style)}
    out["merges"] = sorted(str(r) for r in ws.merged_cells.ranges)
    out["rowHeights"] = {str(k): d.height for k, d in ws.row_dimensions.items()
                         if d.height is not None}
    out["columnWidths"] = {k: d.width for k, d in ws.column_dimensions.items()
                           if d.customWidth}
    return out


def main():
    wb = openpyxl.load_workbook(sys.argv[1])
    json.dump({"sheets": [sheet(ws) for ws in wb.worksheets + wb.chartsheets],
               "active": wb.index(wb.active),
               "epoch": wb.epoch.isoformat()},
              sys.stdout, ensure_ascii=True)


if __name__ == "__main__":
    main()
