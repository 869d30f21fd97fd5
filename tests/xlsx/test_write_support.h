#pragma once

// What the engine's tests share: saving a document to a scratch file, reading parts of
// the package back, and asking real readers (openpyxl, LibreOffice) what they see.

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace QXlsx { class Document; }

namespace writetest {

// A path for a file named name in a folder that lives until the end of the test run.
QString scratchPath(const QString& name);
// Saves document under name in the scratch folder; the path, or an empty text on failure.
QString saved(const QXlsx::Document& document, const QString& name);

// The names of the entries of the package at path, and one entry's bytes.
QStringList entryNames(const QString& path);
QByteArray entry(const QString& path, const QString& name);

// True when the interpreter with openpyxl, or LibreOffice, is there; the tests skip otherwise.
bool haveOpenpyxl();
bool haveOffice();
// Runs a script of the interop folder (or code with -c) with the test Python; its
// standard output, or an empty array with the reason in error.
QByteArray runPython(const QStringList& arguments, QString* error, int timeoutMs = 60000);
// Has LibreOffice, with a profile of its own, convert files into outDir through the
// filter ("xlsx:Calc MS Excel 2007 XML", "csv:..."); false with the reason in error.
bool convertByOffice(const QStringList& files, const QString& filter, const QString& outDir, QString* error);
// What openpyxl sees in the workbook at path (see interop/openpyxl_dump.py).
QJsonObject openpyxlDump(const QString& path);
// One cell of a sheet of such a dump.
QJsonObject dumpedCell(const QJsonObject& dump, int sheet, const QString& reference);

} // namespace writetest
