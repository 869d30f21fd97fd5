"""The cells of the write and read workloads, as bench/benchcells.h spells them."""

COLUMNS = 10
TITLE = "Benchmark cells"
HEADERS = ["Column %d" % (c + 1) for c in range(COLUMNS)]


def cell_text(r, c):
    if c % 2 == 0:
        return "Feature %d-%d" % (r, c)
    return "%d.%04d" % (r, (r * 7 + c * 1237) % 10000)


def data_rows(cells):
    """Lists of the texts of each data row, cells // COLUMNS rows."""
    for r in range(cells // COLUMNS):
        yield [cell_text(r, c) for c in range(COLUMNS)]
