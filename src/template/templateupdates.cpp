#include "vygisutil.h"

#include "template/templatereset.h"
#include "template/templatesheet.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <QLatin1String>

// Every cell of a rewritten template is a text cell with the default format: templates
// are data for the application, not reports for people.

bool VyExcelUtil::updateFieldsTemplateTableContent(QStringList content, QString path)
{
    if (!vygis::fileExists(path))
        return false;
    const vygis::TemplateReset reset(path);
    // An empty content leaves the emptied workbook: the caller asked for no fields.
    if (content.isEmpty())
        return false;

    QXlsx::Document document(path);
    // Only reachable when the reset could not delete the file and its current sheet is a
    // chart sheet: there is no worksheet to write to, so the file is left untouched.
    if (!document.currentWorksheet())
        return false;

    const QXlsx::Format plain;
    for (int column = 1; column <= vygis::TemplateColumnCount; ++column)
        document.write(1, column, QString(QLatin1String(vygis::TemplateHeader[column - 1])), plain);
    // A trailing incomplete group is not a field and is dropped.
    const int groups = content.size() / vygis::TemplateColumnCount;
    for (int group = 0; group < groups; ++group) {
        const int first = group * vygis::TemplateColumnCount;
        for (int column = 1; column <= vygis::TemplateColumnCount; ++column)
            document.write(group + 2, column, content.at(first + column - 1), plain);
    }
    // The answer is that the rewrite was attempted, not that it reached the disk.
    reset.saveOrRestore(document);
    return true;
}

void VyExcelUtil::updateTemplateName(QString path, QStringList tableNames)
{
    if (!vygis::fileExists(path))
        return;
    const vygis::TemplateReset reset(path);

    QXlsx::Document document(path);
    QXlsx::Worksheet* sheet = document.currentWorksheet();
    // As above: a chart sheet left current by a failed reset is not written over.
    if (!sheet)
        return;

    const QXlsx::Format plain;
    document.write(1, 1, QString(QLatin1String(vygis::TemplateHeader[0])), plain);
    // After the reset the sheet holds only A1, so the names start at row 2. Where the
    // reset could not delete the file, they go below the rows already there rather than
    // over them.
    const int lastRow = sheet->dimension().lastRow();
    for (int i = 0; i < tableNames.size(); ++i)
        document.write(lastRow + 1 + i, 1, tableNames.at(i), plain);
    reset.saveOrRestore(document);
}
