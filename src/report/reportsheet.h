#pragma once

// What the report workbooks share beyond the common cell formats: the sheet's row limit
// and a header row whose texts are translated as they are written.

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <initializer_list>

namespace vygis {

// The last row a worksheet has; rows past it cannot be written.
constexpr int LastSheetRow = 1048576;

// Writes texts into row 1 from firstColumn on, each through QObject::tr. The texts are
// marked with QT_TRANSLATE_NOOP("QObject", ...) where they are defined, so that the
// translation tools find them.
void writeTranslatedHeader(QXlsx::Document& document, int firstColumn,
                           std::initializer_list<const char*> texts,
                           const QXlsx::Format& format);

} // namespace vygis
