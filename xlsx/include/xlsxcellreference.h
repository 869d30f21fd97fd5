#pragma once

#include "xlsxglobal.h"

#include <QString>

namespace QXlsx {

// A cell address: 1-based row and column, as in "B7" or "$B$7" (row 7, column 2).
class XLSX_EXPORT CellReference
{
public:
    CellReference() = default;
    CellReference(int row, int column) : m_row(row), m_column(column) {}
    CellReference(const QString& cell);   // NOLINT(google-explicit-constructor): QXlsx accepts texts
    CellReference(const char* cell);      // NOLINT(google-explicit-constructor)

    int row() const { return m_row; }
    int column() const { return m_column; }
    void setRow(int row) { m_row = row; }
    void setColumn(int column) { m_column = column; }

    // True when the address lies inside the sheet grid (A1 to XFD1048576).
    bool isValid() const;
    // "B7"; "$B$7" with both flags set; an empty text for an invalid reference.
    QString toString(bool rowAbsolute = false, bool columnAbsolute = false) const;

    bool operator==(const CellReference& other) const
    { return m_row == other.m_row && m_column == other.m_column; }
    bool operator!=(const CellReference& other) const { return !(*this == other); }

    // Column letters of a 1-based column ("A", "XFD"); empty outside 1 to 16384.
    static QString columnName(int column);

private:
    int m_row = -1;
    int m_column = -1;
};

} // namespace QXlsx
