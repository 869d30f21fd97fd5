#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>
#include <functional>
#include <memory>

namespace QXlsx::detail {

class ZipWriter;

// The output of a part generator: a fixed buffer that is handed on (to a zip entry, or
// to a QByteArray in tests) whenever it fills, so that a part of any size costs the same
// memory and the hot loops append with a bounds check and a memcpy, nothing more.
class XmlSink
{
public:
    using Drain = std::function<bool(const char* data, qint64 size)>;
    static constexpr size_t Capacity = 256 * 1024;
    // Room a caller may ask of reserve() at once.
    static constexpr size_t MaxReserve = 4096;

    explicit XmlSink(Drain drain);
    explicit XmlSink(ZipWriter& zip);
    explicit XmlSink(QByteArray& target);

    // A pointer to at least n free bytes (n <= MaxReserve); commit() what was written.
    char* reserve(size_t n)
    {
        if (size_t(m_end - m_pos) < n)
            flush();
        return m_pos;
    }
    void commit(char* end) { m_pos = end; }

    void append(const char* data, size_t size)
    {
        if (size_t(m_end - m_pos) >= size) {
            std::memcpy(m_pos, data, size);
            m_pos += size;
        } else {
            appendLong(data, size);
        }
    }
    template<size_t N>
    void literal(const char (&text)[N]) { append(text, N - 1); }
    void append(const QByteArray& bytes) { append(bytes.constData(), size_t(bytes.size())); }
    void appendUInt(quint64 value);
    void appendNumber(double value);

    // UTF-8 text escaped for element content or for a double-quoted attribute value.
    // Characters XML 1.0 cannot carry become _xHHHH_ (a lone surrogate as the string
    // pool keeps it as well), and an underscore that would otherwise start such an
    // escape becomes _x005F_, so a reader gets the text back.
    void appendText(const char* utf8, size_t size);
    // open, the text and close as they are when all three fit MaxReserve bytes and
    // none of them needs escaping (most shared strings): one bounds check and one pass
    // that copies as it checks. False, with nothing written, otherwise.
    template<size_t N, size_t M>
    bool appendPlainElement(const char (&open)[N], const char* utf8, size_t size, const char (&close)[M])
    {
        if (size > MaxReserve - (N - 1) - (M - 1))
            return false;
        char* p = reserve(N - 1 + size + M - 1);
        std::memcpy(p, open, N - 1);
        if (!copyPlain(p + N - 1, utf8, size))
            return false;
        std::memcpy(p + N - 1 + size, close, M - 1);
        commit(p + N - 1 + size + M - 1);
        return true;
    }
    void appendText(const QString& text);
    void appendAttribute(const char* utf8, size_t size);
    void appendAttribute(const QString& text);

    // Hands the buffered bytes on; false once the drain has failed.
    bool flush();
    bool ok() const { return m_ok; }

private:
    static bool copyPlain(char* out, const char* utf8, size_t size);
    void appendLong(const char* data, size_t size);
    void appendEscaped(const char* utf8, size_t size, bool attribute);
    void appendUnitEscape(unsigned unit);

    Drain m_drain;
    std::unique_ptr<char[]> m_buffer;
    char* m_pos = nullptr;
    char* m_end = nullptr;
    bool m_ok = true;
};

// Decimal digits of value written at out; returns the end. out needs 20 bytes.
char* writeUInt(char* out, quint64 value);

} // namespace QXlsx::detail
