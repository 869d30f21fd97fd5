#include "model/styletable.h"

#include <gtest/gtest.h>

using QXlsx::Format;
using QXlsx::detail::StyleTable;

TEST(StyleTable, DefaultFormatIsIndexZeroAndEqualFormatsShareAnIndexUntilChanged)
{
    StyleTable table;
    EXPECT_EQ(table.indexOf(Format()), 0u);
    Format a;
    a.setFontBold(true);
    Format b;
    b.setFontBold(true);
    const quint32 index = table.indexOf(a);
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(table.indexOf(b), index);
    EXPECT_EQ(table.indexOf(a), index);
    EXPECT_EQ(table.format(index), a);
    a.setFontItalic(true);
    EXPECT_NE(table.indexOf(a), index);
    EXPECT_TRUE(table.format(index).fontBold());
    EXPECT_FALSE(table.format(index).fontItalic());
}

TEST(StyleTable, AppendKeepsFileOrderAndDuplicates)
{
    StyleTable table;
    table.clear();
    EXPECT_EQ(table.append(Format()), 0u);
    EXPECT_EQ(table.append(Format()), 1u);
    EXPECT_EQ(table.indexOf(Format()), 0u);
    EXPECT_EQ(table.count(), 2u);
}

TEST(StyleTable, DateTimeFlagsAndUnknownIndexes)
{
    StyleTable table;
    Format date;
    date.setNumberFormat(QStringLiteral("dd.mm.yyyy"));
    const quint32 index = table.indexOf(date);
    EXPECT_TRUE(table.isDateTime(index));
    EXPECT_FALSE(table.isDateTime(0));
    EXPECT_FALSE(table.isDateTime(999));
    EXPECT_TRUE(table.format(999).isEmpty());
}
