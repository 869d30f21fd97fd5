// The zip container and the XML layer under the reader: limits and hostile input.

#include "test_support.h"

#include "read/xmlreader.h"
#include "zip/inflater.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

using namespace QXlsx::detail;
using namespace xlsxtest;

TEST(ReadZip, RefusesBytesThatAreNotAZipOrHoldMoreEntriesThanAllowed)
{
    Parts parts;
    for (int i = 0; i < 20; ++i)
        parts.emplace_back(QStringLiteral("p%1").arg(i), "x");
    ReadLimits tenParts;
    tenParts.maxParts = 10;
    const std::pair<QByteArray, ReadLimits> cases[] = {
        {QByteArray(), ReadLimits()}, {"PK\x03\x04 not really", ReadLimits()}, {QByteArray(5000, 'x'), ReadLimits()},
        {zipOf(parts), tenParts}};
    for (const auto& [bytes, limits] : cases) {
        ZipReader zip(limits);
        QString error;
        EXPECT_FALSE(zip.open(bytes.constData(), bytes.size(), &error));
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST(ReadZip, ReportsAnEntryWhoseCompressedBytesAreDamaged)
{
    QByteArray text;
    for (int i = 0; i < 20000; ++i)
        text += QByteArray::number(i * 7919 % 10007) + ',';
    QByteArray bytes = zipOf({{"a.xml", text}});
    for (int i = 200; i < 400; ++i)
        bytes[i] = char(bytes[i] ^ 0x5A);
    ZipReader zip{ReadLimits()};
    ASSERT_TRUE(zip.open(bytes.constData(), bytes.size(), nullptr));
    bool complete = true;
    entry(zip, "a.xml", &complete);
    EXPECT_FALSE(complete);
}

namespace {

// Feeds the stream in pieces of inputStep bytes, inflating into outputStep bytes.
std::pair<QByteArray, Inflater::Status> inflatedInPieces(const QByteArray& stream, int inputStep, int outputStep)
{
    Inflater inflater;
    QByteArray out;
    std::vector<char> buffer(static_cast<size_t>(outputStep));
    Inflater::Status status = Inflater::More;
    int at = 0;
    while (status == Inflater::More) {
        if (inflater.needsInput()) {
            if (at >= stream.size())
                break;
            const int piece = std::min(inputStep, int(stream.size()) - at);
            inflater.setInput(stream.constData() + at, size_t(piece));
            at += piece;
        }
        size_t produced = 0;
        status = inflater.inflate(buffer.data(), buffer.size(), &produced);
        out.append(buffer.data(), int(produced));
    }
    return {out, status};
}

} // namespace

TEST(ReadZip, InflatesAStreamInAnyPiecesAndTellsACutOneFromAWholeOne)
{
    QByteArray text;
    for (int i = 0; i < 30000; ++i)
        text += "<c r=\"A" + QByteArray::number(i) + "\"><v>" + QByteArray::number(i * 7919 % 10007) + "</v></c>";
    const QByteArray stream = rawDeflate(text);
    const std::pair<int, int> steps[] = {{1, 7}, {13, 4096}, {stream.size(), 1 << 18}};
    for (const auto& [inputStep, outputStep] : steps) {
        const auto [whole, status] = inflatedInPieces(stream, inputStep, outputStep);
        EXPECT_EQ(status, Inflater::Ended) << inputStep;
        EXPECT_EQ(whole, text) << inputStep;
        const auto [cut, cutStatus] = inflatedInPieces(stream.left(stream.size() / 2), inputStep, outputStep);
        EXPECT_NE(cutStatus, Inflater::Ended) << inputStep;
        EXPECT_TRUE(text.startsWith(cut)) << inputStep;
    }
    QByteArray garbage(64, '\xff');
    EXPECT_EQ(inflatedInPieces(garbage, 64, 4096).second, Inflater::Damaged);
}

TEST(ReadZip, StopsAnEntryThatInflatesPastThePartLimitOrAThousandfold)
{
    // 32 MiB of zeros deflate to about 32 KiB: the default limits cut it short.
    const QByteArray bytes = zipOf({{"bomb.xml", QByteArray(32 << 20, '\0')}});
    ReadLimits onlySize;
    onlySize.maxPartSize = 1 << 20;
    onlySize.maxCompressionRatio = 1 << 30;
    for (const auto& [limits, most] : {std::make_pair(onlySize, (1 << 20) + 64 * 1024), std::make_pair(ReadLimits(), 8 << 20)}) {
        ZipReader zip(limits);
        ASSERT_TRUE(zip.open(bytes.constData(), bytes.size(), nullptr));
        bool complete = true;
        EXPECT_LE(entry(zip, "bomb.xml", &complete).size(), most);
        EXPECT_FALSE(complete);
    }
}

TEST(ReadZip, StopsOnceAllEntriesTogetherPassTheTotalLimit)
{
    const QByteArray part(300000, 'x');
    const QByteArray bytes = zipOf({{"a", part}, {"b", part}, {"c", part}});
    ReadLimits limits;
    limits.maxTotalSize = 700000;
    ZipReader zip(limits);
    ASSERT_TRUE(zip.open(bytes.constData(), bytes.size(), nullptr));
    for (const auto& [name, whole] : {std::make_pair("a", true), std::make_pair("b", true), std::make_pair("c", false)}) {
        bool complete = !whole;
        entry(zip, name, &complete);
        EXPECT_EQ(complete, whole) << name;
    }
}

namespace {

// Records what a handler hears, and captures the elements it is told to.
class Recorder : public XmlHandler
{
public:
    std::vector<std::string> starts;
    std::vector<QByteArray> captures;
    std::string text;

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes&) override
    {
        starts.emplace_back(name);
        if (name == "keep")
            reader.captureElement();
        if (name == "t")
            reader.beginText();
    }
    void endElement(XmlReader& reader, std::string_view name) override
    {
        if (name == "t") {
            text += reader.text();
            reader.endText();
        }
    }
    void captured(XmlReader&, RawElement&& element) override { captures.push_back(element.xml); }
};

} // namespace

TEST(ReadXml, CapturesElementsWithTheOuterDeclarationsTheyNeedAndTheirLineBreaks)
{
    Recorder recorder;
    XmlReader reader(recorder);
    EXPECT_TRUE(reader.parse(
        R"(<x:root xmlns:x="urn:main" xmlns:y="urn:other" xmlns:z="urn:unused">)"
        R"(<x:keep a="1 &amp; &quot;2&quot;"><y:inner y:b="&lt;"/>text &amp; more<empty></empty></x:keep>)"
        R"(<keep a="x&#10;y&#9;z">a&#13;b</keep></x:root>)"));
    ASSERT_EQ(recorder.captures.size(), 2u);
    EXPECT_EQ(recorder.captures[0].toStdString(),
              R"(<x:keep xmlns:x="urn:main" xmlns:y="urn:other" a="1 &amp; &quot;2&quot;"><y:inner y:b="&lt;"/>)"
              R"(text &amp; more<empty/></x:keep>)");
    EXPECT_EQ(recorder.captures[1].toStdString(), "<keep a=\"x&#10;y&#9;z\">a&#13;b</keep>");
    // The captured elements' children bypass the handler.
    EXPECT_EQ(recorder.starts, (std::vector<std::string>{"root", "keep", "keep"}));
}

TEST(ReadXml, RefusesEntityDeclarationsWithoutExpandingThem)
{
    QByteArray laughs = "<?xml version=\"1.0\"?><!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\">";
    for (char c = 'b'; c <= 'k'; ++c)
        laughs += QByteArray("<!ENTITY ") + c + " \"" + QByteArray(10, '&').replace("&", QByteArray("&") + char(c - 1) + ";") + "\">";
    laughs += "]><r><t>&k;</t></r>";
    Recorder recorder;
    XmlReader reader(recorder);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(reader.parse(laughs));
    EXPECT_LT(timer.elapsed(), 1000 * VYGIS_TIME_SCALE);
    EXPECT_TRUE(recorder.text.empty());
    EXPECT_FALSE(reader.errorString().isEmpty());
}

TEST(ReadXml, StopsAtMalformedTextKeepingWhatCameBefore)
{
    Recorder recorder;
    XmlReader reader(recorder);
    EXPECT_FALSE(reader.parse("<r><t>kept</t><t>lost</r>"));
    EXPECT_EQ(recorder.text, "kept");
}

TEST(ReadXml, DecodesEscapedCharacters)
{
    auto decoded = [](std::string text) {
        decodeEscapes(text);
        return text;
    };
    EXPECT_EQ(decoded("a_x000D_b"), "a\rb");
    EXPECT_EQ(decoded("_x005F_x0041_"), "_x0041_");
    EXPECT_EQ(decoded("_xD83D__xDE00_"), "\xF0\x9F\x98\x80");
    // A lone surrogate is kept as the string pool keeps one.
    EXPECT_EQ(decoded("_xD83D_"), "\xED\xA0\xBD");
    EXPECT_EQ(decoded("_xDE00__xD83D_"), "\xED\xB8\x80\xED\xA0\xBD");
    EXPECT_EQ(decoded("_x12_ _xZZZZ_ x0041_"), "_x12_ _xZZZZ_ x0041_");
}
