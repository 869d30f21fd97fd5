#include "vygisutil.h"

#include "template/templatesheet.h"

#include <utility>

QStringList VyExcelUtil::getImportTemplateTable(QString path)
{
    const vygis::TemplateSheet sheet(path);
    if (!sheet.hasTemplateHeader())
        return {};
    QStringList texts;
    const int lastRow = sheet.lastRow();
    texts.reserve((lastRow - 1) * vygis::TemplateColumnCount);
    for (int row = 2; row <= lastRow; ++row)
        sheet.appendRow(row, 1, texts);
    return texts;
}

QStringList VyExcelUtil::getImportTemplateTableName(QString path)
{
    const vygis::TemplateSheet sheet(path);
    if (!sheet.hasTemplateHeader())
        return {};
    QStringList names;
    // Starting from the empty name means a leading run of empty names is not reported,
    // while an empty run after a named one is.
    QString previous;
    const int lastRow = sheet.lastRow();
    for (int row = 2; row <= lastRow; ++row) {
        // The first row without a name cell ends the tables; rows below it are not read.
        if (!sheet.isStored(row, 1))
            break;
        QString name = sheet.text(row, 1);
        if (name != previous) {
            names.append(name);
            previous = std::move(name);
        }
    }
    return names;
}
