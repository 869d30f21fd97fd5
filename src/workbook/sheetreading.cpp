#include "vygisutil.h"

#include "xlsxdocument.h"
#include "xlsxworksheet.h"

namespace {

// Every entry of a row list is a QString, 8 bytes even when empty, so a range read from
// A1 costs at least 8 bytes a cell whatever it holds. Past 2^27 cells, a gigabyte of
// entries before any text, the sheet is not read at all: a table that large would take
// ten gigabytes and more as texts, and one that large around a few values holds values
// far apart. Every sheet filled to Excel's last row up to 128 columns wide stays below
// it; formats far from the values do not widen the range (see Worksheet::dimension).
constexpr qint64 MaxCellsRead = qint64(1) << 27;

QString cellText(const QXlsx::Worksheet& sheet, int row, int column)
{
    const QXlsx::Cell* cell = sheet.cellAt(row, column);
    return cell ? cell->value().toString() : QString();
}

} // namespace

void VyExcelUtil::getExcelData(QString path, std::vector<QStringList>& rows)
{
    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    if (!sheet)
        return;
    const QXlsx::CellRange used = sheet->dimension();
    if (!used.isValid())
        return;
    // From A1, so that entry j of a row list is column j + 1 whatever the range's start.
    const int rowCount = used.lastRow();
    const int columnCount = used.lastColumn();
    if (qint64(rowCount) * columnCount > MaxCellsRead)
        return;

    rows.reserve(rows.size() + size_t(rowCount));
    for (int row = 1; row <= rowCount; ++row) {
        QStringList texts;
        texts.reserve(columnCount);
        for (int column = 1; column <= columnCount; ++column)
            texts.append(cellText(*sheet, row, column));
        rows.push_back(std::move(texts));
    }
}
