"""The read workload with openpyxl in read-only mode: every value of every sheet.

    openpyxl_read.py <input.xlsx>
"""
import sys

from openpyxl import load_workbook


def main():
    workbook = load_workbook(sys.argv[1], read_only=True)
    cells = characters = 0
    for sheet in workbook.worksheets:
        for row in sheet.iter_rows(values_only=True):
            for value in row:
                if value is not None:
                    cells += 1
                    characters += len(str(value))
    workbook.close()
    print("figure cells %d" % cells)
    print("figure characters %d" % characters)


main()
