#pragma once

// What the engine's tests share: packages made in memory (a zip of named parts, the parts
// of a minimal workbook that a test changes one at a time), saving a document to a
// scratch file and reading parts of the package back, and asking real readers
// (openpyxl, LibreOffice) what they see.

#include "model/workbookdata.h"
#include "read/packagereader.h"
#include "xlsxdocument.h"
#include "zip/zipreader.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace xlsxtest {

using Parts = std::vector<std::pair<QString, QByteArray>>;

// A zip written record by record, so that it can also hold what no zip library writes:
// a central directory in which several entries point at one local file.
class RawZip
{
public:
    // An entry of the bytes, deflated or stored.
    void add(const QString& name, const QByteArray& bytes, bool deflated = true);
    // An entry whose data is the raw deflate stream as given, said to inflate to size bytes;
    // its checksum is left at zero, for streams no reader is meant to finish.
    void addStream(const QString& name, const QByteArray& stream, quint32 size);
    // One more directory entry for the local file of another entry.
    void addAlias(const QString& alias, const QString& of);
    QByteArray bytes() const;

private:
    struct Entry
    {
        QByteArray name;
        quint32 offset, method, compressedSize, size, crc;
    };
    void append(Entry entry, const QByteArray& data);
    static QByteArray header(quint32 signature, const Entry& entry, bool central);

    QByteArray m_locals;
    std::vector<Entry> m_central;
};

// The bytes as a raw deflate stream; with fullFlush the stream is not final and ends on
// a byte boundary, so that copies joined one after another are a stream of the bytes repeated.
QByteArray rawDeflate(const QByteArray& bytes, bool fullFlush = false);

// A zip archive of the parts, deflated.
QByteArray zipOf(const Parts& parts);

// The XML of one relationship of an officeDocument kind ("worksheet", "styles", ...),
// and of a relationships part of such items.
QByteArray relationship(const QByteArray& id, const QByteArray& kind, const QByteArray& target);
QByteArray relationships(const QByteArray& items);

// A workbook of the sheets named, sheet k pointing at relationship "s<k>"; before goes
// ahead of the sheets, after behind them.
QByteArray workbookOf(const QList<QByteArray>& names, const QByteArray& before = {}, const QByteArray& after = {});

// A workbook of one worksheet "Data" whose part is sheetXml; shared strings and styles
// are part of it when given.
Parts workbookParts(const QByteArray& sheetXml, const QByteArray& sharedStringsXml = {},
                    const QByteArray& stylesXml = {});

// Replaces or adds one part.
void setPart(Parts& parts, const QString& name, const QByteArray& data);

// A <worksheet> whose sheetData holds rows.
QByteArray worksheet(const QByteArray& rows);
// Rows 1 to count, each holding its number in column A.
QByteArray numberRows(int count);

// A document opened from the bytes in memory.
std::unique_ptr<QXlsx::Document> openBytes(const QByteArray& bytes);
// The model the reader builds from the bytes, for what the API does not show.
bool readModel(const QByteArray& bytes, QXlsx::detail::WorkbookData& book,
               const QXlsx::detail::ReadLimits& limits = QXlsx::detail::ReadLimits());

// A path for a file named name in a folder that lives until the end of the test run.
QString scratchPath(const QString& name);
// Saves document under name in the scratch folder; the path, or an empty text on failure.
QString saved(const QXlsx::Document& document, const QString& name);

// One entry of an archive read whole, or as far as the reader goes; complete tells which.
QByteArray entry(QXlsx::detail::ZipReader& zip, const QString& name, bool* complete = nullptr);
// One entry of the package at path.
QByteArray entry(const QString& path, const QString& name);

// True when the interpreter with openpyxl, or LibreOffice, is there; the tests skip otherwise.
bool haveOpenpyxl();
bool haveOffice();
// Runs a script of the interop folder (or code with -c) with the test Python; its
// standard output, or an empty array with the reason in error.
QByteArray runPython(const QStringList& arguments, QString* error, int timeoutMs = 60000);
// Has LibreOffice, with a profile of its own, convert files into outDir through the
// filter ("xlsx:Calc MS Excel 2007 XML", "csv:..."); false with the reason in error.
bool convertByOffice(const QStringList& files, const QString& filter, const QString& outDir, QString* error);
// What openpyxl sees in the workbook at path (see interop/openpyxl_dump.py).
QJsonObject openpyxlDump(const QString& path);
// One cell of a sheet of such a dump.
QJsonObject dumpedCell(const QJsonObject& dump, int sheet, const QString& reference);

} // namespace xlsxtest
