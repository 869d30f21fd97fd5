#pragma once

#include <QString>
#include <QStringList>

// Reads points for an elevation query as (x, y) text pairs, a heading being a pair with
// an empty y. A workbook (.xlsx, .xlsm) is read as a coordinate table: its cells row by
// row, a table three columns wide (number, x, y) without its first column. Any other
// file is text: a line of two numbers separated by a comma, a semicolon or spaces is a
// point; any other line, trimmed, is a heading that starts a new group; empty lines and
// lines from "#" are passed over. False, with a message in error, for a file that cannot
// be read or holds no points.
bool readPointFile(const QString& path, QStringList& points, QString* error);
