#include "vyapplication.h"

#include "common/fixedpointtext.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <cmath>
#include <cstdint>
#include <limits>

TEST(DoubleToQStringTest, RoundsToThePrecisionWithoutTrailingZerosOrNegativeZero)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const struct { double value; int precision; const char* text; } cases[] = {
        {1234.5, 8, "1234.5"}, {12.0, 8, "12"}, {0.0, 8, "0"}, {100.0, 8, "100"}, {-2000.0, 0, "-2000"},
        {0.1 + 0.2, 8, "0.3"}, {2.0 / 3.0, 3, "0.667"}, {123.456789, 2, "123.46"}, {1001.0, 0, "1001"},
        {0.125, 2, "0.13"}, {-0.125, 2, "-0.13"}, {1.23456789012, 8, "1.23456789"},
        {-0.0, 8, "0"}, {-0.000000001, 8, "0"}, {-0.4, 0, "0"},
        {2.75, -3, "3"}, {0.1, 40, "0.1"},   // the precision is clamped
        {999999999999999.0, 8, "999999999999999"}, {1e15, 8, "1e+15"}, {-1e20, 8, "-1e+20"},
        {nan, 8, "nan"}, {inf, 8, "inf"}, {-inf, 8, "-inf"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(VyApplication::doubleToQString(c.value, c.precision), QLatin1String(c.text))
            << c.value << " at " << c.precision;
}

TEST(DoubleToQStringTest, IgnoresTheLocale)
{
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString german = VyApplication::doubleToQString(12345.5, 8);
    QLocale::setDefault(previous);
    EXPECT_EQ(german, QStringLiteral("12345.5"));
}

TEST(FixedPointTextTest, GivesTheDigitsOfQtsFixedPointFormatting)
{
    const auto check = [](double value, int decimals) {
        char text[64];
        const char* last = vygis::appendFixedPointText(text, text + sizeof text, value, decimals);
        ASSERT_NE(last, nullptr);
        ASSERT_EQ(QString::fromLatin1(text, int(last - text)), QString::number(value, 'f', decimals))
            << value << " at " << decimals;
    };
    // Exactly halfway, where rounding to even and away from zero part ways.
    for (const double tie : {0.125, -0.125, 2.5, 0.03125, 1234.09375, -7.5})
        for (int decimals = 0; decimals < 6; ++decimals)
            check(tie, decimals);
    check(-0.0, 4);
    check(-0.00001, 4);
    std::uint64_t state = 12345;   // a fixed sequence, so that a failure repeats
    for (int i = 0; i < 200000; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        const double mantissa = double(state >> 11) / double(1ULL << 53) - 0.5;
        const double value = std::ldexp(mantissa, int(state % 90) - 40);   // about 1e-13 to 1e12
        check(value, int((state >> 7) % 16));
        check(std::ldexp(std::round(value * 64.0), -6), int((state >> 7) % 8));   // many ties
    }
}
