#include "vygisutil.h"

#include "xlsxdocument.h"

#include <QObject>

namespace {

// A rule sheet with English column titles carries them in two rows; a sheet titled in
// the application's language does the same, so either title skips both rows.
bool hasTitleRows(const QXlsx::Document& document)
{
    const QString first = document.read(1, 1).toString().trimmed();
    const QString title = QStringLiteral("Related layer");
    return first == title || first == QObject::tr("Related layer");
}

QStringList ruleRow(const QXlsx::Document& document, int row, int columnCount)
{
    QStringList texts;
    texts.reserve(columnCount);
    for (int column = 1; column <= columnCount; ++column)
        texts.append(document.read(row, column).toString());
    return texts;
}

} // namespace

bool VyExcelUtil::readAttributeCheckRuleFromExcel(const QString& path, QVector<QStringList>& rules)
{
    rules.clear();
    if (path.isEmpty())
        return false;

    const QXlsx::Document document(path);
    const QXlsx::CellRange used = document.dimension();
    const int columnCount = used.lastColumn();
    if (columnCount != 4 && columnCount != 5)
        return false;

    const int lastRow = used.lastRow();
    const int firstRow = hasTitleRows(document) ? 3 : 2;
    rules.reserve(qMax(0, lastRow - firstRow + 1));
    for (int row = firstRow; row <= lastRow; ++row)
        rules.append(ruleRow(document, row, columnCount));
    return true;
}
