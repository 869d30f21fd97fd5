#include "hosttesting.h"

#include "tsfield.h"

#include <QDateTime>

using namespace VyObjects;

using FieldConversionTest = ReferenceBalanceTest;

namespace {
TsVariant convert(TsField::FieldType type, const TsVariant& value, bool* fits = nullptr)
{
    const auto field = TsRefPtr<TsField>::create("F", type);
    TsVariant converted;
    const bool result = field->ConvertValue(value, converted);
    if (fits)
        *fits = result;
    return converted;
}
} // namespace

TEST_F(FieldConversionTest, TextBecomesTheFieldsNumber)
{
    EXPECT_EQ(convert(TsField::DoubleField, "12.5"), TsVariant(12.5));
    EXPECT_EQ(convert(TsField::SingleField, " 0.25"), TsVariant(0.25f));
    EXPECT_EQ(convert(TsField::IntegerField, "1001"), TsVariant(std::int32_t{1001}));
    EXPECT_EQ(convert(TsField::IntegerField, "12.0"), TsVariant(std::int32_t{12}));
    EXPECT_EQ(convert(TsField::BigIntegerField, "9000000000"), TsVariant(std::int64_t{9000000000}));
}

TEST_F(FieldConversionTest, FloatingValuesRoundIntoIntegerFields)
{
    EXPECT_EQ(convert(TsField::IntegerField, 2.6), TsVariant(std::int32_t{3}));
    EXPECT_EQ(convert(TsField::SmallIntegerField, -2.5), TsVariant::fromInt16(-3));
}

TEST_F(FieldConversionTest, ValuesThatDoNotFitAreRefusedAsNull)
{
    bool fits = true;
    EXPECT_TRUE(convert(TsField::IntegerField, "abc", &fits).IsNull());
    EXPECT_FALSE(fits);
    EXPECT_TRUE(convert(TsField::SmallIntegerField, std::int32_t{40000}, &fits).IsNull());
    EXPECT_FALSE(fits);
    EXPECT_TRUE(convert(TsField::IntegerField, 3e9, &fits).IsNull());
    EXPECT_FALSE(fits);
    convert(TsField::BlobField, "bytes", &fits);
    EXPECT_FALSE(fits);
}

TEST_F(FieldConversionTest, BlankValuesBecomeNullExceptInTextFields)
{
    bool fits = false;
    EXPECT_TRUE(convert(TsField::DoubleField, "  ", &fits).IsNull());
    EXPECT_TRUE(fits);
    EXPECT_TRUE(convert(TsField::IntegerField, TsVariant()).IsNull());
    const TsVariant text = convert(TsField::StringField, "");
    EXPECT_EQ(text.GetType(), TsVariant::StringType);
    EXPECT_TRUE(text.ToString().IsEmpty());
}

TEST_F(FieldConversionTest, EverythingBecomesTextInTextFields)
{
    EXPECT_EQ(convert(TsField::StringField, 12.5), TsVariant("12.5"));
    EXPECT_EQ(convert(TsField::StringField, std::int32_t{7}), TsVariant("7"));
}

TEST_F(FieldConversionTest, IsoTextBecomesADate)
{
    const qint64 when = QDateTime(QDate(2023, 7, 1), QTime(8, 30), Qt::UTC).toMSecsSinceEpoch();
    EXPECT_EQ(convert(TsField::DateField, "2023-07-01T08:30:00"), TsVariant::fromDateTime(when));
    bool fits = true;
    convert(TsField::DateField, "first of July", &fits);
    EXPECT_FALSE(fits);
}
