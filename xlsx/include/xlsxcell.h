#pragma once

#include "xlsxformat.h"
#include "xlsxglobal.h"

#include <QDateTime>
#include <QVariant>

namespace QXlsx {

namespace detail { class WorkbookData; struct CellAccess; }

// One stored cell of a worksheet. Cells are owned by their worksheet; a Cell pointer
// stays valid until that worksheet is next changed or the document is destroyed.
//
// The record is 16 bytes: the value (a number, or an index into the workbook's
// string pool), the style record index, the column and the kind; the workbook is
// found from where the cell is kept. Everything else a
// cell can tell (its text, its format, whether it is a date) is looked up in the
// workbook it belongs to, so a sheet of millions of cells stays small.
class XLSX_EXPORT Cell
{
public:
    enum CellType : quint8 {
        BlankType,     // a formatted cell without a value
        NumberType,
        BooleanType,
        StringType,    // text, shared or inline in the file
        ErrorType,     // "#N/A", "#DIV/0!", ...
    };

    // Text as QString (rich text runs joined), numbers as double, booleans as bool,
    // errors as their text, a formula's cached result; a null QVariant for a blank cell.
    QVariant value() const;
    Format format() const;
    CellType cellType() const { return static_cast<CellType>(m_type); }
    int column() const { return m_column; }
    bool hasFormula() const;
    // The formula without its leading "=", or an empty text.
    QString formula() const;
    // True for a number whose number format shows a date or a time.
    bool isDateTime() const;
    // The serial converted under the workbook's date system; invalid unless isDateTime().
    QDateTime dateTime() const;

private:
    friend struct detail::CellAccess;
    Cell() = default;
    const detail::WorkbookData& book() const;

    union {
        double number;
        quint32 index;   // string pool entry of a text or an error
        bool boolean;
    } m_value {0.0};
    quint32 m_style = 0;   // index into the workbook's style table
    quint16 m_column = 0;
    quint8 m_type = BlankType;
    quint8 m_flags = 0;    // detail::CellFlags
};

} // namespace QXlsx
