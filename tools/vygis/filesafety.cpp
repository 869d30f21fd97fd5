#include "filesafety.h"

#include "command.h"

#include "xlsxdocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStorageInfo>
#include <QTemporaryFile>

#include <cstring>

namespace {

// A zip names its entries again in the central directory at its end; the last
// mebibyte holds it whole for any package a spreadsheet application writes.
constexpr qint64 ZipDirectoryWindow = 1 << 20;
constexpr qint64 HeadLength = 4096;

QByteArray readRange(QFile& file, qint64 from, qint64 length)
{
    if (!file.seek(from))
        return {};
    return file.read(length);
}

QByteArray utf16(const char* text)
{
    QByteArray bytes;
    for (const char* c = text; *c; ++c)
        bytes.append(*c).append('\0');
    return bytes;
}

FileKind kind(FileKind::Kind kind, const char* description)
{
    return {kind, QString::fromLatin1(description)};
}

FileKind zipKind(QFile& file)
{
    const qint64 size = file.size();
    const qint64 from = qMax<qint64>(0, size - ZipDirectoryWindow);
    const QByteArray tail = readRange(file, from, size - from);
    const QByteArray head = readRange(file, 0, HeadLength);
    if (tail.contains("xl/workbook.bin"))
        return kind(FileKind::BinaryWorkbook, "a binary workbook (.xlsb), which cannot be read");
    if (tail.contains("workbook.xml"))
        return kind(FileKind::Workbook, "a workbook");
    if (head.contains("application/vnd.oasis.opendocument"))
        return kind(FileKind::OpenDocument, "an OpenDocument file (.ods or similar)");
    if (tail.contains("word/document.xml"))
        return kind(FileKind::OtherZip, "a word processing document");
    return kind(FileKind::OtherZip, "a zip archive that holds no workbook");
}

// Excel keeps a workbook with a password to open in a compound document whose streams
// EncryptionInfo and EncryptedPackage hold the encrypted package.
FileKind compoundKind(QFile& file)
{
    static const QByteArray encrypted = utf16("EncryptedPackage");
    const qint64 size = file.size();
    const QByteArray head = readRange(file, 0, ZipDirectoryWindow);
    const QByteArray tail = readRange(file, qMax<qint64>(0, size - ZipDirectoryWindow), ZipDirectoryWindow);
    if (head.contains(encrypted) || tail.contains(encrypted))
        return kind(FileKind::EncryptedWorkbook, "an encrypted workbook (it has a password to open), which cannot be read");
    return kind(FileKind::LegacyWorkbook, "an Excel 97-2003 workbook (.xls) or another compound document, which cannot be read");
}

// The GeoPackage's application id stands at byte 68 of its SQLite header.
FileKind sqliteKind(const QByteArray& head)
{
    const QByteArray id = head.mid(68, 4);
    if (id == "GPKG" || id == "GP10" || id == "GP11")
        return kind(FileKind::GeoPackage, "a GeoPackage");
    return kind(FileKind::Sqlite, "an SQLite database");
}

bool looksLikeText(const QByteArray& head)
{
    return !head.contains('\0');
}

// Kinds the engine cannot read for a reason of their own say so in their description.
QString asNoWorkbook(const FileKind& found)
{
    switch (found.kind) {
    case FileKind::BinaryWorkbook:
    case FileKind::EncryptedWorkbook:
    case FileKind::LegacyWorkbook:
    case FileKind::Missing:
        return found.description;
    default:
        return found.description + QStringLiteral(", not a workbook");
    }
}

QString describedPath(const QString& path, const QString& what)
{
    return QStringLiteral("%1: %2").arg(path, what);
}

QString folderOf(const QString& path)
{
    return QFileInfo(path).absolutePath();
}

QtMessageHandler previousHandler = nullptr;
QString lastSaveError;   // "path: reason", as the engine logs it

void keepSaveError(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (context.category && qstrcmp(context.category, "vygis.xlsx.save") == 0) {
        lastSaveError = message;
        return;
    }
    // A save that had to cut texts or drop formats to stay within Excel's limits.
    if (context.category && qstrcmp(context.category, "vygis.xlsx.limits") == 0) {
        printError(QStringLiteral("vygis: note: %1").arg(message));
        return;
    }
    if (previousHandler)
        previousHandler(type, context, message);
}

} // namespace

QString loggedSaveFailure(const QString& path)
{
    for (const QString& prefix : {path, QFileInfo(path).absoluteFilePath()})
        if (lastSaveError.startsWith(prefix + QStringLiteral(": ")))
            return lastSaveError.mid(prefix.size() + 2);
    return {};
}

void keepSaveErrorsForMessages()
{
    previousHandler = qInstallMessageHandler(keepSaveError);
}

FileKind inspectFile(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return kind(FileKind::Missing, "no such file");
    if (info.isDir())
        return kind(FileKind::Folder, "a folder");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {FileKind::Binary, QStringLiteral("cannot be read (%1)").arg(file.errorString())};
    const QByteArray head = file.read(HeadLength);
    if (head.isEmpty())
        return kind(FileKind::Empty, "an empty file");
    if (head.startsWith("PK\x03\x04") || head.startsWith("PK\x05\x06"))
        return zipKind(file);
    if (head.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"))
        return compoundKind(file);
    if (head.startsWith(QByteArray("SQLite format 3\0", 16)))
        return sqliteKind(head);
    if (head.startsWith("AutoCAD Binary DXF"))
        return kind(FileKind::BinaryDxf, "a binary DXF drawing");
    if (looksLikeText(head))
        return kind(FileKind::Text, "a text file (CSV or similar)");
    return kind(FileKind::Binary, "a binary file");
}

bool isSameFile(const QString& first, const QString& second)
{
    const auto canonical = [](const QString& path) {
        const QFileInfo info(path);
        if (info.exists())
            return info.canonicalFilePath();
        const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
        return folder.isEmpty() ? info.absoluteFilePath() : QDir(folder).filePath(info.fileName());
    };
#ifdef Q_OS_WIN
    const Qt::CaseSensitivity names = Qt::CaseInsensitive;
#else
    const Qt::CaseSensitivity names = Qt::CaseSensitive;
#endif
    return canonical(first).compare(canonical(second), names) == 0;
}

QString outputRefusal(const QString& path, const QStringList& inputs, OutputUse use, bool overwrite)
{
    for (const QString& input : inputs)
        if (isSameFile(path, input))
            return describedPath(path, QStringLiteral("is also an input of this command; write to another file"));
    const QFileInfo info(path);
    const FileKind found = inspectFile(path);
    if (found.kind == FileKind::Folder)
        return describedPath(path, QStringLiteral("is a folder, not a file"));
    if (found.kind == FileKind::Missing) {
        const QFileInfo folder(folderOf(path));
        if (!folder.isDir())
            return describedPath(path, QStringLiteral("the folder %1 does not exist").arg(folder.filePath()));
        if (!folder.isWritable())
            return describedPath(path, QStringLiteral("the folder %1 cannot be written to (permission denied)")
                                           .arg(folder.filePath()));
        return {};
    }
    if (!info.isWritable())
        return describedPath(path, QStringLiteral("the file is read-only (permission denied)"));
    if (!QFileInfo(folderOf(path)).isWritable())
        return describedPath(path, QStringLiteral("its folder %1 cannot be written to (permission denied)")
                                       .arg(folderOf(path)));
    if (overwrite)
        return {};
    if (!found.isWorkbook())
        return describedPath(path, asNoWorkbook(found)
                                       + QStringLiteral("; it is left as it is (give --overwrite to replace it)"));
    if (use == OutputUse::Rewrite) {
        const QString unreadable = workbookInputRefusal(path);
        if (!unreadable.isEmpty())
            return unreadable + QStringLiteral("; it is left as it is (give --overwrite to replace it)");
    }
    return {};
}

QString workbookInputRefusal(const QString& path)
{
    const FileKind found = inspectFile(path);
    if (!found.isWorkbook())
        return describedPath(path, asNoWorkbook(found));
    const QXlsx::Document document(path);
    if (!document.errorString().isEmpty())
        return describedPath(path, QStringLiteral("cannot be read as a workbook: %1").arg(document.errorString()));
    return {};
}

QString saveFailureReason(const QString& path)
{
    const QString logged = loggedSaveFailure(path);
    if (!logged.isEmpty())
        return logged;
    const QFileInfo info(path);
    const QFileInfo folder(folderOf(path));
    if (info.isDir())
        return QStringLiteral("it is a folder");
    if (!folder.isDir())
        return QStringLiteral("the folder %1 does not exist").arg(folder.filePath());
    if (!folder.isWritable())
        return QStringLiteral("the folder %1 cannot be written to (permission denied)").arg(folder.filePath());
    if (info.exists() && !info.isWritable())
        return QStringLiteral("the file is read-only (permission denied)");
    const QStorageInfo storage(folder.absoluteFilePath());
    if (storage.isValid() && storage.bytesAvailable() < (1 << 20))
        return QStringLiteral("no space left on the device (%1 bytes free)").arg(storage.bytesAvailable());
    QTemporaryFile probe(QDir(folder.absoluteFilePath()).filePath(QStringLiteral(".vygis-XXXXXX")));
    if (!probe.open())
        return probe.errorString();
    return QStringLiteral("writing the file failed (a full disk or a file size limit)");
}

namespace {

// The copy gets the old file's permissions, so that putting it back changes nothing.
bool copyBeside(const QString& path, QTemporaryFile& copy, QString* reason)
{
    QFile original(path);
    copy.setFileTemplate(path + QStringLiteral(".old-XXXXXX"));
    copy.setAutoRemove(false);
    bool copied = original.open(QIODevice::ReadOnly) && copy.open();
    while (copied && !original.atEnd()) {
        const QByteArray block = original.read(1 << 20);
        copied = !block.isEmpty() && copy.write(block) == block.size();
    }
    copied = copied && copy.flush() && copy.error() == QFileDevice::NoError;
    if (!copied) {
        const QString why = original.error() != QFileDevice::NoError ? original.errorString()
            : copy.error() == QFileDevice::WriteError || !copy.isOpen()
            ? QStringLiteral("the disk is full or a file size limit was reached")
            : copy.errorString();
        *reason = QStringLiteral("%1: no copy of the old file could be kept beside it (%2); it is left as it is")
                      .arg(path, why);
        if (copy.isOpen())
            copy.remove();
        return false;
    }
    copy.setPermissions(original.permissions());
    return true;
}

bool putBack(const QString& path, QTemporaryFile& copy)
{
    const QString copyPath = copy.fileName();
    copy.close();
    QFile::remove(path);
    return QFile::rename(copyPath, path);
}

} // namespace

bool rewriteKeepingOldFile(const QString& path, const std::function<bool()>& rewrite, QString* reason)
{
    QTemporaryFile copy;
    if (!copyBeside(path, copy, reason))
        return false;
    lastSaveError.clear();
    const bool done = rewrite();
    const QString refused = loggedSaveFailure(path);
    if (done && refused.isEmpty() && inspectFile(path).isWorkbook()) {
        copy.remove();
        return true;
    }
    const QString why = !refused.isEmpty() ? refused : !done ? QStringLiteral("the rewrite failed")
                                                             : saveFailureReason(path);
    if (putBack(path, copy))
        *reason = QStringLiteral("%1: not rewritten (%2); the old file was put back").arg(path, why);
    else
        *reason = QStringLiteral("%1: not rewritten (%2); the old file is kept as %3")
                      .arg(path, why, copy.fileName());
    return false;
}
