#include "vygisutil.h"

#include "template/templatesheet.h"

QStringList VyExcelUtil::readFieldsTemplateTableName(QString path)
{
    const vygis::TemplateSheet sheet(path);
    // Only A1 is asked for, so that a field template workbook reads as well as a table
    // name workbook: one name per field row.
    if (!sheet.hasTableNameHeader())
        return {};
    QStringList names;
    const int lastRow = sheet.lastRow();
    names.reserve(lastRow - 1);
    for (int row = 2; row <= lastRow; ++row)
        names.append(sheet.text(row, 1));
    return names;
}
