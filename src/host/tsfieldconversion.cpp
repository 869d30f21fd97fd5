// How a value is fitted into a field's type when a feature is built or edited.

#include "tsfield.h"

#include "tsqtext.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace VyObjects {

namespace {

bool isBlank(const TsVariant& value)
{
    return value.IsEmpty() || value.IsNull()
        || (value.GetType() == TsVariant::StringType && toQString(value.ToString()).trimmed().isEmpty());
}

// Texts may hold a fraction ("12.0") even for integer fields, so integers are
// read as doubles when they do not read as integers.
bool readInteger(const TsVariant& value, std::int64_t& result)
{
    bool ok = false;
    result = value.GetInt64(&ok);
    if (ok || value.GetType() != TsVariant::StringType)
        return ok;
    const double real = toQString(value.ToString()).trimmed().toDouble(&ok);
    if (!ok)
        return false;
    result = TsVariant(real).GetInt64(&ok);
    return ok;
}

bool readReal(const TsVariant& value, double& result)
{
    if (value.IsNumeric()) {
        result = value.GetDouble();
        return true;
    }
    if (value.GetType() != TsVariant::StringType)
        return false;
    bool ok = false;
    result = toQString(value.ToString()).trimmed().toDouble(&ok);
    return ok;
}

bool fitInteger(const TsVariant& value, std::int64_t low, std::int64_t high, std::int64_t& result)
{
    return value.GetType() != TsVariant::DateTimeType && readInteger(value, result)
        && result >= low && result <= high;
}

bool convertDate(const TsVariant& value, TsVariant& converted)
{
    if (value.GetType() == TsVariant::DateTimeType) {
        converted = value;
        return true;
    }
    if (value.GetType() != TsVariant::StringType)
        return false;
    QDateTime when = QDateTime::fromString(toQString(value.ToString()).trimmed(), Qt::ISODate);
    if (!when.isValid())
        return false;
    if (when.timeSpec() == Qt::LocalTime)
        when.setTimeSpec(Qt::UTC);
    converted = TsVariant::fromDateTime(when.toMSecsSinceEpoch());
    return true;
}

} // namespace

bool TsField::ConvertValue(const TsVariant& value, TsVariant& converted) const
{
    converted = TsVariant::null();
    if (m_type == StringField) {
        if (!value.IsEmpty() && !value.IsNull())
            converted = TsVariant(value.ToString());
        return true;
    }
    if (isBlank(value))
        return true;

    std::int64_t integer = 0;
    double real = 0.0;
    switch (m_type) {
    case SmallIntegerField:
        if (!fitInteger(value, std::numeric_limits<std::int16_t>::min(),
                        std::numeric_limits<std::int16_t>::max(), integer))
            return false;
        converted = TsVariant::fromInt16(static_cast<std::int16_t>(integer));
        return true;
    case IntegerField:
        if (!fitInteger(value, std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::int32_t>::max(), integer))
            return false;
        converted = TsVariant(static_cast<std::int32_t>(integer));
        return true;
    case BigIntegerField:
        if (!fitInteger(value, std::numeric_limits<std::int64_t>::min(),
                        std::numeric_limits<std::int64_t>::max(), integer))
            return false;
        converted = TsVariant(integer);
        return true;
    case SingleField:
        if (!readReal(value, real))
            return false;
        converted = TsVariant(static_cast<float>(real));
        return true;
    case DoubleField:
        if (!readReal(value, real))
            return false;
        converted = TsVariant(real);
        return true;
    case DateField:
        return convertDate(value, converted);
    default:
        return false;
    }
}

} // namespace VyObjects
