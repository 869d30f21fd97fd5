// The number texts of the application: stable across locales and runs.

#include "vyapplication.h"

#include "common/fixedpointtext.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

const int MaximumPrecision = 15;
const double ShortestFormThreshold = 1e15;

// At most `decimals` decimals: the fixed-point text without its trailing zeros.
QString fixedText(double value, int decimals)
{
    // Below the shortest-form threshold: at most 15 integer digits, a sign, a point and
    // 15 decimals.
    char text[40];
    const char* last = vygis::appendFixedPointText(text, text + sizeof text, value, decimals);
    if (!last)
        return QString::number(value, 'f', decimals);
    if (std::find(static_cast<const char*>(text), last, '.') != last) {
        while (last[-1] == '0')
            --last;
        if (last[-1] == '.')
            --last;
    }
    if (last - text == 2 && text[0] == '-' && text[1] == '0')
        return QStringLiteral("0");
    return QString::fromLatin1(text, int(last - text));
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
    return fixedText(value, decimals);
}
