#include "xlsxabstractsheet.h"

#include "model/sheetdata.h"

namespace QXlsx {

AbstractSheet::AbstractSheet(detail::WorkbookData* book, detail::SheetData* data)
    : m_book(book), m_data(data)
{
}

AbstractSheet::~AbstractSheet() = default;

QString AbstractSheet::sheetName() const { return m_data->name; }
AbstractSheet::SheetType AbstractSheet::sheetType() const { return m_data->type; }
AbstractSheet::SheetState AbstractSheet::sheetState() const { return m_data->state; }
void AbstractSheet::setSheetState(SheetState state) { m_data->state = state; }

} // namespace QXlsx
