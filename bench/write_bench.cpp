// The write workload: a title row, a header row and cells / 10 rows of ten text cells,
// every cell centred, vertically centred and thinly bordered, written one by one and
// saved. The texts are made as the rows are written, as the peer programs make theirs.
// Rows beyond a sheet's last row go on to a next sheet with its own title and header.
//
//     bench_write <cells> <output.xlsx>      (0 cells: title and header only, a baseline)

#include "benchcells.h"
#include "benchclock.h"

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc != 3)
        return std::fprintf(stderr, "usage: bench_write <cells> <output.xlsx>\n"), 2;
    const long long cells = std::atoll(argv[1]);
    const int rows = static_cast<int>(cells / bench::kColumns);
    const QString path = QString::fromLocal8Bit(argv[2]);

    bench::Stopwatch clock;
    QXlsx::Document document;
    QXlsx::Format format;
    format.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    format.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    format.setBorderStyle(QXlsx::Format::BorderThin);

    for (int first = 0; first == 0 || first < rows; first += bench::kDataRowsPerSheet) {
        if (first > 0)
            document.addSheet();
        document.write(1, 1, bench::titleText(), format);
        for (int c = 0; c < bench::kColumns; ++c)
            document.write(2, c + 1, bench::headerText(c), format);
        const int last = std::min(rows, first + bench::kDataRowsPerSheet);
        for (int r = first; r < last; ++r) {
            for (int c = 0; c < bench::kColumns; ++c)
                document.write(r - first + bench::kFirstDataRow, c + 1, bench::cellText(r, c),
                               format);
        }
    }
    clock.report("write");
    if (!document.saveAs(path))
        return std::fprintf(stderr, "cannot save %s\n", argv[2]), 1;
    clock.report("save");
    bench::reportFigure("cells", static_cast<double>(rows) * bench::kColumns);
    return 0;
}
