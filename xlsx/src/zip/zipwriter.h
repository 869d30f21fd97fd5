#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <vector>

class QIODevice;

namespace QXlsx::detail {

// Writes a zip archive front to back onto a device, one entry at a time, deflating as
// the bytes arrive, so that no entry is ever held whole in memory.
//
// Each entry's sizes and checksum follow its data in a data descriptor rather than being
// patched into its local header afterwards: the device may be sequential (a socket, a
// pipe, a QBuffer handed to Document::saveAs), and a seek back would also defeat the
// write buffering of QSaveFile. An entry or an archive past 4 GiB or 65,535 entries gets
// zip64 records.
//
// Deflating is most of the cost of a save, so it runs on a thread of its own while the
// caller produces the next bytes: write() only queues a copy of its bytes, and the
// worker deflates them and writes the device. The device is touched by the worker alone
// until finish() returns.
class ZipWriter
{
public:
    // level: the zlib deflate level. A low level is the default because the save is what
    // users wait for. Measured on 2,000,000 text cells (136 MB of XML): levels 1 and 2
    // cost the same time, level 2 gives a 5% smaller file (14.3 MB, about tenfold);
    // level 3 takes half as long again.
    explicit ZipWriter(QIODevice& device, int level = 2);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // The modification time written for every entry; the current local time by default.
    void setTimestamp(const QDateTime& time);

    // Starts an entry; the previous one is closed first. name is the path inside the
    // archive, "/"-separated, without a leading "/".
    bool beginEntry(const QString& name);
    bool write(const char* data, qint64 size);
    bool write(const QByteArray& data) { return write(data.constData(), data.size()); }
    bool endEntry();
    // Closes the last entry and writes the central directory. Nothing may follow.
    bool finish();

    bool hasError() const;
    QString errorString() const;
    int entryCount() const { return m_entryCount; }

private:
    struct Entry
    {
        QByteArray name;
        quint32 crc = 0;
        quint64 compressedSize = 0;
        quint64 size = 0;
        quint64 offset = 0;
    };

    // Run by the worker, in queue order.
    void beginEntryNow(const QByteArray& name);
    void writeNow(const char* data, qint64 size);
    void endEntryNow();
    void finishNow();
    bool deflateInput(const char* data, qint64 size, bool last);
    bool put(const char* data, qint64 size);
    bool put(const QByteArray& data) { return put(data.constData(), data.size()); }
    bool fail(const QString& why);
    QByteArray centralDirectoryRecord(const Entry& entry) const;

    struct Deflater;
    struct Pipeline;
    void post(int kind, const QByteArray& name = QByteArray());
    void postPending();
    void run();

    QIODevice& m_device;
    std::unique_ptr<Deflater> m_deflater;
    std::unique_ptr<Pipeline> m_pipeline;
    std::vector<char> m_pending;     // caller side: bytes not yet handed to the worker
    int m_entryCount = 0;
    std::vector<Entry> m_entries;
    std::vector<char> m_out;
    quint64 m_offset = 0;
    bool m_inEntry = false;
    bool m_finished = false;
    quint16 m_dosTime = 0;
    quint16 m_dosDate = 0;
    QString m_error;
};

} // namespace QXlsx::detail
