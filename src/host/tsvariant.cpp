#include "tsvariant.h"

#include "tsqtext.h"

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

// "yyyy-MM-dd HH:mm:ss" of a UTC time, the text QDateTime::toString gives for that
// pattern, written directly: Qt parses the pattern again for every value, and exports
// print a date in every row. Years outside 1 to 9999 are left to Qt.
QString dateTimeText(std::int64_t msecsSinceEpoch)
{
    const std::int64_t msecsPerDay = 86400000;
    std::int64_t days = msecsSinceEpoch / msecsPerDay;
    std::int64_t msecs = msecsSinceEpoch % msecsPerDay;
    if (msecs < 0) {
        msecs += msecsPerDay;
        --days;
    }
    // Civil date of a day count since 1970-01-01, in 400-year eras of 146,097 days
    // beginning on 1 March, so that the leap day falls at the end of a year.
    const std::int64_t shifted = days + 719468;
    const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
    const std::int64_t dayOfEra = shifted - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524
                                    - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int day = int(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    const int month = int(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    if (year < 1 || year > 9999) {
        return QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, Qt::UTC)
            .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    }
    const int seconds = int(msecs / 1000);
    char text[19];
    const auto put = [&text](int at, int value, int width) {
        for (int i = at + width - 1; i >= at; --i, value /= 10)
            text[i] = char('0' + value % 10);
    };
    put(0, int(year), 4);
    put(5, month, 2);
    put(8, day, 2);
    put(11, seconds / 3600, 2);
    put(14, seconds / 60 % 60, 2);
    put(17, seconds % 60, 2);
    text[4] = text[7] = '-';
    text[10] = ' ';
    text[13] = text[16] = ':';
    return QString::fromLatin1(text, int(sizeof text));
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
        return toTsString(dateTimeText(m_integer));
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
