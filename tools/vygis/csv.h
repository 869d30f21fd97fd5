#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <vector>

// One CSV line: fields quoted where they hold a comma, a quote or a line break.
QString csvLine(const QStringList& fields);
// Writes the CSV line of fields and its line end to out.
void writeCsvLine(QTextStream& out, const QStringList& fields);
// Appends field to line as one CSV field, quoted where csvLine quotes it; the caller
// puts the commas between fields.
void appendCsvField(QString& line, const QString& field);

// The records of a CSV text: fields split at commas, quoted fields may hold commas,
// doubled quotes and line breaks. Line ends are "\n" or "\r\n"; a last empty line
// gives no record.
std::vector<QStringList> parseCsv(const QString& text);

// Reads the CSV file at path ("-" for standard input) as UTF-8. False, with a message
// in error, when it cannot be read.
bool readCsvFile(const QString& path, std::vector<QStringList>& records, QString* error);

// Writes rows to a CSV file at path as UTF-8, replacing it; false when it cannot.
bool writeCsvFile(const QString& path, const std::vector<QStringList>& rows);
