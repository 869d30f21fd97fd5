#include "sheetdata.h"

#include "cellaccess.h"
#include "usedrange.h"

#include <algorithm>

namespace QXlsx::detail {

namespace {

template <typename Rows>
auto lowerBoundRow(Rows& rows, int row)
{
    return std::lower_bound(rows.begin(), rows.end(), row,
                            [](const RowRecord& r, int value) { return r.row < value; });
}

template <typename Cells>
auto lowerBoundCell(Cells& cells, int column)
{
    return std::lower_bound(cells.begin(), cells.end(), column,
                            [](const Cell& c, int value) { return c.column() < value; });
}

bool sameAttributes(const ColumnRecord& a, const ColumnRecord& b)
{
    return a.width == b.width && a.style == b.style && a.hidden == b.hidden
        && a.customWidth == b.customWidth && a.extraAttributes == b.extraAttributes;
}

bool isDefault(const ColumnRecord& c)
{
    return c.width == 0 && c.style == 0 && !c.hidden && c.extraAttributes.isEmpty();
}

} // namespace

namespace {

// Sorted unique keys without gaps put key k at k - first: where a sheet is dense, as
// most are, one look finds it without a search. Nothing is remembered between calls,
// so readers on several threads stay safe.
template <typename Records, typename Key>
auto* densePosition(Records& records, int key, Key keyOf)
{
    using Record = std::remove_reference_t<decltype(records[0])>;
    if (records.empty() || key < keyOf(records.front()))
        return static_cast<Record*>(nullptr);
    const size_t at = size_t(key - keyOf(records.front()));
    return at < records.size() && keyOf(records[at]) == key ? &records[at] : nullptr;
}

} // namespace

RowRecord* SheetData::findRow(int row)
{
    if (RowRecord* dense = densePosition(rows, row, [](const RowRecord& r) { return r.row; }))
        return dense;
    if (!rows.empty() && rows.back().row == row)
        return &rows.back();
    auto it = lowerBoundRow(rows, row);
    return it != rows.end() && it->row == row ? &*it : nullptr;
}

const RowRecord* SheetData::findRow(int row) const
{
    return const_cast<SheetData*>(this)->findRow(row);
}

RowRecord& SheetData::rowFor(int row)
{
    if (rows.empty() || rows.back().row < row) {
        // Tables have rows of much the same length: sizing a new row like the last one
        // spares the doubling growth and its slack, and a row that was oversized for
        // its cells gives the slack back before the next one starts.
        size_t expected = 0;
        if (!rows.empty()) {
            CellList& last = rows.back().cells;
            expected = last.size();
            last.shrink(*cellArena);
        }
        rows.emplace_back();
        rows.back().row = row;
        rows.back().cells.reserve(*cellArena, expected);
        return rows.back();
    }
    if (rows.back().row == row)
        return rows.back();
    auto it = lowerBoundRow(rows, row);
    if (it != rows.end() && it->row == row)
        return *it;
    it = rows.emplace(it);
    it->row = row;
    return *it;
}

Cell* SheetData::findCell(int row, int column)
{
    RowRecord* r = findRow(row);
    if (!r)
        return nullptr;
    CellList& cells = r->cells;
    if (Cell* dense = densePosition(cells, column, [](const Cell& c) { return c.column(); }))
        return dense;
    if (!cells.empty() && cells.back().column() == column)
        return &cells.back();
    auto it = lowerBoundCell(cells, column);
    return it != cells.end() && it->column() == column ? &*it : nullptr;
}

const Cell* SheetData::findCell(int row, int column) const
{
    return const_cast<SheetData*>(this)->findCell(row, column);
}

Cell& SheetData::cellFor(int row, int column)
{
    CellList& cells = rowFor(row).cells;
    if (cells.empty() || cells.back().column() < column)
        return cells.append(*cellArena, CellAccess::make(column));
    if (cells.back().column() == column)
        return cells.back();
    auto it = lowerBoundCell(cells, column);
    if (it != cells.end() && it->column() == column)
        return *it;
    return *cells.insert(*cellArena, it, CellAccess::make(column));
}

void SheetData::releaseCells()
{
    for (RowRecord& record : rows)
        record.cells.release(*cellArena);
}

bool SheetData::removeCell(int row, int column)
{
    RowRecord* r = findRow(row);
    if (!r)
        return false;
    auto it = lowerBoundCell(r->cells, column);
    if (it == r->cells.end() || it->column() != column)
        return false;
    r->cells.erase(it);
    formulas.remove(formulaKey(row, column));
    return true;
}

CellRange SheetData::dimension() const
{
    return usedRange(*this);
}

const ColumnRecord* SheetData::findColumn(int column) const
{
    auto it = std::upper_bound(columns.begin(), columns.end(), column,
                               [](int value, const ColumnRecord& c) { return value < c.first; });
    if (it == columns.begin())
        return nullptr;
    --it;
    return column <= it->last ? &*it : nullptr;
}

void SheetData::setColumnWidth(int first, int last, double width)
{
    std::vector<ColumnRecord> result;
    result.reserve(columns.size() + 3);
    auto give = [&](ColumnRecord c) {
        if (isDefault(c))
            return;
        if (!result.empty() && result.back().last + 1 == c.first && sameAttributes(result.back(), c))
            result.back().last = c.last;
        else
            result.push_back(std::move(c));
    };
    auto sized = [&](ColumnRecord c, int from, int to) {
        c.first = from;
        c.last = to;
        c.width = width;
        c.customWidth = width > 0;
        return c;
    };
    int next = first;   // the first column of [first, last] not yet given the width
    for (const ColumnRecord& c : columns) {
        if (c.last < first || c.first > last) {
            if (c.first > last && next <= last) {
                give(sized(ColumnRecord(), next, last));
                next = last + 1;
            }
            give(c);
            continue;
        }
        if (c.first < first) {
            ColumnRecord before = c;
            before.last = first - 1;
            give(before);
        }
        const int from = std::max(c.first, first);
        if (next < from)
            give(sized(ColumnRecord(), next, from - 1));
        const int to = std::min(c.last, last);
        give(sized(c, from, to));
        next = to + 1;
        if (c.last > last) {
            ColumnRecord after = c;
            after.first = last + 1;
            give(after);
        }
    }
    if (next <= last)
        give(sized(ColumnRecord(), next, last));
    columns = std::move(result);
}

} // namespace QXlsx::detail
