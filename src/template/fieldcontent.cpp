#include "vygisutil.h"

#include "template/templatesheet.h"

namespace {

// The texts of columns firstColumn to 5 of every field row of tableName, wherever in the
// sheet its rows stand.
QStringList fieldRowsOf(const QString& tableName, const QString& path, int firstColumn)
{
    const vygis::TemplateSheet sheet(path);
    if (!sheet.hasTemplateHeader())
        return {};
    QStringList texts;
    const int lastRow = sheet.lastRow();
    for (int row = 2; row <= lastRow; ++row) {
        if (sheet.text(row, 1) == tableName)
            sheet.appendRow(row, firstColumn, texts);
    }
    return texts;
}

} // namespace

QStringList VyExcelUtil::readFieldsTemplateTableContent(QString tableName, QString path)
{
    return fieldRowsOf(tableName, path, 2);
}

QStringList VyExcelUtil::readFieldsTemplateTableContent1(QString tableName, QString path)
{
    return fieldRowsOf(tableName, path, 1);
}
