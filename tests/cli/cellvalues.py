"""Prints what openpyxl reads in the data cells of a workbook's first sheet, by column
name, as JSON: {"NAME": [[type, repr, number format], ...one per data row], ...}.
repr() of a float is the shortest text that reads back as the same double, so two
cells hold the same number exactly when their reprs are equal.

Usage: cellvalues.py WORKBOOK HEADER_ROW
"""
import json
import sys

import openpyxl


def main():
    sheet = openpyxl.load_workbook(sys.argv[1]).worksheets[0]
    header_row = int(sys.argv[2])
    columns = {}
    for column in range(1, sheet.max_column + 1):
        name = sheet.cell(header_row, column).value
        if name is None:
            continue
        cells = (sheet.cell(row, column) for row in range(header_row + 1, sheet.max_row + 1))
        columns[str(name)] = [[type(c.value).__name__, repr(c.value), c.number_format]
                              for c in cells]
    json.dump(columns, sys.stdout)


if __name__ == "__main__":
    main()
