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
        {"0 \"yyyy", false}, {"[Red yyyy", false},   // unterminated quotes and brackets
    };
    for (const auto& c : cases)
        EXPECT_EQ(isDateTimeFormatCode(QString::fromUtf8(c.code)), c.isDate) << c.code;
}

TEST(BuiltinNumberFormats, CodesAndIdsMatch)
{
    EXPECT_EQ(builtinNumberFormat(14), QStringLiteral("mm-dd-yy"));
    EXPECT_EQ(builtinNumberFormat(49), QStringLiteral("@"));
    EXPECT_TRUE(builtinNumberFormat(5).isEmpty());   // locale dependent
    EXPECT_EQ(builtinNumberFormatId(u"general"), 0);
    EXPECT_EQ(builtinNumberFormatId(u"yyyy-mm-dd"), -1);
}

TEST(DateSerials1900, KeepThePhantomLeapDay)
{
    const struct { QDate date; double serial; } days[] = {
        {QDate(1900, 1, 1), 1}, {QDate(1900, 2, 28), 59}, {QDate(1900, 3, 1), 61}, {QDate(2024, 2, 29), 45351}};
    for (const auto& day : days) {
        EXPECT_EQ(toSerial(day.date, false), day.serial);
        EXPECT_EQ(fromSerial(day.serial, false).date(), day.date);
    }
    EXPECT_EQ(fromSerial(60, false).date(), QDate(1900, 2, 28)) << "the last real day before it";
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
