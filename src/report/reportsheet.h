#pragma once

// What the report workbooks share beyond the common cell formats: a header row whose
// texts are translated as they are written.

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <initializer_list>

namespace vygis {

// Writes texts into row 1 from firstColumn on, each through QObject::tr. The texts are
// marked with QT_TRANSLATE_NOOP("QObject", ...) where they are defined, so that the
// translation tools find them.
void writeTranslatedHeader(QXlsx::Document& document, int firstColumn,
                           std::initializer_list<const char*> texts,
                           const QXlsx::Format& format);

} // namespace vygis
