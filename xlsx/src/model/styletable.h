#pragma once

#include "rawelement.h"
#include "xlsxformat.h"

#include <QByteArray>
#include <QHash>

#include <vector>

namespace QXlsx::detail {

// The workbook's cell formats. A cell stores the index of its format here; index 0 is
// the default format. Writers tend to pass the same Format object for millions of cells,
// so the last format looked up is remembered and found again without hashing.
class StyleTable
{
public:
    StyleTable();

    quint32 indexOf(const Format& format);
    // Adds a format read from a file at the next index, even if an equal one exists,
    // so that the file's style indexes stay valid.
    quint32 append(const Format& format);
    const Format& format(quint32 index) const;
    bool isDateTime(quint32 index) const;
    quint32 count() const { return quint32(m_formats.size()); }

    // What styles.xml held that the table does not model, for the save: the default
    // font (<font> of the file's first font), named styles, differential formats, etc.
    QByteArray defaultFontXml;
    std::vector<RawElement> extraElements;

private:
    std::vector<Format> m_formats;
    std::vector<bool> m_isDateTime;
    QHash<Format, quint32> m_index;
    Format m_lastFormat;
    quint32 m_lastIndex = 0;
};

} // namespace QXlsx::detail
