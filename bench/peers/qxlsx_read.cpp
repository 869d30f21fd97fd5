// The read workload with QXlsx: the workbook opened, then every cell of every sheet's
// used range asked for its value, as "bench_read cells" does. Prints the cells read and
// their characters, so that a reader that skipped work, or read other texts, would show.
//
//     qxlsx_read <input.xlsx>
//
// Only the QXlsx API is used, which the engine follows, so this one source is built twice:
// against QXlsx (qxlsx_read, where a QXlsx source tree is given) and against the engine
// (peer_qxlsx_api_read), whose counts must be those of bench_read.

#include "benchclock.h"

#include "xlsxcell.h"
#include "xlsxcellrange.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <cstdio>

namespace {

struct Counts
{
    double cells = 0;
    double characters = 0;
};

void countUsedRange(const QXlsx::Worksheet& sheet, Counts& counts)
{
    const QXlsx::CellRange used = sheet.dimension();
    for (int row = used.firstRow(); used.isValid() && row <= used.lastRow(); ++row) {
        for (int column = used.firstColumn(); column <= used.lastColumn(); ++column) {
            // QXlsx has answered a plain pointer or a shared one in its versions.
            const auto cell = sheet.cellAt(row, column);
            if (!cell)
                continue;
            const QVariant value = cell->value();
            ++counts.cells;
            if (value.type() == QVariant::String)
                counts.characters += value.toString().size();
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return std::fprintf(stderr, "usage: qxlsx_read <input.xlsx>\n"), 2;
    const QString path = QString::fromLocal8Bit(argv[1]);

    bench::Stopwatch clock;
    QXlsx::Document document(path);
    clock.report("open");
    Counts counts;
    for (const QString& name : document.sheetNames()) {
        document.selectSheet(name);
        if (const QXlsx::Worksheet* sheet = document.currentWorksheet())
            countUsedRange(*sheet, counts);
    }
    clock.report("values");
    bench::reportFigure("cells", counts.cells);
    bench::reportFigure("characters", counts.characters);
    return 0;
}
