#pragma once

// Packages made in memory for the reader's tests: a zip of named parts, and the parts
// of a minimal workbook that a test changes one at a time.

#include "xlsxdocument.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

namespace readtest {

using Parts = std::vector<std::pair<QString, QByteArray>>;

// A zip archive of the parts, deflated.
QByteArray zipOf(const Parts& parts);

// A workbook of one worksheet "Data" whose part is sheetXml; shared strings and styles
// are part of it when given.
Parts workbookParts(const QByteArray& sheetXml, const QByteArray& sharedStringsXml = {},
                    const QByteArray& stylesXml = {});

// Replaces or adds one part.
void setPart(Parts& parts, const QString& name, const QByteArray& data);

// A <worksheet> whose sheetData holds rows, followed by the elements in after.
QByteArray worksheet(const QByteArray& rows, const QByteArray& after = {});

// The bytes written to a temporary file that lives until the end of the test run.
QString fileOf(const QByteArray& bytes);

// A document opened from the bytes in memory.
std::unique_ptr<QXlsx::Document> openBytes(const QByteArray& bytes);

} // namespace readtest
