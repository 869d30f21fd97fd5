#pragma once

#include <QString>

class QIODevice;

namespace QXlsx::detail {

class WorkbookData;

// What a save changed to keep within Excel's limits (textlimit.h, stylelimit.h).
struct SaveReport
{
    quint64 cutTexts = 0;         // cells whose text was cut to 32,767 characters
    quint32 droppedFormats = 0;   // cell formats beyond 64,000 written as their number format alone
};

// Writes book as a workbook package to device, streaming: the sheet XML is produced and
// compressed piece by piece, never held whole in memory. False with a reason in error
// when the device fails.
bool writePackage(const WorkbookData& book, QIODevice& device, QString* error,
                  SaveReport* report = nullptr);

} // namespace QXlsx::detail
