// The XML scanner that reads sheet cells and shared strings: the same events whatever
// the chunks a part arrives in, references and CDATA resolved, malformed and hostile
// text stopped with what came before it kept.

#include "read/xmlscanner.h"

#include <gtest/gtest.h>

#include <QString>

#include <algorithm>
#include <string>

using namespace QXlsx::detail;

namespace {

// Writes every event down in one line of text, so that two scans compare as strings.
class Trace : public ScanHandler
{
public:
    std::string events;
    std::vector<QByteArray> captures;
    XmlScanner* scanner = nullptr;
    ElementCapture capture;   // of every <f>, as formulas are kept

    void startElement(const ScannedTag& tag) override
    {
        events += "<" + std::string(tag.qualifiedName);
        for (int i = 0; i < tag.attributeCount; ++i)
            events += " " + std::string(tag.attributes[i].name) + "=[" + std::string(tag.attributes[i].value) + "]";
        events += tag.selfClosing ? "/>" : ">";
        if (capture.active())
            capture.start(tag);
        else if (tag.name == "f")
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
    std::vector<QByteArray> captures;
    bool finished = false;
    QString error;
};

// Scans document fed in chunks of chunkSize bytes.
Scan scanInChunks(const std::string& document, size_t chunkSize)
{
    Trace trace;
    XmlScanner scanner(trace);
    trace.scanner = &scanner;
    bool fed = true;
    for (size_t at = 0; at < document.size() && fed; at += chunkSize)
        fed = scanner.feed(document.data() + at, std::min(chunkSize, document.size() - at));
    const bool finished = fed && scanner.finish();
    return {trace.events, trace.captures, finished, scanner.errorString()};
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

TEST(ReadScanner, GivesTheSameEventsWhateverTheChunksWithReferencesCdataAndLineEndsResolved)
{
    const Scan whole = scanInChunks(Tricky, Tricky.size());
    ASSERT_TRUE(whole.finished) << whole.error.toStdString();
    for (size_t chunk : {size_t(1), size_t(2), size_t(7), size_t(64 * 1024)}) {
        const Scan pieces = scanInChunks(Tricky, chunk);
        EXPECT_TRUE(pieces.finished) << "chunks of " << chunk;
        EXPECT_EQ(pieces.events, whole.events) << "chunks of " << chunk;
    }
    // In attribute values written white space becomes spaces, referenced one stays;
    // comments and processing instructions are no events.
    for (const char* event : {"{a <b> & \"c\" 'd'}", "{<raw> & ]]}{>}", "{AB\xF0\x9F\x98\x80\nend}", "note=[a\nb c d > e]",
                              "<x:c r=[E1] s=[3]/></c>", "<x:row r=[1] spans=[1:3]>"})
        EXPECT_NE(whole.events.find(event), std::string::npos) << event;
    EXPECT_EQ(whole.events.find("comment"), std::string::npos);
    EXPECT_EQ(whole.events.find("pi inside"), std::string::npos);
}

TEST(ReadScanner, CapturesAnElementWithTheOuterDeclarationsItNeeds)
{
    const Scan scan = scanInChunks(
        "<x:worksheet xmlns:x=\"urn:main\" xmlns:y=\"urn:other\"><x:f y:a=\"1&amp;2\">A1&lt;B1</x:f>"
        "<x:f xmlns:x=\"urn:own\" t=\"shared\" si=\"0\"/><x:f>B1</x:f></x:worksheet>", 5);
    ASSERT_TRUE(scan.finished);
    EXPECT_EQ(scan.captures, (std::vector<QByteArray>{R"(<x:f xmlns:x="urn:main" xmlns:y="urn:other" y:a="1&amp;2">A1&lt;B1</x:f>)",
                                                      R"(<x:f xmlns:x="urn:own" t="shared" si="0"/>)",
                                                      R"(<x:f xmlns:x="urn:main">B1</x:f>)"}));
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
        {"<a><b>1</b x></a>", "<a><b>{1}"},
        {"<a><b>1</ b></a>", "<a><b>{1}"},
        {"<a><b>1</b/></a>", "<a><b>{1}"},
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

TEST(ReadScanner, ReportsAPartThatEndsTooSoonAndRefusesDocumentTypes)
{
    for (const char* document : {"<a><b>1</b>", "<a><b>1</b></a", "<a><b x=\"1", "<a><!-- open", "<a><![CDATA[x", ""}) {
        const Scan scan = scanInChunks(document, 3);
        EXPECT_FALSE(scan.finished) << document;
    }
    EXPECT_TRUE(scanInChunks("<a/>\r\n  ", 1).finished);
    const Scan doctype = scanInChunks("<!DOCTYPE a [<!ENTITY e \"boom\">]><a>&e;</a>", 5);
    EXPECT_FALSE(doctype.finished);
    EXPECT_TRUE(doctype.events.empty());
    EXPECT_TRUE(doctype.error.contains(QStringLiteral("document type")));
}

TEST(ReadScanner, CarriesLongTokensInTinyChunksWhole)
{
    // A 4 MB attribute value and text, one byte at a time: carrying the unfinished token
    // must not rescan it for every byte.
    std::string document = "<a v=\"" + std::string(4 << 20, 'x') + "\">" + std::string(4 << 20, 'y') + "</a>";
    const Scan scan = scanInChunks(document, 1);
    EXPECT_TRUE(scan.finished);
    EXPECT_EQ(scan.events.size(), document.size() + 2);
}

TEST(ReadScanner, ReadsRandomBytesAsWholeOrStopsWithAReason)
{
    // Whatever the bytes, a scan ends, either finished or with an error saying why, and
    // the chunks the bytes arrive in change nothing; the sanitisers watch the reads.
    quint32 seed = 12345;
    for (int round = 0; round < 200; ++round) {
        std::string document = Tricky;
        for (int flips = 0; flips < 8; ++flips) {
            seed = seed * 1103515245u + 12345u;
            document[(seed >> 8) % document.size()] = char(seed >> 24);
        }
        seed = seed * 1103515245u + 12345u;
        const Scan chunked = scanInChunks(document, 1 + (seed >> 16) % 50);
        const Scan whole = scanInChunks(document, document.size());
        SCOPED_TRACE(round);
        EXPECT_NE(chunked.finished, !chunked.error.isEmpty());
        EXPECT_EQ(chunked.finished, whole.finished);
        EXPECT_EQ(chunked.error, whole.error);
        EXPECT_EQ(chunked.events, whole.events);
    }
}
