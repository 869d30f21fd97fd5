#include "csv.h"

#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

bool needsQuotes(const QString& field)
{
    for (const QChar c : field) {
        if (c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n')
            || c == QLatin1Char('\r'))
            return true;
    }
    return false;
}

QString quotedField(const QString& field)
{
    QString quoted = field;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

void writeCsvFields(QTextStream& out, const QStringList& fields)
{
    for (int i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out << ',';
        if (needsQuotes(fields[i]))
            out << quotedField(fields[i]);
        else
            out << fields[i];
    }
}

} // namespace

void appendCsvField(QString& line, const QString& field)
{
    if (!needsQuotes(field)) {
        line += field;
        return;
    }
    line += QLatin1Char('"');
    for (const QChar c : field) {
        if (c == QLatin1Char('"'))
            line += QLatin1Char('"');
        line += c;
    }
    line += QLatin1Char('"');
}

QString csvLine(const QStringList& fields)
{
    QString line;
    QTextStream out(&line);
    writeCsvFields(out, fields);
    out.flush();
    return line;
}

void writeCsvLine(QTextStream& out, const QStringList& fields)
{
    writeCsvFields(out, fields);
    out << '\n';
}

std::vector<QStringList> parseCsv(const QString& text)
{
    std::vector<QStringList> records;
    QStringList record;
    QString field;
    bool quoted = false;
    bool recordStarted = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (quoted) {
            if (c == QLatin1Char('"') && i + 1 < text.size() && text[i + 1] == QLatin1Char('"'))
                field.append(text[++i]);
            else if (c == QLatin1Char('"'))
                quoted = false;
            else
                field.append(c);
            continue;
        }
        recordStarted = true;
        if (c == QLatin1Char('"')) {
            quoted = true;
        } else if (c == QLatin1Char(',')) {
            record.append(field);
            field.clear();
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            if (c == QLatin1Char('\r') && i + 1 < text.size() && text[i + 1] == QLatin1Char('\n'))
                ++i;
            record.append(field);
            records.push_back(record);
            record.clear();
            field.clear();
            recordStarted = false;
        } else {
            field.append(c);
        }
    }
    if (recordStarted) {
        record.append(field);
        records.push_back(record);
    }
    return records;
}

bool readCsvFile(const QString& path, std::vector<QStringList>& records, QString* error)
{
    QFile file;
    const bool opened = path == QStringLiteral("-")
        ? file.open(stdin, QIODevice::ReadOnly | QIODevice::Text)
        : (file.setFileName(path), file.open(QIODevice::ReadOnly | QIODevice::Text));
    if (!opened) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    QTextStream in(&file);
    in.setCodec("UTF-8");
    records = parseCsv(in.readAll());
    return true;
}

bool writeCsvFile(const QString& path, const std::vector<QStringList>& rows)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    QTextStream out(&file);
    out.setCodec("UTF-8");
    for (const QStringList& row : rows)
        writeCsvLine(out, row);
    out.flush();
    return file.error() == QFile::NoError;
}
