#include "worksheetpart.h"

#include "model/cellaccess.h"
#include "model/sheetdata.h"
#include "model/workbookdata.h"
#include "rawxml.h"
#include "stylelimit.h"
#include "textlimit.h"
#include "xlsxglobal.h"
#include "xmlsink.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace QXlsx::detail {

namespace {

constexpr std::initializer_list<const char*> WorksheetOrder = {
    "sheetPr", "dimension", "sheetViews", "sheetFormatPr", "cols", "sheetData", "sheetCalcPr",
    "sheetProtection", "protectedRanges", "scenarios", "autoFilter", "sortState",
    "dataConsolidate", "customSheetViews", "mergeCells", "phoneticPr", "conditionalFormatting",
    "dataValidations", "hyperlinks", "printOptions", "pageMargins", "pageSetup", "headerFooter",
    "rowBreaks", "colBreaks", "customProperties", "cellWatches", "ignoredErrors", "smartTags",
    "drawing", "legacyDrawing", "legacyDrawingHF", "drawingHF", "picture", "oleObjects",
    "controls", "webPublishItems", "tableParts", "extLst"};

enum Rank { RankDimension = 1, RankSheetViews = 2, RankSheetFormatPr = 3, RankCols = 4,
            RankSheetData = 5, RankMergeCells = 14 };

// Column letters of every column, "A" to "XFD", computed once: the reference of each
// cell is then two memcpy calls. Byte 3 holds the length.
using ColumnName = std::array<char, 4>;

const std::array<ColumnName, MaxColumns + 1>& columnNames()
{
    static const std::array<ColumnName, MaxColumns + 1> names = [] {
        std::array<ColumnName, MaxColumns + 1> t {};
        for (int column = 1; column <= MaxColumns; ++column) {
            char letters[3];
            int n = 0;
            for (int c = column; c > 0; c = (c - 1) / 26)
                letters[n++] = char('A' + (c - 1) % 26);
            for (int i = 0; i < n; ++i)
                t[size_t(column)][size_t(i)] = letters[n - 1 - i];
            t[size_t(column)][3] = char(n);
        }
        return t;
    }();
    return names;
}

template<size_t N>
char* put(char* p, const char (&text)[N])
{
    std::memcpy(p, text, N - 1);
    return p + N - 1;
}

char* putNumber(char* p, double value)
{
    return std::to_chars(p, p + 32, value).ptr;
}

class SheetWriter
{
public:
    SheetWriter(XmlSink& out, const WorkbookData& book, const SheetData& sheet, const ExcelLimits& limits)
        : m_out(out), m_book(book), m_sheet(sheet), m_styles(limits.styles),
          m_cutTexts(limits.cutTexts), m_names(columnNames())
    {
    }

    void writeDimension();
    void writeSheetViews(bool active);
    void writeSheetFormat();
    void writeColumns();
    void writeSheetData();
    void writeMerges();
    const WorksheetCounts& counts() const { return m_counts; }

private:
    void writeRowStart(const RowRecord& row, const char* digits, size_t digitCount);
    void writeCell(const Cell& cell, const char* digits, size_t digitCount, int row, int previousColumn);
    void writeFormulaCell(const Cell& cell, const QByteArray& formula, char* p);
    void writeRange(const CellRange& range);
    void countCutText(quint32 stringIndex)
    {
        m_counts.cutTexts += std::binary_search(m_cutTexts.begin(), m_cutTexts.end(), stringIndex);
    }

    XmlSink& m_out;
    const WorkbookData& m_book;
    const SheetData& m_sheet;
    const WrittenStyles& m_styles;
    const std::vector<quint32>& m_cutTexts;
    const std::array<ColumnName, MaxColumns + 1>& m_names;
    WorksheetCounts m_counts;
};

void SheetWriter::writeRange(const CellRange& range)
{
    const auto cell = [this](int row, int column) {
        char* p = m_out.reserve(32);
        const ColumnName& name = m_names[size_t(column)];
        std::memcpy(p, name.data(), 3);
        m_out.commit(writeUInt(p + name[3], quint64(row)));
    };
    cell(range.firstRow(), range.firstColumn());
    if (range.lastRow() != range.firstRow() || range.lastColumn() != range.firstColumn()) {
        m_out.literal(":");
        cell(range.lastRow(), range.lastColumn());
    }
}

void SheetWriter::writeDimension()
{
    const CellRange used = m_sheet.dimension();
    m_out.literal("<dimension ref=\"");
    if (used.isValid() && used.lastRow() <= MaxRows && used.lastColumn() <= MaxColumns)
        writeRange(used);
    else
        m_out.literal("A1");
    m_out.literal("\"/>");
}

void SheetWriter::writeSheetViews(bool active)
{
    if (active)
        m_out.literal("<sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\"/></sheetViews>");
    else
        m_out.literal("<sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>");
}

void SheetWriter::writeSheetFormat()
{
    m_out.literal("<sheetFormatPr");
    if (m_sheet.defaultColumnWidth > 0 && std::fabs(m_sheet.defaultColumnWidth - 8.43) > 1e-9) {
        m_out.literal(" defaultColWidth=\"");
        m_out.appendNumber(m_sheet.defaultColumnWidth);
        m_out.literal("\"");
    }
    m_out.literal(" defaultRowHeight=\"");
    m_out.appendNumber(m_sheet.defaultRowHeight > 0 ? m_sheet.defaultRowHeight : 15.0);
    m_out.literal("\"/>");
}

void SheetWriter::writeColumns()
{
    bool open = false;
    for (const ColumnRecord& c : m_sheet.columns) {
        if (c.first < 1 || c.last < c.first || c.last > MaxColumns)
            continue;
        if (!open) {
            m_out.literal("<cols>");
            open = true;
        }
        m_out.literal("<col min=\"");
        m_out.appendUInt(quint64(c.first));
        m_out.literal("\" max=\"");
        m_out.appendUInt(quint64(c.last));
        m_out.literal("\" width=\"");
        m_out.appendNumber(c.width > 0 ? c.width : m_sheet.defaultColumnWidth);
        m_out.literal("\"");
        if (c.style != 0) {
            m_out.literal(" style=\"");
            m_out.appendUInt(m_styles.recordOf(c.style));
            m_out.literal("\"");
        }
        if (c.hidden)
            m_out.literal(" hidden=\"1\"");
        if (c.customWidth || c.width > 0)
            m_out.literal(" customWidth=\"1\"");
        if (!c.extraAttributes.isEmpty()) {
            const QByteArray extra = withoutAttributes(
                c.extraAttributes, {"min", "max", "width", "style", "hidden", "customWidth"});
            if (!extra.isEmpty()) {
                m_out.literal(" ");
                m_out.append(extra);
            }
        }
        m_out.literal("/>");
    }
    if (open)
        m_out.literal("</cols>");
}

void SheetWriter::writeSheetData()
{
    m_out.literal("<sheetData>");
    char digits[16];
    for (const RowRecord& row : m_sheet.rows) {
        if (row.row < 1 || row.row > MaxRows)
            continue;
        const size_t digitCount = size_t(writeUInt(digits, quint64(row.row)) - digits);
        writeRowStart(row, digits, digitCount);
        if (row.cells.empty()) {
            m_out.literal("/>");
            continue;
        }
        m_out.literal(">");
        int previousColumn = 0;
        for (const Cell& cell : row.cells) {
            writeCell(cell, digits, digitCount, row.row, previousColumn);
            if (cell.column() >= 1 && cell.column() <= MaxColumns)
                previousColumn = cell.column();
        }
        m_out.literal("</row>");
    }
    m_out.literal("</sheetData>");
}

void SheetWriter::writeRowStart(const RowRecord& row, const char* digits, size_t digitCount)
{
    char* p = m_out.reserve(128);
    p = put(p, "<row r=\"");
    std::memcpy(p, digits, digitCount);
    p += digitCount;
    *p++ = '"';
    if (row.customFormat) {
        p = put(p, " s=\"");
        p = writeUInt(p, m_styles.recordOf(row.style));
        p = put(p, "\" customFormat=\"1\"");
    }
    if (row.height > 0) {
        p = put(p, " ht=\"");
        p = putNumber(p, row.height);
        p = put(p, "\" customHeight=\"1\"");
    }
    if (row.hidden)
        p = put(p, " hidden=\"1\"");
    m_out.commit(p);
    if (!row.extraAttributes.isEmpty()) {
        // Spans only speed up a reader and go stale when cells change.
        const QByteArray extra = withoutAttributes(
            row.extraAttributes, {"r", "spans", "s", "customFormat", "ht", "customHeight", "hidden"});
        if (!extra.isEmpty()) {
            m_out.literal(" ");
            m_out.append(extra);
        }
    }
}

// A cell's reference is optional where it is the next column of its row (the first cell
// of a row: column A); readers count such cells on from the one before. Leaving it out
// there takes a fifth off the sheet XML of a dense table.
void SheetWriter::writeCell(const Cell& cell, const char* digits, size_t digitCount, int row,
                            int previousColumn)
{
    const int column = cell.column();
    if (column < 1 || column > MaxColumns)
        return;
    // Fixed-size fields only; texts written inline go through the escaper afterwards.
    char* p = m_out.reserve(128);
    if (column == previousColumn + 1) {
        p = put(p, "<c");
    } else {
        p = put(p, "<c r=\"");
        const ColumnName& name = m_names[size_t(column)];
        std::memcpy(p, name.data(), 3);
        p += name[3];
        std::memcpy(p, digits, digitCount);
        p += digitCount;
        *p++ = '"';
    }
    const quint32 style = m_styles.recordOf(CellAccess::style(cell));
    if (style != 0) {
        p = put(p, " s=\"");
        p = writeUInt(p, style);
        *p++ = '"';
    }

    if (CellAccess::flags(cell) & CellHasFormula) {
        const auto formula = m_sheet.formulas.constFind(SheetData::formulaKey(row, column));
        if (formula != m_sheet.formulas.constEnd()) {
            writeFormulaCell(cell, *formula, p);
            return;
        }
    }

    switch (cell.cellType()) {
    case Cell::StringType:
        ++m_counts.stringReferences;
        if (!m_cutTexts.empty())
            countCutText(CellAccess::stringIndex(cell));
        p = put(p, " t=\"s\"><v>");
        p = writeUInt(p, CellAccess::stringIndex(cell));
        p = put(p, "</v></c>");
        break;
    case Cell::NumberType: {
        const double value = CellAccess::number(cell);
        if (std::isfinite(value)) {
            p = put(p, "><v>");
            p = putNumber(p, value);
            p = put(p, "</v></c>");
        } else {
            // Excel has no infinity or NaN; this is what its formulas give instead.
            p = put(p, " t=\"e\"><v>#NUM!</v></c>");
        }
        break;
    }
    case Cell::BooleanType:
        p = CellAccess::boolean(cell) ? put(p, " t=\"b\"><v>1</v></c>") : put(p, " t=\"b\"><v>0</v></c>");
        break;
    case Cell::ErrorType: {
        p = put(p, " t=\"e\"><v>");
        m_out.commit(p);
        int size = 0;
        const char* text = m_book.strings.utf8(CellAccess::stringIndex(cell), &size);
        m_out.appendText(text, size_t(size));
        m_out.literal("</v></c>");
        return;
    }
    case Cell::BlankType:
        p = put(p, "/>");
        break;
    }
    m_out.commit(p);
}

void SheetWriter::writeFormulaCell(const Cell& cell, const QByteArray& formula, char* p)
{
    const bool text = cell.cellType() == Cell::StringType || cell.cellType() == Cell::ErrorType;
    switch (cell.cellType()) {
    case Cell::StringType: p = put(p, " t=\"str\">"); break;
    case Cell::BooleanType: p = put(p, " t=\"b\">"); break;
    case Cell::ErrorType: p = put(p, " t=\"e\">"); break;
    case Cell::NumberType:
    case Cell::BlankType: p = put(p, ">"); break;
    }
    m_out.commit(p);
    m_out.append(formula);
    if (text) {
        int size = 0;
        const char* value = m_book.strings.utf8(CellAccess::stringIndex(cell), &size);
        const int kept = cellTextBytes(value, size);
        m_counts.cutTexts += kept < size;
        m_out.literal("<v>");
        m_out.appendText(value, size_t(kept));
        m_out.literal("</v>");
    } else if (cell.cellType() == Cell::BooleanType) {
        m_out.append(CellAccess::boolean(cell) ? "<v>1</v>" : "<v>0</v>", 8);
    } else if (cell.cellType() == Cell::NumberType && std::isfinite(CellAccess::number(cell))) {
        m_out.literal("<v>");
        m_out.appendNumber(CellAccess::number(cell));
        m_out.literal("</v>");
    }
    m_out.literal("</c>");
}

void SheetWriter::writeMerges()
{
    int count = 0;
    for (const CellRange& r : m_sheet.merges)
        if (r.isValid() && r.rowCount() * qint64(r.columnCount()) > 1)
            ++count;
    if (count == 0)
        return;
    m_out.literal("<mergeCells count=\"");
    m_out.appendUInt(quint64(count));
    m_out.literal("\">");
    for (const CellRange& r : m_sheet.merges) {
        if (!r.isValid() || r.rowCount() * qint64(r.columnCount()) <= 1)
            continue;
        m_out.literal("<mergeCell ref=\"");
        writeRange(r);
        m_out.literal("\"/>");
    }
    m_out.literal("</mergeCells>");
}

bool hasKept(const SheetData& sheet, const char* localName)
{
    for (const RawElement& e : sheet.extraElements)
        if (e.localName == localName)
            return true;
    return false;
}

} // namespace

WorksheetCounts writeWorksheetPart(XmlSink& out, const WorkbookData& book, const SheetData& sheet,
                                   bool active, const ExcelLimits& limits)
{
    static const QByteArray fallbackRoot =
        "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\""
        " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">";
    const RootTag root = rootTag(sheet.rootStartTag, "worksheet", fallbackRoot, false);
    const bool keptViews = hasKept(sheet, "sheetViews");
    const bool keptFormat = hasKept(sheet, "sheetFormatPr");

    SheetWriter writer(out, book, sheet, limits);
    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n");
    out.append(root.start);
    writeInSchemaOrder(
        WorksheetOrder, sheet.extraElements,
        [&](int rank) {
            switch (rank) {
            case RankDimension: writer.writeDimension(); break;
            case RankSheetViews: if (!keptViews) writer.writeSheetViews(active); break;
            case RankSheetFormatPr: if (!keptFormat) writer.writeSheetFormat(); break;
            case RankCols: writer.writeColumns(); break;
            case RankSheetData: writer.writeSheetData(); break;
            case RankMergeCells: writer.writeMerges(); break;
            default: break;
            }
        },
        [&](const RawElement& e) {
            const int rank = schemaRank(WorksheetOrder, e.localName);
            if (rank == RankDimension || rank == RankCols || rank == RankSheetData || rank == RankMergeCells)
                return;
            if (rank == RankSheetViews)
                out.append(withAttribute(e.xml, "sheetView", "tabSelected",
                                         active ? QByteArray("1") : QByteArray()));
            else
                out.append(e.xml);
        });
    out.append(root.end);
    return writer.counts();
}

} // namespace QXlsx::detail
