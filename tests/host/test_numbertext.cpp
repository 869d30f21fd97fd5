#include "vyapplication.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <limits>

namespace {
QString text(double value, int precision = 8)
{
    return VyApplication::doubleToQString(value, precision);
}
} // namespace

TEST(DoubleToQStringTest, DropsTrailingZerosAndPoint)
{
    EXPECT_EQ(text(1234.5), QStringLiteral("1234.5"));
    EXPECT_EQ(text(12.0), QStringLiteral("12"));
    EXPECT_EQ(text(0.0), QStringLiteral("0"));
}

TEST(DoubleToQStringTest, KeepsZerosOfTheIntegerPart)
{
    EXPECT_EQ(text(100.0), QStringLiteral("100"));
    EXPECT_EQ(text(-2000.0, 0), QStringLiteral("-2000"));
}

TEST(DoubleToQStringTest, RoundsToThePrecision)
{
    EXPECT_EQ(text(0.1 + 0.2), QStringLiteral("0.3"));
    EXPECT_EQ(text(2.0 / 3.0, 3), QStringLiteral("0.667"));
    EXPECT_EQ(text(123.456789, 2), QStringLiteral("123.46"));
    EXPECT_EQ(text(1001.0, 0), QStringLiteral("1001"));
    EXPECT_EQ(text(0.125, 2), QStringLiteral("0.13"));
    EXPECT_EQ(text(-0.125, 2), QStringLiteral("-0.13"));
    EXPECT_EQ(text(1.23456789012, 8), QStringLiteral("1.23456789"));
}

TEST(DoubleToQStringTest, NeverWritesNegativeZero)
{
    EXPECT_EQ(text(-0.0), QStringLiteral("0"));
    EXPECT_EQ(text(-0.000000001), QStringLiteral("0"));
    EXPECT_EQ(text(-0.4, 0), QStringLiteral("0"));
}

TEST(DoubleToQStringTest, ClampsThePrecision)
{
    EXPECT_EQ(text(2.75, -3), QStringLiteral("3"));
    EXPECT_EQ(text(0.1, 40), QStringLiteral("0.1"));
}

TEST(DoubleToQStringTest, HugeAndNonFiniteValues)
{
    EXPECT_EQ(text(999999999999999.0), QStringLiteral("999999999999999"));
    EXPECT_EQ(text(1e15), QStringLiteral("1e+15"));
    EXPECT_EQ(text(-1e20), QStringLiteral("-1e+20"));
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), QStringLiteral("nan"));
    EXPECT_EQ(text(std::numeric_limits<double>::infinity()), QStringLiteral("inf"));
    EXPECT_EQ(text(-std::numeric_limits<double>::infinity()), QStringLiteral("-inf"));
}

TEST(DoubleToQStringTest, IgnoresTheLocale)
{
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString german = text(12345.5);
    QLocale::setDefault(previous);
    EXPECT_EQ(german, QStringLiteral("12345.5"));
}
