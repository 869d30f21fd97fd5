#include "xlsxcellreference.h"

#include "api/referenceparser.h"

namespace QXlsx {

CellReference::CellReference(const QString& cell)
{
    detail::parseCellReference(cell, &m_row, &m_column);
}

CellReference::CellReference(const char* cell)
    : CellReference(QString::fromLatin1(cell))
{
}

bool CellReference::isValid() const
{
    return m_row >= 1 && m_row <= MaxRows && m_column >= 1 && m_column <= MaxColumns;
}

QString CellReference::toString(bool rowAbsolute, bool columnAbsolute) const
{
    if (!isValid())
        return {};
    QString text;
    text.reserve(10);
    if (columnAbsolute)
        text += QLatin1Char('$');
    text += columnName(m_column);
    if (rowAbsolute)
        text += QLatin1Char('$');
    text += QString::number(m_row);
    return text;
}

QString CellReference::columnName(int column)
{
    if (column < 1 || column > MaxColumns)
        return {};
    QChar letters[3];
    int count = 0;
    // Bijective base 26: there is no zero digit, Z is followed by AA.
    while (column > 0) {
        const int digit = (column - 1) % 26;
        letters[count++] = QLatin1Char(char('A' + digit));
        column = (column - 1) / 26;
    }
    QString name(count, Qt::Uninitialized);
    for (int i = 0; i < count; ++i)
        name[i] = letters[count - 1 - i];
    return name;
}

} // namespace QXlsx
