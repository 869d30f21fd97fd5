#include "hosttesting.h"

#include <QDateTime>

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

using namespace VyObjects;

namespace {
std::int32_t leadingCode(const TsVariant& value)
{
    static_assert(std::is_standard_layout<TsVariant>::value, "the code must be readable in place");
    std::int32_t code = -1;
    std::memcpy(&code, &value, sizeof code);
    return code;
}
} // namespace

TEST(TsVariantTest, TheTypeCodeIsTheFirst32Bits)
{
    EXPECT_EQ(leadingCode(TsVariant(1.5)), 8);
    EXPECT_EQ(leadingCode(TsVariant(1.5f)), 9);
    EXPECT_EQ(leadingCode(TsVariant("text")), 7);
    EXPECT_EQ(leadingCode(TsVariant()), 0);
}

TEST(TsVariantTest, EachKindCarriesItsCode)
{
    EXPECT_EQ(TsVariant::null().GetType(), 1);
    EXPECT_EQ(TsVariant(true).GetType(), 2);
    EXPECT_EQ(TsVariant::fromInt16(3).GetType(), 3);
    EXPECT_EQ(TsVariant(std::int32_t{3}).GetType(), 4);
    EXPECT_EQ(TsVariant(std::int64_t{3}).GetType(), 5);
    EXPECT_EQ(TsVariant::fromDateTime(0).GetType(), 6);
    EXPECT_EQ(TsVariant(TsString("3")).GetType(), 7);
}

TEST(TsVariantTest, FloatingValuesReadAsDoubles)
{
    EXPECT_EQ(TsVariant(1234.5).GetDouble(), 1234.5);
    EXPECT_EQ(TsVariant(0.5f).GetDouble(), 0.5);
    EXPECT_EQ(TsVariant(std::int64_t{1} << 40).GetDouble(), 1099511627776.0);
    EXPECT_EQ(TsVariant(" 12.25 ").GetDouble(), 12.25);
    EXPECT_EQ(TsVariant("twelve").GetDouble(), 0.0);
}

TEST(TsVariantTest, DoublesPrintShortestRoundTripText)
{
    EXPECT_EQ(TsVariant(1234.5).ToString(), TsString("1234.5"));
    EXPECT_EQ(TsVariant(0.1).ToString(), TsString("0.1"));
    EXPECT_EQ(TsVariant(0.1 + 0.2).ToString(), TsString("0.30000000000000004"));
    EXPECT_EQ(TsVariant(100.0).ToString(), TsString("100"));
    EXPECT_EQ(TsVariant(-2.5).ToString(), TsString("-2.5"));
    EXPECT_EQ(TsVariant(1e20).ToString(), TsString("1e+20"));
    EXPECT_EQ(TsVariant(std::numeric_limits<double>::quiet_NaN()).ToString(), TsString("nan"));
    EXPECT_EQ(TsVariant(-std::numeric_limits<double>::infinity()).ToString(), TsString("-inf"));
}

TEST(TsVariantTest, SinglesPrintWithoutDoubleNoise)
{
    EXPECT_EQ(TsVariant(0.1f).ToString(), TsString("0.1"));
    EXPECT_EQ(TsVariant(16777216.0f).ToString(), TsString("16777216"));
    EXPECT_EQ(TsVariant(3.14159274f).ToString(), TsString("3.1415927"));
}

TEST(TsVariantTest, OtherKindsPrintTheirValue)
{
    EXPECT_EQ(TsVariant(std::numeric_limits<std::int64_t>::min()).ToString(),
              TsString("-9223372036854775808"));
    EXPECT_EQ(TsVariant(false).ToString(), TsString("false"));
    EXPECT_TRUE(TsVariant::null().ToString().IsEmpty());
    const qint64 when = QDateTime(QDate(2024, 2, 29), QTime(13, 5, 9), Qt::UTC).toMSecsSinceEpoch();
    EXPECT_EQ(TsVariant::fromDateTime(when).ToString(), TsString("2024-02-29 13:05:09"));
}

TEST(TsVariantTest, Int64ConversionRoundsAndRefusesWhatDoesNotFit)
{
    bool ok = false;
    EXPECT_EQ(TsVariant(2.5).GetInt64(&ok), 3);
    EXPECT_TRUE(ok);
    EXPECT_EQ(TsVariant(-2.5).GetInt64(&ok), -3);
    TsVariant(1e19).GetInt64(&ok);
    EXPECT_FALSE(ok);
    TsVariant("12abc").GetInt64(&ok);
    EXPECT_FALSE(ok);
}

TEST(TsVariantTest, EqualityComparesCodeAndValue)
{
    EXPECT_EQ(TsVariant(3.0), TsVariant(3.0));
    EXPECT_NE(TsVariant(3.0), TsVariant(3.0f));
    EXPECT_NE(TsVariant(std::int32_t{3}), TsVariant(std::int64_t{3}));
    EXPECT_NE(TsVariant(), TsVariant::null());
}
