// The read workload: a workbook's active sheet read whole with getExcelData, or the
// workbook opened and every cell of every sheet's used range asked for its value. Prints
// the cells read and their characters, so that a reader that skipped work would show.
//
//     bench_read data <input.xlsx>
//     bench_read cells <input.xlsx>

#include "vygisutil.h"

#include "benchclock.h"

#include "xlsxcell.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

void readWithGetExcelData(const QString& path)
{
    bench::Stopwatch clock;
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(path, rows);
    clock.report("read");
    double cells = 0, characters = 0;
    for (const QStringList& row : rows) {
        cells += row.size();
        for (const QString& text : row)
            characters += text.size();
    }
    bench::reportFigure("cells", cells);
    bench::reportFigure("characters", characters);
}

void readCellByCell(const QString& path)
{
    bench::Stopwatch clock;
    QXlsx::Document document(path);
    clock.report("open");
    double cells = 0, characters = 0;
    for (const QString& name : document.sheetNames()) {
        document.selectSheet(name);
        const QXlsx::Worksheet* sheet = document.currentWorksheet();
        const QXlsx::CellRange used = sheet ? sheet->dimension() : QXlsx::CellRange();
        for (int row = used.firstRow(); used.isValid() && row <= used.lastRow(); ++row) {
            for (int column = used.firstColumn(); column <= used.lastColumn(); ++column) {
                const QXlsx::Cell* cell = sheet->cellAt(row, column);
                if (!cell)
                    continue;
                const QVariant value = cell->value();
                ++cells;
                if (value.type() == QVariant::String)
                    characters += value.toString().size();
            }
        }
    }
    clock.report("values");
    bench::reportFigure("cells", cells);
    bench::reportFigure("characters", characters);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3 || (std::strcmp(argv[1], "data") != 0 && std::strcmp(argv[1], "cells") != 0))
        return std::fprintf(stderr, "usage: bench_read data|cells <input.xlsx>\n"), 2;
    const QString path = QString::fromLocal8Bit(argv[2]);
    if (std::strcmp(argv[1], "data") == 0)
        readWithGetExcelData(path);
    else
        readCellByCell(path);
    return 0;
}
