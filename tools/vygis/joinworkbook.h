#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

// What a workbook offers a join, read as the library's join reads it (the first
// sheet; headers trimmed, upper case and cut before "("; key cells as they stand), so
// that the command can check it before the layer is touched and count what matched.
class JoinWorkbook
{
public:
    // False when neither row 1 nor row 2 heads a column keyName (upper case).
    bool read(const QString& path, const QString& keyName);

    int headerRow() const { return m_headerRow; }
    // The headers of the columns other than the key column, in column order.
    const QStringList& dataHeaders() const { return m_dataHeaders; }
    // The worksheet rows of every key text, in row order; the join uses the last.
    const QHash<QString, QVector<int>>& rowsByKey() const { return m_rowsByKey; }

    // A key with more than one row.
    struct Duplicate
    {
        QString key;
        QVector<int> rows;
    };
    // Every key with more than one row, the one whose first row comes first leading.
    QVector<Duplicate> duplicates() const;

    // The field a column headed header is written to: the map's, or the header's own.
    static QString fieldFor(const QString& header, const QMap<QString, QString>& fieldNames)
    {
        return fieldNames.value(header, header);
    }

private:
    int m_headerRow = 0;
    QStringList m_dataHeaders;
    QHash<QString, QVector<int>> m_rowsByKey;
};
