#include "read/worksheetpart.h"

#include "model/cellaccess.h"
#include "model/numberformats.h"
#include "model/workbookdata.h"
#include "read/workbookpart.h"

#include <QDateTime>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace QXlsx::detail {

bool parseCellReference(const char* text, int* row, int* column)
{
    const char* p = text;
    if (*p == '$')
        ++p;
    int col = 0;
    int letters = 0;
    for (; (*p >= 'A' && *p <= 'Z') || (*p >= 'a' && *p <= 'z'); ++p) {
        if (++letters > 3)
            return false;
        col = col * 26 + ((*p | 0x20) - 'a' + 1);
    }
    if (letters == 0 || col > MaxColumns)
        return false;
    if (*p == '$')
        ++p;
    if (*p == '\0') {
        *column = col;
        return true;
    }
    int r = 0;
    int digits = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        if (++digits > 7)
            return false;
        r = r * 10 + (*p - '0');
    }
    if (*p != '\0' || r < 1 || r > MaxRows)
        return false;
    *row = r;
    *column = col;
    return true;
}

namespace {

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n' || text.front() == '\r'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

bool parseNumber(std::string_view text, double* value)
{
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), *value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && std::isfinite(*value);
}

// An ISO 8601 date, time or both (cells of type d) as a serial of the workbook.
bool parseIsoDate(std::string_view text, bool date1904, double* serial)
{
    const QString iso = QString::fromLatin1(trimmed(text).data(), int(trimmed(text).size()));
    if (iso.contains(QLatin1Char('T'))) {
        const QDateTime dateTime = QDateTime::fromString(iso, Qt::ISODateWithMs);
        if (!dateTime.isValid())
            return false;
        // A zone in the text is dropped: a cell shows the wall clock time written.
        *serial = toSerial(QDateTime(dateTime.date(), dateTime.time()), date1904);
        return true;
    }
    if (iso.contains(QLatin1Char(':'))) {
        const QTime time = QTime::fromString(iso, Qt::ISODateWithMs);
        if (!time.isValid())
            return false;
        *serial = toSerial(time);
        return true;
    }
    const QDate date = QDate::fromString(iso, Qt::ISODate);
    if (!date.isValid())
        return false;
    *serial = toSerial(date, date1904);
    return true;
}

char cellType(const char* t)
{
    if (!t)
        return 'n';
    if (std::strcmp(t, "s") == 0) return 's';
    if (std::strcmp(t, "str") == 0) return 'S';
    if (std::strcmp(t, "inlineStr") == 0) return 'i';
    if (std::strcmp(t, "b") == 0) return 'b';
    if (std::strcmp(t, "e") == 0) return 'e';
    if (std::strcmp(t, "d") == 0) return 'd';
    return 'n';
}

// Attributes a record does not model are kept as read.
void keepAttribute(QByteArray& extra, const char* name, const char* value)
{
    extra.append(' ').append(name).append("=\"");
    appendEscaped(extra, value, true);
    extra.append('"');
}

} // namespace

WorksheetHandler::WorksheetHandler(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes)
    : m_book(book), m_sheet(sheet), m_indexes(indexes)
{
}

quint32 WorksheetHandler::styleIndex(const char* value) const
{
    if (!value || !m_indexes.styles)
        return 0;
    char* end = nullptr;
    const unsigned long index = std::strtoul(value, &end, 10);
    // A negative, huge or unknown index gives the default format.
    if (end == value || *value == '-' || index >= m_indexes.styles->size())
        return 0;
    return (*m_indexes.styles)[index];
}

RowRecord& WorksheetHandler::currentRow()
{
    auto& rows = m_sheet.rows;
    if (m_rowIndex >= 0 && size_t(m_rowIndex) < rows.size() && rows[size_t(m_rowIndex)].row == m_row)
        return rows[size_t(m_rowIndex)];
    RowRecord& record = m_sheet.rowFor(m_row);
    m_rowIndex = int(&record - rows.data());
    return record;
}

void WorksheetHandler::startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes)
{
    if (m_inSheetData) {
        if (name == "c") {
            startCell(attributes);
        } else if (!m_cell) {
            if (name == "row")
                startRow(attributes);
        } else if (name == "v" || (name == "t" && m_inInline && !m_inPhonetic)) {
            reader.beginText();
        } else if (name == "f") {
            reader.captureElement();
        } else if (name == "is") {
            m_inInline = true;
            m_scratch.clear();
        } else if (name == "rPh") {
            m_inPhonetic = true;
        }
        return;
    }
    const int depth = reader.depth();
    if (depth == 1) {
        m_sheet.rootStartTag = startTagText(reader.qualifiedName(), attributes);
    } else if (depth == 2) {
        if (name == "sheetData") {
            m_inSheetData = true;
        } else if (name == "sheetFormatPr") {
            if (const char* height = attributes.value("defaultRowHeight"))
                m_sheet.defaultRowHeight = qBound(0.0, std::atof(height), 409.0);
            if (const char* width = attributes.value("defaultColWidth"))
                m_sheet.defaultColumnWidth = qBound(0.0, std::atof(width), 255.0);
            reader.captureElement();
        } else if (name != "cols" && name != "mergeCells" && name != "dimension") {
            reader.captureElement();
        }
    } else if (depth == 3 && name == "col") {
        startColumn(attributes);
    } else if (depth == 3 && name == "mergeCell") {
        const CellRange range(QString::fromUtf8(attributes.value("ref")));
        if (range.isValid() && (range.rowCount() > 1 || range.columnCount() > 1))
            m_sheet.merges.append(range);
    }
}

void WorksheetHandler::startRow(const XmlAttributes& attributes)
{
    int row = m_row + 1;
    if (const char* r = attributes.value("r"))
        row = std::atoi(r);
    m_skipRow = row < 1 || row > MaxRows;
    m_column = 0;
    if (m_rowIndex >= 0 && size_t(m_rowIndex) < m_sheet.rows.size())
        m_previousRowCells = m_sheet.rows[size_t(m_rowIndex)].cells.size();
    m_rowIndex = -1;
    if (m_skipRow)
        return;
    m_row = row;

    const char** list = attributes.list();
    if (!list[0] || (!list[2] && localName(list[0]) == "r"))
        return;   // a record is made when a cell comes
    bool customHeight = false;
    double height = 0;
    RowRecord& record = currentRow();
    for (const char** a = list; *a; a += 2) {
        const std::string_view attribute = localName(a[0]);
        if (attribute == "r")
            continue;
        if (attribute == "spans") {
            // A hint only, stale once cells change, so not kept; but it saves growing
            // the row's cells one by one.
            const char* colon = std::strchr(a[1], ':');
            const int span = colon ? std::atoi(colon + 1) - std::atoi(a[1]) + 1 : 0;
            if (span > 0 && span <= MaxColumns && record.cells.empty())
                record.cells.reserve(size_t(span));
            continue;
        }
        if (attribute == "ht") height = std::atof(a[1]);
        else if (attribute == "customHeight") customHeight = isTrue(a[1]);
        else if (attribute == "hidden") record.hidden = isTrue(a[1]);
        else if (attribute == "s") record.style = styleIndex(a[1]);
        else if (attribute == "customFormat") record.customFormat = isTrue(a[1]);
        else keepAttribute(record.extraAttributes, a[0], a[1]);
    }
    // Heights Excel fitted to the content are its to fit again; only set ones are kept.
    if (customHeight)
        record.height = qBound(0.0, height, 409.0);
}

void WorksheetHandler::startCell(const XmlAttributes& attributes)
{
    m_cell = nullptr;
    if (m_skipRow || m_row == 0)
        return;
    int row = m_row;
    int column = m_column + 1;
    if (const char* r = attributes.value("r")) {
        if (!parseCellReference(r, &row, &column))
            return;   // outside the grid, or not a reference at all
    } else if (column > MaxColumns) {
        return;
    }
    m_column = column;
    m_cellRow = row;
    m_cellType = cellType(attributes.value("t"));
    m_inInline = false;
    m_inPhonetic = false;

    Cell* cell;
    if (row == m_row) {
        RowRecord& record = currentRow();
        // Sheets tend to be rectangular: a row gets room for as many cells as the last.
        if (record.cells.capacity() == 0)
            record.cells.reserve(m_previousRowCells);
        if (record.cells.empty() || record.cells.back().column() < column) {
            record.cells.push_back(CellAccess::make(&m_book, column));
            cell = &record.cells.back();
        } else {
            cell = &m_sheet.cellFor(row, column);
        }
    } else {
        cell = &m_sheet.cellFor(row, column);
        m_rowIndex = -1;   // rows may have moved
    }
    CellAccess::setBlank(*cell);
    CellAccess::setFlags(*cell, 0);
    CellAccess::setStyle(*cell, styleIndex(attributes.value("s")));
    m_cell = cell;
}

void WorksheetHandler::startColumn(const XmlAttributes& attributes)
{
    ColumnRecord column;
    for (const char** a = attributes.list(); *a; a += 2) {
        const std::string_view attribute = localName(a[0]);
        if (attribute == "min") column.first = std::atoi(a[1]);
        else if (attribute == "max") column.last = std::atoi(a[1]);
        else if (attribute == "width") column.width = qBound(0.0, std::atof(a[1]), 255.0);
        else if (attribute == "customWidth") column.customWidth = isTrue(a[1]);
        else if (attribute == "hidden") column.hidden = isTrue(a[1]);
        else if (attribute == "style") column.style = styleIndex(a[1]);
        else keepAttribute(column.extraAttributes, a[0], a[1]);
    }
    column.first = qMax(1, column.first);
    column.last = qMin(MaxColumns, column.last);
    if (column.first <= column.last)
        m_sheet.columns.push_back(std::move(column));
}

void WorksheetHandler::setValue(std::string_view text)
{
    Cell& cell = *m_cell;
    switch (m_cellType) {
    case 's': {
        text = trimmed(text);
        quint64 index = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), index);
        if (result.ec == std::errc() && m_indexes.sharedStrings && index < m_indexes.sharedStrings->size())
            CellAccess::setString(cell, (*m_indexes.sharedStrings)[size_t(index)]);
        break;
    }
    case 'b':
        text = trimmed(text);
        CellAccess::setBoolean(cell, text == "1" || text == "true");
        break;
    case 'e':
        CellAccess::setError(cell, m_book.strings.add(text.data(), int(text.size())));
        break;
    case 'S':
    case 'i':
        m_scratch.assign(text);
        setText(m_scratch);
        if (m_cellType == 'S' && (CellAccess::flags(cell) & CellHasFormula))
            CellAccess::setFlags(cell, CellAccess::flags(cell) | CellFormulaString);
        break;
    case 'd': {
        double serial = 0;
        if (parseIsoDate(text, m_book.date1904, &serial))
            CellAccess::setNumber(cell, serial);
        break;
    }
    default: {
        double number = 0;
        if (parseNumber(text, &number))
            CellAccess::setNumber(cell, number);
    }
    }
}

void WorksheetHandler::setText(std::string& text)
{
    decodeEscapes(text);
    CellAccess::setString(*m_cell, m_book.strings.add(text.data(), int(text.size())));
}

void WorksheetHandler::endElement(XmlReader& reader, std::string_view name)
{
    if (m_inSheetData) {
        if (name == "v") {
            if (m_cell)
                setValue(reader.text());
            reader.endText();
        } else if (name == "c") {
            m_cell = nullptr;
        } else if (!m_cell) {
            if (name == "sheetData")
                m_inSheetData = false;
        } else if (name == "t" && m_inInline && !m_inPhonetic) {
            m_scratch.append(reader.text());
            reader.endText();
        } else if (name == "rPh") {
            m_inPhonetic = false;
        } else if (name == "is") {
            m_inInline = false;
            setText(m_scratch);
        }
        return;
    }
    if (reader.depth() == 1) {
        // Columns as the model wants them: sorted, not overlapping.
        auto& columns = m_sheet.columns;
        std::stable_sort(columns.begin(), columns.end(),
                         [](const ColumnRecord& a, const ColumnRecord& b) { return a.first < b.first; });
        int lastColumn = 0;
        columns.erase(std::remove_if(columns.begin(), columns.end(), [&](const ColumnRecord& c) {
                          if (c.first <= lastColumn)
                              return true;
                          lastColumn = c.last;
                          return false;
                      }), columns.end());
    }
}

void WorksheetHandler::captured(XmlReader&, RawElement&& element)
{
    if (m_inSheetData) {
        if (m_cell) {
            m_sheet.formulas.insert(SheetData::formulaKey(m_cellRow, m_cell->column()), element.xml);
            CellAccess::setFlags(*m_cell, CellAccess::flags(*m_cell) | CellHasFormula);
        }
        return;
    }
    m_sheet.extraElements.push_back(std::move(element));
}

} // namespace QXlsx::detail
