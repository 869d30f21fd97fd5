#include "read/sheetdatareader.h"

#include "model/cellaccess.h"
#include "model/numberformats.h"
#include "model/workbookdata.h"
#include "read/xmlreader.h"

#include <QDateTime>

#include <charconv>
#include <cmath>

namespace QXlsx::detail {

bool parseCellReference(std::string_view text, int* row, int* column)
{
    const char* p = text.data();
    const char* end = p + text.size();
    if (p < end && *p == '$')
        ++p;
    int col = 0;
    int letters = 0;
    for (; p < end && ((*p >= 'A' && *p <= 'Z') || (*p >= 'a' && *p <= 'z')); ++p) {
        if (++letters > 3)
            return false;
        col = col * 26 + ((*p | 0x20) - 'a' + 1);
    }
    if (letters == 0 || col > MaxColumns)
        return false;
    if (p < end && *p == '$')
        ++p;
    if (p == end) {
        *column = col;
        return true;
    }
    int r = 0;
    int digits = 0;
    for (; p < end && *p >= '0' && *p <= '9'; ++p) {
        if (++digits > 7)
            return false;
        r = r * 10 + (*p - '0');
    }
    if (p != end || r < 1 || r > MaxRows)
        return false;
    *row = r;
    *column = col;
    return true;
}

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// Leading digits as an integer the way atoi reads them: white space and a sign first,
// anything after the digits ignored, 0 without digits; clamped rather than overflowing.
long long leadingInteger(std::string_view text)
{
    size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+'))
        negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min(value * 10 + (text[i] - '0'), 1LL << 40);
    return negative ? -value : value;
}

// The index a cell or row refers by (a shared string, a format): leading digits after
// any white space, as from_chars reads them, clamped far above any table's size; false
// without digits. Every cell has one or two, and the library's parser, made for every
// base and type, cost more than the rest of reading the value.
bool leadingIndex(std::string_view text, quint64* index)
{
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end && isSpace(*p))
        ++p;
    const char* digits = p;
    quint64 value = 0;
    for (; p < end && quint8(*p - '0') <= 9; ++p)
        value = std::min(value * 10 + quint8(*p - '0'), quint64(1) << 40);
    *index = value;
    return p != digits;
}

double leadingNumber(std::string_view text)
{
    double value = 0;
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    std::from_chars(text.data(), text.data() + text.size(), value);
    return std::isfinite(value) ? value : 0.0;
}

bool isTrue(const std::string_view* value)
{
    return value && (*value == "1" || *value == "true");
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

char cellType(const std::string_view* t)
{
    if (!t)
        return 'n';
    if (*t == "s") return 's';
    if (*t == "str") return 'S';
    if (*t == "inlineStr") return 'i';
    if (*t == "b") return 'b';
    if (*t == "e") return 'e';
    if (*t == "d") return 'd';
    return 'n';
}

// Names are a few bytes: a loop beats the library search this runs for every tag.
inline std::string_view localPart(std::string_view qualifiedName)
{
    for (size_t i = 0; i < qualifiedName.size(); ++i)
        if (qualifiedName[i] == ':')
            return qualifiedName.substr(i + 1);
    return qualifiedName;
}

// The attributes of a cell written the usual way (see takeCell). Each gives where its
// part ends, or null where the bytes are anything else or not all there yet.

// A value in double quotes that the scanner would hand over as written: no reference,
// no white space to normalise, no "<". p is at the opening quote.
const char* plainQuoted(const char* p, const char* end, std::string_view* value)
{
    const char* q = p + 1;
    for (; q < end && *q != '"'; ++q) {
        if (*q == '<' || *q == '&' || *q == '\r' || *q == '\n' || *q == '\t')
            return nullptr;
    }
    if (q == end)
        return nullptr;
    *value = std::string_view(p + 1, size_t(q - p - 1));
    return q + 1;
}

// The attribute ` name="value"` at p; p itself where another or none comes there.
const char* plainAttribute(const char* p, const char* end, char name, const std::string_view** value,
                           std::string_view* storage)
{
    if (end - p < 4 || p[0] != ' ' || p[1] != name || p[2] != '=' || p[3] != '"')
        return p;
    const char* next = plainQuoted(p + 3, end, storage);
    if (next)
        *value = storage;
    return next;
}

// Attributes a record does not model are kept as read.
void keepAttribute(QByteArray& extra, const ScannedAttribute& attribute)
{
    extra.append(' ').append(attribute.name.data(), int(attribute.name.size())).append("=\"");
    appendEscaped(extra, attribute.value, true);
    extra.append('"');
}

} // namespace

SheetDataReader::SheetDataReader(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes,
                                 const XmlScanner& scanner)
    : m_book(book), m_sheet(sheet), m_indexes(indexes), m_scanner(scanner)
{
}

quint32 SheetDataReader::styleIndex(const std::string_view* value) const
{
    if (!value || !m_indexes.styles)
        return 0;
    // A negative, huge or unknown index gives the default format.
    quint64 index = 0;
    if (!leadingIndex(*value, &index) || index >= m_indexes.styles->size())
        return 0;
    return (*m_indexes.styles)[size_t(index)];
}

RowRecord& SheetDataReader::currentRow()
{
    auto& rows = m_sheet.rows;
    if (m_rowIndex >= 0 && size_t(m_rowIndex) < rows.size() && rows[size_t(m_rowIndex)].row == m_row)
        return rows[size_t(m_rowIndex)];
    RowRecord& record = m_sheet.rowFor(m_row);
    m_rowIndex = int(&record - rows.data());
    return record;
}

void SheetDataReader::startElement(const ScannedTag& tag)
{
    if (m_formula.active()) {
        m_formula.start(tag);
        return;
    }
    const std::string_view name = tag.name;
    if (name == "c") {
        startCell(tag);
    } else if (!m_cell) {
        if (name == "row")
            startRow(tag);
    } else if (name == "v" || (name == "t" && m_inInline && !m_inPhonetic)) {
        m_collecting = true;
        m_text.clear();
    } else if (name == "f") {
        m_formula.begin(tag, m_scanner);
    } else if (name == "is") {
        m_inInline = true;
        m_scratch.clear();
    } else if (name == "rPh") {
        m_inPhonetic = true;
    }
}

void SheetDataReader::text(std::string_view text)
{
    if (m_formula.active())
        m_formula.text(text);
    else if (m_collecting)
        m_text.append(text);
}

void SheetDataReader::endElement(std::string_view name, std::string_view qualifiedName)
{
    if (m_formula.active()) {
        if (m_formula.end(qualifiedName) && m_cell) {
            m_sheet.formulas.insert(SheetData::formulaKey(m_cellRow, m_cell->column()), m_formula.take());
            CellAccess::setFlags(*m_cell, CellAccess::flags(*m_cell) | CellHasFormula);
        }
        return;
    }
    if (name == "v") {
        if (m_cell)
            setValue(m_text);
        m_collecting = false;
    } else if (name == "c") {
        m_cell = nullptr;
        m_collecting = false;
    } else if (!m_cell) {
        return;
    } else if (name == "t" && m_inInline && !m_inPhonetic) {
        m_scratch.append(m_text);
        m_collecting = false;
    } else if (name == "rPh") {
        m_inPhonetic = false;
    } else if (name == "is") {
        m_inInline = false;
        setText(m_scratch);
    }
}

// Most cells of most files are `<c r="B7" s="3" t="s"><v>12</v></c>` or, from
// streaming writers, `<c r="B7" s="3" t="inlineStr"><is><t>text</t></is></c>`, each
// attribute optional, or a start tag closed at once: five to seven tokens for the
// scanner and as many calls here, most of the time of opening a workbook. Such a cell
// is read in one pass and gives the model what its tokens would have given; every
// other form (other attributes or order, white space, references, formulas, runs, a
// prefix) and a cell cut by the end of the bytes at hand go the usual way.
size_t SheetDataReader::takeCell(const char* p, const char* end)
{
    if (m_cell || m_formula.active() || end - p < 3 || p[1] != 'c')
        return 0;   // inside a cell its tokens go the usual way
    std::string_view storage[3];
    const std::string_view* attributes[3] = {};   // r, s, t
    const char* q = p + 2;
    for (int i = 0; i < 3 && q; ++i)
        q = plainAttribute(q, end, "rst"[i], &attributes[i], &storage[i]);
    enum { Nothing, Value, InlineText } content = Nothing;
    std::string_view text;
    if (const char* closed = afterLiteral(q, end, "/>")) {
        q = closed;
    } else if ((q = afterLiteral(q, end, ">"))) {
        if (const char* value = afterLiteral(q, end, "<v>")) {
            content = Value;
            q = afterPlainText(value, end, "</v>", &text);
        } else if (const char* inlineText = afterLiteral(q, end, "<is>")) {
            content = InlineText;
            q = afterPlainText(afterTextStart(inlineText, end), end, "</t></is>", &text);
        }
        q = afterLiteral(q, end, "</c>");
    }
    if (!q)
        return 0;
    beginCell(attributes[0], attributes[1], attributes[2]);
    if (m_cell && content == Value) {
        setValue(text);
    } else if (m_cell && content == InlineText) {
        m_scratch.assign(text);
        setText(m_scratch);
    }
    m_cell = nullptr;
    return size_t(q - p);
}

void SheetDataReader::startRow(const ScannedTag& tag)
{
    int row = m_row + 1;
    if (const std::string_view* r = tag.value("r"))
        row = int(qBound(-1LL, leadingInteger(*r), qint64(MaxRows) + 1));
    m_skipRow = row < 1 || row > MaxRows;
    m_column = 0;
    if (m_rowIndex >= 0 && size_t(m_rowIndex) < m_sheet.rows.size())
        m_previousRowCells = m_sheet.rows[size_t(m_rowIndex)].cells.size();
    m_rowIndex = -1;
    if (m_skipRow)
        return;
    m_row = row;

    if (tag.attributeCount == 0 || (tag.attributeCount == 1 && localPart(tag.attributes[0].name) == "r"))
        return;   // a record is made when a cell comes
    bool customHeight = false;
    double height = 0;
    RowRecord& record = currentRow();
    for (int i = 0; i < tag.attributeCount; ++i) {
        const ScannedAttribute& a = tag.attributes[i];
        const std::string_view attribute = localPart(a.name);
        if (attribute == "r")
            continue;
        if (attribute == "spans") {
            // A hint only, stale once cells change, so not kept; but it saves growing
            // the row's cells one by one.
            const size_t colon = a.value.find(':');
            const long long span = colon == std::string_view::npos
                ? 0 : leadingInteger(a.value.substr(colon + 1)) - leadingInteger(a.value) + 1;
            if (span > 0 && span <= MaxColumns && record.cells.empty())
                record.cells.reserve(*m_sheet.cellArena, size_t(span));
            continue;
        }
        if (attribute == "ht") height = leadingNumber(a.value);
        else if (attribute == "customHeight") customHeight = isTrue(&a.value);
        else if (attribute == "hidden") record.hidden = isTrue(&a.value);
        else if (attribute == "s") record.style = styleIndex(&a.value);
        else if (attribute == "customFormat") record.customFormat = isTrue(&a.value);
        else keepAttribute(record.extraAttributes, a);
    }
    // Heights Excel fitted to the content are its to fit again; only set ones are kept.
    if (customHeight)
        record.height = qBound(0.0, height, 409.0);
}

void SheetDataReader::startCell(const ScannedTag& tag)
{
    const std::string_view* type = nullptr;
    const std::string_view* style = nullptr;
    const std::string_view* reference = nullptr;
    for (int i = 0; i < tag.attributeCount; ++i) {
        const std::string_view name = localPart(tag.attributes[i].name);
        if (name == "r") reference = &tag.attributes[i].value;
        else if (name == "s") style = &tag.attributes[i].value;
        else if (name == "t") type = &tag.attributes[i].value;
    }
    beginCell(reference, style, type);
}

void SheetDataReader::beginCell(const std::string_view* reference, const std::string_view* style,
                                const std::string_view* type)
{
    m_cell = nullptr;
    m_collecting = false;
    if (m_skipRow || m_row == 0)
        return;
    int row = m_row;
    int column = m_column + 1;
    if (reference) {
        if (!parseCellReference(*reference, &row, &column))
            return;   // outside the grid, or not a reference at all
    } else if (column > MaxColumns) {
        return;
    }
    m_column = column;
    m_cellRow = row;
    m_cellType = cellType(type);
    m_inInline = false;
    m_inPhonetic = false;

    Cell* cell;
    if (row == m_row) {
        RowRecord& record = currentRow();
        // Sheets tend to be rectangular: a row gets room for as many cells as the last.
        if (record.cells.capacity() == 0)
            record.cells.reserve(*m_sheet.cellArena, m_previousRowCells);
        if (record.cells.empty() || record.cells.back().column() < column) {
            cell = &record.cells.append(*m_sheet.cellArena, CellAccess::make(column));
        } else {
            cell = &m_sheet.cellFor(row, column);
        }
    } else {
        cell = &m_sheet.cellFor(row, column);
        m_rowIndex = -1;   // rows may have moved
    }
    CellAccess::setBlank(*cell);
    CellAccess::setFlags(*cell, 0);
    CellAccess::setStyle(*cell, styleIndex(style));
    m_cell = cell;
}

void SheetDataReader::setValue(std::string_view text)
{
    Cell& cell = *m_cell;
    switch (m_cellType) {
    case 's': {
        quint64 index = 0;
        if (leadingIndex(text, &index) && index < m_indexes.stringCount) {
            CellAccess::setString(cell, m_indexes.firstString + quint32(index));
            m_book.strings.noteUse(m_indexes.firstString + quint32(index));
        }
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

void SheetDataReader::setText(std::string& text)
{
    decodeEscapes(text);
    const quint32 index = m_book.strings.add(text.data(), int(text.size()));
    CellAccess::setString(*m_cell, index);
    m_book.strings.noteUse(index);
}

} // namespace QXlsx::detail
