#include "report/reportsheet.h"

#include <QObject>

namespace vygis {

void writeTranslatedHeader(QXlsx::Document& document, int firstColumn,
                           std::initializer_list<const char*> texts,
                           const QXlsx::Format& format)
{
    int column = firstColumn;
    for (const char* text : texts)
        document.write(1, column++, QObject::tr(text), format);
}

} // namespace vygis
