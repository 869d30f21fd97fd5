#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <vector>

namespace QXlsx::detail {

// The workbook's texts, each stored once as UTF-8 in one arena. Cells refer to an entry
// by index; equal texts share an entry, so a column of repeated names costs one copy.
// An entry read from a file with formatted runs keeps the runs' XML so that a save
// writes the rich text back; its plain text is what cells show.
class StringPool
{
public:
    StringPool();

    // The entry of text, added when new.
    quint32 add(QStringView text);
    quint32 add(const char* utf8, int size);
    // A rich text entry: its plain text and the <si> children as read. Never shared.
    quint32 addRich(const QString& plainText, const QByteArray& runsXml);

    QString text(quint32 index) const;
    // The UTF-8 bytes of an entry, unescaped; valid until the next add.
    const char* utf8(quint32 index, int* size) const;
    bool isRich(quint32 index) const;
    QByteArray richXml(quint32 index) const;
    quint32 count() const { return quint32(m_offsets.size()); }
    void clear();

private:
    quint32 find(const char* utf8, int size, quint32 hash) const;
    void grow();

    std::vector<char> m_arena;                 // all entries, back to back
    std::vector<quint64> m_offsets;            // start in the arena << 24 | length (texts < 16 MiB)
    std::vector<quint32> m_slots;              // open addressing table of index + 1; 0 = free
    std::vector<std::pair<quint32, QByteArray>> m_rich;   // sorted by entry index
};

} // namespace QXlsx::detail
