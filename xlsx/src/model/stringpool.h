#pragma once

#include "largeblock.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace QXlsx::detail {

// The workbook's texts as UTF-8 in one arena. Cells refer to an entry by index. A text
// equal to one added recently shares its entry, so a column of repeated names or
// categories costs one copy each; a text whose twin was added long ago may get an entry
// of its own. Looking every text up in a table of all entries would cost a cache miss
// per new text, the largest part of writing a sheet of distinct values, and a shared
// string table may hold a text twice.
// An entry read from a file with formatted runs keeps the runs' XML so that a save
// writes the rich text back; its plain text is what cells show.
class StringPool
{
public:
    StringPool();
    ~StringPool();
    StringPool(const StringPool&) = delete;
    StringPool& operator=(const StringPool&) = delete;

    // The entry of a recently added equal text, or a new entry.
    quint32 add(QStringView text);
    quint32 add(const char* utf8, int size);
    // A new entry, without looking for an equal one: for texts that come distinct, such
    // as a file's shared string table.
    quint32 append(const char* utf8, int size);
    // A rich text entry: its plain text and the <si> children as read. Never shared.
    quint32 addRich(const QString& plainText, const QByteArray& runsXml);

    // An entry that cells refer to more than once gives the same QString every time,
    // made on first use and kept (QString is implicitly shared), so reading a column of
    // repeated texts makes each text once; other entries give a new QString each call.
    // The kept texts make text() unsafe to call from two threads at once.
    QString text(quint32 index) const;
    // Counts one more cell referring to the entry; only whether it is more than one
    // matters, for text().
    void noteUse(quint32 index)
    {
        if (index >= m_uses.size())
            m_uses.resize(std::max(size_t(index) + 1, size_t(count())));
        quint8& uses = m_uses[index];
        uses = quint8(uses + (uses < 2));
    }
    // The UTF-8 bytes of an entry, unescaped; they stay where they are until clear().
    const char* utf8(quint32 index, int* size) const;
    bool isRich(quint32 index) const;
    QByteArray richXml(quint32 index) const;
    quint32 count() const { return m_count; }
    // The size of the longest entry in UTF-8 bytes, so that a writer learns without a
    // look at every entry that none is over a limit.
    int longestText() const { return m_longest; }
    // Longest text an entry holds, in UTF-8 bytes; longer texts are cut at a character.
    static constexpr int MaxTextBytes = (1 << 24) - 1;
    void clear();

private:
    quint32 insert(const char* utf8, int size, quint32 hash);
    quint64 store(const char* utf8, int size);
    void pushEntry(quint64 offset);
    void addEntryChunk();
    quint64 offsetOf(quint32 index) const
    {
        return m_groupStarts[index >> GroupBits]
            + m_entryChunks[index >> EntryChunkBits][index & (EntryChunkSize - 1)];
    }
    QString decodedText(quint32 index) const;
    const char* at(quint64 offset) const
    {
        return m_chunks[size_t(offset >> ChunkBits)] + (offset & (ChunkSize - 1));
    }

    // The arena is a list of fixed chunks rather than one growing buffer: adding never
    // moves the texts already stored, and a large pool never holds its old and new
    // copies at once while growing. Chunks come in blocks that double up to
    // MaxBlockChunks, so a small workbook stays small and a big one gets large pages; a
    // text longer than a block gets a block of its own. A block spans as many chunk
    // numbers as it holds, so every offset maps to an address with one shift.
    static constexpr int ChunkBits = 16;
    static constexpr quint64 ChunkSize = quint64(1) << ChunkBits;
    static constexpr size_t MaxBlockChunks = 64;
    struct Block
    {
        char* data;
        size_t bytes;
    };
    std::vector<Block> m_blocks;
    std::vector<char*> m_chunks;
    quint64 m_used = 0;                        // arena offset of the next free byte
    int m_longest = 0;

    // Where each entry's text starts in the arena, its length in front of it. Four bytes
    // an entry rather than eight, a tenth of a sheet of short texts: an entry holds its
    // offset from the start of its group of 2^GroupBits entries, whose texts lie in
    // order and span less than 4 GiB. The offsets are kept in fixed chunks, so a growing
    // table never holds an old and a new copy at once.
    static constexpr int GroupBits = 7;
    static constexpr int EntryChunkBits = 16;
    static constexpr quint32 EntryChunkSize = quint32(1) << EntryChunkBits;
    std::vector<quint64> m_groupStarts;
    std::vector<quint32*> m_entryChunks;
    std::vector<Block> m_entryBlocks;   // the first chunks alone, then large pages of them
    quint32 m_count = 0;
    // The recently added texts, direct mapped by hash: a slot holds the entry's hash
    // above its index + 1 (0 = free), so a miss never looks at a text. Small enough to
    // stay in the processor's cache.
    static constexpr size_t RecentSlots = size_t(1) << 14;
    std::unique_ptr<quint64[]> m_recent;
    std::vector<char> m_utf8;                  // reused conversion buffer of add(QStringView)
    std::vector<std::pair<quint32, QByteArray>> m_rich;   // sorted by entry index
    std::vector<quint8> m_uses;                // per entry, cells referring to it (2 = more)
    mutable std::vector<QString> m_sharedTexts;   // of entries used more than once, or empty
};

} // namespace QXlsx::detail
