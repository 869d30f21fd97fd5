"""Writes, with openpyxl, the workbook the reader's interoperability test opens:
text (blanks, line breaks, emoji, CJK), numbers, booleans, dates and times, a formula
with its cached value left out, merges, sizes, and a second sheet that is active."""
import datetime
import sys

import openpyxl
from openpyxl.styles import Alignment, Border, Font, PatternFill, Side

path = sys.argv[1]
book = openpyxl.Workbook()
first = book.active
first.title = "First"
first["A1"] = "first sheet"

sheet = book.create_sheet("Values")
rows = [
    ["text", "  padded  ", "two\nlines", "😀 emoji", "東京", "=not a formula"],
    [1, -2.5, 1e-300, 123456789012345, 0.1 + 0.2, True],
    [datetime.date(2024, 1, 15), datetime.datetime(2024, 1, 15, 18, 30), datetime.time(6, 0), False, "007", ""],
]
for r, values in enumerate(rows, start=1):
    for c, value in enumerate(values, start=1):
        if value != "":
            sheet.cell(row=r, column=c, value=value)
sheet.cell(row=1, column=6).data_type = "s"
bold = sheet.cell(row=5, column=1, value="bold")
bold.font = Font(bold=True)
bold.alignment = Alignment(horizontal="center")
bold.border = Border(left=Side(style="thin"), right=Side(style="thin"), top=Side(style="thin"), bottom=Side(style="thin"))
bold.fill = PatternFill("solid", fgColor="FFFF00")
sheet.merge_cells("B5:C6")
sheet.row_dimensions[5].height = 30
sheet.column_dimensions["B"].width = 25
sheet.cell(row=200, column=30, value="far")
book.active = 1
book.save(path)
