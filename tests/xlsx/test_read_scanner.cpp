// The XML scanner that reads sheet cells and shared strings: the same events whatever
// the chunks a part arrives in, references and CDATA resolved, malformed and hostile
// text stopped with what came before it kept. Then the same inputs through a workbook.

#include "test_read_package.h"

#include "read/xmlscanner.h"
#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QElapsedTimer>

#include <algorithm>
#include <memory>
#include <string>

using namespace QXlsx;
using namespace QXlsx::detail;
using namespace readtest;

namespace {

// Writes every event down in one line of text, so that two scans compare as strings.
class Trace : public ScanHandler
{
public:
    std::string events;
    std::vector<QByteArray> captures;
    XmlScanner* scanner = nullptr;
    ElementCapture capture;
    std::string captureName;   // local name of the elements to capture

    void startElement(const ScannedTag& tag) override
    {
        events += "<" + std::string(tag.qualifiedName);
        for (int i = 0; i < tag.attributeCount; ++i)
            events += " " + std::string(tag.attributes[i].name) + "=[" + std::string(tag.attributes[i].value) + "]";
        events += tag.selfClosing ? "/>" : ">";
        if (capture.active())
            capture.start(tag);
        else if (tag.name == captureName)
            capture.begin(tag, *scanner);
    }
    void endElement(std::string_view name, std::string_view qualifiedName, std::string_view) override
    {
        events += "</" + std::string(name) + ">";
        if (capture.active() && capture.end(qualifiedName))
            captures.push_back(capture.take());
    }
    void text(std::string_view text, std::string_view) override
    {
        events += "{" + std::string(text) + "}";
        if (capture.active())
            capture.text(text);
    }
};

struct Scan
{
    std::string events;
    bool fed = true;
    bool finished = false;
    QString error;
};

// Scans document fed in chunks of chunkSize bytes.
Scan scanInChunks(const std::string& document, size_t chunkSize)
{
    Trace trace;
    XmlScanner scanner(trace);
    trace.scanner = &scanner;
    Scan scan;
    for (size_t at = 0; at < document.size() && scan.fed; at += chunkSize)
        scan.fed = scanner.feed(document.data() + at, std::min(chunkSize, document.size() - at));
    scan.finished = scan.fed && scanner.finish();
    scan.events = trace.events;
    scan.error = scanner.errorString();
    return scan;
}

const std::string Tricky =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!-- a comment with <c> and > inside -->"
    "<x:worksheet xmlns:x=\"urn:main\" xmlns:r='urn:rel'>\n"
    "  <x:sheetData>"
    "<x:row r=\"1\" spans='1:3' >"
    "<x:c r=\"A1\" t=\"s\"><x:v>12</x:v></x:c>"
    "<x:c r='B1' t=\"inlineStr\"><x:is><x:t>a &lt;b&gt; &amp; &quot;c&quot; &apos;d&apos;</x:t></x:is></x:c>"
    "<x:c r=\"C1\" t=\"str\"><x:f>IF(A1&gt;1,\"x\",\"y\")</x:f><x:v><![CDATA[<raw> & ]]]]><![CDATA[>]]></x:v></x:c>"
    "<x:c r=\"D1\" t=\"inlineStr\"><x:is><x:t>&#65;&#x42;&#x1F600;\r\nend</x:t></x:is></x:c>"
    "<?pi inside?><x:c r=\"E1\" s=\"3\"/>"
    "<x:c r=\"F1\" note=\"a&#10;b\tc\r\nd > e\"><x:v>1.5</x:v></x:c>"
    "</x:row></x:sheetData>"
    "</x:worksheet>\n";

} // namespace

TEST(ReadScanner, GivesTheSameEventsWhateverTheChunks)
{
    const Scan whole = scanInChunks(Tricky, Tricky.size());
    ASSERT_TRUE(whole.finished) << whole.error.toStdString();
    for (size_t chunk : {size_t(1), size_t(2), size_t(7), size_t(64 * 1024)}) {
        const Scan pieces = scanInChunks(Tricky, chunk);
        EXPECT_TRUE(pieces.finished) << "chunks of " << chunk;
        EXPECT_EQ(pieces.events, whole.events) << "chunks of " << chunk;
    }
}

TEST(ReadScanner, ResolvesReferencesCdataAndLineEnds)
{
    const std::string events = scanInChunks(Tricky, 3).events;
    EXPECT_NE(events.find("{a <b> & \"c\" 'd'}"), std::string::npos);
    EXPECT_NE(events.find("{<raw> & ]]}{>}"), std::string::npos);
    EXPECT_NE(events.find("{AB\xF0\x9F\x98\x80\nend}"), std::string::npos);
    // In attribute values written white space becomes spaces, referenced one stays.
    EXPECT_NE(events.find("note=[a\nb c d > e]"), std::string::npos);
    EXPECT_NE(events.find("<x:c r=[E1] s=[3]/></c>"), std::string::npos);
    EXPECT_NE(events.find("<x:row r=[1] spans=[1:3]>"), std::string::npos);
    EXPECT_EQ(events.find("comment"), std::string::npos);
    EXPECT_EQ(events.find("pi inside"), std::string::npos);
}

TEST(ReadScanner, CapturesAnElementWithTheOuterDeclarationsItNeeds)
{
    Trace trace;
    trace.captureName = "f";
    XmlScanner scanner(trace);
    trace.scanner = &scanner;
    const std::string document =
        "<x:worksheet xmlns:x=\"urn:main\" xmlns:y=\"urn:other\"><x:f y:a=\"1&amp;2\">A1&lt;B1</x:f>"
        "<x:f xmlns:x=\"urn:own\" t=\"shared\" si=\"0\"/></x:worksheet>";
    ASSERT_TRUE(scanner.feed(document.data(), document.size()));
    ASSERT_TRUE(scanner.finish());
    ASSERT_EQ(trace.captures.size(), 2u);
    EXPECT_EQ(trace.captures[0],
              QByteArray(R"(<x:f xmlns:x="urn:main" xmlns:y="urn:other" y:a="1&amp;2">A1&lt;B1</x:f>)"));
    EXPECT_EQ(trace.captures[1], QByteArray(R"(<x:f xmlns:x="urn:own" t="shared" si="0"/>)"));
}

TEST(ReadScanner, StopsAtMalformedTextKeepingWhatCameBefore)
{
    const struct { const char* document; const char* reached; } cases[] = {
        {"<a><b>1</b><b>&nbsp;</b></a>", "<a><b>{1}</b><b>"},
        {"<a><b>1</b><b>&#0;</b></a>", "<a><b>{1}</b><b>"},
        {"<a><b>1</b><b>&#x110000;</b></a>", "<a><b>{1}</b><b>"},
        {"<a><b>1</b><b x=1/></a>", "<a><b>{1}</b>"},
        {"<a><b>1</b><b x=\"<\"/></a>", "<a><b>{1}</b>"},
        {"<a><b>1</b>< b/></a>", "<a><b>{1}</b>"},
        {"<a><b>1</b><!ELEMENT a ANY></a>", "<a><b>{1}</b>"},
        {"<a><b>1</b></a></a>", "<a><b>{1}</b></a>"},
        {"<a><b>1</b></a><a/>", "<a><b>{1}</b></a>"},
    };
    for (const auto& c : cases) {
        for (size_t chunk : {size_t(1), size_t(1000)}) {
            const Scan scan = scanInChunks(c.document, chunk);
            EXPECT_FALSE(scan.finished) << c.document;
            EXPECT_FALSE(scan.error.isEmpty()) << c.document;
            EXPECT_EQ(scan.events, c.reached) << c.document << " in chunks of " << chunk;
        }
    }
}

TEST(ReadScanner, ReportsAPartThatEndsTooSoon)
{
    for (const char* document : {"<a><b>1</b>", "<a><b>1</b></a", "<a><b x=\"1", "<a><!-- open", "<a><![CDATA[x", ""}) {
        const Scan scan = scanInChunks(document, 3);
        EXPECT_FALSE(scan.finished) << document;
    }
    EXPECT_TRUE(scanInChunks("<a/>\r\n  ", 1).finished);
}

TEST(ReadScanner, RefusesDocumentTypeDeclarations)
{
    const Scan scan = scanInChunks(
        "<!DOCTYPE a [<!ENTITY e \"boom\">]><a>&e;</a>", 5);
    EXPECT_FALSE(scan.finished);
    EXPECT_TRUE(scan.events.empty());
    EXPECT_TRUE(scan.error.contains(QStringLiteral("document type")));
}

TEST(ReadScanner, TakesLinearTimeOverLongTokensInTinyChunks)
{
    // A 4 MB attribute value and text, one byte at a time: carrying the unfinished token
    // must not rescan it for every byte.
    std::string document = "<a v=\"" + std::string(4 << 20, 'x') + "\">" + std::string(4 << 20, 'y') + "</a>";
    QElapsedTimer timer;
    timer.start();
    const Scan scan = scanInChunks(document, 1);
    EXPECT_TRUE(scan.finished);
    EXPECT_EQ(scan.events.size(), document.size() + 2);
    EXPECT_LT(timer.elapsed(), 20000);
}

TEST(ReadScanner, SurvivesRandomBytes)
{
    // Whatever the bytes, a scan ends; the sanitisers and valgrind watch the reads.
    quint32 seed = 12345;
    for (int round = 0; round < 200; ++round) {
        std::string document = Tricky;
        for (int flips = 0; flips < 8; ++flips) {
            seed = seed * 1103515245u + 12345u;
            document[(seed >> 8) % document.size()] = char(seed >> 24);
        }
        seed = seed * 1103515245u + 12345u;
        scanInChunks(document, 1 + (seed >> 16) % 50);
    }
    SUCCEED();
}

namespace {

std::unique_ptr<Document> openParts(const Parts& parts)
{
    QBuffer buffer;
    buffer.setData(zipOf(parts));
    buffer.open(QIODevice::ReadOnly);
    return std::make_unique<Document>(&buffer);
}

} // namespace

TEST(ReadScanner, WorkbookCellsReadTheSameThroughCommentsCdataAndReferences)
{
    const QByteArray sheet =
        R"(<?xml version="1.0"?><!-- before --><worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
        R"(<dimension ref='A1:D2'/><sheetData><!-- cells --><row r='1'>)"
        "<c r='A1' t='inlineStr'><is><t><![CDATA[1 < 2]]></t></is></c>\r\n"
        R"(<c r="B1" t="inlineStr"><is><t>&#x4E2D;&#25991; &amp; more</t></is></c>)"
        R"(<c r="C1"><v> 2.5 </v></c><?skip me?><c r="D1" t="b"><v>1</v></c></row>)"
        R"(<row r="2"><c r="A2" t="s"><v>1</v></c><c r="B2" t="e"><v>#N/A</v></c></row></sheetData>)"
        R"(<mergeCells count="1"><mergeCell ref="C2:D2"/></mergeCells></worksheet>)";
    const QByteArray strings =
        R"(<s:sst xmlns:s="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><s:si><s:t>zero</s:t></s:si>)"
        R"(<s:si><s:r><s:rPr><s:b/></s:rPr><s:t xml:space="preserve">one </s:t></s:r><s:r><s:t>&amp; two</s:t></s:r></s:si></s:sst>)";
    auto doc = openParts(workbookParts(sheet, strings));
    EXPECT_EQ(doc->read(1, 1), QVariant(QStringLiteral("1 < 2")));
    EXPECT_EQ(doc->read(1, 2), QVariant(QStringLiteral("中文 & more")));
    EXPECT_EQ(doc->read(1, 3), QVariant(2.5));
    EXPECT_EQ(doc->read(1, 4), QVariant(true));
    EXPECT_EQ(doc->read(2, 1), QVariant(QStringLiteral("one & two")));
    EXPECT_EQ(doc->read(2, 2), QVariant(QStringLiteral("#N/A")));
    EXPECT_EQ(doc->currentWorksheet()->mergedCells().size(), 1);
}

TEST(ReadScanner, BigSheetsReadWholeAcrossInflateChunks)
{
    // Enough rows that the part arrives in many chunks, which split tags, attributes,
    // references and values wherever they fall.
    QByteArray rows;
    const int rowCount = 30000;
    for (int r = 1; r <= rowCount; ++r) {
        rows += "<row r=\"" + QByteArray::number(r) + "\">";
        rows += "<c r=\"A" + QByteArray::number(r) + "\" t=\"inlineStr\"><is><t>n&#176;" + QByteArray::number(r)
              + " &amp; co</t></is></c>";
        rows += "<c r=\"B" + QByteArray::number(r) + "\"><v>" + QByteArray::number(r * 0.25) + "</v></c></row>";
    }
    auto doc = openParts(workbookParts(worksheet(rows)));
    EXPECT_EQ(doc->dimension(), CellRange(1, 1, rowCount, 2));
    int wrong = 0;
    for (int r = 1; r <= rowCount; ++r) {
        wrong += doc->read(r, 1) != QVariant(QStringLiteral("n°%1 & co").arg(r));
        wrong += doc->read(r, 2) != QVariant(r * 0.25);
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ReadScanner, KeepsTheCellsBeforeMalformedSheetData)
{
    auto doc = openParts(workbookParts(worksheet(
        R"(<row r="1"><c r="A1"><v>1</v></c></row><row r="2"><c r="A2"><v>&bogus;</v></c></row><row r="3"><c r="A3"><v>3</v></c></row>)")));
    EXPECT_EQ(doc->read(1, 1), QVariant(1.0));
    EXPECT_TRUE(doc->read(3, 1).isNull());
}
