#include "model/stringpool.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using QXlsx::detail::StringPool;

TEST(StringPool, EqualTextsShareOneEntryUntilCleared)
{
    StringPool pool;
    const quint32 a = pool.add(u"Feature 1");
    const quint32 b = pool.add(u"Feature 2");
    EXPECT_NE(a, b);
    EXPECT_EQ(pool.add(u"Feature 1"), a);
    EXPECT_EQ(pool.add("Feature 2", 9), b);
    EXPECT_EQ(pool.count(), 2u);
    pool.clear();
    EXPECT_EQ(pool.count(), 0u);
    EXPECT_EQ(pool.add(u"two"), 0u);
    EXPECT_EQ(pool.text(0), QStringLiteral("two"));
}

TEST(StringPool, KeepsTextExactly)
{
    StringPool pool;
    for (const QString& text : QStringList{QString(), "  padded  ", "line\nbreak\r\n", "\xF0\x9F\x98\x80 emoji",
                                           "\xE4\xB8\xAD\xE6\x96\x87", "_x0041_ stays", "\x01\x1F", "caf\u00e9"})
        EXPECT_EQ(pool.text(pool.add(text)), text);
    // Case and a lone character differ from their neighbours.
    EXPECT_NE(pool.add(u"a"), pool.add(u"A"));
}

TEST(StringPool, LoneSurrogatesAreKeptBesideHangulAndPairs)
{
    StringPool pool;
    // U+D55C starts with the same byte as an encoded surrogate.
    const QString broken = QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b") + QChar(0xD55C)
                           + QChar(0xDFFF) + QString::fromUtf8("\xF0\x9F\x98\x80") + QChar(0xDBFF);
    EXPECT_EQ(pool.text(pool.add(broken)), broken);
}

TEST(StringPool, ManyEntriesAndLongTextsSurviveGrowth)
{
    StringPool pool;
    for (int i = 0; i < 200000; ++i)
        ASSERT_EQ(pool.add(QString::number(i)), quint32(i));
    const QString longText(200000, QLatin1Char('x'));   // larger than one arena chunk
    const quint32 big = pool.add(longText);
    const quint32 after = pool.add(u"after");
    for (int i = 0; i < 200000; i += 997)
        ASSERT_EQ(pool.text(quint32(i)), QString::number(i));
    EXPECT_EQ(pool.text(big), longText);
    EXPECT_EQ(pool.text(after), QStringLiteral("after"));
    // A text last seen long ago may get an entry of its own; it still reads back.
    EXPECT_EQ(pool.text(pool.add(QString::number(4242))), QStringLiteral("4242"));
}

// The length kept in front of each text takes one to four bytes; every size where it
// takes one more, and the longest text a pool keeps, read back whole, among neighbours.
TEST(StringPool, TextsAtEveryLengthBoundaryReadBackWithTheirNeighbours)
{
    StringPool pool;
    std::vector<std::pair<quint32, int>> entries;
    for (const int size : {0, 1, 127, 128, 16383, 16384, (1 << 21) - 1, 1 << 21, StringPool::MaxTextBytes}) {
        const QByteArray text(size, char('a' + size % 26));
        entries.emplace_back(pool.add(text.constData(), size), size);
        pool.add(u"|");
    }
    for (const auto& [index, size] : entries) {
        int stored = -1;
        const char* bytes = pool.utf8(index, &stored);
        ASSERT_EQ(stored, size);
        EXPECT_EQ(QByteArray(bytes, stored), QByteArray(size, char('a' + size % 26)));
    }
    const QByteArray tooLong(StringPool::MaxTextBytes + 10, 'z');
    int kept = 0;
    pool.utf8(pool.add(tooLong.constData(), tooLong.size()), &kept);
    EXPECT_EQ(kept, StringPool::MaxTextBytes);
    EXPECT_EQ(pool.text(pool.add(u"last")), QStringLiteral("last"));
}

TEST(StringPool, RichEntriesAreNeverShared)
{
    StringPool pool;
    const quint32 plain = pool.add(u"Bold");
    const quint32 rich = pool.addRich(QStringLiteral("Bold"), "<r><rPr><b/></rPr><t>Bold</t></r>");
    EXPECT_NE(plain, rich);
    EXPECT_TRUE(pool.isRich(rich));
    EXPECT_FALSE(pool.isRich(plain));
    EXPECT_EQ(pool.text(rich), QStringLiteral("Bold"));
    EXPECT_EQ(pool.richXml(rich), QByteArray("<r><rPr><b/></rPr><t>Bold</t></r>"));
    EXPECT_EQ(pool.add(u"Bold"), plain);
}
