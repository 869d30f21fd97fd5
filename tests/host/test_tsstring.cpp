#include "hosttesting.h"

#include <climits>

using namespace VyObjects;

namespace {
// G clef, outside the Basic Multilingual Plane: two UTF-16 code units.
const char* const ClefUtf8 = "\xF0\x9D\x84\x9E";
} // namespace

TEST(TsStringTest, Utf8CharactersBeyondTheBmpBecomeSurrogatePairs)
{
    const TsString clef(ClefUtf8);
    ASSERT_EQ(clef.GetLength(), 2);
    EXPECT_EQ(clef.utf16()[0], 0xD834);
    EXPECT_EQ(clef.utf16()[1], 0xDD1E);
    EXPECT_EQ(clef.toUtf8(), ClefUtf8);
}

TEST(TsStringTest, WideStringsSurviveTheRoundTrip)
{
    const std::wstring original = L"Stra\u00DFe \U0001D11E \u8DEF";
    const TsString text(original);
    EXPECT_EQ(text.toStdWString(), original);
    const std::wstring converted = text;
    EXPECT_EQ(converted, original);
    EXPECT_EQ(TsString(original.c_str()), text);
}

TEST(TsStringTest, WideAndUtf8ConstructionAgree)
{
    EXPECT_EQ(TsString(L"\U0001D11E"), TsString(ClefUtf8));
    EXPECT_EQ(TsString(L"\u00E4"), TsString("\xC3\xA4"));
}

TEST(TsStringTest, AssigningAWideStringReplacesTheText)
{
    TsString text("old");
    text = std::wstring(L"new \U0001D11E");
    EXPECT_EQ(text, TsString(L"new \U0001D11E"));
}

TEST(TsStringTest, NullPointersReadAsEmpty)
{
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
    const auto parts = TsString("roads-x-1").split("-");
    ASSERT_EQ(parts.size(), 3u);
    EXPECT_EQ(parts[0], TsString("roads"));
    EXPECT_EQ(parts[2], TsString("1"));

    const auto trailing = TsString("roads-").split("-");
    ASSERT_EQ(trailing.size(), 2u);
    EXPECT_TRUE(trailing[1].IsEmpty());

    EXPECT_EQ(TsString("").split("-").size(), 1u);
    EXPECT_EQ(TsString("roads").split("-").size(), 1u);
}

TEST(TsStringTest, SplitAtALongerSeparator)
{
    const auto parts = TsString("a::b:c").split("::");
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[1], TsString("b:c"));
}

TEST(TsStringTest, SplitAtNothingGivesTheWholeText)
{
    const auto parts = TsString("a-b").split("");
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts[0], TsString("a-b"));
}

TEST(TsStringTest, ToIntReadsDecimalIntegersOnly)
{
    EXPECT_EQ(TsString(" 42 ").ToInt(), 42);
    EXPECT_EQ(TsString("-7").ToInt(), -7);
    EXPECT_EQ(TsString("abc").ToInt(), 0);
    EXPECT_EQ(TsString("12x").ToInt(), 0);
    EXPECT_EQ(TsString("1.5").ToInt(), 0);
    EXPECT_EQ(TsString("99999999999").ToInt(), 0);
    EXPECT_EQ(TsString("").ToInt(), 0);
}

TEST(TsStringTest, PlusAppendsTextAndDecimalNumbers)
{
    EXPECT_EQ(TsString("roads") + "-" + 3, TsString("roads-3"));
    EXPECT_EQ(TsString("n") + -5, TsString("n-5"));
    EXPECT_EQ(TsString("") + INT_MIN, TsString("-2147483648"));
    EXPECT_EQ(TsString("a") + TsString(L"\U0001D11E"), TsString(std::wstring(L"a\U0001D11E")));
}
