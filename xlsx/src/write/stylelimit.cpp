#include "stylelimit.h"

#include "model/formatprivate.h"
#include "model/styletable.h"

#include <QHash>

namespace QXlsx::detail {

namespace {

// Enough for the number formats of any real workbook (Excel itself takes a few hundred);
// a format whose number format finds no place beyond these gets the default record.
constexpr quint32 MaxPlainRecords = 1024;

Format numberFormatOnly(const Format& format)
{
    const FormatPrivate& f = FormatPrivate::of(format);
    Format plain;
    if (!f.numFmtCode.isEmpty())
        plain.setNumberFormat(f.numFmtCode);
    else if (f.numFmtId != 0)
        plain.setNumberFormatIndex(f.numFmtId);
    return plain;
}

} // namespace

WrittenStyles::WrittenStyles(const StyleTable& styles)
    : m_styles(styles)
{
    // A saved table that is empty has the default record.
    const quint32 count = qMax<quint32>(1, styles.count());
    if (count <= MaxCellFormats) {
        m_kept = count;
        return;
    }
    // Each plain record takes the place of a kept format, which may bring one more
    // number format past the kept ones; the places needed only grow, up to a bound.
    quint32 reserved = 0;
    while (!plan(MaxCellFormats - reserved))
        reserved = quint32(m_plain.size());
}

// Plans with the first kept formats written as they are; false when the plain records
// that needs do not fit in the places left.
bool WrittenStyles::plan(quint32 kept)
{
    m_kept = kept;
    m_plain.clear();
    m_records.clear();
    QHash<Format, quint32> plainRecords;
    for (quint32 style = kept; style < m_styles.count(); ++style) {
        const Format plain = numberFormatOnly(m_styles.format(style));
        auto known = plainRecords.constFind(plain);
        if (known == plainRecords.constEnd()) {
            const qint64 existing = m_styles.find(plain);
            quint32 record = 0;
            if (existing >= 0 && existing < kept) {
                record = quint32(existing);
            } else if (m_plain.size() < MaxPlainRecords) {
                record = kept + quint32(m_plain.size());
                m_plain.push_back(plain);
            }
            known = plainRecords.insert(plain, record);
        }
        m_records.push_back(*known);
    }
    return kept + m_plain.size() <= MaxCellFormats;
}

const Format& WrittenStyles::format(quint32 record) const
{
    return record < m_kept ? m_styles.format(record) : m_plain[record - m_kept];
}

} // namespace QXlsx::detail
