#include "test_support.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <zlib.h>

#include <algorithm>

namespace xlsxtest {

namespace {

void put(QByteArray& out, quint32 value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out += char((value >> (8 * i)) & 0xff);
}

const Bytef* data(const QByteArray& bytes)
{
    return reinterpret_cast<const Bytef*>(bytes.constData());
}

} // namespace

void RawZip::add(const QString& name, const QByteArray& bytes, bool deflated)
{
    append({name.toUtf8(), 0, deflated ? 8u : 0u, 0, quint32(bytes.size()),
            quint32(crc32(0, data(bytes), uInt(bytes.size())))},
           deflated ? rawDeflate(bytes) : bytes);
}

void RawZip::addStream(const QString& name, const QByteArray& stream, quint32 size)
{
    append({name.toUtf8(), 0, 8, 0, size, 0}, stream);
}

void RawZip::addAlias(const QString& alias, const QString& of)
{
    const auto local = std::find_if(m_central.begin(), m_central.end(),
                                    [&](const Entry& entry) { return entry.name == of.toUtf8(); });
    Entry entry = *local;
    entry.name = alias.toUtf8();
    m_central.push_back(entry);
}

void RawZip::append(Entry entry, const QByteArray& data)
{
    entry.offset = quint32(m_locals.size());
    entry.compressedSize = quint32(data.size());
    m_locals += header(0x04034b50, entry, false) + data;
    m_central.push_back(entry);
}

QByteArray RawZip::header(quint32 signature, const Entry& entry, bool central)
{
    QByteArray out;
    put(out, signature, 4);
    if (central)
        put(out, 20, 2);   // made by
    for (quint32 value : {20u, 0u, entry.method})   // needed to extract, flags
        put(out, value, 2);
    for (quint32 value : {0u, entry.crc, entry.compressedSize, entry.size})   // time and date first
        put(out, value, 4);
    put(out, quint32(entry.name.size()), 2);
    put(out, 0, 2);   // extra field
    if (central) {
        out += QByteArray(10, '\0');   // comment, disk, internal and external attributes
        put(out, entry.offset, 4);
    }
    return out + entry.name;
}

QByteArray RawZip::bytes() const
{
    QByteArray directory;
    for (const Entry& entry : m_central)
        directory += header(0x02014b50, entry, true);
    QByteArray out = m_locals + directory;
    put(out, 0x06054b50, 4);
    put(out, 0, 4);   // disks
    put(out, quint32(m_central.size()), 2);
    put(out, quint32(m_central.size()), 2);
    put(out, quint32(directory.size()), 4);
    put(out, quint32(m_locals.size()), 4);
    put(out, 0, 2);   // comment
    return out;
}

QByteArray rawDeflate(const QByteArray& bytes, bool fullFlush)
{
    z_stream z{};
    deflateInit2(&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray out(int(deflateBound(&z, uLong(bytes.size()))) + 64, '\0');
    z.next_in = const_cast<Bytef*>(data(bytes));
    z.avail_in = uInt(bytes.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = uInt(out.size());
    deflate(&z, fullFlush ? Z_FULL_FLUSH : Z_FINISH);
    out.resize(int(z.total_out));
    deflateEnd(&z);
    return out;
}

QByteArray zipOf(const Parts& parts)
{
    RawZip zip;
    for (const auto& [name, bytes] : parts)
        zip.add(name, bytes);
    return zip.bytes();
}

QByteArray relationship(const QByteArray& id, const QByteArray& kind, const QByteArray& target)
{
    return R"(<Relationship Id=")" + id + R"(" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/)"
         + kind + R"(" Target=")" + target + R"("/>)";
}

QByteArray relationships(const QByteArray& items)
{
    return R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)" + items
         + "</Relationships>";
}

namespace {

const QByteArray Namespaces =
    R"(xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
    R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")";

} // namespace

QByteArray workbookOf(const QList<QByteArray>& names, const QByteArray& before, const QByteArray& after)
{
    QByteArray sheets;
    for (int k = 0; k < names.size(); ++k)
        sheets += R"(<sheet name=")" + names[k] + R"(" sheetId=")" + QByteArray::number(k + 1) + R"(" r:id="s)"
                + QByteArray::number(k + 1) + R"("/>)";
    return "<workbook " + Namespaces + ">" + before + "<sheets>" + sheets + "</sheets>" + after + "</workbook>";
}

Parts workbookParts(const QByteArray& sheetXml, const QByteArray& sharedStringsXml, const QByteArray& stylesXml)
{
    QByteArray workbookItems = relationship("s1", "worksheet", "worksheets/sheet1.xml");
    if (!sharedStringsXml.isEmpty())
        workbookItems += relationship("rS", "sharedStrings", "sharedStrings.xml");
    if (!stylesXml.isEmpty())
        workbookItems += relationship("rT", "styles", "styles.xml");
    Parts parts = {
        {"[Content_Types].xml",
         R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
         R"(<Default Extension="xml" ContentType="application/xml"/></Types>)"},
        {"_rels/.rels", relationships(relationship("rId1", "officeDocument", "xl/workbook.xml"))},
        {"xl/workbook.xml", workbookOf({"Data"})},
        {"xl/_rels/workbook.xml.rels", relationships(workbookItems)},
        {"xl/worksheets/sheet1.xml", sheetXml},
    };
    if (!sharedStringsXml.isEmpty())
        parts.emplace_back("xl/sharedStrings.xml", sharedStringsXml);
    if (!stylesXml.isEmpty())
        parts.emplace_back("xl/styles.xml", stylesXml);
    return parts;
}

void setPart(Parts& parts, const QString& name, const QByteArray& data)
{
    const auto part = std::find_if(parts.begin(), parts.end(), [&](const auto& p) { return p.first == name; });
    if (part != parts.end())
        part->second = data;
    else
        parts.emplace_back(name, data);
}

QByteArray worksheet(const QByteArray& rows)
{
    return "<worksheet " + Namespaces + "><sheetData>" + rows + "</sheetData></worksheet>";
}

QByteArray numberRows(int count)
{
    QByteArray rows;
    for (int r = 1; r <= count; ++r) {
        const QByteArray n = QByteArray::number(r);
        rows += "<row r=\"" + n + "\"><c r=\"A" + n + "\"><v>" + n + "</v></c></row>";
    }
    return rows;
}

std::unique_ptr<QXlsx::Document> openBytes(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return std::make_unique<QXlsx::Document>(&buffer);
}

bool readModel(const QByteArray& bytes, QXlsx::detail::WorkbookData& book, const QXlsx::detail::ReadLimits& limits)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return QXlsx::detail::readPackage(buffer, book, nullptr, limits);
}

QString scratchPath(const QString& name)
{
    static QTemporaryDir folder;
    return folder.filePath(name);
}

QString saved(const QXlsx::Document& document, const QString& name)
{
    const QString path = scratchPath(name);
    return document.saveAs(path) ? path : QString();
}

QByteArray entry(QXlsx::detail::ZipReader& zip, const QString& name, bool* complete)
{
    QByteArray data;
    const bool ok = zip.readAll(zip.indexOf(name), &data, nullptr);
    if (complete)
        *complete = ok;
    return data;
}

QByteArray entry(const QString& path, const QString& name)
{
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    QXlsx::detail::ZipReader zip{QXlsx::detail::ReadLimits()};
    return zip.open(bytes.constData(), bytes.size(), nullptr) ? entry(zip, name) : QByteArray();
}

namespace {

QByteArray run(const QString& program, const QStringList& arguments, QString* error, int timeoutMs)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        *error = QString::fromUtf8(process.readAllStandardError());
        if (error->isEmpty())
            *error = QFileInfo(program).fileName() + QStringLiteral(" failed");
        return QByteArray();
    }
    error->clear();
    return process.readAllStandardOutput();
}

} // namespace

bool haveOpenpyxl()
{
    static const bool have = [] {
        QString error;
        return QFileInfo(QStringLiteral(VYGIS_PYTHON3)).isExecutable()
               && runPython({"-c", "import openpyxl"}, &error).isEmpty() && error.isEmpty();
    }();
    return have;
}

bool haveOffice()
{
    return QFileInfo(QStringLiteral(VYGIS_SOFFICE)).isExecutable();
}

QByteArray runPython(const QStringList& arguments, QString* error, int timeoutMs)
{
    QStringList args = arguments;
    if (!args.isEmpty() && args.first().endsWith(QLatin1String(".py")))
        args.first() = QStringLiteral(VYGIS_TEST_SOURCE_DIR "/interop/") + args.first();
    return run(QStringLiteral(VYGIS_PYTHON3), args, error, timeoutMs);
}

bool convertByOffice(const QStringList& files, const QString& filter, const QString& outDir, QString* error)
{
    // A private profile, so that a desktop session of LibreOffice is never in the way.
    const QTemporaryDir profile;
    run(QStringLiteral(VYGIS_SOFFICE),
        QStringList{"-env:UserInstallation=" + QUrl::fromLocalFile(profile.path()).toString(), "--headless",
                    "--convert-to", filter, "--outdir", outDir} + files, error, 180000);
    return error->isEmpty();
}

QJsonObject openpyxlDump(const QString& path)
{
    QString error;
    const QByteArray json = runPython({QStringLiteral("openpyxl_dump.py"), path}, &error);
    if (!error.isEmpty())
        qWarning("openpyxl: %s", qPrintable(error));
    return QJsonDocument::fromJson(json).object();
}

QJsonObject dumpedCell(const QJsonObject& dump, int sheet, const QString& reference)
{
    return dump.value(QLatin1String("sheets")).toArray().at(sheet).toObject()
        .value(QLatin1String("cells")).toObject().value(reference).toObject();
}

} // namespace xlsxtest
