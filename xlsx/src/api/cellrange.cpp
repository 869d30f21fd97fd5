#include "xlsxcellrange.h"

#include "api/referenceparser.h"

#include <algorithm>

namespace QXlsx {

// "A1:C3", or "B2" for a single cell. Corners given the other way round ("C3:A1") name
// the same rectangle, as they do when typed into a spreadsheet.
CellRange::CellRange(const QString& range)
{
    const QStringView text(range);
    const qsizetype colon = text.indexOf(QLatin1Char(':'));
    int r1, c1, r2, c2;
    if (colon < 0) {
        if (!detail::parseCellReference(text, &r1, &c1))
            return;
        r2 = r1;
        c2 = c1;
    } else if (!detail::parseCellReference(text.left(colon), &r1, &c1)
               || !detail::parseCellReference(text.mid(colon + 1), &r2, &c2)) {
        return;
    }
    m_firstRow = std::min(r1, r2);
    m_lastRow = std::max(r1, r2);
    m_firstColumn = std::min(c1, c2);
    m_lastColumn = std::max(c1, c2);
}

CellRange::CellRange(const char* range) : CellRange(QString::fromLatin1(range)) {}

bool CellRange::isValid() const
{
    return m_firstRow >= 1 && m_firstColumn >= 1 && m_lastRow <= MaxRows
        && m_lastColumn <= MaxColumns && m_firstRow <= m_lastRow && m_firstColumn <= m_lastColumn;
}

bool CellRange::intersects(const CellRange& other) const
{
    return isValid() && other.isValid() && m_firstRow <= other.m_lastRow
        && other.m_firstRow <= m_lastRow && m_firstColumn <= other.m_lastColumn
        && other.m_firstColumn <= m_lastColumn;
}

QString CellRange::toString(bool rowAbsolute, bool columnAbsolute) const
{
    if (!isValid())
        return {};
    const QString first = topLeft().toString(rowAbsolute, columnAbsolute);
    if (m_firstRow == m_lastRow && m_firstColumn == m_lastColumn)
        return first;
    return first + QLatin1Char(':') + bottomRight().toString(rowAbsolute, columnAbsolute);
}

} // namespace QXlsx
