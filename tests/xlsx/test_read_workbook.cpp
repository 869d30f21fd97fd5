// Reading workbooks made in the tests: what a user of the API sees in each cell, sheet
// and format, and what the model keeps for a save.

#include "test_support.h"

#include <gtest/gtest.h>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

std::unique_ptr<Document> open(const Parts& parts)
{
    return openBytes(zipOf(parts));
}

std::unique_ptr<Document> openSheet(const QByteArray& rows, const QByteArray& sharedStrings = {},
                                    const QByteArray& styles = {})
{
    return open(workbookParts(worksheet(rows), sharedStrings, styles));
}

QByteArray sst(const QByteArray& items)
{
    return R"(<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)" + items + "</sst>";
}

// Style 1 is bold, centred and thinly bordered with a solid yellow fill; style 2 shows
// dates (built-in 14); style 3 a custom date-time code; style 4 a custom number code.
const QByteArray Styles =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
    R"(<numFmts count="2"><numFmt numFmtId="164" formatCode="yyyy\-mm\-dd\ hh:mm"/>)"
    R"(<numFmt numFmtId="165" formatCode="0.000&quot;h&quot;"/></numFmts>)"
    R"(<fonts count="2"><font><sz val="11"/><name val="Calibri"/><family val="2"/></font>)"
    R"(<font><b/><sz val="12"/><color theme="1" tint="-0.25"/><name val="Arial"/></font></fonts>)"
    R"(<fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill>)"
    R"(<fill><patternFill patternType="solid"><fgColor rgb="FFFFFF00"/><bgColor indexed="64"/></patternFill></fill></fills>)"
    R"(<borders count="2"><border><left/><right/><top/><bottom/><diagonal/></border>)"
    R"(<border><left style="thin"><color auto="1"/></left><right style="thin"/><top style="thin"/><bottom style="medium"><color rgb="FF0000FF"/></bottom><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="5"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
    R"(<xf numFmtId="0" fontId="1" fillId="2" borderId="1" xfId="0" applyFont="1"><alignment horizontal="center" vertical="center" wrapText="1"/></xf>)"
    R"(<xf numFmtId="14" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/>)"
    R"(<xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/>)"
    R"(<xf numFmtId="165" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/></cellXfs>)"
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
    R"(<dxfs count="0"/></styleSheet>)";

} // namespace

TEST(ReadWorkbook, ReadsEveryKindOfValue)
{
    auto doc = openSheet(
        R"(<row r="1"><c r="A1" t="s"><v>1</v></c><c r="B1"><v> -12.5E2 </v></c><c r="C1" t="b"><v>1</v></c>)"
        R"(<c r="D1" t="e"><v>#N/A</v></c><c r="E1" t="inlineStr"><is><t>inline</t></is></c>)"
        R"(<c r="F1"><f>1+1</f><v>2</v></c><c r="G1" t="str"><f>"a"&amp;"b"</f><v>ab</v></c>)"
        R"(<c r="H1" t="b"><v>0</v></c><c r="I1" s="0"/></row>)",
        sst(R"(<si><t>zero</t></si><si><t>one</t></si>)"));
    const QVariantList values{"one", -1250.0, true, "#N/A", "inline", 2.0, "ab", false};
    for (int column = 1; column <= values.size(); ++column)
        EXPECT_EQ(doc->read(1, column), values[column - 1]) << column;
    EXPECT_EQ(doc->cellAt(1, 4)->cellType(), Cell::ErrorType);
    EXPECT_TRUE(doc->cellAt(1, 6)->hasFormula());
    EXPECT_EQ(doc->cellAt(1, 6)->formula(), QStringLiteral("1+1"));
    ASSERT_NE(doc->cellAt(1, 9), nullptr);
    EXPECT_TRUE(doc->read(1, 9).isNull());
    EXPECT_EQ(doc->cellAt(1, 10), nullptr);
}

TEST(ReadWorkbook, KeepsTextAsWrittenJoiningRichRunsDecodingEscapesAndLeavingOutPhoneticGuides)
{
    auto doc = openSheet(
        R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c><c r="C1" t="inlineStr"><is><t>tab_x0009_end</t></is></c>)"
        R"(<c r="D1" t="s"><v>2</v></c><c r="E1" t="s"><v>3</v></c><c r="F1" t="s"><v>4</v></c>)"
        R"(<c r="G1" t="inlineStr"><is><r><t>in</t></r><r><rPr><b/></rPr><t>line</t></r></is></c></row>)",
        sst(R"(<si><t xml:space="preserve">  two
lines  </t></si><si><t>bell_x0007__x005F_x0041_</t></si><si><t>😀 ok</t></si>)"
            R"(<si><r><t xml:space="preserve">bold </t></r><r><rPr><b/><sz val="11"/></rPr><t>text</t></r></si>)"
            R"(<si><t>東京</t><rPh sb="0" eb="2"><t>トウキョウ</t></rPh><phoneticPr fontId="1"/></si>)"));
    const QStringList texts{"  two\nlines  ", "bell\a_x0041_", "tab\tend", "😀 ok", "bold text", "東京", "inline"};
    for (int column = 1; column <= texts.size(); ++column)
        EXPECT_EQ(doc->read(1, column), QVariant(texts[column - 1])) << column;
}

// A text many cells show is made into a QString once and shared, so a column of
// repeated names costs one copy; a text one cell shows is not kept.
TEST(ReadWorkbook, CellsShowingOneTextShareOneQString)
{
    auto doc = openSheet(
        R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>0</v></c><c r="C1" t="s"><v>1</v></c>)"
        R"(<c r="D1" t="inlineStr"><is><t>again</t></is></c><c r="E1" t="inlineStr"><is><t>again</t></is></c></row>)",
        sst(R"(<si><t>twice</t></si><si><t>once</t></si>)"));
    QStringList texts;   // all held, so that no text's memory is reused for the next
    for (int column = 1; column <= 5; ++column)
        texts.append(doc->cellAt(1, column)->value().toString());
    EXPECT_EQ(texts, (QStringList{"twice", "twice", "once", "again", "again"}));
    EXPECT_EQ(texts[0].constData(), texts[1].constData());
    EXPECT_EQ(texts[3].constData(), texts[4].constData());
    EXPECT_EQ(texts[0].constData(), doc->cellAt(1, 1)->value().toString().constData());
    EXPECT_NE(texts[2].constData(), doc->cellAt(1, 3)->value().toString().constData());
}

TEST(ReadWorkbook, PlacesCellsWithoutReferencesAfterThePreviousOnesAndDropsCellsOutsideTheGrid)
{
    auto placed = openSheet(R"(<row r="3"><c r="B3"><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>)");
    EXPECT_EQ((QVariantList{placed->read(3, 2), placed->read(3, 3), placed->read(4, 1)}), (QVariantList{1.0, 2.0, 3.0}));
    EXPECT_EQ(placed->dimension(), CellRange(3, 1, 4, 3));

    auto doc = openSheet(
        R"(<row r="1"><c r="A0"><v>1</v></c><c r="XFE1"><v>2</v></c><c r="A1"><v>3</v></c><c r="1A"><v>4</v></c></row>)"
        R"(<row r="1048577"><c r="A1048577"><v>5</v></c></row>)"
        R"(<row r="1048576"><c r="XFD1048576"><v>6</v></c><c r="XFD1048577"><v>7</v></c></row>)");
    EXPECT_EQ(doc->read(1, 1), QVariant(3.0));
    EXPECT_EQ(doc->read(MaxRows, MaxColumns), QVariant(6.0));
    EXPECT_EQ(doc->dimension(), CellRange(1, 1, MaxRows, MaxColumns));
    int stored = 0;
    for (int column : {1, 2, MaxColumns})
        for (int row : {1, MaxRows})
            stored += doc->cellAt(row, column) != nullptr;
    EXPECT_EQ(stored, 2);
}

TEST(ReadWorkbook, ReadsCellFormatsIgnoringStyleAndStringIndexesThatPointNowhere)
{
    auto doc = openSheet(
        R"(<row r="1"><c r="A1" s="1" t="inlineStr"><is><t>x</t></is></c><c r="B1" s="0"><v>1</v></c></row>)"
        R"(<row r="2"><c r="A2" s="-1"><v>1</v></c><c r="B2" s="99999999999"><v>2</v></c><c r="C2" s="4"><v>3</v></c>)"
        R"(<c r="D2" t="s"><v>5</v></c><c r="E2" t="s"><v>-1</v></c><c r="F2" t="s"><v>99999999999999999999</v></c></row>)",
        sst("<si><t>only</t></si>"), Styles);
    const Format format = doc->cellAt(1, 1)->format();
    EXPECT_TRUE(format.fontBold());
    EXPECT_EQ(format.fontSize(), 12.0);
    EXPECT_EQ(format.fontName(), QStringLiteral("Arial"));
    EXPECT_EQ(format.horizontalAlignment(), Format::AlignHCenter);
    EXPECT_EQ(format.verticalAlignment(), Format::AlignVCenter);
    EXPECT_TRUE(format.textWrap());
    EXPECT_EQ(format.leftBorderStyle(), Format::BorderThin);
    EXPECT_EQ(format.bottomBorderStyle(), Format::BorderMedium);
    EXPECT_EQ(format.bottomBorderColor(), QColor(0, 0, 255));
    EXPECT_EQ(format.fillPattern(), Format::PatternSolid);
    EXPECT_EQ(format.patternForegroundColor(), QColor(255, 255, 0));
    for (const auto& [row, column] : {std::make_pair(1, 2), {2, 1}, {2, 2}})
        EXPECT_TRUE(doc->cellAt(row, column)->format().isEmpty()) << row << "," << column;
    EXPECT_EQ(doc->cellAt(2, 3)->format().numberFormat(), QStringLiteral("0.000\"h\""));
    for (int column = 4; column <= 6; ++column) {
        ASSERT_NE(doc->cellAt(2, column), nullptr);
        EXPECT_TRUE(doc->read(2, column).isNull());
    }
}

TEST(ReadWorkbook, RecognisesDateFormatsIsoDateCellsAndTheDateSystem)
{
    auto doc = openSheet(R"(<row r="1"><c r="A1" s="2"><v>45306</v></c><c r="B1" s="3"><v>45306.75</v></c>)"
                         R"(<c r="C1" s="4"><v>45306</v></c><c r="D1" s="2"><v>0.5</v></c>)"
                         R"(<c r="E1" t="d" s="2"><v>2024-01-15</v></c><c r="F1" t="d"><v>2024-01-15T06:00:00Z</v></c></row>)",
                         {}, Styles);
    const QVariantList values{QDate(2024, 1, 15), QDateTime(QDate(2024, 1, 15), QTime(18, 0)), 45306.0,
                              QTime(12, 0), QDate(2024, 1, 15), 45306.25};
    for (int column = 1; column <= values.size(); ++column)
        EXPECT_EQ(doc->read(1, column), values[column - 1]) << column;
    EXPECT_FALSE(doc->cellAt(1, 3)->isDateTime());

    // Counted from 1904 when the workbook says so.
    Parts parts = workbookParts(worksheet(R"(<row r="1"><c r="A1" s="2"><v>1461</v></c></row>)"), {}, Styles);
    setPart(parts, "xl/workbook.xml", workbookOf({"Data"}, R"(<workbookPr date1904="1"/>)"));
    doc = open(parts);
    EXPECT_TRUE(doc->isDate1904());
    EXPECT_EQ(doc->cellAt(1, 1)->dateTime().date(), QDate(1908, 1, 1));
    EXPECT_EQ(doc->read(1, 1), QVariant(QDate(1908, 1, 1)));
}

TEST(ReadWorkbook, ReadsMergesRowHeightsAndColumnWidths)
{
    Parts parts = workbookParts(
        R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetFormatPr defaultRowHeight="15"/>)"
        R"(<cols><col min="2" max="4" width="20.5" customWidth="1"/><col min="1" max="1" width="5" customWidth="1"/></cols>)"
        R"(<sheetData><row r="2" ht="30" customHeight="1"><c r="A2"><v>1</v></c></row></sheetData>)"
        R"(<mergeCells count="3"><mergeCell ref="A1:C2"/><mergeCell ref="E5"/><mergeCell ref="D1:XFE2"/></mergeCells></worksheet>)");
    auto doc = open(parts);
    Worksheet* sheet = doc->currentWorksheet();
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->mergedCells(), QList<CellRange>{CellRange(1, 1, 2, 3)});
    EXPECT_EQ(sheet->rowHeight(2), 30.0);
    EXPECT_EQ(sheet->rowHeight(3), 15.0);
    EXPECT_EQ(sheet->columnWidth(1), 5.0);
    EXPECT_EQ(sheet->columnWidth(3), 20.5);
}

namespace {

Parts twoSheetWorkbook(const QByteArray& activeTab)
{
    Parts parts = workbookParts(worksheet(numberRows(1)));
    // The chart sheet is hidden.
    setPart(parts, "xl/workbook.xml",
            workbookOf({"Data", R"(Chart" state="hidden)"}, R"(<bookViews><workbookView activeTab=")" + activeTab + R"("/></bookViews>)",
                       R"(<definedNames><definedName name="x">Data!$A$1</definedName></definedNames>)"));
    setPart(parts, "xl/_rels/workbook.xml.rels",
            relationships(relationship("s1", "worksheet", "worksheets/sheet1.xml")
                          + relationship("s2", "chartsheet", "/xl/chartsheets/sheet1.xml")
                          + relationship("rId5", "theme", "theme/theme1.xml")));
    setPart(parts, "xl/chartsheets/sheet1.xml", R"(<chartsheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><drawing r:id="rId1" xmlns:r="urn:r"/></chartsheet>)");
    setPart(parts, "xl/theme/theme1.xml", "<a:theme xmlns:a=\"urn:a\">\r\n  bytes as they were</a:theme>");
    setPart(parts, "docProps/app.xml", "<Properties/>");
    return parts;
}

} // namespace

TEST(ReadWorkbook, OpensOnAChartSheetWhenItIsTheActiveTabOrTheTabIsBeyondTheSheets)
{
    for (const char* tab : {"1", "9"}) {
        auto doc = open(twoSheetWorkbook(tab));
        EXPECT_EQ(doc->sheetNames(), (QStringList{"Data", "Chart"}));
        ASSERT_NE(doc->currentSheet(), nullptr);
        EXPECT_EQ(doc->currentSheet()->sheetName(), QStringLiteral("Chart"));
        EXPECT_EQ(doc->currentSheet()->sheetType(), AbstractSheet::ST_ChartSheet);
        EXPECT_EQ(doc->currentSheet()->sheetState(), AbstractSheet::SS_Hidden);
        EXPECT_EQ(doc->currentWorksheet(), nullptr);
        EXPECT_TRUE(doc->selectSheet("Data"));
        EXPECT_EQ(doc->read(1, 1), QVariant(1.0));
    }
}

TEST(ReadWorkbook, KeepsWhatItDoesNotModelForTheSave)
{
    detail::WorkbookData book;
    ASSERT_TRUE(readModel(zipOf(twoSheetWorkbook("0")), book));

    QStringList kept;
    for (const auto& part : book.keptParts)
        kept << part.name;
    kept.sort();
    EXPECT_EQ(kept, (QStringList{"docProps/app.xml", "xl/theme/theme1.xml"}));
    for (const auto& part : book.keptParts) {
        if (part.name == "xl/theme/theme1.xml") {
            EXPECT_EQ(part.data.toStdString(), "<a:theme xmlns:a=\"urn:a\">\r\n  bytes as they were</a:theme>");
            EXPECT_EQ(part.contentType, QStringLiteral("application/xml"));
        }
    }
    ASSERT_EQ(book.workbookRelationships.size(), 1u);
    EXPECT_EQ(book.workbookRelationships[0].target, QStringLiteral("theme/theme1.xml"));
    ASSERT_EQ(book.workbookExtraElements.size(), 2u);
    EXPECT_EQ(book.workbookExtraElements[1].localName, "definedNames");
    EXPECT_EQ(book.workbookExtraElements[1].xml.toStdString(),
              R"(<definedNames><definedName name="x">Data!$A$1</definedName></definedNames>)");
    EXPECT_TRUE(book.sheets[1]->rawPart.startsWith("<chartsheet"));
    EXPECT_EQ(book.sheets[1]->partName, QStringLiteral("xl/chartsheets/sheet1.xml"));
}

TEST(ReadWorkbook, KeepsUnmodelledWorksheetElementsInFileOrder)
{
    detail::WorkbookData book;
    ASSERT_TRUE(readModel(zipOf(workbookParts(
        R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="urn:r">)"
        R"(<sheetPr><tabColor rgb="FFFF0000"/></sheetPr><dimension ref="A1:Z99"/><sheetViews><sheetView tabSelected="1" workbookViewId="0"/></sheetViews>)"
        R"(<sheetData><row r="1"><c r="A1"><v>1</v></c></row></sheetData>)"
        R"(<hyperlinks><hyperlink ref="A1" r:id="rId1"/></hyperlinks><pageMargins left="0.7" right="0.7" top="0.75" bottom="0.75" header="0.3" footer="0.3"/></worksheet>)")), book));
    const auto& sheet = *book.sheets[0];
    QList<QByteArray> names;
    for (const auto& element : sheet.extraElements)
        names << element.localName;
    EXPECT_EQ(names, (QList<QByteArray>{"sheetPr", "sheetViews", "hyperlinks", "pageMargins"}));
    // The prefix declared on the root goes with the element that uses it.
    EXPECT_EQ(sheet.extraElements[2].xml.toStdString(),
              R"(<hyperlinks xmlns:r="urn:r"><hyperlink ref="A1" r:id="rId1"/></hyperlinks>)");
    EXPECT_TRUE(sheet.rootStartTag.startsWith("<worksheet xmlns="));
}

TEST(ReadWorkbook, ReadsPartsWithUnusualPrefixes)
{
    const QByteArray main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
    Parts parts = workbookParts(
        R"(<x:worksheet xmlns:x=")" + main + R"("><x:sheetData><x:row r="1"><x:c r="A1" t="s"><x:v>0</x:v></x:c>)"
        R"(<x:c r="B1" t="inlineStr"><x:is><x:t>inline</x:t></x:is></x:c></x:row></x:sheetData></x:worksheet>)",
        R"(<x:sst xmlns:x=")" + main + R"("><x:si><x:t>shared</x:t></x:si></x:sst>)");
    setPart(parts, "xl/workbook.xml",
            R"(<x:workbook xmlns:x=")" + main + R"(" xmlns:rel="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
            R"(<x:sheets><x:sheet name="Prefixed" sheetId="1" rel:id="s1"/></x:sheets></x:workbook>)");
    auto doc = open(parts);
    EXPECT_EQ(doc->sheetNames(), QStringList{"Prefixed"});
    EXPECT_EQ(doc->read(1, 1), QVariant(QStringLiteral("shared")));
    EXPECT_EQ(doc->read(1, 2), QVariant(QStringLiteral("inline")));
}

TEST(ReadWorkbook, FollowsAbsoluteAndRelativePartPaths)
{
    const Parts parts = {
        {"_rels/.rels", relationships(relationship("r", "officeDocument", "/book/main.xml"))},
        {"book/main.xml", workbookOf({"A", "B"})},
        {"book/_rels/main.xml.rels",
         relationships(relationship("s1", "worksheet", "../sheets/./one.xml")
                       + R"(<Relationship Id="s2" Type="http://purl.oclc.org/ooxml/officeDocument/relationships/worksheet" Target="/Sheets/Two.XML"/>)")},
        {"sheets/one.xml", worksheet(numberRows(1))},
        {"sheets/two.xml", worksheet(R"(<row r="1"><c r="A1"><v>2</v></c></row>)")},
    };
    auto doc = open(parts);
    EXPECT_EQ(doc->sheetNames(), (QStringList{"A", "B"}));
    EXPECT_EQ(doc->read(1, 1), QVariant(1.0));
    ASSERT_TRUE(doc->selectSheet("B"));
    EXPECT_EQ(doc->read(1, 1), QVariant(2.0));
}

TEST(ReadWorkbook, BigSheetsReadWholeAcrossInflateChunks)
{
    // Enough rows that the parts arrive in many chunks, which split tags, attributes,
    // references and values wherever they fall: cells and shared strings written the
    // plain way most writers use as well as with references to resolve.
    QByteArray rows, items;
    const int rowCount = 30000;
    for (int r = 1; r <= rowCount; ++r) {
        const QByteArray n = QByteArray::number(r);
        rows += "<row r=\"" + n + "\"><c r=\"A" + n + "\" t=\"inlineStr\"><is><t>n&#176;" + n + " &amp; co</t></is></c>"
              + "<c r=\"B" + n + "\"><v>" + QByteArray::number(r * 0.25) + "</v></c>"
              + "<c r=\"C" + n + "\" s=\"0\" t=\"s\"><v>" + QByteArray::number(r - 1) + "</v></c>"
              + "<c t=\"inlineStr\"><is><t xml:space=\"preserve\">plain " + n + "</t></is></c></row>";
        items += (r % 2 ? "<si><t>shared " : "<si><t xml:space=\"preserve\">shared ") + n + "</t></si>";
    }
    auto doc = open(workbookParts(worksheet(rows), sst(items)));
    EXPECT_EQ(doc->dimension(), CellRange(1, 1, rowCount, 4));
    int wrong = 0;
    for (int r = 1; r <= rowCount; ++r) {
        wrong += doc->read(r, 1) != QVariant(QStringLiteral("n°%1 & co").arg(r));
        wrong += doc->read(r, 2) != QVariant(r * 0.25);
        wrong += doc->read(r, 3) != QVariant(QStringLiteral("shared %1").arg(r));
        wrong += doc->read(r, 4) != QVariant(QStringLiteral("plain %1").arg(r));
    }
    EXPECT_EQ(wrong, 0);
}

// Cells and shared strings in the plain form most writers use are read in one pass
// each; written any other way they go token by token. Both must give the same model.
TEST(ReadWorkbook, PlainCellsReadAsTheSameCellsWrittenAnyOtherWay)
{
    const QByteArray rows =
        R"(<row r="1"><c r="A1" s="1" t="s"><v>0</v></c><c t="s"><v> 1 </v></c><c r="D1" s="2"><v>40000.5</v></c>)"
        R"(<c s="4"><v>-1.5e3</v></c><c t="b"><v>1</v></c><c t="e"><v>#DIV/0!</v></c><c t="str"><v>a > b</v></c>)"
        R"(<c t="inlineStr"><is><t>tab_x0009_</t></is></c><c t="inlineStr"><is><t xml:space="preserve"> x </t></is></c>)"
        R"(<c s="1"/><c r="M1" s="3"></c><c><v></v></c><c t="s"><v>7</v></c><c s="99"><v>1</v></c><c t="d"><v>2024-02-29</v></c>)"
        R"(<c r="XFD1"><v>9</v></c><c><v>lost</v></c></row>)"
        R"(<row r="3"><c r="A0"><v>1</v></c><c r="C3" t="s"><v>2</v></c><c r="B3"><v>2</v></c><c><v>3</v></c></row>)"
        R"(<row r="1048577"><c r="A1048577"><v>5</v></c></row>)";
    const QByteArray items = R"(<si><t>zero</t></si><si><t xml:space="preserve"> one </t></si><si><t>bell_x0007_</t></si>)"
                             R"(<si><t></t></si><si><t>b</t><t>c</t></si>)";
    // One more space makes every cell and entry start the way only the tokens read.
    QByteArray spacedRows = rows, spacedItems = items;
    spacedRows.replace("<c", "<c ");
    spacedItems.replace("<si>", "<si >");
    auto plain = open(workbookParts(worksheet(rows), sst(items), Styles));
    auto spaced = open(workbookParts(worksheet(spacedRows), sst(spacedItems), Styles));
    ASSERT_EQ(plain->dimension(), spaced->dimension());
    EXPECT_EQ(plain->dimension(), CellRange(1, 1, 3, MaxColumns));
    for (int row = 1; row <= 3; ++row) {
        for (int column = 1; column <= MaxColumns; ++column) {
            const Cell* a = plain->cellAt(row, column);
            const Cell* b = spaced->cellAt(row, column);
            ASSERT_EQ(a == nullptr, b == nullptr) << row << "," << column;
            if (!a)
                continue;
            EXPECT_EQ(a->cellType(), b->cellType()) << row << "," << column;
            EXPECT_EQ(a->value(), b->value()) << row << "," << column;
            EXPECT_EQ(a->format(), b->format()) << row << "," << column;
        }
    }
    EXPECT_EQ(plain->read(1, 1), QVariant("zero"));
    EXPECT_EQ(plain->read(1, 2), QVariant(" one "));
    EXPECT_EQ(plain->read(1, 8), QVariant("a > b"));
    EXPECT_EQ(plain->read(1, 9), QVariant("tab\t"));
    EXPECT_EQ(plain->read(1, 10), QVariant(" x "));
    EXPECT_EQ(plain->read(1, MaxColumns), QVariant(9.0));
}
