#include "template/templatesheet.h"

#include "workbook/conventions.h"

#include <QLatin1String>

namespace vygis {

TemplateSheet::TemplateSheet(const QString& path)
{
    if (!fileExists(path))
        return;
    m_document.emplace(path);
    m_sheet = m_document->currentWorksheet();
    if (m_sheet)
        m_used = m_sheet->dimension();
}

QString TemplateSheet::text(int row, int column) const
{
    const QXlsx::Cell* cell = m_sheet->cellAt(row, column);
    return cell ? cell->value().toString() : QString();
}

void TemplateSheet::appendRow(int row, int firstColumn, QStringList& texts) const
{
    for (int column = firstColumn; column <= TemplateColumnCount; ++column)
        texts.append(text(row, column));
}

bool TemplateSheet::hasTableNameHeader() const
{
    return isOpen() && isStored(1, 1) && text(1, 1) == QLatin1String(TemplateHeader[0]);
}

bool TemplateSheet::hasTemplateHeader() const
{
    if (!isOpen() || m_used.rowCount() < 2 || m_used.columnCount() != TemplateColumnCount)
        return false;
    for (int column = 1; column <= TemplateColumnCount; ++column) {
        // A missing cell reads as the empty text, which no header text is.
        if (text(1, column) != QLatin1String(TemplateHeader[column - 1]))
            return false;
    }
    return true;
}

} // namespace vygis
