#include "tsvariant.h"

#include "tsqstring_p.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <cmath>
#include <limits>

namespace VyObjects {

namespace {

QString nonFiniteText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
}

QString shortestDoubleText(double value)
{
    if (!std::isfinite(value))
        return nonFiniteText(value);
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// Qt has no shortest form for floats, so the fewest significant digits that
// still read back as the same float are searched for.
QString shortestSingleText(float value)
{
    if (!std::isfinite(value))
        return nonFiniteText(static_cast<double>(value));
    for (int digits = 1; digits < 9; ++digits) {
        const QString text = QString::number(static_cast<double>(value), 'g', digits);
        if (text.toFloat() == value)
            return text;
    }
    return QString::number(static_cast<double>(value), 'g', 9);
}

} // namespace

TsVariant::TsVariant(const TsString& text) : m_type(StringType), m_text(text) {}
TsVariant::TsVariant(const char* utf8) : TsVariant(TsString(utf8)) {}
TsVariant::TsVariant(const wchar_t* text) : TsVariant(TsString(text)) {}
TsVariant::TsVariant(bool value) : m_type(BoolType), m_integer(value ? 1 : 0) {}
TsVariant::TsVariant(std::int32_t value) : m_type(Int32Type), m_integer(value) {}
TsVariant::TsVariant(std::int64_t value) : m_type(Int64Type), m_integer(value) {}
TsVariant::TsVariant(double value) : m_type(DoubleType), m_real(value) {}
TsVariant::TsVariant(float value) : m_type(SingleType), m_real(static_cast<double>(value)) {}

TsVariant TsVariant::null()
{
    TsVariant value;
    value.m_type = NullType;
    return value;
}

TsVariant TsVariant::fromInt16(std::int16_t value)
{
    TsVariant variant(static_cast<std::int32_t>(value));
    variant.m_type = Int16Type;
    return variant;
}

TsVariant TsVariant::fromDateTime(std::int64_t msecsSinceEpochUtc)
{
    TsVariant variant(msecsSinceEpochUtc);
    variant.m_type = DateTimeType;
    return variant;
}

bool TsVariant::IsNumeric() const
{
    switch (m_type) {
    case BoolType: case Int16Type: case Int32Type: case Int64Type:
    case DoubleType: case SingleType:
        return true;
    default:
        return false;
    }
}

double TsVariant::GetDouble() const
{
    switch (m_type) {
    case BoolType: case Int16Type: case Int32Type: case Int64Type:
        return static_cast<double>(m_integer);
    case DoubleType: case SingleType:
        return m_real;
    case StringType: {
        bool ok = false;
        const double value = toQString(m_text).trimmed().toDouble(&ok);
        return ok ? value : 0.0;
    }
    default:
        return 0.0;
    }
}

std::int64_t TsVariant::GetInt64(bool* ok) const
{
    bool converted = false;
    std::int64_t value = 0;
    switch (m_type) {
    case BoolType: case Int16Type: case Int32Type: case Int64Type:
        converted = true;
        value = m_integer;
        break;
    case DoubleType: case SingleType:
        // 2^63 is exactly representable, so the bounds test is exact.
        converted = std::isfinite(m_real) && std::fabs(std::round(m_real)) < 9223372036854775808.0;
        value = converted ? static_cast<std::int64_t>(std::llround(m_real)) : 0;
        break;
    case StringType: {
        const qlonglong parsed = toQString(m_text).trimmed().toLongLong(&converted);
        value = converted ? static_cast<std::int64_t>(parsed) : 0;
        break;
    }
    default:
        break;
    }
    if (ok)
        *ok = converted;
    return value;
}

TsString TsVariant::ToString() const
{
    switch (m_type) {
    case BoolType:
        return m_integer ? TsString("true") : TsString("false");
    case Int16Type: case Int32Type: case Int64Type:
        return toTsString(QString::number(static_cast<qlonglong>(m_integer)));
    case DateTimeType:
        return toTsString(QDateTime::fromMSecsSinceEpoch(m_integer, Qt::UTC)
                               .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    case StringType:
        return m_text;
    case DoubleType:
        return toTsString(shortestDoubleText(m_real));
    case SingleType:
        return toTsString(shortestSingleText(static_cast<float>(m_real)));
    default:
        return TsString();
    }
}

bool TsVariant::equals(const TsVariant& other) const
{
    if (m_type != other.m_type)
        return false;
    switch (m_type) {
    case StringType:
        return m_text == other.m_text;
    case DoubleType: case SingleType:
        return m_real == other.m_real;
    default:
        return m_integer == other.m_integer;
    }
}

} // namespace VyObjects
