#pragma once

#include "read/xmlreader.h"

#include <string>
#include <vector>

namespace QXlsx {
class Cell;
}

namespace QXlsx::detail {

class SheetData;
class WorkbookData;
struct RowRecord;

// The index tables a worksheet's cells refer through: the file's shared string
// indexes and style indexes, mapped to the workbook's pool and style table.
struct CellIndexes
{
    const std::vector<quint32>* sharedStrings = nullptr;
    const std::vector<quint32>* styles = nullptr;
};

// Parses "B7" or "$B$7". Without digits the row stays as given (cells of a row may
// leave it out). False for anything malformed or outside the grid.
bool parseCellReference(const char* text, int* row, int* column);

// Reads a worksheet part into sheet: rows, cells, columns and merges; every other
// top-level element is kept whole in file order. This is the hot path of opening a
// workbook, so a cell costs no allocation: its value is parsed from the parser's text
// buffer and strings go straight into the pool.
class WorksheetHandler : public XmlHandler
{
public:
    WorksheetHandler(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes);

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) override;
    void endElement(XmlReader& reader, std::string_view name) override;
    void captured(XmlReader& reader, RawElement&& element) override;

private:
    void startRow(const XmlAttributes& attributes);
    void startCell(const XmlAttributes& attributes);
    void startColumn(const XmlAttributes& attributes);
    void setValue(std::string_view text);
    void setText(std::string& text);
    quint32 styleIndex(const char* value) const;
    RowRecord& currentRow();

    WorkbookData& m_book;
    SheetData& m_sheet;
    CellIndexes m_indexes;

    bool m_inSheetData = false;
    int m_row = 0;                  // the current row, 0 before the first
    int m_rowIndex = -1;            // its record in the sheet, or -1 while it has none
    bool m_skipRow = false;         // a row outside the grid: its cells are dropped
    int m_column = 0;               // the last cell's column in the row
    size_t m_previousRowCells = 0;  // cells of the row before, to size the next one
    Cell* m_cell = nullptr;         // the cell being read
    int m_cellRow = 0;
    char m_cellType = 'n';          // 's', 'n', 'b', 'e', 'S' (str), 'i' (inlineStr), 'd'
    bool m_inInline = false;
    bool m_inPhonetic = false;
    std::string m_scratch;          // inline and formula texts, reused
};

} // namespace QXlsx::detail
