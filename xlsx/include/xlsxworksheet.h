#pragma once

#include "xlsxabstractsheet.h"
#include "xlsxcell.h"
#include "xlsxcellrange.h"
#include "xlsxcellreference.h"
#include "xlsxformat.h"

#include <QList>
#include <QVariant>

namespace QXlsx {

// A grid of cells with merged ranges, row heights and column widths.
class XLSX_EXPORT Worksheet : public AbstractSheet
{
public:
    // Stores value at (row, column) with format. A QString is always a text cell,
    // whatever it looks like ("=1+1", "007"); numbers are numeric cells, bool a boolean
    // cell, QDate/QTime/QDateTime a date serial with a date or time number format, and
    // a null QVariant a blank cell that keeps its format. False outside the grid.
    // Where Excel has no such value: NaN and infinities are #NUM! error cells; a day
    // Excel shows no date for (before 1900-01-01, or 1904-01-01 in the 1904 date system,
    // or after 9999-12-31) is a text cell in ISO form, "1899-12-31" or
    // "1899-12-31T12:00:00" (".zzz" added for milliseconds), since its serial would read
    // back as a time, another day or a plain number. A lone UTF-16 surrogate in a text
    // is kept and saved as an _xHHHH_ escape. Texts are stored whole; see
    // Document::cutTextCount() for what a save does with one over 32,767 characters.
    bool write(int row, int column, const QVariant& value, const Format& format = Format());
    bool write(const CellReference& cell, const QVariant& value, const Format& format = Format());

    // What a person sees: dates as QDate, QTime or QDateTime; otherwise Cell::value().
    QVariant read(int row, int column) const;
    QVariant read(const CellReference& cell) const;

    // The stored cell, or null where nothing is stored.
    Cell* cellAt(int row, int column) const;
    Cell* cellAt(const CellReference& cell) const;

    bool mergeCells(const CellRange& range, const Format& format = Format());
    bool unmergeCells(const CellRange& range);
    QList<CellRange> mergedCells() const;

    // Sizes in points (rows) and characters (columns); a row or column without a size
    // of its own reports the sheet's default.
    bool setRowHeight(int row, double height);
    bool setRowHeight(int firstRow, int lastRow, double height);
    double rowHeight(int row) const;
    bool setColumnWidth(int column, double width);
    bool setColumnWidth(int firstColumn, int lastColumn, double width);
    double columnWidth(int column) const;

    // The range in use: the bounding box of the cells holding a value or a formula and of
    // the formatted empty cells beside them, computed from the cells, never taken from
    // the file; formats of whole rows or columns written out as cells, and stray formats
    // far from the table, are left out. An invalid range for an empty sheet.
    CellRange dimension() const;

private:
    using AbstractSheet::AbstractSheet;
    friend class Document;
};

} // namespace QXlsx
