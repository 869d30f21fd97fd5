// Damaged and hostile packages: an empty or partial workbook, quickly, never a crash.

#include "test_read_package.h"

#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <memory>

using namespace QXlsx;
using namespace readtest;

namespace {

// The empty workbook a document falls back to: one empty worksheet "Sheet1".
void expectEmptyWorkbook(const Document& doc)
{
    EXPECT_EQ(doc.sheetNames(), QStringList{"Sheet1"});
    ASSERT_NE(doc.currentWorksheet(), nullptr);
    EXPECT_FALSE(doc.dimension().isValid());
    EXPECT_FALSE(doc.errorString().isEmpty());
}

QByteArray rowsOfNumbers(int count)
{
    QByteArray rows;
    for (int r = 1; r <= count; ++r)
        rows += "<row r=\"" + QByteArray::number(r) + "\"><c r=\"A" + QByteArray::number(r) + "\"><v>" + QByteArray::number(r) + "</v></c></row>";
    return rows;
}

} // namespace

TEST(ReadMalformed, GivesAnEmptyWorkbookForAMissingFile)
{
    Document doc(QStringLiteral("/nonexistent/folder/book.xlsx"));
    expectEmptyWorkbook(doc);
}

TEST(ReadMalformed, GivesAnEmptyWorkbookForBytesThatAreNotAPackage)
{
    for (const QByteArray& bytes : {QByteArray(), QByteArray("id,name\n1,Vilnius\n"), QByteArray(100000, '\xff')}) {
        auto doc = openBytes(bytes);
        expectEmptyWorkbook(*doc);
    }
}

TEST(ReadMalformed, GivesAnEmptyWorkbookForAZipWithoutAWorkbook)
{
    auto doc = openBytes(zipOf({{"readme.txt", "hello"}}));
    expectEmptyWorkbook(*doc);
}

TEST(ReadMalformed, GivesAnEmptyWorkbookForATruncatedPackage)
{
    const QByteArray bytes = zipOf(workbookParts(worksheet(rowsOfNumbers(2000))));
    for (int size : {10, 100, int(bytes.size()) / 2, int(bytes.size()) - 10}) {
        auto doc = openBytes(bytes.left(size));
        expectEmptyWorkbook(*doc);
    }
}

TEST(ReadMalformed, KeepsTheCellsBeforeBrokenXml)
{
    auto doc = openBytes(zipOf(workbookParts(worksheet(rowsOfNumbers(3) + "<row r=\"4\"><c r=\"A4\"><v>4</c></row>"))));
    EXPECT_EQ(doc->read(3, 1), QVariant(3.0));
    EXPECT_TRUE(doc->read(4, 1).isNull());
}

TEST(ReadMalformed, SurvivesCorruptedBytesAnywhere)
{
    const QByteArray good = zipOf(workbookParts(worksheet(rowsOfNumbers(500)),
                                                R"(<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>a</t></si></sst>)"));
    QElapsedTimer timer;
    timer.start();
    for (int step = 0; step < 64; ++step) {
        QByteArray bytes = good;
        const int at = int((quint64(step) * 2654435761u) % quint64(bytes.size()));
        for (int i = at; i < qMin(bytes.size(), at + 16); ++i)
            bytes[i] = char(bytes[i] ^ (0x11 * (i % 7 + 1)));
        auto doc = openBytes(bytes);
        EXPECT_FALSE(doc->sheetNames().isEmpty());
    }
    EXPECT_LT(timer.elapsed(), 10000 * VYGIS_TIME_SCALE);
}

TEST(ReadMalformed, StopsASheetThatInflatesLikeABomb)
{
    // A zip of a few dozen KiB that would inflate to 32 MiB of empty rows.
    QByteArray filler;
    const QByteArray emptyRow = "<row/>";
    filler.reserve(32 << 20);
    while (filler.size() < (32 << 20))
        filler += emptyRow.repeated(4096);
    const QByteArray bytes = zipOf(workbookParts(worksheet(rowsOfNumbers(2) + filler)));
    filler.clear();
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
    QByteArray previous = "a";
    for (char c = 'b'; c <= 'p'; ++c) {
        laughs += QByteArray("<!ENTITY ") + c + " \"" + ("&" + previous + ";").repeated(16) + "\">";
        previous = QByteArray(1, c);
    }
    laughs += R"(]><sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>&p;</t></si></sst>)";
    QElapsedTimer timer;
    timer.start();
    auto doc = openBytes(zipOf(workbookParts(worksheet(R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1"><v>1</v></c></row>)"), laughs)));
    EXPECT_LT(timer.elapsed(), 2000 * VYGIS_TIME_SCALE);
    EXPECT_TRUE(doc->read(1, 1).isNull());
    EXPECT_EQ(doc->read(1, 2), QVariant(1.0));
}

TEST(ReadMalformed, KeepsASheetWhoseRelationshipPointsNowhere)
{
    Parts parts = workbookParts(worksheet(rowsOfNumbers(1)));
    setPart(parts, "xl/_rels/workbook.xml.rels",
            R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
            R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="../../../../etc/passwd"/>)"
            R"(</Relationships>)");
    auto doc = openBytes(zipOf(parts));
    EXPECT_EQ(doc->sheetNames(), QStringList{"Data"});
    ASSERT_NE(doc->currentWorksheet(), nullptr);
    EXPECT_FALSE(doc->dimension().isValid());
}
