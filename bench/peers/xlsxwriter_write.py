"""The write workload with Python's XlsxWriter (default mode, shared strings).

    xlsxwriter_write.py <cells> <output.xlsx>
"""
import sys

import xlsxwriter

from cells import HEADERS, TITLE, sheets


def main():
    cells, path = int(sys.argv[1]), sys.argv[2]
    workbook = xlsxwriter.Workbook(path)
    centred = workbook.add_format({"align": "center", "valign": "vcenter", "border": 1})
    for rows in sheets(cells):
        sheet = workbook.add_worksheet()
        sheet.write_string(0, 0, TITLE, centred)
        for c, header in enumerate(HEADERS):
            sheet.write_string(1, c, header, centred)
        for r, texts in enumerate(rows, start=2):
            for c, text in enumerate(texts):
                sheet.write_string(r, c, text, centred)
    workbook.close()


main()
