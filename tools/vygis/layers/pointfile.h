#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What reading a text point file passed over, for the command to tell its user.
struct PointFileNotes
{
    int columnHeaderLine = 0;   // 0: the file has no column header
    QString columnHeader;
    QList<int> skippedLines;    // lines that are neither a point nor a heading, from 1
};

// Reads points for an elevation query as (x, y) text pairs, a heading being a pair with
// an empty y. A workbook (.xlsx, .xlsm) is read as a coordinate table: its cells row by
// row, a table three columns wide (number, x, y) without its first column. Any other
// file is text, read line by line, fields separated by commas, semicolons, tabs or
// spaces:
// - a line of two numbers is a point x, y; a line of three numbers is id, x, y (the id
//   is not kept: the report numbers points within their group);
// - a line whose first field is not a number is a heading that starts a new group;
// - the first line is a column header instead (X,Y or id;lon;lat) when its fields are
//   names separated by commas, semicolons or tabs, as many as the point line after it;
// - any other line starting with a number ("12.5,abc", four numbers) is skipped and
//   noted in notes->skippedLines; empty lines and lines from "#" are passed over.
// False, with a message in error, for a file that cannot be read or holds no point.
bool readPointFile(const QString& path, QStringList& points, QString* error,
                   PointFileNotes* notes = nullptr);
