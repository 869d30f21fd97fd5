#pragma once

#include "xlsxformat.h"

#include <vector>

namespace QXlsx::detail {

class StyleTable;

// Excel opens a workbook of at most 64,000 cell formats; with more it repairs the file.
constexpr quint32 MaxCellFormats = 64000;

// The cell format records a save writes, and the record of each style index of the table.
// Within the limit they are the table itself. Beyond it the first formats are written as
// they are and each later one as its number format alone, one record per number format
// in the last places, so that every value is saved and a date still shows as a date;
// the later formats' fonts, fills, borders and alignment are dropped.
class WrittenStyles
{
public:
    explicit WrittenStyles(const StyleTable& styles);

    quint32 count() const { return m_kept + quint32(m_plain.size()); }
    const Format& format(quint32 record) const;
    // The record a cell, row or column of this style index gets; runs once per cell.
    quint32 recordOf(quint32 style) const
    {
        if (style < m_kept || m_records.empty())
            return style;
        const size_t at = style - m_kept;
        return at < m_records.size() ? m_records[at] : 0;
    }
    // Formats of the table that were written as their number format alone.
    quint32 droppedCount() const { return quint32(m_records.size()); }

private:
    bool plan(quint32 kept);

    const StyleTable& m_styles;
    quint32 m_kept = 0;
    std::vector<Format> m_plain;       // records after the kept formats
    std::vector<quint32> m_records;    // the record of each style index from m_kept on
};

} // namespace QXlsx::detail
