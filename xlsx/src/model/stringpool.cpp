#include "stringpool.h"

#include <algorithm>
#include <cstring>

namespace QXlsx::detail {

namespace {

// A text's length goes in front of it, seven bits a byte, low bits first, the top bit
// set on all bytes but the last: one byte for texts up to 127 bytes.
constexpr int MaxLengthBytes = 4;   // texts are shorter than 2^24 bytes

int writeLength(char* out, quint32 size)
{
    int n = 0;
    while (size >= 0x80) {
        out[n++] = char(0x80 | (size & 0x7F));
        size >>= 7;
    }
    out[n++] = char(size);
    return n;
}

const char* readLength(const char* p, int* size)
{
    quint32 value = 0;
    for (int shift = 0;; shift += 7) {
        const quint8 byte = quint8(*p++);
        value |= quint32(byte & 0x7F) << shift;
        if (byte < 0x80)
            break;
    }
    *size = int(value);
    return p;
}

// A small multiply-xorshift hash over 8 bytes at a time. Texts in the pool are short
// and numerous, and qHashBits in Qt 5 walks them a byte at a time.
quint32 hashBytes(const char* p, int size)
{
    quint64 h = 0x9E3779B97F4A7C15ull ^ quint64(size);
    while (size >= 8) {
        quint64 word;
        std::memcpy(&word, p, 8);
        h = (h ^ word) * 0xBF58476D1CE4E5B9ull;
        h ^= h >> 31;
        p += 8;
        size -= 8;
    }
    // The last bytes one at a time: a copy of a variable length would be a library call.
    quint64 tail = 0;
    for (int i = 0; i < size; ++i)   // an empty text may come without bytes: p is then null
        tail |= quint64(quint8(p[i])) << (8 * i);
    h = (h ^ tail) * 0x94D049BB133111EBull;
    h ^= h >> 29;
    h *= 0xBF58476D1CE4E5B9ull;
    h ^= h >> 32;
    return quint32(h);
}

// Qt 5 has no way to encode UTF-16 into a caller's buffer (toUtf8 allocates a new
// QByteArray each time), and this runs once per text cell written. out must have room
// for 3 bytes per UTF-16 unit. A lone surrogate, which UTF-8 cannot carry, is encoded
// on its own in three bytes as if it were a character (ED A0..BF xx, as WTF-8 does), so
// that the pool keeps it: the writer turns it into an _xHHHH_ escape and text() gives
// it back.
int encodeUtf8(QStringView text, char* out)
{
    char* o = out;
    const char16_t* p = text.utf16();
    const char16_t* end = p + text.size();
    while (p != end) {
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        // Most texts are ASCII: four units at a time while they are.
        while (end - p >= 4) {
            quint64 units;
            std::memcpy(&units, p, 8);
            if (units & 0xFF80FF80FF80FF80ull)
                break;
            // The four low bytes packed together and stored at once.
            units = (units | units >> 8) & 0x0000FFFF0000FFFFull;
            const quint32 bytes = quint32(units | units >> 16);
            std::memcpy(o, &bytes, 4);
            o += 4;
            p += 4;
        }
#endif
        if (p == end)
            break;
        char32_t c = *p++;
        if (c < 0x80) {
            *o++ = char(c);
            continue;
        }
        if (c < 0x800) {
            *o++ = char(0xC0 | (c >> 6));
            *o++ = char(0x80 | (c & 0x3F));
            continue;
        }
        if (c >= 0xD800 && c <= 0xDFFF) {
            if (c <= 0xDBFF && p != end && *p >= 0xDC00 && *p <= 0xDFFF) {
                c = 0x10000 + ((c - 0xD800) << 10) + (*p++ - 0xDC00);
                *o++ = char(0xF0 | (c >> 18));
                *o++ = char(0x80 | ((c >> 12) & 0x3F));
                *o++ = char(0x80 | ((c >> 6) & 0x3F));
                *o++ = char(0x80 | (c & 0x3F));
                continue;
            }
        }
        *o++ = char(0xE0 | (c >> 12));
        *o++ = char(0x80 | ((c >> 6) & 0x3F));
        *o++ = char(0x80 | (c & 0x3F));
    }
    return int(o - out);
}

// Where the bytes hold a lone surrogate (ED A0..BF xx), or null. The characters from
// U+D000 to U+D7FF, Hangul among them, start with ED as well, followed by 80..9F.
const char* findLoneSurrogate(const char* p, const char* end)
{
    while (end - p >= 3) {
        p = static_cast<const char*>(std::memchr(p, 0xED, size_t(end - p - 2)));
        if (!p)
            return nullptr;
        if (quint8(p[1]) >= 0xA0)
            return p;
        ++p;
    }
    return nullptr;
}

bool isAscii(const char* p, int size)
{
    quint64 bits = 0;
    for (; size >= 8; p += 8, size -= 8) {
        quint64 word;
        std::memcpy(&word, p, 8);
        bits |= word;
    }
    for (; size > 0; ++p, --size)
        bits |= quint8(*p);
    return (bits & 0x8080808080808080ull) == 0;
}

// Most cells hold ASCII, which reads the same as Latin-1: Qt widens that sixteen bytes at
// a time, where its UTF-8 decoder costs several times as much for the short texts of a
// sheet.
QString widenedAscii(const char* p, int size)
{
    if (size == 0)
        return QString::fromUtf8(p, 0);   // empty, not null, as every text of the pool
    return QString::fromLatin1(p, size);
}

// A cut that does not split a character.
int clampLength(const char* utf8, int size)
{
    if (size <= StringPool::MaxTextBytes)
        return size;
    int cut = StringPool::MaxTextBytes;
    while (cut > 0 && (quint8(utf8[cut]) & 0xC0) == 0x80)
        --cut;
    return cut;
}

} // namespace

StringPool::StringPool() = default;

StringPool::~StringPool()
{
    clear();
}

quint32 StringPool::add(QStringView text)
{
    const size_t room = size_t(text.size()) * 3;
    if (m_utf8.size() < room)
        m_utf8.resize(std::max(room, size_t(256)));
    const int size = clampLength(m_utf8.data(), encodeUtf8(text, m_utf8.data()));
    return insert(m_utf8.data(), size, hashBytes(m_utf8.data(), size));
}

quint32 StringPool::add(const char* utf8, int size)
{
    size = clampLength(utf8, std::max(size, 0));
    return insert(utf8, size, hashBytes(utf8, size));
}

quint32 StringPool::addRich(const QString& plainText, const QByteArray& runsXml)
{
    const QByteArray bytes = plainText.toUtf8();
    const int size = clampLength(bytes.constData(), bytes.size());
    m_longest = std::max(m_longest, size);
    const quint32 index = count();
    pushEntry(store(bytes.constData(), size));
    m_rich.emplace_back(index, runsXml);
    return index;
}

quint32 StringPool::append(const char* utf8, int size)
{
    size = clampLength(utf8, std::max(size, 0));
    m_longest = std::max(m_longest, size);
    const quint32 index = count();
    pushEntry(store(utf8, size));
    return index;
}

quint32 StringPool::insert(const char* utf8, int size, quint32 hash)
{
    if (!m_recent)
        m_recent.reset(new quint64[RecentSlots]());
    quint64& slot = m_recent[hash & (RecentSlots - 1)];
    if (slot && quint32(slot >> 32) == hash) {
        const quint32 candidate = quint32(slot) - 1;
        int candidateSize = 0;
        const char* candidateText = readLength(at(offsetOf(candidate)), &candidateSize);
        if (candidateSize == size
            && (size == 0 || std::memcmp(candidateText, utf8, size_t(size)) == 0))
            return candidate;
    }
    const quint32 index = append(utf8, size);
    slot = quint64(hash) << 32 | (index + 1);
    return index;
}

void StringPool::pushEntry(quint64 offset)
{
    const quint32 index = m_count;
    if ((index & (EntryChunkSize - 1)) == 0)
        addEntryChunk();
    if ((index & ((quint32(1) << GroupBits) - 1)) == 0)
        m_groupStarts.push_back(offset);
    m_entryChunks.back()[index & (EntryChunkSize - 1)] = quint32(offset - m_groupStarts.back());
    ++m_count;
}

// A small table takes a chunk at a time; past two chunks they come a large page's worth
// at once, since first touches of 4 KiB pages were a tenth of reading the shared strings.
void StringPool::addEntryChunk()
{
    constexpr size_t ChunkBytes = EntryChunkSize * sizeof(quint32);
    constexpr size_t ChunksPerBlock = LargePageSize / ChunkBytes;
    constexpr size_t SingleChunks = 2;
    const size_t chunk = m_entryChunks.size();
    const size_t inBlock = chunk < SingleChunks ? 0 : (chunk - SingleChunks) % ChunksPerBlock;
    if (inBlock == 0) {
        const size_t bytes = chunk < SingleChunks ? ChunkBytes : LargePageSize;
        m_entryBlocks.push_back({static_cast<char*>(allocateLarge(bytes)), bytes});
    }
    m_entryChunks.push_back(reinterpret_cast<quint32*>(m_entryBlocks.back().data + inBlock * ChunkBytes));
}

// Stores a text with its length in front and gives the offset of the length.
quint64 StringPool::store(const char* utf8, int textSize)
{
    char length[MaxLengthBytes];
    const int lengthSize = writeLength(length, quint32(textSize));
    const int size = lengthSize + textSize;
    const quint64 inChunk = m_used & (ChunkSize - 1);
    const bool full = (m_used >> ChunkBits) >= m_chunks.size();
    if (full || inChunk + quint64(size) > ChunkSize) {
        // The next chunk of the current block, or a new block.
        const size_t next = size_t(m_used >> ChunkBits) + (inChunk ? 1 : 0);
        if (next < m_chunks.size() && size_t(size) <= ChunkSize) {
            m_used = quint64(next) << ChunkBits;
        } else {
            const size_t needed = (size_t(size) + ChunkSize - 1) >> ChunkBits;
            const size_t grown = std::min(MaxBlockChunks, size_t(1) << std::min<size_t>(m_blocks.size(), 6));
            const size_t chunkCount = std::max(needed, grown);
            const size_t bytes = chunkCount << ChunkBits;
            char* block = static_cast<char*>(allocateLarge(bytes));
            m_blocks.push_back({block, bytes});
            for (size_t i = 0; i < chunkCount; ++i)
                m_chunks.push_back(block + (i << ChunkBits));
            m_used = quint64(m_chunks.size() - chunkCount) << ChunkBits;
        }
    }
    const quint64 offset = m_used;
    char* out = const_cast<char*>(at(offset));
    std::memcpy(out, length, size_t(lengthSize));
    if (textSize)
        std::memcpy(out + lengthSize, utf8, size_t(textSize));
    m_used += quint64(size);
    // A text longer than a chunk is never followed in its last chunk.
    if (size_t(size) > ChunkSize)
        m_used = (((m_used - 1) >> ChunkBits) + 1) << ChunkBits;
    return offset;
}

QString StringPool::text(quint32 index) const
{
    if (index >= m_uses.size() || m_uses[index] < 2)
        return decodedText(index);
    if (m_sharedTexts.size() < m_uses.size())
        m_sharedTexts.resize(m_uses.size());
    QString& kept = m_sharedTexts[index];
    if (kept.isNull())
        kept = decodedText(index);
    return kept;
}

QString StringPool::decodedText(quint32 index) const
{
    int size = 0;
    const char* bytes = utf8(index, &size);
    if (isAscii(bytes, size))
        return widenedAscii(bytes, size);
    const char* end = bytes + size;
    const char* surrogate = findLoneSurrogate(bytes, end);
    if (!surrogate)
        return QString::fromUtf8(bytes, size);
    // QString::fromUtf8 would make each lone surrogate U+FFFD.
    QString text;
    while (surrogate) {
        text += QString::fromUtf8(bytes, int(surrogate - bytes));
        text += QChar(ushort(0xD000 | (quint8(surrogate[1]) & 0x3F) << 6 | (quint8(surrogate[2]) & 0x3F)));
        bytes = surrogate + 3;
        surrogate = findLoneSurrogate(bytes, end);
    }
    text += QString::fromUtf8(bytes, int(end - bytes));
    return text;
}

const char* StringPool::utf8(quint32 index, int* size) const
{
    if (index >= count()) {
        *size = 0;
        return "";
    }
    return readLength(at(offsetOf(index)), size);
}

bool StringPool::isRich(quint32 index) const
{
    const auto it = std::lower_bound(m_rich.begin(), m_rich.end(), index,
                                     [](const auto& e, quint32 i) { return e.first < i; });
    return it != m_rich.end() && it->first == index;
}

QByteArray StringPool::richXml(quint32 index) const
{
    const auto it = std::lower_bound(m_rich.begin(), m_rich.end(), index,
                                     [](const auto& e, quint32 i) { return e.first < i; });
    return it != m_rich.end() && it->first == index ? it->second : QByteArray();
}

void StringPool::clear()
{
    for (const Block& block : m_blocks)
        freeLarge(block.data, block.bytes);
    m_blocks.clear();
    m_chunks.clear();
    m_used = 0;
    m_longest = 0;
    for (const Block& block : m_entryBlocks)
        freeLarge(block.data, block.bytes);
    m_entryBlocks.clear();
    m_groupStarts.clear();
    m_entryChunks.clear();
    m_count = 0;
    m_recent.reset();
    m_rich.clear();
    m_uses.clear();
    m_sharedTexts.clear();
}

} // namespace QXlsx::detail
