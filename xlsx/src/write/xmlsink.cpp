#include "xmlsink.h"

#include "zip/zipwriter.h"

#include <array>
#include <charconv>
#include <cmath>

namespace QXlsx::detail {

namespace {

// What a byte needs before it can go into the XML: 0 nothing; otherwise handled one
// by one in appendEscaped. Tab and line feed are plain in element content, but an
// attribute value would have them normalised to blanks.
enum ByteClass : quint8 { Plain = 0, Special = 1 };

constexpr std::array<quint8, 256> byteClasses(bool attribute)
{
    std::array<quint8, 256> t {};
    for (int c = 0; c < 0x20; ++c)
        t[size_t(c)] = Special;
    if (!attribute) {
        t['\t'] = Plain;
        t['\n'] = Plain;
    }
    t['&'] = Special;
    t['<'] = Special;
    t['>'] = Special;
    t['_'] = Special;     // may start a literal _xHHHH_
    t[0xEF] = Special;    // may start U+FFFE or U+FFFF
    t[0xED] = Special;    // may start a lone surrogate kept by the string pool
    if (attribute)
        t['"'] = Special;
    return t;
}

constexpr std::array<quint8, 256> TextClasses = byteClasses(false);
constexpr std::array<quint8, 256> AttributeClasses = byteClasses(true);

bool isHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The three bytes of a UTF-16 surrogate encoded on its own, as the string pool keeps a
// lone one: its unit, or 0.
unsigned loneSurrogateAt(const char* p, size_t left)
{
    if (left < 3 || quint8(p[1]) < 0xA0 || (quint8(p[2]) & 0xC0) != 0x80)
        return 0;
    return 0xD000 | (quint8(p[1]) & 0x3Fu) << 6 | (quint8(p[2]) & 0x3Fu);
}

bool startsEscape(const char* p, size_t left)
{
    return left >= 7 && p[1] == 'x' && isHex(p[2]) && isHex(p[3]) && isHex(p[4])
           && isHex(p[5]) && p[6] == '_';
}

} // namespace

// Every cell writes one or two numbers (its style, its shared string), so the digits are
// placed from the end, two at a time from a table, once their count is known: a third
// of the divisions and no reversing copy.
char* writeUInt(char* out, quint64 value)
{
    static constexpr char Pairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    int count = 1;
    for (quint64 bound = 10; count < 20 && value >= bound; bound *= 10)
        ++count;
    char* end = out + count;
    char* p = end;
    while (value >= 100) {
        const size_t pair = size_t(value % 100) * 2;
        value /= 100;
        p -= 2;
        std::memcpy(p, Pairs + pair, 2);
    }
    if (value >= 10)
        std::memcpy(p - 2, Pairs + size_t(value) * 2, 2);
    else
        p[-1] = char('0' + value);
    return end;
}

XmlSink::XmlSink(Drain drain)
    : m_drain(std::move(drain)), m_buffer(new char[Capacity])
{
    m_pos = m_buffer.get();
    m_end = m_pos + Capacity;
}

XmlSink::XmlSink(ZipWriter& zip)
    : XmlSink([&zip](const char* data, qint64 size) { return zip.write(data, size); })
{
}

XmlSink::XmlSink(QByteArray& target)
    : XmlSink([&target](const char* data, qint64 size) {
          target.append(data, int(size));
          return true;
      })
{
}

bool XmlSink::flush()
{
    const qint64 used = m_pos - m_buffer.get();
    if (used > 0 && m_ok)
        m_ok = m_drain(m_buffer.get(), used);
    m_pos = m_buffer.get();
    return m_ok;
}

void XmlSink::appendLong(const char* data, size_t size)
{
    while (size > 0) {
        if (m_pos == m_end)
            flush();
        const size_t n = qMin(size, size_t(m_end - m_pos));
        std::memcpy(m_pos, data, n);
        m_pos += n;
        data += n;
        size -= n;
    }
}

void XmlSink::appendUInt(quint64 value)
{
    commit(writeUInt(reserve(24), value));
}

void XmlSink::appendNumber(double value)
{
    char* out = reserve(32);
    // Shortest text that reads back as the same double, and never a locale's comma.
    commit(std::to_chars(out, out + 32, value).ptr);
}

void XmlSink::appendText(const char* utf8, size_t size) { appendEscaped(utf8, size, false); }

bool XmlSink::copyPlain(char* out, const char* utf8, size_t size)
{
    for (size_t i = 0; i < size; ++i) {
        const char c = utf8[i];
        if (TextClasses[quint8(c)] != Plain)
            return false;
        out[i] = c;
    }
    return true;
}

void XmlSink::appendText(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    appendEscaped(utf8.constData(), size_t(utf8.size()), false);
}

void XmlSink::appendAttribute(const char* utf8, size_t size) { appendEscaped(utf8, size, true); }

void XmlSink::appendAttribute(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    appendEscaped(utf8.constData(), size_t(utf8.size()), true);
}

void XmlSink::appendUnitEscape(unsigned unit)
{
    static const char hex[] = "0123456789ABCDEF";
    const char escape[7] = {'_', 'x', hex[(unit >> 12) & 15], hex[(unit >> 8) & 15],
                            hex[(unit >> 4) & 15], hex[unit & 15], '_'};
    append(escape, 7);
}

void XmlSink::appendEscaped(const char* s, size_t size, bool attribute)
{
    const std::array<quint8, 256>& classes = attribute ? AttributeClasses : TextClasses;
    size_t i = 0;
    while (i < size) {
        const size_t start = i;
        while (i < size && classes[quint8(s[i])] == Plain)
            ++i;
        append(s + start, i - start);
        if (i == size)
            break;

        const quint8 c = quint8(s[i]);
        switch (c) {
        case '&': literal("&amp;"); break;
        case '<': literal("&lt;"); break;
        case '>': literal("&gt;"); break;
        case '"': literal("&quot;"); break;
        case '\t': literal("&#9;"); break;
        case '\n': literal("&#10;"); break;
        // A raw carriage return would come back as a line feed from any XML parser.
        case '\r': literal("&#13;"); break;
        case '_':
            if (startsEscape(s + i, size - i))
                literal("_x005F_");
            else
                literal("_");
            break;
        case 0xEF:
            if (i + 2 < size && quint8(s[i + 1]) == 0xBF
                && (quint8(s[i + 2]) == 0xBE || quint8(s[i + 2]) == 0xBF)) {
                if (quint8(s[i + 2]) == 0xBE)
                    literal("_xFFFE_");
                else
                    literal("_xFFFF_");
                i += 2;
            } else {
                append(s + i, 1);
            }
            break;
        case 0xED:
            // XML cannot carry a surrogate; the escape gives a reader the unit back.
            if (const unsigned unit = loneSurrogateAt(s + i, size - i)) {
                appendUnitEscape(unit);
                i += 2;
            } else {
                append(s + i, 1);
            }
            break;
        default:
            // The other control characters: not allowed in XML 1.0 at all.
            appendUnitEscape(c);
            break;
        }
        ++i;
    }
}

} // namespace QXlsx::detail
