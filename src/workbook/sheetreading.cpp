#include "vygisutil.h"

#include "xlsxdocument.h"
#include "xlsxworksheet.h"

namespace {

// Beyond this the empty strings of a sparse sheet alone would take gigabytes.
constexpr qint64 MaxCellsRead = 50'000'000;

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
