// The zip writer and the XML output buffer under the package writer.

#include "test_support.h"

#include "write/xmlsink.h"
#include "zip/piecedeflater.h"
#include "zip/zipwriter.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QRandomGenerator>

#include <limits>
#include <string>
#include <vector>

#include <zlib.h>

using namespace QXlsx::detail;
using xlsxtest::entry;

namespace {

QByteArray escapedText(const QByteArray& utf8, bool attribute = false)
{
    QByteArray out;
    XmlSink sink(out);
    if (attribute)
        sink.appendAttribute(utf8.constData(), size_t(utf8.size()));
    else
        sink.appendText(utf8.constData(), size_t(utf8.size()));
    sink.flush();
    return out;
}

std::string number(double value)
{
    QByteArray out;
    XmlSink sink(out);
    sink.appendNumber(value);
    sink.flush();
    return out.toStdString();
}

// Inflates a raw deflate stream of at most size bytes, or gives an empty array when it
// is not one whole stream.
QByteArray inflated(const QByteArray& stream, int size)
{
    QByteArray out(size + 1, '\0');
    z_stream z {};
    inflateInit2(&z, -MAX_WBITS);
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.constData()));
    z.avail_in = uInt(stream.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = uInt(out.size());
    const int rc = inflate(&z, Z_FINISH);
    out.resize(int(z.total_out));
    inflateEnd(&z);
    return rc == Z_STREAM_END && z.avail_in == 0 ? out : QByteArray();
}

} // namespace

// Pieces deflated apart, in any mix of texts, bytes that do not compress and nothing at
// all, joined in order and closed by an empty final block, inflate to the pieces joined.
TEST(PieceDeflater, PiecesJoinIntoOneStreamWithEitherLibrary)
{
    QByteArray noise(300000, 0);
    QRandomGenerator random(7);
    for (char& byte : noise)
        byte = char(random.generate());
    const QByteArray xml = QByteArray("<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c></row>").repeated(20000);
    const QByteArray pieces[] = {xml, noise, QByteArray(), xml.left(1), noise + xml};
    for (const auto library : {PieceDeflater::Library::Fastest, PieceDeflater::Library::Zlib}) {
        PieceDeflater deflater(library);
        QByteArray stream;
        QByteArray expected;
        PieceDeflater::Output out;
        for (const QByteArray& piece : pieces) {
            size_t size = 0;
            ASSERT_TRUE(deflater.deflate(piece.constData(), size_t(piece.size()), out, &size));
            stream.append(out.data(), int(size));
            expected += piece;
        }
        stream.append("\x03\x00", 2);
        EXPECT_EQ(inflated(stream, expected.size()), expected);
        EXPECT_LT(stream.size(), expected.size() - xml.size());   // the XML did shrink
    }
}

TEST(ZipWriter, EntriesReadBackByteForByte)
{
    QByteArray big;
    for (int i = 0; big.size() < 3 * 1024 * 1024; ++i)
        big += "<row r=\"" + QByteArray::number(i) + "\"><c><v>" + QByteArray::number(i * 7919 % 1013) + "</v></c></row>";

    QBuffer device;
    device.open(QIODevice::WriteOnly);
    ZipWriter writer(device);
    ASSERT_TRUE(writer.beginEntry("[Content_Types].xml"));
    ASSERT_TRUE(writer.write(QByteArray("<Types/>")));
    ASSERT_TRUE(writer.beginEntry("xl/empty.xml"));
    ASSERT_TRUE(writer.beginEntry(QString::fromUtf8("xl/media/bild-ä.bin")));
    // Fed in uneven pieces, as the XML buffer drains.
    for (int at = 0; at < big.size(); at += 77777)
        ASSERT_TRUE(writer.write(big.constData() + at, qMin(77777, big.size() - at)));
    ASSERT_TRUE(writer.finish());

    const QByteArray bytes = device.data();
    EXPECT_LT(bytes.size(), big.size() / 4);
    ZipReader zip{ReadLimits()};
    ASSERT_TRUE(zip.open(bytes.constData(), bytes.size(), nullptr));
    EXPECT_EQ(zip.entryCount(), 3);
    EXPECT_EQ(entry(zip, "[Content_Types].xml"), QByteArray("<Types/>"));
    bool complete = false;
    EXPECT_TRUE(entry(zip, "xl/empty.xml", &complete).isEmpty());
    EXPECT_TRUE(complete);
    EXPECT_TRUE(entry(zip, QString::fromUtf8("xl/media/bild-ä.bin")) == big);
}

TEST(ZipWriter, MoreThan65535EntriesGetZip64Records)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    ZipWriter writer(device);
    const int count = 65536 + 10;
    for (int i = 0; i < count; ++i) {
        ASSERT_TRUE(writer.beginEntry(QStringLiteral("p/%1").arg(i)));
        ASSERT_TRUE(writer.write(QByteArray::number(i)));
    }
    ASSERT_TRUE(writer.finish());

    const QByteArray bytes = device.data();
    ReadLimits limits;
    limits.maxParts = 1000000;
    ZipReader zip{limits};
    ASSERT_TRUE(zip.open(bytes.constData(), bytes.size(), nullptr));
    EXPECT_EQ(zip.entryCount(), count);
    EXPECT_EQ(entry(zip, QStringLiteral("p/%1").arg(count - 1)), QByteArray::number(count - 1));
}

TEST(ZipWriter, ADeviceThatRefusesBytesFailsTheArchive)
{
    QBuffer device;
    device.open(QIODevice::ReadOnly);
    ZipWriter writer(device);
    writer.beginEntry("a.xml");
    writer.write(QByteArray(1000, 'a'));
    EXPECT_FALSE(writer.finish());
    EXPECT_TRUE(writer.hasError());
    EXPECT_FALSE(writer.errorString().isEmpty());
}

TEST(XmlEscaping, MarkupAndLineBreaksAreEscapedSoThatParsersKeepThem)
{
    EXPECT_EQ(escapedText("a<b & c>d \"q\""), QByteArray("a&lt;b &amp; c&gt;d \"q\""));
    EXPECT_EQ(escapedText("a<b & \"q\"", true), QByteArray("a&lt;b &amp; &quot;q&quot;"));
    // In content a line feed and a tab are safe, a carriage return is not; in an
    // attribute every one of them would be read back as a blank.
    EXPECT_EQ(escapedText("a\tb\nc\r\nd"), QByteArray("a\tb\nc&#13;\nd"));
    EXPECT_EQ(escapedText("a\tb\nc\r", true), QByteArray("a&#9;b&#10;c&#13;"));
}

TEST(XmlEscaping, CharactersXmlCannotCarryBecomeEscapesAndTextLikeAnEscapeIsProtected)
{
    EXPECT_EQ(escapedText(QByteArray("a\x01" "b\x1f" "c\0d", 7)), QByteArray("a_x0001_b_x001F_c_x0000_d"));
    EXPECT_EQ(escapedText("\xEF\xBF\xBE \xEF\xBF\xBF \xEF\xBF\xBD"), QByteArray("_xFFFE_ _xFFFF_ \xEF\xBF\xBD"));
    EXPECT_EQ(escapedText("_x0041_"), QByteArray("_x005F_x0041_"));
    EXPECT_EQ(escapedText("a_xBEEF_b_x12_c_x004_"), QByteArray("a_x005F_xBEEF_b_x12_c_x004_"));
    EXPECT_EQ(escapedText("snake_case_"), QByteArray("snake_case_"));
}

TEST(XmlEscaping, TextLongerThanTheBufferKeepsEveryByte)
{
    QByteArray text;
    for (int i = 0; text.size() < int(XmlSink::Capacity) * 2 + 100; ++i)
        text += "Feature & <" + QByteArray::number(i) + ">_x0041_ ";
    QByteArray expected = text;
    expected.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace("_x0041_", "_x005F_x0041_");
    EXPECT_TRUE(escapedText(text) == expected);
}

TEST(XmlNumbers, ShortestTextThatReadsBackTheSameDouble)
{
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(1234.5678), "1234.5678");
    EXPECT_EQ(number(-0.5), "-0.5");
    EXPECT_EQ(number(123456789012.0), "123456789012");
    EXPECT_EQ(number(1e20), "1e+20");
    EXPECT_EQ(number(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(std::stod(number(0.1 + 0.2)), 0.1 + 0.2);
}

TEST(XmlNumbers, WholeNumbersInDecimalAtEveryDigitCount)
{
    std::vector<quint64> values = {0, 1, 9, 10, 11, 99, 100, 101, 12345, 4294967295u,
                                   std::numeric_limits<quint64>::max()};
    for (quint64 power = 10; power <= 1000000000000000000u; power *= 10) {
        values.push_back(power - 1);
        values.push_back(power);
    }
    for (quint64 value : values) {
        char digits[24];
        const std::string text(digits, writeUInt(digits, value));
        EXPECT_EQ(text, std::to_string(value));
    }
}
