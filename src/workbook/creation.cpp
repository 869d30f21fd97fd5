#include "vygisutil.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"

#include <QFile>

namespace {

// One empty worksheet "Sheet1", no cell, no format.
bool saveBlankWorkbook(const QString& path)
{
    QXlsx::Document document;
    document.addSheet(QStringLiteral("Sheet1"), QXlsx::AbstractSheet::ST_WorkSheet);
    return document.saveAs(path);
}

} // namespace

void VyExcelUtil::createExcel(QString path)
{
    if (vygis::fileExists(path))
        return;
    saveBlankWorkbook(path);
}

bool VyExcelUtil::clearExcel(QString path)
{
    if (!vygis::fileExists(path))
        return false;
    if (!QFile::remove(path))
        return false;
    // The caller asked for the old content to go; whether the blank one could be saved
    // is not part of the answer.
    saveBlankWorkbook(path);
    return true;
}
