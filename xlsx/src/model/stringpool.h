#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <memory>
#include <utility>
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
    // A new entry, without looking for an equal one: for texts that come distinct, such
    // as a file's shared string table, whose readers mostly never look a text up. The
    // entry joins the lookup table when add() next needs it (a text appended twice
    // then has two entries, and add() finds the first).
    quint32 append(const char* utf8, int size);
    // Room for this many entries in all, so that a table of known size never regrows.
    void reserve(quint32 entries) { m_offsets.reserve(entries); }
    // A rich text entry: its plain text and the <si> children as read. Never shared.
    quint32 addRich(const QString& plainText, const QByteArray& runsXml);

    QString text(quint32 index) const;
    // The UTF-8 bytes of an entry, unescaped; they stay where they are until clear().
    const char* utf8(quint32 index, int* size) const;
    bool isRich(quint32 index) const;
    QByteArray richXml(quint32 index) const;
    quint32 count() const { return quint32(m_offsets.size()); }
    // Longest text an entry holds, in UTF-8 bytes; longer texts are cut at a character.
    static constexpr int MaxTextBytes = (1 << 24) - 1;
    void clear();

private:
    quint32 insert(const char* utf8, int size, quint32 hash);
    void indexAppended();
    size_t findSlot(const char* utf8, int size, quint32 hash, quint32* index) const;
    void rehash(size_t slotCount);
    quint64 store(const char* utf8, int size);
    const char* at(quint64 offset) const
    {
        return m_chunks[size_t(offset >> ChunkBits)] + (offset & (ChunkSize - 1));
    }

    // The arena is a list of fixed chunks rather than one growing buffer: adding never
    // moves the texts already stored, and a large pool never holds its old and new
    // copies at once while growing. A text longer than a chunk gets a block of its own
    // that spans as many chunk numbers as it needs, so every offset maps to an address
    // with one shift.
    static constexpr int ChunkBits = 16;
    static constexpr quint64 ChunkSize = quint64(1) << ChunkBits;
    std::vector<std::unique_ptr<char[]>> m_blocks;
    std::vector<char*> m_chunks;
    quint64 m_used = 0;                        // arena offset of the next free byte

    std::vector<quint64> m_offsets;            // start in the arena << 24 | length (texts < 16 MiB)
    // Open addressing with linear probing. A slot holds the low 32 bits of the entry's
    // hash above its index + 1 (0 = free): a probe rarely has to look at the text
    // itself, one cache line serves a probe, and growing never rereads the texts.
    std::vector<quint64> m_slots;
    quint32 m_indexed = 0;                     // entries before this one are in m_slots (or rich)
    std::vector<char> m_utf8;                  // reused conversion buffer of add(QStringView)
    std::vector<std::pair<quint32, QByteArray>> m_rich;   // sorted by entry index
};

} // namespace QXlsx::detail
