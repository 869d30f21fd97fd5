#pragma once

// vygisutil: the spreadsheet work of the GIS application (exporting layer attributes to
// styled workbooks, writing check reports, joining workbook columns into layers, reading
// and rewriting field template workbooks) and three layer utilities.
//
// Every function is a self-contained static operation: it checks its arguments, opens or
// creates one workbook (or file), does its work and lets it go before returning. Nothing
// is kept between calls, no function logs, and no exception reaches the caller on bad
// input: functions answer with false, an empty result or an unchanged output argument.
// Calls are made from the application's GUI thread.

#include "vygisutil_export.h"

#include <QString>
#include <QStringList>

#include <vector>

class VYGISUTIL_EXPORT VyExcelUtil
{
public:
    VyExcelUtil() = delete;

    // --- Creating and resetting workbooks -------------------------------------------

    // Saves a blank workbook (one empty worksheet "Sheet1") at path, but only where no
    // file exists yet: an existing file, whatever it holds, is left alone. The path is
    // used as given (no extension is added); a folder that does not exist simply makes
    // the save fail, which the caller is not told.
    static void createExcel(QString path);

    // Replaces the file at path by a blank workbook. Returns true when a file existed
    // and was removed; the blank workbook is then saved in its place (if that save
    // fails, no file is left and the result is still true). Returns false, creating
    // nothing, when no file exists; and false, leaving the file as it was, when it
    // cannot be removed.
    static bool clearExcel(QString path);

    // --- Reading a whole sheet -------------------------------------------------------

    // Appends the current (active) worksheet of the workbook at path to rows, one
    // QStringList per sheet row and one entry per column, as texts (numbers as
    // QVariant::toString gives them, nothing trimmed or formatted). Empty cells give
    // empty strings.
    //
    // Rows and columns are read from A1 to the last used cell, so that entry j of every
    // list is column j + 1 and the k-th appended row is sheet row k, also for a sheet
    // whose content starts further down or to the right (its leading empty rows and
    // columns come as empty strings). Rows already in the vector stay in front.
    //
    // A missing file, a file that is not a workbook, a chart sheet or an empty sheet
    // append nothing; so does a sheet whose used range spans more than 50,000,000 cells
    // (a few stray cells far from the data would otherwise ask for gigabytes of empty
    // strings).
    static void getExcelData(QString path, std::vector<QStringList>& rows);
};

class VYGISUTIL_EXPORT VyUniversalFunction
{
public:
    VyUniversalFunction() = delete;
};
