#include "usedrange.h"

#include "cellaccess.h"
#include "sheetdata.h"

#include <iterator>
#include <vector>

namespace QXlsx::detail {

// Which formatted empty cells count.
//
// Excel counts every formatted cell in its used range, and readers of tables rely on that
// beside a table: a formatted cell past its last column widens every row they take, one
// in the rows below the values gives them rows to fill. But programs that format whole
// rows or columns sometimes write the format out cell by cell up to the edge of the
// grid, and a single formatted cell far away is enough to make a sheet of two rows span
// the whole grid of 17 billion cells, which nobody can read through; LibreOffice shows
// the two rows. So formatted empty cells count, except
//
// - a run of them that goes on to the grid's last column within a row, or to its last
//   row within a column: that is the format of whole rows or columns, which Excel keeps
//   with the row or column, outside its used range;
// - all of them, when what they would add to the range is mostly empty space: more cells
//   than SparseFactor times the cells stored on the sheet, plus SparseAllowance. Those
//   are stray formats far from the table, and the range is that of the content alone.
//   This keeps what formats add to the cost of reading a range in proportion to what
//   the sheet already holds.
//
// The range of the content itself is never cut: a value far away is the user's.

namespace {

// Small sheets may have formats somewhat further out: a million cells is a few megabytes
// for any reader.
constexpr quint64 SparseFactor = 4;
constexpr quint64 SparseAllowance = quint64(1) << 20;

bool holdsContent(const Cell& cell)
{
    return cell.cellType() != Cell::BlankType || (CellAccess::flags(cell) & CellHasFormula);
}

// The rows and columns covered so far; empty until the first add.
class Bounds
{
public:
    void add(int row, int firstColumn, int lastColumn)
    {
        m_firstRow = qMin(m_firstRow, row);
        m_lastRow = qMax(m_lastRow, row);
        m_firstColumn = qMin(m_firstColumn, firstColumn);
        m_lastColumn = qMax(m_lastColumn, lastColumn);
    }
    void add(const Bounds& other)
    {
        if (other.isEmpty())
            return;
        add(other.m_firstRow, other.m_firstColumn, other.m_lastColumn);
        add(other.m_lastRow, other.m_firstColumn, other.m_lastColumn);
    }
    bool isEmpty() const { return m_lastRow == 0; }
    quint64 area() const
    {
        return isEmpty() ? 0 : quint64(m_lastRow - m_firstRow + 1) * quint64(m_lastColumn - m_firstColumn + 1);
    }
    CellRange range() const
    {
        return isEmpty() ? CellRange() : CellRange(m_firstRow, m_firstColumn, m_lastRow, m_lastColumn);
    }

private:
    int m_firstRow = MaxRows + 1;
    int m_lastRow = 0;
    int m_firstColumn = MaxColumns + 1;
    int m_lastColumn = 0;
};

// For each column, the first row of its run of empty cells that goes on down to the
// grid's last row (MaxRows + 1 where it has none); empty when no column has one.
std::vector<int> columnRunStarts(const RowList& rows)
{
    if (rows.empty() || rows.back().row != MaxRows)
        return {};
    std::vector<int> reaching;   // columns whose run reaches the row looked at, sorted
    for (const Cell& cell : rows.back().cells) {
        if (!holdsContent(cell))
            reaching.push_back(cell.column());
    }
    if (reaching.empty())
        return {};
    std::vector<int> starts(size_t(MaxColumns) + 1, MaxRows + 1);
    for (int column : reaching)
        starts[size_t(column)] = MaxRows;
    int above = MaxRows - 1;
    for (auto row = std::next(rows.rbegin()); row != rows.rend() && row->row == above && !reaching.empty();
         ++row, --above) {
        const Cell* cell = row->cells.begin();
        size_t kept = 0;
        for (int column : reaching) {
            while (cell != row->cells.end() && cell->column() < column)
                ++cell;
            if (cell != row->cells.end() && cell->column() == column && !holdsContent(*cell)) {
                reaching[kept++] = column;
                starts[size_t(column)] = row->row;
            }
        }
        reaching.resize(kept);
    }
    return starts;
}

// The first cell of the row's run of empty cells that goes on to the grid's last column,
// or the end of the row where it has none.
const Cell* rowRunStart(const CellList& cells)
{
    const Cell* start = cells.end();
    for (int column = MaxColumns; start != cells.begin(); --column) {
        const Cell& before = *(start - 1);
        if (before.column() != column || holdsContent(before))
            break;
        --start;
    }
    return start;
}

// Adds the columns of the empty cells from up to to of the row, leaving out those in a
// column's run down to the last row.
void addFormatted(Bounds& bounds, int row, const Cell* from, const Cell* to, const std::vector<int>& columnRuns)
{
    auto counts = [&](const Cell& cell) { return columnRuns.empty() || row < columnRuns[size_t(cell.column())]; };
    while (from < to && !counts(*from))
        ++from;
    while (from < to && !counts(*(to - 1)))
        --to;
    if (from < to)
        bounds.add(row, from->column(), (to - 1)->column());
}

} // namespace

CellRange usedRange(const SheetData& sheet)
{
    const std::vector<int> columnRuns = columnRunStarts(sheet.rows);
    Bounds content, formatted;
    quint64 stored = 0;
    for (const RowRecord& row : sheet.rows) {
        const CellList& cells = row.cells;
        if (cells.empty())
            continue;
        stored += cells.size();
        // Found from both ends, so that a row of values costs a look at each end.
        const Cell* first = cells.begin();
        while (first != cells.end() && !holdsContent(*first))
            ++first;
        const Cell* last = cells.end();   // past the last cell with content
        if (first != cells.end()) {
            while (!holdsContent(*(last - 1)))
                --last;
            content.add(row.row, first->column(), (last - 1)->column());
        }
        // Empty cells between contents widen nothing; those before and after might.
        const Cell* runStart = rowRunStart(cells);
        addFormatted(formatted, row.row, cells.begin(), qMin(first, runStart), columnRuns);
        addFormatted(formatted, row.row, last, runStart, columnRuns);
    }
    Bounds used = content;
    used.add(formatted);
    if (used.area() - content.area() > SparseFactor * stored + SparseAllowance)
        return content.range();
    return used.range();
}

} // namespace QXlsx::detail
