#include "stringpool.h"

#include <algorithm>
#include <cstring>

namespace QXlsx::detail {

namespace {

constexpr int LengthBits = 24;
constexpr quint64 LengthMask = (quint64(1) << LengthBits) - 1;

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
    quint64 tail = 0;
    std::memcpy(&tail, p, size_t(size));
    h = (h ^ tail) * 0x94D049BB133111EBull;
    h ^= h >> 29;
    h *= 0xBF58476D1CE4E5B9ull;
    h ^= h >> 32;
    return quint32(h);
}

// Qt 5 has no way to encode UTF-16 into a caller's buffer (toUtf8 allocates a new
// QByteArray each time), and this runs once per text cell written. out must have room
// for 3 bytes per UTF-16 unit. A lone surrogate, which UTF-8 cannot carry, becomes U+FFFD.
int encodeUtf8(QStringView text, char* out)
{
    char* o = out;
    const char16_t* p = text.utf16();
    const char16_t* end = p + text.size();
    while (p != end) {
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
            c = 0xFFFD;
        }
        *o++ = char(0xE0 | (c >> 12));
        *o++ = char(0x80 | ((c >> 6) & 0x3F));
        *o++ = char(0x80 | (c & 0x3F));
    }
    return int(o - out);
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
    const quint32 index = count();
    m_offsets.push_back(store(bytes.constData(), size) << LengthBits | quint64(size));
    m_rich.emplace_back(index, runsXml);
    return index;
}

quint32 StringPool::append(const char* utf8, int size)
{
    size = clampLength(utf8, std::max(size, 0));
    const quint32 index = count();
    m_offsets.push_back(store(utf8, size) << LengthBits | quint64(size));
    return index;
}

// The slot where text is or would go; index gets its entry if it is there.
size_t StringPool::findSlot(const char* utf8, int size, quint32 hash, quint32* index) const
{
    const size_t mask = m_slots.size() - 1;
    size_t pos = hash & mask;
    while (const quint64 slot = m_slots[pos]) {
        if (quint32(slot >> 32) == hash) {
            const quint32 candidate = quint32(slot) - 1;
            const quint64 entry = m_offsets[candidate];
            if (int(entry & LengthMask) == size
                && (size == 0 || std::memcmp(at(entry >> LengthBits), utf8, size_t(size)) == 0)) {
                *index = candidate;
                return pos;
            }
        }
        pos = (pos + 1) & mask;
    }
    return pos;
}

// Grown at 80 % full: with the hash in the slot, probing a little further is cheaper
// than the memory a sparser table would touch.
static bool needsGrowth(size_t entries, size_t slots)
{
    return entries * 5 > slots * 4;
}

quint32 StringPool::insert(const char* utf8, int size, quint32 hash)
{
    if (m_indexed < count())
        indexAppended();
    if (needsGrowth(m_offsets.size() + 1, m_slots.size()))
        rehash(std::max<size_t>(m_slots.size() * 2, 1024));
    quint32 found = 0;
    const size_t pos = findSlot(utf8, size, hash, &found);
    if (m_slots[pos])
        return found;
    const quint32 index = count();
    m_offsets.push_back(store(utf8, size) << LengthBits | quint64(size));
    m_slots[pos] = quint64(hash) << 32 | (index + 1);
    m_indexed = count();
    return index;
}

// Entries appended since the last lookup join the table, rich ones excepted.
void StringPool::indexAppended()
{
    size_t slots = std::max<size_t>(m_slots.size(), 1024);
    while (needsGrowth(m_offsets.size() + 1, slots))
        slots *= 2;
    if (slots != m_slots.size())
        rehash(slots);
    auto rich = std::lower_bound(m_rich.begin(), m_rich.end(), m_indexed,
                                 [](const auto& e, quint32 i) { return e.first < i; });
    for (quint32 index = m_indexed; index < count(); ++index) {
        if (rich != m_rich.end() && rich->first == index) {
            ++rich;
            continue;
        }
        const quint64 entry = m_offsets[index];
        const int size = int(entry & LengthMask);
        const char* text = size ? at(entry >> LengthBits) : "";
        const quint32 hash = hashBytes(text, size);
        quint32 found = 0;
        const size_t pos = findSlot(text, size, hash, &found);
        if (!m_slots[pos])
            m_slots[pos] = quint64(hash) << 32 | (index + 1);
    }
    m_indexed = count();
}

void StringPool::rehash(size_t slotCount)
{
    std::vector<quint64> old(slotCount, 0);
    old.swap(m_slots);
    const size_t mask = slotCount - 1;
    for (const quint64 slot : old) {
        if (!slot)
            continue;
        size_t pos = size_t(slot >> 32) & mask;
        while (m_slots[pos])
            pos = (pos + 1) & mask;
        m_slots[pos] = slot;
    }
}

quint64 StringPool::store(const char* utf8, int size)
{
    if (size == 0)
        return m_used;
    const quint64 inChunk = m_used & (ChunkSize - 1);
    const bool full = (m_used >> ChunkBits) >= m_chunks.size();
    if (full || inChunk + quint64(size) > ChunkSize) {
        const size_t chunkCount = (size_t(size) + ChunkSize - 1) >> ChunkBits;
        const size_t blockSize = chunkCount == 1 ? size_t(ChunkSize) : size_t(size);
        m_blocks.emplace_back(new char[blockSize]);
        for (size_t i = 0; i < chunkCount; ++i)
            m_chunks.push_back(m_blocks.back().get() + (i << ChunkBits));
        m_used = quint64(m_chunks.size() - chunkCount) << ChunkBits;
    }
    const quint64 offset = m_used;
    std::memcpy(const_cast<char*>(at(offset)), utf8, size_t(size));
    m_used += quint64(size);
    // A block of its own is never shared with the next text.
    if (size_t(size) > ChunkSize)
        m_used = quint64(m_chunks.size()) << ChunkBits;
    return offset;
}

QString StringPool::text(quint32 index) const
{
    int size = 0;
    const char* bytes = utf8(index, &size);
    return QString::fromUtf8(bytes, size);
}

const char* StringPool::utf8(quint32 index, int* size) const
{
    if (index >= count()) {
        *size = 0;
        return "";
    }
    const quint64 entry = m_offsets[index];
    *size = int(entry & LengthMask);
    return *size ? at(entry >> LengthBits) : "";
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
    m_blocks.clear();
    m_chunks.clear();
    m_used = 0;
    m_offsets.clear();
    m_slots.clear();
    m_indexed = 0;
    m_rich.clear();
}

} // namespace QXlsx::detail
