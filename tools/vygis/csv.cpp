#include "csv.h"

namespace {

QString csvField(const QString& field)
{
    const bool needsQuotes = field.contains(QLatin1Char(',')) || field.contains(QLatin1Char('"'))
        || field.contains(QLatin1Char('\n')) || field.contains(QLatin1Char('\r'));
    if (!needsQuotes)
        return field;
    QString quoted = field;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace

QString csvLine(const QStringList& fields)
{
    QStringList quoted;
    quoted.reserve(fields.size());
    for (const QString& field : fields)
        quoted.append(csvField(field));
    return quoted.join(QLatin1Char(','));
}
