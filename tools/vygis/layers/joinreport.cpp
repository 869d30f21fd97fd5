#include "joinreport.h"

#include <algorithm>

using VyObjects::TsGdalEditSummary;

namespace {

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// "2 and 5", "2, 5 and 9"
QString rowList(const QVector<int>& rows)
{
    QStringList numbers;
    for (const int row : rows)
        numbers.append(QString::number(row));
    const QString last = numbers.takeLast();
    return numbers.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
}

// The rows of every key text, in row order.
QHash<QString, QVector<int>> rowsByKey(const vygis::JoinWorkbook& workbook)
{
    QHash<QString, QVector<int>> rows;
    for (int row = workbook.headerRow() + 1; row <= workbook.lastRow(); ++row)
        rows[workbook.keyText(row)].append(row);
    return rows;
}

QVector<DuplicateKey> duplicatesIn(const QHash<QString, QVector<int>>& rowsByKey)
{
    QVector<DuplicateKey> found;
    for (auto key = rowsByKey.cbegin(); key != rowsByKey.cend(); ++key) {
        if (key.value().size() > 1)
            found.append({key.key(), key.value()});
    }
    std::sort(found.begin(), found.end(),
              [](const DuplicateKey& a, const DuplicateKey& b) { return a.rows.first() < b.rows.first(); });
    return found;
}

QString duplicateLine(const QVector<DuplicateKey>& duplicates)
{
    QString line = QStringLiteral("duplicate keys: %1").arg(duplicates.size());
    if (duplicates.isEmpty())
        return line;
    const DuplicateKey& first = duplicates.first();
    return line + QStringLiteral(" (first: %1 in rows %2; row %3 was used)")
                      .arg(quoted(first.key), rowList(first.rows))
                      .arg(first.rows.last());
}

QStringList editLines(const TsGdalEditSummary& edits)
{
    const bool undone = edits.outcome == TsGdalEditSummary::Undone;
    QStringList lines{
        (undone ? QStringLiteral("values to write (undone): %1") : QStringLiteral("values written: %1"))
            .arg(edits.valuesWritten),
        QStringLiteral("values unchanged: %1").arg(edits.valuesUnchanged),
        QStringLiteral("values not convertible: %1").arg(edits.valuesNotConvertible)};
    for (const TsGdalEditSummary::RefusedValue& refused : edits.examples)
        lines.append(QStringLiteral("  ") + refused.toString());
    if (edits.valuesNotConvertible > static_cast<long long>(edits.examples.size()))
        lines.append(QStringLiteral("  ..."));
    return lines;
}

} // namespace

JoinCounts JoinCounts::of(const vygis::JoinWorkbook& workbook, const QHash<QString, long long>& featuresByKey,
                          const TsGdalEditSummary& edits)
{
    JoinCounts counts;
    const QHash<QString, QVector<int>> keyRows = rowsByKey(workbook);
    for (auto key = featuresByKey.cbegin(); key != featuresByKey.cend(); ++key) {
        if (keyRows.contains(key.key()))
            counts.featuresJoined += key.value();
        else
            counts.featuresWithoutRow += key.value();
    }
    for (auto key = keyRows.cbegin(); key != keyRows.cend(); ++key) {
        if (featuresByKey.contains(key.key()))
            continue;
        counts.rowsWithoutFeature += key.value().size();
        if (counts.firstRowWithoutFeature == 0 || key.value().first() < counts.firstRowWithoutFeature) {
            counts.firstRowWithoutFeature = key.value().first();
            counts.firstKeyWithoutFeature = key.key();
        }
    }
    counts.duplicates = duplicatesIn(keyRows);
    counts.edits = edits;
    return counts;
}

QStringList JoinCounts::lines() const
{
    QString unmatched = QStringLiteral("rows matching no feature: %1").arg(rowsWithoutFeature);
    if (rowsWithoutFeature > 0)
        unmatched += QStringLiteral(" (first: row %1, key %2)")
                         .arg(firstRowWithoutFeature)
                         .arg(quoted(firstKeyWithoutFeature));
    return QStringList{QStringLiteral("features joined: %1").arg(featuresJoined),
                       QStringLiteral("features with no row: %1").arg(featuresWithoutRow), unmatched,
                       duplicateLine(duplicates)}
        + editLines(edits);
}
