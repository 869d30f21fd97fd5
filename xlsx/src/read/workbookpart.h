#pragma once

#include "model/rawelement.h"
#include "xlsxabstractsheet.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace QXlsx::detail {

// A sheet as the workbook part lists it; its part is found through its relationship.
struct SheetEntry
{
    QString name;
    quint32 sheetId = 0;
    QString relationshipId;
    AbstractSheet::SheetState state = AbstractSheet::SS_Visible;
};

// What the workbook part tells: the sheets, the date system and the active tab. The
// other elements (workbookPr and bookViews included, for their other attributes) are
// kept whole in file order.
struct WorkbookPart
{
    std::vector<SheetEntry> sheets;
    bool date1904 = false;
    int activeTab = 0;
    QByteArray rootStartTag;
    std::vector<RawElement> extraElements;
};

WorkbookPart readWorkbookPart(const QByteArray& xml);

// True for the values of an xsd:boolean attribute that mean true.
bool isTrue(const char* value);

} // namespace QXlsx::detail
