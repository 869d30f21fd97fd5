#include "model/numberformats.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace QXlsx::detail;

TEST(DateFormatDetection, BuiltinIdsAreDatesExactlyInTheirRanges)
{
    for (int id = 0; id < 164; ++id) {
        const bool expected = (id >= 14 && id <= 22) || (id >= 27 && id <= 36)
            || (id >= 45 && id <= 47) || (id >= 50 && id <= 58);
        EXPECT_EQ(isBuiltinDateTimeFormat(id), expected) << "id " << id;
    }
}

TEST(DateFormatDetection, CustomCodes)
{
    const struct { const char* code; bool isDate; } cases[] = {
        {"General", false}, {"0.00", false}, {"#,##0.00", false}, {"0%", false},
        {"0.00E+00", false}, {"@", false}, {"[Red]0.00;[Blue]-0.00", false},
        {"0.0 \"days\"", false}, {"0 \\h", false}, {"#,##0 _m", false}, {"*d0", false},
        {"[$USD-409] #,##0", false}, {"[>100]0;0.0", false},
        {"yyyy-mm-dd", true}, {"[$-409]m/d/yy", true}, {"mm:ss", true}, {"[h]:mm", true},
        {"[ss]", true}, {"h AM/PM", true}, {"DD/MM/YYYY", true}, {"\"Date:\" d", true},
        {"[$-F800]dddd\\,\\ mmmm\\ dd\\,\\ yyyy", true}, {"0.00;yyyy", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(isDateTimeFormatCode(QString::fromUtf8(c.code)), c.isDate) << c.code;
}

TEST(DateFormatDetection, UnterminatedQuotesAndBracketsAreNotDates)
{
    EXPECT_FALSE(isDateTimeFormatCode(u"0 \"yyyy"));
    EXPECT_FALSE(isDateTimeFormatCode(u"[Red yyyy"));
}

TEST(BuiltinNumberFormats, CodesAndIdsMatch)
{
    EXPECT_EQ(builtinNumberFormat(14), QStringLiteral("mm-dd-yy"));
    EXPECT_EQ(builtinNumberFormat(49), QStringLiteral("@"));
    EXPECT_TRUE(builtinNumberFormat(5).isEmpty());   // locale dependent
    EXPECT_EQ(builtinNumberFormatId(u"0.00"), 2);
    EXPECT_EQ(builtinNumberFormatId(u"general"), 0);
    EXPECT_EQ(builtinNumberFormatId(u"yyyy-mm-dd"), -1);
}

TEST(DateSerials1900, KeepThePhantomLeapDay)
{
    EXPECT_EQ(toSerial(QDate(1900, 1, 1), false), 1.0);
    EXPECT_EQ(toSerial(QDate(1900, 2, 28), false), 59.0);
    EXPECT_EQ(toSerial(QDate(1900, 3, 1), false), 61.0);
    EXPECT_EQ(toSerial(QDate(2024, 2, 29), false), 45351.0);
    EXPECT_EQ(fromSerial(1, false).date(), QDate(1900, 1, 1));
    EXPECT_EQ(fromSerial(59, false).date(), QDate(1900, 2, 28));
    EXPECT_EQ(fromSerial(61, false).date(), QDate(1900, 3, 1));
    EXPECT_EQ(fromSerial(45351, false).date(), QDate(2024, 2, 29));
}

TEST(DateSerials1900, SerialSixtyIsTheLastRealDayBeforeIt)
{
    EXPECT_EQ(fromSerial(60, false).date(), QDate(1900, 2, 28));
}

TEST(DateSerials1904, CountFromNewYear1904)
{
    EXPECT_EQ(toSerial(QDate(1904, 1, 1), true), 0.0);
    EXPECT_EQ(toSerial(QDate(2024, 2, 29), true), 45351.0 - 1462);
    EXPECT_EQ(fromSerial(0, true).date(), QDate(1904, 1, 1));
    EXPECT_EQ(fromSerial(45351.0 - 1462, true).date(), QDate(2024, 2, 29));
}

TEST(DateSerials, TimeIsTheFractionRoundedToTheMillisecond)
{
    EXPECT_DOUBLE_EQ(toSerial(QTime(12, 0)), 0.5);
    EXPECT_DOUBLE_EQ(toSerial(QDateTime(QDate(1900, 3, 1), QTime(6, 0)), false), 61.25);
    const QDateTime t = fromSerial(61.25 + 1.0 / 86400000 * 0.4, false);
    EXPECT_EQ(t.time(), QTime(6, 0));
    // Just short of midnight rounds up to the next day rather than 23:59:59.999.
    const QDateTime almost = fromSerial(61.9999999999, false);
    EXPECT_EQ(almost.date(), QDate(1900, 3, 2));
    EXPECT_EQ(almost.time(), QTime(0, 0));
    const QDateTime ms = fromSerial(toSerial(QDateTime(QDate(2021, 7, 3), QTime(13, 14, 15, 678)), false), false);
    EXPECT_EQ(ms.time(), QTime(13, 14, 15, 678));
}

TEST(DateSerials, NonFiniteAndOutOfRangeGiveInvalid)
{
    EXPECT_FALSE(fromSerial(std::nan(""), false).isValid());
    EXPECT_FALSE(fromSerial(INFINITY, false).isValid());
    EXPECT_FALSE(fromSerial(1e300, false).isValid());
    EXPECT_TRUE(fromSerial(2958465, false).isValid());   // 9999-12-31
    EXPECT_TRUE(std::isnan(toSerial(QDate(), false)));
}
