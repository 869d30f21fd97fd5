#include "hosttesting.h"

#include <QDateTime>

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

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

TEST(TsVariantTest, EachKindCarriesItsCodeInTheFirst32BitsAndEqualityComparesCodeAndValue)
{
    const TsVariant kinds[] = {TsVariant(), TsVariant::null(), true, TsVariant::fromInt16(3), std::int32_t{3},
                               std::int64_t{3}, TsVariant::fromDateTime(0), "text", 1.5, 1.5f};
    for (std::int32_t code = 0; code < 10; ++code) {
        EXPECT_EQ(leadingCode(kinds[code]), code);
        EXPECT_EQ(kinds[code].GetType(), code);
    }
    // Equality compares code and value.
    EXPECT_EQ(TsVariant(3.0), TsVariant(3.0));
    EXPECT_NE(TsVariant(3.0), TsVariant(3.0f));
    EXPECT_NE(TsVariant(std::int32_t{3}), TsVariant(std::int64_t{3}));
    EXPECT_NE(TsVariant(), TsVariant::null());
}

TEST(TsVariantTest, ValuesReadAsDoublesAndRoundIntoInt64sWhenTheyFit)
{
    EXPECT_EQ(TsVariant(1234.5).GetDouble(), 1234.5);
    EXPECT_EQ(TsVariant(0.5f).GetDouble(), 0.5);
    EXPECT_EQ(TsVariant(std::int64_t{1} << 40).GetDouble(), 1099511627776.0);
    EXPECT_EQ(TsVariant(" 12.25 ").GetDouble(), 12.25);
    EXPECT_EQ(TsVariant("twelve").GetDouble(), 0.0);
    bool ok = false;
    EXPECT_EQ(TsVariant(2.5).GetInt64(&ok), 3);
    EXPECT_TRUE(ok);
    EXPECT_EQ(TsVariant(-2.5).GetInt64(&ok), -3);
    TsVariant(1e19).GetInt64(&ok);
    EXPECT_FALSE(ok);
    TsVariant("12abc").GetInt64(&ok);
    EXPECT_FALSE(ok);
}

TEST(TsVariantTest, EachKindPrintsItsValueAndFloatsTheShortestRoundTripText)
{
    const qint64 when = QDateTime(QDate(2024, 2, 29), QTime(13, 5, 9), Qt::UTC).toMSecsSinceEpoch();
    const struct { TsVariant value; const char* text; } cases[] = {
        {1234.5, "1234.5"}, {0.1, "0.1"}, {0.1 + 0.2, "0.30000000000000004"}, {100.0, "100"},
        {-2.5, "-2.5"}, {1e20, "1e+20"}, {std::numeric_limits<double>::quiet_NaN(), "nan"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {0.1f, "0.1"}, {16777216.0f, "16777216"}, {3.14159274f, "3.1415927"},   // no double noise
        {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"}, {false, "false"},
        {TsVariant::null(), ""}, {TsVariant::fromDateTime(when), "2024-02-29 13:05:09"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.value.ToString(), TsString(c.text)) << c.text;
}

TEST(TsVariantTest, DatesPrintAsQtPrintsThem)
{
    const auto qtText = [](qint64 msecs) {
        return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC)
            .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString();
    };
    const auto dayStart = [](int year, int month, int day) {
        return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    };
    std::vector<qint64> moments = {0, -1, 999, -86400000, dayStart(2000, 2, 29),
                                   dayStart(1900, 3, 1) - 1, dayStart(1, 1, 1),
                                   dayStart(1, 1, 1) - 1, dayStart(9999, 12, 31) + 86399999,
                                   dayStart(10000, 1, 1), dayStart(-5, 6, 7)};
    const qint64 first = dayStart(1, 1, 1), span = dayStart(10000, 1, 1) - first;
    std::uint64_t state = 2024;   // a fixed sequence, so that a failure repeats
    for (int i = 0; i < 20000; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        moments.push_back(first + qint64((state >> 1) % std::uint64_t(span)));
    }
    for (const qint64 msecs : moments)
        ASSERT_EQ(TsVariant::fromDateTime(msecs).ToString().toUtf8(), qtText(msecs)) << msecs;
}
