#pragma once

#include "readlimits.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <functional>

typedef struct zip zip_t;
typedef struct zip_source zip_source_t;
struct zip_stat;

namespace QXlsx::detail {

// The entries of a zip archive held in memory. Every read is streamed and counted
// against the limits as it goes, so an entry that inflates far beyond what its
// header claims (a zip bomb) is cut off after the first chunk that crosses a limit.
class ZipReader
{
public:
    // Receives an entry's bytes chunk by chunk; returning false stops the read.
    using Sink = std::function<bool(const char* data, int size)>;

    explicit ZipReader(const ReadLimits& limits);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    // Opens the archive in data, which must outlive the reader.
    bool open(const char* data, qint64 size, QString* error);
    bool isOpen() const { return m_zip != nullptr; }

    int entryCount() const { return m_names.size(); }
    QString entryName(int index) const { return m_names.at(index); }
    // Part names compare without regard to case; a leading "/" is ignored. -1 if absent.
    int indexOf(const QString& partName) const;

    // False when the entry is missing, encrypted, damaged or crosses a limit; the sink
    // has then seen whatever came before.
    bool stream(int index, const Sink& sink, QString* error);
    bool readAll(int index, QByteArray* out, QString* error);

private:
    bool withinLimits(qint64 inflated, qint64 compressed) const;
    bool streamThroughLibzip(int index, qint64 compressed, const Sink& sink, QString* error);
    bool inflateStreaming(int index, const struct zip_stat& st, const Sink& sink, QString* error);

    ReadLimits m_limits;
    zip_source_t* m_source = nullptr;
    zip_t* m_zip = nullptr;
    QStringList m_names;
    QHash<QString, int> m_index;   // folded name -> entry
    qint64 m_totalRead = 0;
    qint64 m_archiveSize = 0;
};

} // namespace QXlsx::detail
