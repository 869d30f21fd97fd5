#include "hosttesting.h"
#include "tsqtext.h"

#include <climits>

using namespace VyObjects;

namespace {
// G clef, outside the Basic Multilingual Plane: two UTF-16 code units.
const char* const ClefUtf8 = "\xF0\x9D\x84\x9E";
} // namespace

TEST(TsStringTest, Utf8AndWideStringsSurviveTheRoundTripWithSurrogatePairsBeyondTheBmp)
{
    const TsString clef(ClefUtf8);
    ASSERT_EQ(clef.GetLength(), 2);
    EXPECT_EQ(clef.utf16()[0], 0xD834);
    EXPECT_EQ(clef.utf16()[1], 0xDD1E);
    EXPECT_EQ(clef.toUtf8(), ClefUtf8);
    const std::wstring original = L"Stra\u00DFe \U0001D11E \u8DEF";
    TsString text(original);
    EXPECT_EQ(text.toStdWString(), original);
    const std::wstring converted = text;
    EXPECT_EQ(converted, original);
    EXPECT_EQ(TsString(original.c_str()), text);
    EXPECT_EQ(TsString(L"\U0001D11E"), TsString(ClefUtf8));
    EXPECT_EQ(TsString(L"\u00E4"), TsString("\xC3\xA4"));
    text = std::wstring(L"new \U0001D11E");
    EXPECT_EQ(text, TsString(L"new \U0001D11E"));
    EXPECT_TRUE(TsString(static_cast<const char*>(nullptr)).IsEmpty());
    EXPECT_TRUE(TsString(static_cast<const wchar_t*>(nullptr)).IsEmpty());
}

TEST(TsStringTest, CompareNoCaseIgnoresCaseOnly)
{
    EXPECT_EQ(TsString("Roads").CompareNoCase("ROADS"), 0);
    EXPECT_EQ(TsString("\xC3\x84rger").CompareNoCase("\xC3\xA4RGER"), 0);   // Ärger
    EXPECT_LT(TsString("a").CompareNoCase("B"), 0);
    EXPECT_GT(TsString("b").CompareNoCase("A"), 0);
    EXPECT_NE(TsString("roads").CompareNoCase("roads-1"), 0);
}

TEST(TsStringTest, SplitKeepsEmptyParts)
{
    const struct { const char* text; const char* separator; std::vector<TsString> parts; } cases[] = {
        {"roads-x-1", "-", {"roads", "x", "1"}},
        {"roads-", "-", {"roads", ""}},
        {"", "-", {""}},
        {"roads", "-", {"roads"}},
        {"a::b:c", "::", {"a", "b:c"}},
        {"a-b", "", {"a-b"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TsString(c.text).split(c.separator), c.parts) << c.text << " at " << c.separator;
}

TEST(TsStringTest, ToIntReadsDecimalIntegersOnly)
{
    EXPECT_EQ(TsString(" 42 ").ToInt(), 42);
    EXPECT_EQ(TsString("-7").ToInt(), -7);
    for (const char* text : {"abc", "12x", "1.5", "99999999999", ""})
        EXPECT_EQ(TsString(text).ToInt(), 0) << text;
}

TEST(TsStringTest, PlusAppendsTextAndDecimalNumbers)
{
    EXPECT_EQ(TsString("roads") + "-" + 3, TsString("roads-3"));
    EXPECT_EQ(TsString("n") + -5, TsString("n-5"));
    EXPECT_EQ(TsString("") + INT_MIN, TsString("-2147483648"));
    EXPECT_EQ(TsString("a") + TsString(L"\U0001D11E"), TsString(std::wstring(L"a\U0001D11E")));
}

// Code units that a conversion through wchar_t, UTF-8 or QString::fromUtf16
// could change: a surrogate pair, an unpaired surrogate, an embedded NUL and
// a leading U+FEFF, which is text here and no byte order mark.
TEST(TsQTextTest, CrossesBetweenQtAndTheObjectLibraryUnitForUnit)
{
    const struct { const char* name; std::u16string units; } cases[] = {
        {"empty", u""},
        {"plain", u"roads"},
        {"beyond the BMP", u"Stra\u00DFe \U0001D11E \u8DEF"},
        {"unpaired surrogate", std::u16string(u"a") + char16_t(0xD834) + u"b"},
        {"embedded NUL", std::u16string(u"a\0b", 3)},
        {"leading U+FEFF", u"\uFEFFname"},
    };
    for (const auto& c : cases) {
        const QString qt = toQString(TsString(c.units));
        ASSERT_EQ(qt.size(), static_cast<int>(c.units.size())) << c.name;
        EXPECT_TRUE(std::equal(c.units.begin(), c.units.end(), qt.utf16())) << c.name;
        EXPECT_EQ(toTsString(qt).utf16(), c.units) << c.name;
    }
}

TEST(TsQTextTest, WideAndUtf8TextsArriveInQtAsTheSameCharacters)
{
    const QString expected = QString::fromUcs4(U"Stra\u00DFe \U0001D11E \u8DEF");
    EXPECT_EQ(toQString(TsString(L"Stra\u00DFe \U0001D11E \u8DEF")), expected);
    EXPECT_EQ(toQString(TsString("Stra\xC3\x9F" "e \xF0\x9D\x84\x9E \xE8\xB7\xAF")), expected);
    EXPECT_EQ(toTsString(expected).toStdWString(), std::wstring(L"Stra\u00DFe \U0001D11E \u8DEF"));
}

TEST(TsStringTest, ALeadingFeffIsKeptInWideAndUtf8Output)
{
    const TsString text(u"\uFEFFname");
    EXPECT_EQ(text.toUtf8(), "\xEF\xBB\xBFname");
    EXPECT_EQ(text.toStdWString(), std::wstring(L"\uFEFFname"));
}
