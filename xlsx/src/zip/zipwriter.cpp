#include "zipwriter.h"

#include <QIODevice>

#include <zlib.h>

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

constexpr int OutputBufferSize = 256 * 1024;
// Bytes handed to the worker at once, and how many such pieces may wait: enough to keep
// both threads busy, little enough to keep memory flat whatever the part size.
constexpr size_t PieceSize = 256 * 1024;
constexpr size_t MaxQueuedPieces = 4;

enum JobKind { BeginJob, DataJob, EndJob, FinishJob, StopJob };

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

struct ZipWriter::Pipeline
{
    struct Job
    {
        int kind = DataJob;
        QByteArray name;
        std::vector<char> data;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> queue;
    std::vector<std::vector<char>> spare;   // used piece buffers, for reuse
    QString error;                          // the worker's first failure
    bool failed = false;
    bool done = false;
    std::thread worker;
};

ZipWriter::ZipWriter(QIODevice& device, int level)
    : m_device(device), m_deflater(std::make_unique<Deflater>()),
      m_pipeline(std::make_unique<Pipeline>()), m_out(OutputBufferSize)
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
    if (m_pipeline->worker.joinable()) {
        post(StopJob);
        m_pipeline->worker.join();
    }
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

// m_error belongs to the worker; the caller's side sees failures through the pipeline.
bool ZipWriter::hasError() const
{
    std::lock_guard<std::mutex> lock(m_pipeline->mutex);
    return m_pipeline->failed;
}

QString ZipWriter::errorString() const
{
    std::lock_guard<std::mutex> lock(m_pipeline->mutex);
    return m_pipeline->error;
}

void ZipWriter::post(int kind, const QByteArray& name)
{
    Pipeline& p = *m_pipeline;
    std::unique_lock<std::mutex> lock(p.mutex);
    p.changed.wait(lock, [&] { return p.queue.size() < MaxQueuedPieces || p.done; });
    Pipeline::Job job;
    job.kind = kind;
    job.name = name;
    if (kind == DataJob) {
        job.data.swap(m_pending);
        if (!p.spare.empty()) {
            m_pending.swap(p.spare.back());
            p.spare.pop_back();
        }
        m_pending.clear();
    }
    p.queue.push_back(std::move(job));
    p.changed.notify_all();
}

void ZipWriter::postPending()
{
    if (!m_pending.empty())
        post(DataJob);
}

bool ZipWriter::beginEntry(const QString& name)
{
    if (m_inEntry && !endEntry())
        return false;
    if (m_finished || hasError())
        return false;
    const QByteArray utf8 = name.toUtf8();
    if (utf8.isEmpty() || utf8.size() > int(Max16)) {
        std::lock_guard<std::mutex> lock(m_pipeline->mutex);
        m_pipeline->failed = true;
        m_pipeline->error = QStringLiteral("invalid entry name");
        return false;
    }
    if (!m_pipeline->worker.joinable())
        m_pipeline->worker = std::thread([this] { run(); });
    post(BeginJob, utf8);
    m_inEntry = true;
    ++m_entryCount;
    return true;
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
            post(DataJob);
    }
    return true;
}

bool ZipWriter::endEntry()
{
    if (!m_inEntry)
        return !hasError();
    m_inEntry = false;
    postPending();
    post(EndJob);
    return !hasError();
}

bool ZipWriter::finish()
{
    if (m_finished)
        return !hasError();
    if (m_inEntry)
        endEntry();
    m_finished = true;
    if (m_pipeline->worker.joinable()) {
        post(FinishJob);
        m_pipeline->worker.join();
    } else {
        finishNow();
    }
    return !hasError();
}

// The worker: takes the jobs in order until the archive is finished or abandoned. After
// a failure it keeps taking jobs, so that the caller never waits on a full queue.
void ZipWriter::run()
{
    Pipeline& p = *m_pipeline;
    for (;;) {
        Pipeline::Job job;
        {
            std::unique_lock<std::mutex> lock(p.mutex);
            p.changed.wait(lock, [&] { return !p.queue.empty(); });
            job = std::move(p.queue.front());
            p.queue.pop_front();
            p.changed.notify_all();
        }
        const bool ok = m_error.isEmpty();
        switch (job.kind) {
        case BeginJob: if (ok) beginEntryNow(job.name); break;
        case DataJob: if (ok) writeNow(job.data.data(), qint64(job.data.size())); break;
        case EndJob: if (ok) endEntryNow(); break;
        case FinishJob: if (ok) finishNow(); break;
        default: break;
        }
        std::lock_guard<std::mutex> lock(p.mutex);
        if (job.kind == DataJob && p.spare.size() < MaxQueuedPieces) {
            job.data.clear();
            p.spare.push_back(std::move(job.data));
        }
        if (job.kind == FinishJob || job.kind == StopJob) {
            p.done = true;
            p.changed.notify_all();
            return;
        }
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
    if (put(header))
        deflateReset(&m_deflater->stream);
}

void ZipWriter::writeNow(const char* data, qint64 size)
{
    Entry& entry = m_entries.back();
    entry.size += quint64(size);
    entry.crc = quint32(crc32(entry.crc, reinterpret_cast<const Bytef*>(data), uInt(size)));
    deflateInput(data, size, false);
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

void ZipWriter::endEntryNow()
{
    if (!deflateInput(nullptr, 0, true))
        return;

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
    if (m_error.isEmpty()) {
        m_error = why;
        std::lock_guard<std::mutex> lock(m_pipeline->mutex);
        m_pipeline->failed = true;
        m_pipeline->error = why;
    }
    return false;
}

} // namespace QXlsx::detail
