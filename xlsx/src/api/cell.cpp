#include "xlsxcell.h"

#include "model/cellaccess.h"
#include "model/numberformats.h"
#include "model/sheetdata.h"
#include "model/workbookdata.h"

namespace QXlsx {

static_assert(sizeof(Cell) == 16, "a worksheet of millions of cells depends on this size");

namespace {

// The text of an element as stored: what lies between the end of its start tag and
// the start of its end tag, with the XML escapes undone.
QString elementText(const QByteArray& xml)
{
    const int open = xml.indexOf('>');
    const int close = xml.lastIndexOf('<');
    if (open <= 0 || close <= open || xml[open - 1] == '/')
        return {};
    QString text = QString::fromUtf8(xml.constData() + open + 1, close - open - 1);
    if (!text.contains(QLatin1Char('&')))
        return text;
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const int semicolon = text[i] == QLatin1Char('&') ? text.indexOf(QLatin1Char(';'), i) : -1;
        if (semicolon < 0) {
            out += text[i];
            continue;
        }
        const QStringRef entity = text.midRef(i + 1, semicolon - i - 1);
        char32_t code = 0;
        if (entity == QLatin1String("amp")) code = '&';
        else if (entity == QLatin1String("lt")) code = '<';
        else if (entity == QLatin1String("gt")) code = '>';
        else if (entity == QLatin1String("quot")) code = '"';
        else if (entity == QLatin1String("apos")) code = '\'';
        else if (entity.startsWith(QLatin1String("#x")))
            code = entity.mid(2).toUInt(nullptr, 16);
        else if (entity.startsWith(QLatin1Char('#')))
            code = entity.mid(1).toUInt(nullptr, 10);
        if (code == 0 || code > 0x10FFFF) {
            out += text[i];
            continue;
        }
        out += QString::fromUcs4(&code, 1);
        i = semicolon;
    }
    return out;
}

} // namespace

const detail::WorkbookData& Cell::book() const
{
    return *detail::CellArena::bookOf(this);
}

QVariant Cell::value() const
{
    switch (m_type) {
    case NumberType: return m_value.number;
    case BooleanType: return m_value.boolean;
    case StringType:
    case ErrorType: return book().strings.text(m_value.index);
    default: return {};
    }
}

Format Cell::format() const { return book().styles.format(m_style); }

bool Cell::hasFormula() const { return m_flags & detail::CellHasFormula; }

QString Cell::formula() const
{
    if (!hasFormula())
        return {};
    const QByteArray* element = book().formulaOf(this);
    return element ? elementText(*element) : QString();
}

bool Cell::isDateTime() const
{
    return m_type == NumberType && book().styles.isDateTime(m_style);
}

QDateTime Cell::dateTime() const
{
    return isDateTime() ? detail::fromSerial(m_value.number, book().date1904) : QDateTime();
}

} // namespace QXlsx
