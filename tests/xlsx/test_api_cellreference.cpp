#include "xlsxcellrange.h"
#include "xlsxcellreference.h"

#include <gtest/gtest.h>

using QXlsx::CellRange;
using QXlsx::CellReference;

TEST(CellReference, ParsesRelativeAbsoluteAndLowerCase)
{
    EXPECT_EQ(CellReference("B7"), CellReference(7, 2));
    EXPECT_EQ(CellReference("$B$7"), CellReference(7, 2));
    EXPECT_EQ(CellReference("b$7"), CellReference(7, 2));
    EXPECT_EQ(CellReference(QStringLiteral("XFD1048576")), CellReference(1048576, 16384));
    EXPECT_EQ(CellReference("AA10"), CellReference(10, 27));
}

TEST(CellReference, RefusesCellsOutsideTheGridAndMalformedTexts)
{
    for (const char* text : {"", "A", "7", "A0", "XFE1", "A1048577", "AAAAA1", "A1B", "1A",
                             "A-1", "A99999999999", " A1", "$$A1"})
        EXPECT_FALSE(CellReference(text).isValid()) << text;
    EXPECT_TRUE(CellReference(1048576, 16384).isValid());
    EXPECT_FALSE(CellReference(0, 1).isValid());
    EXPECT_FALSE(CellReference(1048577, 1).isValid());
    EXPECT_FALSE(CellReference(1, 16385).isValid());
    EXPECT_FALSE(CellReference().isValid());
}

TEST(CellReference, ToStringAndColumnNames)
{
    EXPECT_EQ(CellReference(7, 2).toString(), QStringLiteral("B7"));
    EXPECT_EQ(CellReference(7, 2).toString(true, true), QStringLiteral("$B$7"));
    EXPECT_EQ(CellReference(0, 2).toString(), QString());
    const struct { int column; const char* name; } names[] = {
        {1, "A"}, {26, "Z"}, {27, "AA"}, {702, "ZZ"}, {703, "AAA"}, {16384, "XFD"}, {0, ""}, {16385, ""}};
    for (const auto& c : names)
        EXPECT_EQ(CellReference::columnName(c.column), QLatin1String(c.name)) << c.column;
    for (int column = 1; column <= 16384; ++column)
        ASSERT_EQ(CellReference(CellReference(1, column).toString()).column(), column);
}

TEST(CellRange, ParsesRangesAndSingleCells)
{
    const CellRange r("A1:C3");
    EXPECT_EQ(r, CellRange(1, 1, 3, 3));
    EXPECT_EQ(r.rowCount(), 3);
    EXPECT_EQ(r.columnCount(), 3);
    EXPECT_EQ(CellRange("$B$2:$D$9"), CellRange(2, 2, 9, 4));
    EXPECT_EQ(CellRange("B2"), CellRange(2, 2, 2, 2));
    EXPECT_EQ(CellRange("C3:A1"), CellRange(1, 1, 3, 3));
}

TEST(CellRange, InvalidRanges)
{
    const CellRange none;
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ(none.rowCount(), 0);
    EXPECT_EQ(none.columnCount(), 0);
    EXPECT_LT(none.lastRow(), 1);
    EXPECT_LT(none.lastColumn(), 1);
    EXPECT_EQ(none.toString(), QString());
    for (const char* text : {"", "A1:", ":B2", "A1:B2:C3", "A0:B2", "A1-B2"})
        EXPECT_FALSE(CellRange(text).isValid()) << text;
    EXPECT_FALSE(CellRange(3, 1, 1, 1).isValid());
    EXPECT_FALSE(CellRange(1, 1, 1048577, 1).isValid());
}

TEST(CellRange, ToStringAndIntersection)
{
    EXPECT_EQ(CellRange(1, 1, 3, 3).toString(), QStringLiteral("A1:C3"));
    EXPECT_EQ(CellRange(2, 2, 2, 2).toString(), QStringLiteral("B2"));
    EXPECT_EQ(CellRange(1, 1, 3, 3).toString(true, true), QStringLiteral("$A$1:$C$3"));
    EXPECT_TRUE(CellRange("A1:C3").intersects(CellRange("C3:D4")));
    EXPECT_FALSE(CellRange("A1:C3").intersects(CellRange("D1:D4")));
    EXPECT_FALSE(CellRange("A1:C3").intersects(CellRange()));
}
