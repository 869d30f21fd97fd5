"""The cells of the write workload as CSV files, the input of GDAL's XLSX writer: in a
folder, one file per sheet, each with the header row and then its data rows (CSV has no
room for the title row). GDAL reads the folder as one data source, each file a layer.

    cells_csv.py <cells> <output folder>
"""
import csv
import os
import sys

from cells import HEADERS, sheets


def main():
    cells, folder = int(sys.argv[1]), sys.argv[2]
    os.makedirs(folder, exist_ok=True)
    for number, rows in enumerate(sheets(cells), start=1):
        with open(os.path.join(folder, "Sheet%d.csv" % number), "w", newline="") as out:
            writer = csv.writer(out)
            writer.writerow(HEADERS)
            writer.writerows(rows)


main()
