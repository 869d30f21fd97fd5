"""The write workload with openpyxl in write-only mode, every cell styled.

    openpyxl_write.py <cells> <output.xlsx>
"""
import sys

from openpyxl import Workbook
from openpyxl.cell import WriteOnlyCell
from openpyxl.styles import Alignment, Border, Side

from cells import HEADERS, TITLE, sheets


def main():
    cells, path = int(sys.argv[1]), sys.argv[2]
    workbook = Workbook(write_only=True)
    alignment = Alignment(horizontal="center", vertical="center")
    thin = Side(style="thin")
    border = Border(left=thin, right=thin, top=thin, bottom=thin)

    for rows in sheets(cells):
        sheet = workbook.create_sheet()

        def styled(text):
            cell = WriteOnlyCell(sheet, value=text)
            cell.alignment = alignment
            cell.border = border
            return cell

        sheet.append([styled(TITLE)])
        sheet.append([styled(header) for header in HEADERS])
        for texts in rows:
            sheet.append([styled(text) for text in texts])
    workbook.save(path)


main()
