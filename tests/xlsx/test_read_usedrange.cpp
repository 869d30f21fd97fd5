// The used range of a sheet read from a file: what holds values, and the formatted empty
// cells beside them, whatever <dimension> the writing program recorded and however it
// wrote out the formats of whole rows and columns.

#include "test_support.h"

#include "xlsxcellrange.h"
#include "xlsxworksheet.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

// Style 1 is bold, style 2 a yellow fill with thin borders.
const QByteArray Styles =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
    R"(<fonts count="2"><font><sz val="11"/><name val="Calibri"/></font><font><b/><sz val="11"/><name val="Calibri"/></font></fonts>)"
    R"(<fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill>)"
    R"(<fill><patternFill patternType="solid"><fgColor rgb="FFFFFF00"/></patternFill></fill></fills>)"
    R"(<borders count="2"><border><left/><right/><top/><bottom/><diagonal/></border>)"
    R"(<border><left style="thin"/><right style="thin"/><top style="thin"/><bottom style="thin"/><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="3"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
    R"(<xf numFmtId="0" fontId="1" fillId="0" borderId="0" xfId="0" applyFont="1"/>)"
    R"(<xf numFmtId="0" fontId="0" fillId="2" borderId="1" xfId="0" applyFill="1" applyBorder="1"/></cellXfs></styleSheet>)";

QByteArray columnName(int column)
{
    QByteArray name;
    for (; column > 0; column = (column - 1) / 26)
        name.prepend(char('A' + (column - 1) % 26));
    return name;
}

QByteArray formattedCells(int row, int firstColumn, int lastColumn, int style)
{
    QByteArray cells;
    for (int column = firstColumn; column <= lastColumn; ++column)
        cells += "<c r=\"" + columnName(column) + QByteArray::number(row) + "\" s=\"" + QByteArray::number(style) + "\"/>";
    return cells;
}

// The two rows of values, with cells after the values in each (formatted ones, say).
QByteArray valueRows(const QByteArray& afterFirst = {}, const QByteArray& afterSecond = {})
{
    return R"(<row r="1" spans="1:16384"><c r="A1" t="inlineStr"><is><t>name</t></is></c>)"
           R"(<c r="B1" t="inlineStr"><is><t>value</t></is></c>)" + afterFirst + "</row>"
           R"(<row r="2" spans="1:16384"><c r="A2" t="inlineStr"><is><t>x</t></is></c><c r="B2"><v>12.5</v></c>)"
           + afterSecond + "</row>";
}

// Rows first to last, each holding the same formatted empty cells.
QByteArray formattedRows(int first, int last, int firstColumn, int lastColumn, int style = 1)
{
    QByteArray rows;
    for (int row = first; row <= last; ++row)
        rows += "<row r=\"" + QByteArray::number(row) + "\">" + formattedCells(row, firstColumn, lastColumn, style) + "</row>";
    return rows;
}

// Rows first to last, each holding a formatted empty cell in column A, written the
// shortest way: the cell's column follows from its place.
QByteArray formattedColumnA(int first, int last)
{
    QByteArray rows;
    rows.reserve((last - first + 1) * 32);
    for (int row = first; row <= last; ++row)
        rows.append("<row r=\"").append(QByteArray::number(row)).append("\"><c s=\"1\"/></row>");
    return rows;
}

// A whole package, as another program writes it: the sheet claims the whole grid in use.
QByteArray claimingWholeGrid(const QByteArray& rows, const QByteArray& columns = {})
{
    const QByteArray sheet =
        R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><dimension ref="A1:XFD1048576"/>)"
        + columns + "<sheetData>" + rows + "</sheetData></worksheet>";
    Parts parts = workbookParts(sheet, {}, Styles);
    // LibreOffice opens a package only when its parts have their proper types.
    setPart(parts, "[Content_Types].xml",
            R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
            R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
            R"(<Default Extension="xml" ContentType="application/xml"/>)"
            R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>)"
            R"(<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
            R"(<Override PartName="/xl/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"/>)"
            "</Types>");
    return zipOf(parts);
}

struct GridClaim
{
    const char* name;
    QByteArray package;
};

// Two rows of values in a sheet whose recorded used range is the whole grid, with the
// formats of whole rows and columns, or stray formats, written every way programs do.
std::vector<GridClaim> gridClaims()
{
    const int lastRow = MaxRows, lastColumn = MaxColumns;
    return {
        {"dimension", claimingWholeGrid(valueRows())},
        {"columns", claimingWholeGrid(valueRows(), R"(<cols><col min="1" max="16384" width="9" style="1"/></cols>)")},
        {"rowformats", claimingWholeGrid(valueRows() + R"(<row r="3" s="1" customFormat="1"/><row r="1048576" s="1" customFormat="1"/>)")},
        {"corner", claimingWholeGrid(valueRows() + formattedRows(lastRow, lastRow, lastColumn, lastColumn, 2))},
        {"rowsout", claimingWholeGrid(valueRows(formattedCells(1, 3, lastColumn, 1), formattedCells(2, 3, lastColumn, 1)))},
        {"columndown", claimingWholeGrid(valueRows() + formattedColumnA(3, lastRow))},
        {"stray", claimingWholeGrid(valueRows() + formattedRows(lastRow - 1, lastRow - 1, lastColumn - 1, lastColumn - 1, 2))},
    };
}

// The sheet's used range as CSV lines of its values from A1, as LibreOffice writes them
// for these plain texts and numbers.
QString csvFromA1(const Document& doc)
{
    const CellRange used = doc.dimension();
    if (qint64(used.lastRow()) * used.lastColumn() > 1000000)
        return QStringLiteral("too large to compare: ") + used.toString();
    QString csv;
    for (int row = 1; used.isValid() && row <= used.lastRow(); ++row) {
        QStringList texts;
        for (int column = 1; column <= used.lastColumn(); ++column)
            texts << doc.read(row, column).toString();
        csv += texts.join(',') + '\n';
    }
    return csv;
}

} // namespace

TEST(ReadUsedRange, TwoRowsOfValuesInASheetClaimingTheWholeGridAreTwoRows)
{
    for (const GridClaim& claim : gridClaims()) {
        SCOPED_TRACE(claim.name);
        const auto doc = openBytes(claim.package);
        EXPECT_EQ(doc->dimension(), CellRange("A1:B2"));
        EXPECT_EQ(csvFromA1(*doc).toStdString(), "name,value\nx,12.5\n");
    }
}

TEST(ReadUsedRange, FormattedEmptyCellsBesideTheValuesWidenTheRangeAsInExcel)
{
    const struct { const char* name; QByteArray rows; CellRange used; } cases[] = {
        {"a column beside", valueRows(formattedCells(1, 3, 3, 1)), CellRange("A1:C2")},
        {"a filled cell below", valueRows() + formattedRows(4, 4, 4, 4, 2), CellRange("A1:D4")},
        {"rows prepared below", valueRows() + formattedRows(3, 200, 1, 2), CellRange("A1:B200")},
        {"cells before the values", formattedRows(1, 1, 1, 1) + R"(<row r="3"><c r="C3"><v>1</v></c></row>)",
         CellRange("A1:C3")},
        {"formats only", formattedRows(2, 3, 2, 2), CellRange("B2:B3")},
        // A value is the user's, however far away.
        {"a value in the corner", valueRows() + R"(<row r="1048576"><c r="XFD1048576"><v>1</v></c></row>)",
         CellRange("A1:XFD1048576")},
        // A formula counts before its result is known.
        {"a formula", valueRows() + R"(<row r="5"><c r="E5"><f>B2*2</f></c></row>)", CellRange("A1:E5")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(openBytes(claimingWholeGrid(c.rows))->dimension(), c.used) << c.name;
}

TEST(ReadUsedRange, FormatsOfWholeRowsAndColumnsAreKeptWhenSavedUnderTheRangeInUse)
{
    const auto doc = openBytes(claimingWholeGrid(valueRows(formattedCells(1, 3, MaxColumns, 1))
                                                 + formattedRows(MaxRows, MaxRows, MaxColumns, MaxColumns, 2)));
    const QString path = saved(*doc, "whole-grid-claim.xlsx");
    const QByteArray sheet = entry(path, "xl/worksheets/sheet1.xml");
    EXPECT_TRUE(sheet.contains(R"(<dimension ref="A1:B2"/>)")) << sheet.left(400).constData();

    const Document again(path);
    EXPECT_EQ(again.dimension(), CellRange("A1:B2"));
    ASSERT_NE(again.cellAt(MaxRows, MaxColumns), nullptr);
    EXPECT_EQ(again.cellAt(MaxRows, MaxColumns)->format().fillPattern(), Format::PatternSolid);
    ASSERT_NE(again.cellAt(1, MaxColumns), nullptr);
    EXPECT_TRUE(again.cellAt(1, MaxColumns)->format().fontBold());
}

TEST(ReadUsedRange, LibreOfficeShowsWhatTheEngineReads)
{
    if (!haveOffice())
        GTEST_SKIP() << "no LibreOffice at " VYGIS_SOFFICE;
    const QTemporaryDir folder;
    const std::vector<GridClaim> claims = gridClaims();
    QStringList files;
    for (const GridClaim& claim : claims) {
        QFile file(folder.filePath(QString::fromLatin1(claim.name) + ".xlsx"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(claim.package);
        files << file.fileName();
    }
    QString error;
    // Texts quoted only where they need it, like the lines csvFromA1 makes.
    ASSERT_TRUE(convertByOffice(files, "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false",
                                folder.filePath("csv"), &error))
        << error.toStdString();
    for (const GridClaim& claim : claims) {
        SCOPED_TRACE(claim.name);
        QFile csv(folder.filePath("csv/" + QString::fromLatin1(claim.name) + ".csv"));
        ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
        EXPECT_EQ(csv.readAll().toStdString(), csvFromA1(*openBytes(claim.package)).toStdString());
    }
}
