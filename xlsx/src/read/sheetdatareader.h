#pragma once

#include "read/xmlscanner.h"

#include <QtGlobal>

#include <string>
#include <string_view>
#include <vector>

namespace QXlsx {
class Cell;
}

namespace QXlsx::detail {

class SheetData;
class WorkbookData;
struct RowRecord;

// What a worksheet's cells refer through: the file's shared strings, pool entries
// firstString onwards, and its style indexes mapped to the workbook's style table.
struct CellIndexes
{
    quint32 firstString = 0;
    quint32 stringCount = 0;
    const std::vector<quint32>* styles = nullptr;
};

// Parses "B7" or "$B$7". Without digits the row stays as given (cells of a row may
// leave it out). False for anything malformed or outside the grid.
bool parseCellReference(std::string_view text, int* row, int* column);

// Reads the rows and cells inside a worksheet's <sheetData>, from scanner events. This
// is the hot path of opening a workbook, so a cell costs no allocation: its value is
// gathered into a reused buffer and strings go straight into the pool.
class SheetDataReader
{
public:
    SheetDataReader(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes,
                    const XmlScanner& scanner);

    void startElement(const ScannedTag& tag);
    void endElement(std::string_view name, std::string_view qualifiedName);
    void text(std::string_view text);
    // A whole cell at p written the way nearly every writer writes one, read without
    // its tokens one by one: the bytes it took, or 0 for anything else (see the
    // scanner's shortcuts).
    size_t takeCell(const char* p, const char* end);

private:
    void startRow(const ScannedTag& tag);
    void startCell(const ScannedTag& tag);
    void beginCell(const std::string_view* reference, const std::string_view* style,
                   const std::string_view* type);
    void setValue(std::string_view text);
    void setText(std::string& text);
    quint32 styleIndex(const std::string_view* value) const;
    RowRecord& currentRow();

    WorkbookData& m_book;
    SheetData& m_sheet;
    CellIndexes m_indexes;
    const XmlScanner& m_scanner;

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
    bool m_collecting = false;      // inside <v>, or <t> of an inline string
    std::string m_text;             // the value being gathered, reused
    std::string m_scratch;          // inline texts, reused
    ElementCapture m_formula;       // the <f> of the cell, kept whole
};

} // namespace QXlsx::detail
