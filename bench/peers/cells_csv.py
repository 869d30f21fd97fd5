"""The cells of the write workload as CSV, the input of GDAL's XLSX writer: the header
row, then the data rows (CSV has no room for the title row).

    cells_csv.py <cells> <output.csv>
"""
import csv
import sys

from cells import HEADERS, data_rows


def main():
    cells, path = int(sys.argv[1]), sys.argv[2]
    with open(path, "w", newline="") as out:
        writer = csv.writer(out)
        writer.writerow(HEADERS)
        writer.writerows(data_rows(cells))


main()
