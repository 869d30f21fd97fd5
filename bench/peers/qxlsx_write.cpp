// The write workload with QXlsx: the cells of bench/benchcells.h, every cell centred,
// vertically centred and thinly bordered, written one by one through Document::write and
// saved, as bench_write does. Rows beyond a sheet's last row go on to a next sheet with
// its own title and header.
//
//     qxlsx_write <cells> <output.xlsx>
//
// Only the QXlsx API is used, which the engine follows, so this one source is built twice:
// against QXlsx (qxlsx_write, where a QXlsx source tree is given) and against the engine
// (peer_qxlsx_api_write), whose counts must be those of bench_write.

#include "benchcells.h"
#include "benchclock.h"

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

QXlsx::Format cellFormat()
{
    QXlsx::Format format;
    format.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    format.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    format.setBorderStyle(QXlsx::Format::BorderThin);
    return format;
}

// Data rows first to last (from 0) on the current sheet, below its title and header.
void writeSheet(QXlsx::Document& document, const QXlsx::Format& format, int first, int last)
{
    document.write(1, 1, bench::titleText(), format);
    for (int c = 0; c < bench::kColumns; ++c)
        document.write(2, c + 1, bench::headerText(c), format);
    for (int r = first; r < last; ++r) {
        for (int c = 0; c < bench::kColumns; ++c)
            document.write(r - first + bench::kFirstDataRow, c + 1, bench::cellText(r, c),
                           format);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return std::fprintf(stderr, "usage: qxlsx_write <cells> <output.xlsx>\n"), 2;
    const long long cells = std::atoll(argv[1]);
    const int rows = static_cast<int>(cells / bench::kColumns);
    const QString path = QString::fromLocal8Bit(argv[2]);

    bench::Stopwatch clock;
    QXlsx::Document document;
    const QXlsx::Format format = cellFormat();
    for (int first = 0; first == 0 || first < rows; first += bench::kDataRowsPerSheet) {
        if (first > 0)
            document.addSheet();
        writeSheet(document, format, first, std::min(rows, first + bench::kDataRowsPerSheet));
    }
    clock.report("write");
    if (!document.saveAs(path))
        return std::fprintf(stderr, "cannot save %s\n", argv[2]), 1;
    clock.report("save");
    bench::reportFigure("cells", static_cast<double>(rows) * bench::kColumns);
    return 0;
}
