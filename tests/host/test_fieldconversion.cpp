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

TEST_F(FieldConversionTest, ValuesBecomeTheFieldsTypeRoundedIntoIntegersAndBlanksNullExceptInTextFields)
{
    const qint64 when = QDateTime(QDate(2023, 7, 1), QTime(8, 30), Qt::UTC).toMSecsSinceEpoch();
    const struct { TsField::FieldType type; TsVariant value; TsVariant converted; } cases[] = {
        {TsField::DoubleField, "12.5", 12.5},
        {TsField::SingleField, " 0.25", 0.25f},
        {TsField::IntegerField, "1001", std::int32_t{1001}},
        {TsField::IntegerField, "12.0", std::int32_t{12}},
        {TsField::BigIntegerField, "9000000000", std::int64_t{9000000000}},
        {TsField::IntegerField, 2.6, std::int32_t{3}},
        {TsField::SmallIntegerField, -2.5, TsVariant::fromInt16(-3)},
        {TsField::StringField, 12.5, "12.5"},
        {TsField::StringField, std::int32_t{7}, "7"},
        {TsField::DateField, "2023-07-01T08:30:00", TsVariant::fromDateTime(when)},
        {TsField::DoubleField, "  ", TsVariant::null()},   // blank values become null except in text fields
        {TsField::StringField, "", ""},
    };
    for (const auto& c : cases) {
        bool fits = false;
        EXPECT_EQ(convert(c.type, c.value, &fits), c.converted) << c.value.ToString().toUtf8();
        EXPECT_TRUE(fits);
    }
}

TEST_F(FieldConversionTest, ValuesThatDoNotFitAreRefusedAsNull)
{
    const struct { TsField::FieldType type; TsVariant value; } cases[] = {
        {TsField::IntegerField, "abc"}, {TsField::SmallIntegerField, std::int32_t{40000}},
        {TsField::IntegerField, 3e9}, {TsField::BlobField, "bytes"}, {TsField::DateField, "first of July"},
    };
    for (const auto& c : cases) {
        bool fits = true;
        EXPECT_TRUE(convert(c.type, c.value, &fits).IsNull()) << c.value.ToString().toUtf8();
        EXPECT_FALSE(fits) << c.value.ToString().toUtf8();
    }
    EXPECT_TRUE(convert(TsField::IntegerField, TsVariant()).IsNull()) << "an empty value is null too";
}
