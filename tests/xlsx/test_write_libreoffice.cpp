// Workbooks written by the engine, converted to CSV by LibreOffice. One soffice run
// converts every file of a test, since each start costs seconds.

#include "test_support.h"

#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

// The CSV text LibreOffice makes of each sheet of each workbook, as "file/sheet" -> CSV.
QMap<QString, QString> convertedToCsv(const QStringList& workbooks, QString* error)
{
    // With sheet -1 every sheet becomes a file of its own, "<workbook>-<sheet>.csv".
    const QTemporaryDir out;
    convertByOffice(workbooks, "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1",
                    out.path(), error);
    QMap<QString, QString> csv;
    for (const QFileInfo& info : QDir(out.path()).entryInfoList({"*.csv"})) {
        QFile file(info.filePath());
        file.open(QIODevice::ReadOnly);
        csv.insert(info.completeBaseName().replace('-', '/'), QString::fromUtf8(file.readAll()));
    }
    return csv;
}

} // namespace

TEST(WriteLibreOffice, ConvertsWhatWasWrittenAndLeavesTextAsText)
{
    if (!haveOffice())
        GTEST_SKIP() << "LibreOffice (soffice) not found";

    Format centred;
    centred.setHorizontalAlignment(Format::AlignHCenter);
    centred.setBorderStyle(Format::BorderThin);
    Format iso;
    iso.setNumberFormat(QStringLiteral("yyyy-mm-dd"));
    Document values;
    values.write(1, 1, QStringLiteral("Layer_attribute table"), centred);
    values.mergeCells(CellRange(1, 1, 1, 4), centred);
    values.write(2, 1, QStringLiteral("=1+1"), centred);
    values.write(2, 2, QStringLiteral("007"), centred);
    values.write(2, 3, QStringLiteral("1234.5678"), centred);
    values.write(2, 4, QStringLiteral("http://example.com"), centred);
    values.write(3, 1, 2.5);
    values.write(3, 2, true);
    values.write(3, 3, QDate(2024, 2, 29), iso);
    values.write(3, 4, QString::fromUtf8("\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80"));

    Document sheets;
    sheets.write(1, 1, QStringLiteral("first"));
    sheets.addSheet(QStringLiteral("Shown"));
    sheets.write(1, 1, QStringLiteral("second, with comma"));
    sheets.write(2, 2, 7);

    QString error;
    const QMap<QString, QString> csv =
        convertedToCsv({saved(values, "values.xlsx"), saved(sheets, "sheets.xlsx")}, &error);
    ASSERT_EQ(csv.size(), 3) << error.toStdString();
    EXPECT_EQ(csv.value("values/Sheet1").toStdString(),
              "Layer_attribute table,,,\n"
              "=1+1,007,1234.5678,http://example.com\n"
              "2.5,TRUE,2024-02-29," + std::string("\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80") + "\n");
    EXPECT_EQ(csv.value("sheets/Sheet1").toStdString(), "first\n");
    EXPECT_EQ(csv.value("sheets/Shown").toStdString(), "\"second, with comma\",\n,7\n");
}
