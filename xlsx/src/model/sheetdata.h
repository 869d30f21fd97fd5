#pragma once

#include "cellstore.h"
#include "largeblock.h"
#include "rawelement.h"
#include "xlsxabstractsheet.h"
#include "xlsxcell.h"
#include "xlsxcellrange.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <vector>

namespace QXlsx::detail {

class WorkbookData;

enum CellFlags : quint8 {
    CellHasFormula = 1,        // the sheet's formula table holds the <f> element
    CellFormulaString = 2,     // the cached result of the formula is text (t="str")
};

// 40 bytes: a sheet of short rows has nearly as many rows as cells.
struct RowRecord
{
    int row = 0;               // 1-based
    quint32 style : 30;        // the row's own format, with customFormat; a style table
                               // is far shorter than 2^30 records
    quint32 customFormat : 1;
    quint32 hidden : 1;
    double height = 0;         // points; 0 = the sheet's default height
    QByteArray extraAttributes;   // attributes of <row> kept as read (outlineLevel, ...)
    CellList cells;            // sorted by column, in the workbook's cell arena

    RowRecord() : style(0), customFormat(false), hidden(false) {}
};
static_assert(sizeof(RowRecord) <= 40, "rows are kept by the million");

struct ColumnRecord
{
    int first = 0;             // 1-based, inclusive
    int last = 0;
    double width = 0;          // characters; 0 = the sheet's default width
    quint32 style = 0;
    bool hidden = false;
    bool customWidth = false;
    QByteArray extraAttributes;
};

using RowList = std::vector<RowRecord, LargeAllocator<RowRecord>>;

// One sheet of a workbook. A worksheet is modelled (cells, rows, columns, merges);
// anything else of its part, and whole chart, dialog and macro sheets, are kept as
// read so that a save gives them back.
class SheetData
{
public:
    const WorkbookData* book = nullptr;   // the workbook the cells made by cellFor belong to
    QString name;
    AbstractSheet::SheetType type = AbstractSheet::ST_WorkSheet;
    AbstractSheet::SheetState state = AbstractSheet::SS_Visible;

    CellArena* cellArena = nullptr;       // the workbook's, where the rows' cells are
    RowList rows;                         // sorted by row
    std::vector<ColumnRecord> columns;    // sorted by first column, not overlapping
    QList<CellRange> merges;
    double defaultRowHeight = 15.0;
    double defaultColumnWidth = 8.43;
    QHash<quint64, QByteArray> formulas;  // formulaKey(row, column) -> <f> element as read

    // The part as read: where it was, its id in the workbook, the root start tag with
    // its namespace declarations, the elements around the modelled ones in file order.
    QString partName;
    QString relationshipId;
    quint32 sheetId = 0;
    QByteArray rootStartTag;
    std::vector<RawElement> extraElements;
    QByteArray rawPart;                   // chart, dialog and macro sheets: the part whole

    // Lookups. findRow/findCell give null where nothing is stored; rowFor/cellFor add
    // the row or cell. Appending in row and column order is the fast path.
    RowRecord* findRow(int row);
    const RowRecord* findRow(int row) const;
    RowRecord& rowFor(int row);
    Cell* findCell(int row, int column);
    const Cell* findCell(int row, int column) const;
    Cell& cellFor(int row, int column);
    bool removeCell(int row, int column);
    // Gives the memory of every row's cells back to the arena, before the sheet goes.
    void releaseCells();

    // The range in use, computed from the cells themselves (see usedRange).
    CellRange dimension() const;

    // The column record holding column, or null.
    const ColumnRecord* findColumn(int column) const;
    // Gives columns first to last the width (0 = the default), splitting and joining
    // records so that they stay sorted, disjoint and keep their other attributes.
    void setColumnWidth(int first, int last, double width);

    static quint64 formulaKey(int row, int column) { return (quint64(row) << 16) | quint64(column); }
};

} // namespace QXlsx::detail
