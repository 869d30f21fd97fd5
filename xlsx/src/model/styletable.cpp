#include "styletable.h"

#include "formatprivate.h"

namespace QXlsx::detail {

StyleTable::StyleTable()
{
    append(Format());
}

quint32 StyleTable::indexOf(const Format& format)
{
    // Holding a copy of the last format keeps its shared record alive, so an equal
    // record address means the very same, unchanged format.
    if (m_lastValid && FormatPrivate::identity(format) == FormatPrivate::identity(m_lastFormat))
        return m_lastIndex;
    auto it = m_index.constFind(format);
    const quint32 index = it != m_index.constEnd() ? it.value() : append(format);
    m_lastFormat = format;
    m_lastIndex = index;
    m_lastValid = true;
    return index;
}

quint32 StyleTable::indexWithDateFormat(quint32 baseIndex, DateKind kind)
{
    const Format& base = format(baseIndex);
    if (FormatPrivate::of(base).hasNumberFormat())
        return baseIndex;
    const quint32 key = baseIndex << 2 | quint32(kind);
    auto it = m_dateFormats.constFind(key);
    if (it != m_dateFormats.constEnd())
        return it.value();
    Format dated = base;
    switch (kind) {
    case DateKind::Date: dated.setNumberFormatIndex(14); break;
    case DateKind::Time: dated.setNumberFormatIndex(21); break;
    case DateKind::DateTime: dated.setNumberFormat(QStringLiteral("yyyy-mm-dd hh:mm:ss")); break;
    }
    const quint32 index = indexOf(dated);
    m_dateFormats.insert(key, index);
    return index;
}

quint32 StyleTable::append(const Format& format)
{
    const quint32 index = count();
    m_formats.push_back(format);
    m_isDateTime.push_back(format.isDateTimeFormat());
    if (!m_index.contains(format))
        m_index.insert(format, index);
    return index;
}

qint64 StyleTable::find(const Format& format) const
{
    const auto it = m_index.constFind(format);
    return it != m_index.constEnd() ? qint64(it.value()) : -1;
}

const Format& StyleTable::format(quint32 index) const
{
    static const Format defaultFormat;
    return index < m_formats.size() ? m_formats[index] : defaultFormat;
}

void StyleTable::clear()
{
    m_formats.clear();
    m_isDateTime.clear();
    m_index.clear();
    m_dateFormats.clear();
    m_lastFormat = Format();
    m_lastIndex = 0;
    m_lastValid = false;
    defaultFontXml.clear();
    extraElements.clear();
}

} // namespace QXlsx::detail
