// Packages made to hurt a reader: entries that share their compressed bytes, central
// directories cut short, relationships that loop or leave the package, a name repeated
// on thousands of sheets, and files of other formats under a workbook's name. Each opens
// as an empty or partial workbook within a few seconds.

#include "test_read_package.h"

#include "model/workbookdata.h"
#include "read/packagereader.h"
#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QSet>

#include <zlib.h>

#include <memory>

using namespace QXlsx;
using namespace readtest;

namespace {

QByteArray saved(const Document& doc)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(doc.saveAs(&buffer));
    return buffer.data();
}

void put16(QByteArray& out, quint32 value)
{
    out += char(value & 0xff);
    out += char((value >> 8) & 0xff);
}

void put32(QByteArray& out, quint32 value)
{
    put16(out, value & 0xffff);
    put16(out, value >> 16);
}

quint32 get32(const QByteArray& bytes, int at)
{
    return quint32(uchar(bytes[at])) | quint32(uchar(bytes[at + 1])) << 8
         | quint32(uchar(bytes[at + 2])) << 16 | quint32(uchar(bytes[at + 3])) << 24;
}

// A zip written record by record, so that it can hold what no zip library writes: a
// central directory in which many entries point at one local file.
class RawZip
{
public:
    // A local file whose bytes are stored (method 0) or a raw deflate stream (8).
    quint32 addFile(const QByteArray& name, const QByteArray& bytes, quint16 method = 0,
                    quint32 inflatedSize = 0)
    {
        File file{name, quint32(m_locals.size()), method, quint32(bytes.size()),
                  method == 0 ? quint32(bytes.size()) : inflatedSize,
                  quint32(crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()), uInt(bytes.size())))};
        header(m_locals, 0x04034b50, file, file.name, false);
        m_locals += bytes;
        m_files.push_back(file);
        m_central.push_back(file);
        return file.offset;
    }
    // One more directory entry for the local file of another entry.
    void addAlias(const QByteArray& alias, const QByteArray& of)
    {
        for (File file : m_files) {
            if (file.name == of) {
                file.name = alias;
                m_central.push_back(file);
            }
        }
    }
    QByteArray bytes() const
    {
        QByteArray directory;
        for (const File& file : m_central)
            header(directory, 0x02014b50, file, file.name, true);
        QByteArray out = m_locals + directory;
        put32(out, 0x06054b50);
        put32(out, 0);
        put16(out, quint32(m_central.size()));
        put16(out, quint32(m_central.size()));
        put32(out, quint32(directory.size()));
        put32(out, quint32(m_locals.size()));
        put16(out, 0);
        return out;
    }

private:
    struct File
    {
        QByteArray name;
        quint32 offset;
        quint16 method;
        quint32 compressedSize;
        quint32 size;
        quint32 crc;
    };
    static void header(QByteArray& out, quint32 signature, const File& file, const QByteArray& name, bool central)
    {
        put32(out, signature);
        if (central)
            put16(out, 20);   // made by
        put16(out, 20);       // needed to extract
        put16(out, 0);        // flags
        put16(out, file.method);
        put32(out, 0);        // time and date
        put32(out, file.crc);
        put32(out, file.compressedSize);
        put32(out, file.size);
        put16(out, quint32(name.size()));
        put16(out, 0);        // extra field
        if (central) {
            put16(out, 0);    // comment
            put16(out, 0);    // disk
            put16(out, 0);    // internal attributes
            put32(out, 0);    // external attributes
            put32(out, file.offset);
        }
        out += name;
    }

    QByteArray m_locals;
    std::vector<File> m_files;
    std::vector<File> m_central;
};

// Raw deflate blocks of text ending on a byte boundary and not final, so that copies
// joined one after another are a valid stream of the text repeated.
QByteArray deflateBlocks(const QByteArray& text)
{
    z_stream z{};
    deflateInit2(&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray out(int(deflateBound(&z, uLong(text.size()))) + 64, '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.constData()));
    z.avail_in = uInt(text.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = uInt(out.size());
    deflate(&z, Z_FULL_FLUSH);
    out.resize(int(z.total_out));
    deflateEnd(&z);
    return out;
}

const QByteArray EmptyFinalBlock("\x03\x00", 2);

const QByteArray WorkbookNamespaces =
    R"(xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
    R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")";

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

// A workbook of the sheets named, sheet k pointing at relationship "s<k>".
QByteArray workbookOf(const QList<QByteArray>& names)
{
    QByteArray sheets;
    for (int k = 0; k < names.size(); ++k)
        sheets += R"(<sheet name=")" + names[k] + R"(" sheetId=")" + QByteArray::number(k + 1) + R"(" r:id="s)"
                + QByteArray::number(k + 1) + R"("/>)";
    return "<workbook " + WorkbookNamespaces + "><sheets>" + sheets + "</sheets></workbook>";
}

const QByteArray PackageToWorkbook = relationships(relationship("rId1", "officeDocument", "xl/workbook.xml"));

} // namespace

TEST(ReadHostile, StopsEntriesThatShareOneStreamInflatingToGigabytes)
{
    // 256 copies of a block of 1 MiB of empty rows: about 256 KiB that inflate to
    // 256 MiB, listed as the part of each of 100 sheets, 25 GiB in all.
    const QByteArray stream = deflateBlocks(R"(<worksheet )" + WorkbookNamespaces + "><sheetData>")
                            + deflateBlocks(QByteArray("<row/>").repeated(174762)).repeated(256) + EmptyFinalBlock;
    QList<QByteArray> names;
    QByteArray sheetRelationships;
    for (int k = 1; k <= 100; ++k) {
        names << "S" + QByteArray::number(k);
        sheetRelationships += relationship("s" + QByteArray::number(k), "worksheet",
                                           "worksheets/sheet" + QByteArray::number(k) + ".xml");
    }
    RawZip zip;
    zip.addFile("_rels/.rels", PackageToWorkbook);
    zip.addFile("xl/workbook.xml", workbookOf(names));
    zip.addFile("xl/_rels/workbook.xml.rels", relationships(sheetRelationships));
    zip.addFile("xl/worksheets/sheet1.xml", stream, 8, quint32(256) << 20);
    for (int k = 2; k <= 100; ++k)
        zip.addAlias("xl/worksheets/sheet" + QByteArray::number(k) + ".xml", "xl/worksheets/sheet1.xml");
    const QByteArray bytes = zip.bytes();
    ASSERT_LT(bytes.size(), 512 << 10);

    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(bytes);
    EXPECT_LT(timer.elapsed(), 20000 * VYGIS_TIME_SCALE);
    EXPECT_EQ(doc->sheetNames().size(), 100);
    EXPECT_FALSE(doc->dimension().isValid());
}

TEST(ReadHostile, GivesAnEmptyWorkbookForACentralDirectoryCutShort)
{
    const QByteArray good = zipOf(workbookParts(worksheet(R"(<row r="1"><c r="A1"><v>1</v></c></row>)")));
    const int end = good.size() - 22;   // the end record, without a comment
    const int directory = int(get32(good, end + 16));
    const QByteArray endRecord = good.mid(end);

    QByteArray cutRecord = good.left(directory + (end - directory) / 2) + endRecord;
    QByteArray moreEntries = good;
    moreEntries[end + 8] = char(moreEntries[end + 8] + 3);
    moreEntries[end + 10] = char(moreEntries[end + 10] + 3);
    QByteArray pastTheEnd = good;
    pastTheEnd[end + 16 + 2] = char(0x7f);
    QByteArray noDirectory = good.left(directory) + endRecord;

    for (const QByteArray& bytes : {cutRecord, moreEntries, pastTheEnd, noDirectory}) {
        auto doc = openBytes(bytes);
        EXPECT_EQ(doc->sheetNames(), QStringList{"Sheet1"});
        EXPECT_FALSE(doc->dimension().isValid());
        EXPECT_FALSE(doc->errorString().isEmpty());
    }
}

TEST(ReadHostile, NamesTheFormatOfACompoundDocumentOrAnOpenDocumentFile)
{
    // The header of a compound document, as both an encrypted workbook and an Excel
    // 97-2003 workbook begin, followed by sectors that do not matter here.
    const QByteArray compound = QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8)
                              + QByteArray::fromHex("000000000000000000000000000000003e000300feff0900")
                              + QByteArray(4096, '\0');
    auto encrypted = openBytes(compound);
    EXPECT_EQ(encrypted->sheetNames(), QStringList{"Sheet1"});
    EXPECT_TRUE(encrypted->errorString().contains("encrypted"));

    RawZip ods;
    ods.addFile("mimetype", "application/vnd.oasis.opendocument.spreadsheet");
    ods.addFile("content.xml", R"(<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"/>)");
    ods.addFile("META-INF/manifest.xml", "<manifest/>");
    auto openDocument = openBytes(ods.bytes());
    EXPECT_EQ(openDocument->sheetNames(), QStringList{"Sheet1"});
    EXPECT_TRUE(openDocument->errorString().contains("OpenDocument"));
}

TEST(ReadHostile, GivesEverySheetANameOfItsOwnWhateverTheFileRepeats)
{
    QList<QByteArray> names = {"Data", "data", "", "DATA", "Data (2)", "Sheet3"};
    for (int k = 0; k < 20000; ++k)
        names << "Data";
    Parts parts = workbookParts(worksheet({}));
    setPart(parts, "xl/workbook.xml", workbookOf(names));
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(zipOf(parts));
    EXPECT_LT(timer.elapsed(), 20000 * VYGIS_TIME_SCALE);
    const QStringList read = doc->sheetNames();
    ASSERT_EQ(read.size(), names.size());
    EXPECT_EQ(read.mid(0, 7), (QStringList{"Data", "data (2)", "Sheet3", "DATA (3)", "Data (2) (2)", "Sheet3 (2)", "Data (4)"}));
    QSet<QString> folded;
    for (const QString& name : read)
        folded.insert(name.toCaseFolded());
    EXPECT_EQ(folded.size(), read.size());
}

TEST(ReadHostile, KeepsNoMoreSheetsThanTheLimit)
{
    QList<QByteArray> names;
    for (int k = 1; k <= 150; ++k)
        names << "S" + QByteArray::number(k);
    Parts parts = workbookParts(worksheet(R"(<row r="1"><c r="A1"><v>1</v></c></row>)"));
    setPart(parts, "xl/workbook.xml", workbookOf(names));
    QBuffer buffer;
    buffer.setData(zipOf(parts));
    buffer.open(QIODevice::ReadOnly);
    detail::ReadLimits limits;
    limits.maxSheets = 100;
    detail::WorkbookData book;
    ASSERT_TRUE(detail::readPackage(buffer, book, nullptr, limits));
    ASSERT_EQ(book.sheets.size(), 100u);
    EXPECT_EQ(book.sheets.back()->name, QStringLiteral("S100"));
}

TEST(ReadHostile, FollowsNoRelationshipThatLoopsOrLeavesThePackage)
{
    const QByteArray cells = worksheet(R"(<row r="1"><c r="A1"><v>7</v></c></row>)");
    Parts parts = workbookParts(cells);
    setPart(parts, "xl/workbook.xml", workbookOf({"Self", "OwnRelationships", "Shared", "SharedAgain", "Etc",
                                                  "Drive", "Share", "Url", "Root"}));
    setPart(parts, "xl/_rels/workbook.xml.rels", relationships(
        relationship("s1", "worksheet", "workbook.xml") + relationship("s2", "worksheet", "_rels/workbook.xml.rels")
        + relationship("s3", "worksheet", "worksheets/sheet1.xml") + relationship("s4", "worksheet", "/xl/worksheets/sheet1.xml")
        + relationship("s5", "worksheet", "/etc/passwd") + relationship("s6", "worksheet", R"(C:\Windows\win.ini)")
        + relationship("s7", "worksheet", R"(\\server\share\sheet.xml)") + relationship("s8", "worksheet", "file:///etc/passwd")
        + relationship("s9", "worksheet", "/../../../etc/passwd")
        + relationship("r1", "styles", "workbook.xml") + relationship("r2", "sharedStrings", "worksheets/sheet1.xml")));
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(zipOf(parts));
    EXPECT_LT(timer.elapsed(), 5000 * VYGIS_TIME_SCALE);
    const QStringList names = doc->sheetNames();
    ASSERT_EQ(names.size(), 9);
    for (const QString& name : names) {
        ASSERT_TRUE(doc->selectSheet(name));
        const bool shared = name.startsWith("Shared");
        EXPECT_EQ(doc->read(1, 1), shared ? QVariant(7.0) : QVariant()) << name.toStdString();
    }

    // What was read saves and reads back the same, each sheet in a part of its own.
    auto again = openBytes(saved(*doc));
    EXPECT_EQ(again->sheetNames(), names);
    ASSERT_TRUE(again->selectSheet("SharedAgain"));
    EXPECT_EQ(again->read(1, 1), QVariant(7.0));
}

TEST(ReadHostile, ReadsNoWorkbookThroughAPackageRelationshipToItself)
{
    Parts parts = workbookParts(worksheet(R"(<row r="1"><c r="A1"><v>1</v></c></row>)"));
    setPart(parts, "_rels/.rels", relationships(relationship("rId1", "officeDocument", "/_rels/.rels")));
    auto doc = openBytes(zipOf(parts));
    EXPECT_EQ(doc->sheetNames(), QStringList{"Sheet1"});
    EXPECT_FALSE(doc->dimension().isValid());
}

// Inputs on which the fuzz targets once failed, read as the targets read them, saved and
// read again with the same sheets.
TEST(ReadHostile, EveryInputThatFuzzingOnceBrokeOpensReadsAndSaves)
{
    const QDir inputs(QStringLiteral(VYGIS_TEST_SOURCE_DIR "/data/fuzz"));
    const QStringList names = inputs.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(inputs.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        detail::WorkbookData book;
        detail::readPackage(buffer, book, nullptr);

        auto doc = openBytes(bytes);
        for (const QString& sheet : doc->sheetNames()) {
            ASSERT_TRUE(doc->selectSheet(sheet));
            const CellRange used = doc->dimension();
            for (int row = used.firstRow(); used.isValid() && row <= qMin(used.lastRow(), used.firstRow() + 100); ++row)
                for (int column = used.firstColumn(); column <= qMin(used.lastColumn(), used.firstColumn() + 100); ++column)
                    doc->read(row, column);
        }
        auto again = openBytes(saved(*doc));
        ASSERT_EQ(again->sheetNames(), doc->sheetNames());
        for (const QString& sheet : doc->sheetNames())
            EXPECT_EQ(again->sheet(sheet)->sheetType(), doc->sheet(sheet)->sheetType()) << sheet.toStdString();
    }
}
