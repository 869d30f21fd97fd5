#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <vector>

class QIODevice;

namespace QXlsx::detail {

class PieceDeflater;

// Writes a zip archive front to back onto a device, one entry at a time, deflating as
// the bytes arrive, so that no entry is ever held whole in memory.
//
// Each entry's sizes and checksum follow its data in a data descriptor rather than being
// patched into its local header afterwards: the device may be sequential (a socket, a
// pipe, a QBuffer handed to Document::saveAs), and a seek back would also defeat the
// write buffering of QSaveFile. An entry or an archive past 4 GiB or 65,535 entries gets
// zip64 records.
//
// Deflating is most of the cost of a save, so an entry's bytes are cut into pieces that
// compressor threads deflate independently while the caller produces the next bytes.
// Each piece ends on a byte boundary with a non-final block (a sync flush) and the entry
// with an empty final block, so the pieces joined in order are one valid deflate stream;
// a piece only loses the back-references into the piece before it. The device is written
// by the caller's thread alone, in order; an entry smaller than a piece never starts a
// thread.
class ZipWriter
{
public:
    explicit ZipWriter(QIODevice& device);
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

    bool hasError() const { return !m_error.isEmpty(); }
    QString errorString() const { return m_error; }
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
    struct Piece;
    struct Compressors;

    void submit(std::unique_ptr<Piece> piece);
    void submitPending();
    void emitReady(size_t keepAtMost);
    void writePiece(Piece& piece);
    static void deflatePiece(PieceDeflater& deflater, Piece& piece);
    void beginEntryNow(const QByteArray& name);
    void endEntryNow();
    void finishNow();
    bool put(const char* data, qint64 size);
    bool put(const QByteArray& data) { return put(data.constData(), data.size()); }
    bool fail(const QString& why);
    QByteArray centralDirectoryRecord(const Entry& entry) const;

    QIODevice& m_device;
    std::unique_ptr<Compressors> m_compressors;
    std::unique_ptr<PieceDeflater> m_deflater;   // for entries deflated on this thread
    std::vector<char> m_pending;     // bytes of the current entry not yet in a piece
    int m_entryCount = 0;
    std::vector<Entry> m_entries;
    quint64 m_offset = 0;
    bool m_inEntry = false;
    bool m_finished = false;
    quint16 m_dosTime = 0;
    quint16 m_dosDate = 0;
    QString m_error;
};

} // namespace QXlsx::detail
