#include "test_read_package.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <zip.h>

#include <cstdlib>
#include <cstring>

namespace readtest {

QByteArray zipOf(const Parts& parts)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(buffer);
    zip_t* archive = zip_open_from_source(buffer, ZIP_TRUNCATE, &error);
    for (const auto& [name, data] : parts) {
        // libzip reads the bytes when the archive closes; the copy is freed by libzip.
        auto* copy = static_cast<char*>(std::malloc(size_t(std::max(1, int(data.size())))));
        std::memcpy(copy, data.constData(), size_t(data.size()));
        zip_source_t* source = zip_source_buffer(archive, copy, zip_uint64_t(data.size()), 1);
        zip_file_add(archive, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8);
    }
    zip_close(archive);

    QByteArray bytes;
    zip_source_open(buffer);
    zip_source_seek(buffer, 0, SEEK_END);
    bytes.resize(int(zip_source_tell(buffer)));
    zip_source_seek(buffer, 0, SEEK_SET);
    zip_source_read(buffer, bytes.data(), zip_uint64_t(bytes.size()));
    zip_source_close(buffer);
    zip_source_free(buffer);
    zip_error_fini(&error);
    return bytes;
}

namespace {

const char* const ContentTypes =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
    R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
    R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
    R"(<Default Extension="xml" ContentType="application/xml"/>)"
    R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>)"
    R"(<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
    R"(</Types>)";

const char* const PackageRelationships =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
    R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/>)"
    R"(</Relationships>)";

const char* const Workbook =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
    R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
    R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
    R"(<sheets><sheet name="Data" sheetId="1" r:id="rId1"/></sheets></workbook>)";

QByteArray workbookRelationships(bool strings, bool styles)
{
    QByteArray xml =
        R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
        R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
        R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/>)";
    if (strings)
        xml += R"(<Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/>)";
    if (styles)
        xml += R"(<Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/>)";
    return xml + "</Relationships>";
}

} // namespace

Parts workbookParts(const QByteArray& sheetXml, const QByteArray& sharedStringsXml, const QByteArray& stylesXml)
{
    Parts parts = {
        {QStringLiteral("[Content_Types].xml"), ContentTypes},
        {QStringLiteral("_rels/.rels"), PackageRelationships},
        {QStringLiteral("xl/workbook.xml"), Workbook},
        {QStringLiteral("xl/_rels/workbook.xml.rels"),
         workbookRelationships(!sharedStringsXml.isEmpty(), !stylesXml.isEmpty())},
        {QStringLiteral("xl/worksheets/sheet1.xml"), sheetXml},
    };
    if (!sharedStringsXml.isEmpty())
        parts.emplace_back(QStringLiteral("xl/sharedStrings.xml"), sharedStringsXml);
    if (!stylesXml.isEmpty())
        parts.emplace_back(QStringLiteral("xl/styles.xml"), stylesXml);
    return parts;
}

void setPart(Parts& parts, const QString& name, const QByteArray& data)
{
    for (auto& part : parts) {
        if (part.first == name) {
            part.second = data;
            return;
        }
    }
    parts.emplace_back(name, data);
}

QByteArray worksheet(const QByteArray& rows, const QByteArray& after)
{
    return R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
           R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
           R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
           "<sheetData>" + rows + "</sheetData>" + after + "</worksheet>";
}

QString fileOf(const QByteArray& bytes)
{
    static QTemporaryDir folder;
    static int count = 0;
    const QString path = folder.filePath(QStringLiteral("package%1.xlsx").arg(++count));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

std::unique_ptr<QXlsx::Document> openBytes(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return std::make_unique<QXlsx::Document>(&buffer);
}

} // namespace readtest
