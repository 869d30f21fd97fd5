// Workbooks written by the engine, as openpyxl reads them and as LibreOffice converts
// them to CSV. One soffice run converts every file of a test, since each start costs seconds.

#include "test_support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QMap>
#include <QTemporaryDir>

#include <iterator>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

#define REQUIRE_OPENPYXL()                                                       \
    if (!haveOpenpyxl())                                                         \
        GTEST_SKIP() << "no Python with openpyxl at " VYGIS_PYTHON3

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

std::string str(const QJsonValue& v) { return v.toString().toStdString(); }

QJsonObject sheetOf(const QJsonObject& dump, int index)
{
    return dump.value("sheets").toArray().at(index).toObject();
}

// Expects the cell of the first sheet of the dump to show each of the values given.
void expectShown(const QJsonObject& dump, const QString& reference, const QJsonObject& values)
{
    const QJsonObject cell = dumpedCell(dump, 0, reference);
    for (auto it = values.begin(); it != values.end(); ++it)
        EXPECT_EQ(cell.value(it.key()), it.value()) << qPrintable(reference) << " " << qPrintable(it.key());
}

} // namespace

TEST(WriteOpenpyxl, ValuesOfEveryKindTextExactlyAsWrittenAndSheetsInOrder)
{
    REQUIRE_OPENPYXL();
    const std::pair<QVariant, const char*> values[] = {
        {42, "42"}, {-1234.5678, "-1234.5678"}, {true, "true"}, {false, "false"},
        {QDate(2024, 2, 29), "2024-02-29T00:00:00"},
        {QDateTime(QDate(1999, 12, 31), QTime(23, 59, 30)), "1999-12-31T23:59:30"}, {QTime(6, 30), "06:30:00"}};
    const QStringList texts = {"  leading and trailing  ", "two\nlines", "windows\r\nbreak", "tab\there",
                               "emoji \xF0\x9F\x98\x80 and CJK \xE4\xB8\xAD\xE6\x96\x87", "_x0041_", "=1+1", "007",
                               "1234.5678", "http://example.com/a?b=1&c=2", "TRUE", "<b>&amp;</b>", " "};
    const QString control = QStringLiteral("bell\x07 and \x01 start");
    Format grey;
    grey.setPatternBackgroundColor(QColor(192, 192, 192));
    Document doc;
    for (int i = 0; i < int(std::size(values)); ++i)
        doc.write(i + 1, 1, values[i].first);
    for (int i = 0; i < texts.size(); ++i)
        doc.write(i + 1, 2, texts[i]);
    doc.write("C1", control);
    doc.write("C2", QVariant(), grey);
    // Sheets keep their order, names and the active tab.
    const QString streets = QString::fromUtf8("Stra\xC3\x9F" "en & Wege");
    doc.addSheet(streets);
    doc.write(1, 1, 2);
    doc.addSheet("Last");
    doc.write(1, 1, 3);
    doc.selectSheet(streets);
    const QString path = saved(doc, "values.xlsx");
    const QJsonObject dump = openpyxlDump(path);
    ASSERT_EQ(dump.value("sheets").toArray().size(), 3);
    EXPECT_EQ(str(sheetOf(dump, 0).value("title")), "Sheet1");
    EXPECT_EQ(sheetOf(dump, 1).value("title").toString(), streets);
    EXPECT_EQ(str(sheetOf(dump, 2).value("title")), "Last");
    EXPECT_EQ(dumpedCell(dump, 2, "A1").value("value").toDouble(), 3);
    EXPECT_EQ(dump.value("active").toInt(), 1);

    for (int i = 0; i < int(std::size(values)); ++i) {
        const QJsonValue value = dumpedCell(dump, 0, QStringLiteral("A%1").arg(i + 1)).value("value");
        EXPECT_EQ((value.isObject() ? value.toObject().value("datetime") : value).toVariant().toString(),
                  QLatin1String(values[i].second));
    }
    for (int i = 0; i < texts.size(); ++i) {
        const QJsonObject cell = dumpedCell(dump, 0, QStringLiteral("B%1").arg(i + 1));
        EXPECT_EQ(str(cell.value("type")), "s") << texts[i].toStdString();
        EXPECT_EQ(cell.value("value").toString(), texts[i]);
    }
    // Control characters are escaped, not invalid XML: openpyxl shows the escape itself,
    // as it does for the same text saved by Excel.
    EXPECT_EQ(str(dumpedCell(dump, 0, "C1").value("value")), "bell_x0007_ and _x0001_ start");
    Document reopened(path);
    ASSERT_TRUE(reopened.selectSheet("Sheet1"));
    EXPECT_EQ(reopened.read(1, 3).toString(), control);
    expectShown(dump, "C2", {{"value", QJsonValue()}, {"fillColor", "FFC0C0C0"}});
}

TEST(WriteOpenpyxl, FormatsMergesAndSizes)
{
    REQUIRE_OPENPYXL();
    Format centred;
    centred.setHorizontalAlignment(Format::AlignHCenter);
    centred.setVerticalAlignment(Format::AlignVCenter);
    centred.setBorderStyle(Format::BorderThin);
    Format header = centred;
    header.setFontBold(true);
    header.setPatternBackgroundColor(QColor(0xC0, 0xC0, 0xC0));
    Format money;
    money.setNumberFormat(QStringLiteral("#,##0.00 \"EUR\""));

    Document doc;
    doc.write(1, 1, QStringLiteral("Roads_attribute table"), centred);
    doc.mergeCells(CellRange(1, 1, 1, 4), centred);
    doc.write(2, 1, QStringLiteral("Name"), header);
    doc.write(3, 2, 1234.5, money);
    doc.setRowHeight(2, 30);
    doc.setColumnWidth(2, 3, 25);
    const QJsonObject dump = openpyxlDump(saved(doc, "formats.xlsx"));
    const QJsonObject sheet = sheetOf(dump, 0);

    expectShown(dump, "A1", {{"horizontal", "center"}, {"vertical", "center"}, {"bold", false},
                             {"border", QJsonArray{"thin", "thin", "thin", "thin"}}});
    expectShown(dump, "A2", {{"bold", true}, {"fill", "solid"}, {"fillColor", "FFC0C0C0"}, {"horizontal", "center"}});
    expectShown(dump, "B3", {{"numberFormat", "#,##0.00 \"EUR\""}});
    EXPECT_EQ(sheet.value("merges"), QJsonArray{"A1:D1"});
    EXPECT_EQ(sheet.value("rowHeights").toObject().value("2").toDouble(), 30);
    EXPECT_EQ(sheet.value("columnWidths").toObject().value("B").toDouble(), 25);
    EXPECT_TRUE(sheet.value("columnWidths").toObject().value("A").isUndefined());
}

TEST(WriteOpenpyxl, ALargeSheetIsAValidZipUpToTheLastCellOfTheGrid)
{
    REQUIRE_OPENPYXL();
    Document doc;
    for (int row = 1; row <= 2000; ++row)
        doc.write(row, 1, QStringLiteral("row %1").arg(row));
    ASSERT_TRUE(doc.write(1048576, 16384, QStringLiteral("corner")));
    QString error;
    const QByteArray out = runPython(
        {"-c", "import openpyxl,sys,zipfile; z=zipfile.ZipFile(sys.argv[1]); print(z.testzip(), len(z.namelist())); "
               "ws=openpyxl.load_workbook(sys.argv[1]).active; print(ws.dimensions, ws['XFD1048576'].value)",
         saved(doc, "large.xlsx")}, &error);
    EXPECT_EQ(out.trimmed().toStdString(), "None 9\nA1:XFD1048576 corner") << error.toStdString();
}

TEST(WriteOpenpyxl, AnOpenedWorkbookKeepsWhatTheEngineDoesNotModel)
{
    REQUIRE_OPENPYXL();
    const QString original = scratchPath("made-by-openpyxl.xlsx");
    QString error;
    runPython({"-c",
               "import openpyxl,sys\n"
               "from openpyxl.comments import Comment\n"
               "from openpyxl.workbook.defined_name import DefinedName\n"
               "from openpyxl.worksheet.datavalidation import DataValidation\n"
               "wb=openpyxl.Workbook(); ws=wb.active; ws.title='Data'\n"
               "ws['A1']='keep'; ws['A1'].comment=Comment('a note','me'); ws['B1']=1\n"
               "dv=DataValidation(type='list', formula1='\"a,b\"'); ws.add_data_validation(dv); dv.add('C1:C9')\n"
               "wb.defined_names.append(DefinedName('Total', attr_text='Data!$B$1'))\n"
               "wb.create_sheet('Other')['A1']='x'\n"
               "wb.save(sys.argv[1])",
               original}, &error);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();

    Document doc(original);
    doc.write("B1", 2);
    const QString path = saved(doc, "reopened.xlsx");
    const QByteArray out = runPython(
        {"-c", "import openpyxl,sys; wb=openpyxl.load_workbook(sys.argv[1]); ws=wb['Data']; "
               "print(ws['A1'].value, ws['A1'].comment.text, ws['B1'].value, "
               "ws.data_validations.dataValidation[0].sqref, wb.defined_names.get('Total').attr_text, "
               "wb.sheetnames)",
         path}, &error);
    EXPECT_EQ(out.trimmed().toStdString(), "keep a note 2 C1:C9 Data!$B$1 ['Data', 'Other']")
        << error.toStdString();
}

TEST(WriteOpenpyxl, TheStaleCalculationChainIsDropped)
{
    REQUIRE_OPENPYXL();
    Parts parts = workbookParts(worksheet("<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"B1\"><f>A1*2</f><v>2</v></c></row>"));
    setPart(parts, "xl/calcChain.xml",
            "<calcChain xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><c r=\"B1\" i=\"1\"/></calcChain>");
    setPart(parts, "xl/_rels/workbook.xml.rels",
            relationships(relationship("s1", "worksheet", "worksheets/sheet1.xml")
                          + relationship("rId99", "calcChain", "calcChain.xml")));
    auto doc = openBytes(zipOf(parts));
    doc->write("A1", 5);
    const QString path = saved(*doc, "calcchain.xlsx");

    EXPECT_TRUE(entry(path, "xl/calcChain.xml").isEmpty());
    EXPECT_FALSE(entry(path, "xl/_rels/workbook.xml.rels").contains("calcChain"));
    EXPECT_FALSE(entry(path, "[Content_Types].xml").contains("calcChain"));
    EXPECT_TRUE(entry(path, "xl/worksheets/sheet1.xml").contains("<f>A1*2</f>"));
    const QJsonObject dump = openpyxlDump(path);
    EXPECT_EQ(dumpedCell(dump, 0, "A1").value("value").toDouble(), 5);
    EXPECT_EQ(str(dumpedCell(dump, 0, "B1").value("value")), "=A1*2");
}

// Cells that follow the one before them go without their reference; those after a gap
// keep it.
TEST(WriteOpenpyxl, CellsAfterAGapKeepTheirColumns)
{
    REQUIRE_OPENPYXL();
    Document doc;
    for (int column : {2, 3, 5, 6, 16384})
        doc.write(1, column, column);
    for (int column : {1, 3, 4})
        doc.write(2, column, column);
    const QJsonObject dump = openpyxlDump(saved(doc, "gaps.xlsx"));

    for (const char* reference : {"B1", "C1", "E1", "F1", "XFD1", "A2", "C2", "D2"}) {
        const CellReference cell(QString::fromLatin1(reference));
        EXPECT_EQ(dumpedCell(dump, 0, reference).value("value").toDouble(), cell.column()) << reference;
    }
    for (const char* reference : {"A1", "D1", "G1", "B2", "E2"})
        EXPECT_TRUE(dumpedCell(dump, 0, reference).isEmpty()) << reference;
}

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
    int column = 0;
    for (const char* text : {"=1+1", "007", "1234.5678", "http://example.com"})
        values.write(2, ++column, text, centred);
    values.write(3, 1, 2.5);
    values.write(3, 2, true);
    values.write(3, 3, QDate(2024, 2, 29), iso);
    values.write(3, 4, QString::fromUtf8("\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80"));

    Document sheets;
    sheets.write(1, 1, QStringLiteral("first"));
    sheets.addSheet(QStringLiteral("Shown"));
    sheets.write(1, 1, QStringLiteral("second, with comma"));
    sheets.write(2, 2, 7);
    sheets.write(2, 4, 8);
    sheets.write(2, 5, 9);

    QString error;
    const QMap<QString, QString> csv =
        convertedToCsv({saved(values, "values.xlsx"), saved(sheets, "sheets.xlsx")}, &error);
    ASSERT_EQ(csv.size(), 3) << error.toStdString();
    EXPECT_EQ(csv.value("values/Sheet1").toStdString(),
              "Layer_attribute table,,,\n"
              "=1+1,007,1234.5678,http://example.com\n"
              "2.5,TRUE,2024-02-29," + std::string("\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80") + "\n");
    EXPECT_EQ(csv.value("sheets/Sheet1").toStdString(), "first\n");
    EXPECT_EQ(csv.value("sheets/Shown").toStdString(), "\"second, with comma\",,,,\n,7,,8,9\n");
}
