#pragma once

#include "readlimits.h"

#include <QString>

class QIODevice;

namespace QXlsx::detail {

class WorkbookData;

// Reads a workbook package into book, which must be empty. On a device that holds no
// readable workbook, returns false with a reason in error and leaves book empty; a
// package that is damaged part way gives what could be read and returns true.
bool readPackage(QIODevice& device, WorkbookData& book, QString* error,
                 const ReadLimits& limits = ReadLimits());

} // namespace QXlsx::detail
