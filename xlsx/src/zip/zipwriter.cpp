#include "zipwriter.h"

#include <QIODevice>

#include <zlib.h>

#include <climits>

namespace QXlsx::detail {

namespace {

constexpr quint32 LocalHeaderSignature = 0x04034b50;
constexpr quint32 DataDescriptorSignature = 0x08074b50;
constexpr quint32 CentralHeaderSignature = 0x02014b50;
constexpr quint32 Zip64EndSignature = 0x06064b50;
constexpr quint32 Zip64LocatorSignature = 0x07064b50;
constexpr quint32 EndSignature = 0x06054b50;

constexpr quint16 FlagDataDescriptor = 1 << 3;
constexpr quint16 FlagUtf8Name = 1 << 11;
constexpr quint16 MethodDeflate = 8;
constexpr quint16 VersionDefault = 20;
constexpr quint16 VersionZip64 = 45;
constexpr quint64 Max32 = 0xFFFFFFFFu;
constexpr quint64 Max16 = 0xFFFFu;

constexpr int OutputBufferSize = 256 * 1024;

// Little-endian fields appended to a record under construction.
void le16(QByteArray& b, quint64 v)
{
    const char bytes[2] = {char(v & 0xFF), char((v >> 8) & 0xFF)};
    b.append(bytes, 2);
}

void le32(QByteArray& b, quint64 v)
{
    le16(b, v & 0xFFFF);
    le16(b, (v >> 16) & 0xFFFF);
}

void le64(QByteArray& b, quint64 v)
{
    le32(b, v & Max32);
    le32(b, v >> 32);
}

} // namespace

struct ZipWriter::Deflater
{
    z_stream stream {};
    bool ready = false;
};

ZipWriter::ZipWriter(QIODevice& device, int level)
    : m_device(device), m_deflater(std::make_unique<Deflater>()), m_out(OutputBufferSize)
{
    // Raw deflate (negative window bits): a zip entry carries no zlib header or trailer.
    if (deflateInit2(&m_deflater->stream, level, Z_DEFLATED, -MAX_WBITS, 8,
                     Z_DEFAULT_STRATEGY) == Z_OK)
        m_deflater->ready = true;
    else
        fail(QStringLiteral("cannot start the compressor"));
    setTimestamp(QDateTime::currentDateTime());
}

ZipWriter::~ZipWriter()
{
    if (m_deflater->ready)
        deflateEnd(&m_deflater->stream);
}

void ZipWriter::setTimestamp(const QDateTime& time)
{
    // DOS time cannot go before 1980; two-second resolution.
    const QDate date = time.date().year() < 1980 ? QDate(1980, 1, 1) : time.date();
    const QTime clock = time.date().year() < 1980 ? QTime(0, 0) : time.time();
    m_dosDate = quint16(((date.year() - 1980) << 9) | (date.month() << 5) | date.day());
    m_dosTime = quint16((clock.hour() << 11) | (clock.minute() << 5) | (clock.second() / 2));
}

bool ZipWriter::beginEntry(const QString& name)
{
    if (m_inEntry && !endEntry())
        return false;
    if (hasError() || m_finished)
        return false;

    Entry entry;
    entry.name = name.toUtf8();
    entry.offset = m_offset;
    if (entry.name.isEmpty() || entry.name.size() > int(Max16))
        return fail(QStringLiteral("invalid entry name"));

    QByteArray header;
    header.reserve(30 + entry.name.size());
    le32(header, LocalHeaderSignature);
    le16(header, VersionDefault);
    le16(header, FlagDataDescriptor | FlagUtf8Name);
    le16(header, MethodDeflate);
    le16(header, m_dosTime);
    le16(header, m_dosDate);
    le32(header, 0);   // crc, sizes: in the data descriptor
    le32(header, 0);
    le32(header, 0);
    le16(header, quint64(entry.name.size()));
    le16(header, 0);
    header.append(entry.name);
    m_entries.push_back(std::move(entry));
    if (!put(header))
        return false;

    deflateReset(&m_deflater->stream);
    m_inEntry = true;
    return true;
}

bool ZipWriter::write(const char* data, qint64 size)
{
    if (!m_inEntry || hasError())
        return false;
    Entry& entry = m_entries.back();
    entry.size += quint64(size);
    const char* p = data;
    qint64 left = size;
    // crc32 and deflate take a uInt length.
    while (left > 0) {
        const qint64 n = qMin<qint64>(left, qint64(1) << 30);
        entry.crc = quint32(crc32(entry.crc, reinterpret_cast<const Bytef*>(p), uInt(n)));
        if (!deflateInput(p, n, false))
            return false;
        p += n;
        left -= n;
    }
    return true;
}

bool ZipWriter::deflateInput(const char* data, qint64 size, bool last)
{
    z_stream& z = m_deflater->stream;
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    z.avail_in = uInt(size);
    const int flush = last ? Z_FINISH : Z_NO_FLUSH;
    for (;;) {
        z.next_out = reinterpret_cast<Bytef*>(m_out.data());
        z.avail_out = uInt(m_out.size());
        const int rc = deflate(&z, flush);
        if (rc == Z_STREAM_ERROR)
            return fail(QStringLiteral("compression failed"));
        const qint64 produced = qint64(m_out.size()) - qint64(z.avail_out);
        m_entries.back().compressedSize += quint64(produced);
        if (produced > 0 && !put(m_out.data(), produced))
            return false;
        if (last ? rc == Z_STREAM_END : (z.avail_in == 0 && z.avail_out != 0))
            return true;
    }
}

bool ZipWriter::endEntry()
{
    if (!m_inEntry)
        return !hasError();
    m_inEntry = false;
    if (hasError() || !deflateInput(nullptr, 0, true))
        return false;

    const Entry& entry = m_entries.back();
    const bool zip64 = entry.size > Max32 || entry.compressedSize > Max32;
    QByteArray descriptor;
    le32(descriptor, DataDescriptorSignature);
    le32(descriptor, entry.crc);
    if (zip64) {
        le64(descriptor, entry.compressedSize);
        le64(descriptor, entry.size);
    } else {
        le32(descriptor, entry.compressedSize);
        le32(descriptor, entry.size);
    }
    return put(descriptor);
}

QByteArray ZipWriter::centralDirectoryRecord(const Entry& entry) const
{
    // Values that do not fit move to the zip64 extra field, in this fixed order.
    QByteArray extra;
    if (entry.size >= Max32)
        le64(extra, entry.size);
    if (entry.compressedSize >= Max32)
        le64(extra, entry.compressedSize);
    if (entry.offset >= Max32)
        le64(extra, entry.offset);
    if (!extra.isEmpty()) {
        QByteArray field;
        le16(field, 0x0001);
        le16(field, quint64(extra.size()));
        extra.prepend(field);
    }

    QByteArray r;
    r.reserve(46 + entry.name.size() + extra.size());
    le32(r, CentralHeaderSignature);
    le16(r, extra.isEmpty() ? VersionDefault : VersionZip64);   // made by: MS-DOS
    le16(r, extra.isEmpty() ? VersionDefault : VersionZip64);
    le16(r, FlagDataDescriptor | FlagUtf8Name);
    le16(r, MethodDeflate);
    le16(r, m_dosTime);
    le16(r, m_dosDate);
    le32(r, entry.crc);
    le32(r, qMin(entry.compressedSize, Max32));
    le32(r, qMin(entry.size, Max32));
    le16(r, quint64(entry.name.size()));
    le16(r, quint64(extra.size()));
    le16(r, 0);   // comment length
    le16(r, 0);   // disk number
    le16(r, 0);   // internal attributes
    le32(r, 0);   // external attributes
    le32(r, qMin(entry.offset, Max32));
    r.append(entry.name);
    r.append(extra);
    return r;
}

bool ZipWriter::finish()
{
    if (m_finished)
        return !hasError();
    if (m_inEntry && !endEntry())
        return false;
    m_finished = true;
    if (hasError())
        return false;

    const quint64 directoryOffset = m_offset;
    for (const Entry& entry : m_entries)
        if (!put(centralDirectoryRecord(entry)))
            return false;
    const quint64 directorySize = m_offset - directoryOffset;
    const quint64 count = m_entries.size();

    QByteArray end;
    if (count >= Max16 || directoryOffset >= Max32 || directorySize >= Max32) {
        const quint64 zip64EndOffset = m_offset;
        le32(end, Zip64EndSignature);
        le64(end, 44);                 // size of the rest of this record
        le16(end, VersionZip64);
        le16(end, VersionZip64);
        le32(end, 0);                  // this disk
        le32(end, 0);                  // disk of the directory
        le64(end, count);
        le64(end, count);
        le64(end, directorySize);
        le64(end, directoryOffset);
        le32(end, Zip64LocatorSignature);
        le32(end, 0);
        le64(end, zip64EndOffset);
        le32(end, 1);                  // total disks
    }
    le32(end, EndSignature);
    le16(end, 0);
    le16(end, 0);
    le16(end, qMin(count, Max16));
    le16(end, qMin(count, Max16));
    le32(end, qMin(directorySize, Max32));
    le32(end, qMin(directoryOffset, Max32));
    le16(end, 0);                      // comment length
    return put(end);
}

bool ZipWriter::put(const char* data, qint64 size)
{
    if (hasError())
        return false;
    qint64 done = 0;
    while (done < size) {
        const qint64 n = m_device.write(data + done, size - done);
        if (n <= 0)
            return fail(m_device.errorString().isEmpty() ? QStringLiteral("write failed")
                                                          : m_device.errorString());
        done += n;
    }
    m_offset += quint64(size);
    return true;
}

bool ZipWriter::fail(const QString& why)
{
    if (m_error.isEmpty())
        m_error = why;
    return false;
}

} // namespace QXlsx::detail
