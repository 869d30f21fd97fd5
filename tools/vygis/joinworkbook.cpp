#include "joinworkbook.h"

#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <algorithm>

namespace {

QString cellText(const QXlsx::Worksheet& sheet, int row, int column)
{
    return sheet.read(row, column).toString();
}

QString normalisedHeader(const QXlsx::Worksheet& sheet, int row, int column)
{
    QString header = cellText(sheet, row, column).trimmed().toUpper();
    const int bracket = header.indexOf(QLatin1Char('('));
    if (bracket >= 0)
        header.truncate(bracket);
    return header;
}

// The last column of the row headed keyName, or 0.
int keyColumnIn(const QXlsx::Worksheet& sheet, int row, int lastColumn, const QString& keyName)
{
    int found = 0;
    for (int column = 1; column <= lastColumn; ++column) {
        if (normalisedHeader(sheet, row, column) == keyName)
            found = column;
    }
    return found;
}

} // namespace

bool JoinWorkbook::read(const QString& path, const QString& keyName)
{
    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    if (!sheet)
        return false;
    const QXlsx::CellRange used = sheet->dimension();
    int keyColumn = 0;
    for (int row = 1; row <= 2 && keyColumn == 0; ++row) {
        keyColumn = keyColumnIn(*sheet, row, used.lastColumn(), keyName);
        m_headerRow = row;
    }
    if (keyColumn == 0)
        return false;
    for (int column = 1; column <= used.lastColumn(); ++column) {
        if (column != keyColumn)
            m_dataHeaders.append(normalisedHeader(*sheet, m_headerRow, column));
    }
    for (int row = m_headerRow + 1; row <= used.lastRow(); ++row)
        m_rowsByKey[cellText(*sheet, row, keyColumn)].append(row);
    return true;
}

QVector<JoinWorkbook::Duplicate> JoinWorkbook::duplicates() const
{
    QVector<Duplicate> found;
    for (auto key = m_rowsByKey.cbegin(); key != m_rowsByKey.cend(); ++key) {
        if (key.value().size() > 1)
            found.append({key.key(), key.value()});
    }
    std::sort(found.begin(), found.end(),
              [](const Duplicate& a, const Duplicate& b) { return a.rows.first() < b.rows.first(); });
    return found;
}
