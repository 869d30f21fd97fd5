#include "export/attributecells.h"
#include "workbook/conventions.h"

#include "tsbase.h"
#include "tsqtext.h"
#include "vygiscore.h"

#include <QDate>
#include <QDateTime>

#include <cmath>
#include <cstdint>

using VyObjects::TsVariant;

namespace {

// Beyond 2^53 a double no longer holds every integer, so a number cell would show a
// neighbour of the value.
constexpr std::int64_t kLargestExactInteger = std::int64_t(1) << 53;
constexpr std::int64_t kMSecsPerDay = 86400000;
constexpr qint64 kJulianDayOf1970 = 2440588;

QString ownText(const TsVariant& value)
{
    return VyObjects::toQString(value.ToString());
}

QVariant integerCell(std::int64_t value)
{
    if (value > kLargestExactInteger || value < -kLargestExactInteger)
        return QString::number(static_cast<qlonglong>(value));
    return static_cast<qlonglong>(value);
}

// A workbook number cannot be NaN or infinite; the text says which it was.
QVariant doubleCell(double value)
{
    if (!std::isfinite(value))
        return ownText(TsVariant(value));
    return value;
}

// A single is the number its own text names (0.1, not 0.100000001490116 as the float
// widened to a double would show).
QVariant singleCell(const TsVariant& value)
{
    const QString text = ownText(value);
    if (!std::isfinite(value.GetDouble()))
        return text;
    return text.toDouble();
}

// Host date-times are UTC. A date field's values fall on midnight, and such a value is
// written as a date, so that a date column shows no time of day.
QVariant dateTimeCell(std::int64_t msecsSinceEpoch)
{
    if (msecsSinceEpoch % kMSecsPerDay == 0)
        return QDate::fromJulianDay(kJulianDayOf1970 + msecsSinceEpoch / kMSecsPerDay);
    return QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, Qt::UTC);
}

QVariant typedCell(const TsVariant& value)
{
    switch (value.GetType()) {
    case TsVariant::BoolType:
        return value.GetInt64() != 0;
    case TsVariant::Int16Type:
    case TsVariant::Int32Type:
    case TsVariant::Int64Type:
        return integerCell(value.GetInt64());
    case TsVariant::DoubleType:
        return doubleCell(value.GetDouble());
    case TsVariant::SingleType:
        return singleCell(value);
    case TsVariant::DateTimeType:
        return dateTimeCell(value.GetDateTime());
    case TsVariant::StringType:
        return ownText(value);
    default:
        // Empty and null: a blank cell that keeps its format.
        return QVariant();
    }
}

} // namespace

namespace vygis {

QVariant AttributeCells::attribute(const TsVariant& value) const
{
    switch (m_values) {
    case CellValues::RoundedTexts:
        return attributeText(value);
    case CellValues::ExactTexts:
        return ownText(value);
    case CellValues::TypedCells:
        return typedCell(value);
    }
    return QVariant();
}

QVariant AttributeCells::coordinate(double value) const
{
    switch (m_values) {
    case CellValues::RoundedTexts:
        return VyApplication::doubleToQString(value, 8);
    case CellValues::ExactTexts:
        return ownText(TsVariant(value));
    case CellValues::TypedCells:
        return doubleCell(value);
    }
    return QVariant();
}

} // namespace vygis
