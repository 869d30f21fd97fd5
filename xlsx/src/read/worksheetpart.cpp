#include "read/worksheetpart.h"

#include "model/workbookdata.h"
#include "read/workbookpart.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace QXlsx::detail {

namespace {

// Attributes a record does not model are kept as read.
void keepAttribute(QByteArray& extra, const char* name, const char* value)
{
    extra.append(' ').append(name).append("=\"");
    appendEscaped(extra, value, true);
    extra.append('"');
}

// Expat hears the part outside the cells in batches of about this size.
constexpr size_t ForwardBatch = 64 * 1024;

} // namespace

WorksheetHandler::WorksheetHandler(SheetData& sheet, const CellIndexes& indexes)
    : m_sheet(sheet), m_indexes(indexes)
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

void WorksheetHandler::startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes)
{
    const int depth = reader.depth();
    if (depth == 1) {
        m_sheet.rootStartTag = startTagText(reader.qualifiedName(), attributes);
    } else if (depth == 2) {
        if (name == "sheetFormatPr") {
            if (const char* height = attributes.value("defaultRowHeight"))
                m_sheet.defaultRowHeight = qBound(0.0, std::atof(height), 409.0);
            if (const char* width = attributes.value("defaultColWidth"))
                m_sheet.defaultColumnWidth = qBound(0.0, std::atof(width), 255.0);
            reader.captureElement();
        } else if (name == "dimension") {
            reserveRows(attributes.value("ref"));
        } else if (name != "sheetData" && name != "cols" && name != "mergeCells") {
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

// The extent a writer noted is only a hint, but reserving by it spares regrowing the
// rows of a big sheet. The grid bounds it; a lying extent costs address space whose
// pages are only touched as rows come.
void WorksheetHandler::reserveRows(const char* ref)
{
    const CellRange range(QString::fromUtf8(ref ? ref : ""));
    if (range.isValid() && m_sheet.rows.empty())
        m_sheet.rows.reserve(size_t(qMin(range.rowCount(), MaxRows)));
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

void WorksheetHandler::endElement(XmlReader& reader, std::string_view)
{
    if (reader.depth() != 1)
        return;
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

void WorksheetHandler::captured(XmlReader&, RawElement&& element)
{
    m_sheet.extraElements.push_back(std::move(element));
}

WorksheetReader::WorksheetReader(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes)
    : m_scanner(*this), m_handler(sheet, indexes), m_xml(m_handler),
      m_cells(book, sheet, indexes, m_scanner)
{
}

bool WorksheetReader::feed(const char* data, size_t size)
{
    return m_scanner.feed(data, size) && !m_xmlFailed;
}

bool WorksheetReader::finish()
{
    flush();
    if (m_xmlFailed)
        return false;
    const bool scanned = m_scanner.finish();
    // Expat judges the end of the part too: it sees the elements left open.
    if (!m_xml.feed(nullptr, 0, true))
        m_xmlFailed = true;
    return scanned && !m_xmlFailed;
}

QString WorksheetReader::errorString() const
{
    return m_xmlFailed ? m_xml.errorString() : m_scanner.errorString();
}

void WorksheetReader::forward(std::string_view raw)
{
    m_pending.append(raw);
    if (m_pending.size() >= ForwardBatch)
        flush();
}

void WorksheetReader::flush()
{
    if (m_pending.empty() || m_xmlFailed)
        return;
    constexpr size_t MaxPiece = size_t(1) << 30;   // expat counts in int
    for (size_t from = 0; from < m_pending.size() && !m_xmlFailed; from += MaxPiece) {
        const size_t piece = std::min(MaxPiece, m_pending.size() - from);
        if (!m_xml.feed(m_pending.data() + from, int(piece), false)) {
            m_xmlFailed = true;
            m_scanner.stop();
        }
    }
    m_pending.clear();
}

// The seam between the two readers. The cells, nearly all of a sheet's bytes, go to the
// scanner's sheet data reader: expat takes six times the scanner's time to merely parse
// them (bench/README.md). The rest, usually a few hundred bytes, goes to expat, whose
// complete checks cost nothing at that size.
void WorksheetReader::startElement(const ScannedTag& tag)
{
    if (m_inSheetData) {
        m_cells.startElement(tag);
        return;
    }
    forward(tag.raw);
    if (tag.name == "sheetData" && m_scanner.depth() == 2 && !tag.selfClosing) {
        // Whatever expat has to say about the part so far comes before the cells.
        flush();
        m_inSheetData = true;
        m_scanner.setShortcuts(true);
    }
}

void WorksheetReader::endElement(std::string_view name, std::string_view qualifiedName, std::string_view raw)
{
    if (m_inSheetData) {
        if (m_scanner.depth() > 2) {
            m_cells.endElement(name, qualifiedName);
            return;
        }
        m_inSheetData = false;
        m_scanner.setShortcuts(false);
    }
    forward(raw);
}

void WorksheetReader::text(std::string_view text, std::string_view raw)
{
    if (m_inSheetData)
        m_cells.text(text);
    else
        forward(raw);
}

void WorksheetReader::other(std::string_view raw)
{
    if (!m_inSheetData)
        forward(raw);
}

} // namespace QXlsx::detail
