#include "zipwriter.h"

#include "crc32.h"
#include "piecedeflater.h"

#include <QIODevice>

#include <zlib.h>   // crc32_combine

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

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

// Bytes deflated as one piece: large enough that restarting the window costs under 1% of
// the compressed size, small enough that a few pieces in flight keep memory flat.
constexpr size_t PieceSize = 512 * 1024;
// An empty fixed-Huffman block with the final bit set: the end of every entry's stream.
constexpr char FinalBlock[2] = {0x03, 0x00};

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

int compressorCount()
{
    return int(std::clamp(std::thread::hardware_concurrency(), 1u, 4u));
}

} // namespace

// What the archive holds next, in file order. Data pieces are deflated by a compressor;
// the others are ready at once and written by the caller's thread when their turn comes.
struct ZipWriter::Piece
{
    enum Kind { Begin, Data, End, Finish } kind = Data;
    QByteArray name;                // Begin
    std::vector<char> input;        // Data: the bytes as given
    PieceDeflater::Output output;   // Data: deflated, ending with a sync flush, in the
    size_t outputSize = 0;          // first outputSize bytes (the buffer is reused whole)
    quint32 crc = 0;                // Data: CRC-32 of input
    bool failed = false;
    bool ready = false;
};

struct ZipWriter::Compressors
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<Piece>> order;   // submitted, not yet written, in file order
    std::deque<Piece*> todo;                    // data pieces no compressor has taken
    std::vector<std::unique_ptr<Piece>> spare;  // written data pieces, buffers and all
    std::vector<std::thread> threads;
    bool stopping = false;

    void start(int count)
    {
        for (int i = 0; i < count; ++i)
            threads.emplace_back([this] { run(); });
    }

    void run()
    {
        PieceDeflater deflater;
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            changed.wait(lock, [&] { return stopping || !todo.empty(); });
            if (todo.empty())
                break;
            Piece* piece = todo.front();
            todo.pop_front();
            lock.unlock();
            deflatePiece(deflater, *piece);
            lock.lock();
            piece->ready = true;
            changed.notify_all();
        }
    }

    std::unique_ptr<Piece> takeSpare()
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (spare.empty())
            return std::make_unique<Piece>();
        std::unique_ptr<Piece> piece = std::move(spare.back());
        spare.pop_back();
        return piece;
    }

    ~Compressors()
    {
        {
            std::lock_guard<std::mutex> lock(mutex);
            stopping = true;
            todo.clear();
        }
        changed.notify_all();
        for (std::thread& t : threads)
            t.join();
    }
};

// Deflates one piece into a raw deflate sequence of non-final blocks.
void ZipWriter::deflatePiece(PieceDeflater& deflater, Piece& piece)
{
    piece.crc = updateCrc32(0, piece.input.data(), piece.input.size());
    piece.failed = !deflater.deflate(piece.input.data(), piece.input.size(), piece.output,
                                     &piece.outputSize);
}

ZipWriter::ZipWriter(QIODevice& device)
    : m_device(device), m_compressors(std::make_unique<Compressors>())
{
    setTimestamp(QDateTime::currentDateTime());
}

ZipWriter::~ZipWriter() = default;

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
    if (m_finished || hasError())
        return false;
    const QByteArray utf8 = name.toUtf8();
    if (utf8.isEmpty() || utf8.size() > int(Max16))
        return fail(QStringLiteral("invalid entry name"));
    auto piece = std::make_unique<Piece>();
    piece->kind = Piece::Begin;
    piece->name = utf8;
    submit(std::move(piece));
    m_inEntry = true;
    ++m_entryCount;
    return !hasError();
}

bool ZipWriter::write(const char* data, qint64 size)
{
    if (!m_inEntry || hasError())
        return false;
    while (size > 0) {
        if (m_pending.capacity() < PieceSize)
            m_pending.reserve(PieceSize);
        const qint64 n = qMin<qint64>(size, qint64(PieceSize - m_pending.size()));
        m_pending.insert(m_pending.end(), data, data + n);
        data += n;
        size -= n;
        if (m_pending.size() >= PieceSize)
            submitPending();
    }
    return !hasError();
}

bool ZipWriter::endEntry()
{
    if (!m_inEntry)
        return !hasError();
    m_inEntry = false;
    submitPending();
    auto piece = std::make_unique<Piece>();
    piece->kind = Piece::End;
    submit(std::move(piece));
    return !hasError();
}

bool ZipWriter::finish()
{
    if (m_finished)
        return !hasError();
    if (m_inEntry)
        endEntry();
    m_finished = true;
    auto piece = std::make_unique<Piece>();
    piece->kind = Piece::Finish;
    submit(std::move(piece));
    emitReady(0);
    return !hasError();
}

void ZipWriter::submitPending()
{
    if (m_pending.empty())
        return;
    std::unique_ptr<Piece> piece = m_compressors->takeSpare();
    piece->input.swap(m_pending);
    m_pending.clear();
    // A whole entry smaller than a piece (styles, relationships, small sheets) is
    // deflated here: starting threads would cost more than it saves.
    Compressors& c = *m_compressors;
    if (c.threads.empty() && piece->input.size() < PieceSize) {
        if (!m_deflater)
            m_deflater = std::make_unique<PieceDeflater>();
        deflatePiece(*m_deflater, *piece);
        piece->ready = true;
        submit(std::move(piece));
        return;
    }
    if (c.threads.empty())
        c.start(compressorCount());
    Piece* raw = piece.get();
    {
        std::lock_guard<std::mutex> lock(c.mutex);
        c.todo.push_back(raw);
    }
    c.changed.notify_all();
    submit(std::move(piece));
}

void ZipWriter::submit(std::unique_ptr<Piece> piece)
{
    Compressors& c = *m_compressors;
    if (piece->kind != Piece::Data)
        piece->ready = true;
    {
        std::lock_guard<std::mutex> lock(c.mutex);
        c.order.push_back(std::move(piece));
    }
    // Enough pieces in flight to keep every compressor busy while the caller fills the
    // next one; beyond that the caller waits, so memory stays flat.
    emitReady(c.threads.size() + 1);
}

// Writes the pieces at the front that are ready, waiting while more than keepAtMost
// pieces are outstanding.
void ZipWriter::emitReady(size_t keepAtMost)
{
    Compressors& c = *m_compressors;
    std::unique_lock<std::mutex> lock(c.mutex);
    for (;;) {
        if (c.order.empty())
            return;
        if (!c.order.front()->ready) {
            if (c.order.size() <= keepAtMost)
                return;
            c.changed.wait(lock, [&] { return c.order.front()->ready; });
        }
        std::unique_ptr<Piece> piece = std::move(c.order.front());
        c.order.pop_front();
        lock.unlock();
        writePiece(*piece);
        lock.lock();
        if (piece->kind == Piece::Data && c.spare.size() < c.threads.size() + 1) {
            piece->ready = false;
            piece->failed = false;
            c.spare.push_back(std::move(piece));
        }
    }
}

void ZipWriter::writePiece(Piece& piece)
{
    switch (piece.kind) {
    case Piece::Begin:
        beginEntryNow(piece.name);
        break;
    case Piece::Data: {
        if (piece.failed) {
            fail(QStringLiteral("compression failed"));
            break;
        }
        Entry& entry = m_entries.back();
        entry.crc = quint32(crc32_combine(entry.crc, piece.crc, z_off_t(piece.input.size())));
        entry.size += piece.input.size();
        entry.compressedSize += piece.outputSize;
        put(piece.output.data(), qint64(piece.outputSize));
        break;
    }
    case Piece::End:
        endEntryNow();
        break;
    case Piece::Finish:
        finishNow();
        break;
    }
}

void ZipWriter::beginEntryNow(const QByteArray& name)
{
    Entry entry;
    entry.name = name;
    entry.offset = m_offset;

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
    put(header);
}

void ZipWriter::endEntryNow()
{
    Entry& entry = m_entries.back();
    entry.compressedSize += sizeof FinalBlock;
    put(FinalBlock, sizeof FinalBlock);

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
    put(descriptor);
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

void ZipWriter::finishNow()
{
    const quint64 directoryOffset = m_offset;
    for (const Entry& entry : m_entries)
        if (!put(centralDirectoryRecord(entry)))
            return;
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
    put(end);
}

bool ZipWriter::put(const char* data, qint64 size)
{
    if (!m_error.isEmpty())
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
