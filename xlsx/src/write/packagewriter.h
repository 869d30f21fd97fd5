#pragma once

#include <QString>

class QIODevice;

namespace QXlsx::detail {

class WorkbookData;

// Writes book as a workbook package to device, streaming: the sheet XML is produced and
// compressed piece by piece, never held whole in memory. False with a reason in error
// when the device fails.
bool writePackage(const WorkbookData& book, QIODevice& device, QString* error);

} // namespace QXlsx::detail
