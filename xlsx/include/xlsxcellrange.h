#pragma once

#include "xlsxcellreference.h"
#include "xlsxglobal.h"

#include <QString>

namespace QXlsx {

// A rectangle of cells, both corners included. The default range is invalid; its
// rowCount() and columnCount() are 0 and its last row and column are below 1.
class XLSX_EXPORT CellRange
{
public:
    CellRange() = default;
    CellRange(int firstRow, int firstColumn, int lastRow, int lastColumn)
        : m_firstRow(firstRow), m_firstColumn(firstColumn), m_lastRow(lastRow), m_lastColumn(lastColumn) {}
    CellRange(const CellReference& topLeft, const CellReference& bottomRight)
        : CellRange(topLeft.row(), topLeft.column(), bottomRight.row(), bottomRight.column()) {}
    CellRange(const QString& range);   // NOLINT(google-explicit-constructor): "A1:C3" or "B2"
    CellRange(const char* range);      // NOLINT(google-explicit-constructor)

    int firstRow() const { return m_firstRow; }
    int lastRow() const { return m_lastRow; }
    int firstColumn() const { return m_firstColumn; }
    int lastColumn() const { return m_lastColumn; }
    int rowCount() const { return isValid() ? m_lastRow - m_firstRow + 1 : 0; }
    int columnCount() const { return isValid() ? m_lastColumn - m_firstColumn + 1 : 0; }
    CellReference topLeft() const { return {m_firstRow, m_firstColumn}; }
    CellReference bottomRight() const { return {m_lastRow, m_lastColumn}; }

    void setFirstRow(int row) { m_firstRow = row; }
    void setLastRow(int row) { m_lastRow = row; }
    void setFirstColumn(int column) { m_firstColumn = column; }
    void setLastColumn(int column) { m_lastColumn = column; }

    // True when both corners lie in the grid and the first corner is the top left one.
    bool isValid() const;
    bool contains(int row, int column) const
    { return row >= m_firstRow && row <= m_lastRow && column >= m_firstColumn && column <= m_lastColumn; }
    bool intersects(const CellRange& other) const;
    // "A1:C3"; a single cell range gives "A1"; an invalid range gives an empty text.
    QString toString(bool rowAbsolute = false, bool columnAbsolute = false) const;

    bool operator==(const CellRange& other) const
    {
        return m_firstRow == other.m_firstRow && m_firstColumn == other.m_firstColumn
            && m_lastRow == other.m_lastRow && m_lastColumn == other.m_lastColumn;
    }
    bool operator!=(const CellRange& other) const { return !(*this == other); }

private:
    int m_firstRow = -1;
    int m_firstColumn = -1;
    int m_lastRow = -2;
    int m_lastColumn = -2;
};

} // namespace QXlsx
