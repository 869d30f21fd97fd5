#pragma once

// What the workbook functions share: the file test, the cell formats, the title row of
// the attribute exports, the attribute text rule and the progress runner.

#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <QString>

#include <functional>

namespace VyObjects { class TsVariant; }

namespace vygis {

// True when a file stands at path, asked of the object library as the host does.
bool fileExists(const QString& path);

// Centred horizontally and vertically with a thin border on all four sides.
QXlsx::Format centredCellFormat();
// The centred cell format on a solid light grey (#cccccc) fill.
QXlsx::Format greyHeaderFormat();

// Row 1 of an attribute export: columns 1 to width merged (nothing is merged when width
// is 1 or less), the row 30 points high, and title in column 1 with the centred format.
void writeTitleRow(QXlsx::Document& document, const QString& title, int width);

// The text an attribute value is exported as: floating values at precision 8 through
// the application's number formatting, everything else as the value's own text.
QString attributeText(const VyObjects::TsVariant& value);

// Runs the data rows of an export under a VyWaitDialog ("Exporting...", shown only when
// the rows take longer than its show delay). When the rows are written the wait ends and
// its dialog is hidden; only then is the document saved to path, on the calling thread
// with nothing shown, and the result of the save is returned.
bool writeRowsAndSave(QXlsx::Document& document, const QString& path,
                      const std::function<void()>& writeRows);

// As writeRowsAndSave, for exports that cannot know beforehand whether every record fits
// on the sheet: writeRows returns false when it had to stop early, and then nothing is
// saved (a file at path stays as it was) and the result is false.
bool writeRowsAndSaveIfComplete(QXlsx::Document& document, const QString& path,
                                const std::function<bool()>& writeRows);

} // namespace vygis
