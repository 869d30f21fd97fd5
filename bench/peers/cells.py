"""The cells of the write and read workloads, as bench/benchcells.h spells them."""

COLUMNS = 10
TITLE = "Benchmark cells"
HEADERS = ["Column %d" % (c + 1) for c in range(COLUMNS)]
DATA_ROWS_PER_SHEET = 1048576 - 2   # then a next sheet, again with title and header


def cell_text(r, c):
    if c % 2 == 0:
        return "Feature %d-%d" % (r, c)
    return "%d.%04d" % (r, (r * 7 + c * 1237) % 10000)


def sheets(cells):
    """The data rows of each sheet: one sheet, or more when the rows exceed one."""
    rows = cells // COLUMNS
    for first in range(0, max(rows, 1), DATA_ROWS_PER_SHEET):
        last = min(rows, first + DATA_ROWS_PER_SHEET)
        yield ([cell_text(r, c) for c in range(COLUMNS)] for r in range(first, last))
