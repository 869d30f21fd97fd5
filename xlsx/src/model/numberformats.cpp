#include "numberformats.h"

#include <cmath>

namespace QXlsx::detail {

namespace {

struct BuiltinFormat
{
    int id;
    const char* code;
};

// The ids whose code is fixed by the file format. The others below 164 (currencies,
// accounting, the East Asian and Thai dates) are rendered from the reader's locale, so
// they have no code of their own and are recognised by id alone.
constexpr BuiltinFormat kBuiltinFormats[] = {
    {0, "General"},
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, "# ?\?/??"},
    {14, "mm-dd-yy"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "m/d/yy h:mm"},
    {37, "#,##0 ;(#,##0)"},
    {38, "#,##0 ;[Red](#,##0)"},
    {39, "#,##0.00;(#,##0.00)"},
    {40, "#,##0.00;[Red](#,##0.00)"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mmss.0"},
    {48, "##0.0E+0"},
    {49, "@"},
};

constexpr qint64 kMsPerDay = 86400000;
// 9999-12-31 is the last day a workbook can show; anything beyond is not a date.
constexpr double kMaxSerial = 2958466.0;

QDate epoch1904() { return {1904, 1, 1}; }
// Serials from 61 (1 March 1900) count from here; the phantom 29 February 1900 of the
// 1900 system sits between the two epochs.
QDate epoch1900() { return {1899, 12, 30}; }
// Serials 1 to 59 (January and February 1900) count from the day before 1 January.
QDate epoch1900Early() { return {1899, 12, 31}; }

// Brackets hold colours, conditions and locales ([Red], [>100], [$-409]) except for
// the elapsed time tokens [h], [mm], [ss].
bool isElapsedTimeBracket(QStringView inner)
{
    if (inner.isEmpty())
        return false;
    const QChar first = inner.front().toLower();
    if (first != QLatin1Char('h') && first != QLatin1Char('m') && first != QLatin1Char('s'))
        return false;
    for (QChar c : inner) {
        if (c.toLower() != first)
            return false;
    }
    return true;
}

bool startsWithIgnoringCase(QStringView text, qsizetype at, QLatin1String word)
{
    return text.mid(at).startsWith(word, Qt::CaseInsensitive);
}

} // namespace

QString builtinNumberFormat(int id)
{
    for (const BuiltinFormat& f : kBuiltinFormats) {
        if (f.id == id)
            return QString::fromLatin1(f.code);
    }
    return {};
}

int builtinNumberFormatId(QStringView code)
{
    if (code.compare(QLatin1String("General"), Qt::CaseInsensitive) == 0)
        return 0;
    for (const BuiltinFormat& f : kBuiltinFormats) {
        if (code == QLatin1String(f.code))
            return f.id;
    }
    return -1;
}

bool isBuiltinDateTimeFormat(int id)
{
    return (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47)
        || (id >= 50 && id <= 58);
}

bool isDateTimeFormatCode(QStringView code)
{
    const qsizetype n = code.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = code[i];
        switch (c.unicode()) {
        case '"': {   // a literal text
            const qsizetype close = code.indexOf(QLatin1Char('"'), i + 1);
            if (close < 0)
                return false;
            i = close;
            continue;
        }
        case '\\':    // an escaped character
        case '_':     // the width of the next character
        case '*':     // the next character repeated to fill the cell
            ++i;
            continue;
        case '[': {
            const qsizetype close = code.indexOf(QLatin1Char(']'), i + 1);
            if (close < 0)
                return false;
            if (isElapsedTimeBracket(code.mid(i + 1, close - i - 1)))
                return true;
            i = close;
            continue;
        }
        default:
            break;
        }
        if (startsWithIgnoringCase(code, i, QLatin1String("General"))) {
            i += 6;
            continue;
        }
        switch (c.toLower().unicode()) {
        case 'y': case 'm': case 'd': case 'h': case 's':
            return true;
        case 'a':
            if (startsWithIgnoringCase(code, i, QLatin1String("AM/PM"))
                || startsWithIgnoringCase(code, i, QLatin1String("A/P")))
                return true;
            break;
        default:
            break;
        }
    }
    return false;
}

bool hasDateSerial(const QDate& date, bool date1904)
{
    static const QDate first1900(1900, 1, 1);
    static const QDate first1904(1904, 1, 1);
    static const QDate last(9999, 12, 31);
    return date >= (date1904 ? first1904 : first1900) && date <= last;
}

double toSerial(const QDate& date, bool date1904)
{
    if (!date.isValid())
        return std::nan("");
    if (date1904)
        return double(epoch1904().daysTo(date));
    const qint64 days = epoch1900().daysTo(date);
    return days >= 61 ? double(days) : double(epoch1900Early().daysTo(date));
}

double toSerial(const QTime& time)
{
    if (!time.isValid())
        return std::nan("");
    return double(time.msecsSinceStartOfDay()) / double(kMsPerDay);
}

double toSerial(const QDateTime& dateTime, bool date1904)
{
    if (!dateTime.isValid())
        return std::nan("");
    return toSerial(dateTime.date(), date1904) + toSerial(dateTime.time());
}

bool splitSerial(double serial, bool date1904, QDate* date, QTime* time)
{
    if (!std::isfinite(serial) || std::fabs(serial) >= kMaxSerial)
        return false;
    // Rounding the whole serial to the millisecond first lets 0.99999999 become the next
    // midnight rather than 23:59:59.999.
    const qint64 ms = std::llround(serial * double(kMsPerDay));
    qint64 days = ms / kMsPerDay;
    qint64 msOfDay = ms % kMsPerDay;
    if (msOfDay < 0) {
        msOfDay += kMsPerDay;
        --days;
    }
    const QDate epoch = date1904 ? epoch1904() : (days >= 60 ? epoch1900() : epoch1900Early());
    *date = epoch.addDays(days);
    *time = QTime::fromMSecsSinceStartOfDay(int(msOfDay));
    return date->isValid();
}

QDateTime fromSerial(double serial, bool date1904)
{
    QDate date;
    QTime time;
    if (!splitSerial(serial, date1904, &date, &time))
        return {};
    QDateTime local(date, time);
    // A workbook's times have no zone. Local time is what callers compare with, but a
    // wall clock time that local time skips (a daylight saving gap) would be moved; UTC
    // keeps it as written.
    if (local.isValid() && local.time() == time && local.date() == date)
        return local;
    return QDateTime(date, time, Qt::UTC);
}

} // namespace QXlsx::detail
