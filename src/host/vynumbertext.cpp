// The number texts of the application: stable across locales and runs.

#include "vyapplication.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

const int MaximumPrecision = 15;
const double ShortestFormThreshold = 1e15;

QString withoutTrailingZeros(QString text)
{
    if (!text.contains(QLatin1Char('.')))
        return text;
    int end = text.size();
    while (text.at(end - 1) == QLatin1Char('0'))
        --end;
    if (text.at(end - 1) == QLatin1Char('.'))
        --end;
    text.truncate(end);
    return text;
}

} // namespace

QString VyApplication::doubleToQString(double value, int precision)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    if (std::fabs(value) >= ShortestFormThreshold)
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    const int decimals = std::clamp(precision, 0, MaximumPrecision);
    QString text = withoutTrailingZeros(QString::number(value, 'f', decimals));
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    return text;
}
