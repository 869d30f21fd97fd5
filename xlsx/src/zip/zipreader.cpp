#include "zip/zipreader.h"

#include "zip/crc32.h"
#include "zip/inflater.h"

#include <zip.h>

#include <limits>
#include <memory>
#include <vector>

namespace QXlsx::detail {

namespace {

constexpr int ChunkSize = 64 * 1024;
// Ratios are only judged past this size: small parts compress wildly (a sheet of
// repeated XML) without being any danger.
constexpr qint64 RatioFloor = 1 << 20;
// All parts together are held to the same ratio against the size of the whole package,
// past this size. Entries of a hostile archive can share their compressed bytes, each
// within the ratio on its own, so that a small file would inflate without end.
constexpr qint64 TotalRatioFloor = 64 << 20;
// A part read whole must fit in one QByteArray.
constexpr qint64 MaxWholePart = std::numeric_limits<int>::max() - (1 << 20);
// Inflating into a chunk that stays in cache while the reader goes through it is faster
// than inflating a whole entry at once, even with libdeflate, which takes half zlib's
// time for that: a buffer the size of a big sheet costs more in fresh pages and memory
// traffic than it saves, and would double the memory a big workbook needs to open.
constexpr int StreamChunk = 256 * 1024;

QString foldedName(const QString& name)
{
    QString folded = name.startsWith(QLatin1Char('/')) ? name.mid(1) : name;
    return folded.toCaseFolded();
}

void fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
}

struct ZipFileCloser
{
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

// A package is mostly small parts: a buffer no larger than the part needs, and left
// uninitialised, saves clearing half a megabyte for every part of a few hundred bytes.
std::unique_ptr<char[]> chunkFor(qint64 bytes, int& size)
{
    size = int(qBound<qint64>(4096, bytes + 1, StreamChunk));
    return std::unique_ptr<char[]>(new char[size_t(size)]);
}

} // namespace

ZipReader::ZipReader(const ReadLimits& limits) : m_limits(limits) {}

ZipReader::~ZipReader()
{
    if (m_zip)
        zip_discard(m_zip);   // also frees the source
    else if (m_source)
        zip_source_free(m_source);
}

bool ZipReader::open(const char* data, qint64 size, QString* error)
{
    // Shorter than an end of central directory record: not a zip, and libzip would
    // take no bytes at all for an empty archive.
    if (size < 22) {
        fail(error, QStringLiteral("not a zip package"));
        return false;
    }
    zip_error_t zerr;
    zip_error_init(&zerr);
    m_source = zip_source_buffer_create(data, zip_uint64_t(size), 0, &zerr);
    if (!m_source) {
        fail(error, QStringLiteral("cannot read the package: %1").arg(QString::fromUtf8(zip_error_strerror(&zerr))));
        zip_error_fini(&zerr);
        return false;
    }
    m_archiveSize = size;
    m_zip = zip_open_from_source(m_source, ZIP_RDONLY, &zerr);
    if (!m_zip) {
        fail(error, QStringLiteral("not a zip package: %1").arg(QString::fromUtf8(zip_error_strerror(&zerr))));
        zip_error_fini(&zerr);
        return false;
    }
    zip_error_fini(&zerr);

    const zip_int64_t count = zip_get_num_entries(m_zip, 0);
    if (count < 0 || count > m_limits.maxParts) {
        fail(error, QStringLiteral("the package holds too many entries (%1)").arg(count));
        zip_discard(m_zip);
        m_zip = nullptr;
        m_source = nullptr;
        return false;
    }
    m_names.reserve(int(count));
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* name = zip_get_name(m_zip, zip_uint64_t(i), ZIP_FL_ENC_GUESS);
        const QString text = name ? QString::fromUtf8(name) : QString();
        m_names.append(text);
        if (!text.isEmpty())
            m_index.insert(foldedName(text), int(i));   // a later duplicate wins, as in a listing
    }
    return true;
}

int ZipReader::indexOf(const QString& partName) const
{
    return m_index.value(foldedName(partName), -1);
}

bool ZipReader::withinLimits(qint64 inflated, qint64 compressed) const
{
    return inflated <= m_limits.maxPartSize && m_totalRead <= m_limits.maxTotalSize
        && (inflated <= RatioFloor || inflated <= m_limits.maxCompressionRatio * qMax<qint64>(compressed, 1))
        && (m_totalRead <= TotalRatioFloor || m_totalRead <= m_limits.maxCompressionRatio * m_archiveSize);
}

bool ZipReader::stream(int index, const Sink& sink, QString* error)
{
    if (!m_zip || index < 0 || index >= m_names.size()) {
        fail(error, QStringLiteral("no such part"));
        return false;
    }
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat_index(m_zip, zip_uint64_t(index), 0, &st) != 0) {
        fail(error, QStringLiteral("damaged entry %1").arg(m_names.at(index)));
        return false;
    }
    if ((st.valid & ZIP_STAT_ENCRYPTION_METHOD) && st.encryption_method != ZIP_EM_NONE) {
        fail(error, QStringLiteral("encrypted entry %1").arg(m_names.at(index)));
        return false;
    }
    const qint64 compressed = (st.valid & ZIP_STAT_COMP_SIZE) ? qint64(st.comp_size) : 0;
    constexpr zip_uint64_t needed = ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE | ZIP_STAT_COMP_METHOD | ZIP_STAT_CRC;
    if ((st.valid & needed) != needed || st.comp_method != ZIP_CM_DEFLATE)
        return streamThroughLibzip(index, compressed, sink, error);

    // Deflated entries, nearly all of a package, are inflated here rather than by
    // libzip, which copies every inflated byte once more on its way to the sink.
    return inflateStreaming(index, st, sink, error);
}

// Stored entries and methods other than deflate: libzip reads them, in chunks.
bool ZipReader::streamThroughLibzip(int index, qint64 compressed, const Sink& sink, QString* error)
{
    std::unique_ptr<zip_file_t, ZipFileCloser> file(zip_fopen_index(m_zip, zip_uint64_t(index), 0));
    if (!file) {
        fail(error, QStringLiteral("cannot open entry %1: %2")
                        .arg(m_names.at(index), QString::fromUtf8(zip_strerror(m_zip))));
        return false;
    }
    std::vector<char> buffer(ChunkSize);
    qint64 inflated = 0;
    for (;;) {
        const zip_int64_t n = zip_fread(file.get(), buffer.data(), buffer.size());
        if (n < 0) {
            fail(error, QStringLiteral("damaged entry %1: %2")
                            .arg(m_names.at(index), QString::fromUtf8(zip_file_strerror(file.get()))));
            return false;
        }
        if (n == 0)
            return true;
        inflated += n;
        m_totalRead += n;
        if (!withinLimits(inflated, compressed)) {
            fail(error, QStringLiteral("entry %1 inflates beyond the limits").arg(m_names.at(index)));
            return false;
        }
        if (!sink(buffer.data(), int(n)))
            return true;
    }
}

// Chunk by chunk, the limits judged after every chunk: an entry that inflates far
// beyond what it claims is cut off soon after it crosses one.
bool ZipReader::inflateStreaming(int index, const struct zip_stat& st, const Sink& sink, QString* error)
{
    const QString& name = m_names.at(index);
    std::unique_ptr<zip_file_t, ZipFileCloser> file(zip_fopen_index(m_zip, zip_uint64_t(index), ZIP_FL_COMPRESSED));
    if (!file) {
        fail(error, QStringLiteral("damaged entry %1").arg(name));
        return false;
    }
    Inflater inflater;
    if (!inflater.isValid()) {
        fail(error, QStringLiteral("cannot inflate entry %1").arg(name));
        return false;
    }
    int inputSize = 0;
    int outputSize = 0;
    const auto input = chunkFor(qint64(st.comp_size), inputSize);
    const auto output = chunkFor(qint64(st.size), outputSize);
    qint64 inflated = 0;
    quint32 crc = 0;
    Inflater::Status status = Inflater::More;
    while (status == Inflater::More) {
        if (inflater.needsInput()) {
            const zip_int64_t n = zip_fread(file.get(), input.get(), zip_uint64_t(inputSize));
            if (n <= 0)
                break;   // the deflate stream ended early: damaged
            inflater.setInput(input.get(), size_t(n));
        }
        size_t n = 0;
        status = inflater.inflate(output.get(), size_t(outputSize), &n);
        if (status == Inflater::Damaged)
            break;
        inflated += qint64(n);
        m_totalRead += qint64(n);
        if (!withinLimits(inflated, qint64(st.comp_size))) {
            fail(error, QStringLiteral("entry %1 inflates beyond the limits").arg(name));
            return false;
        }
        crc = updateCrc32(crc, output.get(), n);
        if (n > 0 && !sink(output.get(), int(n)))
            return true;
    }
    if (status != Inflater::Ended || crc != st.crc) {
        fail(error, QStringLiteral("damaged entry %1").arg(name));
        return false;
    }
    return true;
}

bool ZipReader::readAll(int index, QByteArray* out, QString* error)
{
    out->clear();
    bool fits = true;
    const bool complete = stream(index, [out, &fits](const char* data, int size) {
        fits = out->size() + qint64(size) <= MaxWholePart;
        if (fits)
            out->append(data, size);
        return fits;
    }, error);
    if (!fits)
        fail(error, QStringLiteral("entry %1 is too large to be kept").arg(m_names.at(index)));
    return complete && fits;
}

} // namespace QXlsx::detail
