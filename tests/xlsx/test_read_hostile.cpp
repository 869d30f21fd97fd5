// Damaged packages and packages made to hurt a reader: cut short, corrupted, inflating
// like bombs, entries that share their compressed bytes, relationships that loop or leave
// the package, a name repeated on thousands of sheets, files of other formats under a
// workbook's name. Each opens as an empty or partial workbook, quickly, never a crash.

#include "test_support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSet>
#include <QtEndian>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

// The empty workbook a document falls back to: one empty worksheet "Sheet1", and why.
void expectEmptyWorkbook(const Document& doc, const char* what, bool givesReason = true)
{
    SCOPED_TRACE(what);
    EXPECT_EQ(doc.sheetNames(), QStringList{"Sheet1"});
    ASSERT_NE(doc.currentWorksheet(), nullptr);
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
    EXPECT_FALSE(doc.dimension().isValid());
    EXPECT_TRUE(!givesReason || !doc.errorString().isEmpty());
}

} // namespace

TEST(ReadMalformed, GivesOneEmptySheetAndAReasonForWhatIsNoWorkbook)
{
    expectEmptyWorkbook(Document(QStringLiteral("/nonexistent/folder/book.xlsx")), "missing file");
    expectEmptyWorkbook(Document(static_cast<QIODevice*>(nullptr)), "no device");

    const QByteArray good = zipOf(workbookParts(worksheet(numberRows(2000))));
    const int end = good.size() - 22;   // the end record, without a comment
    const int directory = int(qFromLittleEndian<quint32>(good.constData() + end + 16));
    const QByteArray endRecord = good.mid(end);
    QByteArray moreEntries = good;
    moreEntries[end + 8] = char(moreEntries[end + 8] + 3);
    moreEntries[end + 10] = char(moreEntries[end + 10] + 3);
    QByteArray pastTheEnd = good;
    pastTheEnd[end + 16 + 2] = char(0x7f);
    Parts selfReferring = workbookParts(worksheet(numberRows(1)));
    setPart(selfReferring, "_rels/.rels", relationships(relationship("rId1", "officeDocument", "/_rels/.rels")));

    const std::pair<const char*, QByteArray> cases[] = {
        {"nothing", QByteArray()},
        {"text", "id,name\n1,Vilnius\n"},
        {"noise", QByteArray(100000, '\xff')},
        {"zip without a workbook", zipOf({{"readme.txt", "hello"}})},
        {"first 10 bytes", good.left(10)},
        {"first 100 bytes", good.left(100)},
        {"first half", good.left(good.size() / 2)},
        {"all but 10 bytes", good.left(good.size() - 10)},
        {"central directory cut in half", good.left(directory + (end - directory) / 2) + endRecord},
        {"no central directory", good.left(directory) + endRecord},
        {"more entries than listed", moreEntries},
        {"directory past the end", pastTheEnd},
    };
    for (const auto& [what, bytes] : cases)
        expectEmptyWorkbook(*openBytes(bytes), what);
    expectEmptyWorkbook(*openBytes(zipOf(selfReferring)), "package relationship to itself", false);
}

TEST(ReadMalformed, KeepsTheCellsBeforeBrokenXml)
{
    auto doc = openBytes(zipOf(workbookParts(worksheet(numberRows(3) + "<row r=\"4\"><c r=\"A4\"><v>4</c></row>"))));
    EXPECT_EQ(doc->read(3, 1), QVariant(3.0));
    EXPECT_TRUE(doc->read(4, 1).isNull());
}

TEST(ReadMalformed, SurvivesCorruptedBytesAnywhere)
{
    const QByteArray good = zipOf(workbookParts(worksheet(numberRows(500)),
                                                R"(<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>a</t></si></sst>)"));
    QElapsedTimer timer;
    timer.start();
    for (int step = 0; step < 64; ++step) {
        QByteArray bytes = good;
        const int at = int((quint64(step) * 2654435761u) % quint64(bytes.size()));
        for (int i = at; i < qMin(bytes.size(), at + 16); ++i)
            bytes[i] = char(bytes[i] ^ (0x11 * (i % 7 + 1)));
        EXPECT_FALSE(openBytes(bytes)->sheetNames().isEmpty());
    }
    EXPECT_LT(timer.elapsed(), 10000 * VYGIS_TIME_SCALE);
}

TEST(ReadMalformed, StopsASheetThatInflatesLikeABomb)
{
    // A zip of a few dozen KiB that would inflate to 32 MiB of empty rows.
    const QByteArray bytes = zipOf(workbookParts(worksheet(numberRows(2) + QByteArray("<row/>").repeated((32 << 20) / 6))));
    ASSERT_LT(bytes.size(), 256 << 10);
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(bytes);
    EXPECT_LT(timer.elapsed(), 1000 * VYGIS_TIME_SCALE);
    EXPECT_EQ(doc->read(2, 1), QVariant(2.0));
}

TEST(ReadMalformed, RefusesEntityExpansionInAnyPart)
{
    QByteArray laughs = R"(<?xml version="1.0"?><!DOCTYPE sst [<!ENTITY a "aaaaaaaaaaaaaaaa">)";
    for (char c = 'b'; c <= 'p'; ++c)
        laughs += QByteArray("<!ENTITY ") + c + " \"" + ("&" + QByteArray(1, char(c - 1)) + ";").repeated(16) + "\">";
    laughs += R"(]><sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>&p;</t></si></sst>)";
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(zipOf(workbookParts(worksheet(R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1"><v>1</v></c></row>)"), laughs)));
    EXPECT_LT(timer.elapsed(), 2000 * VYGIS_TIME_SCALE);
    EXPECT_TRUE(doc->read(1, 1).isNull());
    EXPECT_EQ(doc->read(1, 2), QVariant(1.0));
}

TEST(ReadHostile, StopsEntriesThatShareOneStreamInflatingToGigabytes)
{
    // 256 copies of a block of 1 MiB of empty rows: about 256 KiB that inflate to
    // 256 MiB, listed as the part of each of 100 sheets, 25 GiB in all.
    const QByteArray sheetStart = worksheet({}).left(worksheet({}).indexOf("</sheetData>"));
    const QByteArray stream = rawDeflate(sheetStart, true)
                            + rawDeflate(QByteArray("<row/>").repeated(174762), true).repeated(256)
                            + QByteArray("\x03\x00", 2);   // an empty final block
    QList<QByteArray> names;
    QByteArray sheetRelationships;
    RawZip zip;
    for (int k = 1; k <= 100; ++k) {
        const QByteArray n = QByteArray::number(k);
        names << "S" + n;
        sheetRelationships += relationship("s" + n, "worksheet", "worksheets/sheet" + n + ".xml");
        if (k == 1)
            zip.addStream("xl/worksheets/sheet1.xml", stream, quint32(256) << 20);
        else
            zip.addAlias("xl/worksheets/sheet" + n + ".xml", "xl/worksheets/sheet1.xml");
    }
    zip.add("_rels/.rels", relationships(relationship("rId1", "officeDocument", "xl/workbook.xml")));
    zip.add("xl/workbook.xml", workbookOf(names));
    zip.add("xl/_rels/workbook.xml.rels", relationships(sheetRelationships));
    const QByteArray bytes = zip.bytes();
    ASSERT_LT(bytes.size(), 512 << 10);

    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(bytes);
    EXPECT_LT(timer.elapsed(), 20000 * VYGIS_TIME_SCALE);
    EXPECT_EQ(doc->sheetNames().size(), 100);
    EXPECT_FALSE(doc->dimension().isValid());
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
    ods.add("mimetype", "application/vnd.oasis.opendocument.spreadsheet", false);
    ods.add("content.xml", R"(<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"/>)");
    ods.add("META-INF/manifest.xml", "<manifest/>");
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
    Parts parts = workbookParts(worksheet(numberRows(1)));
    setPart(parts, "xl/workbook.xml", workbookOf(names));
    detail::ReadLimits limits;
    limits.maxSheets = 100;
    detail::WorkbookData book;
    ASSERT_TRUE(readModel(zipOf(parts), book, limits));
    ASSERT_EQ(book.sheets.size(), 100u);
    EXPECT_EQ(book.sheets.back()->name, QStringLiteral("S100"));
}

TEST(ReadHostile, FollowsNoRelationshipThatLoopsOrLeavesThePackage)
{
    const QList<QByteArray> names = {"Self", "OwnRelationships", "Shared", "SharedAgain", "Etc",
                                     "Drive", "Share", "Url", "Root", "Up"};
    const QByteArray targets[] = {"workbook.xml", "_rels/workbook.xml.rels", "worksheets/sheet1.xml",
                                  "/xl/worksheets/sheet1.xml", "/etc/passwd", R"(C:\Windows\win.ini)",
                                  R"(\\server\share\sheet.xml)", "file:///etc/passwd", "/../../../etc/passwd",
                                  "../../../../etc/passwd"};
    QByteArray items = relationship("r1", "styles", "workbook.xml") + relationship("r2", "sharedStrings", "worksheets/sheet1.xml");
    for (int k = 0; k < names.size(); ++k)
        items += relationship("s" + QByteArray::number(k + 1), "worksheet", targets[k]);
    Parts parts = workbookParts(worksheet(numberRows(1)));
    setPart(parts, "xl/workbook.xml", workbookOf(names));
    setPart(parts, "xl/_rels/workbook.xml.rels", relationships(items));
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(zipOf(parts));
    EXPECT_LT(timer.elapsed(), 5000 * VYGIS_TIME_SCALE);
    const QStringList read = doc->sheetNames();
    ASSERT_EQ(read.size(), names.size());
    for (const QString& name : read) {
        ASSERT_TRUE(doc->selectSheet(name));
        EXPECT_EQ(doc->read(1, 1), name.startsWith("Shared") ? QVariant(1.0) : QVariant()) << name.toStdString();
    }

    // What was read saves and reads back the same, each sheet in a part of its own.
    Document again(saved(*doc, "relationships.xlsx"));
    EXPECT_EQ(again.sheetNames(), read);
    ASSERT_TRUE(again.selectSheet("SharedAgain"));
    EXPECT_EQ(again.read(1, 1), QVariant(1.0));
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
        detail::WorkbookData book;
        readModel(bytes, book);

        auto doc = openBytes(bytes);
        for (const QString& sheet : doc->sheetNames()) {
            ASSERT_TRUE(doc->selectSheet(sheet));
            const CellRange used = doc->dimension();
            for (int row = used.firstRow(); used.isValid() && row <= qMin(used.lastRow(), used.firstRow() + 100); ++row)
                for (int column = used.firstColumn(); column <= qMin(used.lastColumn(), used.firstColumn() + 100); ++column)
                    doc->read(row, column);
        }
        const Document again(saved(*doc, "fuzz.xlsx"));
        ASSERT_EQ(again.sheetNames(), doc->sheetNames());
        for (const QString& sheet : doc->sheetNames())
            EXPECT_EQ(again.sheet(sheet)->sheetType(), doc->sheet(sheet)->sheetType()) << sheet.toStdString();
    }
}
