#include "vygisutil.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"
#include "xlsxworksheet.h"

namespace {

// Missing cells inside the used range count, so a few stray cells far from the data
// would ask for billions of entries; no coordinate sheet comes near this.
constexpr qint64 MaxCellsRead = 50'000'000;

qint64 cellCount(const QXlsx::CellRange& range)
{
    return qint64(range.rowCount()) * range.columnCount();
}

QString storedText(const QXlsx::Cell* cell)
{
    return cell ? cell->value().toString() : QString();
}

} // namespace

std::vector<VyObjects::TsPoint> VyExcelUtil::readCoordinateFile(const QString& path)
{
    const QXlsx::Document document(path);
    const QXlsx::CellRange used = document.dimension();
    std::vector<VyObjects::TsPoint> points;
    if (!used.isValid() || cellCount(used) > MaxCellsRead)
        return points;

    // Texts pair up in reading order, whatever row or column they stand in.
    bool haveX = false;
    double x = 0.0;
    for (int row = used.firstRow(); row <= used.lastRow(); ++row) {
        for (int column = used.firstColumn(); column <= used.lastColumn(); ++column) {
            const QXlsx::Cell* cell = document.cellAt(row, column);
            const QString text = storedText(cell);
            // A stored cell without text (a formatted blank) is no coordinate; a missing
            // one is, and reads as 0.
            if (cell && text.isEmpty())
                continue;
            const double value = text.toDouble();
            if (haveX)
                points.emplace_back(x, value);
            else
                x = value;
            haveX = !haveX;
        }
    }
    if (haveX)
        return {};
    if (!points.empty())
        points.push_back(points.front());
    return points;
}

QStringList VyExcelUtil::readCoordinateFile2(const QString& path)
{
    QStringList texts;
    if (!vygis::fileExists(path))
        return texts;
    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    if (!sheet)
        return texts;
    const QXlsx::CellRange used = sheet->dimension();
    if (!used.isValid() || cellCount(used) > MaxCellsRead)
        return texts;

    // The used range itself is read, so that a table typed further down or to the right
    // keeps its shape; three columns are a point number followed by X and Y.
    const int firstColumn = used.firstColumn() + (used.columnCount() == 3 ? 1 : 0);
    texts.reserve(int(qint64(used.rowCount()) * (used.lastColumn() - firstColumn + 1)));
    for (int row = used.firstRow(); row <= used.lastRow(); ++row) {
        for (int column = firstColumn; column <= used.lastColumn(); ++column)
            texts.append(storedText(sheet->cellAt(row, column)));
    }
    return texts;
}
