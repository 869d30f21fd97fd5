#include "vyapplication.h"

#include <gtest/gtest.h>

#include <QLocale>

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
