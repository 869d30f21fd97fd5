#include "vygisutil.h"

#include "xlsxdocument.h"

namespace {

QString normalisedText(const QXlsx::Document& document, int row, int column)
{
    return document.read(row, column).toString().trimmed().toUpper();
}

} // namespace

bool VyExcelUtil::readTransactionTemplateFile(const QString& path, QMap<QString, QString>& pairs)
{
    pairs.clear();
    if (path.isEmpty())
        return false;

    const QXlsx::Document document(path);
    const QXlsx::CellRange used = document.dimension();
    if (used.lastRow() < 1 || used.lastColumn() != 2)
        return false;

    // Every row from the first is a pair, a title row included: the template has no
    // header. A lower row replaces the value of an earlier one with the same name.
    for (int row = 1; row <= used.lastRow(); ++row)
        pairs.insert(normalisedText(document, row, 1), normalisedText(document, row, 2));
    return true;
}
