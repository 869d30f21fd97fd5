#pragma once

#include "rawelement.h"
#include "xlsxformat.h"

#include <QByteArray>
#include <QHash>

#include <vector>

namespace QXlsx::detail {

// The number formats a written date, time or date-time gets when the caller's format
// has none.
enum class DateKind : quint8 { Date, Time, DateTime };

// The workbook's cell formats. A cell stores the index of its format here; index 0 is
// the default format. Writers tend to pass the same Format object for millions of cells,
// so the last format looked up is remembered and found again without hashing.
class StyleTable
{
public:
    StyleTable();

    quint32 indexOf(const Format& format);
    // The index of the format at baseIndex with the number format of kind added; the
    // same index when that format already has a number format.
    quint32 indexWithDateFormat(quint32 baseIndex, DateKind kind);
    // Adds a format read from a file at the next index, even if an equal one exists,
    // so that the file's style indexes stay valid.
    quint32 append(const Format& format);
    // The index of a format equal to format, or -1; adds nothing.
    qint64 find(const Format& format) const;
    // The format at index; the default format for an index the table does not hold.
    const Format& format(quint32 index) const;
    bool isDateTime(quint32 index) const
    {
        return index < m_isDateTime.size() && m_isDateTime[index];
    }
    quint32 count() const { return quint32(m_formats.size()); }

    // Empties the table, the default format included, for a reader that appends the
    // file's records from index 0. A saved table that is empty has the default record.
    void clear();

    // What styles.xml held that the table does not model, for the save: the default
    // font (<font> of the file's first font), named styles, differential formats, etc.
    QByteArray defaultFontXml;
    std::vector<RawElement> extraElements;

private:
    std::vector<Format> m_formats;
    std::vector<bool> m_isDateTime;
    QHash<Format, quint32> m_index;
    QHash<quint32, quint32> m_dateFormats;   // baseIndex << 2 | kind -> index
    Format m_lastFormat;
    quint32 m_lastIndex = 0;
    bool m_lastValid = false;
};

} // namespace QXlsx::detail
